// From a project through both outside programs and back, compared with closed forms.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <numbers>
#include <sstream>

#include "core/table.h"
#include "platform/posix_processes.h"
#include "solver/contour_file.h"
#include "solver/driver.h"
#include "solver/grid_file.h"
#include "solver/inspection.h"
#include "solver/path_file.h"
#include "support/test_project.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel::test {
namespace {

constexpr double kPi = std::numbers::pi;

/// A project whose programs are the real ones.
struct RealProject : TestProject {
  PosixProcesses programs{ORMEL_BIN_DIR};
  RealProject() {
    ormel.ports.processes = &programs;
    ormel.window.SolveWindow = {1000, 2000, 3000, 2000};
    Run("update Model set AQBase=0, AQThickness='20', AQHydCond=10, AQPorosity=0.25, CONTOURShow=1, "
        "CONTOURMinimum=40, CONTOURMaximum=60, CONTOURInterval=0.1, SOLVERIterations=3, TRACEMaxTime=3650");
  }
  void Run(const std::string& sql) { ormel.db().Execute(sql); }
  void Point(int vid, double x, double y) {
    ormel.db().Execute("insert into Vertices(VID,PID,Seq,X,Y) values(?,-1,-1,?,?)", {vid, x, y});
  }
  void Polygon(int pid, std::initializer_list<MapPoint> points) {
    int seq = 1;
    for (const MapPoint& at : points) {
      ormel.db().Execute("insert into Vertices(PID,Seq,X,Y) values(?,?,?,?)", {pid, seq, at.x, at.y});
      seq += 100;
    }
  }
  void Solve() {
    ModelRunVadox(ormel, {.ViewLogs = true});
    ASSERT_TRUE(ormel.solution.ValidSolution) << ui.LastText();
    EXPECT_TRUE(ui.boxes.empty()) << ui.LastText();
    EXPECT_EQ(ormel.feedback, "") << "every element has its result";
  }
};

TEST(RealSolver, WellInUniformFlowComesBackWithItsClosedForm) {
  RealProject p;
  p.Run(
      "update Model set UNIFLOWCompute=1, UNIFLOWGradient=0.001, UNIFLOWRefHead=50, UNIFLOWRefX=1900, "
      "UNIFLOWRefY=2500");
  p.Point(1, 1500, 2500);
  p.Run("insert into Wells(VID,Label,Head,Radius,NParticles,StartElev) values(1,'Town',100,0.3,8,10)");
  p.Point(2, 1300, 2400);
  p.Run("insert into TestPoints(VID,ObsHead,Label) values(2,50,'MW')");
  p.Point(3, 1100, 2900);
  p.Run("insert into Particles(VID) values(3)");
  p.Solve();

  // Confined throughout: T h = -Qx x + Q/(2 pi) ln r + constant, T = 200, Qx = 0.001 x 200 [m2/d].
  const auto head = [](double x, double r) {
    return 50.0 + (-0.2 * (x - 1900.0) + 100.0 / (2.0 * kPi) * std::log(r / 400.0)) / 200.0;
  };
  EXPECT_NEAR(p.Number("select ModelHead from TPResults"), head(1300, std::hypot(200.0, 100.0)), 1e-6);
  EXPECT_NEAR(p.Number("select Difference from TPResults"), 50.0 - head(1300, std::hypot(200.0, 100.0)),
              1e-6);
  // The uniform part differs by its value across the well's radius at most.
  EXPECT_NEAR(p.Number("select Head from WLResults"), head(1500, 0.3), 0.2 * 0.3 / 200.0 + 1e-6);
  EXPECT_EQ(p.Number("select Discharge from WLResults"), 100);
  EXPECT_EQ(p.Number("select X from WLResults"), 1500);

  std::vector<Pathline> paths;
  const ReadOutcome read_paths =
      ReadPathFile(p.dir / "town.PTH", [&](const Pathline& path) { paths.push_back(path); });
  EXPECT_FALSE(read_paths) << read_paths->Message();
  ASSERT_EQ(paths.size(), 9U);
  int rim = 0;
  for (const Pathline& path : paths) {
    ASSERT_GE(path.points.size(), 2U);
    rim += std::abs(std::hypot(path.points[0].at.x - 500, path.points[0].at.y - 500) - 0.3) < 0.01 ? 1 : 0;
    EXPECT_GE(path.points.back().time, path.points.front().time);
  }
  EXPECT_EQ(rim, 8);

  std::size_t contours = 0;
  const ReadOutcome read_contours = ReadContourFile(p.dir / "town.CTR", [&](const ContourLine& line) {
    ++contours;
    for (const ModelPoint& at : line.points) {
      const double r = std::hypot(at.x - 500, at.y - 500);
      if (r > 150) {
        EXPECT_NEAR(head(at.x + 1000, r), line.level, 0.01);
      }
    }
  });
  EXPECT_FALSE(read_contours) << read_contours->Message();
  EXPECT_GT(contours, 5U);
  std::size_t rows = 0;
  GridHeader header;
  EXPECT_FALSE(ReadGridFile(
      p.dir / "town.GRD", [&](const GridHeader& h) { header = h; },
      [&](std::size_t, std::span<const double>) { ++rows; }));
  EXPECT_EQ(header.columns, 40U);
  EXPECT_EQ(rows, header.rows);

  // The saved solution answers again without a new solve.
  p.Run("update TestPoints set ObsHead=60");
  ModelRunVadox(p.ormel, {});
  EXPECT_NEAR(p.Number("select Difference from TPResults"), 60.0 - head(1300, std::hypot(200.0, 100.0)),
              1e-6);
}

/// The lines of a box, each by the number at its end.
std::map<std::string, double> NumbersOf(const std::string& text) {
  std::map<std::string, double> numbers;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    if (const std::size_t blank = line.rfind(' '); blank != std::string::npos)
      numbers[std::string(Trim(std::string_view(line).substr(0, blank)))] = Val(line.substr(blank));
  return numbers;
}

TEST(RealSolver, InstantInspectorAgreesWithTheClosedFormAndTracesToTheWell) {
  RealProject p;
  // Unconfined: a 20 m thick aquifer whose water table lies at some 15.
  p.Run(
      "update Model set UNIFLOWCompute=1, UNIFLOWGradient=0.001, UNIFLOWRefHead=15, UNIFLOWRefX=1900, "
      "UNIFLOWRefY=2500, CONTOURShow=0, TRACECompute=0, TRACEMaxTime=36500");
  p.Point(1, 1500, 2500);
  p.Run("insert into Wells(VID,Label,Head,Radius) values(1,'Town',100,0.3)");
  p.Solve();
  const std::string saved = ReadAll(p.dir / "town.SOL");
  p.ormel.window.model = {0, 9, 0, 9};  // as after a zoom

  // phi = k h^2 / 2 = phi0 - Qx (x - x0) + Q / (2 pi) ln(r / r0), Qx = i k h0.
  const double x = 1400, y = 2600, k = 10, qx = 0.001 * k * 15;
  const double r = std::hypot(x - 1500, y - 2500);
  const double phi = 0.5 * k * 225 - qx * (x - 1900) + 100 / (2 * kPi) * std::log(r / 400);
  const double h = std::sqrt(2 * phi / k);
  const double discharge_x = qx - 100 / (2 * kPi) * (x - 1500) / (r * r);
  const double discharge_y = -100 / (2 * kPi) * (y - 2500) / (r * r);
  ModelInspectResults(p.ormel, x, y);
  ASSERT_EQ(p.ui.LastTitle(), "Model Results") << p.ui.LastText();
  auto at = NumbersOf(p.ui.LastText());
  EXPECT_NEAR(at["Head"], h, 1e-3);
  EXPECT_NEAR(at["Z"], h, 1e-3) << "at the water table";
  EXPECT_NEAR(at["X"], x, 1e-9);
  EXPECT_NEAR(at["Velocity (X)"], discharge_x / (h * 0.25), 1e-6);
  EXPECT_NEAR(at["Velocity (Y)"], discharge_y / (h * 0.25), 1e-6);
  InspectorSettingsOf(p.ormel) = {.Elevation = 3.5, .at_top = false, .StepSize = 0.5};
  SolverIntegrityCheck(p.ormel);
  p.ui.OnForm("SolverIntegrity", [](Form& form) {
    const Table& table = *form.State("lblAnalyicNumeric").table;
    for (const std::size_t row : {0U, 1U, 3U, 4U}) {
      ASSERT_TRUE(table.At(row, 3).IsNumber()) << row;
      EXPECT_NEAR(table.At(row, 3).AsDouble(), 0.0, 2e-6) << table.Text(row, 0);
    }
    form.Click("cmdOk");
  });
  ModelInspectResults(p.ormel, x, y);
  EXPECT_NEAR(NumbersOf(p.ui.LastText())["Z"], 3.5, 1e-9);
  EXPECT_EQ(p.ui.shown_forms.back(), "SolverIntegrity");

  // Upstream of the well: the streamline on the axis ends there; backward it leaves through the window.
  ModelTraceOneStreamline(p.ormel, 1450, 2500);
  EXPECT_NE(p.ormel.feedback.find("ended by: well Town"), std::string::npos) << p.ormel.feedback;
  InspectorSettingsOf(p.ormel).trace_backwards = true;
  ModelTraceOneStreamline(p.ormel, 1450, 2500);
  EXPECT_NE(p.ormel.feedback.find("ended by: window"), std::string::npos) << p.ormel.feedback;
  ASSERT_EQ(p.ormel.solution.traced_lines.size(), 2U);
  for (const MapPoint& point : p.ormel.solution.traced_lines[1].points) EXPECT_NEAR(point.y, 2500, 0.01);
  EXPECT_NEAR(p.ormel.solution.traced_lines[1].points.back().x, 1000, 0.1);
  EXPECT_EQ(ReadAll(p.dir / "town.SOL"), saved);
  EXPECT_TRUE(p.ormel.solution.ValidSolution);
}

TEST(RealSolver, ElementsByHeadMeetTheirHeads) {
  RealProject p;
  p.Point(1, 1300, 2300);
  p.Run("insert into Wells(VID,Label,Head,Radius,HeadSpecified) values(1,'Head',47,0.3,1)");
  p.Point(2, 1600, 2600);
  p.Run("insert into Wells(VID,Label,Head,Radius) values(2,'Rate',80,0.3)");
  p.Polygon(1, {{1100, 2050}, {1100, 2500}, {1100, 2950}});
  p.Run("insert into LinesinkStrings(PID,Label,StartingHead,EndingHead) values(1,'River',50,48)");
  p.Polygon(2, {{1400, 2400}, {1700, 2400}, {1700, 2700}, {1400, 2700}});
  p.Run("insert into Inhomogeneities(PID,Label,HydCond,Recharge,ChangeK) values(2,'Gravel',30,0.001,-1)");
  p.Solve();
  EXPECT_NEAR(p.Number("select Head from WLResults where Label='Head'"), 47, 1e-6);
  EXPECT_GT(p.Number("select abs(Discharge) from WLResults where Label='Head'"), 0);
  EXPECT_EQ(p.Number("select count(*) from LSResults"), 2);
  EXPECT_NEAR(p.Number("select max(abs(CalculatedHead-SpecifiedHead)) from LSResults"), 0, 0.01);
  EXPECT_EQ(p.Number("select min(Conductivity) from INResults"), 30);
  EXPECT_NEAR(p.Number("select max(DomainArea) from INResults"), 90000, 1e-3);
}

TEST(RealSolver, ItsRefusalIsToldInItsOwnWords) {
  RealProject p;
  // Nothing but a well: the reference head is the aquifer's top, and the well cannot stand on another one.
  p.ui.AnswerTo("Error", {ormel::Answer::kOk});
  p.ui.AnswerTo("Small Window", {ormel::Answer::kOk});
  p.ui.AnswerTo("Zoom to Element", {ormel::Answer::kNo});
  p.Point(1, 1300, 2300);
  p.Point(2, 1300, 2300);
  p.Run("insert into Wells(VID,Label,Head,Radius) values(1,'A',10,0)");
  ModelRunVadox(p.ormel, {});
  ASSERT_FALSE(p.ui.boxes.empty());
  const Box& refusal = p.ui.boxes[p.ui.boxes.size() - 2];  // the offer to zoom to the well comes behind it
  EXPECT_EQ(refusal.title, "Fatal execution error");
  EXPECT_NE(refusal.text.find("A (WL_000001)"), std::string::npos) << refusal.text;
  EXPECT_FALSE(p.ormel.solution.ValidSolution);
}

/// A project whose solver is a shell script.
struct ScriptProject : RealProject {
  explicit ScriptProject(const std::string& script) {
    WriteAll(dir / "VADOX1.EXE", "#!/bin/sh\n" + script);
    std::filesystem::permissions(dir / "VADOX1.EXE", std::filesystem::perms::owner_all);
    ormel.ports.processes = &own_programs;
    Point(1, 1500, 2500);
    Run("insert into Wells(VID,Label,Head,Radius) values(1,'Town',100,0.3)");
  }
  PosixProcesses own_programs{dir.path().string()};
};

TEST(RealProcess, CrashingSolverIsTold) {
  ScriptProject p("echo half > town.SOL\nkill -SEGV $$\n");
  ModelRunVadox(p.ormel, {});
  EXPECT_EQ(p.ui.LastTitle(), "Fatal execution error");
  EXPECT_NE(p.ui.LastText().find("was stopped by signal 11"), std::string::npos) << p.ui.LastText();
  EXPECT_FALSE(p.ormel.solution.ValidSolution);
}

TEST(RealProcess, CancelledSolverLeavesNothingBehind) {
  ScriptProject p(
      "trap 'echo stopped > VADOX.OPS; exit 2' INT TERM\necho half > town.SOL\nsleep 60 &\nwait\n");
  p.ui.cancel = [&] { return std::filesystem::exists(p.dir / "town.SOL"); };
  ModelRunVadox(p.ormel, {});
  EXPECT_TRUE(p.ui.boxes.empty()) << p.ui.LastText();
  EXPECT_NE(p.ormel.feedback.find("cancelled"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(p.dir / "town.SOL"));
  EXPECT_FALSE(std::filesystem::exists(p.dir / "VADOX.OPS"));
}

}  // namespace
}  // namespace ormel::test
