// The legend: which layers a map shows, and a sample of each.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/types.h"
#include "view/canvas.h"
#include "view/styles.h"

namespace ormel {

struct ViewState;

struct LegendEntry {
  std::string text;
  /// Draws the sample between two places on one level.
  std::function<void(VgGdi& vg, MapPoint left, MapPoint right)> sample;
};

/// The sample of a style across a small picture of its own.
void DrawSample(Ormel& ormel, DrawingDevice& device, StyleId id);

/// Only what is switched on and there to be seen, in the order of drawing.
std::vector<LegendEntry> LegendOf(Ormel& ormel, const ViewState& state);

}  // namespace ormel
