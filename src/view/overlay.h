// Temporary shapes above the picture: highlights, new elements, rubber lines.  The window paints them on top,
// so that taking one away never damages the picture.
#pragma once

#include <map>
#include <tuple>

#include "core/types.h"
#include "view/display_list.h"

namespace ormel {

class Overlay {
 public:
  /// Names a shape.  Shapes are painted in the order of their names, highlights above new elements, rubber
  /// lines on top.
  enum class Group { kDrawn, kSelected, kRubber };
  struct Key {
    Group group = Group::kDrawn;
    Element element = Element::kNone;
    std::int64_t id = -1;  ///< of the vertex or polygon
    MapPoint at{};         ///< of a shape without identity
    auto Order() const { return std::tuple(group, element, id, at.x, at.y); }
    friend bool operator<(const Key& a, const Key& b) { return a.Order() < b.Order(); }
  };

  /// The shape's list, emptied: draw it anew.
  DisplayList& Start(const Key& key) {
    DisplayList& list = shapes_[key];
    list.Reset();
    return list;
  }
  /// False when there was no such shape.
  bool Remove(const Key& key) { return shapes_.erase(key) > 0; }
  void RemoveGroup(Group group) {
    std::erase_if(shapes_, [&](const auto& entry) { return entry.first.group == group; });
  }
  bool Holds(const Key& key) const { return shapes_.count(key) != 0; }
  std::size_t size() const { return shapes_.size(); }

  void Paint(DrawingDevice& device) const {
    for (const auto& [key, list] : shapes_) list.Replay(device);
  }

 private:
  std::map<Key, DisplayList> shapes_;
};

}  // namespace ormel
