// Everything that lies at a place of the map, the nearest first.
#pragma once

#include <vector>

#include "document/elements.h"

namespace ormel {

/// Points, labels and lines within reach, lines along their whole length, by rising distance; then domains
/// and zones that the place lies inside of, the smallest first.  `reach_squared` [map units squared].  Reads
/// all vertices: for a key, not for each move of the pointer.
std::vector<ElementId> ElementsNear(Ormel& ormel, MapPoint at, double reach_squared);

}  // namespace ormel
