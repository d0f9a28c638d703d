// When results no longer match the model.
#pragma once

#include <vector>

#include "core/changes.h"

namespace ormel {

struct Ormel;
struct Fingerprint;

/// The model has changed.  Does nothing without a valid solution.  With `ask` the user may keep the solution:
/// then nothing changes at all.  Otherwise contours and pathlines leave the view, items that need results are
/// disabled, and with `redraw` the map is drawn anew.  No file of the old run is deleted.
void InvalidateSolution(Ormel& ormel, bool ask, bool redraw);

/// The running command has asked or decided by itself whether the solution stays.
void DecideSolution(Ormel& ormel);

/// Asks at the end of a command about what its rows spoil, by the roles of their fields (document/fields.h).
/// Not where the command has asked or decided by itself, as a dialog does that knows what was touched; a
/// string is asked about once, when it has been drawn.  One for each map.
class SolutionFollower {
 public:
  void CommandEnded(Ormel& ormel, const ChangeRecord& record);

 private:
  std::vector<std::vector<RowChange>> act_;  ///< commands of a string being drawn
};

/// The reverse: contours and pathlines that are valid come into view, and items that need results are
/// offered.
void ShowSolution(Ormel& ormel);

/// After the model has changed by an undo or redo; `before` is what it was.  A model that is again the one
/// that was solved has its solution again, with its contours and paths, as long as the run's files stand.
/// Another one spoils what is on view as an edit would, with the same question.
void MatchSolution(Ormel& ormel, const Fingerprint& before);

/// Contours or paths have changed while the solution stands: offers to compute the contours again.
void InvalidateContours(Ormel& ormel);

/// 0.004 of the diagonal of the present window [map units].
double ComputeDefaultStep(const Ormel& ormel);

}  // namespace ormel
