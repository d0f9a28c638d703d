// Contour lines of a grid.
#pragma once

#include <functional>
#include <vector>

#include "contour/surfer_grid.h"

namespace contour {

struct Point {
  double x = 0.0, y = 0.0;
};

/// One contour line; a closed one repeats its first point at the end.
using Polyline = std::vector<Point>;

/// The levels first, first + interval, ... up to `last` (with a millionth of the interval to spare, so that a
/// last level is not lost to rounding).  A level is always first + index * interval, never a running sum.
struct Levels {
  double first = 0.0, interval = 1.0, last = 0.0;
  double At(long long index) const { return first + static_cast<double>(index) * interval; }
};

/// More levels than this within the range of the grid are refused: no map can show them.
inline constexpr long long kMostLevels = 20000;

/// Traces every contour line and hands it to `line` with its level, levels rising.
///
/// Heads are linear along cell edges.  A node that equals the level counts as above it, so every line crosses
/// edges only, each edge once.  In a cell that is crossed four times the mean of its corners decides which
/// pair of corners is joined: the same rule for all levels, so lines never cross.  Cells with a blanked
/// corner are left out; lines end at them and at the border.  Time grows with nodes plus crossings (times a
/// logarithm). Throws ContourError when there are more than kMostLevels.
void TraceContours(const Grid& grid, const Levels& levels,
                   const std::function<void(double level, const Polyline& line)>& line);

}  // namespace contour
