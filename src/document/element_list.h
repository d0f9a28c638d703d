// All elements of a project as a list by kind, kept true by the change records.
#pragma once

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/changes.h"
#include "document/elements.h"

namespace ormel {

struct Ormel;

struct ListedElement {
  ElementId id;
  std::string label;  ///< the user's; a particle or a line without one is called by its number
  std::string value;  ///< what it is given, with its unit
  std::string state;  ///< how it acts, and what the solution says of it
};

struct ElementGroup {
  Element element = Element::kNone;
  std::string caption;  ///< of several: "Wells"
  std::size_t all = 0;  ///< also those that the search leaves out
  std::vector<ListedElement> elements;
};

enum class ListColumn : int { kLabel, kValue, kState };

/// Reads a kind once, and then only the rows that commands have changed.  Kinds that a project has none of
/// have no group.  Results are read when they are another run's.
class ElementList final : public ChangeListener {
 public:
  explicit ElementList(Ormel& ormel);
  ~ElementList() override;
  ElementList(const ElementList&) = delete;
  ElementList& operator=(const ElementList&) = delete;

  /// Only elements that have all words of the text in label, value or state, without regard to case.
  void Search(const std::string& text);
  /// Numbers in labels and values by their size: "W 9" before "W 10".
  void Sort(ListColumn column, bool descending);
  /// What is to be shown; brings itself up to date.
  const std::vector<ElementGroup>& Groups();
  /// Grows when `Groups` may be another list than before.
  long revision() const { return revision_; }

  void CommandEnded(const ChangeRecord& record) override;
  /// The results on view have come, gone, or are another run's.
  void ResultsChanged();

 private:
  using Elements = std::map<std::int64_t, ListedElement>;
  void ReadAll();
  void ReadResults();
  void ReadRows(Element element, const std::set<std::int64_t>& keys);
  void Arrange();

  Ormel& ormel_;
  std::map<Element, Elements> elements_;
  std::map<Element, std::set<std::int64_t>> touched_;
  std::unordered_map<std::string, std::string>
      results_;  ///< by the first part of the deck label, or "TP" and VID
  std::vector<ElementGroup> groups_;
  std::vector<std::string> words_;
  ListColumn column_ = ListColumn::kLabel;
  bool descending_ = false;
  bool read_ = false, arranged_ = false;
  long revision_ = 0;
};

/// Compares texts as people count: runs of digits by their number, letters without regard to case.
bool NaturallyBefore(std::string_view a, std::string_view b);

}  // namespace ormel
