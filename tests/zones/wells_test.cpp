// Zones of wells in confined flow without recharge: their pore volume is Q t, whatever else pumps.
#include <new>
#include <random>

#include "zones/outlined.h"

namespace zones_test {
namespace {

constexpr double kYear = 365.0;

TEST(OneWell, HasTheVolumeThatItTakesInUniformFlow) {
  for (const double discharge : {20.0, 50.0, 100.0, 300.0}) {
    aem::Model m = Aquifer(0.004, 0.7);
    AddWell(m, {0, 0}, discharge);
    const auto wells = Outlined(m, {2 * kYear, 5 * kYear, 10 * kYear, 20 * kYear});
    ExpectSound(wells);
    ExpectFullVolume(wells);
  }
}

TEST(OneWell, KeepsItsFlanksHoweverLongTheTime) {
  aem::Model m = Aquifer(0.004);
  AddWell(m, {0, 0}, 50.0);
  const double flow = 0.8, scale = kPorosity * kThickness * 50.0 / (2.0 * kPi * flow * flow);
  const auto wells = Outlined(m, {0.01 * scale, 30.0 * scale, 1e4 * scale});
  ExpectSound(wells);
  ExpectFullVolume(wells);
  // As wide as Q/q0 far upstream, and no farther downstream than the stagnation point.
  double right = -1e30, low = 1e30, high = -1e30;
  for (const Complex at : wells[0].zones[2].ring) {
    right = std::max(right, at.real());
    low = std::min(low, at.imag()), high = std::max(high, at.imag());
  }
  EXPECT_NEAR((high - low) / (50.0 / flow), 1.0, 2e-3);
  EXPECT_NEAR(right / (50.0 / (2.0 * kPi * flow)), 1.0, 5e-3);
}

TEST(OneWell, WithoutGradientHasACircle) {
  aem::Model m = Aquifer(0.0);
  AddWell(m, {10, -20}, 500.0);
  const std::vector<double> times{36.5, 365.0, 3650.0};
  const auto wells = Outlined(m, times);
  for (std::size_t j = 0; j < times.size(); ++j)
    ExpectCircle(wells[0].zones[j], {10, -20}, std::sqrt(500.0 * times[j] / (kPi * kPorosity * kThickness)));
}

TEST(OneWell, WithARimWiderThanItsCommandKeepsItsVolume) {
  aem::Model m = Aquifer(0.004);
  AddWell(m, {0, 0}, 5.0, 2.0);  // the water stands still at 1.0
  const auto wells = Outlined(m, {10.0, 100.0, 1000.0});
  ExpectSound(wells);
  ExpectFullVolume(wells);
}

TEST(OneWell, OfPartialDepthHasTheVolumeThatItTakes) {
  aem::Model m = Aquifer(0.002);
  m.partial_wells.push_back({{"PW_1", 1}, {0, 0}, 4.0, 1.0, 0.3, false, 200.0});
  const auto wells = Outlined(m, {30.0, 365.0, 3650.0});
  ExpectSound(wells);
  ExpectFullVolume(wells);
}

// The discharge of a transient well is Q exp(-a r2), a = S/(4 T t): then (exp(a r2) - 1)/a = Q t/(pi n H).
TEST(OneWell, OfTransientFlowEndsWhereItsDrawdownHasNotCome) {
  aem::Model m = Aquifer(0.0);
  m.theis.push_back({{"TW_1", 1}, {0, 0}, 400.0, 0.0, 1e5, 1e-3, 0.3});
  const double now = 20.0, a = 1e-3 / (4.0 * kConductivity * now);
  const std::vector<double> times{10.0, 1000.0, 50000.0};
  const auto wells = Outlined(m, times, now);
  ExpectSound(wells);
  for (std::size_t j = 0; j < times.size(); ++j)
    ExpectCircle(wells[0].zones[j], {0, 0},
                 std::sqrt(std::log1p(a * 400.0 * times[j] / (kPi * kPorosity * kThickness)) / a));
}

TEST(Pair, OfEqualWellsHasAStraightDivide) {
  aem::Model m = Aquifer(0.0);
  AddWell(m, {100, 0}, 500.0);
  AddWell(m, {-100, 0}, 500.0);
  const auto wells = Outlined(m, {100.0, 1000.0, 10000.0});
  ExpectSound(wells);
  ExpectFullVolume(wells);
  ExpectApart(wells, kExact);
  const zones::Zone& last = wells[0].zones[2];
  double left = 1e30, high = 0.0;
  for (const Complex at : last.ring) left = std::min(left, at.real()), high = std::max(high, at.imag());
  EXPECT_GT(left, -0.5);
  for (const double part : {-0.7, -0.3, 0.05, 0.5, 0.8}) EXPECT_TRUE(InZone(last, {0.7, part * high}));
}

// Water of the one that gives reaches the other along the straight way after pi n H L2/(3 Q).
TEST(Pair, OfOneThatGivesAndOneThatTakesMeetsInTime) {
  aem::Model m = Aquifer(0.0);
  AddWell(m, {100, 0}, 500.0);
  AddWell(m, {-100, 0}, -500.0);
  const double meets = kPi * kPorosity * kThickness * 200.0 * 200.0 / (3.0 * 500.0);
  const auto before = Outlined(m, {0.3 * meets, 0.995 * meets});
  ExpectFullVolume(before);
  EXPECT_EQ(before[0].ends.count(aem::PathEnd::kWell), 0u);
  const auto after = Outlined(m, {1.01 * meets, 20.0 * meets});
  ExpectSound(after);
  EXPECT_GT(after[0].ends.at(aem::PathEnd::kWell), 0);
  EXPECT_GT(after[0].zones[1].supply.surface / after[0].zones[1].pumped, 0.4);
  double left = 1e30;
  for (const Complex at : after[0].zones[1].ring) left = std::min(left, at.real());
  EXPECT_LT(left, -100.0);
}

TEST(WeakWell, BetweenStrongOnesKeepsItsGround) {
  aem::Model m = Aquifer(0.003, 1.0);
  AddWell(m, {-250, 0}, 900.0);
  AddWell(m, {250, 30}, 700.0);
  AddWell(m, {20, 60}, 6.0);
  AddWell(m, {10, -900}, 0.8);
  const auto wells = Outlined(m, {200.0, 2000.0, 20000.0});
  ExpectSound(wells);
  ExpectFullVolume(wells, 2.0 * kExact);
  ExpectApart(wells, 0.01);
}

TEST(RandomFields, HoldTheirVolumeAndStayApart) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int field = 0; field < 30; ++field) {
    SCOPED_TRACE("field " + std::to_string(field));
    const aem::Model m = RandomField(random);
    const double first = std::pow(10.0, -1.0 + 1.5 * unit(random)) * kYear;
    const auto wells = Outlined(m, {first, first * std::pow(10.0, 1.5 * unit(random))});
    ExpectSound(wells);
    ExpectFullVolume(wells, 0.01);
    ExpectApart(wells, 0.01);
  }
}

TEST(Progress, RisesWithinTheShareOfAWell) {
  aem::Model m = Aquifer(0.002);
  AddWell(m, {0.0, 0.0}, 200.0);
  AddWell(m, {150.0, 90.0}, 40.0);
  aem::Solution solution(m);
  solution.Iterate(1);
  const aem::SolutionField field(solution);
  const zones::PlanField plan(field, 0.0);
  std::vector<double> shares;
  const std::vector<double> times{3650.0};
  const auto tell = [&](double share) {
    shares.push_back(share);
    return true;
  };
  zones::OutlineZones(plan, Sources(plan), times, {}, tell);
  EXPECT_GE(shares.size(), 12U);
  EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
  EXPECT_DOUBLE_EQ(shares.back(), 1.0);
  int told = 0;
  const auto stop = [&](double) { return ++told < 3; };
  zones::ZoneOptions alone;
  alone.threads = 1;
  EXPECT_TRUE(zones::OutlineZones(plan, Sources(plan), times, alone, stop).empty());
  EXPECT_EQ(told, 3) << "and no more after it was told to stop";
  // Short of memory, say, in whichever thread it is: the caller hears of it.
  zones::ZoneOptions together;
  together.threads = 2;
  const auto fail = [](double) -> bool { throw std::bad_alloc(); };
  EXPECT_THROW(zones::OutlineZones(plan, Sources(plan), times, together, fail), std::bad_alloc);
}

}  // namespace
}  // namespace zones_test
