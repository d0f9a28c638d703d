// The window's picture, painted again only from the first layer that has changed.
//
// Each layer keeps the list of what it drew.  A redraw records all layers anew, which is quick, and compares:
// what lies below the first difference is put back from a kept copy of the pixels, and only the rest is
// painted, which is what takes long.  Nothing needs to tell what a change of the project concerns, so that a
// picture can never be out of date.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "view/display_list.h"
#include "view/redraw.h"

namespace ormel {

class PictureCache {
 public:
  /// Paints on `device`, the vector layer's target, on which `ground` has the paper and the editor grid.
  /// `progress` hears what is being drawn.
  void Draw(const MapCanvas& canvas, ViewState& state, DrawingDevice& device, const DisplayList& ground,
            const std::function<void(std::string_view)>& progress);

  /// Layers that the last picture took over as pixels, of how many.
  std::size_t reused() const { return reused_; }
  std::size_t layers() const { return lists_.size(); }

 private:
  /// Records all layers; gives the place of the first that differs from before.
  std::size_t Record(const MapCanvas& canvas, ViewState& state, DrawingDevice& device,
                     const DisplayList& ground, const std::function<void(std::string_view)>& progress);

  std::vector<std::vector<DrawCall>> lists_;  ///< the ground, then each layer
  std::shared_ptr<const KeptPicture> kept_;   ///< pixels of the first `kept_layers_` lists
  std::size_t kept_layers_ = 0, reused_ = 0;
};

}  // namespace ormel
