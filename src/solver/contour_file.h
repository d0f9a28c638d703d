// Reader of contour files (*.CTR).
//
//   LEVEL 101.5                a polyline begins; its head from column 6
//            x             y   a point: x in the 20 columns from 7, y in the 34 columns from 21
//
// The two ranges overlap.  A number is read up to the first character that cannot belong to it, blanks being
// passed over; y carries its sign, so that x always ends before it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/types.h"
#include "solver/file_damage.h"

namespace ormel {

/// Points that a polyline may have.
inline constexpr std::size_t kMaxContourPoints = 1000;

struct ContourLine {
  double level = 0.0;  ///< head [computation length]
  std::vector<ModelPoint> points;
};

/// Calls `polyline` for each polyline in the file's order, one with no points included.  The line is the
/// reader's own and is used again for the next.  At damage, what came before it has been delivered.
ReadOutcome ReadContourFile(const std::string& path, const std::function<void(const ContourLine&)>& polyline);

}  // namespace ormel
