#include "aem/kernel/legendre.h"

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace aem::detail {

namespace {

constexpr double kTiny = 1e-14;

/// ln of a complex number whose size is never taken below kTiny.
Complex SafeLog(Complex a) {
  return {0.5 * std::log(std::max(std::norm(a), kTiny * kTiny)), std::arg(a)};
}

bool OnSegment(Complex z) {
  return z.imag() == 0.0 && std::abs(z.real()) < 1.0;
}

struct Rule {
  std::vector<double> x, w;
};

Rule MakeRule(int n) {
  Rule rule;
  rule.x.resize(n);
  rule.w.resize(n);
  std::vector<double> p(n + 1), dp(n + 1);
  for (int i = 0; i < n; ++i) {
    double x = -std::cos(std::numbers::pi * (i + 0.75) / (n + 0.5));
    for (int k = 0; k < 100; ++k) {
      LegendreP(x, n, p.data());
      LegendrePPrime(n, p.data(), dp.data());
      const double dx = p[n] / dp[n];
      x -= dx;
      if (std::abs(dx) < 1e-16) break;
    }
    LegendreP(x, n, p.data());
    LegendrePPrime(n, p.data(), dp.data());
    rule.x[i] = x;
    rule.w[i] = 2.0 / ((1.0 - x * x) * dp[n] * dp[n]);
  }
  return rule;
}

}  // namespace

/// ln of the distance to an end of the segment; at the end itself the angle is that of a point beside it.
Complex EndLog(Complex a, Side side) {
  Complex log = SafeLog(a);
  if (a == Complex{}) log = {log.real(), side.mean ? 0.0 : std::arg(side.toward)};
  return log;
}

Complex LegendreQ0(const LocalPoint& p, Side side) {
  const Complex upper = EndLog(p.plus, side);
  Complex lower = EndLog(p.minus, side);
  if (p.plus == Complex{})  // seen from the start, the end lies at half a turn of the side's sign
    lower = {lower.real(), side.mean ? 0.0 : side.Left() ? std::numbers::pi : -std::numbers::pi};
  if (!OnSegment(p.z)) return 0.5 * (upper - lower);
  const double cut = side.mean ? 0.0 : side.Left() ? -0.5 : 0.5;
  return {0.5 * (upper.real() - lower.real()), cut * std::numbers::pi};
}

void LegendreQ(const LocalPoint& p, Side side, int top, Complex* q) {
  const Complex z = p.z;
  q[0] = LegendreQ0(p, side);
  if (top >= 1) q[1] = z * q[0] - 1.0;
  for (int n = 1; n < top; ++n) q[n + 1] = ((2.0 * n + 1.0) * z * q[n] - double(n) * q[n - 1]) / (n + 1.0);
}

void LegendreQPrime(const LocalPoint& p, int top, const Complex* q, Complex* dq) {
  const Complex z = p.z;
  Complex d = -p.plus * p.minus;
  if (std::abs(d) < kTiny) d = kTiny;
  dq[0] = 1.0 / d;
  if (top >= 1) dq[1] = q[0] + z * dq[0];
  for (int n = 1; n < top; ++n) dq[n + 1] = dq[n - 1] + (2.0 * n + 1.0) * q[n];
}

Complex LogIntegral(const LocalPoint& p, Side side) {
  const Complex z = p.z, a = p.plus, b = p.minus;
  Complex log_b = SafeLog(b);
  if (OnSegment(z)) {
    const double turn = side.mean ? 0.0 : side.Left() ? 1.0 : -1.0;
    log_b = {log_b.real(), turn * std::numbers::pi};
  }
  return a * SafeLog(a) - b * log_b - 2.0;
}

void LegendreP(double x, int top, double* p) {
  p[0] = 1.0;
  if (top >= 1) p[1] = x;
  for (int n = 1; n < top; ++n) p[n + 1] = ((2.0 * n + 1.0) * x * p[n] - n * p[n - 1]) / (n + 1.0);
}

void LegendrePPrime(int top, const double* p, double* dp) {
  dp[0] = 0.0;
  if (top >= 1) dp[1] = 1.0;
  for (int n = 1; n < top; ++n) dp[n + 1] = dp[n - 1] + (2.0 * n + 1.0) * p[n];
}

GaussRule Gauss(int points) {
  static const std::vector<Rule> rules = [] {
    std::vector<Rule> all(65);
    for (int n = 1; n <= 64; ++n) all[n] = MakeRule(n);
    return all;
  }();
  const Rule& rule = rules[points];
  return {rule.x.data(), rule.w.data(), points};
}

}  // namespace aem::detail
