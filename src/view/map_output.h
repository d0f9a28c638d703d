// The map as output: the layers that are shown, on any device, with what a printed map needs around it.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "core/types.h"
#include "view/vg_gdi.h"

namespace ormel {

struct ViewState;

/// Where the legend stands.
enum class LegendCorner {
  kAuto,  ///< where it hides least of the zones and wells
  kLowerRight,
  kUpperLeft,
  kLowerLeft,
  kUpperRight,
  kBeside,  ///< on a strip of its own at the map's right, where that leaves the map most of the width
};

/// What a sheet shows beside the map.
struct MapSheet {
  std::string title{};  ///< above the map; empty for none
  bool legend = false;
  LegendCorner legend_corner = LegendCorner::kAuto;
  /// Its upper left corner as shares of the map's width and height, 0 to 1; goes before the corner.
  std::optional<std::pair<double, double>> legend_at{};
  bool scale_bar = false;  ///< in map units
  bool north_arrow = false;
  std::optional<PageMargins> margins{};  ///< none: the map fills the device
  bool box = false;                      ///< a frame around the map
  std::optional<MapRect> window{};       ///< none: the present window
};

/// Draws the map of the open project, whatever the switches of the window show.  The device is cleared first.
/// Neither the present window nor its mapping changes.  False when there is no room to draw on.
bool DrawMapOutput(Ormel& ormel, ViewState& state, DrawingDevice& device, const MapSheet& output);

/// The longest of 1, 2, 5 times a power of ten that is not longer than `longest`.
double RoundLength(double longest);

}  // namespace ormel
