#include "whpa/outline.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace ormel {
namespace {

/// Below this difference of angles neighbours cannot be told apart: they part at a stagnation point.
constexpr double kLeastAngle = 1e-12;

double Distance(ModelPoint a, ModelPoint b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

double DistanceToSide(ModelPoint p, ModelPoint a, ModelPoint b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double length2 = dx * dx + dy * dy;
  if (length2 == 0.0) return Distance(p, a);
  const double t = std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length2, 0.0, 1.0);
  return Distance(p, {a.x + t * dx, a.y + t * dy});
}

/// The particles in the order of their angles; `open[i]` says that the outline still moves between i and i
/// + 1.
struct Fan {
  std::vector<Ray> rays;
  std::vector<char> open;
  std::vector<double> sizes;  ///< diagonal of each ring

  std::size_t Next(std::size_t i) const { return i + 1 == rays.size() ? 0 : i + 1; }
  double AngleAfter(std::size_t i) const {
    return i + 1 == rays.size() ? rays.front().angle + 2 * std::numbers::pi : rays[i + 1].angle;
  }
  std::vector<ModelPoint> Ring(std::size_t time) const {
    std::vector<ModelPoint> ring;
    ring.reserve(rays.size());
    for (const Ray& ray : rays) ring.push_back(ray.tips[time]);
    return ring;
  }
  void Measure(std::size_t times) {
    sizes.clear();
    for (std::size_t t = 0; t < times; ++t) sizes.push_back(RingDiagonal(Ring(t)));
  }
};

bool SideTooLong(const Fan& fan, const Ray& a, const Ray& b, double longest) {
  for (std::size_t t = 0; t < fan.sizes.size(); ++t)
    if (Distance(a.tips[t], b.tips[t]) > longest * fan.sizes[t]) return true;
  return false;
}

bool Moved(const Fan& fan, const Ray& middle, const Ray& a, const Ray& b, double tolerance) {
  for (std::size_t t = 0; t < fan.sizes.size(); ++t)
    if (DistanceToSide(middle.tips[t], a.tips[t], b.tips[t]) > tolerance * fan.sizes[t]) return true;
  return false;
}

/// Puts the new rays behind their intervals and decides which of the two halves stay open.
void Merge(Fan& fan, std::vector<Ray> middles, const OutlineOptions& options) {
  Fan merged;
  std::size_t next = 0;
  for (std::size_t i = 0; i < fan.rays.size(); ++i) {
    const Ray& a = fan.rays[i];
    const Ray& b = fan.rays[fan.Next(i)];
    const double gap = fan.AngleAfter(i) - a.angle;
    merged.rays.push_back(a);
    if (!fan.open[i]) {
      merged.open.push_back(0);
      continue;
    }
    Ray middle = std::move(middles[next++]);
    const bool moved = Moved(fan, middle, a, b, options.tolerance);
    const bool resolvable = gap / 2 > kLeastAngle;
    merged.open.push_back(resolvable && (moved || SideTooLong(fan, a, middle, options.longest_side)));
    merged.open.push_back(resolvable && (moved || SideTooLong(fan, middle, b, options.longest_side)));
    merged.rays.push_back(std::move(middle));
  }
  merged.sizes = std::move(fan.sizes);
  fan = std::move(merged);
}

std::vector<double> MiddleAngles(const Fan& fan) {
  std::vector<double> angles;
  for (std::size_t i = 0; i < fan.rays.size(); ++i)
    if (fan.open[i]) angles.push_back(0.5 * (fan.rays[i].angle + fan.AngleAfter(i)));
  return angles;
}

void Simplify(const std::vector<ModelPoint>& ring, std::size_t first, std::size_t last, double distance,
              std::vector<char>& keep) {
  std::vector<std::pair<std::size_t, std::size_t>> open{{first, last}};
  while (!open.empty()) {
    const auto [a, b] = open.back();
    open.pop_back();
    double farthest = distance;
    std::size_t at = a;
    for (std::size_t i = a + 1; i < b; ++i) {
      const double d = DistanceToSide(ring[i], ring[a], ring[b]);
      if (d > farthest) {
        farthest = d;
        at = i;
      }
    }
    if (at == a) continue;
    keep[at] = 1;
    open.emplace_back(a, at);
    open.emplace_back(at, b);
  }
}

}  // namespace

Outline TraceOutline(const std::vector<double>& times, const RayTracer& tracer,
                     const OutlineOptions& options) {
  Outline outline;
  Fan fan;
  std::vector<double> angles;
  for (int i = 0; i < options.first_rays; ++i)
    angles.push_back(2 * std::numbers::pi * i / options.first_rays);
  if (!tracer(angles, fan.rays)) return outline;
  fan.open.assign(fan.rays.size(), 1);
  for (int round = 0; round < options.rounds; ++round) {
    fan.Measure(times.size());
    angles = MiddleAngles(fan);
    if (angles.empty()) break;
    std::vector<Ray> middles;
    if (!tracer(angles, middles)) return outline;
    Merge(fan, std::move(middles), options);
  }
  outline.traced = true;
  outline.converged = std::none_of(fan.open.begin(), fan.open.end(), [](char open) { return open != 0; });
  outline.cut = std::any_of(fan.rays.begin(), fan.rays.end(), [](const Ray& ray) { return ray.cut; });
  outline.rays = fan.rays.size();
  for (std::size_t t = 0; t < times.size(); ++t) outline.rings.push_back(fan.Ring(t));
  return outline;
}

std::vector<ModelPoint> SimplifyRing(const std::vector<ModelPoint>& ring, double distance) {
  if (ring.size() < 5) return ring;
  // The first vertex and the one farthest from it part the ring into two lines.
  std::size_t far = 0;
  for (std::size_t i = 1; i < ring.size(); ++i)
    if (Distance(ring[i], ring[0]) > Distance(ring[far], ring[0])) far = i;
  std::vector<ModelPoint> closed = ring;
  closed.push_back(ring.front());
  std::vector<char> keep(closed.size(), 0);
  keep[0] = keep[far] = 1;
  Simplify(closed, 0, far, distance, keep);
  Simplify(closed, far, ring.size(), distance, keep);
  std::vector<ModelPoint> simple;
  for (std::size_t i = 0; i < ring.size(); ++i)
    if (keep[i]) simple.push_back(ring[i]);
  return simple.size() < 4 ? ring : simple;
}

double RingArea(const std::vector<ModelPoint>& ring) {
  double twice = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const ModelPoint a = ring[i], b = ring[(i + 1) % ring.size()];
    twice += (a.x - ring[0].x) * (b.y - ring[0].y) - (b.x - ring[0].x) * (a.y - ring[0].y);
  }
  return 0.5 * twice;
}

double RingDiagonal(const std::vector<ModelPoint>& ring) {
  if (ring.empty()) return 0.0;
  const auto [left, right] =
      std::minmax_element(ring.begin(), ring.end(), [](auto a, auto b) { return a.x < b.x; });
  const auto [low, high] =
      std::minmax_element(ring.begin(), ring.end(), [](auto a, auto b) { return a.y < b.y; });
  return std::hypot(right->x - left->x, high->y - low->y);
}

}  // namespace ormel
