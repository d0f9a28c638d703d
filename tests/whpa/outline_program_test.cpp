// Capture zones from an empty project through the real solver.

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "solved_project.h"
#include "solver/extents.h"

namespace ormel {
namespace {

using test::kConductivity;
using test::kGradient;
using test::kPorosity;
using test::kQ;
using test::kThickness;

constexpr double kFlow = kGradient * kConductivity * kThickness;  ///< ambient discharge per width [m2/d]
constexpr double kLength = kQ / (2 * std::numbers::pi * kFlow);

/// A confined aquifer in uniform flow towards the west.
struct SolvedProject : test::SolvedProject {
  SolvedProject() { StoreUniformFlow(ormel, {500500, 201000}, 100, kGradient, 180); }
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
  program.ormel.db().Execute("drop table Zones");  // a project of an older version
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
    EXPECT_NEAR(test::RingArea(ring), volume, 0.01 * volume) << years << " years";
  }
  // Outlining again, after a look at other parts of the map, gives the same zones and leaves no stray
  // vertices.
  const std::vector<ModelPoint> first = program.Zone("O'Hara's 2 years");
  program.ormel.window.SolveWindow = {490000, 520000, 220000, 190000};
  ModelCheckExtents(program.ormel, false, false);
  const double vertices = program.Number("select count(*) from Vertices");
  program.ui.OnForm("OutlineCaptureZone", [](Form& form) { form.Click("OK"); });
  OutlineCaptureZone(program.ormel);
  EXPECT_EQ(program.Number("select count(*) from Capzones"), 3);
  EXPECT_EQ(program.Number("select count(*) from Vertices"), vertices);
  EXPECT_EQ(program.Zone("O'Hara's 2 years"), first);
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
