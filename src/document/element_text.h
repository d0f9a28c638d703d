// Elements as text, for a clipboard: what was copied can be read, kept in a file, and pasted into another
// project.
#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "document/elements.h"
#include "document/kinds.h"
#include "store/value.h"

namespace ormel {

struct Ormel;

struct CopiedField {
  std::string name;
  Value value;
};

/// An element without its identity.
struct CopiedElement {
  const ElementKind* kind = nullptr;
  bool closed = false;  ///< `Polygons.Closed`
  std::vector<CopiedField> fields{};
  std::vector<MapPoint> points{};  ///< [map units of `CopiedElements`]

  std::string Label() const;
  void SetLabel(const std::string& label);
};

struct CopiedElements {
  bool basemap_meters = true, compute_meters = true;  ///< units of the places, and of all other lengths
  std::vector<CopiedElement> elements{};
};

/// A text that cannot be pasted; what() says where and why.
class ElementTextError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Lines of fields between tabs: a heading, the units, then each element with its fields and points.  Without
/// the fields that only results fill.
std::string ElementsAsText(Ormel& ormel, std::span<const ElementId> ids);
/// True when the text begins as one of these does.
bool IsElementText(std::string_view text);
/// Throws ElementTextError with the number of the line.
CopiedElements ReadElementText(std::string_view text);
/// Adds the element, without a question.  Throws StoreError.
ElementId AddElement(Ormel& ormel, const CopiedElement& element);

}  // namespace ormel
