#include "aem/kernel/partial.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace aem::detail {

namespace {
constexpr double kPi = std::numbers::pi;
constexpr double kLargest = 40.0;  ///< argument beyond which K0 is nothing
constexpr int kTerms = 20000;
constexpr int kImages = 12;            ///< on either side, summed one by one
constexpr double kImagesWithin = 1.0;  ///< thicknesses from the well

/// A function of the height above a screen's end, with its integral and its first and third derivatives.
struct Kernel {
  double value = 0.0, integral = 0.0, slope = 0.0, third = 0.0;
};

/// Those that make the potential, its derivative in r and that in z: G, dG/dr and dG/dz.
struct Kernels {
  Kernel potential, radial, vertical;
};

Kernels KernelsAt(double u, double r) {
  const double s2 = u * u + r * r, s = std::sqrt(s2), s3 = s * s2, s5 = s3 * s2, s7 = s5 * s2;
  const double g = std::copysign(std::log((std::fabs(u) + s) / r), u), u2 = u * u;
  return {{g, u * g - s, 1.0 / s, (2.0 * u2 - r * r) / s5},
          {-u / (r * s), -s / r, -r / s3, r * (3.0 / s5 - 15.0 * u2 / s7)},
          {1.0 / s, g, -u / s3, u * (9.0 / s5 - 15.0 * u2 / s7)}};
}

/// The integral of G as a kernel, for the mean of the potential over a part of the height.
Kernel OnceIntegrated(double u, double r) {
  const double s2 = u * u + r * r, s = std::sqrt(s2);
  const double g = std::copysign(std::log((std::fabs(u) + s) / r), u);
  return {u * g - s, (0.5 * u * u - 0.25 * r * r) * g - 0.75 * u * s, g, -u / (s * s2)};
}

/// Values alone, which the images near by need.
struct Values {
  double potential = 0.0, radial = 0.0, vertical = 0.0;
};

void AddValues(Values* sum, double sign, double u, double r) {
  const double s = std::sqrt(u * u + r * r);
  sum->potential += sign * std::copysign(std::log((std::fabs(u) + s) / r), u);
  sum->radial -= sign * u / (r * s);
  sum->vertical += sign / s;
}

/// What the images beyond add on one side (`side` +1 above, -1 below) by the Euler-Maclaurin formula of
/// middles.
double Tail(const Kernel& k, double side, double period) {
  return side *
         (-k.integral / period + period * k.slope / 24.0 - 7.0 / 5760.0 * period * period * period * k.third);
}
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
  const double r = std::max(distance, radius_), z = std::clamp(elevation - base_, 0.0, thickness_);
  return r < kImagesWithin * thickness_ ? ByImages(r, z) : BySeries(r, z);
}

PartialCorrection::Local PartialCorrection::BySeries(double r, double z) const {
  Local local;
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

PartialCorrection::Local PartialCorrection::ByImages(double r, double z) const {
  const double period = 2.0 * thickness_;
  // The mirrored screen that lies nearest stands for its row, so that both rows are centred alike.
  const double shift = 2.0 * z + top_ + bottom_ > period ? period : 0.0;
  const std::array<std::pair<double, double>, 4> ends{
      {{z - bottom_, 1.0}, {z - top_, -1.0}, {z + top_ - shift, 1.0}, {z + bottom_ - shift, -1.0}}};
  Values sum;
  for (const auto& [u, sign] : ends) {
    for (int m = -kImages; m <= kImages; ++m) AddValues(&sum, sign, u + m * period, r);
    for (const double side : {1.0, -1.0}) {
      const Kernels k = KernelsAt(u + side * (kImages + 0.5) * period, r);
      sum.potential += sign * Tail(k.potential, side, period);
      sum.radial += sign * Tail(k.radial, side, period);
      sum.vertical += sign * Tail(k.vertical, side, period);
    }
  }
  const double factor = -thickness_ / (4.0 * kPi * (top_ - bottom_));
  return {factor * sum.potential, -factor * sum.radial, -factor * sum.vertical / thickness_};
}

double PartialCorrection::OnScreen() const {
  // Second differences of the images' integral: a screen too short for them takes the series.
  if (top_ - bottom_ < 1e-3 * thickness_ || radius_ >= kImagesWithin * thickness_) return OnScreenBySeries();
  const double period = 2.0 * thickness_, length = top_ - bottom_;
  const double shift = top_ + bottom_ > thickness_ ? period : 0.0;
  const std::array<std::pair<double, double>, 6> ends{{{length, 1.0},
                                                       {0.0, -2.0},
                                                       {-length, 1.0},
                                                       {2.0 * top_ - shift, 1.0},
                                                       {top_ + bottom_ - shift, -2.0},
                                                       {2.0 * bottom_ - shift, 1.0}}};
  double sum = 0.0;
  for (const auto& [u, sign] : ends) {
    for (int m = -kImages; m <= kImages; ++m) sum += sign * OnceIntegrated(u + m * period, radius_).value;
    for (const double side : {1.0, -1.0})
      sum += sign * Tail(OnceIntegrated(u + side * (kImages + 0.5) * period, radius_), side, period);
  }
  return -thickness_ / (4.0 * kPi * length * length) * sum;
}

double PartialCorrection::OnScreenBySeries() const {
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
