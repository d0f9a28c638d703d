#include "model/geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "model/inhomogeneities.h"
#include "model/vertices.h"
#include "one_commit.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

using Points = std::vector<MapPoint>;
constexpr double kPi = std::numbers::pi;
const Points kSquare{{0, 0}, {4, 0}, {4, 4}, {0, 4}};
const Points kNotched{{0, 0}, {8, 0}, {8, 8}, {4, 2}, {0, 8}};

TEST(Theta, is_signed_and_wrapped) {
  struct Row {
    MapPoint from, to;
    double theta;
  };
  const Row kRows[] = {{{1, 0}, {0, 1}, -kPi / 2},
                       {{0, 1}, {1, 0}, kPi / 2},
                       {{-1, 1}, {-1, -1}, -kPi / 2},  // across the cut of the arc tangent
                       {{-1, -1}, {-1, 1}, kPi / 2},
                       {{1, 0}, {1, 0}, 0.0}};
  for (const Row& row : kRows) EXPECT_NEAR(GetTheta({0, 0}, row.from, row.to), row.theta, 1e-12);
}

TEST(Polygon, tells_inside_from_outside) {
  struct Row {
    const char* what;
    const Points& polygon;
    MapPoint point;
    bool inside;
  };
  const Points none, single{{1, 1}};
  const Row kRows[] = {{"middle", kSquare, {2, 2}, true},
                       {"outside", kSquare, {5, 2}, false},
                       {"far outside", kSquare, {1e6, -1e6}, false},
                       {"on the first vertex", kSquare, {0, 0}, true},
                       {"on a later vertex", kSquare, {4, 4}, true},
                       {"in the arm", kNotched, {7, 6}, true},
                       {"in the notch", kNotched, {4, 5}, false},
                       {"no vertex", none, {0, 0}, false},
                       {"one vertex, elsewhere", single, {0, 0}, false},
                       {"one vertex, there", single, {1, 1}, true}};
  for (const Row& row : kRows) EXPECT_EQ(IsInPolygon(row.polygon, row.point), row.inside) << row.what;
  const Points clockwise(kSquare.rbegin(), kSquare.rend());
  EXPECT_TRUE(IsInPolygon(clockwise, {2, 2}));
}

TEST(Polygon, has_a_positive_area_that_no_origin_changes) {
  Points circle;
  for (int i = 0; i < 3600; ++i)
    circle.push_back({1e6 + 50 * std::cos(i * kPi / 1800), 50 * std::sin(i * kPi / 1800)});
  const Points clockwise(kSquare.rbegin(), kSquare.rend());
  for (const MapPoint origin : {MapPoint{0, 0}, MapPoint{1e6, 0}, MapPoint{2, 3}}) {
    EXPECT_NEAR(PolygonArea(kSquare, origin), 16.0, 1e-4);
    EXPECT_NEAR(PolygonArea(clockwise, origin), 16.0, 1e-4);
    // A regular polygon of n corners: n/2 r^2 sin(2 pi / n).
    EXPECT_NEAR(PolygonArea(circle, origin), 1800 * 2500 * std::sin(kPi / 1800), 1e-3);
  }
}

TEST(Reflection, keeps_the_distance_to_the_line_and_its_points) {
  struct Row {
    MapPoint z, a, b, image;
  };
  const Row kRows[] = {{{3, 4}, {0, 0}, {1, 0}, {3, -4}},
                       {{3, 4}, {0, 0}, {0, -7}, {-3, 4}},
                       {{3, 4}, {0, 0}, {1, 1}, {4, 3}},
                       {{0, 0}, {0, 2}, {2, 0}, {2, 2}},
                       {{5, 5}, {0, 0}, {9, 9}, {5, 5}}};
  for (const Row& row : kRows) {
    const MapPoint image = ReflectInLine(row.z, row.a, row.b);
    EXPECT_NEAR(image.x, row.image.x, 1e-12);
    EXPECT_NEAR(image.y, row.image.y, 1e-12);
  }
}

class Domains : public ::testing::Test {
 protected:
  Pid Store(const char* label, double base, bool change, const Points& points) {
    return StoreInhomogeneity(ormel, {.Label = label, .BottomElevation = base, .ChangeB = change}, points);
  }
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Domains, give_the_base_of_the_smallest_around_a_point) {
  Store("large", -20, true, {{-50, -50}, {50, -50}, {50, 50}, {-50, 50}});
  Store("small", -10, true, kSquare);
  Store("same size", -15, true, kSquare);
  Store("smaller, same base", 7, false, {{1, 1}, {3, 1}, {3, 3}, {1, 3}});
  EXPECT_EQ(FindLocal(ormel, {2, 2}, "Base"), -10.0) << "of equal areas the first";
  EXPECT_EQ(FindLocal(ormel, {10, 10}, "Base"), -20.0);
  test.ormel.db().Execute("update Model set AQBase=3.5");
  EXPECT_EQ(FindLocal(ormel, {100, 100}, "Base"), 3.5);
  EXPECT_THROW(FindLocal(ormel, {0, 0}, "Top"), std::invalid_argument);
}

TEST_F(Domains, without_points_hold_nothing_and_have_no_area) {
  const Pid empty = Store("empty", 0, true, {});
  const Pid single = Store("single", 0, true, {{1, 1}});
  EXPECT_FALSE(IsInDomain(ormel, empty, {0, 0}));
  EXPECT_TRUE(IsInDomain(ormel, single, {1, 1}));
  for (const Pid pid : {empty, single}) {
    test.ui.boxes.clear();
    EXPECT_EQ(DomainArea(ormel, pid, {0, 0}), 0.0);
    EXPECT_EQ(test.ui.LastTitle(), "Not Enough Points");
    EXPECT_EQ(test.ui.LastText(), "Not enough points to calculate area.");
  }
}

}  // namespace
}  // namespace ormel::test
