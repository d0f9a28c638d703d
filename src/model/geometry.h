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
/// Area of a ring, positive when it runs counter-clockwise [unit of its points squared]: the shoelace sum
/// about `origin`, which stands near the ring so that no digits are lost.
template <class Point>
double SignedArea(std::span<const Point> ring, Point origin) {
  double sum = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Point &a = ring[i], &b = ring[(i + 1) % ring.size()];
    sum += 0.5 * ((a.x - origin.x) * (b.y - origin.y) - (b.x - origin.x) * (a.y - origin.y));
  }
  return sum;
}
/// The same without its sign; 0 below two points.
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
