// How a layer looks in a GIS when it is opened there.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "geo/features.h"

namespace ormel {

struct LayerColor {
  std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;
};

struct LayerStyle {
  LayerColor line;                ///< of lines, of outlines, and of a marker's border
  LayerColor fill;                ///< of polygons and markers
  double width = 0.4;             ///< of lines and outlines, millimetres
  std::string marker = "circle";  ///< circle, square, triangle, diamond, cross, cross2 (diagonal), star
  double size = 2.5;              ///< of a marker, millimetres
  bool dashed = false;
  std::string label_field;  ///< whose text stands beside each feature; "" for none
};

/// The style as the document that QGIS keeps in the table `layer_styles`.
std::string StyleQml(const LayerStyle& style, GeometryKind kind);

}  // namespace ormel
