// The solve.
#pragma once

#include <string_view>

#include "core/solver_port.h"

namespace ormel {

struct Ormel;

/// Solves the model, or renews extraction, grid and pathlines from the saved solution.
///
/// Decides which of the two, writes the deck, runs the solver and CONTOUR.EXE, loads the results, redraws and
/// offers the logs.  A run that the user cancels, or that cannot start, leaves results, files and solution
/// flags as they were.  A run that fails in the solver leaves no valid solution.  On success
/// `solution.ValidSolution` is true.
void ModelRunVadox(Ormel& ormel, const SolveRequest& request);

/// The command "Solution Time": asks for the time of transient wells [d] and renews the extraction.
void SolutionTime(Ormel& ormel);

/// Opens a file of the last run in the viewer; `index` 0 to 7 as in the menu "View Model Run Files".
void RUN_FILES(Ormel& ormel, int index);

/// CONTOUR.EXE on the grid that stands.
void RunContour(Ormel& ormel);

/// A failure of the store or of a file as a box, with its number; 91 has no icon, 3051 tells of read-only
/// files.
void OrmelErrorAnalysis(Ormel& ormel, std::string_view text, int number);

}  // namespace ormel
