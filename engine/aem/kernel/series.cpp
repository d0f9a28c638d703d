#include "aem/kernel/series.h"

#include <cmath>
#include <numbers>

#include "aem/kernel/vectors.h"

namespace aem::detail {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr int kSize = kTerms + 1;
constexpr int kRow = (kSize + 7) / 8 * 8;  ///< of whole vectors

/// Binomial coefficients as rows that inner loops run along.
struct Tables {
  double lift[kSize][kRow] = {};      ///< [k][l] = C(l - 1, k - 1), 1 <= k <= l
  double transfer[kSize][kRow] = {};  ///< [k][n] = C(n + k - 1, n)
  double inherit[kSize][kRow] = {};   ///< [k][n] = C(k, n), n <= k
  Tables() {
    double c[2 * kSize + 1][2 * kSize + 1] = {};
    for (int n = 0; n <= 2 * kSize; ++n) {
      c[n][0] = 1.0;
      for (int k = 1; k <= n; ++k) c[n][k] = c[n - 1][k - 1] + (k < n ? c[n - 1][k] : 0.0);
    }
    for (int k = 1; k < kSize; ++k)
      for (int n = 0; n < kSize; ++n) {
        if (n >= k) lift[k][n] = c[n - 1][k - 1];
        transfer[k][n] = c[n + k - 1][n];
      }
    for (int k = 0; k < kSize; ++k)
      for (int n = 0; n <= k; ++n) inherit[k][n] = c[k][n];
  }
};
const Tables& Choose() {
  static const Tables tables;
  return tables;
}

/// A series as two rows of numbers, which the compiler can add side by side.
struct Split {
  alignas(64) double re[kRow] = {}, im[kRow] = {};
};

/// base^0 ... base^kTerms.
void Powers(Complex base, Complex* power) {
  power[0] = 1.0;
  for (int k = 1; k < kSize; ++k) power[k] = power[k - 1] * base;
}

/// sum += row * factor.
inline void AddRow(Split* sum, const double* row, Complex factor) {
  const double re = factor.real(), im = factor.imag();
  for (int n = 0; n < kRow; ++n) {
    sum->re[n] += row[n] * re;
    sum->im[n] += row[n] * im;
  }
}

}  // namespace

void AddPieceSeries(const Piece& piece, int coefficient, double value, const Disc& disc, Series* outer) {
  const bool sink = piece.kind == PieceKind::kSink;
  const GaussRule rule = Gauss(piece.tip ? 32 : 16);
  const Complex half = 0.5 * (piece.to - piece.from);
  std::array<double, kMaxBasis> values;
  for (int q = 0; q < rule.size; ++q) {
    const double parameter = piece.tip ? 0.5 * (1.0 + rule.x[q]) : rule.x[q];
    BasisValues(piece, parameter, values.data(), nullptr);
    // dX: of a tip sink 2 dU with the polynomial itself, of a tip doublet 4 U dU
    const double strength =
        value * values[coefficient] * rule.w[q] * (piece.tip && !sink ? 2.0 * parameter : 1.0);
    const Complex t = (piece.Global(PositionOf(piece, parameter)) - disc.centre) / disc.radius;
    if (sink) {
      const double weight = strength * std::abs(half) / (2.0 * kPi);
      (*outer)[0] += weight;
      Complex power = t;
      for (int k = 1; k <= kTerms; ++k, power *= t) (*outer)[k] -= weight / k * power;
    } else {
      Complex term = Complex{0.0, 1.0} / (2.0 * kPi) * strength * half / disc.radius;
      for (int k = 1; k <= kTerms; ++k, term *= t) (*outer)[k] += term;
    }
  }
}

void AddPointSeries(Complex at, double discharge, const Disc& disc, Series* outer) {
  const double weight = discharge / (2.0 * kPi);
  const Complex t = (at - disc.centre) / disc.radius;
  (*outer)[0] += weight;
  Complex power = t;
  for (int k = 1; k <= kTerms; ++k, power *= t) (*outer)[k] -= weight / k * power;
}

AEM_VECTOR_COPIES void Lift(const Series& inner, const Disc& from, const Disc& to, Series* outer) {
  // (R1/(z - c1))^k = sum over l of C(l-1, k-1) (R1/R)^k shift^(l-k) (R/(z - c))^l
  const auto& lift = Choose().lift;
  const Complex shift = (from.centre - to.centre) / to.radius;
  const double ratio = from.radius / to.radius;
  Complex powers[kSize];
  Powers(shift, powers);
  (*outer)[0] += inner[0];
  double scale = 1.0;
  for (int l = 1; l < kSize; ++l) (*outer)[l] -= inner[0] * powers[l] / double(l);
  for (int k = 1; k < kSize; ++k) {
    scale *= ratio;
    const Complex a = inner[k] * scale;
    for (int l = k; l < kSize; ++l) (*outer)[l] += a * (lift[k][l] * powers[l - k]);
  }
}

AEM_VECTOR_COPIES void Transfer(const Series& outer, const Disc& from, const Disc& to, Series* local) {
  const auto& choose = Choose().transfer;
  const Complex d = to.centre - from.centre, inverse = 1.0 / d;
  Complex source[kSize], target[kSize];
  Powers(from.radius * inverse, source);
  Powers(-to.radius * inverse, target);
  Split sum;
  for (int k = 1; k < kSize; ++k) AddRow(&sum, choose[k], outer[k] * source[k]);
  (*local)[0] += outer[0] * std::log(d) + Complex{sum.re[0], sum.im[0]};
  for (int n = 1; n < kSize; ++n)
    (*local)[n] += target[n] * (Complex{sum.re[n], sum.im[n]} - outer[0] / double(n));
}

AEM_VECTOR_COPIES void Inherit(const Series& local, const Disc& from, const Disc& to, Series* inner) {
  // u = shift + ratio v with v the smaller disc's own variable.
  const auto& choose = Choose().inherit;
  const Complex shift = (to.centre - from.centre) / from.radius;
  const double ratio = to.radius / from.radius;
  Complex powers[kSize];
  Powers(shift, powers);
  Series sum{};
  for (int k = 0; k < kSize; ++k)
    for (int n = 0; n <= k; ++n) sum[n] += local[k] * (choose[k][n] * powers[k - n]);
  double scale = 1.0;
  for (int n = 0; n < kSize; ++n, scale *= ratio) (*inner)[n] += sum[n] * scale;
}

Flow EvaluateOuter(const Series& outer, const Disc& disc, Complex at) {
  const Complex d = at - disc.centre, q = disc.radius / d;
  Complex value{}, derivative{};
  for (int k = kTerms; k >= 1; --k) {
    value = (value + outer[k]) * q;
    derivative = (derivative + double(k) * outer[k]) * q;
  }
  return {value + outer[0] * std::log(d), -(outer[0] - derivative) / d};
}

Flow EvaluateLocal(const Series& local, const Disc& disc, Complex at) {
  const double scale = 1.0 / disc.radius;
  const Complex v = (at - disc.centre) * scale;
  Complex value{}, slope{};
  for (int n = kTerms; n >= 1; --n) {
    slope = slope * v + double(n) * local[n];
    value = (value + local[n]) * v;
  }
  return {value + local[0], -slope * scale};
}

bool Separated(const Disc& a, const Disc& b) {
  const double d = std::sqrt(std::norm(a.centre - b.centre));
  return a.radius <= 0.5 * (d - b.radius) && b.radius <= 0.5 * (d - a.radius);
}

}  // namespace aem::detail
