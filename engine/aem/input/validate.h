// The model's extent, for tolerances, and its rings without repeated vertices.  Validate itself is declared
// in solution.h.
#pragma once

#include <vector>

#include "aem/kernel/geometry.h"
#include "aem/model.h"
#include "aem/solution.h"

namespace aem::detail {

/// Box around all elements and the layout window; the reference point is left out.
Box Extent(const Model& model);

/// Vertices of a ring, those nearer to the one before than the tolerance left out, the closing one too.
std::vector<Complex> CleanRing(const std::vector<LabelledPoint>& points, double tolerance);
/// False for what is no ring: fewer than three vertices, or all on one line.  Pre: cleaned.
bool EnclosesArea(const std::vector<Complex>& ring, double tolerance);

/// Coordinates as a message tells them.
std::string PlaceText(Complex at);

}  // namespace aem::detail
