// The model's extent, for tolerances.  Validate itself is declared in solution.h.
#pragma once

#include "aem/geometry.h"
#include "aem/model.h"
#include "aem/solution.h"

namespace aem::detail {

/// Box around all elements and the layout window; the reference point is left out.
Box Extent(const Model& model);

}  // namespace aem::detail
