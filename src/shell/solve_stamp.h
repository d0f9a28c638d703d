// How a finished solve is recognised after the project has been closed.
//
// The file <stem>.RUN beside the solver's files names the model that was solved by a fingerprint of
// everything that reaches the solver, the extents that the solver's coordinates are relative to, and each
// file of the run by size and content.  It is one of the intermediate files: whoever deletes it has to solve
// again.
#pragma once

#include <cstdint>
#include <string>

namespace ormel {

struct Ormel;

/// A number that changes with the model: elements, vertices, aquifer, solver, contour and tracing settings,
/// observation objects; not with windows, colours, margins or results.
std::uint64_t ModelFingerprint(Ormel& ormel);

/// Records the solve that has just ended.  Throws FileError.
void WriteSolveStamp(Ormel& ormel);

/// Makes the recorded solve the valid solution of the open project: flags, extents and layers.  Gives an
/// empty text, or the reason why there is no such solution; the state is then as it was.
std::string RestoreSolve(Ormel& ormel);

/// The same question without a change of state.
std::string WhyNotSolved(Ormel& ormel);

}  // namespace ormel
