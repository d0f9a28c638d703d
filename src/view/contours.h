// Contours of the head with their labels.
#pragma once

#include "core/types.h"
#include "view/canvas.h"

namespace ormel {

class ResultFiles;

/// Draws the contours of the model in blue, if the layer is on, contours are asked for and those that stand
/// belong to the solution; and in red those of the wellhead protection areas while these are shown.  Each
/// polyline gets one label, at the first midpoint of two neighbours that lies inside the label box.
void ModelDrawContours(const MapCanvas& canvas, ResultFiles& files);
/// Their levels, each once a line where there is room.
void ModelDrawContourLabels(const MapCanvas& canvas, ResultFiles& files);

/// Part of the window that takes labels; the wider margin at the top is meant.
Extents ContourLabelBox(const MapRect& window);
/// Direction of the segment in degrees, 0 to below 360, so that the label reads from left to right.
double ContourLabelAngle(MapPoint from, MapPoint to);

}  // namespace ormel
