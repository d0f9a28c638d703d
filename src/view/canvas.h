// What every drawing routine gets.
#pragma once

#include <algorithm>
#include <vector>

#include "core/types.h"
#include "document/elements.h"

namespace ormel {

struct Ormel;
class VgGdi;
class LabelPlacer;

struct MapCanvas {
  Ormel& ormel;
  VgGdi& vg;
  LabelPlacer* labels = nullptr;  ///< keeps labels apart; null where one element is drawn by itself
  /// Elements that are being dragged, in the order of ElementId: the picture is without them.
  const std::vector<ElementId>* lifted = nullptr;

  bool IsLifted(Element element, std::int64_t key) const {
    return lifted != nullptr && std::binary_search(lifted->begin(), lifted->end(), ElementId{element, key});
  }
};

/// The paper of the map; erasing paints in it.
inline constexpr Color kMapBackground = QBColor(15);
inline constexpr Color kSelectedColor = QBColor(12);

/// The colour of an element by its mode, `normal` being its kind's own.
constexpr Color ColorOfMode(DrawMode mode, Color normal) {
  if (mode == DrawMode::kSelected) return kSelectedColor;
  if (mode == DrawMode::kErase) return kMapBackground;
  return normal;
}

}  // namespace ormel
