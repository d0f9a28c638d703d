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

/// Cells kept for many points hold as much as what they are made from, near every kind of element, in any
/// order of questions and from several threads; a new solution drops them.
TEST(FarField, ItsKeptCellsAgreeWithDirectSummation) {
  aem::Model m = Random(1500, 60);
  m.domains[0].recharge_sink = -0.002;
  m.disks.push_back({{"P", 1}, {420.0, 130.0}, 35.0, false, 0.004});
  double strength = 0.002 * 600.0 * 500.0;
  for (const auto& g : m.line_sinks[0].segments) strength += std::abs(g.value) * std::abs(g.to - g.from);
  for (const aem::Well& w : m.wells) strength += std::abs(w.value);
  for (const int segments : {1500, 20}) {  // with and without the scheme below the cells
    m.line_sinks[0].segments.resize(std::size_t(segments));
    aem::Solution fast(m), direct(m, {.direct_summation = true});
    fast.Iterate(1);
    ASSERT_TRUE(direct.LoadState(fast.SaveState()));
    fast.PrepareManyPoints();
    std::mt19937 random(11);
    std::uniform_real_distribution<double> u(-1100.0, 1100.0), beyond(-9000.0, 9000.0), close(0.01, 3.0);
    std::vector<Complex> places{m.wells[3].at, m.wells[5].at + 0.1, {-300.0, -200.0}, {455.0, 130.0}};
    for (int i = 0; i < 3000; ++i) places.emplace_back(u(random), u(random));
    for (int i = 0; i < 300; ++i) places.emplace_back(beyond(random), beyond(random));
    for (int i = 0; i < 1000; ++i) {
      const aem::LineSinkSegment& g = m.line_sinks[0].segments[std::size_t(i % segments)];
      const double off = i % 4 == 0 ? 0.0 : close(random);
      places.push_back(0.5 * (g.from + g.to) + std::polar(off, 3.0 * u(random)));
    }
    std::vector<aem::PointState> states(places.size());
    fast.Evaluate(places, states);
    for (std::size_t i = 0; i < places.size(); ++i) {
      const aem::PointState b = direct.At(places[i]);
      ASSERT_NEAR(states[i].potential, b.potential, 1e-9 * strength) << places[i];
      ASSERT_NEAR(std::abs(states[i].discharge - b.discharge), 0.0, 1e-9 * strength) << places[i];
    }
    aem::Solution backward(m);
    backward.Iterate(1);
    backward.PrepareManyPoints();
    for (std::size_t i = places.size(); i-- > 0;)
      ASSERT_EQ(backward.At(places[i]).discharge, states[i].discharge) << places[i];
    ASSERT_TRUE(fast.LoadState(fast.SaveState()));
    aem::Solution plain(m);
    plain.Iterate(1);
    EXPECT_EQ(fast.At({10.0, 20.0}).potential, plain.At({10.0, 20.0}).potential);
  }
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
