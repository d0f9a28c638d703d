// What can be exported, as points in map coordinates with what is known of them: one way to all results and
// elements, whatever the file they go to.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>

#include "core/types.h"

namespace ormel {

struct Ormel;

enum class Source {
  kContours,
  kPaths,
  kTimeTics,
  kElevationTics,
  kZones,
  kWells,
  kTestPoints,
  kParticles,
  kDomains,
  kLinesinks,
  kBarriers
};

struct Figure {
  std::span<const MapPoint> points;
  bool closed = false;  ///< the first point is not repeated at the end
  std::string label;    ///< of an element or of the well that a path comes from
  double value = 0.0;   ///< head of a contour, time [d] or elevation of a tic, elevation of a particle
  bool up = false;      ///< of an elevation tic: its path rises there
  bool head_specified = false, drain = false;
};

/// Distances of the marks along paths; none where not positive.
struct TicSpacings {
  double days = 0.0, elevation = 0.0;
};
/// Those of the map.
TicSpacings MapTicSpacings(const Ormel& ormel);

/// Is there anything of this source?  Results count while a solution is on view and their file is there.
bool HasAny(Ormel& ormel, Source source);
/// Points that ReadFigures will give, for progress.
std::size_t PointsToCome(Ormel& ormel, Source source);

/// Calls `figure` for each, in the order of the file or by rising identity.  The figure is the reader's own.
/// Throws FileError when a file of results is missing or damaged, and for more marks than anyone can use.
void ReadFigures(Ormel& ormel, Source source, const TicSpacings& spacings,
                 const std::function<void(const Figure&)>& figure);

}  // namespace ormel
