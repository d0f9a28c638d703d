// Plane geometry of polygons and lines [map units], and the aquifer's local base.
#pragma once

#include <span>
#include <string_view>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// The angle under which the edge `from`-`to` is seen from `point`: direction to `from` minus direction to
/// `to`, wrapped to -pi ... pi [rad].
double GetTheta(MapPoint point, MapPoint from, MapPoint to);

/// Winding test: the angles over all edges and the closing edge sum to about 2 pi inside and 0 outside; the
/// limit is 1.  A point that equals a vertex exactly is inside.  Without vertices nothing is inside.
bool IsInPolygon(std::span<const MapPoint> polygon, MapPoint point);
/// Shoelace sum relative to `origin`, always positive [map units squared]; 0 below two points.
double PolygonArea(std::span<const MapPoint> polygon, MapPoint origin);

bool IsInDomain(Ormel& ormel, Pid pid, MapPoint point);
/// Shows "Not Enough Points" and gives 0 for a polygon of fewer than two vertices.
double DomainArea(Ormel& ormel, Pid pid, MapPoint origin);

/// With "Base": the aquifer base at a point: of the smallest domain around it that changes the base, else the
/// model's [computation units].  Other properties throw std::invalid_argument.
double FindLocal(Ormel& ormel, MapPoint at, std::string_view property);

/// The image of `z` in the line through `a` and `b`: m + s conj((z - m) / s), m the middle and s the half of
/// the line, in complex numbers (own derivation).  `a` and `b` must differ.
MapPoint ReflectInLine(MapPoint z, MapPoint a, MapPoint b);

}  // namespace ormel
