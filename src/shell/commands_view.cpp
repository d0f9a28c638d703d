// The commands of the menu "View".
#include <string_view>

#include "core/map_view.h"
#include "core/ormel.h"
#include "shell/commands.h"
#include "solver/inspection.h"
#include "view/display_commands.h"
#include "view/pathlines.h"
#include "view/whpa_drawing.h"

namespace ormel::command {
namespace {

void Toggle(Ormel& ormel, std::string_view control, int index) {
  ormel.menus.Check(control, index, !ormel.menus.Checked(control, index));
}

/// One item of a control checked, `count` others not.
void CheckOnly(Ormel& ormel, std::string_view control, int index, int count) {
  for (int i = 0; i < count; ++i) ormel.menus.Check(control, i, i == index);
}

void RedrawInPlace(Ormel& ormel) {
  ormel.view().ZoomActions(ormel::Zoom::kRedrawInPlace);
}

}  // namespace

void Layer(Ormel& ormel, int index) {
  if (index == kLayerRefresh) return ormel.view().ZoomActions(ormel::Zoom::kRedraw);
  if (index == kLayerResultsOverlay) return ResultsOverlayCommand(ormel);
  Toggle(ormel, "layermenu", index);
  if (index != kLayerToolbar) RedrawInPlace(ormel);
}

void Pathlines(Ormel& ormel, int /*index*/) {
  PATHLINES(ormel);
}

void ClearTraces(Ormel& ormel, int /*index*/) {
  ClearTracedLines(ormel);
}

void TimeMarks(Ormel& ormel, int index) {
  TMARKS(ormel, index);
}

void ElevationMarks(Ormel& ormel, int index) {
  ZMARKS(ormel, index == kElevationMarksEnter);
}

void TestDisplay(Ormel& ormel, int index) {
  Toggle(ormel, "TESTDISPLAY", index);
  RedrawInPlace(ormel);
}

void TestScaling(Ormel& ormel, int index) {
  CheckOnly(ormel, "TPSCALING", index, 3);
  RedrawInPlace(ormel);
}

void ShowVertices(Ormel& ormel, int index) {
  Toggle(ormel, "ShowVertices", index);
  RedrawInPlace(ormel);
}

void Haze(Ormel& ormel, int index) {
  Toggle(ormel, "Haze", index);
  RedrawInPlace(ormel);
}

void WellLabels(Ormel& ormel, int index) {
  Toggle(ormel, "ShowWellLabels", index);
  RedrawInPlace(ormel);
}

void SimpleWhpas(Ormel& ormel, int /*index*/) {
  ShowWHPAs(ormel);
}

}  // namespace ormel::command
