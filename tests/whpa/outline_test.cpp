#include "whpa/outline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

namespace ormel {
namespace {

using Complex = std::complex<double>;
constexpr double kPi = std::numbers::pi;

/// Wells that take `Q` in a uniform flow of `Qo` towards -x, in an aquifer of n H = 1: exact velocities,
/// integrated backward with small steps by Runge and Kutta's fourth-order method.
struct WellField {
  std::vector<Complex> wells;
  double Q = 2 * kPi, Qo = 1.0, radius = 1e-3;

  Complex BackwardVelocity(Complex z) const {
    Complex w = -Qo;  // discharge vector as its conjugate
    for (const Complex& well : wells) w -= Q / (2 * kPi) / (z - well);
    return -std::conj(w);
  }

  ModelPoint TipAfter(Complex start, double time) const {
    Complex z = start;
    double t = 0.0;
    while (t < time) {
      const double dt = std::min(time - t, 0.01 / std::abs(BackwardVelocity(z)));
      const Complex a = BackwardVelocity(z), b = BackwardVelocity(z + 0.5 * dt * a);
      const Complex c = BackwardVelocity(z + 0.5 * dt * b), d = BackwardVelocity(z + dt * c);
      z += dt / 6 * (a + 2.0 * b + 2.0 * c + d);
      t += dt;
    }
    return {z.real(), z.imag()};
  }

  Outline Trace(std::size_t well, const std::vector<double>& times,
                const OutlineOptions& options = {}) const {
    return TraceOutline(
        times,
        [&](const std::vector<double>& angles, std::vector<Ray>& rays) {
          for (const double angle : angles) {
            Ray ray;
            ray.angle = angle;
            for (const double t : times)
              ray.tips.push_back(TipAfter(wells[well] + std::polar(radius, angle), t));
            rays.push_back(ray);
          }
          return true;
        },
        options);
  }
};

bool Inside(const std::vector<ModelPoint>& ring, ModelPoint p) {
  bool inside = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++)
    if ((ring[i].y > p.y) != (ring[j].y > p.y) &&
        p.x < (ring[j].x - ring[i].x) * (p.y - ring[i].y) / (ring[j].y - ring[i].y) + ring[i].x)
      inside = !inside;
  return inside;
}

/// Distance of a point from the isochrone, to first order.  With lengths in Q / (2 pi Qo) and time in
/// n H Q / (2 pi Qo^2) the isochrone is exp(x - t) = cos y + x sin y / y (Bear and Jacobs 1965).
double IsochroneError(ModelPoint p, double t) {
  const auto f = [t](double x, double y) {
    const double sinc = std::abs(y) < 1e-9 ? 1.0 : std::sin(y) / y;
    return std::exp(x - t) - std::cos(y) - x * sinc;
  };
  const double h = 1e-6;
  const double fx = (f(p.x + h, p.y) - f(p.x - h, p.y)) / (2 * h);
  const double fy = (f(p.x, p.y + h) - f(p.x, p.y - h)) / (2 * h);
  return std::abs(f(p.x, p.y)) / std::hypot(fx, fy);
}

TEST(Outline, OfAWellInUniformFlowIsTheIsochroneAndHoldsThePumpedVolume) {
  const WellField field{.wells = {0.0}};
  const std::vector<double> times{0.3, 1.0, 4.0};
  const Outline outline = field.Trace(0, times);
  ASSERT_TRUE(outline.traced);
  EXPECT_TRUE(outline.converged);
  EXPECT_FALSE(outline.cut);
  for (std::size_t i = 0; i < times.size(); ++i) {
    const auto& ring = outline.rings[i];
    double width = 0.0;
    for (const ModelPoint& p : ring) width = std::max(width, 2 * std::abs(p.y));
    for (std::size_t k = 0; k < ring.size(); ++k) {
      const ModelPoint a = ring[k], b = ring[(k + 1) % ring.size()];
      EXPECT_LT(IsochroneError(a, times[i]), 1e-4 * width);
      // Between the vertices too.
      EXPECT_LT(IsochroneError({(a.x + b.x) / 2, (a.y + b.y) / 2}, times[i]), 0.01 * width);
    }
    EXPECT_NEAR(RingArea(ring), field.Q * times[i], 0.003 * field.Q * times[i]);
    if (i == 0) continue;
    for (const ModelPoint& p : outline.rings[i - 1]) EXPECT_TRUE(Inside(ring, p)) << "nested times nest";
  }
}

TEST(Outline, OfInterferingWellsDoesNotOverlapEvenWhereNeighboursPart) {
  // The second well stands upstream of the first one, whose zone must part around it.
  const WellField field{.wells = {{0.0, 0.0}, {2.0, 0.05}}};
  const Outline first = field.Trace(0, {6.0}), second = field.Trace(1, {6.0});
  ASSERT_TRUE(first.converged && second.converged);
  EXPECT_NEAR(RingArea(first.rings[0]), field.Q * 6, 0.02 * field.Q * 6);
  EXPECT_NEAR(RingArea(second.rings[0]), field.Q * 6, 0.02 * field.Q * 6);
  const std::vector<ModelPoint> coarse = SimplifyRing(first.rings[0], 1e-4 * RingDiagonal(first.rings[0]));
  EXPECT_LT(coarse.size(), first.rings[0].size());
  int overlapping = 0;
  for (const ModelPoint& p : second.rings[0])
    if (Inside(first.rings[0], {p.x + 0.02 * (2.0 - p.x), p.y + 0.02 * (0.05 - p.y)})) ++overlapping;
  EXPECT_EQ(overlapping, 0) << "of " << second.rings[0].size();
}

TEST(Outline, AddsParticlesOnlyWhereTheOutlineMoves) {
  const WellField still{.wells = {0.0}, .Qo = 0.0};
  const Outline circle = still.Trace(0, {1.0});
  EXPECT_LE(circle.rays, 128U);
  OutlineOptions coarse;
  coarse.tolerance = 0.05;
  const WellField moving{.wells = {0.0}};
  EXPECT_LT(moving.Trace(0, {4.0}, coarse).rays, moving.Trace(0, {4.0}).rays);
}

TEST(Outline, StopsWhenTheTracerDoesAndSaysWhatWasCut) {
  int calls = 0;
  const Outline stopped = TraceOutline({1.0}, [&](const auto&, auto&) { return ++calls < 1; }, {});
  EXPECT_FALSE(stopped.traced);
  EXPECT_TRUE(stopped.rings.empty());
  const Outline cut = TraceOutline({1.0},
                                   [](const auto& angles, auto& rays) {
                                     for (const double a : angles)
                                       rays.push_back({a, {{std::cos(a), std::sin(a)}}, a > 3.0});
                                     return true;
                                   },
                                   {});
  EXPECT_TRUE(cut.cut);
}

}  // namespace
}  // namespace ormel
