// Which layers of the map are switched on, and which of them have something to offer.
//
// Only the state.  The names stand in core/layers.h, all that is known of a layer in the table of
// core/layers.cpp: this header is part of the controller, and does not change with a new layer.
#pragma once

#include <bitset>
#include <cstddef>

namespace ormel {

enum class Layer : int;

class LayerSwitches {
 public:
  /// As a program starts: each layer as the table tells.
  LayerSwitches();

  /// Switched on.  Whether it is drawn depends on the layer above it too: Shown() in core/layers.h.
  bool On(Layer layer) const { return on_.test(Place(layer)); }
  void Switch(Layer layer, bool on) { on_.set(Place(layer), on); }
  void Toggle(Layer layer) { on_.flip(Place(layer)); }

  /// The project has something of it, so that its switch can be used.
  bool Offered(Layer layer) const { return offered_.test(Place(layer)); }
  void Offer(Layer layer, bool offered) { offered_.set(Place(layer), offered); }

  friend bool operator==(const LayerSwitches&, const LayerSwitches&) = default;

 private:
  static constexpr std::size_t kMost = 64;
  static std::size_t Place(Layer layer) { return static_cast<std::size_t>(layer); }

  std::bitset<kMost> on_, offered_;
};

}  // namespace ormel
