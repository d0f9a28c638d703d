// Line elements against direct quadrature, and near against far.
#include "aem/kernel/piece.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace aem::detail {
namespace {

struct Case {
  const char* name;
  PieceKind kind;
  bool tip;
};

class Pieces : public ::testing::TestWithParam<Case> {
 protected:
  Piece Make() const { return {{-30.0, 10.0}, {50.0, 40.0}, GetParam().kind, GetParam().tip, 4}; }
  const double c_[kMaxBasis] = {1.3, -0.7, 0.4, 0.25, 0.0, 0.0};
};

// The potential of a sink is finite and continuous at both ends, where its logarithms are not.
TEST_P(Pieces, PotentialOfASinkIsContinuousAtItsEnds) {
  const Piece piece = Make();
  if (piece.kind != PieceKind::kSink) GTEST_SKIP() << "the jump of a doublet has an end";
  const Moments moments = StrengthMoments(piece, c_);
  for (const Complex end : {piece.from, piece.to}) {
    const double at = Evaluate(piece, c_, moments, end, Side::kMean).omega.real();
    const double beside = Evaluate(piece, c_, moments, end + Complex{0.0, 1e-9}, Side::kMean).omega.real();
    EXPECT_NEAR(at, beside, 1e-3);
  }
}

// Composite Gauss in the parameter, fine enough for points a fifth of the length away.
TEST_P(Pieces, IsTheIntegralOfItsStrength) {
  const Piece piece = Make();
  const Moments moments = StrengthMoments(piece, c_);
  const double half = 0.5 * piece.Length();
  for (Complex local :
       {Complex{0.3, 0.4}, Complex{-1.3, 0.2}, Complex{1.4, -0.3}, Complex{2.5, 1.0}, Complex{-9.0, 4.0}}) {
    const Complex z = 0.5 * (piece.from + piece.to) + 0.5 * local * (piece.to - piece.from);
    Complex sum{};
    const GaussRule rule = Gauss(40);
    for (int block = 0; block < 20; ++block)
      for (int i = 0; i < rule.size; ++i) {
        const double u = (block + 0.5 * (1.0 + rule.x[i])) / 20.0;
        const double parameter = piece.tip ? u : 2.0 * u - 1.0;
        const double x = PositionOf(piece, parameter);
        const double dx = (piece.tip ? 4.0 * parameter : 2.0) * rule.w[i] / 40.0;
        const double strength = Strength(piece, c_, parameter);
        sum += piece.kind == PieceKind::kSink
                   ? strength * dx * half / (2 * std::numbers::pi) * std::log((local - x) * half)
                   : Complex{0.0, 1.0} / (2 * std::numbers::pi) * strength * dx / (local - x);
      }
    const Flow f = Evaluate(piece, c_, moments, z, Side::kMean);
    EXPECT_NEAR(f.omega.real(), sum.real(), 1e-9 * half);
    const double step = 1e-4;
    const Complex dx = (Evaluate(piece, c_, moments, z + step, Side::kMean).omega -
                        Evaluate(piece, c_, moments, z - step, Side::kMean).omega) /
                       (2.0 * step);
    EXPECT_NEAR(std::abs(f.w + dx), 0.0, 1e-7);
    std::array<Flow, kMaxBasis> basis;
    Influence(piece, z, Side::kMean, basis.data());
    Flow total{};
    std::array<double, kMaxBasis> potential;
    PotentialInfluence(piece, z, Side::kMean, potential.data());
    for (int n = 0; n < piece.size; ++n) EXPECT_NEAR(potential[n], basis[n].omega.real(), 1e-10 * half);
    for (int n = 0; n < piece.size; ++n) {
      total.omega += c_[n] * basis[n].omega;
      total.w += c_[n] * basis[n].w;
    }
    EXPECT_NEAR(std::abs(total.omega - f.omega), 0.0, 1e-9);
    EXPECT_NEAR(std::abs(total.w - f.w), 0.0, 1e-10);
  }
}

TEST_P(Pieces, JumpsByItsStrengthAndIsContinuousIntoTheFarField) {
  const Piece piece = Make();
  const Moments moments = StrengthMoments(piece, c_);
  for (double x : {-0.8, 0.0, 0.6}) {
    const double parameter = ParameterOf(piece, x);
    const Flow left = Evaluate(piece, c_, moments, piece.Global(x), Side::kLeft);
    const Flow right = Evaluate(piece, c_, moments, piece.Global(x), Side::kRight);
    const double strength = Strength(piece, c_, parameter);
    if (piece.kind == PieceKind::kDoublet) {
      EXPECT_NEAR(left.omega.real() - right.omega.real(), strength, 1e-12);
      EXPECT_NEAR(left.omega.imag(), right.omega.imag(), 1e-12);
    } else {
      // Water flows to the sink from both sides: the normal component drops by the density to the left.
      const Complex normal = piece.Direction() * Complex{0.0, 1.0};
      const Complex q = std::conj(left.w) - std::conj(right.w);
      EXPECT_NEAR(q.real() * normal.real() + q.imag() * normal.imag(), -strength, 1e-12);
      EXPECT_NEAR(left.omega.real(), right.omega.real(), 1e-12);
    }
    const Complex off = 1e-9 * (piece.to - piece.from) * Complex{0.0, 1.0};
    EXPECT_NEAR(std::abs(Evaluate(piece, c_, moments, piece.Global(x) + off, Side::kMean).omega - left.omega),
                0.0, 1e-5);
  }
  for (double angle = 0.1; angle < 6.2; angle += 0.5) {
    const Complex ray = std::polar(kNearRadius, angle) * 0.5 * (piece.to - piece.from);
    const Flow in = Evaluate(piece, c_, moments, piece.Middle() + ray * (1.0 - 1e-12), Side::kMean);
    const Flow out = Evaluate(piece, c_, moments, piece.Middle() + ray * (1.0 + 1e-12), Side::kMean);
    EXPECT_NEAR(std::abs(in.omega - out.omega), 0.0, 5e-9);
    EXPECT_NEAR(std::abs(in.w - out.w), 0.0, 5e-9);
  }
}

INSTANTIATE_TEST_SUITE_P(All, Pieces,
                         ::testing::Values(Case{"sink", PieceKind::kSink, false},
                                           Case{"tip_sink", PieceKind::kSink, true},
                                           Case{"doublet", PieceKind::kDoublet, false},
                                           Case{"tip_doublet", PieceKind::kDoublet, true}),
                         [](const auto& given) { return given.param.name; });

}  // namespace
}  // namespace aem::detail
