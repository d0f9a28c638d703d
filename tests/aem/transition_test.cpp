// Flow that is confined in one place and unconfined in another, and what finer drawing changes.
#include <gtest/gtest.h>

#include "aem/models.h"

namespace aem_test {
namespace {

constexpr double kPi = std::numbers::pi;

// A well of given head below the aquifer's top, far heads above it (Strack, 1989): confined beyond the radius
// where the head is at the top, unconfined within.
TEST(Transition, RadialFlowToAWell) {
  constexpr double k = 5.0, H = 20.0, kFar = 28.0, kAtWell = 12.0, kRadius = 0.3;
  aem::Model m = Base(k, H, kFar);
  m.wells.push_back({{"W", 1}, {0, 0}, kRadius, true, kAtWell});
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  EXPECT_TRUE(s.Iterate(2).converged);
  const double r0 = std::abs(m.aquifer.reference_point);
  const double discharge =
      2.0 * kPi * (k * H * (kFar - H) + 0.5 * k * (H * H - kAtWell * kAtWell)) / std::log(r0 / kRadius);
  EXPECT_NEAR(s.Wells()[0].discharge, discharge, 1e-9 * discharge);
  const double meets_top = r0 * std::exp(-2.0 * kPi * k * H * (kFar - H) / discharge);
  ASSERT_GT(meets_top, 2.0);
  for (double r : {1.0, 0.5 * meets_top, 0.999 * meets_top}) {
    const aem::PointState p = s.At(std::polar(r, 0.7));
    EXPECT_NEAR(p.head, std::sqrt(H * H - discharge / (kPi * k) * std::log(meets_top / r)), 1e-9) << r;
    EXPECT_NEAR(p.thickness, p.head, 1e-12) << r;
  }
  for (double r : {1.001 * meets_top, 2.0 * meets_top, 3000.0}) {
    const aem::PointState p = s.At(std::polar(r, -2.0));
    EXPECT_NEAR(p.head, H + discharge / (2.0 * kPi * k * H) * std::log(r / meets_top), 1e-9) << r;
    EXPECT_EQ(p.thickness, H) << r;
  }
}

// Between two long straight streams: the potential is linear.
TEST(Transition, OneDimensionalFlowBetweenStreams) {
  constexpr double k = 8.0, H = 15.0, kHigh = 21.0, kLow = 9.0, kDistance = 200.0;
  aem::Model m = Base(k, H, kHigh);
  m.aquifer.reference_point = {-90000.0, 0.0};
  for (const auto& [x, head] : {std::pair{0.0, kHigh}, std::pair{kDistance, kLow}}) {
    std::vector<Complex> points;
    for (double y :
         {-8000.0, -3000.0, -1200.0, -600.0, -300.0, -100.0, 100.0, 300.0, 600.0, 1200.0, 3000.0, 8000.0})
      points.push_back({x, y});
    m.line_sinks.push_back(HeadString(points, head, head == kHigh ? "HIGH" : "LOW"));
  }
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  EXPECT_TRUE(s.Iterate(2).converged);
  const double flow = (k * H * (kHigh - H) + 0.5 * k * (H * H - kLow * kLow)) / kDistance;
  const double meets_top = k * H * (kHigh - H) / flow;
  for (double x : {5.0, 40.0, 0.99 * meets_top, 1.01 * meets_top, 120.0, 195.0}) {
    const double head =
        x < meets_top ? kHigh - flow * x / (k * H) : std::sqrt(H * H - 2.0 * flow * (x - meets_top) / k);
    const aem::PointState p = s.At({x, 37.0});
    EXPECT_NEAR(p.head, head, 1e-5 * (kHigh - kLow)) << x;
    EXPECT_NEAR(p.discharge.real(), flow, 1e-4 * flow) << x;
  }
}

/// A polygon with its corners on the circle, so that it comes nearer as its sides grow in number.
std::vector<Complex> Inscribed(double radius, int sides) {
  std::vector<Complex> ring;
  for (int i = 0; i < sides; ++i) ring.push_back(std::polar(radius, 2.0 * kPi * (i + 0.5) / sides));
  return ring;
}

/// Errors at a drawing and at those of twice and four times as many vertices: each doubling takes three
/// quarters of the error of a polygon against the curve.
void ExpectSecondOrder(const std::vector<double>& errors, double last) {
  for (std::size_t i = 1; i < errors.size(); ++i) {
    const double rate = std::log2(errors[i - 1] / errors[i]);
    EXPECT_GT(rate, 1.8) << errors[i - 1] << " " << errors[i];
    EXPECT_LT(rate, 2.2) << errors[i - 1] << " " << errors[i];
  }
  EXPECT_LT(errors.back(), last);
}

// A well in the middle of a round lake's island: the lake's shore drawn with more and more vertices.
TEST(Refinement, HeadsWithinARoundShore) {
  constexpr double kRadius = 150.0, kTaken = 400.0, kStage = 25.0;
  std::vector<double> errors;
  for (int sides : {8, 16, 32, 64}) {
    aem::Model m = Base();
    m.wells.push_back({{"W", 1}, {0, 0}, 0.3, false, kTaken});
    std::vector<Complex> shore = Inscribed(kRadius, sides);
    shore.push_back(shore[0]);
    m.line_sinks.push_back(HeadString(shore, kStage));
    aem::Solution s(m);
    s.Iterate(1);
    const double exact = kStage + kTaken / (2.0 * kPi * 200.0) * std::log(40.0 / kRadius);
    errors.push_back(std::abs(s.At({40.0, 0.0}).head - exact));
  }
  ExpectSecondOrder(errors, 3e-4);
}

TEST(Refinement, FlowWithinARoundDomain) {
  std::vector<double> errors;
  for (int sides : {12, 24, 48, 96}) {
    aem::Model m = Base();
    m.aquifer.uniform_flow = {0.5, 0.0};
    m.domains.push_back(Polygon(Inscribed(100.0, sides)));
    m.domains[0].conductivity = 4.0 * m.aquifer.conductivity;
    aem::Solution s(m);
    s.Iterate(1);
    const Complex z{150.0, 80.0};
    const Complex exact = 0.5 * (1.0 + 0.6 * 1e4 / (z * z));
    errors.push_back(std::abs(std::conj(s.At(z).discharge) - exact));
  }
  ExpectSecondOrder(errors, 1e-4);
}

}  // namespace
}  // namespace aem_test
