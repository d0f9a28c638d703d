// Small models that tests start from.
#pragma once

#include <cmath>
#include <numbers>
#include <string>

#include "aem/solution.h"

namespace aem_test {

using aem::Complex;

inline aem::Model Base(double conductivity = 10.0, double thickness = 20.0, double reference_head = 30.0) {
  aem::Model m;
  m.aquifer.conductivity = conductivity;
  m.aquifer.thickness = thickness;
  m.aquifer.base = 0.0;
  m.aquifer.has_reference = true;
  m.aquifer.reference_point = {5000.0, 5000.0};
  m.aquifer.reference_head = reference_head;
  m.layout = {-1000.0, -1000.0, 1000.0, 1000.0, true};
  return m;
}

/// A string of segments along a list of points, with one head.
inline aem::LineSinkString HeadString(const std::vector<Complex>& points, double head,
                                      const std::string& label = "LS_000001") {
  aem::LineSinkString s;
  s.origin.label = label;
  for (std::size_t i = 0; i + 1 < points.size(); ++i)
    s.segments.push_back(
        {{label + "_" + std::to_string(i + 1), int(i) + 10}, points[i], points[i + 1], head});
  return s;
}

inline std::vector<Complex> Line(Complex from, Complex to, int segments) {
  std::vector<Complex> points;
  for (int i = 0; i <= segments; ++i) points.push_back(from + (to - from) * (double(i) / segments));
  return points;
}

inline aem::Domain Polygon(const std::vector<Complex>& ring, const std::string& label = "IN_000001") {
  aem::Domain d;
  d.origin.label = label;
  for (std::size_t i = 0; i < ring.size(); ++i)
    d.ring.push_back({{label + "_" + std::to_string(i + 1), 0}, ring[i]});
  return d;
}

/// A regular polygon with the area of the circle.
inline std::vector<Complex> CircleRing(Complex centre, double radius, int sides) {
  const double turn = 2.0 * std::numbers::pi / sides;
  const double r = radius * std::sqrt(turn / std::sin(turn));
  std::vector<Complex> ring;
  for (int i = 0; i < sides; ++i) ring.push_back(centre + std::polar(r, turn * i));
  return ring;
}

inline std::string Said(const std::vector<aem::Finding>& findings) {
  std::string text;
  for (const aem::Finding& f : findings) text += f.label + ": " + f.text + "\n";
  return text;
}

}  // namespace aem_test
