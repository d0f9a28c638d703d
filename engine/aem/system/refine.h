// Division of line elements near wells, where heads change faster than a long piece can follow.
#pragma once

#include <vector>

#include "aem/kernel/geometry.h"
#include "aem/kernel/grading.h"

namespace aem::detail {

struct System;

/// Halves parts until none is longer than twice its distance to the nearest well, down to a few radii.
std::vector<Part> NearWells(const System& system, Complex from, Complex to, const std::vector<Part>& parts);

/// Cuts parts at the given positions, e.g. where another element crosses.
std::vector<Part> CutAt(const std::vector<Part>& parts, const std::vector<double>& positions);

}  // namespace aem::detail
