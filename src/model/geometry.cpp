#include "model/geometry.h"

#include <cmath>
#include <stdexcept>
#include <vector>

#include "core/command.h"
#include "core/ormel.h"
#include "core/status.h"
#include "model/model_values.h"
#include "model/vertices.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr double kPi = 3.14159265358979;

/// Pairs of numbers as complex numbers.
MapPoint Add(MapPoint a, MapPoint b) {
  return {a.x + b.x, a.y + b.y};
}
MapPoint Multiply(MapPoint a, MapPoint b) {
  return {a.x * b.x - a.y * b.y, a.x * b.y + a.y * b.x};
}
MapPoint Conjugate(MapPoint a) {
  return {a.x, -a.y};
}
MapPoint Divide(MapPoint a, MapPoint b) {
  const double modulus_squared = b.x * b.x + b.y * b.y;
  const MapPoint product = Multiply(a, Conjugate(b));
  return {product.x / modulus_squared, product.y / modulus_squared};
}

}  // namespace

double GetTheta(MapPoint point, MapPoint from, MapPoint to) {
  double theta = std::atan2(from.y - point.y, from.x - point.x) - std::atan2(to.y - point.y, to.x - point.x);
  if (theta > kPi)
    theta -= 2.0 * kPi;
  else if (theta < -kPi)
    theta += 2.0 * kPi;
  return theta;
}

bool IsInPolygon(std::span<const MapPoint> polygon, MapPoint point) {
  double sum = 0.0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    if (polygon[i] == point) return true;
    sum += GetTheta(point, polygon[i], polygon[(i + 1) % polygon.size()]);
  }
  return std::abs(sum) > 1.0;
}

double PolygonArea(std::span<const MapPoint> polygon, MapPoint origin) {
  return std::abs(SignedArea(polygon, origin));
}

bool IsInDomain(Ormel& ormel, Pid pid, MapPoint point) {
  const Named named(ormel, "IsInDomain");
  return IsInPolygon(PointsOf(ormel, pid), point);
}

double DomainArea(Ormel& ormel, Pid pid, MapPoint origin) {
  const Named named(ormel, "DomainArea");
  const std::vector<MapPoint> polygon = PointsOf(ormel, pid);
  if (polygon.size() < 2) {
    Inform(ormel, "Not Enough Points", "Not enough points to calculate area.");
    return 0.0;
  }
  return PolygonArea(polygon, origin);
}

double FindLocal(Ormel& ormel, MapPoint at, std::string_view property) {
  const Named named(ormel, "FindLocal");
  if (property != "Base") throw std::invalid_argument("FindLocal knows no property " + std::string(property));
  constexpr double kNone = -99.0;
  double best_area = kNone, base = 0.0;
  RowReader domains(ormel.db(), "select PID,BottomElevation from Inhomogeneities where ChangeB=True");
  while (domains.Next()) {
    const Pid pid = domains.Long(0);
    if (!IsInDomain(ormel, pid, at)) continue;
    const double area = DomainArea(ormel, pid, at);
    if (best_area == kNone || area < best_area) {
      best_area = area;
      base = domains.Double(1);
    }
  }
  return best_area == kNone ? ReadModel(ormel).AQBase : base;
}

MapPoint ReflectInLine(MapPoint z, MapPoint a, MapPoint b) {
  const MapPoint half{0.5, 0.0}, minus_one{-1.0, 0.0};
  const MapPoint middle = Multiply(Add(a, b), half);
  const MapPoint s = Multiply(Add(b, Multiply(a, minus_one)), half);
  const MapPoint local = Divide(Add(z, Multiply(middle, minus_one)), s);
  return Add(middle, Multiply(s, Conjugate(local)));
}

}  // namespace ormel
