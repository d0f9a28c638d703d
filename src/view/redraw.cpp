#include "view/redraw.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "core/command.h"
#include "core/ormel.h"
#include "solver/result_files.h"
#include "view/contours.h"
#include "view/pathlines.h"
#include "view/symbols.h"
#include "view/traced_lines.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

bool BasemapsWanted(const Ormel&, const ViewState& state) {
  return static_cast<bool>(state.basemaps);
}
void DrawBasemaps(const MapCanvas& canvas, ViewState& state) {
  const Named named(canvas.ormel, "Redraw_Basemap");
  state.basemaps(canvas);
}

bool HazeWanted(const Ormel& ormel, const ViewState&) {
  return ormel.menus.Checked("Haze") && ormel.gui.HazeLevel() > 0;
}
void DrawHaze(const MapCanvas& canvas, ViewState&) {
  canvas.vg.target()->Cover(canvas.vg.View(), canvas.ormel.gui.HazeColor, HazeOpacity(canvas.ormel));
}

bool Always(const Ormel&, const ViewState&) {
  return true;
}
void DrawElements(const MapCanvas& canvas, ViewState&) {
  ElemDrawAll(canvas);
}

bool ContoursWanted(const Ormel& ormel, const ViewState&) {
  return ormel.menus.Checked("layermenu", kLayerContours);
}
void DrawContours(const MapCanvas& canvas, ViewState&) {
  ModelDrawContours(canvas, ResultFilesOf(canvas.ormel));
}

bool PathlinesWanted(const Ormel& ormel, const ViewState&) {
  return ormel.menus.Checked("layermenu", kLayerPathlines);
}
void DrawPathlines(const MapCanvas& canvas, ViewState&) {
  ModelDrawPathlines(canvas, ResultFilesOf(canvas.ormel));
}

bool TracedLinesWanted(const Ormel& ormel, const ViewState&) {
  return HasTracedLines(ormel);
}
void DrawTracedLines(const MapCanvas& canvas, ViewState&) {
  ModelDrawTracedLines(canvas);
}

bool OverlayWanted(const Ormel& ormel, const ViewState& state) {
  return ormel.menus.Checked("layermenu", kLayerResultsOverlay) && state.overlay.LSMode != "off";
}
void DrawOverlay(const MapCanvas& canvas, ViewState& state) {
  ModelDrawResultsOverlay(canvas, state.overlay);
}

constexpr std::array kLayers{
    MapLayer{"Base Maps", "Drawing Basemaps...", BasemapsWanted, DrawBasemaps},
    MapLayer{"Haze", "", HazeWanted, DrawHaze},
    MapLayer{"Elements", "Drawing Elements...", Always, DrawElements},
    MapLayer{"Contours", "", ContoursWanted, DrawContours},
    MapLayer{"Pathlines", "", PathlinesWanted, DrawPathlines},
    MapLayer{"Traced Lines", "", TracedLinesWanted, DrawTracedLines},
    MapLayer{"Results Overlay", "", OverlayWanted, DrawOverlay},
};

}  // namespace

std::span<const MapLayer> MapLayers() {
  return kLayers;
}

MapRect UsableWindow(const Ormel& ormel, MapRect window) {
  const auto usable = [](MapRect& r) {
    if (r.x2 < r.x1) std::swap(r.x1, r.x2);
    if (r.y1 < r.y2) std::swap(r.y1, r.y2);
    return r.x1 < r.x2 && r.y2 < r.y1 && std::isfinite(r.Width()) && std::isfinite(r.Height());
  };
  if (usable(window)) return window;
  window = WindowOf(ormel.window.full);
  return usable(window) ? window : MapRect{-100.0, 100.0, 100.0, -100.0};
}

double HazeOpacity(const Ormel& ormel) {
  // The level counts against the field: 2 is the haziest, 6 the clearest.
  return std::clamp((7 - ormel.gui.HazeLevel()) / 7.0, 0.0, 1.0);
}

void DrawMap(const MapCanvas& canvas, ViewState& state,
             const std::function<void(std::string_view)>& progress) {
  for (const MapLayer& layer : kLayers) {
    if (!layer.wanted(canvas.ormel, state)) continue;
    if (progress && !layer.status.empty()) progress(layer.status);
    canvas.vg.BeginLayer(layer.name);
    layer.draw(canvas, state);
  }
}

}  // namespace ormel
