// When results no longer match the model.
#pragma once

namespace ormel {

struct Ormel;

/// The model has changed.  Does nothing without a valid solution.  With `ask` the user may keep the solution:
/// then nothing changes at all.  Otherwise contours and pathlines leave the view, items that need results are
/// disabled, and with `redraw` the map is drawn anew.  No file of the old run is deleted.
void InvalidateSolution(Ormel& ormel, bool ask, bool redraw);

/// Contours or paths have changed while the solution stands: offers to compute the contours again.
void InvalidateContours(Ormel& ormel);

/// 0.004 of the diagonal of the present window [map units].
double ComputeDefaultStep(const Ormel& ormel);

}  // namespace ormel
