// Cutting lines and areas to a rectangle, in device positions before they are rounded.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "view/vg_gdi.h"

namespace ormel::clip {

struct Box {
  double left, top, right, bottom;
  bool Holds(VgGdi::Spot p) const { return p.x >= left && p.x <= right && p.y >= top && p.y <= bottom; }
};

/// The part of the segment inside the box (Liang and Barsky, 1984), or nothing.
std::optional<std::pair<VgGdi::Spot, VgGdi::Spot>> Segment(const Box& box, VgGdi::Spot a, VgGdi::Spot b);

/// The part of a closed area inside the box, edge by edge (Sutherland and Hodgman, 1974).
std::vector<VgGdi::Spot> Area(const Box& box, std::vector<VgGdi::Spot> area);

}  // namespace ormel::clip
