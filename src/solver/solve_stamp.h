// How a finished solve is recognised after the project has been closed.
//
// The file <stem>.RUN beside the solver's files names the project, the run, the model that was solved and the
// model and settings that its results were made with, each by a fingerprint, the extents that the solver's
// coordinates are relative to, and each file of the run by size and content; a sum of all that ends it.  It
// is one of the intermediate files: whoever deletes it has to solve again.
#pragma once

#include <cstdint>
#include <string>

namespace ormel {

struct Ormel;

/// Records the run that has just ended: `solution.solved` and the files as they lie there.  Throws FileError.
void WriteSolveStamp(Ormel& ormel);

/// Makes the recorded solve the valid solution of the open project: flags, extents and layers.  A solution of
/// an older model that was reloaded with the project as it is is restored as such (`OfOlderModel`).  Gives an
/// empty text, or the reason why there is no such solution; the state is then as it was.
std::string RestoreSolve(Ormel& ormel);

/// The same question without a change of state.  `older`, where given, becomes true for results of an older
/// model.
std::string WhyNotSolved(Ormel& ormel, bool* older = nullptr);

/// Fingerprint of the model that the saved solution `<stem>.SOL` was solved from; 0 when no stamp tells.
std::uint64_t ModelOfSavedSolution(Ormel& ormel);

/// The name of another project that the files of this stem belong to and that stands beside them or beside
/// this one; empty when there is none.
std::string OtherOwnerOfStem(Ormel& ormel);

/// Compares what was solved with the model as it stands (`OfOlderModel`) and tells it in the third panel:
/// after changes that are taken back.
void JudgeSolution(Ormel& ormel);

}  // namespace ormel
