// The solver as a program: decks in, files out, and what happens when something goes wrong.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <signal.h>

#include <chrono>
#include <cmath>
#include <complex>
#include <numbers>
#include <thread>

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

const std::string kHead =
    "* Written by hand\n error error.log\n yes\n message message.log\n yes\n echo echo.log\n yes\n picture "
    "off\n quit\n \n";

// A confined aquifer, uniform flow to the west, one well.
constexpr double kK = 10.0, kB = 20.0, kN = 0.25, kFlow = 1.2, kTaken = 800.0, kRadius = 0.15;
constexpr double kReference = 60.0;
const std::complex<double> kReferenceAt(900.0, 500.0);

const std::string kWellModel =
    " modelorigin  0  0  2 \n title my town\n aquifer\n base .00000E+00\n permeability 1.0000000E+01\n"
    " thickness 2.0000000E+01\n porosity 2.5000000E-01\n uniflow      -1.2000000E+00 .0000000E+00 \n"
    " reference    9.0000000E+02 5.0000000E+02 6.0000000E+01 \n quit\n"
    " layout \n window -2000.00 -1500.00 2000.00 1500.00 \n quit \n"
    " well \n discharge \n  00.000000E+00 0.000000E+00 8.00000E+02 1.50000E-01 WL_000001\n quit \n";

const std::string kSolve = " time         0 \n solve 2 0 0 1\n \n save my town\ny\n time         0 \n";
const std::string kExtract =
    " extract\n file my town\n y\n  100.00 50.00 TP_000031\n  -300.00 10.00 TP_000032\n  .10 .00 TP_000033\n"
    " well discharge\n well head\n linesink discharge\n linesink head\n inhomogeneity\n"
    " flux FL_000041\n  -50.00 -50.00 \n  50.00 -50.00 \n  50.00 50.00 \n  -50.00 50.00 \n  -50.00 -50.00 \n "
    "quit\n"
    " flux FL_000042\n  500.00 -100.00 \n  500.00 150.00 \n quit\n quit\n";
const std::string kGrid =
    " grid\n window -2000.00 -1500.00 2000.00 1500.00 \n dotmap off\n horizontalpoints 41\n go\n surfer my "
    "town\n y \n quit\n";
const std::string kTrace =
    " trace\n picture off\n file my town\n y \n time 1000000\n points\n"
    " 9.0000000E+02 0.0000000E+00 3.0000000E+00 1.0\n 9.0000000E+02 0.0000000E+00 1.0000000E+09 -1.0\n quit\n"
    " well 0.0000000E+00 0.0000000E+00 0.00000E+00  6 \n go\n quit\n";

double Potential(std::complex<double> z) {
  return kFlow * z.real() + kTaken / (2.0 * std::numbers::pi) * std::log(std::max(std::abs(z), kRadius));
}
double Head(std::complex<double> z) {
  return kReference + (Potential(z) - Potential(kReferenceAt)) / (kK * kB);
}

TEST(Program, a_well_in_uniform_flow_gives_the_closed_form_in_every_file) {
  Town town;
  const Outcome run = town.Run(kHead + kWellModel + kSolve + kExtract + kGrid + kTrace + " stop\n");
  ASSERT_EQ(run.status, 0) << run.errors;
  EXPECT_EQ(run.fatal, "");
  EXPECT_EQ(town.Read("error.log"), "*\r\n");
  EXPECT_THAT(town.Read("message.log"), HasSubstr("converged"));
  EXPECT_THAT(town.Read("echo.log"), HasSubstr(" title my town\r\n"));
  EXPECT_THAT(town.Read("my town.OUT"), HasSubstr("Water balance"));

  const std::vector<XtrRecord> xtr = ReadXtr(town.Read("my town.XTR"));
  for (const auto& [label, at] : {std::pair<const char*, std::complex<double>>{"TP_000031", {100.0, 50.0}},
                                  {"TP_000032", {-300.0, 10.0}},
                                  {"TP_000033", {0.1, 0.0}}}) {
    const XtrRecord point = Labelled(xtr, label);
    EXPECT_EQ(point.kind, '@');
    ASSERT_EQ(point.fields.size(), 15u);
    EXPECT_NEAR(point.Number(9), Head(at), 1e-6 * Head(at)) << label;
    EXPECT_NEAR(point.Number(4), kN, 1e-9);
    EXPECT_NEAR(point.Number(5), kK, 1e-9);
  }
  const XtrRecord point = Labelled(xtr, "TP_000031");
  const std::complex<double> z(100.0, 50.0);
  const std::complex<double> q = -kFlow - kTaken / (2.0 * std::numbers::pi) * z / std::norm(z);
  EXPECT_NEAR(point.Number(10), q.real(), 1e-7);
  EXPECT_NEAR(point.Number(11), q.imag(), 1e-7);
  EXPECT_NEAR(point.Number(12), q.real() / (kB * kN), 1e-8);
  EXPECT_NEAR(point.Number(14), 0.0, 1e-12);
  const XtrRecord well = Labelled(xtr, "WL_000001");
  EXPECT_THAT(well.section, HasSubstr("discharge specified wells"));
  ASSERT_EQ(well.fields.size(), 6u);
  EXPECT_EQ(well.Number(4), kTaken);
  // The mean along the rim: that of the uniform flow is its value at the centre.
  const double rim = Head(kRadius) - kFlow * kRadius / (kK * kB);
  EXPECT_NEAR(well.Number(5), rim, 1e-6 * rim);
  // Around the well counter-clockwise: its left is inside, so what flows in counts as negative.
  EXPECT_NEAR(std::stod(xtr[xtr.size() - 2].fields[1]), -kTaken, 1e-6 * kTaken);
  // Northward at x = 500: from left to right is eastward, against the flow.
  const double across = -kFlow * 250.0 - kTaken / (2.0 * std::numbers::pi) *
                                             (std::atan2(150.0, 500.0) + std::atan2(100.0, 500.0));
  EXPECT_NEAR(std::stod(xtr.back().fields[1]), across, 1e-6 * std::fabs(across));

  const std::vector<PthPath> paths = ReadPth(town.Read("my town.PTH"));
  ASSERT_EQ(paths.size(), 8u);
  const double a = kTaken / (2.0 * std::numbers::pi * kFlow);
  const double time = kB * kN / kFlow * ((900.0 - kRadius) - a * std::log((900.0 + a) / (kRadius + a)));
  EXPECT_EQ(paths[0].end, "well WL_000001");
  EXPECT_NEAR(paths[0].points.back()[3] / time, 1.0, 1e-5);
  EXPECT_NEAR(paths[0].points[0][2], 3.0, 1e-6);
  EXPECT_NEAR(paths[0].points[0][4], Head(900.0), 1e-5);
  EXPECT_EQ(paths[1].end, "window");
  EXPECT_NEAR(paths[1].points.back()[0], 2000.0, 1e-6);
  EXPECT_NEAR(paths[1].points[0][2], kB, 1e-6) << "above the top it starts at the top";
  EXPECT_THAT(paths[2].start, HasSubstr("well WL_000001, particle 1 of 6, backward"));
  EXPECT_NEAR(paths[2].points[0][0], kRadius, 1e-6);
  EXPECT_NEAR(paths[2].points[0][1], 0.0, 1e-6);

  const std::string grid = town.Read("my town.GRD");
  EXPECT_THAT(grid, testing::StartsWith("DSAA\r\n41 31\r\n-2000 2000\r\n-1500 1500\r\n"));
  ASSERT_EQ(town.Start("'my town' 55 0.5 65", "", "CONTOUR.EXE").status, 0);
  EXPECT_THAT(town.Read("my town.CTR"), testing::StartsWith("LEVEL "));
  EXPECT_EQ(town.HalfFiles(), 0);
}

TEST(Program, a_loaded_solution_answers_as_the_solved_one) {
  Town town;
  ASSERT_EQ(town.Run(kHead + kWellModel + kSolve + kExtract + kGrid + kTrace + " stop\n").status, 0);
  const std::string xtr = town.Read("my town.XTR"), grd = town.Read("my town.GRD"),
                    pth = town.Read("my town.PTH");
  const std::string sol = town.Read("my town.SOL");
  for (const char* file : {"my town.XTR", "my town.GRD", "my town.PTH"}) std::filesystem::remove(town / file);
  const std::string load =
      " layout \n window -2000.00 -1500.00 2000.00 1500.00 \n quit \n load my town\n time         0 \n";
  const Outcome again = town.Run(kHead + load + kExtract + kGrid + kTrace + " stop\n", "REGRID");
  ASSERT_EQ(again.status, 0) << again.errors;
  EXPECT_EQ(town.Read("my town.XTR"), xtr);
  EXPECT_EQ(town.Read("my town.GRD"), grd);
  EXPECT_EQ(town.Read("my town.PTH"), pth);
  EXPECT_EQ(town.Read("my town.SOL"), sol) << "a query leaves the solution alone";
  // More iterations on a converged solution change nothing either.
  const Outcome more =
      town.Run(kHead + load + " solve 3 0 0 1\n \n save my town\ny\n" + kExtract + " stop\n", "REGRID");
  ASSERT_EQ(more.status, 0) << more.errors;
  const double before = Labelled(ReadXtr(xtr), "TP_000031").Number(9);
  EXPECT_NEAR(Labelled(ReadXtr(town.Read("my town.XTR")), "TP_000031").Number(9), before, 1e-9 * before);
}

TEST(Program, a_query_gives_one_record_with_an_elevation) {
  Town town;
  ASSERT_EQ(town.Run(kHead + kWellModel + kSolve + " stop\n").status, 0);
  const Outcome run = town.Run(kHead +
                                   " load my town\n time 0\n extract \n file _INSPECT.XTR\n y\n  "
                                   "1.0000000E+02 5.0000000E+01       12.50\n"
                                   "  1.0000000E+02 5.0000000E+01       99.00\n quit \n stop\n",
                               "_INSPECT");
  ASSERT_EQ(run.status, 0) << run.errors;
  const std::vector<XtrRecord> records = ReadXtr(town.Read("_INSPECT.XTR"));
  ASSERT_EQ(records.size(), 2u);
  ASSERT_EQ(records[0].fields.size(), 15u);
  EXPECT_NEAR(records[0].Number(3), 12.5, 1e-9);
  EXPECT_NEAR(records[1].Number(3), kB, 1e-9) << "above the top: the top";
  EXPECT_NEAR(records[0].Number(9), Head({100.0, 50.0}), 1e-5);
}

// --- failures ---

struct FatalCase {
  const char* name;
  std::string deck;
  std::vector<const char*> words;
};

TEST(Program, says_in_words_why_it_stopped) {
  const FatalCase cases[] = {
      {"unusable line",
       kHead + kWellModel + " frob 1\n stop\n",
       {"Line ", "frob 1", "my town.DAT", "Check the element"}},
      {"nothing to load", kHead + " load other\n stop\n", {"other.SOL", "Solve the model first"}},
      {"nothing solved", kHead + kWellModel + kExtract + " stop\n", {"no solution yet", "Solve first"}},
      {"nothing to solve", kHead + kSolve + " stop\n", {"describes no model"}},
      {"bad aquifer",
       kHead + " aquifer\n base 0\n permeability 0\n thickness 10\n porosity .2\n reference 0 0 5\n quit\n" +
           kSolve + " stop\n",
       {"onductivity"}},
      {"no name for a file",
       kHead + kWellModel + " time 0\n solve 1 0 0 1\n save\n stop\n",
       {"name of a file"}},
      {"a folder in the way",
       kHead + kWellModel + " time 0\n solve 1 0 0 1\n save sub/none/x\n stop\n",
       {"sub/none/x.SOL", "Check that the folder"}},
      {"too many nodes",
       kHead + kWellModel + kSolve + " grid\n horizontalpoints 1000000\n go\n surfer x\n quit\n stop\n",
       {"coarser"}},
  };
  for (const FatalCase& c : cases) {
    Town town;
    const Outcome run = town.Run(c.deck);
    EXPECT_EQ(run.status, 1) << c.name;
    for (const char* words : c.words) EXPECT_THAT(run.fatal, HasSubstr(words)) << c.name;
    EXPECT_NE(town.Read("error.log"), "*\r\n") << c.name;
    EXPECT_EQ(town.HalfFiles(), 0) << c.name;
    // The next clean run takes the words away.
    EXPECT_EQ(town.Run(kHead + kWellModel + kSolve + " stop\n").fatal, "") << c.name;
  }
}

/// Conditions that hold badly between the control points are told by label; well drawn ones are not.
TEST(Program, warns_of_conditions_that_hold_badly) {
  const std::string river =
      " linesink\n head\n resistance 0\n width 0 0\n depth 0\n 300 -400 300 0 58 LS_000001_0002\n 300 0 300 "
      "400 "
      "58 LS_000001_0003\n";
  Town town;
  ASSERT_EQ(town.Run(kHead + kWellModel + river + " quit\n" + kSolve + " stop\n").status, 0);
  EXPECT_EQ(town.Read("error.log"), "*\r\n");
  EXPECT_THAT(town.Read("message.log"), HasSubstr("Largest errors between the control points"));
  // A head that jumps where two strings meet cannot be met.
  const std::string jump =
      " head\n resistance 0\n width 0 0\n depth 0\n 300 400 300 700 20 LS_000002_0002\n quit\n";
  ASSERT_EQ(town.Run(kHead + kWellModel + river + jump + kSolve + " stop\n").status, 0);
  for (const char* log : {"error.log", "message.log"}) {
    EXPECT_THAT(town.Read(log), HasSubstr("LS_00000")) << log;
    EXPECT_THAT(town.Read(log), HasSubstr("percent of the range of heads in the model")) << log;
  }
}

TEST(Program, refuses_a_missing_deck_and_missing_arguments) {
  Town town;
  const Outcome missing = town.Start("61 nowhere");
  EXPECT_EQ(missing.status, 1);
  EXPECT_THAT(missing.fatal, HasSubstr("nowhere.DAT"));
  EXPECT_THAT(missing.fatal, HasSubstr("Check the name"));
  EXPECT_EQ(town.Start("61").status, 1);
  EXPECT_EQ(town.Start("").status, 1);
}

TEST(Program, finds_its_deck_by_every_form_of_the_name) {
  Town town;
  ASSERT_EQ(town.Run(kHead + kWellModel + kSolve + " stop\n").status, 0);
  for (const char* arguments : {"61 my town", "0 'my town.DAT'", "x 'my town'"}) {
    std::filesystem::remove(town / "my town.SOL");
    EXPECT_EQ(town.Start(arguments).status, 0) << arguments;
    EXPECT_TRUE(town.Has("my town.SOL")) << arguments;
  }
}

TEST(Program, a_cut_or_foreign_solution_is_refused_and_left_alone) {
  Town town;
  ASSERT_EQ(town.Run(kHead + kWellModel + kSolve + " stop\n").status, 0);
  const std::string sol = town.Read("my town.SOL");
  for (const std::string& bad :
       {sol.substr(0, sol.size() / 2), std::string("SQLite format 3"), std::string()}) {
    ormel::test::WriteAll(town / "my town.SOL", bad);
    const Outcome run = town.Run(kHead + " load my town\n" + kExtract + " stop\n", "REGRID");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.fatal, HasSubstr("Solve the model again"));
    EXPECT_EQ(town.Read("my town.SOL"), bad);
    EXPECT_FALSE(town.Has("my town.XTR"));
  }
}

TEST(Program, a_full_disk_is_told_and_leaves_what_was_there) {
  Town town;
  ormel::test::WriteAll(town / "my town.GRD", "old grid");
  const std::string grid = " grid\n horizontalpoints 400\n go\n surfer my town\n quit\n";
  const Outcome run = town.Run(kHead + kWellModel + kSolve + grid + " stop\n", Town::kStem, "ulimit -f 64;");
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.fatal, HasSubstr("my town.GRD"));
  EXPECT_THAT(run.fatal, HasSubstr("disk has room"));
  EXPECT_EQ(town.Read("my town.GRD"), "old grid");
  EXPECT_EQ(town.HalfFiles(), 0);
}

TEST(Program, killed_or_interrupted_it_leaves_whole_files_only) {
  std::string model = kWellModel + " well\n discharge\n";
  for (int i = 0; i < 300; ++i) {
    model += " " + std::to_string(-1900 + 12 * i) + " 1200 1.0 0.1 WL_" + std::to_string(100 + i) + "\n";
  }
  const std::string grid = " grid\n horizontalpoints 9000\n go\n surfer my town\n quit\n";
  const std::string deck = kHead + model + " quit\n" + kSolve + kExtract + grid + " stop\n";
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    Town town;
    ormel::test::WriteAll(town / "my town.GRD", "old grid");
    ormel::test::WriteAll(town / "my town.DAT", deck);
    const pid_t run = town.StartAside();
    // In the middle of the grid.
    for (int wait = 0; wait < 1000 && !town.Has("my town.XTR"); ++wait) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_TRUE(town.Has("my town.XTR"));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ASSERT_EQ(kill(run, signal), 0);
    int status = 0;
    ASSERT_EQ(waitpid(run, &status, 0), run);
    EXPECT_EQ(town.Read("my town.GRD"), "old grid");
    const std::string xtr = town.Read("my town.XTR");
    EXPECT_EQ(ReadXtr(xtr).back().fields.size(), 2u) << "the last record is whole";
    if (signal == SIGKILL) {
      EXPECT_TRUE(WIFSIGNALED(status));
      EXPECT_FALSE(town.Has("error.log"));
      continue;
    }
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_THAT(town.Read("VADOX.OPS"), HasSubstr("interrupted"));
    EXPECT_THAT(town.Read("error.log"), HasSubstr("interrupted"));
    EXPECT_EQ(town.HalfFiles(), 0);
  }
}

TEST(Program, tells_its_progress_in_lines) {
  Town town;
  const Outcome run = town.Run(kHead + kWellModel + kSolve + kGrid + kTrace + " stop\n");
  std::istringstream in(run.output);
  int last = 0, lines = 0;
  for (std::string line; std::getline(in, line); ++lines) {
    int percent = -1, length = 0;
    ASSERT_EQ(std::sscanf(line.c_str(), "PROGRESS %d %n", &percent, &length), 1) << line;
    EXPECT_GE(percent, last);
    EXPECT_LE(percent, 100);
    EXPECT_GT(line.size(), static_cast<std::size_t>(length));
    last = percent;
  }
  EXPECT_EQ(last, 100);
  EXPECT_GT(lines, 4);
}

}  // namespace
}  // namespace vadox1
