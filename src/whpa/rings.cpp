#include "whpa/rings.h"

#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ormel {

double RingDiagonal(const Ring& ring) {
  if (ring.empty()) return 0.0;
  const auto [left, right] =
      std::minmax_element(ring.begin(), ring.end(), [](auto a, auto b) { return a.x < b.x; });
  const auto [low, high] =
      std::minmax_element(ring.begin(), ring.end(), [](auto a, auto b) { return a.y < b.y; });
  return std::hypot(right->x - left->x, high->y - low->y);
}

struct Ground::Shape {
  GEOSContextHandle_t context = GEOS_init_r();
  GEOSGeometry* geometry = nullptr;

  ~Shape() {
    if (geometry != nullptr) GEOSGeom_destroy_r(context, geometry);
    GEOS_finish_r(context);
  }

  GEOSGeometry* Line(const Ring& ring) const {
    const auto size = static_cast<unsigned>(ring.size());
    if (size < 3) return nullptr;
    GEOSCoordSequence* points = GEOSCoordSeq_create_r(context, size + 1, 2);
    for (unsigned i = 0; i <= size; ++i)
      GEOSCoordSeq_setXY_r(context, points, i, ring[i % size].x, ring[i % size].y);
    return GEOSGeom_createLinearRing_r(context, points);
  }

  double AreaOf(GEOSGeometry* shape) const {
    double area = std::nan("");
    if (shape == nullptr) return area;
    GEOSArea_r(context, shape, &area);
    GEOSGeom_destroy_r(context, shape);
    return area;
  }
};

Ground::Ground(const std::vector<Ring>& rings) : shape_(new Shape) {
  if (rings.empty()) return;
  GEOSGeometry* outline = shape_->Line(rings.front());
  std::vector<GEOSGeometry*> holes;
  for (std::size_t i = 1; i < rings.size(); ++i)
    if (GEOSGeometry* hole = shape_->Line(rings[i])) holes.push_back(hole);
  if (outline == nullptr) return;
  shape_->geometry =
      GEOSGeom_createPolygon_r(shape_->context, outline, holes.data(), static_cast<unsigned>(holes.size()));
}

Ground::~Ground() {
  delete shape_;
}
Ground::Ground(Ground&& other) noexcept : shape_(std::exchange(other.shape_, nullptr)) {}
Ground& Ground::operator=(Ground&& other) noexcept {
  std::swap(shape_, other.shape_);
  return *this;
}

bool Ground::Simple() const {
  return shape_->geometry != nullptr && GEOSisValid_r(shape_->context, shape_->geometry) == 1;
}

std::string Ground::WhyNotSimple() const {
  if (shape_->geometry == nullptr) return "no ring";
  char* words = GEOSisValidReason_r(shape_->context, shape_->geometry);
  std::string why = words != nullptr ? words : "";
  GEOSFree_r(shape_->context, words);
  return why;
}

bool Ground::Holds(ModelPoint point) const {
  if (shape_->geometry == nullptr) return false;
  GEOSGeometry* place = GEOSGeom_createPointFromXY_r(shape_->context, point.x, point.y);
  const bool holds = GEOSContains_r(shape_->context, shape_->geometry, place) == 1;
  GEOSGeom_destroy_r(shape_->context, place);
  return holds;
}

double Ground::Area() const {
  double area = 0.0;
  if (shape_->geometry != nullptr) GEOSArea_r(shape_->context, shape_->geometry, &area);
  return area;
}

double Ground::AreaOutside(const Ground& other) const {
  return shape_->AreaOf(GEOSDifference_r(shape_->context, shape_->geometry, other.shape_->geometry));
}

double Ground::AreaCommon(const Ground& other) const {
  return shape_->AreaOf(GEOSIntersection_r(shape_->context, shape_->geometry, other.shape_->geometry));
}

}  // namespace ormel
