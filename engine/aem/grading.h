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

/// Parts in order from 0 to 1.  Never empty; a part has at most one tip.
/// `coarseness` 1 allows one division towards a corner, 2 and more none.
std::vector<Part> Divide(EndShape start, EndShape end, int coarseness);

}  // namespace aem::detail
