// What a right click on the map offers.
#pragma once

#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;
struct MenuItem;

struct ContextItem {
  const MenuItem* item = nullptr;  ///< given to Dispatch by its control and index
  std::string caption;
  bool line = false;  ///< a line stands above it
};

/// True where a right click has nothing else to do: elements are being selected, and no vertex of a string or
/// domain is within reach, whose information it opens.
bool OffersContextMenu(Ormel& ormel, MapPoint at);

/// What can be done at a place of the map.  An element there that is not selected is selected first, and no
/// other; without one there the selection stays.  Only what can be done now.
std::vector<ContextItem> ContextMenu(Ormel& ormel, MapPoint at);

}  // namespace ormel
