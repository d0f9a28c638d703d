// Map coordinates and model coordinates.
//
// The store holds map coordinates.  The solver works in computation units relative to the lower left corner
// of the model's extents.
#pragma once

#include "core/types.h"

namespace ormel {

struct Ormel;

inline constexpr double kFeetPerMetre = 3.28083989501;

/// Factor from map units to computation units: 0.3048 for a map in feet computed in metres, its inverse the
/// other way round, else 1.
double BasemapConvert(bool compute_meters, bool basemap_meters);
double BasemapConvert(const Ormel& ormel);

/// Map to model, by the origin of the model's extents; not rounded.
double WToM_X(const Ormel& ormel, double x);
double WToM_Y(const Ormel& ormel, double y);
ModelPoint WToM(const Ormel& ormel, MapPoint at);

/// Model to map, by the origin of the last solve, rounded to 4 decimals.
double MToW_X(const Ormel& ormel, double x);
double MToW_Y(const Ormel& ormel, double y);
MapPoint MToW(const Ormel& ormel, ModelPoint at);

/// A length in computation units as a length on the map, by the constant feet per metre.
double ComputeToMapLength(const Ormel& ormel, double length);

/// "meters" or "feet"; of the map, and of the computation.
const char* MapLengthUnit(const Ormel& ormel);
const char* ComputeLengthUnit(const Ormel& ormel);

}  // namespace ormel
