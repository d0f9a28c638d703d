// The zones of protection: drawn by hand, or outlined for a well and a time of travel.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/types.h"
#include "view/canvas.h"

namespace ormel {

struct Ormel;

/// Whose zone it is, and how long the water travels.  A zone that was drawn by hand has no time.
struct ZoneTag {
  std::string well;
  double years = 0.0;
  bool outlined() const { return years > 0.0; }
};
/// From a label of the form "<well> <n> years" or "<well> 1 year": for rings of which the table `Zones` tells
/// nothing.
ZoneTag ZoneTagOf(std::string_view label);

struct Zone {
  Pid pid;
  bool closed;
  ZoneTag tag;
  std::vector<MapPoint> points;
  bool hole = false;  ///< in the zone of the same well and time
};

/// The zones of the project with what tells them apart.
struct Zones {
  std::vector<Zone> all;           ///< longest time first, so that the shorter ones lie above; by hand last
  std::vector<double> times;       ///< [years], shortest first, each once
  std::vector<std::string> wells;  ///< that have outlined zones, by name
  /// Place of the zone's time and well in the lists above.
  std::size_t TimeOf(const Zone& zone) const;
  std::size_t WellOf(const Zone& zone) const;
};
Zones ReadZones(Ormel& ormel);

/// An outlined zone has a light area in the colour of its well and a line in that of its time.
void ModelDrawAllCapzones(const MapCanvas& canvas);
void ModelDrawCapzone(const MapCanvas& canvas, Pid pid, DrawMode mode, bool vertices);

}  // namespace ormel
