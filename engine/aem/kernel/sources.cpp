#include "aem/kernel/sources.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace aem::detail {

namespace {
constexpr double kPi = std::numbers::pi;
}

Flow WellInfluence(const WellSource& well, Complex z) {
  Complex d = z - well.at;
  const double r = std::abs(d);
  if (r < well.radius) return {{std::log(well.radius) / (2.0 * kPi), std::arg(d) / (2.0 * kPi)}, {}};
  return {{std::log(r) / (2.0 * kPi), std::arg(d) / (2.0 * kPi)}, -1.0 / (2.0 * kPi * d)};
}

Flow DiskInfluence(const DiskSource& disk, Complex z) {
  const Complex d = z - disk.at;
  const double r2 = std::norm(d), radius2 = disk.radius * disk.radius;
  if (r2 < radius2)
    return {0.25 * (r2 - radius2) + 0.5 * radius2 * std::log(disk.radius), -0.5 * std::conj(d)};
  return {0.5 * radius2 * std::log(d), -0.5 * radius2 / d};
}

AreaSource::AreaSource(std::vector<Complex> ring, double rate) : ring_(std::move(ring)), rate_(rate) {
  if (SignedArea(ring_) < 0.0) std::reverse(ring_.begin(), ring_.end());
  area_ = SignedArea(ring_);
  Box box;
  for (Complex p : ring_) box.Add(p);
  centre_ = box.Middle();
  for (Complex p : ring_) reach_ = std::max(reach_, std::abs(p - centre_));
  moments_.assign(kMoments + 1, {});
  AddMoments(centre_, reach_, moments_);
}

void AreaSource::AddMoments(Complex centre, double reach, std::span<Complex> moments) const {
  // integral z^k dA = (1/2i) contour integral of z^k conj(z) dz; the integrand is a polynomial on each edge.
  const GaussRule rule = Gauss(kMoments / 2 + 2);
  for (std::size_t i = 0; i < ring_.size(); ++i) {
    const Complex a = (ring_[i] - centre) / reach, b = (ring_[(i + 1) % ring_.size()] - centre) / reach;
    for (int q = 0; q < rule.size; ++q) {
      const Complex z = 0.5 * (a + b) + 0.5 * (b - a) * rule.x[q];
      Complex term = rate_ * 0.5 * rule.w[q] * (b - a) * std::conj(z) / Complex{0.0, 2.0};
      for (Complex& m : moments) {
        m += term;
        term *= z;
      }
    }
  }
}

Flow FarAreas(std::span<const Complex> moments, Complex centre, double reach, Complex z) {
  const Complex far = (z - centre) / reach, inverse = 1.0 / far;
  Complex sum{}, derivative{};
  for (std::size_t k = moments.size() - 1; k >= 1; --k) {
    sum = (sum + moments[k] / double(k)) * inverse;
    derivative = (derivative + moments[k]) * inverse;
  }
  const double scale = reach * reach / (2.0 * kPi);
  return {scale * (moments[0] * (std::log(far) + std::log(reach)) - sum),
          -scale / reach * (derivative + moments[0]) * inverse};
}

Flow AreaSource::Influence(Complex z) const {
  // 3^-24 is 4e-12.
  if (std::norm(z - centre_) > 9.0 * reach_ * reach_) return FarAreas(moments_, centre_, reach_, z);
  double potential = 0.0;
  Complex flow{};
  for (std::size_t i = 0; i < ring_.size(); ++i) {
    const Complex a = ring_[i], b = ring_[i + 1 == ring_.size() ? 0 : i + 1];
    const double length = std::abs(b - a);
    if (length == 0.0) continue;
    const Complex along = (b - a) / length, outward = along * Complex{0.0, -1.0};
    const Complex local = (2.0 * z - a - b) / (b - a);
    const double logs =
        0.5 * length * LogIntegral(LocalPoint(local), Side::kMean).real() + length * std::log(0.5 * length);
    potential += Dot(a - z, outward) * (2.0 * logs - length);
    flow += outward * logs;
  }
  return {rate_ / (8.0 * kPi) * potential, std::conj(flow) * rate_ / (2.0 * kPi)};
}

}  // namespace aem::detail
