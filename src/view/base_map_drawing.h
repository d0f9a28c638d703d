// Draws the base maps of the project: images first, then vector files, then BBM maps, each in the order of
// their rows.
#pragma once

#include "view/canvas.h"

namespace ormel {

class BBMap;
class VectorMap;
class RasterMap;
struct BaseMapRow;

bool AnyBaseMaps(const Ormel& ormel);
void DrawBaseMaps(const MapCanvas& canvas);

/// One map.  Throws what its reader throws.
void DrawBbm(const MapCanvas& canvas, const BBMap& map);
void DrawVectorMap(const MapCanvas& canvas, const VectorMap& map, const BaseMapRow& row, bool cad);
void DrawRasterMap(const MapCanvas& canvas, RasterMap& map);

}  // namespace ormel
