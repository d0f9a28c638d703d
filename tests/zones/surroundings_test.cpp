// Zones among recharge, rivers, domains, walls and ponds.
#include "zones/outlined.h"

namespace zones_test {
namespace {

/// Growth of a circle around a well in a ground of constant storage and infiltration N:
/// d(r2)/dt = (Q/pi - N r2)/(n H).
double RadiusInRecharge(double discharge, double infiltration, double storage, double time) {
  return std::sqrt(discharge / (kPi * infiltration) * -std::expm1(-infiltration * time / storage));
}

TEST(Recharge, AloneStopsTheCircleAtQOverN) {
  constexpr double kRate = 1e-3, kTaken = 1000.0, kStorage = kPorosity * kThickness;
  aem::Model m = Aquifer(0.0);
  m.aquifer.reference_point = {9000.0, 0.0};
  AddWell(m, {0, 0}, kTaken);
  aem::Domain& ground = m.domains.emplace_back();
  ground.recharge_sink = -kRate;
  ground.ring = Circle({0, 0}, 2000.0, 64);
  const std::vector<double> times{200.0, 2000.0, 40.0 * kStorage / kRate};
  const auto wells = Outlined(m, times);
  ExpectSound(wells);
  for (std::size_t j = 0; j < times.size(); ++j)
    ExpectCircle(wells[0].zones[j], {0, 0}, RadiusInRecharge(kTaken, kRate, kStorage, times[j]));
  EXPECT_NEAR(wells[0].zones[2].area * kRate / kTaken, 1.0, kExact);
  EXPECT_GT(wells[0].zones[2].supply.recharge / wells[0].zones[2].pumped, 0.97);
}

TEST(Pond, AroundAWellFeedsItUpToItsRim) {
  constexpr double kTaken = 600.0, kRim = 120.0, kStorage = kPorosity * kThickness;
  for (const double rate : {-5e-3, 4e-3}) {
    aem::Model m = Aquifer(0.0);
    AddWell(m, {0, 0}, kTaken);
    m.disks.push_back({{"PO_000001", 1}, {0, 0}, kRim, false, rate});
    const double passing = kTaken + rate * kPi * kRim * kRim;
    const double to_rim = kStorage / rate * std::log(passing / kTaken);
    const std::vector<double> times{0.3 * to_rim, 5.0 * to_rim};
    const auto wells = Outlined(m, times);
    ExpectSound(wells);
    ExpectCircle(wells[0].zones[0], {0, 0}, RadiusInRecharge(kTaken, -rate, kStorage, times[0]));
    ExpectCircle(wells[0].zones[1], {0, 0},
                 std::sqrt(kRim * kRim + passing * (times[1] - to_rim) / (kPi * kStorage)));
  }
}

// The ground within has other porosity, or another base: the volume counts.
TEST(Domain, OfOtherStorageChangesTheCircle) {
  constexpr double kTaken = 500.0, kEdge = 100.0, kOutside = kPorosity * kThickness;
  struct Case {
    double conductivity, base, porosity, storage;
  };
  for (const Case& c : {Case{aem::kNotSet, aem::kNotSet, 0.1, 1.0},
                        Case{aem::kNotSet, 6.0, aem::kNotSet, 1.0}, Case{90.0, -10.0, 0.3, 6.0}}) {
    aem::Model m = Aquifer(0.0);
    m.aquifer.reference_point = {4000.0, 0.0};
    AddWell(m, {0, 0}, kTaken);
    aem::Domain& ground = m.domains.emplace_back();
    ground.conductivity = c.conductivity, ground.base = c.base, ground.porosity = c.porosity;
    ground.ring = Circle({0, 0}, kEdge, 64);
    const double filled = c.storage * kPi * kEdge * kEdge / kTaken;
    const auto wells = Outlined(m, {0.5 * filled, 4.0 * filled});
    ExpectSound(wells);
    ExpectCircle(wells[0].zones[0], {0, 0}, std::sqrt(0.5) * kEdge);
    const double more = 3.0 * kTaken * filled / (kPi * kOutside);
    EXPECT_NEAR(wells[0].zones[1].area / (kPi * (kEdge * kEdge + more)), 1.0, kExact);
  }
}

// The critical rate is pi d q0; above it the river feeds the well along |y| < d sqrt(Q/Qc - 1).
TEST(River, IsReachedAboveTheCriticalRateOnly) {
  constexpr double kFlow = 1.0, kDistance = 200.0, kCritical = kPi * kDistance * kFlow;
  for (const double part : {0.98, 1.02, 1.5}) {
    SCOPED_TRACE(part);
    const auto wells = Outlined(River(kFlow, part * kCritical, kDistance), {365.0, 40000.0});
    ExpectSound(wells);
    const zones::Zone& zone = wells[0].zones[1];
    double left = 1e30, along = 0.0;
    for (const Complex at : zone.ring) {
      left = std::min(left, at.real());
      if (at.real() < 0.2) along = std::max(along, std::fabs(at.imag()));
    }
    EXPECT_GT(left, -0.1);
    if (part < 1.0) {
      EXPECT_NEAR(left / (kDistance * std::sqrt(1.0 - part)), 1.0, 0.02);
      EXPECT_EQ(zone.supply.surface, 0.0);
      ExpectFullVolume(wells);
    } else {
      EXPECT_NEAR(along / (kDistance * std::sqrt(part - 1.0)), 1.0, 0.05);
      // Of what the well takes the river gives (2/pi) (atan s - s/(1 + s2)), s2 = Q/Qc - 1, in the end.
      const double s = std::sqrt(part - 1.0), share = 2.0 / kPi * (std::atan(s) - s / part);
      EXPECT_NEAR(zone.supply.surface / zone.pumped, share, 0.03 * share + 2e-4);
    }
  }
}

TEST(Walls, HoldTheZoneOnTheirSideOrLetItThrough) {
  for (const double conductivity : {0.0, 0.02}) {
    aem::Model m = Aquifer(0.002, 2.0);
    AddWell(m, {100, 0}, 400.0);
    aem::Wall& wall = m.walls.emplace_back();
    wall.conductivity = conductivity;
    for (const double y : {-400.0, 0.0, 400.0}) wall.points.push_back({{"BA_000001", 1}, {0, y}});
    const auto wells = Outlined(m, {200.0, 1000.0, 8000.0});
    ExpectSound(wells);
    ExpectFullVolume(wells, 0.003);
    const auto crosses = [](const zones::Zone& zone) {
      return std::any_of(zone.ring.begin(), zone.ring.end(),
                         [](Complex at) { return at.real() < -0.5 && std::fabs(at.imag()) < 300.0; });
    };
    EXPECT_EQ(crosses(wells[0].zones[1]), conductivity > 0.0);
  }
}

TEST(Walls, AroundTheWellAreCrossedWhereTheyLeak) {
  aem::Model m = Aquifer(0.002);
  AddWell(m, {10, 5}, 300.0);
  aem::Wall& wall = m.walls.emplace_back();
  wall.kind = aem::WallKind::kClosed;
  wall.conductivity = 0.05;
  wall.points = Circle({0, 0}, 90.0, 8);
  const auto wells = Outlined(m, {60.0, 400.0, 4000.0});
  ExpectSound(wells);
  ExpectFullVolume(wells, 0.003);
}

// Far more is asked than the ground can give: the head falls below the base at the well.
TEST(DryWell, HasNoZoneAndSaysWhy) {
  aem::Model m = Aquifer(0.0);
  m.aquifer.reference_point = {500.0, 0.0};
  m.aquifer.reference_head = 2.0;
  AddWell(m, {0, 0}, 2000.0);
  aem::Solution solution(m);
  solution.Iterate(3);
  const aem::SolutionField field(solution);
  const zones::PlanField plan(field, 0.0);
  const std::vector<zones::Source> source{{{0, 0}, 0.3, 2000.0, "WL_1"}};
  const auto wells = zones::OutlineZones(plan, source, std::vector<double>{100.0}, {});
  EXPECT_NE(wells[0].failure.find("dry"), std::string::npos);
  EXPECT_TRUE(wells[0].zones.empty());
}

}  // namespace
}  // namespace zones_test
