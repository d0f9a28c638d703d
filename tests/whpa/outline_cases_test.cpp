// Capture zones in models of several kinds, through the real solver, against balances of water.

#include <cmath>
#include <numbers>

#include "core/layers.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "solved_project.h"
#include "support/temp_dir.h"
#include "text/files.h"
#include "whpa/rows.h"

namespace ormel::test {
namespace {

constexpr double kFiveYears = 5 * kDaysPerYear, kTenYears = 10 * kDaysPerYear;
const MapPoint kPlace{501000, 201000};

double Volume(double days) {
  return kQ * days / (kPorosity * kThickness);
}

std::vector<MapPoint> Square(MapPoint centre, double half) {
  return {{centre.x - half, centre.y - half},
          {centre.x + half, centre.y - half},
          {centre.x + half, centre.y + half},
          {centre.x - half, centre.y + half}};
}

TEST(CaptureZoneCases, ZonesOfTwoWellsNestButDoNotOverlap) {
  SolvedProject program;
  StoreUniformFlow(program.ormel, {500500, 201000}, 100, kGradient, 180);
  program.AddWell("A", kPlace);
  program.AddWell("B", {501250, 201150}, 600);
  program.Outline("2 5 10");
  for (const char* well : {"A", "B"}) {
    for (const auto& [shorter, longer] : {std::pair{"2", "5"}, {"5", "10"}}) {
      const auto outer = program.Zone(std::string(well) + " " + longer + " years");
      const double slack = 0.003 * RingDiagonal(outer);
      for (const ModelPoint& p : program.Zone(std::string(well) + " " + shorter + " years"))
        EXPECT_GT(DepthInside(p, outer), -slack) << well << " after " << shorter << " and " << longer;
    }
    const double volume = Volume(kTenYears) * (well[0] == 'A' ? 1.0 : 600 / kQ);
    EXPECT_NEAR(program.Area(std::string(well) + " 10 years"), volume, 0.01 * volume) << well;
  }
  const auto a = program.Zone("A 10 years"), b = program.Zone("B 10 years");
  const double slack = 0.003 * std::max(RingDiagonal(a), RingDiagonal(b));
  for (const ModelPoint& p : b) EXPECT_LT(DepthInside(p, a), slack) << p.x << ' ' << p.y;
  for (const ModelPoint& p : a) EXPECT_LT(DepthInside(p, b), slack) << p.x << ' ' << p.y;
}

/// The small model of protection areas is confined and has no recharge: what is not Q t is beyond the
/// boundary.
TEST(CaptureZoneCases, ProtectionAreasByPathlinesAreOutlinedWhereAsked) {
  for (const bool boundary : {false, true}) {
    SolvedProject program;
    Ormel& ormel = program.ormel;
    program.Change([](ModelValues& model) {
      model.TRACECompute = 1;
      model.TRACEMaxTime = kTenYears;
      model.CONTOURShow = 0;
    });
    program.AddWell("North", kPlace);
    program.AddWell("South", {501000, 200600}, 300);
    WhpaRow row;
    row.Type = WhpaType::kMultiple;
    row.Porosity = kPorosity;
    row.Thickness = kThickness;
    row.AmbientFlow = 0.4;
    row.Direction = 180;
    row.FirstHead = 200;
    row.WHPAData = 20;
    std::vector<WhpaRow> rows(2, row);
    rows[0].Well = "North";
    rows[1].Well = "South";
    AddWhpaRows(ormel, rows);
    StoreUniformFlow(ormel, {500500, 201000}, 100, kGradient,
                     180);  // without a head there would be a question
    ormel.db().Execute("update WHPAs set WHPAText='area'");
    if (boundary)
      ormel.db().Execute("update WHPAs set Point1X=501250,Point1Y=200000,Point2X=501250,Point2Y=202000");
    ModelRunWHPAs(ormel);
    EXPECT_EQ(program.Number("select count(*) from Capzones"), 0) << "not asked for";
    EXPECT_EQ(ReadAll(ormel.project.OrmelBasePath + "/area.DAT").find("zones"), std::string::npos);
    ormel.db().Execute("update WHPAs set Outline=1");
    for (int run = 0; run < 2; ++run) ModelRunWHPAs(ormel);
    ASSERT_EQ(program.Number("select count(*) from Capzones"), 2) << program.ui.LastText();
    EXPECT_GT(DepthInside({kPlace.x, kPlace.y}, program.Zone("North WHPA 10 years")), 50.0);
    const double north = program.Area("North WHPA 10 years"), whole = Volume(kTenYears);
    if (boundary) {
      EXPECT_LT(north, 0.95 * whole);
      EXPECT_GT(program.Number("select Edge+Surface from Zones where Well='North'"), 0.04 * kQ * kTenYears);
      for (const ModelPoint& p : program.Zone("North WHPA 10 years")) EXPECT_LT(p.x, 501251);
    } else {
      EXPECT_NEAR(north, whole, 0.005 * whole);
      EXPECT_NEAR(program.Area("South WHPA 10 years"), whole / 3, 0.002 * whole);
    }
    EXPECT_FALSE(FileExists(ormel.project.OrmelBasePath + "/area.ZNS"));
    EXPECT_TRUE(ormel.layers.On(Layer::kCapzones));
  }
}

TEST(CaptureZoneCases, AZoneEndsAtTheStreamThatItReaches) {
  SolvedProject program;
  constexpr double kStream = 200900;  // 100 m south of the well
  std::vector<MapPoint> stream;
  for (double x = 500500; x <= 501500; x += 100) stream.push_back({x, kStream});
  StoreLinesink(program.ormel, {.Label = "Brook", .StartingHead = 100, .EndingHead = 100}, stream);
  // Lower heads around: the stream loses water to both sides, and none passes under it.
  StoreUniformFlow(program.ormel, {500500, 203000}, 98, 0, 0);
  program.AddWell("North", kPlace);
  program.Outline("1 10 20");
  const auto ring = program.Zone("North 10 years");
  ASSERT_GT(ring.size(), 20U);
  double lowest = 1e9;
  for (const ModelPoint& p : ring) {
    if (p.x > 500600 && p.x < 501400) {
      EXPECT_GT(p.y, kStream - 0.5) << "beyond the stream at " << p.x;
      lowest = std::min(lowest, p.y);
    }
  }
  EXPECT_LT(lowest, kStream + 0.5);
  EXPECT_LT(program.Area("North 10 years"), 0.9 * Volume(kTenYears)) << "the stream gives the rest";
  EXPECT_GT(program.Area("North 20 years"), program.Area("North 10 years"));
}

/// With recharge N the zone's area A grows by (Q - N A) / (n H), whatever the shape of the flow: A = Q/N (1 -
/// exp(-N t / (n H))).  Own derivation from the balance of the water that is drawn backward.
TEST(CaptureZoneCases, RechargeMakesTheZoneSmaller) {
  SolvedProject program;
  constexpr double kRecharge = 0.001;
  StoreUniformFlow(program.ormel, {500000, 201000}, 100, kGradient, 180);
  StoreInhomogeneity(program.ormel, {.Label = "Rain", .Recharge = kRecharge, .ChangeR = true},
                     Square(kPlace, 3000));
  program.AddWell("North", kPlace);
  program.Outline("5");
  const double area = kQ / kRecharge * (1 - std::exp(-kRecharge * kFiveYears / (kPorosity * kThickness)));
  EXPECT_NEAR(program.Area("North 5 years"), area, 0.01 * area);
}

TEST(CaptureZoneCases, ADomainOfOtherPorosityHasAZoneOfItsOwnSize) {
  SolvedProject program;
  StoreUniformFlow(program.ormel, {500000, 201000}, 100, kGradient, 180);
  StoreInhomogeneity(program.ormel,
                     {.Label = "Gravel", .HydCond = 50, .Porosity = 0.35, .ChangeK = true, .ChangeP = true},
                     Square(kPlace, 600));
  program.AddWell("North", kPlace);
  program.Outline("2");
  const double area = kQ * 2 * kDaysPerYear / (0.35 * kThickness);
  EXPECT_NEAR(program.Area("North 2 years"), area, 0.01 * area);
}

/// Radial flow: h2 = h02 - Q / (pi k) ln(r0 / r) (Dupuit 1863); the zone holds n 2 pi int h r dr = Q t.
TEST(CaptureZoneCases, UnconfinedTheDrawdownWidensTheZone) {
  SolvedProject program;
  program.Change([](ModelValues& model) { model.AQThickness = 100; });
  StoreUniformFlow(program.ormel, {kPlace.x + 500, kPlace.y}, 15, 0, 0);
  program.AddWell("North", kPlace);
  program.Outline("5");
  double pumped = 0, r = 0.2;
  while (pumped < kQ * kFiveYears) {
    const double h = std::sqrt(15.0 * 15.0 - kQ / (std::numbers::pi * kConductivity) * std::log(500 / r));
    constexpr double kStep = 0.01;
    pumped += kPorosity * 2 * std::numbers::pi * r * h * kStep;
    r += kStep;
  }
  const double area = std::numbers::pi * r * r;
  EXPECT_NEAR(program.Area("North 5 years"), area, 0.01 * area);
  EXPECT_GT(area, 1.02 * kQ * kFiveYears / (kPorosity * 15));
}

struct UnitsOf {
  bool basemap_meters, compute_meters;
  double map_per_compute;
};

TEST(CaptureZoneCases, AMapInOtherUnitsHasTheZoneInItsOwn) {
  constexpr double kFeet = 3.28083989501;
  for (const UnitsOf& units : {UnitsOf{true, false, 1 / kFeet}, {false, true, kFeet}, {false, false, 1}}) {
    SolvedProject program(units.basemap_meters, units.compute_meters);
    StoreUniformFlow(program.ormel, {500500, 201000}, 100, kGradient, 180);
    program.AddWell("North", kPlace);
    program.Outline("2");
    const double area =
        kQ * 2 * kDaysPerYear / (kPorosity * kThickness) * units.map_per_compute * units.map_per_compute;
    EXPECT_NEAR(program.Area("North 2 years"), area, 0.01 * area)
        << units.basemap_meters << units.compute_meters;
    const auto ring = program.Zone("North 2 years");
    EXPECT_GT(DepthInside({kPlace.x, kPlace.y}, ring), 0.0) << "the well lies in its zone";
  }
}

}  // namespace
}  // namespace ormel::test
