#include "aem/kernel/power_law.h"

#include <cmath>

namespace aem::detail {

std::vector<Link> Links(double power, double smallest) {
  constexpr double kRatio = 0.4, kRest = 1e-3;
  std::vector<Link> links;
  double far = 1.0;
  while (far * kRatio > smallest && std::pow(far, power) > kRest) {
    links.push_back({far * kRatio, far});
    far *= kRatio;
  }
  links.push_back({0.0, far});
  return links;
}

double SmallestLink(Complex from, Complex to) {
  constexpr double kRoundings = 2e5;
  return kRoundings * 2.2e-16 * (std::abs(from) + std::abs(to));
}

Part Placed(const Link& link, const Part& part, bool at_start) {
  const double length = part.end - part.start;
  if (at_start) return {part.start + link.near * length, part.start + link.far * length, false, false};
  return {part.end - link.far * length, part.end - link.near * length, false, false};
}

namespace {

/// (n + 1/2) integral of P_n(X) r^power dX on a link.  At the place itself in closed form, by Rodrigues'
/// formula: power (power - 1) ... (power - n + 1)/((power + 1) ... (power + n + 1)), with P_n(2 r - 1).
LinkCoefficients Projected(const Link& link, double power) {
  LinkCoefficients c{};
  if (link.near == 0.0) {
    double integral = std::pow(link.far, power) / (power + 1.0);
    for (int n = 0; n < kMaxBasis; ++n) {
      c[n] = (2.0 * n + 1.0) * integral;
      integral *= (power - n) / (power + n + 2.0);
    }
    return c;
  }
  const GaussRule rule = Gauss(24);
  for (int q = 0; q < rule.size; ++q) {
    std::array<double, kMaxBasis + 1> p;
    LegendreP(rule.x[q], kMaxBasis, p.data());
    const double value = std::pow(link.near + 0.5 * (1.0 + rule.x[q]) * (link.far - link.near), power);
    for (int n = 0; n < kMaxBasis; ++n) c[n] += (n + 0.5) * rule.w[q] * p[n] * value;
  }
  return c;
}

}  // namespace

LinkCoefficients DensityOn(const Link& link, double power) {
  return Projected(link, power - 1.0);
}

LinkCoefficients JumpOn(const Link& link, double power) {
  LinkCoefficients c = Projected(link, power);
  const double near = link.near > 0.0 ? std::pow(link.near, power) : 0.0, far = std::pow(link.far, power);
  static_assert(kMaxBasis == 6);
  c[4] = 0.5 * (far + near) - c[0] - c[2];
  c[5] = 0.5 * (far - near) - c[1] - c[3];
  return c;
}

LinkCoefficients Reversed(LinkCoefficients c) {
  for (int n = 1; n < kMaxBasis; n += 2) c[n] = -c[n];
  return c;
}

}  // namespace aem::detail
