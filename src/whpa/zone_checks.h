// What a capture zone must satisfy before anybody sees it.
#pragma once

#include <string>
#include <vector>

#include "solver/zone_file.h"
#include "whpa/rings.h"

namespace ormel {

/// Largest error of a zone's water balance, and of its ground against that of its later times and of other
/// wells, in parts.
inline constexpr double kZoneError = 0.01;

/// A zone that was refused, and why: a sentence that says what to do.
struct RefusedZone {
  std::size_t well = 0, zone = 0;  ///< places in the list
  std::string reason;
};

/// Holds every zone against what is conserved: the outline is simple, counter-clockwise, holds its well and
/// its earlier times; its volume is what the well pumps less what streams and recharge give; it keeps off the
/// ground of other wells at the same time, except where their water is divided by depth.  A zone within
/// which a later one fails is not refused for it.
std::vector<RefusedZone> CheckZones(const std::vector<WellOutlines>& wells);

}  // namespace ormel
