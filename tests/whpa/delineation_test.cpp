#include "whpa/delineation.h"
#include "core/settings.h"
#include "model/area_runs.h"

#include <gtest/gtest.h>

#include <cmath>

namespace ormel {
namespace {

struct Case {
  const char* what;
  WhpaInput input;
  double T;
  WhpaShape shape;
  double radius, shift;  ///< 0 where the shape has none
};

// Worked out by hand: T = 2 pi t Qo^2 / (n H Q).
// n H Q = 0.2 x 20 x 800 = 3200, t = 1825 d: T = 3.58338 Qo^2, Qo for a given T follows.
class Delineation : public testing::TestWithParam<Case> {};

TEST_P(Delineation, GivesTheValuesWorkedOutByHand) {
  const Case& c = GetParam();
  const double T = DimensionlessTime(c.input);
  EXPECT_NEAR(T, c.T, 1e-6 * std::max(1.0, c.T)) << c.what;
  ASSERT_EQ(ShapeFor(T), c.shape) << c.what;
  const double L = AmbientLength(c.input.Q, c.input.Qo);
  if (c.shape == WhpaShape::kCentricCircle) {
    EXPECT_NEAR(CentricRadius(c.input), c.radius, 1e-3) << c.what;
  } else if (c.shape == WhpaShape::kEccentricCircle) {
    EXPECT_NEAR(EccentricRadius(L, T), c.radius, 1e-3) << c.what;
    EXPECT_NEAR(EccentricShift(L, T), c.shift, 1e-3) << c.what;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Delineation,
    testing::Values(
        // R = 1.1543 sqrt(800 x 1825 / (pi x 0.2 x 20)) = 1.1543 x 340.8565
        Case{"no ambient flow", {800, 1825, 0.2, 20, 0.0}, 0.0, WhpaShape::kCentricCircle, 393.4506, 0},
        Case{"below 0.1", {800, 1825, 0.2, 20, 0.1}, 0.03583379, WhpaShape::kCentricCircle, 393.4506, 0},
        // L = 800 / (2 pi 0.4) = 318.3099; R = L (1.161 + ln(0.39 + 0.573341)); S = L (0.652 T + 0.00278)
        Case{"between",
             {800, 1825, 0.2, 20, 0.4},
             0.57334066,
             WhpaShape::kEccentricCircle,
             357.6695,
             119.8749},
        Case{"beyond 1", {800, 1825, 0.2, 20, 0.6}, 1.29001648, WhpaShape::kPathlines, 0, 0},
        // The first well in feet: Q 28251.733 ft^3/d, H 65.6168 ft; the radius is 393.4506 m in feet.
        Case{"feet",
             {28251.73337, 1825, 0.2, 65.6167979, 0.0},
             0.0,
             WhpaShape::kCentricCircle,
             1290.8484,
             0}));

TEST(Delineation, PutsTheLimitsIntoTheSmallerShape) {
  EXPECT_EQ(ShapeFor(0.1), WhpaShape::kCentricCircle);
  EXPECT_EQ(ShapeFor(std::nextafter(0.1, 1)), WhpaShape::kEccentricCircle);
  EXPECT_EQ(ShapeFor(1.0), WhpaShape::kEccentricCircle);
  EXPECT_EQ(ShapeFor(std::nextafter(1.0, 2)), WhpaShape::kPathlines);
}

TEST(Delineation, RefusesACircleForAnInjectingWell) {
  EXPECT_THROW(CentricRadius({-800, 1825, 0.2, 20, 0}), std::domain_error);
  EXPECT_EQ(CentricRadius({800, 0, 0.2, 20, 0}), 0.0);
}

TEST(Delineation, NamesARunByTheClock) {
  EXPECT_EQ(StemFromClock({2024, 6, 15, 10, 30, 0}), "6f24a300");
  EXPECT_EQ(StemFromClock({2005, 12, 31, 23, 5, 59}), "cv5n5u");
  EXPECT_EQ(StemFromClock({2000, 1, 1, 0, 0, 1}), "110000");
}

}  // namespace
}  // namespace ormel
