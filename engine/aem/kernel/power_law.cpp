#include "aem/kernel/power_law.h"

#include <cmath>

#include "aem/linear/linear.h"

namespace aem::detail {

std::vector<Link> Links(double power, double smallest) {
  constexpr double kRatio = 0.2, kRest = 1e-3;
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

LinkCoefficients DensityOn(const Link& link, double power) {
  LinkCoefficients c{};
  const double length = link.far - link.near;
  // The one at the place has the integral alone: nobody looks within it.
  c[0] =
      (std::pow(link.far, power) - (link.near > 0.0 ? std::pow(link.near, power) : 0.0)) / (power * length);
  if (link.near == 0.0) return c;
  const GaussRule rule = Gauss(24);
  for (int q = 0; q < rule.size; ++q) {
    std::array<double, kMaxBasis + 1> p;
    LegendreP(rule.x[q], kMaxBasis, p.data());
    const double value = std::pow(link.near + 0.5 * (1.0 + rule.x[q]) * length, power - 1.0);
    for (int n = 1; n < kMaxBasis; ++n) c[n] += (n + 0.5) * rule.w[q] * p[n] * value;
  }
  return c;
}

LinkCoefficients JumpOn(const Link& link, double power) {
  const double length = link.far - link.near;
  const auto law = [&](double share) {
    const double r = link.near + share * length;
    return r > 0.0 ? std::pow(r, power) : 0.0;
  };
  const double first = law(0.0), last = law(1.0);
  LinkCoefficients c{0.5 * (first + last), 0.5 * (last - first)};
  constexpr std::size_t kBubbles = kMaxBasis - 2;
  std::vector<double> matrix(kBubbles * kBubbles, 0.0), right(kBubbles, 0.0);
  const GaussRule rule = Gauss(48);
  for (int q = 0; q < rule.size; ++q) {
    // u^4 brings points to where the law is steep.
    const double u = 0.5 * (1.0 + rule.x[q]), r = u * u * u * u, weight = 4.0 * u * u * u * rule.w[q];
    std::array<double, kMaxBasis + 1> p;
    LegendreP(2.0 * r - 1.0, kMaxBasis, p.data());
    const double rest = law(r) - first - r * (last - first);
    for (std::size_t i = 0; i < kBubbles; ++i) {
      right[i] += weight * (p[i + 2] - p[i]) * rest;
      for (std::size_t j = 0; j < kBubbles; ++j)
        matrix[i * kBubbles + j] += weight * (p[i + 2] - p[i]) * (p[j + 2] - p[j]);
    }
  }
  SolveDense(&matrix, &right, kBubbles, 1);
  for (std::size_t i = 0; i < kBubbles; ++i) {
    c[i + 2] += right[i];
    c[i] -= right[i];
  }
  return c;
}

LinkCoefficients Reversed(LinkCoefficients c) {
  for (int n = 1; n < kMaxBasis; n += 2) c[n] = -c[n];
  return c;
}

}  // namespace aem::detail
