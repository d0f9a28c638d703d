// Numbers that tell whether a solution belongs to the model as it stands.
#pragma once

#include "core/solution_state.h"

namespace ormel {

struct Ormel;

/// The project as it is.  `solution` changes with what a solution depends on: elements that reach the solver,
/// their places, the aquifer and the uniform flow; `contours`, `paths` and `rerun` with the settings of
/// contours, with those of tracing and the starting points, and with observations and other settings of a
/// run. Windows, colours, margins, results and image wells, which follow their sources, do not count.
Fingerprint FingerprintOf(Ormel& ormel);

}  // namespace ormel
