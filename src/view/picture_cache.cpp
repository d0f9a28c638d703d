#include "view/picture_cache.h"

#include <utility>

#include "view/label_placer.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

/// Keeps what is drawn, and measures text as the device does that it will be painted on.
class Recorder final : public DisplayList {
 public:
  explicit Recorder(const DrawingDevice& device) : device_(device) { Shape(device); }
  int TextWidth(std::string_view text, const TextStyle& style) const override {
    return device_.TextWidth(text, style);
  }

 private:
  const DrawingDevice& device_;
};

}  // namespace

std::size_t PictureCache::Record(const MapCanvas& canvas, ViewState& state, DrawingDevice& device,
                                 const DisplayList& ground,
                                 const std::function<void(std::string_view)>& progress) {
  LabelPlacer labels;
  const MapCanvas map{canvas.ormel, canvas.vg, &labels, canvas.lifted};
  Recorder recorder(device);
  const VgGdi::Redirect redirect(canvas.vg, recorder);
  lists_.resize(MapLayers().size() + 1);
  std::size_t first = lists_.size(), at = 0;
  const auto take = [&](std::vector<DrawCall> calls) {
    if (first > at && calls != lists_[at]) first = at;
    lists_[at++] = std::move(calls);
  };
  take(ground.calls());
  for (const MapLayer& layer : MapLayers()) {
    if (IsDrawn(layer, canvas.ormel, state)) {
      if (!layer.status.empty()) progress(layer.status);
      recorder.BeginLayer(layer.name);
      layer.draw(map, state);
    }
    take(recorder.TakeCalls());
  }
  return first;
}

void PictureCache::Draw(const MapCanvas& canvas, ViewState& state, DrawingDevice& device,
                        const DisplayList& ground, const std::function<void(std::string_view)>& progress) {
  std::size_t changed = 0;
  try {
    changed = Record(canvas, state, device, ground, progress);
  } catch (...) {  // a list may be half of the new picture: nothing of the old one counts
    lists_.clear();
    kept_.reset();
    throw;
  }
  const bool usable = kept_ != nullptr && kept_layers_ <= changed && device.Put(*kept_);
  std::size_t at = usable ? kept_layers_ : 0;
  reused_ = at;
  if (!usable) kept_.reset();
  for (; at < lists_.size(); ++at) {
    // What has changed is likely to change again, as while an element is dragged about.
    if (at == changed && at > 0 && (kept_ == nullptr || kept_layers_ != at)) {
      kept_ = device.Keep();
      kept_layers_ = at;
    }
    Replay(lists_[at], device);
  }
}

}  // namespace ormel
