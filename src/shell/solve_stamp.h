// How a finished solve is recognised after the project has been closed.
//
// The file <stem>.RUN beside the solver's files names the model that was solved by fingerprints of
// everything that reaches the solver, the extents that the solver's coordinates are relative to, and each
// file of the run by size and content.  It is one of the intermediate files: whoever deletes it has to solve
// again.
#pragma once

#include <string>

namespace ormel {

struct Ormel;

/// Records the solve that has just ended.  Throws FileError.
void WriteSolveStamp(Ormel& ormel);

/// Makes the recorded solve the valid solution of the open project: flags, extents and layers.  Gives an
/// empty text, or the reason why there is no such solution; the state is then as it was.
std::string RestoreSolve(Ormel& ormel);

/// The same question without a change of state.
std::string WhyNotSolved(Ormel& ormel);

}  // namespace ormel
