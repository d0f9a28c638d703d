// A dialog as a model: its controls as data, its reactions, its checks.
//
// A form knows no toolkit.  One renderer of the window shows any form; batch runs and tests drive the same
// form by the names of its controls.  The life of a form: ShowForm() of the UserInterface, then user actions
// (SetText, SetChecked, Select, Click, LeaveField), each of which may end in Hide(); the caller then reads
// `Result` and the form's properties.  A failed check shows its box, calls Focus() and leaves the form open.
#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Chart;
struct ChartPick;
struct Ormel;
class Table;

enum class ControlKind {
  kLabel,      ///< text only
  kText,       ///< one line of text
  kMultiline,  ///< several lines
  kNumber,     ///< a field read with Val; left empty it becomes "0"
  kCheck,
  kOption,  ///< one of a `group`
  kButton,
  kColor,      ///< a swatch
  kFont,       ///< shows a font by its name and size
  kCombo,      ///< one of `items`
  kList,       ///< one of `items`, all in view
  kMultiList,  ///< any of `items`
  kNote,       ///< an explanatory paragraph
  kTable,      ///< rows and columns of `table`; its rows can be selected, sorted and copied
  kChart,      ///< `chart`; `text` is the box about the point pointed at, its first line the title
};

enum class ButtonRole { kNone, kAccept, kReject };

/// What a number can mean.  What lies outside is refused with the range.
struct NumberRange {
  double lowest = -1e15, largest = 1e15;
  bool own_low = false;  ///< the form has words of its own for what is too low
  bool strict = false;   ///< and for a text that is not wholly a number
};

// Heads, elevations, lengths and rates in the units of the computation, places in those of the map.
inline constexpr NumberRange kElevations{-1e7, 1e7}, kPlaces{-1e9, 1e9}, kSizes{0.0, 1e7, true},
    kDischarges{-1e12, 1e12}, kRates{0.0, 1e7, true}, kRecharges{-1e4, 1e4}, kDurations{0.0, 1e9, true},
    kShares{0.0, 1.0}, kDegrees{-360.0, 360.0};

struct ControlSpec {
  std::string_view name{};  ///< with its index where it has one: "tbData(2)"
  ControlKind kind = ControlKind::kLabel;
  std::string_view caption{};
  std::string_view unit{};
  std::string_view tab{};    ///< page of a tabbed form; empty outside the tabs
  std::string_view group{};  ///< frame; options of one group exclude one another
  std::string_view tip{};
  ButtonRole role = ButtonRole::kNone;
  NumberRange range{};      ///< of a kNumber
  std::size_t longest = 0;  ///< characters that the store's field takes; 0 where the form looks itself
};

struct ControlState {
  std::string text;
  std::string caption;
  std::string unit;
  bool checked = false;
  bool enabled = true;
  bool visible = true;
  Color color{};
  std::vector<std::string> items;
  std::vector<int> selected;  ///< indices into `items`, or rows of the table
  std::shared_ptr<Table> table;
  bool editable = false;  ///< cells of the table can be typed over
  std::shared_ptr<const Chart> chart;
};

/// What stands beside a number field while its text is not wholly a number: "reads as 1"; else empty.
std::string ReadsAs(const ControlSpec& spec, const ControlState& state);

class Form {
 public:
  explicit Form(Ormel& ormel) : ormel_(ormel) {}
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  virtual std::string Title() const = 0;
  virtual std::span<const ControlSpec> Controls() const = 0;
  /// Name of the form's class, by which scripts and batch answers find it.
  virtual std::string_view Name() const = 0;
  /// Topic of the user guide that F1 opens.
  virtual std::string_view HelpTopic() const { return Name(); }

  // What a user does.  An accepting button first looks at all fields that are offered: a text that is not
  // wholly a number is asked about, what is out of range or too long for the store is refused.
  void SetText(std::string_view name, std::string_view text);
  void SetChecked(std::string_view name, bool on);
  void Select(std::string_view name, std::vector<int> indices);
  void Click(std::string_view name);
  /// The field loses the focus: an empty kNumber becomes "0".
  void LeaveField(std::string_view name);
  /// Sorts a table by one of its columns; the selection goes.
  void SortTable(std::string_view name, std::size_t column, bool descending);
  /// The selected rows of a table, or all, to the clipboard.
  void CopyTable(std::string_view name);
  /// The pointer stands at a point of a chart, or at none (null).
  void PointAt(std::string_view name, const ChartPick* pick);
  /// A point of a chart was clicked.
  void PickPoint(std::string_view name, const ChartPick& pick);
  /// A cell of an editable table was typed over.
  void EditCell(std::string_view name, std::size_t row, std::size_t column, std::string_view text);

  // What a renderer reads.  A name that does not exist is a programming error and throws.
  const ControlState& State(std::string_view name) const;
  const std::string& Text(std::string_view name) const { return State(name).text; }
  bool Checked(std::string_view name) const { return State(name).checked; }
  double Number(std::string_view name) const;  ///< by Val
  bool Hidden() const { return hidden_; }
  void MarkShown() { hidden_ = false; }
  const std::string& FocusedControl() const { return focus_; }
  void ClearFocusRequest() { focus_.clear(); }
  bool Has(std::string_view name) const;
  /// Grows with each change of a control's state.
  long revision() const { return revision_; }

  int Result = 0;  ///< 1 OK, 2 Cancel, or what the form says

 protected:
  /// A control changed by the user; setters of the form itself do not come here.
  virtual void Changed(std::string_view /*name*/) {}
  /// A button was pressed.  The default knows no button.
  virtual void Pressed(std::string_view /*name*/) {}
  /// A cell got another text; the default leaves the table as it is.
  virtual void CellEdited(std::string_view /*name*/, std::size_t /*row*/, std::size_t /*column*/,
                          std::string_view /*text*/) {}

  /// The box about a point of a chart: a title and the lines below it.
  virtual std::string PointText(std::string_view /*name*/, const ChartPick& /*pick*/) { return {}; }
  virtual void PointPicked(std::string_view /*name*/, const ChartPick& /*pick*/) {}

  /// Puts captions, units and visibility of the table into the states.  Call once in the constructor.
  void InitControls();
  ControlState& Mutable(std::string_view name);
  void Put(std::string_view name, std::string_view text);
  void PutNumber(std::string_view name, double value);
  void PutCheck(std::string_view name, bool on);
  void Offer(std::string_view name, bool on) { Mutable(name).enabled = on; }
  void Show(std::string_view name, bool on) { Mutable(name).visible = on; }
  void Caption(std::string_view name, std::string_view text) { Mutable(name).caption = text; }
  void Unit(std::string_view name, std::string_view text) { Mutable(name).unit = text; }
  /// Each of the empty kNumber fields becomes "0".
  void FillEmptyNumbers();
  /// Shows the box and asks for the focus on `name`.  Always false, so that a check ends with `return
  /// Refuse(...)`.
  bool Refuse(std::string_view name, std::string_view title, std::string_view text);
  void Focus(std::string_view name) { focus_ = name; }
  void Hide() { hidden_ = true; }

  Ormel& ormel() const { return ormel_; }

 private:
  const ControlSpec& Spec(std::string_view name) const;
  std::string FieldName(const ControlSpec& spec) const;
  bool FieldsHold();
  bool NumberHolds(const ControlSpec& spec);
  bool TextHolds(const ControlSpec& spec);

  Ormel& ormel_;
  std::map<std::string, ControlState, std::less<>> states_;
  std::string focus_;
  bool hidden_ = true;
  long revision_ = 0;
};

}  // namespace ormel
