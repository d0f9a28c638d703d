// The picture from the ground up: an ordered table of layers.
#pragma once

#include <functional>
#include <span>
#include <string_view>

#include "view/canvas.h"
#include "view/pathlines.h"
#include "view/results_overlay.h"

namespace ormel {

/// What the view keeps between two drawings.
struct ViewState {
  OverlaySettings overlay;
  /// Draws the base maps; empty while there are none.
  std::function<void(const MapCanvas&)> basemaps;
};

struct MapLayer {
  std::string_view name;
  std::string_view status;  ///< feedback while it is drawn; may be empty
  bool (*wanted)(const Ormel&, const ViewState&);
  void (*draw)(const MapCanvas&, ViewState&);
};

/// In the order of drawing: base maps, haze, elements, contours, pathlines, traced lines, results
/// overlay.
std::span<const MapLayer> MapLayers();

/// Paints all layers that are wanted on the vector layer's target, which is initialised.  `progress` hears
/// what is being drawn.
void DrawMap(const MapCanvas& canvas, ViewState& state,
             const std::function<void(std::string_view)>& progress = {});

/// A window that can be drawn: sides in their order; one without width or height, or that is no number, gives
/// way to the extents of the map, and these to -100 ... 100.
MapRect UsableWindow(const Ormel& ormel, MapRect window);

/// Share of the haze that covers the base maps, 0 to 1.
double HazeOpacity(const Ormel& ormel);

}  // namespace ormel
