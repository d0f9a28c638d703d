// Keeps labels apart: the places on a picture that are taken.
#pragma once

#include <algorithm>
#include <vector>

#include "view/vg_gdi.h"

namespace ormel {

class LabelPlacer {
 public:
  void Reserve(const DeviceRect& rect) { taken_.push_back(rect); }
  /// Takes the place when it is free.
  bool Take(const DeviceRect& rect) {
    const auto meets = [&rect](const DeviceRect& other) {
      return rect.left < other.right && rect.right > other.left && rect.top < other.bottom &&
             rect.bottom > other.top;
    };
    if (std::any_of(taken_.begin(), taken_.end(), meets)) return false;
    Reserve(rect);
    return true;
  }
  std::size_t size() const { return taken_.size(); }

 private:
  std::vector<DeviceRect> taken_;
};

/// True for a place in the drawing area, which always has a device position.
inline bool InView(const VgGdi& vg, MapPoint at) {
  const MapRect world = vg.World();
  return at.x >= world.x1 && at.x <= world.x2 && at.y >= world.y2 && at.y <= world.y1;
}

/// Draws the text when its place is free; false when it was taken or out of view.  Without a placer it is
/// drawn in any case.
inline bool PlaceText(VgGdi& vg, LabelPlacer* placer, std::string_view text, MapPoint at, const VgText& how) {
  if (placer != nullptr) {
    const auto box = vg.TextBox(text, at, how);
    if (!box || !placer->Take(*box)) return false;
  }
  vg.vgGDItext(text, at, how);
  return true;
}

}  // namespace ormel
