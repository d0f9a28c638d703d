#include "aem/kernel/theis.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace aem::detail {

double ExpIntegral(double u) {
  if (u > 700.0) return 0.0;
  if (u < 1.0) {
    double sum = -std::numbers::egamma - std::log(u), term = -1.0;
    for (int k = 1; k < 40; ++k) {
      term *= -u / k;
      sum += term / k;
    }
    return sum;
  }
  // Continued fraction by the modified Lentz method.
  double b = u + 1.0, c = 1e300, d = 1.0 / b, h = d;
  for (int i = 1; i < 500; ++i) {
    const double a = -double(i) * i;
    b += 2.0;
    d = 1.0 / (a * d + b);
    c = b + a / c;
    const double factor = c * d;
    h *= factor;
    if (std::abs(factor - 1.0) < 1e-16) break;
  }
  return h * std::exp(-u);
}

Flow TheisInfluence(const TheisRecord& record, double conductivity, double time, Complex at) {
  const double since = time - record.time;
  if (!(since > 0.0)) return {};
  const Complex d = at - record.at;
  const double r = std::max(std::abs(d), record.radius);
  const double u = r * r * record.storage / (4.0 * conductivity * since);
  Flow f;
  f.omega = -record.rate / (4.0 * std::numbers::pi) * ExpIntegral(u);
  if (std::abs(d) >= record.radius) f.w = -record.rate / (2.0 * std::numbers::pi) * std::exp(-u) / d;
  return f;
}

}  // namespace aem::detail
