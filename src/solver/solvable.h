// What can be said of a model before the solver is asked.
#pragma once

namespace ormel {

struct Ormel;

/// True when the model has nothing to solve, or a ring that crosses itself; the user has been told.
bool TellUnsolvable(Ormel& ormel);

}  // namespace ormel
