#include "exchange/shapes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ormel {
namespace {

double DistanceToSegment(const CPoint& p, const CPoint& a, const CPoint& b) {
  const double dx = b.X - a.X, dy = b.Y - a.Y, length2 = dx * dx + dy * dy;
  const double t =
      length2 > 0.0 ? std::clamp(((p.X - a.X) * dx + (p.Y - a.Y) * dy) / length2, 0.0, 1.0) : 0.0;
  return std::hypot(p.X - (a.X + t * dx), p.Y - (a.Y + t * dy));
}

/// Calls `segment(a, b)` for each step of each part, and from the last point to the first when `closed`.
template <class Segment>
void ForEachSegment(const PartedShape& shape, bool closed, const Segment& segment) {
  for (const CPart& part : shape.parts()) {
    const std::vector<CPoint>& points = part.points();
    if (points.size() == 1) segment(points.front(), points.front());
    for (std::size_t i = 1; i < points.size(); ++i) segment(points[i - 1], points[i]);
    if (closed && points.size() > 1) segment(points.back(), points.front());
  }
}

double NearestSegment(const CPoint& p, const PartedShape& shape, bool closed) {
  double nearest = std::numeric_limits<double>::infinity();
  ForEachSegment(shape, closed, [&](const CPoint& a, const CPoint& b) {
    nearest = std::min(nearest, DistanceToSegment(p, a, b));
  });
  return nearest;
}

/// By the number of edges that a ray to the right crosses, so that a ring within a ring is a hole.
bool Inside(const CPoint& p, const CPolygon& area) {
  bool inside = false;
  ForEachSegment(area, true, [&](const CPoint& a, const CPoint& b) {
    if ((a.Y > p.Y) != (b.Y > p.Y) && p.X < a.X + (p.Y - a.Y) / (b.Y - a.Y) * (b.X - a.X)) inside = !inside;
  });
  return inside;
}

}  // namespace

double IShape::Distance(const IShape& /*other*/, const ShapeNotice& notice) const {
  if (notice) notice("NOT IMPLEMENTED");
  return 0.0;
}

double CPoint::DistanceToPoint(const CPoint& other) const {
  return std::hypot(X - other.X, Y - other.Y);
}

double CPoint::Distance(const IShape& other, const ShapeNotice& notice) const {
  if (IsNull() || other.IsNull())
    throw ShapeError("CPoint::IShape_Distance", "Cannot compute distance to a null shape");
  if (const auto* point = dynamic_cast<const CPoint*>(&other)) return DistanceToPoint(*point);
  if (const auto* line = dynamic_cast<const CPolyLine*>(&other)) return NearestSegment(*this, *line, false);
  if (const auto* area = dynamic_cast<const CPolygon*>(&other))
    return Inside(*this, *area) ? 0.0 : NearestSegment(*this, *area, true);
  return IShape::Distance(other, notice);
}

void CRect::Set(double left, double bottom, double right, double top) {
  first = {left, top};
  second = {right, bottom};
}

void CRect::Include(double left, double bottom, double right, double top) {
  if (IsNull()) return Set(left, bottom, right, top);
  Set(std::min(Left(), left), std::min(Bottom(), bottom), std::max(Right(), right), std::max(Top(), top));
}

void CPart::Add(const ShapeObject& point) {
  const auto* given = dynamic_cast<const CPoint*>(&point);
  if (given == nullptr) throw ShapeError("CPart::Add", "CPart can only accept objects of type CPoint");
  Add(*given);
}

void CPart::Add(const CPoint& point) {
  points_.push_back(point);
  extent_.Include(point.X, point.Y, point.X, point.Y);
}

void ExtendedShape::Include(double left, double bottom, double right, double top) {
  extent_.Include(left, bottom, right, top);
  null_ = false;
}

void CMultiPoint::Add(const ShapeObject& point) {
  const auto* given = dynamic_cast<const CPoint*>(&point);
  if (given == nullptr)
    throw ShapeError("CMultiPoint::Add", "CMultiPoint Add can only accept objects of type CPoints");
  points_.push_back(*given);
  Include(given->X, given->Y, given->X, given->Y);
}

void PartedShape::AddPart(const ShapeObject& part, const char* source, const char* refusal) {
  const auto* given = dynamic_cast<const CPart*>(&part);
  if (given == nullptr) throw ShapeError(source, refusal);
  parts_.push_back(*given);
  if (!given->points().empty()) Include(given->Left(), given->Bottom(), given->Right(), given->Top());
}

}  // namespace ormel
