// The commands of the menu "Simple WHPAs" and the entry of a stream boundary.
#pragma once

#include "core/types.h"

namespace ormel {

struct Ormel;

enum class WhpaCommand : int { kArbitrary = 0, kCalculated = 1, kMultiple = 2, kRerun = 3 };

/// The literal of `StreamWell` for a set of wells that share a boundary.
inline constexpr const char* kMultipleWells = "Multiple";

/// Shows the dialogs of the command, stores the rows, and runs or redraws.  With a stream boundary the map
/// waits for two clicks afterwards, and the second one runs.
void WHPA(Ormel& ormel, int Index);

/// Point 1 or 2 of the stream boundary, at the last click.  After point 2 the image wells are made and the
/// areas are run.
void ElemAddStreamBoundaryVertex(Ormel& ormel, int pointNumber);

/// Ends the entry of a boundary before its second point: the rows have none, and nothing is run.
void CancelStreamBoundary(Ormel& ormel);

/// Makes the image wells of the affected rows anew, after a boundary point was placed or moved.
void MakeStreamImages(Ormel& ormel);

}  // namespace ormel
