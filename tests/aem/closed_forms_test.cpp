// Heads and flows against closed forms.
#include <gtest/gtest.h>

#include "aem/models.h"

namespace aem_test {
namespace {

constexpr double kPi = std::numbers::pi;

double Confined(const aem::Aquifer& a, double head) {
  return a.conductivity * a.thickness * (head - a.base) - 0.5 * a.conductivity * a.thickness * a.thickness;
}

TEST(ClosedForms, WellInUniformFlow) {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.4, -0.1};
  m.wells.push_back({{"W", 1}, {100.0, 50.0}, 0.3, false, 800.0});
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  EXPECT_TRUE(s.Iterate(2).converged);
  const Complex reference = m.aquifer.reference_point, well{100.0, 50.0};
  for (Complex z : {Complex{0.0, 0.0}, Complex{-300.0, 400.0}, Complex{101.0, 50.0}}) {
    const double potential = Confined(m.aquifer, 30.0) - 0.4 * (z - reference).real() +
                             0.1 * (z - reference).imag() +
                             800.0 / (2.0 * kPi) * std::log(std::abs(z - well) / std::abs(reference - well));
    const double head = potential / 200.0 + 10.0;
    const aem::PointState p = s.At(z);
    EXPECT_NEAR(p.head, head, 1e-10 * head);
    const Complex q = Complex{0.4, -0.1} - 800.0 / (2.0 * kPi) * (z - well) / std::norm(z - well);
    EXPECT_NEAR(std::abs(p.discharge - q), 0.0, 1e-12);
  }
  EXPECT_NEAR(s.Wells()[0].head, s.At(well + 0.3).head, 1e-3);
}

TEST(ClosedForms, UnconfinedWellAtReferenceHead) {
  aem::Model m = Base(5.0, 100.0, 20.0);
  m.wells.push_back({{"W", 1}, {0.0, 0.0}, 0.5, false, 500.0});
  aem::Solution s(m);
  s.Iterate(1);
  const double r0 = std::abs(m.aquifer.reference_point);
  for (double r : {0.5, 10.0, 700.0})
    EXPECT_NEAR(s.At(r).head, std::sqrt(400.0 + 500.0 / (kPi * 5.0) * std::log(r / r0)), 1e-10);
}

TEST(ClosedForms, HeadWellAndHeadDiskMeetTheirHeads) {
  aem::Model m = Base();
  m.wells.push_back({{"W", 1}, {0.0, 0.0}, 0.25, true, 25.0});
  m.disks.push_back({{"D", 2}, {300.0, 0.0}, 40.0, true, 28.0});
  aem::Solution s(m);
  s.Iterate(1);
  EXPECT_NEAR(s.At({300.0, 0.0}).head, 28.0, 1e-9);
  EXPECT_NEAR(s.Wells()[0].head, 25.0, 1e-9);
  // By hand: two unknowns and the constant, the matrix of logarithms.
  const double r0 = std::abs(m.aquifer.reference_point), r1 = std::abs(m.aquifer.reference_point - 300.0);
  const double a = std::log(0.25 / r0) / (2 * kPi), b = (std::log(300.0 / r1)) / (2 * kPi);
  const double c = std::log(300.0 / r0) / (2 * kPi), d = (std::log(40.0 / r1) - 0.5) / (2 * kPi);
  const double p = 200.0 * (25.0 - 30.0), q = 200.0 * (28.0 - 30.0);
  EXPECT_NEAR(s.Wells()[0].discharge, (p * d - b * q) / (a * d - b * c), 1e-7);
  EXPECT_NEAR(s.Disks()[0].discharge, (a * q - c * p) / (a * d - b * c), 1e-7);
}

TEST(ClosedForms, SinkDisk) {
  aem::Model m = Base();
  m.disks.push_back({{"D", 1}, {0.0, 0.0}, 100.0, false, -0.002});
  aem::Solution s(m);
  s.Iterate(1);
  const double r0 = std::abs(m.aquifer.reference_point), outside = -0.002 * 1e4 / 2.0;
  const double at_rim = Confined(m.aquifer, 30.0) + outside * std::log(100.0 / r0);
  EXPECT_NEAR(s.At(250.0).potential, at_rim + outside * std::log(2.5), 1e-8);
  EXPECT_NEAR(s.At({0.0, 60.0}).potential, at_rim - 0.0005 * (3600.0 - 1e4), 1e-8);
  EXPECT_NEAR(s.At({0.0, 60.0}).discharge.imag(), 0.001 * 60.0, 1e-12);
  EXPECT_DOUBLE_EQ(s.At({0.0, 60.0}).net_recharge, -0.002);
}

TEST(ClosedForms, ClosedBoxOfHeadLineSinksIsLevelInside) {
  aem::Model m = Base();
  std::vector<Complex> ring;
  const std::vector<Complex> corners{{-100, -80}, {100, -80}, {100, 80}, {-100, 80}, {-100, -80}};
  for (int side = 0; side < 4; ++side)
    for (int i = 0; i < 4; ++i)
      ring.push_back(corners[side] + (corners[side + 1] - corners[side]) * (i / 4.0));
  ring.push_back(corners[4]);
  m.line_sinks.push_back(HeadString(ring, 24.0));
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  for (Complex z : {Complex{0, 0}, Complex{60, 50}, Complex{-90, 10}}) {
    EXPECT_NEAR(s.At(z).head, 24.0, 24.0 * 1e-6);
    EXPECT_NEAR(std::abs(s.At(z).discharge), 0.0, 1e-4);
  }
  EXPECT_LT(s.Check().line_sink_head.value, 1e-4 * s.HeadRange());
}

// A straight stream of length 2c at head h in an otherwise undisturbed aquifer: potential of a slit,
// Q/(2 pi) ln |(z + sqrt(z^2 - c^2))/c| above that of the slit.
TEST(ClosedForms, IsolatedStreamIsASlit) {
  aem::Model m = Base();
  m.aquifer.reference_point = {0.0, 4000.0};
  m.line_sinks.push_back(HeadString({{-200, 0}, {200, 0}}, 24.0));
  aem::Solution s(m);
  s.Iterate(1);
  const auto slit = [](Complex z) {
    return std::log(std::abs((z + std::sqrt(z - 200.0) * std::sqrt(z + 200.0)) / 200.0)) / (2 * kPi);
  };
  const double discharge = 200.0 * 6.0 / slit(m.aquifer.reference_point);
  EXPECT_NEAR(s.LineSinks()[0].discharge, discharge, 1e-8 * discharge);
  for (Complex z : {Complex{210, 0}, Complex{50, 30}, Complex{-500, 200}, Complex{199.5, 0.1}})
    EXPECT_NEAR(s.At(z).potential, Confined(m.aquifer, 24.0) + discharge * slit(z), 2e-6 * 1200.0);
  EXPECT_NEAR(s.SinkDensity(0, 0, 0.5), discharge / (kPi * 200.0), 2e-3);
  EXPECT_LT(s.Check().line_sink_head.value, 1e-5 * 6.0);
}

// A well near a stream far longer than the distance between them: the image well.  The stream's finite length
// leaves (distance/half length)^2 of it.
TEST(ClosedForms, ImageWellAtAStraightStream) {
  aem::Model m = Base();
  m.aquifer.reference_point = {0.0, -90000.0};
  m.aquifer.reference_head = 24.0;
  m.wells.push_back({{"W", 1}, {0.0, 50.0}, 0.3, false, 1000.0});
  std::vector<Complex> points;
  for (double x : {-50000.0, -12000.0, -4000.0, -1500.0, -700.0, -400.0}) points.push_back(x);
  for (double x = -350.0; x <= 350.0; x += 50.0) points.push_back(x);
  for (double x : {400.0, 700.0, 1500.0, 4000.0, 12000.0, 50000.0}) points.push_back(x);
  m.line_sinks.push_back(HeadString(points, 24.0));
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  for (Complex z : {Complex{10, 50}, Complex{100, 20}, Complex{-60, 120}}) {
    const double drawdown =
        1000.0 / (2 * kPi) * std::log(std::abs(z - Complex{0, 50}) / std::abs(z + Complex{0, 50}));
    EXPECT_NEAR(s.At(z).head, 24.0 + drawdown / 200.0, 3e-5);
  }
  EXPECT_NEAR(-s.LineSinks()[0].discharge, 1000.0, 3.0);
}

TEST(ClosedForms, FluxAndBalance) {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.3, 0.2};
  m.wells.push_back({{"W", 1}, {20.0, 30.0}, 0.3, false, 700.0});
  m.disks.push_back({{"D", 2}, {-150.0, 0.0}, 60.0, false, -0.004});
  m.line_sinks.push_back(HeadString({{-300, -200}, {-100, -260}, {150, -200}}, 29.0));
  m.domains.push_back(Polygon({{200, 100}, {400, 120}, {380, 300}, {220, 280}}));
  m.domains[0].recharge_sink = -0.003;
  m.domains[0].conductivity = 40.0;
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  // Around the well, clockwise so that its inflow comes from the left.
  const std::vector<Complex> around{{0, 0}, {0, 60}, {50, 60}, {50, 0}, {0, 0}};
  EXPECT_NEAR(s.Flux(around), 700.0, 1e-8);
  // Through the middle of everything: the flow over a line of several crossings equals that of its halves'
  // detour, changed by what lies between.
  const std::vector<Complex> line{{-500, -230}, {500, -230}};
  const std::vector<Complex> detour{{-500, -230}, {-500, -900}, {500, -900}, {500, -230}};
  const std::vector<Complex> other{{-500, -230}, {-500, 900}, {500, 900}, {500, -230}};
  const aem::Balance b = s.WaterBalance();
  EXPECT_NEAR(s.Flux(other) - s.Flux(detour), b.wells + b.disks + b.recharge + b.line_sinks_head, 1e-6);
  double parts = 0.0;
  aem::PointState p;
  const int n = 200000;
  for (int i = 0; i < n; ++i) {
    p = s.At(line[0] + (line[1] - line[0]) * ((i + 0.5) / n));
    parts -= p.discharge.imag() * 1000.0 / n;
  }
  EXPECT_NEAR(s.Flux(line), parts, 2e-3 * std::abs(parts));
  EXPECT_LT(std::abs(b.error), 1e-8 * b.throughflow);
}

TEST(ClosedForms, UniformFlowAloneExchangesNothing) {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.3, -0.7};
  aem::Solution s(m);
  s.Iterate(1);
  EXPECT_EQ(s.WaterBalance().infinity, 0.0);
  EXPECT_EQ(s.WaterBalance().throughflow, 0.0);
}

}  // namespace
}  // namespace aem_test
