// Refinement of a string, domain or line: more vertices on the edges that stand.
#pragma once

#include "core/types.h"

namespace ormel {

struct Ormel;

/// `EDIT_CMDS` 4: asks for the longest edge [map units] and refines the selected string.
void ElemRefine(Ormel& ormel);

/// Divides every edge longer than `longest` into equal parts that are not; the closing edge of a closed
/// polygon as well.  Gives the number of new vertices.  The shape stays as it is.
int ElemRefineString(Ormel& ormel, Element element, Pid pid, double longest);

/// More new vertices than this are not made by one command.
inline constexpr double kMostNewVertices = 5000.0;
/// The number of vertices that ElemRefineString would add.
double CountRefinement(Ormel& ormel, Element element, Pid pid, double longest);

}  // namespace ormel
