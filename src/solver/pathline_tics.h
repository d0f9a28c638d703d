// Marks of equal time and equal elevation along paths, in map coordinates.
#pragma once

#include <cstdint>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;
struct PathSet;

/// A mark on a path.
struct Tic {
  MapPoint at;
  std::int64_t multiple = 0;  ///< of the spacing
  bool up = false;            ///< of an elevation: the path rises there along the points of its file
};

/// Marks at equal times, for the steps that end inside the window, or for all when it is null.  None when the
/// spacing is not positive.  `most`: no more marks than this are made.
std::vector<Tic> TimeTics(const PathSet& set, double spacing, const MapRect* window, std::size_t most);
/// Marks at whole multiples of the spacing in elevation, in the direction of the path.
std::vector<Tic> ElevationTics(const PathSet& set, double spacing, const MapRect* window, std::size_t most);

/// Marks of one kind on one picture or in one file; more could not be told apart.
inline constexpr std::size_t kMostTics = 200'000;

/// The scratch files "TICMARKST.TIC" and "TICMARKSZ.TIC" of the model's paths with the marks that are
/// switched on; empty without a valid solution.  To be called when results have been read and when the marks
/// change. A file that cannot be written is told in the third panel.
void WriteTicFiles(Ormel& ormel);

}  // namespace ormel
