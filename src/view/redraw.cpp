#include "view/redraw.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "solver/result_files.h"
#include "view/base_map_drawing.h"
#include "view/capture_zones.h"
#include "view/contours.h"
#include "view/label_placer.h"
#include "view/symbols.h"
#include "view/traced_lines.h"
#include "view/vg_gdi.h"
#include "view/whpa_drawing.h"

namespace ormel {
namespace {

bool HasBasemaps(const Ormel& ormel, const ViewState& state) {
  return state.basemaps || AnyBaseMaps(ormel);
}
void DrawBasemaps(const MapCanvas& canvas, ViewState& state) {
  const Named named(canvas.ormel, "Redraw_Basemap");
  if (state.basemaps) return state.basemaps(canvas);
  DrawBaseMaps(canvas);
}

bool HasHaze(const Ormel& ormel, const ViewState&) {
  return ormel.gui.HazeLevel() > 0;
}
void DrawHaze(const MapCanvas& canvas, ViewState&) {
  canvas.vg.target()->Cover(canvas.vg.View(), canvas.ormel.gui.HazeColor, HazeOpacity(canvas.ormel));
}

void DrawFlow(const MapCanvas& canvas, ViewState&) {
  const auto is_flow = [](const ElementId& id) { return id.element == Element::kUniformFlow; };
  if (canvas.lifted != nullptr && std::any_of(canvas.lifted->begin(), canvas.lifted->end(), is_flow)) return;
  ElemDrawUniformFlow(canvas, DrawMode::kNormal);
}

void DrawContours(const MapCanvas& canvas, ViewState&) {
  ModelDrawContours(canvas, ResultFilesOf(canvas.ormel));
}

void DrawContourLabels(const MapCanvas& canvas, ViewState&) {
  if (Shown(canvas.ormel, Layer::kWells)) ReserveWells(canvas);
  ModelDrawContourLabels(canvas, ResultFilesOf(canvas.ormel));
}

void DrawPathlines(const MapCanvas& canvas, ViewState&) {
  ModelDrawPathlines(canvas, ResultFilesOf(canvas.ormel));
}

bool AnyTracedLines(const Ormel& ormel, const ViewState&) {
  return HasTracedLines(ormel);
}

bool HasOverlay(const Ormel&, const ViewState& state) {
  return state.overlay.LSMode != "off";
}
void DrawOverlay(const MapCanvas& canvas, ViewState& state) {
  ModelDrawResultsOverlay(canvas, state.overlay);
}

template <LabelClass kClass>
void DrawLabels(const MapCanvas& canvas, ViewState&) {
  ModelDrawAllText(canvas, kClass);
}

/// A kind that is drawn from the project alone.
template <void (*kDraw)(const MapCanvas&)>
void Draw(const MapCanvas& canvas, ViewState&) {
  kDraw(canvas);
}

// Wells, labels and what is measured lie above the paths, so that a bundle of these never hides the well that
// it belongs to.
constexpr std::array kLayers{
    MapLayer{"Base Maps", "Drawing Basemaps...", Layer::kBasemaps, HasBasemaps, DrawBasemaps},
    MapLayer{"Haze", "", Layer::kHaze, HasHaze, DrawHaze},
    MapLayer{"Capture Zones", "", Layer::kCapzones, nullptr, Draw<ModelDrawAllCapzones>},
    MapLayer{"Uniform Flow", "Drawing Elements...", Layer::kUniformFlow, nullptr, DrawFlow},
    MapLayer{"Linesinks", "", Layer::kLinesinks, nullptr, Draw<ElemDrawAllLinesinks>},
    MapLayer{"Barriers", "", Layer::kBarriers, nullptr, Draw<ElemDrawAllNoFlow>},
    MapLayer{"Inhomogeneities", "", Layer::kDomains, nullptr, Draw<ElemDrawAllInhos>},
    MapLayer{"Stream Boundaries", "", Layer::kStreamBoundaries, nullptr, Draw<ElemDrawAllStreamBoundarys>},
    MapLayer{"WHPAs", "", Layer::kWhpas, nullptr, Draw<ElemDrawAllWHPAs>},
    MapLayer{"Contours", "", Layer::kContours, nullptr, DrawContours},
    MapLayer{"Pathlines", "", Layer::kPathlines, nullptr, DrawPathlines},
    MapLayer{"Traced Lines", "", Layer::kTracedLines, AnyTracedLines, Draw<ModelDrawTracedLines>},
    MapLayer{"Results Overlay", "", Layer::kResultsOverlay, HasOverlay, DrawOverlay},
    MapLayer{"Flux Lines", "", Layer::kFluxLines, nullptr, Draw<ModelDrawAllFluxInspect>},
    MapLayer{"Particles", "", Layer::kParticles, nullptr, Draw<ModelDrawAllParticles>},
    MapLayer{"Wells", "", Layer::kWells, nullptr, Draw<ElemDrawAllWells>},
    MapLayer{"Test Points", "", Layer::kTestPoints, nullptr, Draw<ModelDrawAllTestPoints>},
    MapLayer{"Text", "", Layer::kTextLabels, nullptr, DrawLabels<LabelClass::kUser>},
    MapLayer{"Hydrography Labels", "", Layer::kHydrographyLabels, nullptr,
             DrawLabels<LabelClass::kHydrography>},
    MapLayer{"Hypsography Labels", "", Layer::kHypsographyLabels, nullptr,
             DrawLabels<LabelClass::kHypsography>},
    MapLayer{"Well Labels", "", Layer::kWellLabels, nullptr, Draw<ElemDrawAllWellLabels>},
    MapLayer{"Contour Labels", "", Layer::kContours, nullptr, DrawContourLabels},
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

bool IsDrawn(const MapLayer& layer, const Ormel& ormel, const ViewState& state) {
  return Shown(ormel, layer.layer) && (layer.any == nullptr || layer.any(ormel, state));
}

void DrawMap(const MapCanvas& canvas, ViewState& state) {
  LabelPlacer own;
  const MapCanvas map{canvas.ormel, canvas.vg, canvas.labels != nullptr ? canvas.labels : &own,
                      canvas.lifted};
  for (const MapLayer& layer : kLayers) {
    if (!IsDrawn(layer, canvas.ormel, state)) continue;
    canvas.vg.BeginLayer(layer.name);
    layer.draw(map, state);
  }
}

}  // namespace ormel
