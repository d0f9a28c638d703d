// The commands of the menu "View".
#include "basemaps/base_map_forms.h"
#include "basemaps/bbm_groups.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/window_commands.h"
#include "shell/commands.h"
#include "solver/inspection.h"
#include "view/display_commands.h"
#include "view/pathlines.h"
#include "view/whpa_drawing.h"

namespace ormel::command {
namespace {

void RedrawInPlace(Ormel& ormel) {
  ormel.view().ZoomActions(ormel::Zoom::kRedrawInPlace);
}

}  // namespace

void Layer(Ormel& ormel, int index) {
  if (index == kLayerRefresh) return ormel.view().ZoomActions(ormel::Zoom::kRedraw);
  if (index == kLayerResultsOverlay) return ResultsOverlayCommand(ormel);
  if (index == kLayerBaseMap) return ShowViewGraphics(ormel, false);
  if (const auto layer = layermenu(index)) ormel.layers.Toggle(*layer);
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
  if (const auto layer = LayerOf("TESTDISPLAY", index)) ormel.layers.Toggle(*layer);
  RedrawInPlace(ormel);
}

void TestScaling(Ormel& ormel, int index) {
  for (int i = 0; i < 3; ++i)
    if (const auto layer = LayerOf("TPSCALING", i)) ormel.layers.Switch(*layer, i == index);
  RedrawInPlace(ormel);
}

void ShowVertices(Ormel& ormel, int index) {
  if (const auto layer = LayerOf("ShowVertices", index)) ormel.layers.Toggle(*layer);
  RedrawInPlace(ormel);
}

void Graphics(Ormel& ormel, int index) {
  ShowViewGraphics(ormel, index == 1);
}

void BbmGroup(Ormel& ormel, int /*index*/) {
  SelectBBMGroup(ormel);
}

void Haze(Ormel& ormel, int /*index*/) {
  ormel.layers.Toggle(Layer::kHaze);
  RedrawInPlace(ormel);
}

void WellLabels(Ormel& ormel, int /*index*/) {
  ormel.layers.Toggle(Layer::kWellLabels);
  RedrawInPlace(ormel);
}

void SimpleWhpas(Ormel& ormel, int /*index*/) {
  ShowWHPAs(ormel);
}

void Panel(Ormel& ormel, int index) {
  ormel.ports.window->TogglePanel(index);
}

}  // namespace ormel::command
