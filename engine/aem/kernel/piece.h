// A straight line element: a line-sink, or a line-doublet that carries a jump of the potential.
//
// The strength is a polynomial on the piece, held by Legendre coefficients.  Z = (2z - from - to)/(to -
// from).
//   sink     density sigma(X) = sum c_n P_n(X)                                            [L2/d]
//   doublet  jump    lambda(X) = potential left minus right = sum c_n P_n(X)              [L3/d]
// A tip piece ends where the strength behaves like a root of the distance: at `to`.  With X = 1 - 2 U^2:
//   sink     sigma(X) dX = sum c_n P_2n(U) 2 dU,  so sigma = sum c_n P_2n(U)/(2U), infinite at the tip
//   doublet  lambda = sum c_n P_2n+1(U), zero at the tip
// Substituting U turns both integrals into those of a full piece in the plane of C = sqrt((1 - Z)/2), even or
// odd degrees only (own derivation; the idea of root-singular end functions: Joukowski's map of a slit).
#pragma once

#include <array>
#include <complex>

#include "aem/kernel/legendre.h"

namespace aem::detail {

inline constexpr int kMaxBasis = 6;  ///< coefficients of one piece
inline constexpr int kMoments = 36;  ///< of the strength about the piece's middle

enum class PieceKind : unsigned char { kSink, kDoublet };

struct Piece {
  Complex from, to;
  PieceKind kind = PieceKind::kSink;
  bool tip = false;  ///< at `to`
  int size = 1;      ///< number of coefficients

  double Length() const { return std::abs(to - from); }
  Complex Middle() const { return 0.5 * (from + to); }
  Complex Local(Complex z) const { return (2.0 * z - from - to) / (to - from); }
  Complex Global(double x) const { return 0.5 * ((1.0 - x) * from + (1.0 + x) * to); }
  Complex Direction() const { return (to - from) / std::abs(to - from); }
};

/// Potential and its complex derivative: omega = Phi + i Psi [L3/d], w = -d omega/dz = Qx - i Qy [L2/d].
struct Flow {
  Complex omega{};
  Complex w{};
};

/// Z of a point; one that lies on the piece but for rounding gets an imaginary part of exactly +0.
Complex SnappedLocal(const Piece& piece, Complex at);

/// What each basis function of the piece gives at a point: size entries.  `on` tells which limit is meant
/// where the point lies on the piece.
void Influence(const Piece& piece, Complex at, Side on, Flow* basis);

/// Only the potentials of Influence: without logarithm's angle and derivatives, which the equations of heads
/// do not need.
void PotentialInfluence(const Piece& piece, Complex at, Side on, double* potential);

/// The same as Influence at a point of the piece itself, by its parameter (X, or U of a tip piece); limits
/// are the means of both sides.
void InfluenceOnSelf(const Piece& piece, double parameter, Flow* basis);

/// Values of the basis functions at a parameter; derivative along the piece in `slope` [1/L], if asked for.
/// For a tip sink the values are those of the polynomial before division by 2U.
void BasisValues(const Piece& piece, double parameter, double* values, double* slope);

/// X of a parameter.
double PositionOf(const Piece& piece, double parameter);
/// Parameter of an X.
double ParameterOf(const Piece& piece, double x);

/// Strength at a parameter: density or jump.
double Strength(const Piece& piece, const double* coefficients, double parameter);

/// Integral of the strength from X = -1 to the parameter's X, times half the length: for a sink the discharge
/// of that part [L3/d].
double StrengthIntegral(const Piece& piece, const double* coefficients, double parameter);

/// Moments m_k = integral of strength(t) t^k dt, k = 0 ... kMoments.
using Moments = std::array<double, kMoments + 1>;
Moments StrengthMoments(const Piece& piece, const double* coefficients);

/// Potential and flow of a piece with known coefficients.
Flow Evaluate(const Piece& piece, const double* coefficients, const Moments& moments, Complex at, Side on);

}  // namespace aem::detail
