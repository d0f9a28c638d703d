// How a segment is divided into pieces so that polynomials can follow the strength near its ends.
#pragma once

#include <vector>

namespace aem::detail {

/// What happens at an end of a segment.
struct EndShape {
  bool tip = false;   ///< free: the strength behaves like a root of the distance
  double turn = 0.0;  ///< change of direction to the neighbour [rad], 0 straight on
  /// Of a line at a place where heads vary like this power of the distance, 0 where none is known.  The last
  /// part there carries that law, power_law.h.
  double power = 0.0;
};

struct Part {
  double start = 0.0, end = 1.0;  ///< positions on the segment
  bool tip_at_start = false, tip_at_end = false;
};

/// How finely elements of a line are made: coefficients of a piece, of one with a free end and of one with a
/// jump, control points of a piece, the most divisions towards a corner and those beyond what its angle asks
/// for.  Each level has some three to ten times smaller errors than the one before.
struct Order {
  int sink_size, tip_size, jump_size, points, divisions, beyond;
  int halvings = 0;  ///< of every part, where the potential itself is small on one side and heads are not
};
inline constexpr int kFullOrder = 4;     ///< of small models
inline constexpr int kWallOrder = 6;     ///< of walls and of what meets them
inline constexpr int kHighestOrder = 8;  ///< where errors ask for it
inline constexpr Order kOrders[kHighestOrder + 1] = {
    {2, 3, 3, 5, 0, 0},  {3, 4, 4, 6, 0, 0},     {3, 4, 4, 6, 1, 0},
    {4, 5, 4, 7, 2, 0},  {4, 5, 4, 7, 99, 0},    {5, 6, 5, 8, 99, 1},
    {6, 6, 6, 9, 99, 2}, {6, 6, 6, 9, 99, 4, 1}, {6, 6, 6, 9, 99, 6, 2}};

/// Parts in order from 0 to 1.  Never empty; a part has at most one tip.  `smallest`: share of the segment
/// that no part falls below by divisions towards corners.
std::vector<Part> Divide(EndShape start, EndShape end, const Order& order, double smallest = 0.0);

}  // namespace aem::detail
