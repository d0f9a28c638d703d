// Numbers that tell whether a solution belongs to the model as it stands.
#pragma once

#include <cstdint>

#include "core/solution_state.h"

namespace ormel {

struct Ormel;

/// The project as it is: the fields of document/fields.h that spoil a solution, its contours or its paths,
/// and the places of the elements by their kinds.  Windows, colours, margins and results do not count, nor do
/// the numbers that order the vertices of a string, only their order.
Fingerprint FingerprintOf(Ormel& ormel);

}  // namespace ormel
