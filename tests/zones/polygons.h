// What tests ask of outlines.
#pragma once

#include <geos_c.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "zones/zone.h"

namespace zones_test {

using aem::Complex;

inline bool InRing(const std::vector<Complex>& ring, Complex p) {
  bool inside = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    const Complex a = ring[i], b = ring[j];
    if ((a.imag() > p.imag()) != (b.imag() > p.imag()) &&
        p.real() < a.real() + (b.real() - a.real()) * (p.imag() - a.imag()) / (b.imag() - a.imag()))
      inside = !inside;
  }
  return inside;
}

inline bool InZone(const zones::Zone& zone, Complex p) {
  return InRing(zone.ring, p) && std::none_of(zone.holes.begin(), zone.holes.end(),
                                              [&](const auto& hole) { return InRing(hole, p); });
}

inline double SignedArea(const std::vector<Complex>& ring) {
  double twice = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Complex a = ring[i] - ring[0], b = ring[(i + 1) % ring.size()] - ring[0];
    twice += a.real() * b.imag() - a.imag() * b.real();
  }
  return 0.5 * twice;
}

/// A zone as a polygon of the geometry library.
class Polygon {
 public:
  explicit Polygon(const zones::Zone& zone) {
    std::vector<GEOSGeometry*> holes;
    for (const auto& hole : zone.holes) holes.push_back(Closed(hole));
    shape_ = GEOSGeom_createPolygon_r(Context(), Closed(zone.ring), holes.data(), unsigned(holes.size()));
  }
  ~Polygon() { GEOSGeom_destroy_r(Context(), shape_); }
  Polygon(const Polygon&) = delete;
  Polygon& operator=(const Polygon&) = delete;

  bool Valid() const { return GEOSisValid_r(Context(), shape_) == 1; }
  double Area() const { return AreaOf(shape_); }
  double Length() const {
    double length = 0.0;
    GEOSLength_r(Context(), shape_, &length);
    return length;
  }
  double Shared(const Polygon& other) const {
    GEOSGeometry* both = GEOSIntersection_r(Context(), shape_, other.shape_);
    const double area = both == nullptr ? 0.0 : AreaOf(both);
    GEOSGeom_destroy_r(Context(), both);
    return area;
  }

 private:
  static GEOSContextHandle_t Context() {
    static const std::unique_ptr<GEOSContextHandle_HS, decltype(&GEOS_finish_r)> context(GEOS_init_r(),
                                                                                         &GEOS_finish_r);
    return context.get();
  }
  static GEOSGeometry* Closed(const std::vector<Complex>& ring) {
    const auto size = unsigned(ring.size());
    GEOSCoordSequence* points = GEOSCoordSeq_create_r(Context(), size + 1, 2);
    for (unsigned i = 0; i <= size; ++i)
      GEOSCoordSeq_setXY_r(Context(), points, i, ring[i % size].real(), ring[i % size].imag());
    return GEOSGeom_createLinearRing_r(Context(), points);
  }
  static double AreaOf(const GEOSGeometry* shape) {
    double area = 0.0;
    GEOSArea_r(Context(), shape, &area);
    return area;
  }

  GEOSGeometry* shape_ = nullptr;
};

}  // namespace zones_test
