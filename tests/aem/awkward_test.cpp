// Geometry that touches by a hair, regions without a head of their own, water just above a base.
#include <gtest/gtest.h>

#include <atomic>
#include <new>

#include "aem/kernel/wedge.h"
#include "aem/models.h"
#include "aem/system/system.h"

namespace aem_test {
namespace {

aem::Wall WallAlong(const std::vector<Complex>& points, aem::WallKind kind = aem::WallKind::kOpen) {
  aem::Wall w;
  w.origin = {"HB_000001_0000", 7};
  w.kind = kind;
  for (const Complex at : points) w.points.push_back({{}, at});
  return w;
}

/// Potential beside a plate across uniform flow of 0.5 (Joukowski).
double BesidePlate(Complex z) {
  Complex root = std::sqrt(z * z + 1e4);
  if ((root * std::conj(z)).real() < 0.0) root = -root;
  return -0.5 * root.real();
}

// A domain that hardly differs leaves the plate's closed form; the plate pokes through its corner or its edge
// by `hair`.
TEST(Hairs, AWallThroughACornerOrAnEdgeIsThePlate) {
  for (const bool corner : {true, false})
    for (const double hair : {0.001, 0.01, 0.1}) {
      aem::Model m = Base();
      m.aquifer.uniform_flow = {0.5, 0.0};
      m.walls.push_back(WallAlong({{0, -100}, {0, 100}}));
      m.domains.push_back(corner
                              ? Polygon({{-hair, 0}, {200, -120}, {200, 120}})
                              : Polygon({{-200, 100 - hair}, {-200, -150}, {200, -150}, {200, 100 - hair}}));
      m.domains[0].conductivity = 10.0001;
      aem::Solution s(m);
      ASSERT_FALSE(s.Refused()) << Said(s.Findings());
      s.Iterate(1);
      const double level = 200.0 * s.At({-3000, 0}).head - BesidePlate({-3000, 0});  // confined, T = 200
      for (Complex z : {Complex{-5, 0}, Complex{-1, 90}, Complex{-30, 140}, Complex{-250, -50}})
        EXPECT_NEAR(200.0 * s.At(z).head - level, BesidePlate(z), 3e-4 * 50.0) << z << " " << corner << hair;
      EXPECT_LT(s.Check().wall_leakage.value, 1e-2 * s.Check().undisturbed_flow) << corner << hair;
    }
}

// Heads depend on where a bend lies continuously: a hair on either side of the edge, or on it.
TEST(Hairs, AHairMovesHeadsByLittle) {
  for (const double conductivity : {0.5, 200.0}) {
    double before[3] = {};
    for (const double hair : {-0.01, 0.0, 0.01}) {
      aem::Model m = Base();
      m.aquifer.uniform_flow = {0.5, 0.1};
      m.domains.push_back(Polygon({{-100, -100}, {100, -100}, {100, 100}, {-100, 100}}));
      m.domains[0].conductivity = conductivity;
      m.walls.push_back(WallAlong({{-250, -90}, {-100 + hair, 20}, {-250, 90}}));
      aem::Solution s(m);
      s.Iterate(1);
      const Complex places[3] = {{-180, 10}, {-110, 60}, {0, 0}};
      for (int i = 0; i < 3; ++i) {
        const double head = s.At(places[i]).head;
        if (hair > -0.01) {
          EXPECT_NEAR(head, before[i], 1.5e-3 * s.HeadRange()) << hair << places[i];
        }
        before[i] = head;
      }
    }
  }
}

// The head before an impermeable square in uniform flow Q is 2 Q c above that on its axis, c its logarithmic
// capacity, 0.590170299508 times the side (by Gamma(1/4)^2 / (4 pi^(3/2))); just inside it is the same.
TEST(TightDomains, HeadJustInsideTheEdgeIsThatOutside) {
  struct Row {
    double contrast, inside, closed_form;  ///< allowed, by the range of heads
  };
  for (const Row& row : {Row{1e-2, 1e-4, 1.0}, Row{1e-3, 2e-4, 1e-3}, Row{1e-4, 5e-4, 1e-4}}) {
    aem::Model m = Base(10, 20, 45);
    m.aquifer.uniform_flow = {0.5, 0.0};
    m.domains.push_back(Polygon({{-100, -100}, {100, -100}, {100, 100}, {-100, 100}}));
    m.domains[0].conductivity = 10.0 * row.contrast;
    aem::Solution s(m);
    s.Iterate(1);
    const double range = s.HeadRange(), outside = s.At({-100.001, 0}).head;
    EXPECT_NEAR(s.At({-99.999, 0}).head, outside, row.inside * range) << row.contrast;
    EXPECT_NEAR(s.At({-99.999, 70}).head, s.At({-100.001, 70}).head, row.inside * range) << row.contrast;
    EXPECT_NEAR(outside, s.At({0, 300}).head + 2.0 * 0.5 * 0.590170299508 * 200.0 / 200.0,
                row.closed_form * range);
  }
}

// Two given heads and nothing from infinity: what one well takes the other gives.  Thiem between them, with
// the images that the round wall asks for: a source and a sink outside a circle have images at the inverse
// points, and their sum at the centre cancels.
TEST(Reference, InsideAWallThatKeepsItsOutsideIsNotUsed) {
  aem::Model m = Base(10.0, 20.0, 3.0);
  m.aquifer.reference_point = {5, 5};
  m.walls.push_back(WallAlong(CircleRing({0, 0}, 100.0, 40), aem::WallKind::kKeepOutside));
  const Complex a{300, 0}, b{-300, 0};
  m.wells.push_back({{"A", 1}, a, 1.0, true, 30.0});
  m.wells.push_back({{"B", 2}, b, 1.0, true, 26.0});
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  const auto wells = s.Wells();
  EXPECT_NEAR(wells[0].discharge + wells[1].discharge, 0.0, 1e-3);
  const double inverse = 1e4 / 300.0;
  const auto unit = [&](Complex z) {
    return (std::log(std::abs((z - a) / (z - b))) + std::log(std::abs((z - inverse) / (z + inverse)))) /
           (2.0 * std::numbers::pi);
  };
  const double discharge = 10.0 * 20.0 * 4.0 / (unit(b + 1.0) - unit(a - 1.0));
  EXPECT_NEAR(wells[0].discharge, -discharge, 2e-3 * discharge);
  EXPECT_NEAR(s.At({0, 400}).head, 28.0, 1e-4);
  EXPECT_EQ(s.At({5, 5}).status, aem::PointStatus::kIgnored);

  m.wells[0].by_head = m.wells[1].by_head = false;
  aem::Solution none(m);
  EXPECT_TRUE(none.Refused());
  EXPECT_EQ(none.Findings().back().label, "HB_000001_0000");
}

TEST(Reference, OutsideAWallThatKeepsItsInsideIsNotUsed) {
  aem::Model m = Base(10.0, 20.0, 77.0);  // far outside, with a head that would show
  m.walls.push_back(WallAlong({{0, 0}, {200, 0}, {200, 100}, {0, 100}}, aem::WallKind::kKeepInside));
  m.line_sinks.push_back(HeadString({{0, 0}, {0, 100}}, 30.0, "A"));
  m.line_sinks.push_back(HeadString({{200, 0}, {200, 100}}, 26.0, "B"));
  for (double shift : {1.0, -1.0})  // a hair inside, so that they lie on the kept side
    for (auto& g : m.line_sinks[shift > 0 ? 0 : 1].segments) {
      g.from += 0.001 * shift;
      g.to += 0.001 * shift;
    }
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  EXPECT_NEAR(s.At({100, 50}).head, 28.0, 4e-3);
  EXPECT_NEAR(s.At({50, 30}).head, 29.0, 8e-3);
  EXPECT_NEAR(s.At({100, 50}).discharge.real(), 10.0 * 20.0 * 4.0 / 200.0, 2e-2);
  m.line_sinks.clear();
  m.wells.push_back({{"W", 1}, {50, 50}, 1.0, false, 10.0});
  EXPECT_TRUE(aem::Solution(m).Refused());
}

TEST(ClosedRegions, AnIdleDrainHoldsNoHead) {
  aem::Model m = Base(10.0, 20.0, 62.76);
  m.walls.push_back(WallAlong({{0, 0}, {200, 0}, {200, 200}, {0, 200}}, aem::WallKind::kClosed));
  m.line_sinks.push_back(HeadString({{60, 60}, {140, 120}}, 30.0));
  m.line_sinks[0].kind = aem::LineSinkKind::kDrain;
  const aem::Solution idle(m);
  EXPECT_TRUE(idle.Refused());
  EXPECT_EQ(idle.Findings().back().label, "HB_000001_0000");
  // With water to take it holds the region.
  m.wells.push_back({{"W", 1}, {30, 30}, 1.0, false, -50.0});
  aem::Solution fed(m);
  ASSERT_FALSE(fed.Refused()) << Said(fed.Findings());
  fed.Iterate(1);
  EXPECT_FALSE(fed.Refused()) << Said(fed.Findings());
  EXPECT_NEAR(fed.LineSinks()[0].discharge, 50.0, 1e-6);
  // A pumped region with a drain has none.
  m.wells.push_back({{"V", 1}, {170, 30}, 1.0, false, 80.0});
  aem::Solution pumped(m);
  pumped.Iterate(4);
  EXPECT_TRUE(pumped.Refused());
}

std::vector<aem::Wall> TwoThatCross() {
  std::vector<aem::Wall> walls{WallAlong({{-120, -30}, {100, -30}, {100, 90}}),
                               WallAlong({{-100, -60}, {-100, 70}, {130, 70}})};
  walls[1].origin.label = "HB_000002_0000";
  return walls;
}

// Open walls that cross are to the water outside what a closed wall with the same ends is.
TEST(ClosedRegions, WallsThatCrossLeaveOutWhatHasNoHead) {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.5, 0.2};
  m.line_sinks.push_back(HeadString({{-300, -200}, {-300, 200}}, 33.0));
  m.walls = TwoThatCross();
  aem::Solution open(m);
  ASSERT_FALSE(open.Refused()) << Said(open.Findings());
  EXPECT_NE(Said(open.Findings()).find("HB_000002_0000 shut in a region near"), std::string::npos)
      << Said(open.Findings());
  EXPECT_EQ(open.Findings().back().severity, aem::Severity::kWarning);
  open.Iterate(1);
  EXPECT_EQ(open.At({0, 20}).status, aem::PointStatus::kIgnored);

  aem::Model closed = m;
  closed.walls = {WallAlong({{-100, -30}, {100, -30}, {100, 70}, {-100, 70}}, aem::WallKind::kKeepOutside),
                  WallAlong({{-120, -30}, {-100, -30}}), WallAlong({{100, 70}, {100, 90}}),
                  WallAlong({{-100, -60}, {-100, -30}}), WallAlong({{100, 70}, {130, 70}})};
  aem::Solution same(closed);
  ASSERT_FALSE(same.Refused()) << Said(same.Findings());
  same.Iterate(1);
  for (Complex z :
       {Complex{-110, 20}, Complex{110, 80}, Complex{0, -40}, Complex{140, 60}, Complex{-40, 200}})
    EXPECT_NEAR(open.At(z).head, same.At(z).head, 2e-4 * same.HeadRange()) << z;

  // The one head outside is then missing there.
  aem::Model within = m;
  within.aquifer.reference_point = {0, 20};
  const aem::Solution inside(within);
  EXPECT_TRUE(inside.Refused());
  EXPECT_NE(Said(inside.Findings()).find("reference point lies there"), std::string::npos);

  // Nor is a closed wall within left out together with what lies around it.
  aem::Model island = m;
  island.walls.push_back(WallAlong({{-20, 0}, {20, 0}, {20, 40}, {-20, 40}}, aem::WallKind::kClosed));
  island.wells.push_back({{"W", 1}, {0, 20}, 0.3, true, 31.0});
  EXPECT_TRUE(aem::Solution(island).Refused());

  // A head in there settles it; a well without one has nowhere to take its water from.
  m.line_sinks.push_back(HeadString({{-150, 20}, {-50, 20}, {0, 40}}, 31.0));
  aem::Solution settled(m);
  settled.Iterate(1);
  EXPECT_NEAR(settled.At({60, 0}).head, 31.0, 1e-3);
  m.line_sinks.pop_back();
  for (const bool rain : {false, true}) {
    aem::Model fed = m;
    if (rain) {
      fed.domains.push_back(Polygon({{-400, -400}, {400, -400}, {400, 400}, {-400, 400}}));
      fed.domains[0].recharge_sink = -1e-3;
    } else {
      fed.wells.push_back({{"W", 1}, {20, 20}, 0.3, false, 10.0});
    }
    const aem::Solution refused(fed);
    EXPECT_TRUE(refused.Refused());
    EXPECT_NE(Said(refused.Findings()).find("HB_000001_0000: This wall and HB_000002_0000"),
              std::string::npos);
  }
}

TEST(ClosedRegions, EachPartOfAClosedWallNeedsAHeadOfItsOwn) {
  aem::Model m = Base();
  m.walls.push_back(WallAlong({{0, 0}, {200, 0}, {200, 100}, {0, 100}}, aem::WallKind::kClosed));
  m.line_sinks.push_back(HeadString({{50, 20}, {50, 80}}, 31.0));
  m.walls.push_back(WallAlong({{100, -20}, {110, 120}}));  // parts it in two
  aem::Solution parted(m);
  ASSERT_FALSE(parted.Refused()) << Said(parted.Findings());
  parted.Iterate(1);
  EXPECT_NEAR(parted.At({20, 50}).head, 31.0, 1e-3);
  EXPECT_EQ(parted.At({150, 50}).status, aem::PointStatus::kIgnored);
  // A closed wall around another holds nothing by what stands in the inner one.
  m.walls[1] = WallAlong({{-100, -100}, {300, -100}, {300, 200}, {-100, 200}}, aem::WallKind::kClosed);
  m.walls[1].origin.label = "HB_000009_0000";
  const aem::Solution around(m);
  EXPECT_TRUE(around.Refused());
  EXPECT_EQ(around.Findings().back().label, "HB_000009_0000");
  // Of a string that leaves a closed wall the part within is enough.
  m.walls.pop_back();
  m.line_sinks = {HeadString({{190, 50}, {400, 50}}, 31.0)};
  aem::Solution part(m);
  ASSERT_FALSE(part.Refused()) << Said(part.Findings());
  part.Iterate(1);
  EXPECT_NEAR(part.At({20, 50}).head, 31.0, 1e-3);
}

// One-dimensional: with k (h^2)/2 between two canals and a step of the base the flow is the same on both
// sides.  The step stands 0.05 below the water.
TEST(Bases, JustBelowTheWaterConverge) {
  for (const double gap : {0.2, 0.05, -0.1}) {
    aem::Model m = Base(10, 20, 10);
    m.domains.push_back(Polygon({{-100, -100}, {100, -100}, {100, 100}, {-100, 100}}));
    m.line_sinks.push_back(HeadString(Line({-300, -300}, {-300, 300}, 4), 12.0));
    m.line_sinks.push_back(HeadString(Line({300, -300}, {300, 300}, 4), 11.0));
    m.domains[0].base = 11.5 - gap;
    aem::Solution s(m);
    const aem::IterationReport report = s.Iterate(4);
    EXPECT_TRUE(report.converged) << gap;
    EXPECT_LE(report.iterations, 20) << gap;
    EXPECT_LT(s.Check().domain_mean.value, 1e-3) << gap;
    // Heads join and flow goes on across the edge, by differences of heads alone.
    for (double y : {-60.0, 10.0}) {
      const Complex edge{-100, y}, out{-1e-3, 0};
      const aem::PointState left = s.At(edge + out), right = s.At(edge - out);
      if (right.status == aem::PointStatus::kOk) {
        EXPECT_NEAR(left.head, right.head, 2e-3) << gap;
      }
      EXPECT_NEAR(left.discharge.real(), right.discharge.real(), 2e-2 * std::abs(left.discharge) + 1e-4);
    }
  }
}

// For a string at right angles to an edge p = (2/pi) atan sqrt(k1/k2); along a straight edge with a wall p by
// cutting the plane in two.
TEST(Wedges, PowersAreThoseOfTheirClosedForms) {
  const double right = std::numbers::pi / 2.0;
  for (const double ratio : {0.01, 0.1, 1.0, 10.0}) {
    const double p =
        aem::detail::WedgePower({{-right, 1.0 / ratio, false}, {right, 1.0, false}}, std::numbers::pi);
    EXPECT_NEAR(p, 2.0 / std::numbers::pi * std::atan(std::sqrt(ratio)), 1e-9) << ratio;
  }
  EXPECT_NEAR(aem::detail::WedgePower({{-right, 7.0, true}, {right, 1.0, true}}, std::numbers::pi), 1.0,
              1e-9);
}

struct StringAtEdge {
  const char* what;
  std::vector<Complex> ring;
  double conductivity;  ///< within the ring; 1 outside
  Complex far_end;      ///< of the string that ends at the origin
  double discharge;     ///< reference, good to half a thousandth
};

// The reference is a collocation of its own, made for this: single layers on the string and the edges in
// graded elements (factors of 2.2 to 1.3, down to 1e-16 to 1e-140 of their length), flow across edges by
// quadrature, and the discharge extrapolated to a factor of one.
TEST(Wedges, AStringThatEndsOnAnEdgeTakesWhatItShould) {
  const std::vector<Complex> beside{{0, -300}, {600, -300}, {600, 300}, {0, 300}};
  const std::vector<Complex> corner{{0, 0}, {600, 0}, {600, 600}, {0, 600}};
  const StringAtEdge cases[] = {
      {"right, 10", beside, 10.0, {-100, 0}, 160.78},
      {"right, 100", beside, 100.0, {-100, 0}, 193.71},
      {"right, 1000", beside, 1000.0, {-100, 0}, 206.40},
      {"30 degrees, 100", beside, 100.0, std::polar(100.0, 2.0 * std::numbers::pi / 3.0), 197.03},
      {"corner from outside, 100", corner, 100.0, std::polar(100.0, 1.25 * std::numbers::pi), 187.95},
      {"corner from inside, 100", corner, 0.01, std::polar(100.0, 0.25 * std::numbers::pi), 27.56},
  };
  for (const StringAtEdge& c : cases) {
    aem::Model m = Base(1.0, 20.0, 30.0);
    m.domains.push_back(Polygon(c.ring));
    m.domains[0].conductivity = c.conductivity;
    m.line_sinks.push_back(HeadString({c.far_end, {0, 0}}, 25.0));
    aem::Solution s(m);
    ASSERT_FALSE(s.Refused()) << Said(s.Findings());
    s.Iterate(1);
    EXPECT_NEAR(s.LineSinks()[0].discharge, c.discharge, 1e-3 * c.discharge) << c.what;
  }
}

// A wall along half of the edge keeps the water between it and the string at the string's head, however small
// the power there (0.045).
TEST(Wedges, AWallAlongTheEdgeIsTightDownToTheStringsEnd) {
  aem::Model m = Base(1.0, 20.0, 30.0);
  m.domains.push_back(Polygon({{0, -300}, {600, -300}, {600, 300}, {0, 300}}));
  m.domains[0].conductivity = 100.0;
  m.walls.push_back(WallAlong({{0, 0}, {0, 300}}));
  m.line_sinks.push_back(HeadString({{-100, 0}, {0, 0}}, 25.0));
  aem::Solution s(m);
  s.Iterate(1);
  for (const double r : {1e-4, 1e-2, 1.0}) EXPECT_NEAR(s.At({-r, r}).head, 25.0, 0.01) << r;
  const aem::Checks checks = s.Check();
  EXPECT_LT(checks.wall_leakage.value, 5e-3 * checks.undisturbed_flow);
}

TEST(Threads, AnExceptionReachesTheCaller) {
  std::atomic<int> done{0};
  const auto body = [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      if (i == 700) throw std::bad_alloc();
      ++done;
    }
  };
  EXPECT_THROW(aem::detail::ParallelFor(4, 100000, body), std::bad_alloc);
  EXPECT_LT(done.load(), 99999);
}

}  // namespace
}  // namespace aem_test
