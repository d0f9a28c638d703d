#include "aem/kernel/piece.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace aem::detail {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr Complex kI{0.0, 1.0};

/// What one basis function gives in the Z plane: the plain integral and its derivative in Z.
///   sink:    g = integral strength ln(Z - t) dt
///   doublet: g = integral strength/(Z - t) dt
struct Plain {
  Complex g, dg;
};

Complex SafeInverse(Complex c) {
  return 1.0 / (std::abs(c) < 1e-14 ? Complex{1e-14} : c);
}

void PlainSink(const Piece& piece, const LocalPoint& z, Side on, Plain* out) {
  std::array<Complex, 2 * kMaxBasis + 2> q;
  LegendreQ(z, on, piece.size, q.data());
  out[0] = {LogIntegral(z, on), 2.0 * q[0]};
  for (int n = 1; n < piece.size; ++n) out[n] = {2.0 * (q[n + 1] - q[n - 1]) / (2.0 * n + 1.0), 2.0 * q[n]};
}

void PlainTipSink(const Piece& piece, Complex to_start, const LocalPoint& c, Side on, Plain* out) {
  std::array<Complex, 2 * kMaxBasis + 2> q;
  LegendreQ(c, on, 2 * piece.size, q.data());
  const Complex inverse = SafeInverse(c.z);
  // ln(C^2 - 1) written as ln((Z + 1)/2) moves its cut to Z < -1, where the far series has it too.
  // Q_0 cuts the distance of C to its end off at 1e-14; that of Z is four times as large, and only the sum of
  // the two logarithms is finite at the start.
  constexpr double kSmallest = 4e-14;
  const Complex log = std::log(std::abs(to_start) < kSmallest ? Complex{kSmallest} : to_start);
  out[0] = {2.0 * (log + 2.0 * c.z * q[0] - 2.0), -q[0] * inverse};
  for (int n = 1; n < piece.size; ++n) {
    const int d = 2 * n;
    out[n] = {4.0 * (q[d + 1] - q[d - 1]) / (2.0 * d + 1.0), -q[d] * inverse};
  }
}

void PlainDoublet(const Piece& piece, const LocalPoint& z, Side on, Plain* out) {
  std::array<Complex, 2 * kMaxBasis + 2> q, dq;
  LegendreQ(z, on, piece.size, q.data());
  LegendreQPrime(z, piece.size, q.data(), dq.data());
  for (int n = 0; n < piece.size; ++n) out[n] = {2.0 * q[n], 2.0 * dq[n]};
}

void PlainTipDoublet(const Piece& piece, const LocalPoint& c, Side on, Plain* out) {
  std::array<Complex, 2 * kMaxBasis + 2> q, dq;
  LegendreQ(c, on, 2 * piece.size, q.data());
  LegendreQPrime(c, 2 * piece.size, q.data(), dq.data());
  const Complex slope = -0.25 * SafeInverse(c.z);
  for (int n = 0; n < piece.size; ++n) out[n] = {-2.0 * q[2 * n + 1], -2.0 * dq[2 * n + 1] * slope};
}

/// The point in the plane of C = sqrt((1 - Z)/2): C - 1 = -(Z + 1)/(2 (C + 1)).
LocalPoint RootPoint(const LocalPoint& p) {
  const Complex c = std::sqrt(-0.5 * p.minus);
  return {c, c + 1.0, -0.5 * p.plus / (c + 1.0)};
}

void PlainNear(const Piece& piece, const LocalPoint& p, Side on, Plain* out) {
  const bool sink = piece.kind == PieceKind::kSink;
  if (!piece.tip) {
    sink ? PlainSink(piece, p, on, out) : PlainDoublet(piece, p, on, out);
    return;
  }
  // The root turns the upper side of the piece into the lower side of the segment in the C plane.
  const LocalPoint c = RootPoint(p);
  const Side turned = on.Turned();
  sink ? PlainTipSink(piece, p.plus, c, turned, out) : PlainTipDoublet(piece, c, turned, out);
}

/// Moments of each basis function, by exact quadrature, once for all pieces of one sort.
struct MomentTable {
  std::array<Moments, kMaxBasis> of;
};

MomentTable MakeMoments(bool sink, bool tip) {
  MomentTable table{};
  const GaussRule rule = Gauss(48);
  for (int i = 0; i < rule.size; ++i) {
    const double parameter = tip ? 0.5 * (1.0 + rule.x[i]) : rule.x[i];
    const double x = tip ? 1.0 - 2.0 * parameter * parameter : parameter;
    // Weight of dX: a tip sink carries 2 dU, a tip doublet 4U dU.
    const double weight = !tip ? rule.w[i] : sink ? rule.w[i] : 2.0 * parameter * rule.w[i];
    std::array<double, 2 * kMaxBasis + 1> p;
    LegendreP(parameter, 2 * kMaxBasis, p.data());
    for (int n = 0; n < kMaxBasis; ++n) {
      double term = weight * p[!tip ? n : sink ? 2 * n : 2 * n + 1];
      for (int k = 0; k <= kMoments; ++k) {
        table.of[n][k] += term;
        term *= x;
      }
    }
  }
  return table;
}

const MomentTable& MomentsOf(const Piece& piece) {
  static const std::array<MomentTable, 4> tables{MakeMoments(true, false), MakeMoments(true, true),
                                                 MakeMoments(false, false), MakeMoments(false, true)};
  return tables[(piece.kind == PieceKind::kSink ? 0 : 2) + (piece.tip ? 1 : 0)];
}

/// Terms of the series in 1/Z that reach 1e-11.
int TermsFor(double size2) {
  const int terms = int(54.0 / std::log(size2)) + 2;
  return std::min(terms, kMoments);
}

/// integral m ln(Z - t) dt = m_0 ln Z - sum m_k/(k Z^k);  integral m/(Z - t) dt = sum m_k/Z^(k+1).
Plain FarSeries(const Moments& m, PieceKind kind, Complex z) {
  const Complex inverse = std::conj(z) / std::norm(z);
  const int terms = TermsFor(std::norm(z));
  Complex sum{}, derivative{};
  if (kind == PieceKind::kSink) {
    for (int k = terms; k >= 1; --k) {
      sum = (sum + m[k] / k) * inverse;
      derivative = (derivative + m[k]) * inverse;
    }
    const Complex log{0.5 * std::log(std::norm(z)), std::arg(z)};
    return {m[0] * log - sum, (derivative + m[0]) * inverse};
  }
  for (int k = terms; k >= 0; --k) {
    sum = (sum + m[k]) * inverse;
    derivative = (derivative - (k + 1.0) * m[k]) * inverse;
  }
  return {sum, derivative * inverse};
}

/// The same for every basis function of a piece at once: powers of 1/Z are made once.
void FarBasis(const Piece& piece, const MomentTable& table, Complex z, Plain* out) {
  const bool sink = piece.kind == PieceKind::kSink;
  const double size2 = std::norm(z);
  const Complex inverse = std::conj(z) / size2;
  const int terms = TermsFor(size2);
  for (int n = 0; n < piece.size; ++n) out[n] = {};
  Complex power = inverse;  // Z^-(k+1)
  for (int k = 0; k <= terms; ++k, power *= inverse) {
    const Complex next = power * inverse;
    for (int n = 0; n < piece.size; ++n) {
      const double m = table.of[n][k];
      if (sink) {
        out[n].dg += m * power;
        if (k < terms) out[n].g -= table.of[n][k + 1] / (k + 1.0) * power;
      } else {
        out[n].g += m * power;
        out[n].dg -= (k + 1.0) * m * next;
      }
    }
  }
  if (!sink) return;
  const Complex log{0.5 * std::log(size2), std::arg(z)};
  for (int n = 0; n < piece.size; ++n)
    if (table.of[n][0] != 0.0) out[n].g += table.of[n][0] * log;
}

Flow Scaled(const Piece& piece, const Plain& plain, double net) {
  const Complex dz = 2.0 / (piece.to - piece.from);
  if (piece.kind == PieceKind::kSink) {
    const double half = 0.5 * piece.Length();
    const double factor = half / (2.0 * kPi);
    return {factor * (plain.g + net * std::log(half)), -factor * plain.dg * dz};
  }
  const Complex factor = kI / (2.0 * kPi);
  return {factor * plain.g, -factor * plain.dg * dz};
}

}  // namespace

namespace {

/// Whether a point lies on the line of the piece but for the rounding of its coordinates.
bool OnLine(const Piece& piece, Complex at, double off) {
  const double rounding = 1e-15 * (std::abs(at.real()) + std::abs(at.imag()));
  return off * off < 1e-24 + 4.0 * rounding * rounding / std::norm(piece.to - piece.from);
}

LocalPoint PointIn(const Piece& piece, Complex at) {
  const Complex scale = 2.0 / (piece.to - piece.from);
  const Complex z = SnappedLocal(piece, at);
  // A point at an end but for rounding is the end, so that the elements which meet there agree on it.
  const double rounding = 4e-15 * (std::abs(at.real()) + std::abs(at.imag()));
  if (std::abs(at - piece.to) <= rounding) return {1.0, 2.0, 0.0};
  if (std::abs(at - piece.from) <= rounding) return {-1.0, 0.0, -2.0};
  if (z.imag() == 0.0 && std::abs(z.real()) < 1.0)
    return {z, ((at - piece.from) * scale).real(), ((at - piece.to) * scale).real()};
  // One imaginary part for all three, from the nearer end: different roundings would put a point beyond an
  // end on different sides of the cuts.
  const Complex plus = (at - piece.from) * scale, minus = (at - piece.to) * scale;
  const double nearer = std::norm(plus) < std::norm(minus) ? plus.imag() : minus.imag();
  const double off = nearer == 0.0 ? 0.0 : nearer;
  return {Complex{z.real(), off}, Complex{plus.real(), off}, Complex{minus.real(), off}};
}

}  // namespace

Complex SnappedLocal(const Piece& piece, Complex at) {
  const Complex z = piece.Local(at);
  if (std::abs(z.real()) < 1.0 && OnLine(piece, at, z.imag())) return {z.real(), 0.0};
  return {z.real(), z.imag() == 0.0 ? 0.0 : z.imag()};
}

void Influence(const Piece& piece, Complex at, Side on, Flow* basis) {
  const Complex z = SnappedLocal(piece, at);
  const MomentTable& table = MomentsOf(piece);
  std::array<Plain, kMaxBasis> plain;
  if (std::norm(z) > kNearRadius * kNearRadius) {
    FarBasis(piece, table, z, plain.data());
  } else {
    PlainNear(piece, PointIn(piece, at), on, plain.data());
  }
  for (int n = 0; n < piece.size; ++n) basis[n] = Scaled(piece, plain[n], table.of[n][0]);
}

void PotentialInfluence(const Piece& piece, Complex at, Side on, double* potential) {
  const Complex z = piece.Local(at);
  const double size2 = std::norm(z);
  if (size2 <= kNearRadius * kNearRadius) {
    std::array<Flow, kMaxBasis> basis;
    Influence(piece, at, on, basis.data());
    for (int n = 0; n < piece.size; ++n) potential[n] = basis[n].omega.real();
    return;
  }
  const MomentTable& table = MomentsOf(piece);
  const bool sink = piece.kind == PieceKind::kSink;
  const int terms = TermsFor(size2);
  const Complex inverse = std::conj(z) / size2;
  std::array<double, kMoments + 1> part;  // of 1/Z^k over k, or of 1/Z^(k+1)
  Complex power = inverse;
  if (sink) {
    part[0] = 0.0;
    for (int k = 1; k <= terms; ++k, power *= inverse) part[k] = power.real() / k;
  } else {
    for (int k = 0; k <= terms; ++k, power *= inverse) part[k] = power.imag();
  }
  const double half = 0.5 * piece.Length();
  const double factor = (sink ? half : 1.0) / (2.0 * kPi);
  for (int n = 0; n < piece.size; ++n) {
    const Moments& m = table.of[n];
    double sum = 0.0;
    for (int k = 0; k <= terms; ++k) sum -= m[k] * part[k];
    if (sink && n == 0) sum += m[0] * 0.5 * std::log(size2 * half * half);
    potential[n] = factor * sum;
  }
}

void InfluenceOnSelf(const Piece& piece, double parameter, Flow* basis) {
  const bool sink = piece.kind == PieceKind::kSink;
  std::array<Plain, kMaxBasis> plain;
  const LocalPoint p(Complex{parameter, 0.0});
  if (piece.tip) {
    sink ? PlainTipSink(piece, 2.0 - 2.0 * parameter * parameter, p, Side::kMean, plain.data())
         : PlainTipDoublet(piece, p, Side::kMean, plain.data());
  } else {
    sink ? PlainSink(piece, p, Side::kMean, plain.data()) : PlainDoublet(piece, p, Side::kMean, plain.data());
  }
  const MomentTable& table = MomentsOf(piece);
  for (int n = 0; n < piece.size; ++n) basis[n] = Scaled(piece, plain[n], table.of[n][0]);
}

void BasisValues(const Piece& piece, double parameter, double* values, double* slope) {
  std::array<double, 2 * kMaxBasis + 1> p, dp;
  const int top = piece.tip ? 2 * piece.size : piece.size;
  LegendreP(parameter, top, p.data());
  const int first = piece.tip && piece.kind == PieceKind::kDoublet ? 1 : 0;
  const int step = piece.tip ? 2 : 1;
  for (int n = 0; n < piece.size; ++n) values[n] = p[first + step * n];
  if (slope == nullptr) return;
  LegendrePPrime(top, p.data(), dp.data());
  // dX/ds = 2/L; dU/dX = -1/(4U)
  const double scale = 2.0 / piece.Length() * (piece.tip ? -0.25 / std::max(parameter, 1e-14) : 1.0);
  for (int n = 0; n < piece.size; ++n) slope[n] = dp[first + step * n] * scale;
}

double PositionOf(const Piece& piece, double parameter) {
  return piece.tip ? 1.0 - 2.0 * parameter * parameter : parameter;
}

double ParameterOf(const Piece& piece, double x) {
  return piece.tip ? std::sqrt(std::max(0.0, 0.5 * (1.0 - x))) : x;
}

double Strength(const Piece& piece, const double* coefficients, double parameter) {
  std::array<double, kMaxBasis> values;
  BasisValues(piece, parameter, values.data(), nullptr);
  double sum = 0.0;
  for (int n = 0; n < piece.size; ++n) sum += coefficients[n] * values[n];
  return piece.tip && piece.kind == PieceKind::kSink ? sum / (2.0 * std::max(parameter, 1e-9)) : sum;
}

double StrengthIntegral(const Piece& piece, const double* coefficients, double parameter) {
  // integral of P_n = (P_{n+1} - P_{n-1})/(2n+1); a tip sink runs over U from the parameter to 1, twice.
  std::array<double, 2 * kMaxBasis + 2> p;
  LegendreP(parameter, 2 * piece.size + 1, p.data());
  const double half = 0.5 * piece.Length();
  if (piece.tip && piece.kind == PieceKind::kDoublet) {
    const GaussRule rule = Gauss(16);
    double sum = 0.0;
    for (int i = 0; i < rule.size; ++i) {
      const double u = parameter + 0.5 * (1.0 - parameter) * (1.0 + rule.x[i]);
      sum += rule.w[i] * 0.5 * (1.0 - parameter) * 4.0 * u * Strength(piece, coefficients, u);
    }
    return half * sum;
  }
  double sum = 0.0;
  for (int n = 0; n < piece.size; ++n) {
    const int d = piece.tip ? 2 * n : n;
    const double upper = d == 0 ? parameter : (p[d + 1] - p[d - 1]) / (2.0 * d + 1.0);
    const double part = piece.tip ? 2.0 * ((d == 0 ? 1.0 : 0.0) - upper) : upper + (d == 0 ? 1.0 : 0.0);
    sum += coefficients[n] * part;
  }
  return half * sum;
}

Moments StrengthMoments(const Piece& piece, const double* coefficients) {
  const MomentTable& table = MomentsOf(piece);
  Moments m{};
  for (int n = 0; n < piece.size; ++n)
    for (int k = 0; k <= kMoments; ++k) m[k] += coefficients[n] * table.of[n][k];
  return m;
}

Flow Evaluate(const Piece& piece, const double* coefficients, const Moments& moments, Complex at, Side on) {
  const Complex z = SnappedLocal(piece, at);
  if (std::norm(z) > kNearRadius * kNearRadius)
    return Scaled(piece, FarSeries(moments, piece.kind, z), moments[0]);
  std::array<Plain, kMaxBasis> plain;
  PlainNear(piece, PointIn(piece, at), on, plain.data());
  Plain sum{};
  for (int n = 0; n < piece.size; ++n) {
    sum.g += coefficients[n] * plain[n].g;
    sum.dg += coefficients[n] * plain[n].dg;
  }
  return Scaled(piece, sum, moments[0]);
}

}  // namespace aem::detail
