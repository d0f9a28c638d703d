// How a segment is divided into pieces so that polynomials can follow the strength near its ends.
#pragma once

#include <vector>

namespace aem::detail {

/// What happens at an end of a segment.
struct EndShape {
  bool tip = false;   ///< free: the strength behaves like a root of the distance
  double turn = 0.0;  ///< change of direction to the neighbour [rad], 0 straight on
};

struct Part {
  double start = 0.0, end = 1.0;  ///< positions on the segment
  bool tip_at_start = false, tip_at_end = false;
};

/// How finely elements of a line are made: coefficients of a piece, of one with a free end and of one with a
/// jump, control points of a piece, and the most divisions towards a corner.  Each level has some three to
/// ten times smaller errors than the one before.
struct Order {
  int sink_size, tip_size, jump_size, points, divisions;
};
inline constexpr int kFullOrder = 4;
inline constexpr Order kOrders[kFullOrder + 1] = {
    {2, 3, 3, 5, 0}, {3, 4, 4, 6, 0}, {3, 4, 4, 6, 1}, {4, 5, 4, 7, 2}, {4, 5, 4, 7, 99}};

/// Parts in order from 0 to 1.  Never empty; a part has at most one tip.
/// `most` divisions are made towards a corner.
std::vector<Part> Divide(EndShape start, EndShape end, int most);

}  // namespace aem::detail
