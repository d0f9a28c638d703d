// The hierarchical scheme against direct summation.
#include <gtest/gtest.h>

#include <random>

#include "aem/models.h"

namespace aem_test {
namespace {

aem::Model Random(int segments, int wells) {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.2, 0.1};
  std::mt19937 random(7);
  std::uniform_real_distribution<double> u(-1000.0, 1000.0), q(-3.0, 3.0), turn(-0.4, 0.4);
  aem::LineSinkString s;
  s.kind = aem::LineSinkKind::kDischarge;
  Complex at{};
  double direction = 0.0;
  for (int i = 0; i < segments; ++i) {
    if (i % 50 == 0) {
      at = {u(random), u(random)};
      direction = 6.0 * turn(random);
    }
    direction += turn(random);
    const Complex next = at + std::polar(5.0 + 5.0 * std::abs(turn(random)), direction);
    s.segments.push_back({{"S", i}, at, next, q(random)});
    at = next;
  }
  m.line_sinks.push_back(s);
  for (int i = 0; i < wells; ++i)
    m.wells.push_back({{"W", i}, {u(random), u(random)}, 0.2, false, 100.0 * q(random)});
  m.domains.push_back(Polygon({{-300, -200}, {250, -260}, {300, 240}, {-220, 300}}));
  m.domains[0].conductivity = 30.0;
  return m;
}

TEST(FarField, AgreesWithDirectSummation) {
  const aem::Model m = Random(1500, 60);
  aem::Solution fast(m), direct(m, {.direct_summation = true});
  fast.Iterate(1);
  ASSERT_TRUE(direct.LoadState(fast.SaveState()));
  std::mt19937 random(11);
  std::uniform_real_distribution<double> u(-1100.0, 1100.0), beyond(-9000.0, 9000.0);
  double strength = 0.0;
  for (const auto& g : m.line_sinks[0].segments) strength += std::abs(g.value) * std::abs(g.to - g.from);
  for (const aem::Well& w : m.wells) strength += std::abs(w.value);
  for (int i = 0; i < 4000; ++i) {
    const Complex z = i < 3500 ? Complex{u(random), u(random)} : Complex{beyond(random), beyond(random)};
    const aem::PointState a = fast.At(z), b = direct.At(z);
    EXPECT_NEAR(a.potential, b.potential, 1e-9 * strength) << z;
    EXPECT_NEAR(std::abs(a.discharge - b.discharge), 0.0, 1e-9 * strength) << z;
  }
  // On a segment, where sides matter.
  const aem::LineSinkSegment& g = m.line_sinks[0].segments[77];
  const Complex middle = 0.5 * (g.from + g.to);
  EXPECT_NEAR(std::abs(fast.At(middle).discharge - direct.At(middle).discharge), 0.0, 1e-9 * strength);
}

TEST(FarField, OfAreasAndDisksAgreesWithDirectSummation) {
  aem::Model m = Base();
  std::mt19937 random(5);
  std::uniform_real_distribution<double> u(-1000.0, 1000.0), size(2.0, 40.0), rate(-0.01, 0.01);
  double strength = 0.0;
  for (int i = 0; i < 150; ++i) {
    std::vector<Complex> ring;
    const Complex middle{u(random), u(random)};
    for (int k = 0; k < 5; ++k) ring.push_back(middle + std::polar(size(random), 1.25 * k));
    m.domains.push_back(Polygon(ring, "D" + std::to_string(i)));
    m.domains.back().recharge_sink = rate(random);
    m.disks.push_back(
        {{"P", i}, {u(random), u(random)}, size(random), i % 7 == 0, i % 7 == 0 ? 30.0 : rate(random)});
    strength += 40.0 * 40.0 * 0.01;
  }
  aem::Solution fast(m), direct(m, {.direct_summation = true});
  ASSERT_FALSE(fast.Refused()) << Said(fast.Findings());
  fast.Iterate(1);
  direct.Iterate(1);
  for (std::size_t i = 0; i < 150; i += 7)
    EXPECT_NEAR(fast.Disks()[i].rate, direct.Disks()[i].rate, 1e-9 * std::abs(direct.Disks()[i].rate));
  ASSERT_TRUE(direct.LoadState(fast.SaveState()));
  for (int i = 0; i < 1000; ++i) {
    const Complex z = Complex{u(random), u(random)} * (i % 10 == 0 ? 20.0 : 1.1);
    const aem::PointState a = fast.At(z), b = direct.At(z);
    EXPECT_NEAR(a.potential, b.potential, 1e-10 * strength) << z;
    EXPECT_NEAR(std::abs(a.discharge - b.discharge), 0.0, 1e-11 * strength) << z;
    EXPECT_EQ(a.net_recharge, b.net_recharge);
  }
}

}  // namespace
}  // namespace aem_test
