// The zones of protection: drawn by hand, or outlined for a well and a time of travel.
#pragma once

#include <string>
#include <vector>

#include "core/types.h"
#include "document/capture_zones.h"
#include "view/canvas.h"

namespace ormel {

struct Ormel;

/// The zones of the project with what tells them apart.
struct Zones {
  std::vector<CaptureZone> all;    ///< longest time first, so that the shorter ones lie above; by hand last
  std::vector<double> times;       ///< [years], shortest first, each once
  std::vector<std::string> wells;  ///< that have outlined zones, by name
  /// Place of the zone's time and well in the lists above.
  std::size_t TimeOf(const CaptureZone& zone) const;
  std::size_t WellOf(const CaptureZone& zone) const;
};
Zones ReadZones(Ormel& ormel);

/// An outlined zone has a light area in the colour of its well and a line in that of its time.
void ModelDrawAllCapzones(const MapCanvas& canvas);
void ModelDrawCapzone(const MapCanvas& canvas, Pid pid, DrawMode mode, bool vertices);

}  // namespace ormel
