// The picture from the ground up: an ordered table of layers.
#pragma once

#include <functional>
#include <span>
#include <string_view>

#include "core/layer_switches.h"
#include "view/canvas.h"
#include "view/pathlines.h"
#include "view/results_overlay.h"

namespace ormel {

/// What the view keeps between two drawings.
struct ViewState {
  OverlaySettings overlay;
  /// Draws in the place of the project's base maps, where a drawing is to be measured; empty otherwise.
  std::function<void(const MapCanvas&)> basemaps;
};

struct MapLayer {
  std::string_view name;
  std::string_view status;                      ///< feedback while it is drawn; may be empty
  Layer layer;                                  ///< drawn while this is shown
  bool (*any)(const Ormel&, const ViewState&);  ///< there is something to draw; null: the drawing finds out
  void (*draw)(const MapCanvas&, ViewState&);
};

/// In the order of drawing, from the ground up.
std::span<const MapLayer> MapLayers();

/// Its switch is on, and there is something.
bool IsDrawn(const MapLayer& layer, const Ormel& ormel, const ViewState& state);

/// Paints all layers that are drawn on the vector layer's target, which is initialised.  Labels keep clear of
/// what `canvas.labels` has reserved.
void DrawMap(const MapCanvas& canvas, ViewState& state);

/// A window that can be drawn: sides in their order; one without width or height, or that is no number, gives
/// way to the extents of the map, and these to -100 ... 100.
MapRect UsableWindow(const Ormel& ormel, MapRect window);

/// Share of the haze that covers the base maps, 0 to 1.
double HazeOpacity(const Ormel& ormel);

}  // namespace ormel
