// The kinds of elements, one row each: everything that is the same form for all of them follows from it.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "core/types.h"
#include "document/fields.h"

namespace ormel {

struct Ormel;

enum class Shape : char {
  kPoint,   ///< one vertex, by `VID`
  kString,  ///< a polygon's vertices in their order, by `PID`
  kRing,    ///< the same, closed
  kFree,    ///< a place in its own row
};

/// Captions of `EDIT_CMDS` 1 to 3 while an element of the kind is selected.
struct EditCaptions {
  std::string_view properties, move, remove;
};

struct ElementKind {
  Element element = Element::kNone;
  std::string_view table;  ///< of its rows; "" for the uniform flow, which lies in `Model`
  std::string_view key;    ///< "VID", "PID", or "" where the row's own number is its identity
  Shape shape = Shape::kPoint;
  std::size_t fewest = 1;  ///< points of a complete element
  std::string_view name, plural;
  Spoils place = Spoils::kNothing;  ///< what is not true any more when it is moved, added or deleted
  EditCaptions captions;
  std::string_view moving;    ///< activity while one is moved
  bool unique_label = false;  ///< no two elements of the kind have the same label

  /// The field that tells its elements apart.
  std::string KeyField() const { return std::string(key.empty() ? "rowid" : key); }
  bool Polygon() const { return shape == Shape::kString || shape == Shape::kRing; }
};

/// In the order in which they claim a vertex as theirs.
std::span<const ElementKind> ElementKinds();
/// nullptr for a code that is no element.
const ElementKind* FindKind(Element element);
const ElementKind* FindKind(std::string_view table);

/// Who owns a vertex, and under which polygon; kNone for a vertex without an owner.
struct Owner {
  Element element = Element::kNone;
  Vid vid = -1;
  Pid pid = kSinglePoint;
};
Owner OwnerOf(Ormel& ormel, Vid vid);
/// The element that owns the vertices of this `PID`, by vertex for single points.
Element OwnerOf(Ormel& ormel, Vid vid, Pid pid);

}  // namespace ormel
