// The properties of the selected elements, to be changed in place: captions, units, checks and reactions are
// those of the dialogs.
#pragma once

#include <string>
#include <vector>

#include "document/elements.h"
#include "model/element_properties.h"

namespace ormel {

struct Ormel;
class OkCancelForm;

struct SheetRow {
  Property property;
  std::string caption, unit;
  std::string text;  ///< as it is entered; of a choice the caption chosen, of a switch "yes" or "no"
  ControlKind kind = ControlKind::kText;  ///< kText, kNumber, kCheck, or kCombo for one of `choices`
  std::vector<std::string> choices{};
  bool mixed = false;    ///< the elements differ
  bool enabled = false;  ///< as in the dialog, for all of the elements
};

class PropertySheet {
 public:
  explicit PropertySheet(Ormel& ormel) : ormel_(ormel) {}

  /// What is selected now.  Rows only for elements of one kind.
  void Read();
  /// "Well North", "12 Wells", or why there is nothing to be set.
  const std::string& title() const { return title_; }
  const std::vector<SheetRow>& rows() const { return rows_; }
  const std::vector<ElementId>& ids() const { return ids_; }

  /// The new content of a row for all elements, checked by the form of each.  They are stored together as one
  /// step, and stay selected; false when one was refused, which told why, and nothing has changed.
  bool Set(std::size_t row, const std::string& text);

 private:
  void AddRows(const OkCancelForm& form, const KindRow& kind);
  void Merge(const OkCancelForm& form);
  void SettleForSeveral(const KindRow& kind);

  Ormel& ormel_;
  std::vector<ElementId> ids_;
  std::vector<SheetRow> rows_;
  std::string title_;
};

}  // namespace ormel
