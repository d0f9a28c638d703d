#include "aem/partial.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace aem::detail {

namespace {
constexpr double kPi = std::numbers::pi;
constexpr double kLargest = 40.0;  ///< argument beyond which K0 is nothing
constexpr int kTerms = 20000;
}  // namespace

PartialCorrection::PartialCorrection(const PartialWell& well, const Zone& zone, double thickness)
    : base_(zone.base), thickness_(thickness), radius_(well.radius) {
  bottom_ = std::clamp(well.bottom - zone.base, 0.0, thickness);
  top_ = std::clamp(well.top - zone.base, 0.0, thickness);
  if (top_ - bottom_ < 1e-6 * thickness) {
    // The screen stands dry: as in a well that is about to, its lowest part takes all.
    bottom_ = std::clamp(bottom_, 0.0, 0.99 * thickness);
    top_ = bottom_ + 0.01 * thickness;
  }
}

double PartialCorrection::Coefficient(int n) const {
  const double f = n * kPi / thickness_;
  return -(1.0 / (2.0 * kPi)) * 2.0 * thickness_ / (kPi * (top_ - bottom_)) / n *
         (std::sin(f * top_) - std::sin(f * bottom_));
}

PartialCorrection::Local PartialCorrection::At(double distance, double elevation) const {
  Local local;
  const double r = std::max(distance, radius_), z = std::clamp(elevation - base_, 0.0, thickness_);
  for (int n = 1; n <= kTerms; ++n) {
    const double f = n * kPi / thickness_, argument = f * r;
    if (argument > kLargest) break;
    const double c = Coefficient(n), k0 = std::cyl_bessel_k(0.0, argument),
                 k1 = std::cyl_bessel_k(1.0, argument);
    local.potential += c * std::cos(f * z) * k0;
    local.radial += c * std::cos(f * z) * f * k1;
    local.vertical += c * std::sin(f * z) * f * k0 / thickness_;
  }
  return local;
}

double PartialCorrection::OnScreen() const {
  double sum = 0.0;
  for (int n = 1; n <= kTerms; ++n) {
    const double f = n * kPi / thickness_, argument = f * radius_;
    if (argument > kLargest) break;
    const double mean = (std::sin(f * top_) - std::sin(f * bottom_)) / (f * (top_ - bottom_));
    sum += Coefficient(n) * mean * std::cyl_bessel_k(0.0, argument);
  }
  return sum;
}

}  // namespace aem::detail
