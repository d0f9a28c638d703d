// The selected element: who owns the vertex under the click, what the status bar says of it.
#pragma once

#include <optional>
#include <string>

#include "core/types.h"
#include "document/kinds.h"

namespace ormel {

struct Ormel;

/// Selects what lies nearest to the last click, within the selection radius: selection state, highlight,
/// captions and state of `EDIT_CMDS`, feedback line.  Nothing in range clears the selection.
void ElemSelectElement(Ormel& ormel);

/// Selects the owner of a vertex, as a click on it does.
void SelectVertex(Ormel& ormel, Vid vid);

/// The feedback line of the selected element.
std::string DescribeSelection(Ormel& ormel);
/// Of a well, without and with its results.
std::string DescribeWell(Ormel& ormel, Vid vid);

/// The vertices on both sides of a vertex of a string or domain, for the rubber edges of a move.  A closed
/// polygon has both at every vertex.
struct Neighbours {
  std::optional<MapPoint> before, after;
};
Neighbours NeighboursOf(Ormel& ormel, Element element, Pid pid, Vid vid);

/// A string, domain or line.
bool IsPolygonElement(Element element);

}  // namespace ormel
