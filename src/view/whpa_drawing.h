// Simple wellhead protection areas on the map: circles, and stream boundaries across the whole window.
#pragma once

#include "core/types.h"
#include "view/canvas.h"

#include <cstdint>
#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// A protection area that is a circle.
struct WhpaCircle {
  std::string well;       ///< its label
  std::int64_t type = 0;  ///< `WHPAs.Type`
  MapPoint centre;
  double radius = 0.0;  ///< [map units]
};
/// Those of the project as the map shows them, whether the layer is on or not.
std::vector<WhpaCircle> WhpaCircles(Ormel& ormel);

/// Circles of arbitrary and calculated areas, while "Show Simple WHPAs" is on.
void ElemDrawAllWHPAs(const MapCanvas& canvas);
/// Each boundary with its two points, while "Show Simple WHPAs" is on.
void ElemDrawAllStreamBoundarys(const MapCanvas& canvas);
/// The command: shows or hides the areas.
void ShowWHPAs(Ormel& ormel);

/// How far the circle of a calculated area lies upstream of its well [computation length, along the flow].
/// `well_discharge` above 0 takes water; `ambient_flow` per unit width.  Zero for a well without discharge.
double WhpaShift(double t, double well_discharge, double ambient_flow);

}  // namespace ormel
