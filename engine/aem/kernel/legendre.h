// Legendre functions of the second kind and the integrals that line elements are made of.
//
// With P_n on the segment from -1 to 1 of the Z plane:
//   integral of P_n(t)/(Z - t) dt     = 2 Q_n(Z)                                    (Neumann, 1848)
//   integral of P_n(t) ln(Z - t) dt   = 2 (Q_{n+1} - Q_{n-1})/(2n+1),  n >= 1       (by parts, own
//   derivation)
//                                     = (Z+1) ln(Z+1) - (Z-1) ln(Z-1) - 2,  n = 0
//   Q'_{n+1} = Q'_{n-1} + (2n+1) Q_n
// The recurrence in rising n loses about rho^(2n+1) in accuracy, rho = |Z + sqrt(Z^2 - 1)|; it is used within
// kNearRadius only.  Farther away elements use their moments.
#pragma once

#include <complex>

namespace aem::detail {

using Complex = std::complex<double>;

/// Highest n that tables hold.
inline constexpr int kMaxDegree = 12;
/// |Z| up to which line elements are summed in closed form.
inline constexpr double kNearRadius = 2.0;

/// Where a point that lies exactly on the segment or at an end of it is meant to be: beside it in the
/// direction `toward` of the segment's own plane, or, of no side, at the mean of both.
struct Side {
  Complex toward;
  bool mean = false;
  bool Left() const { return toward.imag() >= 0.0; }
  Side Turned() const { return {-toward, mean}; }
  static const Side kLeft, kRight, kMean;
};
inline const Side Side::kLeft{{0.0, 1.0}, false};
inline const Side Side::kRight{{0.0, -1.0}, false};
inline const Side Side::kMean{{0.0, 0.0}, true};

/// A point with its distances to both ends of the segment, Z + 1 and Z - 1, which the caller knows to full
/// relative accuracy: near an end, elements that share it cancel each other's large terms.
struct LocalPoint {
  Complex z, plus, minus;
  explicit LocalPoint(Complex at) : z(at), plus(at + 1.0), minus(at - 1.0) {}
  LocalPoint(Complex at, Complex to_start, Complex to_end) : z(at), plus(to_start), minus(to_end) {}
};

/// (ln((Z+1)/(Z-1)))/2 with its cut on the segment.  On the segment itself the limit from the given side;
/// kMean is the real principal value.  At the ends the logarithm of the distance is cut off at 1e-14.
Complex LegendreQ0(const LocalPoint& p, Side side);

/// Q_0 ... Q_top.  Pre: |Z| of the order of 1.
void LegendreQ(const LocalPoint& p, Side side, int top, Complex* q);

/// Q'_0 ... Q'_top from q.  Infinite at the ends: the distance to them is cut off at 1e-14.
void LegendreQPrime(const LocalPoint& p, int top, const Complex* q, Complex* dq);

/// integral of ln(Z - t) over the segment; the real part is continuous everywhere.
Complex LogIntegral(const LocalPoint& p, Side side);

/// P_0(x) ... P_top(x).
void LegendreP(double x, int top, double* p);
/// P'_0 ... P'_top from p.
void LegendrePPrime(int top, const double* p, double* dp);

struct GaussRule {
  const double* x;
  const double* w;
  int size;
};
/// Gauss-Legendre rule on (-1, 1) of 1 to 64 points; computed once.
GaussRule Gauss(int points);

}  // namespace aem::detail
