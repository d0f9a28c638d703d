#include "qtdevice/clipping.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <utility>

namespace ormel {
namespace {

QPointF ToPoint(DevicePoint p) {
  return {static_cast<qreal>(p.x), static_cast<qreal>(p.y)};
}

/// A line of more points than this is thinned: points closer than the step [pixels] to the one before only
/// show the rounding to whole pixels.
constexpr std::size_t kLongLine = 32;
constexpr int kFineStep = 2;

bool Near(DevicePoint a, DevicePoint b, int step) {
  const auto apart = [](int p, int q) { return std::abs(static_cast<std::int64_t>(p) - q); };
  return apart(a.x, b.x) < step && apart(a.y, b.y) < step;
}

bool Contains(const QRectF& bounds, QPointF p) {
  return p.x() >= bounds.left() && p.x() <= bounds.right() && p.y() >= bounds.top() &&
         p.y() <= bounds.bottom();
}

/// Narrows the parameters t0..t1 of a segment to the side where `p * t <= q` (Liang and Barsky 1984).
bool Narrow(double p, double q, double& t0, double& t1) {
  if (p == 0.0) return q >= 0.0;
  const double t = q / p;
  if (p < 0.0) {
    if (t > t1) return false;
    t0 = std::max(t0, t);
  } else {
    if (t < t0) return false;
    t1 = std::min(t1, t);
  }
  return true;
}

bool ClipSegment(QPointF& a, QPointF& b, const QRectF& bounds) {
  const QPointF from = a;
  const QPointF d = b - a;
  double t0 = 0.0, t1 = 1.0;
  if (!Narrow(-d.x(), from.x() - bounds.left(), t0, t1)) return false;
  if (!Narrow(d.x(), bounds.right() - from.x(), t0, t1)) return false;
  if (!Narrow(-d.y(), from.y() - bounds.top(), t0, t1)) return false;
  if (!Narrow(d.y(), bounds.bottom() - from.y(), t0, t1)) return false;
  if (t1 < 1.0) b = from + d * t1;
  if (t0 > 0.0) a = from + d * t0;
  return true;
}

void AddSegment(std::vector<QPolygonF>& runs, QPointF a, QPointF b, const QRectF& bounds) {
  if (!ClipSegment(a, b, bounds)) return;
  if (runs.empty() || runs.back().back() != a) runs.push_back(QPolygonF({a}));
  if (a != b) runs.back().append(b);
}

/// Signed depth of a point inside one edge of the bounds; edges 0 to 3 are left, right, top, bottom.
double Depth(const QRectF& bounds, int edge, QPointF p) {
  switch (edge) {
    case 0:
      return p.x() - bounds.left();
    case 1:
      return bounds.right() - p.x();
    case 2:
      return p.y() - bounds.top();
    default:
      return bounds.bottom() - p.y();
  }
}

QPolygonF CutByEdge(const QPolygonF& in, const QRectF& bounds, int edge) {
  QPolygonF out;
  for (qsizetype i = 0; i < in.size(); ++i) {
    const QPointF a = in[i];
    const QPointF b = in[(i + 1) % in.size()];
    const double da = Depth(bounds, edge, a), db = Depth(bounds, edge, b);
    if (da >= 0.0) out.append(a);
    if ((da < 0.0) != (db < 0.0)) out.append(a + (b - a) * (da / (da - db)));
  }
  return out;
}

}  // namespace

std::vector<QPolygonF> ClipPolyline(std::span<const DevicePoint> points, const QRectF& bounds) {
  std::vector<QPolygonF> runs;
  if (points.empty()) return runs;
  DevicePoint last = points.front();
  const int step = points.size() > kLongLine ? kFineStep : 1;
  for (const DevicePoint& point : points.subspan(1)) {
    if (Near(point, last, step) && &point != &points.back()) continue;
    if (point == last) continue;
    AddSegment(runs, ToPoint(last), ToPoint(point), bounds);
    last = point;
  }
  const bool one_point = std::all_of(points.begin(), points.end(), [&](DevicePoint p) { return p == last; });
  if (one_point && Contains(bounds, ToPoint(last))) runs.push_back(QPolygonF({ToPoint(last)}));
  return runs;
}

std::vector<QPolygonF> ClipFineLine(std::span<const FinePoint> points, const QRectF& bounds) {
  std::vector<QPolygonF> runs;
  const auto at = [&](std::size_t i) { return QPointF(points[i].x, points[i].y); };
  for (std::size_t i = 1; i < points.size(); ++i)
    if (at(i) != at(i - 1)) AddSegment(runs, at(i - 1), at(i), bounds);
  if (runs.empty() && !points.empty() && at(0) == at(points.size() - 1) && Contains(bounds, at(0)))
    runs.push_back(QPolygonF({at(0)}));
  return runs;
}

QPolygonF ClipPolygon(std::span<const DevicePoint> points, const QRectF& bounds) {
  QPolygonF polygon;
  polygon.reserve(static_cast<qsizetype>(points.size()));
  bool inside = true;
  for (const DevicePoint& point : points) {
    const QPointF p = ToPoint(point);
    if (!polygon.isEmpty() && polygon.back() == p) continue;
    polygon.append(p);
    inside = inside && Contains(bounds, p);
  }
  for (int edge = 0; edge < 4 && !inside && !polygon.isEmpty(); ++edge)
    polygon = CutByEdge(polygon, bounds, edge);
  return polygon;
}

QPolygonF CircleLine(QPointF centre, double radius) {
  constexpr double kTolerance = 0.125;
  constexpr int kMost = 200000;
  const double ratio = std::max(1.0, radius / (2.0 * kTolerance));
  const int count = std::clamp(static_cast<int>(std::numbers::pi * std::sqrt(ratio)) + 1, 12, kMost);
  QPolygonF line;
  line.reserve(count + 1);
  for (int i = 0; i <= count; ++i) {
    const double angle = 2.0 * std::numbers::pi * (i % count) / count;
    line.append(centre + radius * QPointF(std::cos(angle), std::sin(angle)));
  }
  return line;
}

std::vector<DevicePoint> CirclePoints(DevicePoint centre, int radius) {
  const auto whole = [](double v) {
    constexpr double kLimit = std::numeric_limits<int>::max();
    return static_cast<int>(std::lround(std::clamp(v, -kLimit, kLimit)));
  };
  std::vector<DevicePoint> points;
  for (const QPointF& p : CircleLine(ToPoint(centre), radius)) points.push_back({whole(p.x()), whole(p.y())});
  return points;
}

}  // namespace ormel
