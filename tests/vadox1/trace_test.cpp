// Particle paths in fields that are known in closed form.
#include "aem/trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

namespace aem {
namespace {

/// A field given by a formula, with lines that are met and wells that are known.
class FormulaField : public TraceField {
 public:
  std::function<Complex(Complex)> discharge = [](Complex) { return Complex(); };
  std::function<PointStatus(Complex)> status = [](Complex) { return PointStatus::kOk; };
  double thickness = 20.0, porosity = 0.25, recharge_sink = 0.0, base = -5.0;
  double density = 0.0;  ///< of every line-sink
  Model model;
  WellIndex wells;
  std::vector<TraceWell> disks;
  mutable int evaluations = 0;

  PointState At(Complex point) const override {
    ++evaluations;
    PointState state;
    state.status = status(point);
    if (state.status != PointStatus::kOk) return state;
    state.head = 100.0 - point.real();
    state.discharge = discharge(point);
    state.base = base;
    state.thickness = thickness;
    state.conductivity = 10.0;
    state.porosity = porosity;
    state.net_recharge = recharge_sink;
    return state;
  }
  PointState AtElevation(Complex point, double, double* vertical) const override {
    *vertical = 0.0;
    return At(point);
  }
  Crossing FirstCrossing(Complex from, Complex to) const override {
    Crossing first;
    const auto meet = [&](CrossingType type, int index, int segment, Complex a, Complex b) {
      const Complex step = to - from, along = b - a;
      const double det = step.real() * along.imag() - step.imag() * along.real();
      if (det == 0.0) return;
      const Complex off = a - from;
      const double fraction = (off.real() * along.imag() - off.imag() * along.real()) / det;
      const double position = (off.real() * step.imag() - off.imag() * step.real()) / det;
      if (fraction <= 0.0 || fraction > 1.0 || position < 0.0 || position > 1.0) return;
      if (first.type == CrossingType::kNone || fraction < first.fraction)
        first = {type, index, segment, position, fraction};
    };
    for (std::size_t i = 0; i < model.walls.size(); ++i) {
      const auto& points = model.walls[i].points;
      for (std::size_t k = 0; k + 1 < points.size(); ++k) {
        meet(CrossingType::kWall, static_cast<int>(i), static_cast<int>(k), points[k].at, points[k + 1].at);
      }
    }
    for (std::size_t i = 0; i < model.line_sinks.size(); ++i) {
      const auto& segments = model.line_sinks[i].segments;
      for (std::size_t k = 0; k < segments.size(); ++k) {
        meet(CrossingType::kLineSink, static_cast<int>(i), static_cast<int>(k), segments[k].from,
             segments[k].to);
      }
    }
    for (std::size_t i = 0; i < model.domains.size(); ++i) {
      const auto& ring = model.domains[i].ring;
      for (std::size_t k = 0; k < ring.size(); ++k) {
        meet(CrossingType::kDomainEdge, static_cast<int>(i), static_cast<int>(k), ring[k].at,
             ring[(k + 1) % ring.size()].at);
      }
    }
    return first;
  }
  SinkHit NearestSink(Complex point, double distance) const override {
    for (std::size_t i = 0; i < model.line_sinks.size(); ++i) {
      // the lines of these tests stand upright at x = from.x
      if (std::fabs(point.real() - model.line_sinks[i].segments[0].from.real()) <= distance) {
        return {SinkType::kLineSink, static_cast<int>(i), 0, 0.5, 0.0};
      }
    }
    return {};
  }
  double SinkDensity(int, int, double) const override { return density; }
  const Model& GetModel() const override { return model; }
  const WellIndex& Wells() const override { return wells; }
  const std::vector<TraceWell>& Disks() const override { return disks; }

  void AddLineSink(double x, double sink_density) {
    LineSinkString string;
    string.segments.push_back({{"LS_000001_0002", 1}, {x, -1e4}, {x, 1e4}, 0.0});
    model.line_sinks.push_back(string);
    density = sink_density;
  }
  void AddWall(std::vector<Complex> points, double conductivity) {
    Wall wall;
    wall.conductivity = conductivity;
    for (const Complex at : points) wall.points.push_back({{}, at});
    model.walls.push_back(wall);
  }
};

TraceOptions Options(double time, double step) {
  TraceOptions options;
  options.longest_time = time;
  options.step = step;
  options.window = {-5000.0, -5000.0, 5000.0, 5000.0, true};
  return options;
}

/// A well that takes `taken` at the origin of a uniform flow `flow` in the direction of -x.
FormulaField WellInUniformFlow(double taken, double flow, double radius) {
  FormulaField field;
  field.discharge = [=](Complex z) {
    return Complex(-flow) - taken / (2.0 * std::numbers::pi) * z / std::norm(z);
  };
  field.wells = WellIndex({{{0.0, 0.0}, radius, taken, "WL_000001"}});
  return field;
}

TEST(Trace, travel_time_on_the_axis_of_a_well_in_uniform_flow) {
  constexpr double kTaken = 800.0, kFlow = 1.2, kRadius = 0.15, kFrom = 900.0;
  const FormulaField field = WellInUniformFlow(kTaken, kFlow, kRadius);
  const double a = kTaken / (2.0 * std::numbers::pi * kFlow), bn = field.thickness * field.porosity;
  const double exact = bn / kFlow * ((kFrom - kRadius) - a * std::log((kFrom + a) / (kRadius + a)));
  for (const double step : {5.0, 40.0, 400.0}) {
    const Path in = TracePath(field, {{kFrom, 0.0}, 3.0, true}, Options(1e6, step));
    EXPECT_EQ(in.end, PathEnd::kWell);
    EXPECT_EQ(in.label, "WL_000001");
    EXPECT_NEAR(in.points.back().time / exact, 1.0, 1e-6) << step;
    EXPECT_NEAR(std::abs(in.points.back().at), kRadius, 2e-7 * step + 1e-7);
    EXPECT_NEAR(in.points.back().elevation, 3.0, 1e-9);
    // and back from the rim, for the same time
    const PathStart rim = StartsAround(field.wells.wells()[0], 4, 3.0)[0];
    EXPECT_FALSE(rim.forward);
    const Path out = TracePath(field, rim, Options(exact, step));
    EXPECT_EQ(out.end, PathEnd::kTime);
    EXPECT_EQ(out.points.back().time, exact);
    EXPECT_NEAR(out.points.back().at.real(), kFrom, 1e-3) << step;
    for (std::size_t i = 1; i < out.points.size(); ++i) {
      EXPECT_GT(out.points[i].time, out.points[i - 1].time);
      EXPECT_LE(std::abs(out.points[i].at - out.points[i - 1].at), step * 1.001);
    }
  }
}

TEST(Trace, halving_the_step_moves_end_points_by_less_than_the_tolerance) {
  const FormulaField field = WellInUniformFlow(800.0, 1.2, 0.15);
  for (const Complex start : {Complex(-120.0, 80.0), Complex(700.0, 333.0), Complex(-90.0, 1e-3)}) {
    const Path coarse = TracePath(field, {start, 0.0, true}, Options(400.0, 32.0));
    const Path fine = TracePath(field, {start, 0.0, true}, Options(400.0, 16.0));
    EXPECT_EQ(coarse.end, fine.end);
    EXPECT_NEAR(std::abs(coarse.points.back().at - fine.points.back().at), 0.0, 32.0 * 1e-4);
  }
}

TEST(Trace, the_step_needs_few_evaluations_in_smooth_flow) {
  const FormulaField field = WellInUniformFlow(800.0, 1.2, 0.15);
  const Path path = TracePath(field, {{900.0, 300.0}, 0.0, true}, Options(1e6, 20.0));
  EXPECT_LT(field.evaluations, 11 * static_cast<int>(path.points.size()));
  EXPECT_LT(path.points.size(), 400u) << "about the length over the step";
}

/// One-dimensional flow away from a divide under recharge N: x grows and the relative height shrinks with
/// exp(N t / (b n)).
TEST(Trace, recharge_presses_particles_down_and_backward_they_rise_to_the_water_table) {
  FormulaField field;
  constexpr double kRecharge = 1e-3;
  field.recharge_sink = -kRecharge;
  field.discharge = [](Complex z) { return Complex(kRecharge * z.real(), 0.0); };
  const double rate = kRecharge / (field.thickness * field.porosity);
  const double z0 = field.base + 0.8 * field.thickness;
  const Path down = TracePath(field, {{100.0, 7.0}, z0, true}, Options(5000.0, 10.0));
  EXPECT_EQ(down.end, PathEnd::kTime);
  EXPECT_NEAR(down.points.back().at.real(), 100.0 * std::exp(rate * 5000.0), 1e-4);
  EXPECT_NEAR(down.points.back().elevation, field.base + 0.8 * field.thickness * std::exp(-rate * 5000.0),
              1e-6);
  const Path up = TracePath(field, {{100.0, 7.0}, z0, false}, Options(1e5, 10.0));
  EXPECT_EQ(up.end, PathEnd::kWaterTable);
  EXPECT_NEAR(up.points.back().time, -std::log(0.8) / rate, 2e-3);
  EXPECT_NEAR(up.points.back().at.real(), 80.0, 1e-4);
  EXPECT_NEAR(up.points.back().elevation, field.base + field.thickness, 1e-9);
  // On the divide the particle does not move in plan, and is not stagnant either.
  const Path divide = TracePath(field, {{0.0, 0.0}, z0, false}, Options(1e5, 10.0));
  EXPECT_EQ(divide.end, PathEnd::kWaterTable);
  EXPECT_NEAR(divide.points.back().time, -std::log(0.8) / rate, 2e-3);
  // Above the water table it starts at it, where it fell in.
  EXPECT_EQ(TracePath(field, {{100.0, 0.0}, 1e9, false}, Options(1e5, 10.0)).points.size(), 2u);
}

/// A pond that takes N draws particles up: with v = 0 at its centre the relative height grows with exp(N t /
/// (b n)).
TEST(Trace, under_a_pond_that_takes_water_the_path_ends_in_the_pond) {
  FormulaField field;
  field.recharge_sink = 2e-3;
  field.discharge = [](Complex z) { return -1e-3 * z; };
  const double rate = field.recharge_sink / (field.thickness * field.porosity);
  field.disks = {{{5.0, 0.0}, 40.0, 10.0, "WL_000009"}, {{0.0, 0.0}, 40.0, -10.0, "WL_000010"}};
  const Path path =
      TracePath(field, {{1.0, 2.0}, field.base + 0.5 * field.thickness, true}, Options(1e5, 10.0));
  EXPECT_EQ(path.end, PathEnd::kSurfaceWater);
  EXPECT_EQ(path.label, "WL_000009");
  EXPECT_NEAR(path.points.back().time, std::log(2.0) / rate, 1e-2);
}

/// Under a pond in uniform flow the relative height grows along the chord only: steps end at its rim.
TEST(Trace, steps_end_at_the_rim_of_a_pond) {
  constexpr double kRate = 2e-3, kRadius = 40.0, kOff = 24.0, kChord = 2.0 * 32.0;
  struct Pond final : FormulaField {
    PointState At(Complex point) const override {
      PointState state = FormulaField::At(point);
      state.net_recharge = std::abs(point) < kRadius ? kRate : 0.0;
      return state;
    }
  } field;
  field.discharge = [](Complex) { return Complex(1.0, 0.0); };
  field.disks = {{{0.0, 0.0}, kRadius, 10.0, "WL_000009"}};
  const double growth = std::exp(kRate * kChord);  // over the time chord b n / Q, at the rate N / (b n)
  for (const double step : {300.0, 31.0, 7.0}) {
    TraceOptions options = Options(1e5, step);
    options.boundaries = {{{100.0, 0.0}, {100.0, 1.0}}};
    const Path path = TracePath(field, {{-100.0, kOff}, field.base + 0.3 * field.thickness, true}, options);
    EXPECT_EQ(path.end, PathEnd::kBoundary);
    EXPECT_NEAR(path.points.back().elevation, field.base + 0.3 * growth * field.thickness, 2e-6) << step;
  }
}

TEST(Trace, a_line_sink_takes_the_upper_part_and_the_rest_passes_beneath) {
  FormulaField field;
  constexpr double kIn = 2.0;
  struct Case {
    double density, height;
    PathEnd end;
    double height_behind;
  };
  for (const Case& c :
       {Case{0.5, 0.80, PathEnd::kSurfaceWater, 0.0}, Case{0.5, 0.70, PathEnd::kBoundary, 0.7 / 0.75},
        Case{-2.0, 0.70, PathEnd::kBoundary, 0.35}, Case{2.0, 0.01, PathEnd::kSurfaceWater, 0.0},
        Case{3.0, 0.01, PathEnd::kSurfaceWater, 0.0}, Case{0.0, 0.99, PathEnd::kBoundary, 0.99}}) {
    field.model = {};
    field.AddLineSink(50.0, c.density);
    field.discharge = [&](Complex z) { return Complex(z.real() < 50.0 ? kIn : kIn - c.density, 0.0); };
    TraceOptions options = Options(1e5, 7.0);
    options.boundaries = {{{80.0, -1.0}, {80.0, 5.0}}, {{-20.0, 0.0}, {-20.0, 1.0}}};
    const double z = field.base + c.height * field.thickness;
    const Path path = TracePath(field, {{0.0, 3.0}, z, true}, options);
    EXPECT_EQ(path.end, c.end) << c.density << " " << c.height;
    if (c.end == PathEnd::kSurfaceWater) {
      EXPECT_EQ(path.label, "LS_000001_0002");
      EXPECT_NEAR(path.points.back().at.real(), 50.0, 1e-4);
      continue;
    }
    EXPECT_NEAR(path.points.back().at.real(), 80.0, 1e-9);
    EXPECT_NEAR(path.points.back().elevation, field.base + c.height_behind * field.thickness, 1e-6);
    const double bn = field.thickness * field.porosity;
    EXPECT_NEAR(path.points.back().time, bn * (50.0 / kIn + 30.0 / (kIn - c.density)), 1e-3);
    // Back over the same way it comes to where it began.
    Path back =
        TracePath(field, {path.points.back().at - 1e-9, path.points.back().elevation, false}, options);
    EXPECT_EQ(back.end, PathEnd::kBoundary);
    EXPECT_NEAR(back.points.back().elevation, z, 1e-6);
  }
}

TEST(Trace, starts_on_a_line_sink_end_or_leave_at_once) {
  FormulaField field;
  field.AddLineSink(50.0, 2.0);
  field.discharge = [](Complex z) { return Complex(z.real() < 50.0 ? 1.0 : -1.0, 0.1); };
  const Path taken = TracePath(field, {{50.0, 0.0}, 0.0, true}, Options(100.0, 5.0));
  EXPECT_EQ(taken.end, PathEnd::kSurfaceWater);
  EXPECT_EQ(taken.points.back().time, 0.0);
  const Path leaves = TracePath(field, {{50.0, 0.0}, 0.0, false}, Options(100.0, 5.0));
  EXPECT_EQ(leaves.end, PathEnd::kTime);
  EXPECT_NEAR(std::fabs(leaves.points.back().at.real() - 50.0), 20.0, 1e-3);
}

TEST(Trace, steps_end_at_domain_edges_and_the_path_is_refracted) {
  FormulaField field;
  Domain domain;
  for (const Complex at :
       {Complex(30.0, -900.0), Complex(90.0, -900.0), Complex(90.0, 900.0), Complex(30.0, 900.0)}) {
    domain.ring.push_back({{}, at});
  }
  field.model.domains.push_back(domain);
  field.discharge = [](Complex z) { return Complex(1.0, z.real() > 30.0 && z.real() < 90.0 ? 2.0 : 0.2); };
  TraceOptions options = Options(1e5, 25.0);
  options.boundaries = {{{120.0, 0.0}, {120.0, 1.0}}};
  const Path path = TracePath(field, {{0.0, 0.0}, 0.0, true}, options);
  EXPECT_EQ(path.end, PathEnd::kBoundary);
  EXPECT_NEAR(path.points.back().at.imag(), 0.2 * 30.0 + 2.0 * 60.0 + 0.2 * 30.0, 2e-3);
  EXPECT_NEAR(path.points.back().time, 120.0 * field.thickness * field.porosity, 1e-2);
  int on_edges = 0;
  for (const PathPoint& p : path.points) {
    on_edges += std::fabs(p.at.real() - 30.0) < 1e-9 || std::fabs(p.at.real() - 90.0) < 1e-9 ? 1 : 0;
  }
  EXPECT_EQ(on_edges, 2);
}

TEST(Trace, every_start_ends_and_says_why) {
  struct Case {
    const char* name;
    std::function<void(FormulaField&)> set;
    PathStart start;
    PathEnd end;
  };
  const auto uniform = [](FormulaField& f) { f.discharge = [](Complex) { return Complex(1.0, 0.0); }; };
  const Case cases[] = {
      {"no flow", [](FormulaField&) {}, {{0, 0}, 0, true}, PathEnd::kStagnation},
      {"stagnation point",
       [](FormulaField& f) { f.discharge = [](Complex z) { return std::conj(z) * 0.01; }; },
       {{0, 0}, 0, true},
       PathEnd::kStagnation},
      {"window", uniform, {{4990, 0}, 0, true}, PathEnd::kWindow},
      {"outside", uniform, {{6000, 0}, 0, true}, PathEnd::kWindow},
      {"time", uniform, {{0, 0}, 0, true}, PathEnd::kTime},
      {"dry start",
       [](FormulaField& f) { f.status = [](Complex) { return PointStatus::kDry; }; },
       {{0, 0}, 0, true},
       PathEnd::kDry},
      {"dry ahead",
       [&](FormulaField& f) {
         uniform(f);
         f.status = [](Complex z) { return z.real() < 20.0 ? PointStatus::kOk : PointStatus::kDry; };
       },
       {{0, 0}, 0, true},
       PathEnd::kDry},
      {"ignored ahead",
       [&](FormulaField& f) {
         uniform(f);
         f.status = [](Complex z) { return z.real() < 20.0 ? PointStatus::kOk : PointStatus::kIgnored; };
       },
       {{0, 0}, 0, true},
       PathEnd::kIgnored},
      {"inside a well",
       [](FormulaField& f) { f = WellInUniformFlow(800, 1.2, 0.15); },
       {{0.01, 0}, 0, true},
       PathEnd::kWell},
      {"centre of a well, backward",
       [](FormulaField& f) { f = WellInUniformFlow(800, 1.2, 0.15); },
       {{0, 0}, 0, false},
       PathEnd::kTime},
      {"against a wall",
       [&](FormulaField& f) {
         uniform(f);
         f.AddWall({{30, -40}, {30, 40}}, 0.0);
       },
       {{0, 0}, 0, true},
       PathEnd::kStagnation},
      {"into the corner of a wall",
       [&](FormulaField& f) {
         f.discharge = [](Complex) { return Complex(1.0, 0.7); };
         f.AddWall({{30, -400}, {30, 40}, {-90, 40}}, 0.0);
       },
       {{0, 0}, 0, true},
       PathEnd::kStagnation},
      {"through a leaky wall",
       [&](FormulaField& f) {
         uniform(f);
         f.AddWall({{30, -40}, {30, 40}}, 1e-3);
       },
       {{0, 0}, 0, true},
       PathEnd::kTime},
      {"opposed flow at an edge",
       [](FormulaField& f) {
         Domain domain;
         for (const Complex at : {Complex(30, -90), Complex(90, -90), Complex(90, 90), Complex(30, 90)}) {
           domain.ring.push_back({{}, at});
         }
         f.model.domains.push_back(domain);
         f.discharge = [](Complex z) { return Complex(z.real() < 30.0 ? 1.0 : -1.0, 0.0); };
       },
       {{0, 0}, 0, true},
       PathEnd::kStagnation},
      {"a sink that no element tells of",
       [](FormulaField& f) { f.discharge = [](Complex z) { return -z / std::norm(z) * 10.0; }; },
       {{20, 3}, 0, true},
       PathEnd::kStagnation},
      {"a field with a hole",
       [](FormulaField& f) {
         f.discharge = [](Complex z) { return std::abs(z) < 5 ? Complex(std::nan("")) : -z; };
       },
       {{20, 3}, 0, true},
       PathEnd::kStagnation},
  };
  for (const Case& c : cases) {
    FormulaField field;
    c.set(field);
    const Path path = TracePath(field, c.start, Options(500.0, 12.0));
    EXPECT_EQ(path.end, c.end) << c.name << ": " << PathEndName(path.end) << " at " << path.points.back().at;
    EXPECT_LT(field.evaluations, 100000) << c.name;
  }
}

TEST(Trace, a_wall_is_followed_to_its_end) {
  FormulaField field;
  field.discharge = [](Complex) { return Complex(1.0, 0.5); };
  field.AddWall({{30, -400}, {30, 40}}, 0.0);
  TraceOptions options = Options(1e5, 12.0);
  options.boundaries = {{{60.0, 0.0}, {60.0, 1.0}}};
  const Path path = TracePath(field, {{0.0, 0.0}, 0.0, true}, options);
  EXPECT_EQ(path.end, PathEnd::kBoundary);
  EXPECT_NEAR(path.points.back().at.imag(), 40.0 + 15.0, 0.01);
  const double bn = field.thickness * field.porosity;
  EXPECT_NEAR(path.points.back().time, bn * (30.0 / 1.0 + 25.0 / 0.5 + 30.0 / 1.0), 0.01 * bn);
}

TEST(Trace, many_paths_do_not_depend_on_the_number_of_threads) {
  const FormulaField field = WellInUniformFlow(800.0, 1.2, 0.15);
  std::vector<PathStart> starts = StartsAround(field.wells.wells()[0], 20, 0.0);
  TraceOptions options = Options(700.0, 15.0);
  options.threads = 1;
  const std::vector<Path> one = TracePaths(field, starts, options);
  options.threads = 3;
  const std::vector<Path> three = TracePaths(field, starts, options);
  ASSERT_EQ(one.size(), 20u);
  for (std::size_t i = 0; i < one.size(); ++i) {
    EXPECT_NEAR(std::abs(starts[i].at), 0.15, 1e-6);
    ASSERT_EQ(one[i].points.size(), three[i].points.size());
    EXPECT_EQ(one[i].points.back().at, three[i].points.back().at);
  }
  EXPECT_GT(starts[0].at.real(), 0.1499);
  EXPECT_GT(starts[5].at.imag(), 0.1499);
  EXPECT_TRUE(TracePaths(field, starts, options, [](std::size_t) { return false; }).empty());
  // A stop is heard within a path, not only between two.
  std::atomic<bool> stop{true};
  options.stop = &stop;
  EXPECT_TRUE(TracePaths(field, starts, options).empty());
  EXPECT_EQ(TracePath(field, starts[0], options).points.size(), 1u);
}

TEST(WellIndex, finds_every_well_in_reach) {
  std::vector<TraceWell> wells;
  for (int i = 0; i < 400; ++i)
    wells.push_back({{(i % 20) * 37.0 - 300.0, (i / 20) * 53.0 - 500.0}, 0.2, 1.0, ""});
  const WellIndex index(wells);
  for (const TraceWell& well : wells) {
    bool found = false;
    index.ForEachNear(well.at + Complex(0.1, -30.0), well.at + Complex(0.1, 30.0),
                      [&](const TraceWell& near) { found |= near.at == well.at; });
    EXPECT_TRUE(found);
  }
  int visited = 0;
  index.ForEachNear({0.0, 0.0}, {5.0, 5.0}, [&](const TraceWell&) { ++visited; });
  EXPECT_LT(visited, 20);
}

}  // namespace
}  // namespace aem
