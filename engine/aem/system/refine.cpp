#include "aem/system/refine.h"

#include <algorithm>
#include <cmath>

#include "aem/system/system.h"

namespace aem::detail {

namespace {

constexpr int kDeepest = 8;

/// Distance to the nearest well, as its radius at least; far if there is none.
double WellDistance(const System& s, Complex a, Complex b, double* radius) {
  double nearest = 1e300;
  for (const std::vector<WellSource>* list : {&s.wells, &s.partial_wells})
    for (const WellSource& w : *list) {
      const double d = NearestOnSegment(a, b, w.at).distance;
      if (d >= nearest) continue;
      nearest = d;
      *radius = w.radius;
    }
  return nearest;
}

void Halve(const System& s, Complex from, Complex to, const Part& part, int depth, std::vector<Part>* out) {
  const Complex a = from + part.start * (to - from), b = from + part.end * (to - from);
  double radius = 0.0;
  const double distance = WellDistance(s, a, b, &radius);
  if (depth >= kDeepest || std::abs(b - a) <= std::max(2.0 * distance, 4.0 * radius)) {
    out->push_back(part);
    return;
  }
  const double middle = 0.5 * (part.start + part.end);
  Halve(s, from, to, {part.start, middle, part.tip_at_start, false}, depth + 1, out);
  Halve(s, from, to, {middle, part.end, false, part.tip_at_end}, depth + 1, out);
}

}  // namespace

std::vector<Part> NearWells(const System& s, Complex from, Complex to, const std::vector<Part>& parts) {
  std::vector<Part> out;
  for (const Part& part : parts) Halve(s, from, to, part, 0, &out);
  return out;
}

std::vector<Part> CutAt(const std::vector<Part>& parts, const std::vector<double>& positions) {
  std::vector<Part> out = parts;
  for (double t : positions)
    for (std::size_t i = 0; i < out.size(); ++i) {
      if (t <= out[i].start + 1e-6 || t >= out[i].end - 1e-6) continue;
      const Part part = out[i];
      out[i] = {part.start, t, part.tip_at_start, false};
      out.insert(out.begin() + long(i) + 1, {t, part.end, false, part.tip_at_end});
      break;
    }
  return out;
}

}  // namespace aem::detail
