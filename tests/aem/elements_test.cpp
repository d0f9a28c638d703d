// Walls, beds, drains, routed streams, transient and partially penetrating wells against closed forms.
#include <gtest/gtest.h>

#include "aem/kernel/partial.h"
#include "aem/kernel/theis.h"
#include "aem/models.h"

namespace aem_test {
namespace {

constexpr double kPi = std::numbers::pi;

aem::Wall WallAlong(const std::vector<Complex>& points, aem::WallKind kind = aem::WallKind::kOpen) {
  aem::Wall w;
  w.origin = {"HB_000001_0000", 7};
  w.kind = kind;
  for (std::size_t i = 0; i < points.size(); ++i)
    w.points.push_back({{"HB_" + std::to_string(i), 0}, points[i]});
  return w;
}

// A plate across uniform flow: Omega = -Q sqrt(z^2 + c^2) (Joukowski).
TEST(Walls, SlitAcrossUniformFlow) {
  for (int segments : {1, 3, 8}) {
    aem::Model m = Base();
    m.aquifer.uniform_flow = {0.5, 0.0};
    m.walls.push_back(WallAlong(Line({0, -100}, {0, 100}, segments)));
    aem::Solution s(m);
    ASSERT_FALSE(s.Refused()) << Said(s.Findings());
    s.Iterate(1);
    const auto exact = [&](Complex z) {
      Complex root = std::sqrt(z * z + 1e4);
      if ((root * std::conj(z)).real() < 0.0) root = -root;
      return -0.5 * root.real();
    };
    const double level = s.At({3000, 0}).potential - exact({3000, 0});
    for (Complex z : {Complex{-5, 0}, Complex{5, 0}, Complex{-1, 90}, Complex{30, 140}, Complex{-200, -50}})
      EXPECT_NEAR(s.At(z).potential - level, exact(z), 3e-4 * 50.0) << z << " " << segments;
    const aem::WallResult wall = s.Walls()[0];
    ASSERT_EQ(int(wall.vertices.size()), segments);
    EXPECT_LT(s.Check().wall_leakage.value, 2e-2 * 0.5);
    EXPECT_NEAR(wall.vertices[segments / 2].delta_flow_centre, 0.0, 3e-3 * 0.5);
    EXPECT_EQ(s.FirstCrossing({-10, 5}, {10, 5}).type, aem::CrossingType::kWall);
  }
}

TEST(Walls, LeakyWallLetsThroughByTheDifferenceInHead) {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.5, 0.1};
  m.walls.push_back(WallAlong({{0, -100}, {20, 0}, {0, 100}}));
  m.walls[0].conductivity = 0.01;
  m.walls[0].thickness = 0.5;
  aem::Solution s(m);
  s.Iterate(1);
  for (Complex z : {Complex{6, -70}, Complex{17, 15}}) {
    const Complex normal = Complex{20, 100} / std::abs(Complex{20, 100}) * Complex{0, -1};
    const Complex n = z.imag() < 0.0 ? normal : Complex{-normal.real() * -1.0, -normal.imag()};
    const aem::PointState left = s.At(z - 1e-6 * n), right = s.At(z + 1e-6 * n);
    const double through = 0.01 / 0.5 * 20.0 * (left.head - right.head);
    const double flow = left.discharge.real() * n.real() + left.discharge.imag() * n.imag();
    EXPECT_NEAR(flow, through, 4e-3 * 0.5);
    EXPECT_GT(through, 0.05);
  }
}

TEST(Walls, KeepOneSideOnly) {
  const std::vector<Complex> ring = CircleRing({0, 0}, 100.0, 48);
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.5, 0.0};
  m.walls.push_back(WallAlong(ring, aem::WallKind::kKeepOutside));
  m.wells.push_back({{"inside", 1}, {20, 0}, 0.3, false, 900.0});
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  EXPECT_EQ(s.At({20, 30}).status, aem::PointStatus::kIgnored);
  EXPECT_EQ(s.At({20, 30}).head, aem::kNotSet);
  const Complex z{120, 90};
  EXPECT_NEAR(s.At(z).discharge.real(), (0.5 * (1.0 - 1e4 / (z * z))).real(), 2e-3);
  EXPECT_NEAR(s.At({0, 103}).discharge.real(), 0.5 * (1.0 + 1e4 / (103.0 * 103.0)), 2e-2);

  m.walls[0].kind = aem::WallKind::kKeepInside;
  m.aquifer.reference_point = {-50, 0};
  m.line_sinks.push_back(HeadString({{-40, 50}, {10, 60}, {50, 40}}, 27.0));
  aem::Solution t(m);
  ASSERT_FALSE(t.Refused()) << Said(t.Findings());
  t.Iterate(1);
  EXPECT_NEAR(t.LineSinks()[0].discharge, -900.0, 1e-6);
  EXPECT_EQ(t.At({200, 0}).status, aem::PointStatus::kIgnored);
  EXPECT_LT(t.Check().wall_leakage.value, 2e-2 * t.Check().undisturbed_flow);
}

TEST(Walls, ClosedRegionNeedsAHead) {
  aem::Model m = Base();
  m.walls.push_back(WallAlong({{0, 0}, {100, 0}, {100, 100}, {0, 100}}, aem::WallKind::kClosed));
  aem::Solution s(m);
  EXPECT_TRUE(s.Refused());
  EXPECT_EQ(s.Findings().back().label, "HB_000001_0000");
  m.line_sinks.push_back(HeadString({{20, 20}, {60, 70}}, 22.0));
  aem::Solution t(m);
  ASSERT_FALSE(t.Refused());
  t.Iterate(1);
  EXPECT_NEAR(t.At({90, 10}).head, 22.0, 1e-5);
  EXPECT_NEAR(t.At({190, 10}).head, 30.0, 1e-5);
  m.walls[0].kind = aem::WallKind::kKeepInside;
  aem::Solution u(m);
  ASSERT_FALSE(u.Refused()) << "the reference point is on ignored ground, the line-sink decides";
  u.Iterate(1);
  EXPECT_NEAR(u.At({90, 10}).head, 22.0, 1e-5);
}

TEST(Walls, OnADomainsEdgeAndAStreamAlongAnEdge) {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.5, 0.2};
  m.domains.push_back(Polygon({{0, 0}, {200, 0}, {200, 200}, {0, 200}}));
  m.domains[0].conductivity = 50.0;
  m.walls.push_back(WallAlong({{0, 200}, {0, 50}}));
  m.line_sinks.push_back(HeadString({{200, 20}, {200, 180}}, 29.0));
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  const aem::Checks c = s.Check();
  EXPECT_LT(c.line_sink_head.value, 1e-3 * c.head_range) << c.head_range;
  EXPECT_LT(c.domain_head_jump.value, 3e-3 * c.head_range);
  EXPECT_NEAR(s.Walls()[0].vertices[0].delta_flow_centre, 0.0, 0.1 * 0.5);
  EXPECT_NEAR(s.At({199.9999, 100}).head, 29.0, 1e-4);
  EXPECT_NEAR(s.At({200.0001, 100}).head, 29.0, 1e-4);
}

/// A stream long enough that flow at its middle is one-dimensional.
aem::Model LongStream(double stage, double depth) {
  aem::Model m = Base(10.0, 100.0, 30.0);
  m.aquifer.reference_point = {-200.0, 0.0};
  m.aquifer.uniform_flow = {0.6, 0.0};
  std::vector<Complex> points;
  for (double y : {-2e5, -5e4, -1e4, -3e3, -1e3, -500.0, -250.0, 0.0, 250.0, 500.0, 1e3, 3e3, 1e4, 5e4, 2e5})
    points.push_back({0.0, y});
  m.line_sinks.push_back(HeadString(points, stage));
  m.line_sinks[0].resistance = 20.0;
  m.line_sinks[0].width = 8.0;
  m.line_sinks[0].depth = depth;
  return m;
}

TEST(Beds, OneDimensionalResistanceStream) {
  for (aem::BedLocation location :
       {aem::BedLocation::kUnknown, aem::BedLocation::kCentreline, aem::BedLocation::kWaterEdge}) {
    aem::Model m = LongStream(27.0, 20.0);
    m.line_sinks[0].location = location;
    aem::Solution s(m);
    EXPECT_TRUE(s.Iterate(2).converged);
    const double head = s.At({0, 100}).head, length = std::sqrt(10.0 * head * 20.0);
    const double width = location == aem::BedLocation::kUnknown      ? 8.0
                         : location == aem::BedLocation::kCentreline ? 2.0 * length * std::tanh(4.0 / length)
                                                                     : length * std::tanh(8.0 / length);
    const double density = width * (head - 27.0) / 20.0;
    EXPECT_NEAR(s.SinkDensity(0, 7, 0.4), density, 1e-6 * std::abs(density));
    // From the reference to the stream: the unconfined potential falls by (Q + density/2) times the distance.
    EXPECT_NEAR(5.0 * (900.0 - head * head), 200.0 * (0.6 + 0.5 * density), 0.02);
    EXPECT_NEAR(s.LineSinks()[0].segments[7].width, width, 1e-9);
    EXPECT_LT(s.LineSinks()[0].segments[7].error, 1e-6);
  }
}

TEST(Beds, PercolatingStreamLosesWhatItsDepthPressesThrough) {
  aem::Model m = LongStream(60.0, 2.0);
  aem::Solution s(m);
  EXPECT_TRUE(s.Iterate(2).converged);
  EXPECT_NEAR(s.LineSinks()[0].segments[7].discharge, -8.0 * 2.0 / 20.0 * 250.0, 1e-6);
  EXPECT_TRUE(s.LineSinks()[0].segments[7].percolating);
  EXPECT_TRUE(s.Percolates(0, 7, 0.5));
}

TEST(Drains, TakeWaterOnly) {
  for (double resistance : {0.0, 10.0}) {
    aem::Model m = Base(10.0, 100.0, 30.0);
    m.line_sinks.push_back(HeadString(Line({-100, 0}, {100, 0}, 4), 29.0, "D"));
    m.line_sinks.push_back(HeadString(Line({-100, 300}, {100, 300}, 4), 31.0, "E"));
    for (aem::LineSinkString& d : m.line_sinks) {
      d.kind = aem::LineSinkKind::kDrain;
      d.resistance = resistance;
      d.width = 2.0;
    }
    aem::Solution s(m);
    EXPECT_TRUE(s.Iterate(2).converged);
    const auto r = s.LineSinks();
    EXPECT_GT(r[0].discharge, 1.0);
    EXPECT_NEAR(r[1].discharge, 0.0, 1e-9);
    for (const auto& segment : r[1].segments) EXPECT_TRUE(segment.switched_off);
    if (resistance == 0.0) {
      EXPECT_NEAR(r[0].segments[1].calculated_head, 29.0, 1e-5);
    }
  }
}

TEST(Streams, LoseNoMoreThanTheyCarry) {
  for (double resistance : {0.0, 5.0}) {
    aem::Model m = Base(10.0, 100.0, 30.0);
    // A gaining headwater flows into a losing string, whose third reach falls dry.
    m.line_sinks.push_back(HeadString(Line({400, 0}, {0, 0}, 2), 29.9, "LOW"));
    m.line_sinks.push_back(HeadString(Line({0, 0}, {-600, 0}, 6), 34.0, "HIGH"));
    for (aem::LineSinkString& d : m.line_sinks) {
      d.kind = aem::LineSinkKind::kStream;
      d.resistance = resistance;
      d.width = 4.0;
      d.depth = 1.0;
    }
    m.line_sinks[0].inflow = 100.0;
    m.line_sinks[0].overland_flow = 20.0;
    aem::Solution s(m);
    ASSERT_FALSE(s.Refused()) << Said(s.Findings());
    const aem::IterationReport report = s.Iterate(2);
    EXPECT_TRUE(report.converged) << report.change << " after " << report.iterations;
    const auto r = s.LineSinks();
    EXPECT_EQ(r[0].flows_into, 1);
    EXPECT_NEAR(r[0].outflow, 120.0 + r[0].discharge, 1e-9);
    EXPECT_NEAR(r[1].discharge, -r[0].outflow, 1e-6);
    EXPECT_NEAR(r[1].outflow, 0.0, 1e-6);
    EXPECT_TRUE(r[1].segments.back().switched_off);
    EXPECT_NEAR(r[1].segments.back().discharge, 0.0, 1e-9);
  }
}

// A large block of ground with a higher base: the jump of the potential is nearly level along its side, so
// that the flow stays that of the uniform field, and heads follow one-dimensional flow from the reference
// point.
TEST(BaseStep, OneDimensional) {
  aem::Model m = Base(10.0, 100.0, 30.0);
  m.aquifer.reference_point = {-300.0, 0.0};
  m.aquifer.uniform_flow = {0.05, 0.0};
  std::vector<Complex> ring;
  for (double y : {-2e4, -5e3, -1500.0, -400.0, -150.0, 150.0, 400.0, 1500.0, 5e3, 2e4})
    ring.push_back({0.0, -y});
  ring.push_back({2e4, -2e4});
  ring.push_back({2e4, 2e4});
  m.domains.push_back(Polygon(ring));
  m.domains[0].base = 8.0;
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  EXPECT_TRUE(s.Iterate(2).converged);
  const double q = s.At({-100, 0}).discharge.real();
  EXPECT_NEAR(q, 0.05, 5e-3);
  const double edge = std::sqrt(900.0 - 2.0 * q * 300.0 / 10.0);
  EXPECT_NEAR(s.At({-1e-6, 10}).head, edge, 1e-4);
  EXPECT_NEAR(s.At({1e-6, 10}).head, edge, 1e-4);
  EXPECT_NEAR(s.At({200, 0}).head, 8.0 + std::sqrt((edge - 8.0) * (edge - 8.0) - 2.0 * q * 200.0 / 10.0),
              1e-4);
}

TEST(Domains, ConcentricCircles) {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.5, 0.0};
  m.domains.push_back(Polygon(CircleRing({0, 0}, 200.0, 96), "OUTER"));
  m.domains.push_back(Polygon(CircleRing({0, 0}, 100.0, 96), "INNER"));
  m.domains[0].conductivity = 2.0;
  m.domains[1].conductivity = 80.0;
  aem::Solution s(m);
  s.Iterate(1);
  // Phi = -(A r + B/r) cos: inside A2, between A1 and B1, outside 0.5 and B0; head and flow continuous.
  const double k0 = 10, k1 = 2, k2 = 80;
  const double beta = (k1 - k2) / (k1 + k2) * 1e4;  // B1/A1
  const double a = 1.0 + beta / 4e4, b = 1.0 - beta / 4e4;
  const double a1 = 0.5 * 2.0 / (a * k0 / k1 + b);
  const double a2 = a1 * 2.0 * k2 / (k1 + k2);
  EXPECT_NEAR(s.At({30, -20}).discharge.real(), a2, 3e-3 * a2);
  const Complex z{-60, 140};
  EXPECT_NEAR(s.At(z).discharge.real(), (a1 * (1.0 - beta / (z * z))).real(), 3e-3 * 0.5);
}

TEST(Theis, ExponentialIntegralAndDrawdown) {
  EXPECT_NEAR(aem::detail::ExpIntegral(0.01), 4.0379295765381138, 1e-13);
  EXPECT_NEAR(aem::detail::ExpIntegral(1.0), 0.21938393439552029, 1e-15);
  EXPECT_NEAR(aem::detail::ExpIntegral(5.0), 0.0011482955912753257, 1e-17);
  aem::Model m = Base();
  m.theis.push_back({{"T", 1}, {0, 0}, 500.0, 0.0, 30.0, 1e-4, 0.2});
  m.theis.push_back({{"T", 2}, {0, 0}, -500.0, 10.0, 30.0, 1e-4, 0.2});
  aem::Solution s(m);
  s.Iterate(1);
  EXPECT_NEAR(s.At({50, 0}).head, 30.0, 1e-12);
  s.SetTime(4.0);
  const double u = 2500.0 * 1e-4 / (4.0 * 10.0 * 4.0);
  EXPECT_NEAR(s.At({50, 0}).head, 30.0 - 500.0 / (4 * kPi * 200.0) * aem::detail::ExpIntegral(u), 1e-10);
  EXPECT_NEAR(s.At({0, 50}).discharge.imag(), -500.0 / (2 * kPi * 50.0) * std::exp(-u), 1e-12);
  EXPECT_EQ(s.TheisWells().size(), 1u);
  EXPECT_EQ(s.TheisWells()[0].discharge, 500.0);
  s.SetTime(25.0);
  EXPECT_EQ(s.TheisWells()[0].discharge, 0.0);
  const double recovery =
      aem::detail::ExpIntegral(2500.0 * 1e-4 / 1000.0) - aem::detail::ExpIntegral(2500.0 * 1e-4 / 600.0);
  EXPECT_NEAR(s.At({50, 0}).head, 30.0 - 500.0 / (4 * kPi * 200.0) * recovery, 1e-10);
}

// Near the well images are summed, farther the series of Bessel functions: here all by the series, term by
// term.
TEST(PartialWells, ImagesAgreeWithTheSeries) {
  constexpr double H = 20.0;
  const aem::detail::Zone zone{10.0, 0.0, H, 0.2};
  for (const auto& [bottom, top] :
       {std::pair{12.0, 18.0}, std::pair{0.0, 3.0}, std::pair{19.0, 20.0}, std::pair{9.5, 10.5}}) {
    aem::PartialWell well;
    well.top = top;
    well.bottom = bottom;
    well.radius = 0.2;
    const aem::detail::PartialCorrection correction(well, zone, H);
    for (double r : {0.2, 1.0, 7.0, 19.9, 20.1, 35.0})
      for (double z : {0.0, 2.5, 10.0, 14.0, 20.0}) {
        double potential = 0.0, radial = 0.0, vertical = 0.0;
        for (int n = 1; n * kPi * r / H < 40.0; ++n) {
          const double f = n * kPi / H;
          const double c = -H / (kPi * kPi * (top - bottom)) / n * (std::sin(f * top) - std::sin(f * bottom));
          potential += c * std::cos(f * z) * std::cyl_bessel_k(0.0, f * r);
          radial += c * std::cos(f * z) * f * std::cyl_bessel_k(1.0, f * r);
          vertical += c * std::sin(f * z) * f * std::cyl_bessel_k(0.0, f * r) / H;
        }
        const auto local = correction.At(r, z);
        EXPECT_NEAR(local.potential, potential, 5e-10) << r << " " << z << " " << bottom;
        EXPECT_NEAR(local.radial, radial, 1e-9) << r << " " << z << " " << bottom;
        EXPECT_NEAR(local.vertical, vertical, 1e-9) << r << " " << z << " " << bottom;
      }
    double mean = 0.0;
    for (int n = 1; n < 1300; ++n) {
      const double f = n * kPi / H, ends = std::sin(f * top) - std::sin(f * bottom);
      mean -= ends * ends / (f * n * n) * std::cyl_bessel_k(0.0, f * 0.2) * n;
    }
    mean *= H / (kPi * kPi * (top - bottom) * (top - bottom));
    EXPECT_NEAR(correction.OnScreen(), mean, 5e-10) << bottom;
  }
}

TEST(PartialWells, LocalFlowIsContinuousAndDiesAway) {
  aem::Model m = Base();
  aem::PartialWell w;
  w.origin = {"P", 1};
  w.top = 18.0;
  w.bottom = 12.0;
  w.radius = 0.2;
  w.value = 600.0;
  m.partial_wells.push_back(w);
  aem::Solution s(m);
  s.Iterate(1);
  const Complex z{9.0, 2.0};
  const double height = 7.0, d = 0.01;
  double vertical_up = 0.0, vertical_down = 0.0, unused = 0.0;
  const auto at = [&](Complex p, double elevation) { return s.AtElevation(p, elevation, &unused).discharge; };
  s.AtElevation(z, height + d, &vertical_up);
  s.AtElevation(z, height - d, &vertical_down);
  const double divergence = (at(z + d, height).real() - at(z - d, height).real() +
                             at(z + Complex{0, d}, height).imag() - at(z - Complex{0, d}, height).imag()) /
                            (2 * d);
  EXPECT_NEAR(divergence / 20.0, -(vertical_up - vertical_down) / (2 * d), 1e-5);
  double mean = 0.0;
  for (int i = 0; i < 40; ++i) mean += s.AtElevation(z, 0.25 + 0.5 * i, &unused).head / 40.0;
  EXPECT_NEAR(mean, s.At(z).head, 1e-6);
  EXPECT_NEAR(s.AtElevation({45, 0}, 2.0, &unused).head, s.At({45, 0}).head, 2e-3);
  // The drawdown at the screen is that of a full well plus the loss by convergence, and a head well meets it.
  const double head = s.PartialWells()[0].head;
  EXPECT_LT(head, s.At({0, 0}).head - 0.5);
  m.partial_wells[0].by_head = true;
  m.partial_wells[0].value = head;
  aem::Solution t(m);
  t.Iterate(2);
  EXPECT_NEAR(t.PartialWells()[0].discharge, 600.0, 1e-6);
  m.partial_wells[0].top = 20.0;
  m.partial_wells[0].bottom = 0.0;
  aem::Solution full(m);
  full.Iterate(2);
  EXPECT_NEAR(full.At({0, 0}).head, head, 1e-9);
}

}  // namespace
}  // namespace aem_test
