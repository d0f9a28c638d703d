// The layers of the map as a panel shows them: switches, and a symbol of each.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/layers.h"
#include "view/styles.h"

namespace ormel {

struct Ormel;

struct ListedLayer {
  Layer layer;
  int depth = 0;  ///< how many layers it belongs to
  std::string caption;
  std::optional<StyleId> symbol;
  bool on = false;
  bool offered = false;  ///< the project has something of it, and it can be switched now
  std::string why;       ///< it rests
};

/// Each layer behind the one that it belongs to.
std::vector<ListedLayer> LayerList(const Ormel& ormel);

/// As the layer's menu item does it, where it has one.
void SwitchLayer(Ormel& ormel, Layer layer);

}  // namespace ormel
