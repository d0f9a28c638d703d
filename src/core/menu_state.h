// Which menu items and toolbar buttons are enabled and checked.
//
// The items themselves (captions, order, shortcuts) are a table of the shell; this is only their state, so
// that any procedure can set it without a toolkit.  An item is named by its control and its index, 0 for a
// control without one.  An item nobody has touched is enabled and not checked.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace ormel {

class MenuState {
 public:
  bool Enabled(std::string_view control, int index = 0) const;
  bool Checked(std::string_view control, int index = 0) const;
  void Enable(std::string_view control, int index, bool on);
  void Enable(std::string_view control, bool on) { Enable(control, 0, on); }
  void Check(std::string_view control, int index, bool on);
  void Check(std::string_view control, bool on) { Check(control, 0, on); }

  /// A caption that replaces the one of the menu's table; empty for the table's own.
  void SetCaption(std::string_view control, int index, std::string_view caption);
  std::string Caption(std::string_view control, int index = 0) const;

  /// Grows with each change: a window compares it with the number it last showed.
  long revision() const { return revision_; }

 private:
  struct Item {
    bool enabled = true;
    bool checked = false;
    std::string caption;
  };
  Item& At(std::string_view control, int index);
  const Item* Find(std::string_view control, int index) const;

  std::map<std::pair<std::string, int>, Item> items_;
  long revision_ = 0;
};

/// `TESTDISPLAY`, `TPSCALING`, `TMARKS`, `ZMARKS`, `ShowVertices` and `EDITORGRID`, by their index.
enum TestDisplayItem : int { kTestShow = 0, kTestText = 1, kTestScaledSymbols = 2 };
enum TestScalingItem : int { kTestScale5 = 0, kTestScale10 = 1, kTestScale20 = 2 };
enum TimeMarkItem : int {
  kTimeMarksShow = 0,
  kTimeMarks1Year = 1,
  kTimeMarks2Years = 2,
  kTimeMarks5Years = 3,
  kTimeMarksCustom = 4,
};
enum ElevationMarkItem : int { kElevationMarksShow = 0, kElevationMarksEnter = 1 };
enum ShowVerticesItem : int { kLinesinkVertices = 0, kInhomogeneityVertices = 1 };
enum EditorGridItem : int { kGridShow = 0, kGridSnap = 1, kGridSettings = 2 };

}  // namespace ormel
