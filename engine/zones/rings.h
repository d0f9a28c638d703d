// The outline of the ground that a fan of strips covers.
#pragma once

#include <string>
#include <vector>

#include "zones/fan.h"

namespace zones {

struct Rings {
  std::vector<Complex> outer;               ///< counter-clockwise
  std::vector<std::vector<Complex>> holes;  ///< clockwise
  double area = 0.0;                        ///< of the outer ring less the holes
  std::string failure;                      ///< a sentence; empty when all is well
};

/// The ground of `fan` after the time `times[which]`.  Gaps between strips that are too narrow to be seen are
/// closed; vertices that say nothing are left out.  `wells`: places whose ground is never closed over.
Rings RingsOf(const Fan& fan, const Source& source, double time, double tolerance,
              const std::vector<Complex>& wells);

}  // namespace zones
