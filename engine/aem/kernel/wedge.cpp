#include "aem/kernel/wedge.h"

#include <algorithm>
#include <cmath>

namespace aem::detail {

namespace {

struct Sector {
  double angle, transmissivity;
};

/// What has to vanish at the far side of the sectors, where f begins with 0: f there, or its slope at a wall.
double Mismatch(const std::vector<Sector>& sectors, bool wall, double p) {
  double value = 0.0, slope = 1.0;
  for (std::size_t i = 0; i < sectors.size(); ++i) {
    if (i > 0) slope *= sectors[i - 1].transmissivity / sectors[i].transmissivity;
    const double c = std::cos(p * sectors[i].angle), s = std::sin(p * sectors[i].angle);
    const double next = value * c + slope / p * s;
    slope = slope * c - p * value * s;
    value = next;
  }
  return wall ? slope : value;
}

double LowestRoot(const std::vector<Sector>& sectors, bool wall) {
  constexpr double kStep = 0.005, kTop = 3.0;
  double low = 1e-4, at_low = Mismatch(sectors, wall, low);
  for (double high = kStep; high < kTop; high += kStep) {
    const double at_high = Mismatch(sectors, wall, high);
    if ((at_low > 0.0) == (at_high > 0.0)) {
      low = high;
      at_low = at_high;
      continue;
    }
    for (int k = 0; k < 50; ++k) {
      const double middle = 0.5 * (low + high);
      ((Mismatch(sectors, wall, middle) > 0.0) == (at_low > 0.0) ? low : high) = middle;
    }
    return 0.5 * (low + high);
  }
  return kTop;
}

}  // namespace

double WedgePower(std::vector<WedgeRay> rays, double string) {
  // Angles from the string on, once around.
  const double turn = 2.0 * M_PI;
  double behind = rays.back().transmissivity;
  for (WedgeRay& r : rays) {
    if (r.angle <= string) behind = r.transmissivity;
    r.angle = std::fmod(r.angle - string + 2.0 * turn, turn);
  }
  std::sort(rays.begin(), rays.end(), [](const WedgeRay& a, const WedgeRay& b) { return a.angle < b.angle; });
  std::vector<Sector> sectors;
  double from = 0.0, transmissivity = behind, lowest = 1e300;
  for (const WedgeRay& r : rays) {
    sectors.push_back({r.angle - from, transmissivity});
    from = r.angle;
    transmissivity = r.transmissivity;
    if (!r.wall) continue;
    lowest = std::min(lowest, LowestRoot(sectors, true));
    sectors.clear();
    break;
  }
  if (lowest == 1e300) {
    sectors.push_back({turn - from, transmissivity});
    return LowestRoot(sectors, false);
  }
  // The other way round, from the string to the last wall.
  from = turn;
  for (std::size_t i = rays.size(); i-- > 0;) {
    sectors.push_back({from - rays[i].angle, rays[i].transmissivity});
    from = rays[i].angle;
    if (rays[i].wall) break;
  }
  return std::min(lowest, LowestRoot(sectors, true));
}

}  // namespace aem::detail
