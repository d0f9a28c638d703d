// How a map shows results of an older model: pale, and with a band that says so.
#pragma once

#include "core/types.h"
#include "view/drawing_device.h"

namespace ormel {

struct Ormel;

/// The colour of a result: the style's own, or a pale grey of it while the results are of an older model.
Color ResultColor(const Ormel& ormel, Color color);

/// Along the top of the area, while the results are of an older model.
void DrawOutdatedBand(const Ormel& ormel, DrawingDevice& device, const DeviceRect& area);

}  // namespace ormel
