// Groups of BBM maps: selected on the map, hidden, shown and removed together.
#pragma once

#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// The mode in which a click selects the maps that hold it.
void SelectBBMGroup(Ormel& ormel);
/// The maps that hold the last click become the group, and its dialog opens.
void BBMSelect(Ormel& ormel);

/// An outline to be drawn while the mode lasts.
struct BbmOutline {
  Extents box;
  bool in_group = false;
};
std::vector<BbmOutline> BbmOutlines(Ormel& ormel);

}  // namespace ormel
