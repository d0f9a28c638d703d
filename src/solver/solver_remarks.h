// What the solver said of a model that it solved all the same.
#pragma once

#include <string>
#include <vector>

namespace ormel {

struct Ormel;

/// The lines of the error log of the last run, each element by the user's label beside its deck label:
/// "Mill brook (LS_000012): ...".  At most `most` of them, and then one that counts the others.
std::vector<std::string> SolverRemarks(Ormel& ormel, std::size_t most = 50);

}  // namespace ormel
