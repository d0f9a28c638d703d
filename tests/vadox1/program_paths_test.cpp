// Paths, vertical flow and special decks through the real engine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <utility>

#include "vadox1/program_run.h"

namespace vadox1 {
namespace {

using test::Labelled;
using test::Outcome;
using test::PthPath;
using test::ReadPth;
using test::ReadXtr;
using test::Town;
using test::XtrRecord;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kLogs =
    " error error.log\n yes\n message message.log\n yes\n echo nul\n picture off\n quit\n \n";

std::string Model(const std::string& uniform_flow, const std::string& elements) {
  return kLogs +
         " modelorigin  0  0  2 \n title my town\n aquifer\n base 0\n permeability 10\n thickness 20\n "
         "porosity .25\n" +
         uniform_flow + " reference 0 5000 60\n quit\n layout\n window -3000 -3000 3000 3000\n quit\n" +
         elements;
}

std::string Solve(const std::string& rest) {
  return " time         0 \n solve 2 0 0 1\n \n save my town\ny\n time         0 \n" + rest + " stop\n";
}

std::string Trace(const std::string& points, const std::string& time = "1000000") {
  return " trace\n picture off\n file my town\n y \n time " + time + "\n points\n" + points +
         " quit\n go\n quit\n";
}

/// A confined aquifer: the relative height falls with exp(-N t / (b n)) wherever the particle goes.
TEST(ProgramPaths, recharge_presses_particles_down_as_in_closed_form) {
  const std::string domain =
      " inhomogeneity \n transmissivity -9999 -9999 -9999 -.002 -9999 IN_000001_0000\n -2900 -2900 "
      "IN_000001_0001\n"
      " 2900 -2900 IN_000001_0002\n 2900 2900 IN_000001_0003\n -2900 2900 IN_000001_0004\n quit\n";
  Town town;
  const Outcome run = town.Run(Model(" uniflow -.4 0\n", domain) +
                               Solve(Trace(" 40 -30 16 1.0\n 40 -30 16 -1.0\n 40 -30 1000 -1.0\n", "900")));
  ASSERT_EQ(run.status, 0) << run.fatal;
  const std::vector<PthPath> paths = ReadPth(town.Read("my town.PTH"));
  ASSERT_EQ(paths.size(), 3u);
  const double rate = 0.002 / (20.0 * 0.25);
  EXPECT_EQ(paths[0].end, "time reached");
  for (const std::vector<double>& p : paths[0].points) EXPECT_NEAR(p[2], 16.0 * std::exp(-rate * p[3]), 1e-4);
  EXPECT_EQ(paths[1].end, "water table");
  EXPECT_NEAR(paths[1].points.back()[3], -std::log(0.8) / rate, 1e-3 * -std::log(0.8) / rate);
  EXPECT_NEAR(paths[1].points.back()[2], 20.0, 1e-6);
  EXPECT_EQ(paths[2].end, "water table");
  EXPECT_EQ(paths[2].points.back()[3], 0.0);
}

/// A straight line-sink across uniform flow takes its density of what passes, half from either side: 0.6
/// of 1.0 arrives as 1.0 + 0.3 and 0.7 leaves.
TEST(ProgramPaths, a_weak_line_sink_takes_the_upper_part_only) {
  const std::string river = " linesink \n discharge \n 0 -40000 0 40000 .6 LS_000001_0002\n quit \n";
  Town town;
  const Outcome run = town.Run(Model(" uniflow 1 0\n", river) +
                               Solve(Trace(" -500 3 8 1.0\n -500 3 12 1.0\n 500 3 15 -1.0\n")));
  ASSERT_EQ(run.status, 0) << run.fatal;
  const std::vector<PthPath> paths = ReadPth(town.Read("my town.PTH"));
  ASSERT_EQ(paths.size(), 3u);
  const double share = 0.7 / 1.3;  // passes beneath
  EXPECT_EQ(paths[0].end, "window");
  EXPECT_NEAR(paths[0].points.back()[2], 8.0 / share, 0.05);
  EXPECT_EQ(paths[1].end, "surface water LS_000001_0002");
  EXPECT_NEAR(paths[1].points.back()[0], 0.0, 1e-4);
  EXPECT_EQ(paths[2].end, "window");
  EXPECT_NEAR(paths[2].points.back()[2], 15.0 * share, 0.05);
  EXPECT_THAT(town.Read("message.log"), HasSubstr("ended by window: 2"));
}

/// Through a square of other conductivity and porosity: each edge is a point of the path, head and potential
/// meet.
TEST(ProgramPaths, a_domain_is_entered_and_left_at_its_edges) {
  const std::string domain =
      " inhomogeneity \n transmissivity 40 -9999 -9999 0 .1 IN_000001_0000\n -400 -400 IN_000001_0001\n"
      " -400 400 IN_000001_0002\n 400 400 IN_000001_0003\n 400 -400 IN_000001_0004\n quit\n";
  Town town;
  const Outcome run =
      town.Run(Model(" uniflow 1 .3\n", domain) + Solve(Trace(" -900 -50 8 1.0\n 395 0 8 -1.0\n") +
                                                        " extract\n file my town\n y\n 0 0 TP_000001\n"
                                                        " inhomogeneity\n quit\n"));
  ASSERT_EQ(run.status, 0) << run.fatal;
  const std::vector<PthPath> paths = ReadPth(town.Read("my town.PTH"));
  int edges = 0;
  for (const std::vector<double>& p : paths[0].points) {
    const bool on_edge = std::fabs(std::fmax(std::fabs(p[0]), std::fabs(p[1])) - 400.0) < 1e-5;
    edges += on_edge ? 1 : 0;
    EXPECT_NEAR(p[2], 8.0, 1e-6);
  }
  EXPECT_EQ(edges, 2);
  for (std::size_t i = 1; i < paths[0].points.size(); ++i) {
    EXPECT_LE(paths[0].points[i][4], paths[0].points[i - 1][4] + 1e-4)
        << "water flows downhill, across edges too";
  }
  const std::vector<XtrRecord> xtr = ReadXtr(town.Read("my town.XTR"));
  EXPECT_NEAR(Labelled(xtr, "TP_000001").Number(5), 40.0, 1e-9);
  EXPECT_NEAR(Labelled(xtr, "TP_000001").Number(4), 0.1, 1e-9);
  const XtrRecord head = Labelled(xtr, "IN_000001_0000");
  EXPECT_NE(head.fields.size(), 14u);
  EXPECT_NEAR(head.Number(2), 40.0, 1e-9);
  EXPECT_NEAR(head.Number(6), 640000.0, 1e-3);
  EXPECT_EQ(Labelled(xtr, "IN_000001_0003").fields.size(), 14u);
}

TEST(ProgramPaths, line_sink_records_have_the_fields_that_are_read) {
  const std::string rivers =
      " linesink \n discharge \n 1000 -500 1000 0 .2 LS_000001_0002\n 1000 0 1000 500 .4 LS_000001_0003\n "
      "quit \n"
      " linesink \n head \n resistance  0 \n width 0 0\n depth 0 \n -900 -800 -900 0 58 LS_000002_0002\n "
      "-900 0 -900 800 58 LS_000002_0003\n"
      " quit \n";
  Town town;
  const Outcome run =
      town.Run(Model(" uniflow .1 0\n", rivers) +
               Solve(" extract\n file my town\n y\n linesink discharge\n linesink head\n quit\n"));
  ASSERT_EQ(run.status, 0) << run.fatal;
  const std::vector<XtrRecord> xtr = ReadXtr(town.Read("my town.XTR"));
  ASSERT_EQ(xtr.size(), 4u);
  const XtrRecord given = Labelled(xtr, "LS_000001_0003");
  EXPECT_THAT(given.section, HasSubstr("discharge specified line sinks"));
  EXPECT_EQ(given.fields.size(), 7u);
  EXPECT_NEAR(given.Number(5), 0.4 * 500.0, 1e-6);
  const XtrRecord by_head = Labelled(xtr, "LS_000002_0003");
  EXPECT_THAT(by_head.section, HasSubstr("head specified line sinks"));
  ASSERT_EQ(by_head.fields.size(), 14u);
  EXPECT_NEAR(by_head.Number(5), 58.0, 1e-9);
  EXPECT_NEAR(by_head.Number(6), 58.0, 1e-3);
}

/// Rims, centres, vertices, middles and corners of everything, in both directions and at three heights.
TEST(ProgramPaths, starts_at_awkward_places_end_with_a_reason) {
  std::vector<std::pair<double, double>> places = {{1300, 500},  {1300.2, 500},  {700, 1000}, {1900, 1900},
                                                   {2000, 1900}, {-3000, -3000}, {3000, 3000}};
  std::string model =
      " inhomogeneity\n transmissivity 40 -9999 -9999 -.001 .3 IN_000007_0000\n 1000 200 IN_000007_0001\n "
      "1600 200 IN_000007_0002\n"
      " 1700 900 IN_000007_0003\n 1000 800 IN_000007_0004\n quit\n well\n discharge\n 1300 500 900 .2 "
      "WL_000001\n"
      " 700 1000 -300 .2 WL_000002\n quit\n sinkdisk\n discharge\n 1900 1900 2000 1900 .004 0 WL_000006\n "
      "quit\n linesink\n head\n"
      " resistance 0\n width 0 0\n depth 0\n";
  for (const auto& corner :
       {std::pair{1000.0, 200.0}, {1600.0, 200.0}, {1700.0, 900.0}, {1000.0, 800.0}, {1300.0, 200.0}}) {
    places.push_back(corner);
  }
  double x = -400.0, y = 100.0;
  for (int i = 2; i < 12; ++i) {
    const double to_x = x + 100.0, to_y = 300.0 + 150.0 * std::sin(0.01 * i * i);
    model += " " + std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(to_x) + " " +
             std::to_string(to_y) + " 56 LS_000020_" + std::to_string(1000 + i) + "\n";
    places.emplace_back(x, y);
    places.emplace_back(0.5 * (x + to_x), 0.5 * (y + to_y));
    x = to_x, y = to_y;
  }
  std::string points;
  for (const auto& [px, py] : places) {
    for (const char* rest : {" 0 1\n", " 0 -1\n", " 9 1\n", " 9 -1\n", " 99 1\n", " 99 -1\n"}) {
      points += " " + std::to_string(px) + " " + std::to_string(py) + rest;
    }
  }
  Town town;
  const Outcome run = town.Run(Model(" uniflow -.4 .1\n", model + " quit\n") + Solve(Trace(points, "36500")));
  ASSERT_EQ(run.status, 0) << run.fatal;
  const std::vector<PthPath> paths = ReadPth(town.Read("my town.PTH"));
  ASSERT_EQ(paths.size(), places.size() * 6);
  for (const PthPath& path : paths) {
    EXPECT_THAT(path.end, Not(StartsWith("stagnation"))) << path.start;
    EXPECT_LT(path.points.size(), 1500u) << path.start;
    for (std::size_t i = 1; i < path.points.size(); ++i) EXPECT_GE(path.points[i][3], path.points[i - 1][3]);
  }
}

/// An impermeable wall across uniform flow is gone round, whichever end; nothing passes through it.
TEST(ProgramPaths, paths_go_round_an_impermeable_wall) {
  const std::string wall =
      " inhomogeneity \nslurry open     .00000E+00 1.00000E+00 2.00000E-01 -9.99900E+03 HB_000011_0000\n 0 "
      "-300 HB_000011_0001\n"
      " 0 300 HB_000011_0002\n quit\n";
  Town town;
  const Outcome run =
      town.Run(Model(" uniflow 1 0\n", wall) +
               Solve(Trace(" -800 20 8 1.0\n -800 -150 8 1.0\n 900 20 8 -1.0\n -1e-3 50 8 1.0\n")));
  ASSERT_EQ(run.status, 0) << run.fatal;
  const std::vector<PthPath> paths = ReadPth(town.Read("my town.PTH"));
  ASSERT_EQ(paths.size(), 4u);
  for (const PthPath& path : paths) {
    EXPECT_EQ(path.end, "window") << path.start;
    // From one side to the other; points on the wall itself belong to neither.
    std::vector<double> a = path.points.front();
    for (const std::vector<double>& b : path.points) {
      if (std::fabs(b[0]) < 1e-6) continue;
      const double y = a[1] + (b[1] - a[1]) * a[0] / (a[0] - b[0]);
      if ((a[0] > 0.0) != (b[0] > 0.0)) {
        EXPECT_GT(std::fabs(y), 299.0) << path.start;
      }
      a = b;
    }
  }
}

/// What a routed stream, a drain and a partially penetrating well take is taken: the paths say by whom.
TEST(ProgramPaths, paths_end_at_streams_drains_and_partial_wells) {
  const std::string elements =
      " ppwell\n discharge\n 500 0 15 5 600 .2 WL_000003\n quit\n linesink\n drain\n resistance 0\n width 0 "
      "0\n depth 0\n"
      " -600 -900 -600 -100 59 LS_000001_0002\n stream 5000\n end\n overlandflow 0\n resistance .1\n width "
      "10\n depth 3\n"
      " -600 100 58.5 LS_000002_0002\n -600 900 \n quit\n";
  Town town;
  const Outcome run =
      town.Run(Model(" uniflow .3 0\n", elements) +
               Solve(Trace(" -640 -500 15 1.0\n -620 500 19 1.0\n 480 10 10 1.0\n 502 0 10 1.0\n") +
                     " trace\n file around\n time 4000\n well 500 0 10 8\n go\n quit\n"));
  ASSERT_EQ(run.status, 0) << run.fatal;
  const std::vector<PthPath> paths = ReadPth(town.Read("my town.PTH"));
  ASSERT_EQ(paths.size(), 4u);
  EXPECT_EQ(paths[0].end, "surface water LS_000001_0002");
  EXPECT_EQ(paths[1].end, "surface water LS_000002_0002");
  EXPECT_EQ(paths[2].end, "well WL_000003");
  EXPECT_EQ(paths[3].end, "well WL_000003");
  const std::vector<PthPath> around = ReadPth(town.Read("around.PTH"));
  ASSERT_EQ(around.size(), 8u);
  for (const PthPath& path : around) {
    EXPECT_THAT(path.end, Not(StartsWith("stagnation"))) << path.start;
    for (const std::vector<double>& p : path.points) {
      EXPECT_GE(p[2], -1e-6);
      EXPECT_LE(p[2], 20.0 + 1e-6);
    }
  }
}

TEST(ProgramPaths, one_streamline_of_a_saved_solution) {
  Town town;
  ASSERT_EQ(town.Run(Model(" uniflow -1 0\n", "") + Solve("")).status, 0);
  for (const char* points : {" 10 20 5 -1.0\n", " points\n 10 20 5 -1.0\n"}) {
    const Outcome run =
        town.Run(kLogs +
                     " load my town\n time 0\n layout \n window -100.00 -100.00 100.00 100.00 \n quit \n"
                     " trace \n picture off\n time 100000\n step 3\n file _TRACE.PTH\n y\n" +
                     points + " quit \n stop\n",
                 "_TRACE");
    ASSERT_EQ(run.status, 0) << run.fatal;
    const std::vector<PthPath> paths = ReadPth(town.Read("_TRACE.PTH"));
    ASSERT_EQ(paths.size(), 1u);
    EXPECT_EQ(paths[0].end, "window");
    EXPECT_NEAR(paths[0].points.back()[0], 100.0, 1e-9) << "the window of the trace, not that of the solve";
    EXPECT_NEAR(paths[0].points.back()[3], 90.0 * 20.0 * 0.25, 1e-6);
    EXPECT_GE(paths[0].points.size(), 31u) << "the step bounds every step";
  }
}

/// The deck of a protection area: its own little model, corners of windows in another order, a boundary line.
TEST(ProgramPaths, a_protection_area_ends_at_its_stream_boundary) {
  const std::string window = " layout \n window -500.00 400.00 500.00 -400.00 \n quit \n";
  const std::string deck =
      "* Written by Ormel 1.0.0\n error temperror.log\n yes\n message tempmess.log\n yes\n echo "
      "tempecho.log\n yes\n picture off\n"
      " quit\n \n modelorigin  0  0  2 \n title area\n aquifer\n base .00000E+00\n permeability "
      "3.0000000E+01\n thickness 2.0000000E+01\n"
      " porosity 2.5000000E-01\n uniflow      .0000000E+00 .0000000E+00 \n reference    2.0000000E+02 "
      ".0000000E+00 3.0000000E+01 \n quit\n" +
      window +
      " well \n discharge \n  00.000000E+00 0.000000E+00 5.00000E+02 2.00000E-01 WL_000001\n"
      "  4.000000E+02 0.000000E+00 -5.00000E+02 2.00000E-01 WL_000002\n quit \n" +
      window +
      " time 0\n solve 1 0 0 1\n \n save area\ny\n time 0\n grid\n window -500.00 400.00 500.00 -400.00 \n "
      "dotmap off\n"
      " horizontalpoints 40\n go\n surfer area\n y \n quit\n trace\n picture off\n file area\n y \n time "
      "100000\n step 10\n"
      " Boundary  2.0000000E+02 .0000000E+00 2.0000000E+02 1.0000000E+02 \n"
      " well 0.0000000E+00 0.0000000E+00 0.00000E+00  15 \n go\n quit\n stop\n";
  Town town;
  const Outcome run = town.Run(deck, "area");
  ASSERT_EQ(run.status, 0) << run.fatal;
  EXPECT_THAT(town.Read("temperror.log"), StartsWith("*"));
  EXPECT_THAT(town.Read("area.GRD"), StartsWith("DSAA\r\n40 32\r\n-500 500\r\n-400 400\r\n"));
  const std::vector<PthPath> paths = ReadPth(town.Read("area.PTH"));
  ASSERT_EQ(paths.size(), 15u);
  EXPECT_EQ(paths[0].end, "boundary");
  EXPECT_NEAR(paths[0].points.back()[0], 200.0, 1e-6);
  // Between a well and its image the speed is Q / (2 pi b n) 2 d / (x (2 d - x)), d to the boundary.
  const double exact =
      20.0 * 0.25 * 2.0 * std::numbers::pi / 500.0 * (200.0 * 200.0 - 200.0 * 200.0 / 3.0) * 0.5;
  EXPECT_NEAR(paths[0].points.back()[3] / exact, 1.0, 1e-5);
}

TEST(ProgramPaths, starts_that_cannot_be_used_are_told) {
  Town town;
  const Outcome run = town.Run(Model(" uniflow -1 0\n", "") +
                               Solve(" trace\n file my town\n y\n time 10\n well 77 88 0 5\n go\n quit\n"));
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(town.Read("my town.PTH"), "* \r\n");
  EXPECT_THAT(town.Read("error.log"), HasSubstr("No well stands at 77, 88"));
}

}  // namespace
}  // namespace vadox1
