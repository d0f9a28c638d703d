// Reader of capture zone files (*.ZNS); docs/formats.md tells the lines.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/types.h"
#include "solver/file_damage.h"

namespace ormel {

/// The zone of a well for a time.  Lengths in computation units, volumes in their cubes.
struct ZoneOutline {
  double time = 0.0;    ///< [d]
  double area = 0.0;    ///< of the outline less its holes
  double pumped = 0.0;  ///< discharge times time
  /// Where that water came from: the aquifer's pores, recharge, streams and wells that give, beyond an edge;
  /// and what was not followed.
  double pores = 0.0, recharge = 0.0, surface = 0.0, edge = 0.0, left_out = 0.0;
  double shared = 0.0;                         ///< area of ground whose upper water goes elsewhere
  double balance = 0.0;                        ///< what the five miss of `pumped`, in parts of it
  std::vector<std::vector<ModelPoint>> rings;  ///< the outline, counter-clockwise, then holes, clockwise
};

struct WellOutlines {
  ModelPoint at;
  double discharge = 0.0;                         ///< [L3/d]
  std::string label;                              ///< of the deck
  std::vector<std::pair<std::string, int>> ends;  ///< why the paths that were followed ended, and how many
  std::vector<ZoneOutline> zones;                 ///< times ascending
  std::string refused;                            ///< a sentence: why there are none
};

/// All wells of the file, or its damage.  A file without its end mark is damaged.
ReadOutcome ReadZoneFile(const std::string& path, std::vector<WellOutlines>& wells);

}  // namespace ormel
