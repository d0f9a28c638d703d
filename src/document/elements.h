// Elements by their identity: which there are, where they lie, and their end.
#pragma once

#include <compare>
#include <cstdint>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// An element by what names it in the project: the `VID` of a point, the `PID` of a string, domain or line,
/// the number of a label's row.
struct ElementId {
  Element element = Element::kNone;
  std::int64_t key = -1;
  auto operator<=>(const ElementId&) const = default;
};

/// An identity as the procedures of one element take it: the vertex of a point or the row of a label with
/// kSinglePoint, or no vertex and the polygon.
struct ElementPlace {
  Vid vid = -1;
  Pid pid = kSinglePoint;
};
ElementPlace PlaceOf(const ElementId& id);
/// The element that owns a vertex; a label by its row.
ElementId IdOf(Element element, Vid vid, Pid pid);

/// Kinds that can be selected with others, and copied: all but the uniform flow, of which there is one, and
/// the ends of a stream boundary, which go with their area.
bool MayBeOneOfSeveral(Element element);

bool Exists(Ormel& ormel, const ElementId& id);
/// Of one kind, by rising identity.
std::vector<ElementId> ElementsOf(Ormel& ormel, Element element);
/// Of the kinds that can be selected with others, those whose points all lie within [map units].
std::vector<ElementId> ElementsWithin(Ormel& ormel, const Extents& box);
std::vector<ElementId> AllElements(Ormel& ormel);

/// In the order of the string; none for a label.
std::vector<Vid> VertexIdsOf(Ormel& ormel, const ElementId& id);
/// Places in the order of the string; of a label its one place.
std::vector<MapPoint> PointsOf(Ormel& ormel, const ElementId& id);
/// An image well: it follows its source.
bool IsImageWell(Ormel& ormel, const ElementId& id);

/// Its row, its vertices and its polygon.
void RemoveElement(Ormel& ormel, const ElementId& id);

}  // namespace ormel
