// Large systems solved by iteration against the same systems factorised, and the orders that lines are given.
#include <gtest/gtest.h>

#include <random>

#include "aem/models.h"

namespace aem_test {
namespace {

/// A straight wall, leaky or not, or a closed one.
aem::Wall MakeWall(const std::vector<Complex>& points, aem::WallKind kind, double conductivity) {
  aem::Wall wall;
  wall.origin.label = "NF_" + std::to_string(int(points[0].real()));
  wall.kind = kind;
  wall.conductivity = conductivity;
  for (Complex at : points) wall.points.push_back({{}, at});
  return wall;
}

/// One of everything, many times: rivers with and without beds, drains, domains of all contrasts, walls,
/// wells.
aem::Model Town() {
  aem::Model m = Base(10.0, 20.0, 18.0);
  m.aquifer.uniform_flow = {0.2, -0.1};
  std::mt19937 random(11);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  for (int k = 0; k < 3; ++k) {
    std::vector<Complex> points;
    for (int i = 0; i <= 12; ++i)
      points.push_back({-900.0 + 640.0 * k + 12.0 * u(random), -950.0 + 160.0 * i});
    aem::LineSinkString s = HeadString(points, 17.0 - 0.2 * k, "LS_00000" + std::to_string(k));
    if (k == 1) s.kind = aem::LineSinkKind::kDrain;
    if (k % 3 == 2) {
      s.resistance = 4.0;
      s.width = 6.0;
      s.depth = 1.0;
    }
    m.line_sinks.push_back(s);
  }
  const double conductivities[] = {0.1, 1.0, 80.0, 500.0};
  for (int i = 0; i < 4; ++i) {
    m.domains.push_back(
        Polygon(CircleRing({-740.0 + 320.0 * i, 100.0}, 90.0, 8), "IN_00000" + std::to_string(i)));
    m.domains.back().conductivity = conductivities[i];
    m.domains.back().recharge_sink = -0.0005;
  }
  m.domains[2].base = 3.0;
  m.walls.push_back(
      MakeWall({{-740.0, -600.0}, {-700.0, -420.0}, {-730.0, -250.0}}, aem::WallKind::kOpen, 0.0));
  m.walls.push_back(MakeWall({{-100.0, -600.0}, {-100.0, -300.0}}, aem::WallKind::kOpen, 0.05));
  m.walls.push_back(MakeWall(CircleRing({220.0, 600.0}, 70.0, 8), aem::WallKind::kKeepOutside, 0.0));
  for (int i = 0; i < 10; ++i)
    m.wells.push_back({{"WL_" + std::to_string(i), 0},
                       {-740.0 + 320.0 * (i % 5), -700.0 + 900.0 * (i / 5)},
                       0.3,
                       i % 4 == 1,
                       i % 4 == 1 ? 15.5 : 60.0});
  m.disks.push_back({{"POND", 0}, {540.0, 700.0}, 60.0, true, 17.5});
  return m;
}

TEST(Iterative, AgreesWithTheFactorisedSystem) {
  const aem::Model town = Town();
  aem::Solution iterated(town, {.accuracy = 2e-3, .factorise = 0}),
      factorised(town, {.accuracy = 2e-3, .factorise = 1000000});
  const aem::IterationReport a = iterated.Iterate(3), b = factorised.Iterate(3);
  ASSERT_TRUE(a.converged && b.converged) << Said(iterated.Findings()) << Said(factorised.Findings());
  EXPECT_GT(a.linear_steps, 0);
  EXPECT_LT(a.linear_steps, 600);
  EXPECT_EQ(b.linear_steps, 0);
  ASSERT_EQ(iterated.Unknowns(), factorised.Unknowns());
  const double range = factorised.HeadRange();
  for (int i = 0; i < 30; ++i)
    for (int j = 0; j < 30; ++j) {
      const Complex at{-930.0 + 63.1 * i, -930.0 + 63.7 * j};
      EXPECT_NEAR(iterated.At(at).head, factorised.At(at).head, 1e-6 * range) << at;
    }
  const std::vector<aem::WellResult> wells = iterated.Wells(), expected = factorised.Wells();
  for (std::size_t i = 0; i < wells.size(); ++i)
    EXPECT_NEAR(wells[i].discharge, expected[i].discharge, 1e-5 * std::abs(expected[i].discharge) + 1e-6);
  const aem::Balance balance = iterated.WaterBalance();
  EXPECT_LT(std::abs(balance.error), 1e-8 * balance.throughflow);
}

TEST(Iterative, LinesGetTheOrderThatHeadsNeedAndStateKeepsIt) {
  aem::Model m = Base();
  std::mt19937 random(5);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  for (int k = 0; k < 10; ++k) {
    std::vector<Complex> points;
    for (int i = 0; i <= 50; ++i)
      points.push_back({-900.0 + 190.0 * k + 9.0 * u(random), -1000.0 + 40.0 * i});
    m.line_sinks.push_back(HeadString(points, 30.0 - 0.1 * k, "LS_00000" + std::to_string(k)));
  }
  for (int i = 0; i < 9; ++i)
    m.wells.push_back(
        {{"W" + std::to_string(i), 0}, {-860.0 + 190.0 * i, 150.0 * i - 500.0}, 0.3, false, 400.0});
  aem::Solution s(m);
  ASSERT_TRUE(s.Iterate(1).converged) << Said(s.Findings());
  const aem::Checks checks = s.Check();
  EXPECT_LT(checks.line_sink_head.value, 1e-4 * checks.head_range) << checks.line_sink_head.label;
  EXPECT_LT(s.Unknowns(), 500u * 8u);

  const std::vector<std::byte> state = s.SaveState();
  aem::Solution again(m);
  ASSERT_TRUE(again.LoadState(state));
  EXPECT_EQ(again.Unknowns(), s.Unknowns());
  EXPECT_EQ(again.At({17.0, 23.0}).head, s.At({17.0, 23.0}).head);
  EXPECT_FALSE(again.LoadState(std::span(state).first(state.size() - 1)));
  std::vector<std::byte> foreign = state;
  foreign.back() = std::byte{9};
  EXPECT_FALSE(again.LoadState(foreign));
  EXPECT_EQ(again.At({17.0, 23.0}).head, s.At({17.0, 23.0}).head);
}

}  // namespace
}  // namespace aem_test
