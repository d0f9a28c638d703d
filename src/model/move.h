// Moving the selected element or vertex.
#pragma once

#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// `EDIT_CMDS` 2: the next press on the map starts the move.
void ElemBeginMove(Ormel& ormel);
/// The release of the button, pressed at `from`: several selected elements go as far, else the selected
/// vertex or label goes to `to`, corners that other domains share with it go along, and the mode ends.
void ElemEndMove(Ormel& ormel, MapPoint from, MapPoint to);
/// Leaves the mode without a move.
void ElemCancelMove(Ormel& ormel);

/// Writes the new place of the selected vertex or label and what follows from it for its kind.
void ElemMoveVertex(Ormel& ormel, MapPoint to);

/// The note that follows the move of a flux inspection line.
void TellFluxLineMoved(Ormel& ormel);

/// The corners of other domains that lie on a vertex: within the vertex tolerance in both directions.
std::vector<Vid> SharedCorners(Ormel& ormel, Vid vid);

}  // namespace ormel
