// The selected element: who owns the vertex under the click, what the status bar says of it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/types.h"
#include "document/elements.h"
#include "document/kinds.h"

namespace ormel {

struct Ormel;

/// Selects what lies nearest to the last click, within the selection radius: selection state, highlight,
/// captions and state of `EDIT_CMDS`, feedback line.  Nothing in range clears the selection.
void ElemSelectElement(Ormel& ormel);

/// Selects the owner of a vertex, as a click on it does.
void SelectVertex(Ormel& ormel, Vid vid);

/// Selects these elements and no others, in any order; those that are gone are left out.  One alone is
/// selected as by a click, without a vertex of its own where it is a string.
void SelectItems(Ormel& ormel, std::vector<ElementId> ids);
/// What a click at a place finds; kNone for nothing.
ElementId ElementAt(Ormel& ormel, MapPoint at);

/// All that are selected, in the order of ElementId.
std::vector<ElementId> SelectedElements(const Ormel& ormel);
/// No element, and no command of "Edit" for one.
void ClearSelection(Ormel& ormel);

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
