// Reader of grid files (*.GRD), the text form that begins with "DSAA":
//
//   DSAA
//   columns rows
//   x_min x_max
//   y_min y_max
//   z_min z_max
//   values, row by row from y_min up, each row from x_min on; line ends anywhere between two values
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>

#include "solver/file_damage.h"

namespace ormel {

/// From this value on a node is blank: nothing is computed there.
inline constexpr double kGridBlank = 1.70141e+38;

struct GridHeader {
  std::size_t columns = 0, rows = 0;
  double x_min = 0.0, x_max = 0.0, y_min = 0.0, y_max = 0.0;  ///< model coordinates
  double z_min = 0.0, z_max = 0.0;                            ///< heads
};

/// Nodes that a grid may have along one side.
inline constexpr std::size_t kMaxGridSide = 100000;

/// Calls `header` once, then `row` with its number from 0 and its values, for each row.  A file with fewer or
/// more values than its header says is damaged.
ReadOutcome ReadGridFile(const std::string& path, const std::function<void(const GridHeader&)>& header,
                         const std::function<void(std::size_t, std::span<const double>)>& row);

}  // namespace ormel
