// Paths through solved models: stagnation, steps that are halved, awkward starts.
#include <gtest/gtest.h>

#include <map>
#include <new>
#include <thread>

#include "aem/models.h"
#include "aem/trace.h"

namespace aem_test {
namespace {

constexpr double kPi = std::numbers::pi;

aem::TraceOptions Tracing(double time, double step) {
  aem::TraceOptions options;
  options.longest_time = time;
  options.step = step;
  options.window = {-1000.0, -1000.0, 1000.0, 1000.0, true};
  return options;
}

// A well in uniform flow to the west: the water stands still downstream of it, where Q/(2 pi d) equals the
// flow.
TEST(Stagnation, OfAWellInUniformFlow) {
  constexpr double kTaken = 700.0, kFlow = 1.0, kDistance = kTaken / (2.0 * kPi * kFlow);
  aem::Model m = Base();
  m.aquifer.uniform_flow = {-kFlow, 0.0};
  m.aquifer.reference_point = {0.0, 800.0};
  m.wells.push_back({{"W", 1}, {0, 0}, 0.2, false, kTaken});
  aem::Solution s(m);
  s.Iterate(1);
  // Found from the flow itself, by Newton's steps on w with a difference quotient.
  Complex z{-80.0, 15.0};
  const auto w = [&](Complex at) { return std::conj(s.At(at).discharge); };
  for (int i = 0; i < 20; ++i) z -= w(z) / ((w(z + 1e-3) - w(z - 1e-3)) / 2e-3);
  EXPECT_NEAR(std::abs(z - Complex{-kDistance, 0.0}), 0.0, 1e-8);

  const aem::SolutionField field(s);
  for (bool forward : {true, false}) {
    const aem::Path at = aem::TracePath(field, {{-kDistance, 0.0}, 0.0, forward}, Tracing(1e5, 10.0));
    EXPECT_EQ(at.end, aem::PathEnd::kStagnation);
    EXPECT_NEAR(std::abs(at.points.back().at - Complex{-kDistance, 0.0}), 0.0, 1e-6);
  }
  // A little to its east the well draws the particle, a little to its west it is lost; the time from d (1 -
  // e) to the well's rim in closed form.
  const aem::Path east = aem::TracePath(field, {{-kDistance * 0.999, 0.0}, 0.0, true}, Tracing(1e6, 10.0));
  EXPECT_EQ(east.end, aem::PathEnd::kWell);
  const auto part = [&](double x) { return -x - kDistance * std::log(1.0 - x / kDistance); };
  const double time =
      m.aquifer.porosity * m.aquifer.thickness / kFlow * (part(0.999 * kDistance) - part(0.2));
  EXPECT_NEAR(east.points.back().time / time, 1.0, 1e-5);
  EXPECT_EQ(aem::TracePath(field, {{-kDistance * 1.001, 0.0}, 0.0, true}, Tracing(1e6, 10.0)).end,
            aem::PathEnd::kWindow);
}

// Recharge N on a strip between two long streams: the potential is a parabola, the flow grows by N from the
// divide, and at each x the particle that fell in at x0 has the share (x0 - divide)/(x - divide) below it,
// whatever the thickness.
TEST(Recharge, OneDimensionalFlowAndItsPaths) {
  constexpr double kRecharge = 2e-3, kDistance = 200.0, k = 10.0, H = 20.0;
  for (const auto& [left, right] : {std::pair{14.0, 13.9}, std::pair{26.0, 25.95}}) {
    aem::Model m = Base(k, H, left);
    m.aquifer.reference_point = {-90000.0, 0.0};
    std::vector<Complex> ring;
    for (const auto& [x, head] : {std::pair{0.0, left}, std::pair{kDistance, right}}) {
      std::vector<Complex> points;
      for (double y :
           {-8000.0, -3000.0, -1200.0, -600.0, -300.0, -100.0, 100.0, 300.0, 600.0, 1200.0, 3000.0, 8000.0})
        points.push_back({x, x > 0.0 ? y : -y});
      m.line_sinks.push_back(HeadString(points, head, x > 0.0 ? "RIGHT" : "LEFT"));
      ring.insert(ring.end(), points.begin(), points.end());
    }
    m.domains.push_back(Polygon(ring));
    m.domains[0].recharge_sink = -kRecharge;
    aem::Solution s(m);
    ASSERT_FALSE(s.Refused()) << Said(s.Findings());
    EXPECT_TRUE(s.Iterate(2).converged);
    const bool confined = left > H;
    const auto potential = [&](double head) {
      return confined ? k * H * head - 0.5 * k * H * H : 0.5 * k * head * head;
    };
    const double slope = (potential(right) - potential(left)) / kDistance;
    for (double x : {20.0, 77.0, 100.0, 160.0}) {
      const double at = potential(left) + slope * x + 0.5 * kRecharge * x * (kDistance - x);
      EXPECT_NEAR(s.At({x, 11.0}).potential, at, 1e-5 * std::abs(at)) << x;
      EXPECT_NEAR(s.At({x, 11.0}).discharge.real(), kRecharge * (x - 0.5 * kDistance) - slope, 1e-6) << x;
    }
    const double divide = 0.5 * kDistance + slope / kRecharge;
    ASSERT_GT(divide, 1.0);
    const double from = divide + 10.0;
    const aem::SolutionField field(s);
    const aem::Path path = aem::TracePath(field, {{from, 11.0}, 99.0, true}, Tracing(1e6, 5.0));
    EXPECT_EQ(path.end, aem::PathEnd::kSurfaceWater);
    EXPECT_EQ(path.label.substr(0, 5), "RIGHT");
    for (const aem::PathPoint& p : path.points) {
      const aem::PointState state = s.At(p.at);
      const double x = p.at.real(), share = 10.0 / (x - divide);
      if (x > kDistance - 1.0) break;  // the stream's own flow lines
      EXPECT_NEAR((p.elevation - state.base) / state.thickness, share, 1e-5) << x;
      const double time = H * m.aquifer.porosity / kRecharge * std::log((x - divide) / 10.0);
      if (confined) {
        EXPECT_NEAR(p.time, time, 1e-4 * (1.0 + time)) << x;
      }
    }
  }
}

// Nothing passes the top but recharge: what lies at the water table near a partially penetrating well goes
// down to its screen.
TEST(PartialWells, DrawFromTheWaterTableWithoutPathsThroughIt) {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.1, 0.05};
  m.aquifer.reference_point = {0.0, 3000.0};
  m.partial_wells.push_back({{"P", 1}, {0, 0}, 12.0, 6.0, 0.2, false, 400.0});
  aem::Solution s(m);
  s.Iterate(2);
  const aem::SolutionField field(s);
  int taken = 0;
  for (int i = 0; i < 40; ++i) {
    const aem::PathStart start{std::polar(3.0 + 9.0 * i, 0.9 * i), 99.0, true};
    for (double step : {10.0, 3.0}) {
      const aem::Path path = aem::TracePath(field, start, Tracing(1e6, step));
      EXPECT_TRUE(path.end == aem::PathEnd::kWell || path.end == aem::PathEnd::kWindow)
          << start.at << aem::PathEndName(path.end);
      taken += path.end == aem::PathEnd::kWell ? 1 : 0;
    }
  }
  EXPECT_GT(taken, 20);
}

// A screen that draws harder than its part of the aquifer gives: paths come to it or to dry ground, and heads
// on the way are heads.
TEST(PartialWells, PathsToAScreenThatDrawsHardCarryHeads) {
  aem::Model m = Base(10.0, 20.0, 8.0);
  m.aquifer.reference_point = {0.0, 800.0};
  m.partial_wells.push_back({{"P", 1}, {0, 0}, 3.0, 0.5, 0.2, false, 238.0});
  aem::Solution s(m);
  s.Iterate(3);
  const aem::SolutionField field(s);
  double lowest = 99.0;
  for (int i = 0; i < 12; ++i) {
    const aem::Path path =
        aem::TracePath(field, {std::polar(30.0, 0.5 * i), 1.0 + 0.6 * i, true}, Tracing(1e6, 5.0));
    EXPECT_TRUE(path.end == aem::PathEnd::kWell || path.end == aem::PathEnd::kDry)
        << aem::PathEndName(path.end);
    for (const aem::PathPoint& p : path.points) {
      EXPECT_GE(p.head, 0.0) << p.at;
      lowest = std::min(lowest, p.head);
    }
  }
  EXPECT_EQ(lowest, 0.0) << "the test must reach where the local head is below the base";
}

/// A river, a domain, a wall, recharge, a pond and wells of both signs.
aem::Model Town() {
  aem::Model m = Base(10.0, 20.0, 30.0);
  m.aquifer.uniform_flow = {0.3, 0.1};
  m.wells.push_back({{"TAKES", 1}, {-250, 120}, 0.3, false, 500.0});
  m.wells.push_back({{"GIVES", 2}, {300, -350}, 0.3, false, -200.0});
  m.disks.push_back({{"POND", 3}, {-500, -400}, 60.0, false, 0.01});
  m.line_sinks.push_back(
      HeadString({{-700, 600}, {-300, 450}, {50, 500}, {350, 420}, {700, 550}}, 29.0, "RIVER"));
  m.domains.push_back(Polygon({{0, -200}, {300, -180}, {350, 150}, {80, 200}}, "SAND"));
  m.domains[0].conductivity = 60.0;
  m.domains[0].recharge_sink = -0.001;
  m.domains[0].porosity = 0.3;
  aem::Wall wall;
  wall.origin.label = "WALL";
  for (Complex at : {Complex{-600, -100}, Complex{-480, 60}, Complex{-500, 250}})
    wall.points.push_back({{}, at});
  m.walls.push_back(wall);
  return m;
}

class TownPaths : public ::testing::Test {
 protected:
  TownPaths() : solution_(Town()) {
    solution_.Iterate(2);
    field_ = std::make_unique<aem::SolutionField>(solution_);
  }
  std::vector<aem::Path> Trace(const std::vector<aem::PathStart>& starts, double step) {
    return aem::TracePaths(*field_, starts, Tracing(6000.0, step));
  }
  aem::Solution solution_;
  std::unique_ptr<aem::SolutionField> field_;
};

TEST_F(TownPaths, HalvingTheStepMovesEndsByLessThanTheTolerance) {
  constexpr double kStep = 16.0, kTolerance = 1e-4;  // of the step
  std::vector<aem::PathStart> starts;
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 8; ++j)
      for (bool forward : {true, false})
        starts.push_back({{-870.0 + 231.0 * i, -830.0 + 227.0 * j}, 4.0 + 2.0 * ((i + j) % 7), forward});
  const std::vector<aem::Path> whole = Trace(starts, kStep), half = Trace(starts, 0.5 * kStep);
  std::map<aem::PathEnd, int> counts;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    ++counts[whole[i].end];
    EXPECT_EQ(whole[i].end, half[i].end) << starts[i].at << starts[i].forward;
    EXPECT_EQ(whole[i].label, half[i].label) << starts[i].at << starts[i].forward;
    const aem::PathPoint &a = whole[i].points.back(), &b = half[i].points.back();
    const double moved = std::abs(a.at - b.at);
    EXPECT_LT(moved, kTolerance * kStep)
        << starts[i].at << starts[i].forward << aem::PathEndName(whole[i].end);
    EXPECT_NEAR(a.time, b.time, 1e-4 * std::max(a.time, 1.0)) << starts[i].at;
  }
  for (aem::PathEnd end :
       {aem::PathEnd::kTime, aem::PathEnd::kWell, aem::PathEnd::kSurfaceWater, aem::PathEnd::kWindow})
    EXPECT_GT(counts[end], 5) << aem::PathEndName(end);
}

TEST_F(TownPaths, AwkwardStartsEndWithAReasonAndFewPoints) {
  std::vector<Complex> places;
  const aem::Model& m = solution_.GetModel();
  for (const aem::TraceWell& well : field_->Wells().wells())
    for (int i = 0; i < 8; ++i) places.push_back(well.at + std::polar(well.radius, 0.25 * kPi * i));
  for (const aem::LineSinkSegment& g : m.line_sinks[0].segments)
    for (double t : {0.0, 0.3, 0.5, 1.0}) places.push_back(g.from + t * (g.to - g.from));
  const auto& ring = m.domains[0].ring;
  for (std::size_t i = 0; i < ring.size(); ++i)
    for (double t : {0.0, 0.5})
      places.push_back(ring[i].at + t * (ring[(i + 1) % ring.size()].at - ring[i].at));
  for (const aem::LabelledPoint& p : m.walls[0].points) places.push_back(p.at);
  places.push_back(0.5 * (m.walls[0].points[0].at + m.walls[0].points[1].at));
  places.push_back(m.disks[0].at);
  places.push_back(m.disks[0].at + m.disks[0].radius);
  std::vector<aem::PathStart> starts;
  for (Complex at : places)
    for (double elevation : {0.0, 7.0, 99.0})
      for (bool forward : {true, false}) starts.push_back({at, elevation, forward});
  const std::vector<aem::Path> paths = Trace(starts, 20.0);
  ASSERT_EQ(paths.size(), starts.size());
  for (const aem::Path& path : paths) {
    EXPECT_NE(path.end, aem::PathEnd::kStagnation)
        << path.start.at << path.start.forward << path.start.elevation;
    EXPECT_LT(path.points.size(), 1000u) << path.start.at;
    EXPECT_EQ(path.label.empty(), path.end != aem::PathEnd::kWell && path.end != aem::PathEnd::kSurfaceWater);
  }
}

TEST_F(TownPaths, WhatAThreadThrowsReachesTheCaller) {
  const std::vector<aem::PathStart> starts(64, {{-700, 300}, 4.0, true});
  aem::TraceOptions options = Tracing(6000.0, 20.0);
  options.threads = 4;
  const auto caller = std::this_thread::get_id();
  const auto fails = [&](std::size_t) -> bool {
    if (std::this_thread::get_id() != caller) throw std::bad_alloc();
    return true;
  };
  EXPECT_THROW(aem::TracePaths(*field_, starts, options, fails), std::bad_alloc);
}

}  // namespace
}  // namespace aem_test
