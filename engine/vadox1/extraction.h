// The extraction file (.XTR): test points, what each element does, flow across inspection lines.
#pragma once

#include <string>
#include <vector>

#include "aem/solution.h"
#include "vadox1/deck.h"

namespace vadox1 {

/// The whole text.  Test points and inspection lines that could not be answered in full are told in
/// `findings`.
///
/// A test point's elevation is where its velocity is meant.  It is kept within the saturated part of the
/// aquifer: above, the water table (or the aquifer's top) is taken and reported in its place, below, the
/// base; without an elevation, the top.  Vertical velocity: continuity under the Dupuit approximation (Strack
/// 1984, Water Resour. Res. 20(12)): qz = -s div Q + s q.grad(b), s the relative height, b the saturated
/// thickness.
std::string ExtractionText(const aem::Solution& solution, const ExtractCommand& command,
                           std::vector<aem::Finding>& findings);

}  // namespace vadox1
