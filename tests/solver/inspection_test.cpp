// The instant inspector: its decks, its records, and every way in which a query can end.
#include "solver/inspection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "core/table.h"
#include "model/model_values.h"
#include "solver/fixture_project.h"
#include "solver/inspection_check.h"
#include "solver/inspection_deck.h"

namespace ormel::test {
namespace {

constexpr const char* kRecord =
    "@ 250.5, 300, 11.25, .22, 12.5, 2, -.0005, 90, 21.25, 1, 2, .01, -.02, .003, ";

/// A saved solution whose lower left corner is (1000, 2000), and a solver that answers as the test says.
struct QueryProject : FixtureProject {
  std::string answer = std::string(kRecord) + "\r\n";
  ProcessResult ending;
  std::vector<std::string> decks;

  QueryProject() {
    InstallPrograms();
    ormel.solution.ValidSolution = true;
    ormel.window.solved = {1000, 2000, 2000, 3000};
    Run("update Model set SOLVERX0=1000, SOLVERY0=2000");
    // Another extent than that of the solve: a zoom has been made since.
    ormel.window.model = {0, 5000, 0, 5000};
    WriteAll(dir / "town.SOL", "saved");
    ending.started = true;
    processes.on_run = [this](const ProcessRequest& request, const auto&, const auto& cancelled) {
      decks.push_back(ReadAll(dir / request.arguments.at(1)));
      if (cancelled()) ending.cancelled = true;
      const bool trace = request.arguments[1] == kTraceDeck;
      if (!answer.empty()) WriteAll(dir / (trace ? kTracePaths : kInspectResults), answer);
      return ending;
    };
  }
  InspectorSettings& settings() { return InspectorSettingsOf(ormel); }
  void Inspect() { ModelInspectResults(ormel, 1250.5, 2300); }
  void Trace() { ModelTraceOneStreamline(ormel, 1250.5, 2300); }
};

std::string CrLf(const std::string& text) {
  std::string out;
  for (const char c : text) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return out;
}

const std::string kInspectDeckHead =
    "* Written by Ormel 1.0.0\n error temperror.log\n yes\n message tempmess.log\n yes\n echo echo.log\n "
    "yes\n"
    " quit\n \n load town\n time 12.5\n extract \n file _INSPECT.XTR\n y\n";

TEST(Inspection, WritesThePointByTheOriginOfTheSolve) {
  QueryProject p;
  p.settings() = {.Elevation = 7.456, .at_top = false};
  p.Inspect();
  ASSERT_EQ(p.decks.size(), 1U);
  ExpectSameDeck(CrLf(kInspectDeckHead + "  2.5050000E+02 3.0000000E+02 7.46\n quit \n stop\n"), p.decks[0]);
  EXPECT_EQ(p.processes.requests[0].arguments[1], "_INSPECT.DAT");
  p.settings().at_top = true;
  p.Inspect();
  ExpectSameDeck(CrLf(kInspectDeckHead + "  2.5050000E+02 3.0000000E+02\n quit \n stop\n"), p.decks[1]);
}

TEST(Inspection, ReportsInMapUnits) {
  QueryProject p;
  p.Inspect();
  ASSERT_EQ(p.ui.boxes.size(), 1U);
  EXPECT_EQ(p.ui.LastTitle(), "Model Results");
  EXPECT_EQ(p.ui.LastText(),
            "X        1.2505E+03\nY        2.3000E+03\nZ        1.1250E+01\nPorosity 2.2000E-01\n"
            "Conductivity 1.2500E+01\nBottom Elev 2.0000E+00\nNet Recharge -5.0000E-04\nHead 2.1250E+01\n"
            "Velocity (X) 1.0000E-02\nVelocity (Y) -2.0000E-02\nVelocity (Z) 3.0000E-03\n\n"
            "All data are in computational units, except\nthe x,y-coordinates, which are in map units.");
}

TEST(Inspection, TellsEveryBadEndAndLeavesTheSolution) {
  const std::string fourteen = "@ 250.5,300,11.25,.22,12.5,2,0,90,21.25,1,2,.01,-.02,.003\r\n";
  const std::string no_number = "@ 250.5,300,11.25,.22,what,2,0,90,21.25,1,2,.01,-.02,.003, \r\n";
  const struct {
    const char* name;
    std::string answer;
    const char* title;
    const char* text;
  } cases[] = {
      {"14 fields", fourteen, "Internal error",
       "Bad DATA record: Record in Vadox inspection file\nCannot view model results"},
      {"no number", no_number, "Internal error",
       "Bad DATA record: Record in Vadox inspection file\nCannot view model results"},
      {"cut before the record", "* Test points\r\n", "Internal error", "holds 0 of 1 records"},
      {"no file", "", "Internal error", "there is no such file"},
      {"dry", "@ 1,2,3,.2,1,2,0,0,-9999,0,0,0,0,0, \r\n", "Model Results",
       "Nothing is computed at this point"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    QueryProject p;
    WriteAll(p.dir / "_INSPECT.XTR", std::string(kRecord) + "\r\n");  // of an earlier query
    p.answer = c.answer;
    p.Inspect();
    ASSERT_EQ(p.ui.boxes.size(), 1U);
    EXPECT_EQ(p.ui.LastTitle(), c.title);
    EXPECT_NE(p.ui.LastText().find(c.text), std::string::npos) << p.ui.LastText();
    EXPECT_TRUE(p.ormel.solution.ValidSolution);
    EXPECT_EQ(ReadAll(p.dir / "town.SOL"), "saved");
  }
}

TEST(Inspection, FatalStopCancelAndMissingProgram) {
  QueryProject stopped;
  stopped.answer.clear();
  WriteAll(stopped.dir / "VADOX.OPS", "of an earlier run\n");
  stopped.ending.signal = 11;
  stopped.Inspect();
  EXPECT_EQ(stopped.ui.LastTitle(), "Fatal execution error");
  EXPECT_EQ(stopped.ui.LastText().find("earlier"), std::string::npos);
  EXPECT_TRUE(stopped.ormel.solution.ValidSolution);

  QueryProject cancelled;
  cancelled.ui.cancel = [] { return true; };
  cancelled.Inspect();
  cancelled.Trace();
  EXPECT_TRUE(cancelled.ui.boxes.empty());
  EXPECT_EQ(cancelled.ormel.feedback, "The query was cancelled");
  EXPECT_TRUE(cancelled.ormel.solution.traced_lines.empty());
  EXPECT_EQ(cancelled.ui.wait_depth, 0);

  QueryProject missing;
  std::filesystem::remove(missing.dir / "VADOX1.EXE");
  missing.ending.started = false;
  missing.ending.failure = "No such file or directory";
  missing.ui.AnswerTo("Model Changed!", {ormel::Answer::kNo});
  missing.Inspect();
  ASSERT_EQ(missing.ui.boxes.size(), 3U);
  EXPECT_EQ(missing.ui.boxes[0].text, "VADOX1.EXE does not exist in the ormel directory!");
  EXPECT_TRUE(missing.ormel.solution.ValidSolution);
}

TEST(Inspection, TraceDeckAndPath) {
  QueryProject p;
  p.settings() = {.Elevation = 7.0, .at_top = false, .trace_backwards = true};
  p.answer =
      "START\r\n"
      "       250.5000000   300.0000000     7.0000000     0.0000000    21.0000000\r\n"
      "       260.0000000   310.0000000     7.5000000  1234.0000000    21.0000000\r\nEND   window\r\n";
  p.Trace();
  ASSERT_EQ(p.decks.size(), 1U);
  ExpectSameDeck(
      CrLf(
          "* Written by Ormel 1.0.0\n* Instant Trace\n error temperr.log\n yes\n message tempmess.log\n yes\n"
          " echo tempecho.log\n yes\n picture off\n quit\n \n load town\n time 12.5\n layout \n"
          " window -100.00 -100.00 1100.00 900.00 \n quit \n trace \n picture off\n time 3650\n step 7.5\n"
          " file _TRACE.PTH\n y\n  2.5050000E+02 3.0000000E+02 7.00 -1.0\n quit \n stop\n"),
      p.decks[0]);
  ASSERT_EQ(p.ormel.solution.traced_lines.size(), 1U);
  const TracedLine& line = p.ormel.solution.traced_lines[0];
  EXPECT_EQ(line.points.back(), (MapPoint{1260, 2310}));
  EXPECT_EQ(line.times.back(), 1234);
  EXPECT_EQ(p.ormel.feedback, "Streamline of 1,234 days, ended by: window");

  p.settings() = {};
  p.answer = "START\r\n       250.5000000   300.0000000     7.0000000\r\n";
  p.Trace();
  EXPECT_NE(p.decks[1].find("  2.5050000E+02 3.0000000E+02 30.00 1.0\r\n"), std::string::npos)
      << "from the aquifer's top: a path begins at the water table then\n"
      << p.decks[1];
  EXPECT_EQ(p.ui.LastTitle(), "Internal error");
  EXPECT_NE(p.ui.LastText().find("_TRACE.PTH, line 2: "), std::string::npos) << p.ui.LastText();
  p.answer = "* \r\n";
  p.Trace();
  EXPECT_EQ(p.ui.LastTitle(), "Instant Trace");
  EXPECT_EQ(p.ormel.solution.traced_lines.size(), 1U);
}

/// h = 20 + 0.01 x - 0.02 y + 1E-5 x^2 in a confined aquifer, k = 8, n = 0.25, b = 28: div Q = -k b 2E-5.
PointRecord FieldAt(double x, double y, double z) {
  PointRecord r{.x = x, .y = y, .z = z, .porosity = 0.25, .conductivity = 8, .base = 2};
  r.head = 40 + 0.01 * x - 0.02 * y + 1e-5 * x * x;
  r.net_recharge = 8 * 28 * 2e-5;
  r.velocity_x = -8 / 0.25 * (0.01 + 2e-5 * x);
  r.velocity_y = -8 / 0.25 * -0.02;
  r.velocity_z = (z - 2) / 28 * r.net_recharge / 0.25;
  return r;
}

std::array<PointRecord, kStarPoints> StarAt(double x, double y, double z, double d) {
  return {FieldAt(x, y, z),     FieldAt(x + d, y, z), FieldAt(x - d, y, z), FieldAt(x, y + d, z),
          FieldAt(x, y - d, z), FieldAt(x, y, z + d), FieldAt(x, y, z - d)};
}

TEST(Inspection, IntegrityAgreesWithAClosedForm) {
  ModelValues model;
  model.AQBase = 2;
  model.AQThickness = 28;
  auto star = StarAt(100, 50, 12, 0.5);
  const IntegrityValues v = CheckIntegrity(star, model);
  EXPECT_NEAR(*v.VxNum, *v.VxAnyl, 1e-10);
  EXPECT_NEAR(*v.VyNum, *v.VyAnyl, 1e-10);
  EXPECT_EQ(*v.VzNum, 0.0);
  EXPECT_NEAR(*v.divqNum, 0.0, 1e-10);
  EXPECT_NEAR(*v.divCapQNum, -8 * 28 * 2e-5, 1e-9);
  EXPECT_NEAR(*v.divCapQAnyl, *v.divCapQNum, 1e-9);

  // Unconfined: the head is the lower value, and its slope enters the discharge.
  model.AQThickness = 100;
  const double slope = 0.01 + 2e-5 * 100, b = 40 + 1 - 1 + 0.1 - 2;
  EXPECT_NEAR(*CheckIntegrity(star, model).divCapQNum, -8 * (b * 2e-5 + slope * slope + 0.0004), 1e-8);

  // A solver that keeps the upper point at the top of the aquifer divides by the distance that is left.
  star[kUp] = FieldAt(100, 50, 12);
  EXPECT_NEAR(*CheckIntegrity(star, model).divqNum, 0.0, 1e-10);
  star[kDown] = star[kUp];
  EXPECT_FALSE(CheckIntegrity(star, model).divqNum);
  star[kEast].head = kNoHead;
  EXPECT_FALSE(CheckIntegrity(star, model).VxNum);
  EXPECT_TRUE(CheckIntegrity(star, model).VyNum);
}

TEST(Inspection, IntegrityCheckAsksForAStarAroundTheWaterTable) {
  QueryProject p;
  SolverIntegrityCheck(p.ormel);
  EXPECT_TRUE(p.ormel.menus.Checked("SolverIntegrityCheck"));
  p.settings().StepSize = 2.0;
  p.processes.on_run = [&](const ProcessRequest&, const auto&, const auto&) {
    p.decks.push_back(ReadAll(p.dir / kInspectDeck));
    std::string all = std::string(kRecord) + "\r\n";
    if (p.decks.size() > 1)
      for (int i = 0; i < 6; ++i) all += std::string(kRecord) + "\r\n";
    WriteAll(p.dir / kInspectResults, all);
    return p.ending;
  };
  std::string rows;
  p.ui.OnForm("SolverIntegrity", [&](Form& form) {
    const Table& table = *form.State("lblAnalyicNumeric").table;
    for (std::size_t i = 0; i < table.Rows(); ++i)
      rows += table.Text(i, 0) + "|" + table.Text(i, 1) + "|" + table.Text(i, 2) + "\n";
    form.Click("cmdOk");
    EXPECT_TRUE(form.Hidden());
  });
  p.Inspect();
  ASSERT_EQ(p.decks.size(), 2U);
  EXPECT_NE(p.decks[0].find("3.0000000E+02\r\n quit"), std::string::npos) << "no height, no star";
  ExpectSameDeck(CrLf(kInspectDeckHead + "  2.5050000E+02 3.0000000E+02 11.25\n"
                                         "2.5150000E+02  3.0000000E+02  1.1250000E+01 \n"
                                         "2.4950000E+02  3.0000000E+02  1.1250000E+01 \n"
                                         "2.5050000E+02  3.0100000E+02  1.1250000E+01 \n"
                                         "2.5050000E+02  2.9900000E+02  1.1250000E+01 \n"
                                         "2.5050000E+02  3.0000000E+02  1.2250000E+01 \n"
                                         "2.5050000E+02  3.0000000E+02  1.0250000E+01 \n quit \n stop\n"),
                 p.decks[1]);
  EXPECT_EQ(rows, "Vx|1.0000E-02|\nVy|-2.0000E-02|\nVz|3.0000E-03|\ndiv q|0.0000E+00|\ndiv Q|5.0000E-04|\n")
      << "a solver that answers seven times for one place has no differences";
}

TEST(Inspection, SettingsAreCheckedAndKept) {
  QueryProject p;
  p.ui.OnForm("Inspector", [&](Form& form) {
    EXPECT_FALSE(form.State("tbElevation").enabled) << "at the water table";
    form.SetChecked("chkTop", false);
    form.SetText("tbElevation", "12.5");
    form.SetText("dataStepSize", "0");
    form.Click("OK");
    EXPECT_EQ(p.ui.LastTitle(), "Bad Entry");
    EXPECT_EQ(form.FocusedControl(), "dataStepSize");
    form.SetText("dataStepSize", "0.25");
    form.SetChecked("chkTraceBackwards", true);
    form.Click("OK");
  });
  ShowInspector(p.ormel);
  const InspectorSettings& kept = p.settings();
  EXPECT_EQ(kept.Elevation, 12.5);
  EXPECT_EQ(kept.StepSize, 0.25);
  EXPECT_TRUE(!kept.at_top && kept.trace_backwards);
}

}  // namespace
}  // namespace ormel::test
