// Capture zones from an empty project through the real solver.

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "model/model_values.h"
#include "model/uniform_flow.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "platform/posix_processes.h"
#include "solver/driver.h"
#include "solver/solver_bridge.h"
#include "support/test_project.h"
#include "whpa/outline.h"
#include "whpa/outline_command.h"
#include "whpa/run.h"

namespace ormel {
namespace {

constexpr double kQ = 900, kThickness = 20, kPorosity = 0.25, kGradient = 0.002, kConductivity = 12;
constexpr double kFlow = kGradient * kConductivity * kThickness;  ///< ambient discharge per width [m2/d]
constexpr double kLength = kQ / (2 * std::numbers::pi * kFlow);

/// A confined aquifer in uniform flow towards the west, solved by the programs beside this one.
struct SolvedProject : test::TestProject {
  PosixProcesses real{ORMEL_BIN_DIR};
  SolverBridge bridge{ormel, [](Ormel& o) { ModelRunWHPAs(o); }};

  SolvedProject() {
    ormel.ports.processes = &real;
    ormel.ports.solver = &bridge;
    ormel.window.SolveWindow = {500000, 503000, 202000, 200000};
    ModelValues model = ReadModel(ormel);
    model.AQThickness = kThickness;
    model.AQHydCond = kConductivity;
    model.AQPorosity = kPorosity;
    model.SOLVERIterations = 2;
    model.TRACECompute = 0;
    model.ViewErrorLog = model.ViewMessageLog = 0;
    WriteModel(ormel, model);
    StoreUniformFlow(ormel, {500500, 201000}, 100, kGradient, 180);
  }

  void AddWell(const std::string& label, MapPoint at) {
    WellRow row;
    row.Label = label;
    row.Head = kQ;
    row.Radius = 0.2;
    StoreWell(ormel, row, at);
  }

  std::vector<ModelPoint> Zone(const std::string& label) {
    const Pid pid = ormel.db().Scalar("select PID from Capzones where Label=?", {label}).AsLong();
    std::vector<ModelPoint> ring;
    for (const MapPoint& p : PointsOf(ormel, pid)) ring.push_back({p.x, p.y});
    return ring;
  }
};

/// Distance to the isochrone of a well at the origin in flow towards -x, to first order, in units of kLength
/// (Bear and Jacobs 1965).
double IsochroneError(double x, double y, double t) {
  const auto f = [t](double a, double b) {
    return std::exp(a - t) - std::cos(b) - a * (std::abs(b) < 1e-9 ? 1.0 : std::sin(b) / b);
  };
  const double h = 1e-6;
  const double fx = (f(x + h, y) - f(x - h, y)) / (2 * h), fy = (f(x, y + h) - f(x, y - h)) / (2 * h);
  return std::abs(f(x, y)) / std::hypot(fx, fy);
}

TEST(CaptureZone, OfOneWellAgreesWithTheIsochroneOfUniformFlow) {
  SolvedProject program;
  program.AddWell("O'Hara's", {501000, 201000});
  ModelRunVadox(program.ormel, {});
  ASSERT_TRUE(program.ormel.solution.ValidSolution) << program.ui.LastText();
  program.ui.OnForm("OutlineCaptureZone", [](Form& form) {
    form.SetText("tbTimes", "5 -1");
    form.Click("OK");
    EXPECT_FALSE(form.Hidden());
    form.SetText("tbTimes", "2 5 10");
    form.Click("OK");
  });
  OutlineCaptureZone(program.ormel);
  EXPECT_EQ(program.Number("select count(*) from Capzones"), 3);
  for (const int years : {2, 5, 10}) {
    const auto ring = program.Zone("O'Hara's " + std::to_string(years) + " years");
    ASSERT_GT(ring.size(), 20U) << program.ui.LastText();
    const double days = years * kDaysPerYear;
    const double t = 2 * std::numbers::pi * kFlow * kFlow * days / (kPorosity * kThickness * kQ);
    double width = 0;
    for (const ModelPoint& p : ring) width = std::max(width, 2 * std::abs(p.y - 201000));
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const ModelPoint a = ring[i], b = ring[(i + 1) % ring.size()];
      for (const double s : {0.0, 0.5}) {
        const double x = (a.x + s * (b.x - a.x) - 501000) / kLength,
                     y = (a.y + s * (b.y - a.y) - 201000) / kLength;
        EXPECT_LT(IsochroneError(x, y, t) * kLength, 0.01 * width) << years << " years, vertex " << i;
      }
    }
    const double volume = kQ * days / (kPorosity * kThickness);
    EXPECT_NEAR(std::abs(RingArea(ring)), volume, 0.01 * volume) << years << " years";
  }
  // Outlining again replaces the zones and leaves no stray vertices.
  const double vertices = program.Number("select count(*) from Vertices");
  program.ui.OnForm("OutlineCaptureZone", [](Form& form) { form.Click("OK"); });
  OutlineCaptureZone(program.ormel);
  EXPECT_EQ(program.Number("select count(*) from Capzones"), 3);
  EXPECT_EQ(program.Number("select count(*) from Vertices"), vertices);
}

TEST(CaptureZone, IsCancelledWithoutATrace) {
  SolvedProject program;
  program.AddWell("North", {501000, 201000});
  ModelRunVadox(program.ormel, {});
  program.ui.cancel = [] { return true; };
  program.ui.OnForm("OutlineCaptureZone", [](Form& form) { form.Click("OK"); });
  OutlineCaptureZone(program.ormel);
  EXPECT_EQ(program.Number("select count(*) from Capzones"), 0);
  EXPECT_TRUE(program.ormel.solution.ValidSolution);
}

}  // namespace
}  // namespace ormel
