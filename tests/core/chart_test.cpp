// Which point lies under the pointer, and axes with readable ticks.
#include "core/chart.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace ormel {
namespace {

Chart Cloud(std::size_t count) {
  Chart chart;
  ChartSeries line{"line", ChartMark::kLine, {}, {{0, 0, {}}, {100, 100, {}}}};
  ChartSeries points{"points", ChartMark::kPoints, {}};
  points.picks = true;
  std::mt19937 random(7);
  std::uniform_real_distribution<double> place(0.0, 100.0);
  for (std::size_t i = 0; i < count; ++i)
    points.points.push_back({place(random), place(random), "TP " + std::to_string(i)});
  chart.series = {line, points};
  chart.x = MakeAxis("x", 0, 100);
  chart.y = MakeAxis("y", 0, 100);
  return chart;
}

TEST(Chart, PointingAtEachOfManyPointsNamesIt) {
  const Chart chart = Cloud(500);
  const PlotArea area{60, 30, 700, 500};
  for (std::size_t i = 0; i < 500; ++i) {
    const PlotPosition at = PositionOf(chart, area, chart.series[1].points[i]);
    const auto pick = PointNear(chart, area, at, 8);
    ASSERT_TRUE(pick.has_value());
    EXPECT_EQ(*pick, (ChartPick{1, i}));
  }
  EXPECT_FALSE(PointNear(chart, area, {5, 5}, 8).has_value()) << "nothing there";
  EXPECT_EQ(PointNear(chart, area, PositionOf(chart, area, {0, 0, {}}), 1), std::nullopt)
      << "a line is not pointed at";
}

TEST(Chart, PointsOnOnePixelAreCounted) {
  Chart chart = Cloud(1);
  chart.series[1].points = {{50, 50, "a"}, {50.01, 50, "b"}, {50, 80, "c"}};
  const PlotArea area{0, 0, 500, 500};
  const auto pick = PointNear(chart, area, {250, 250}, 8);
  ASSERT_TRUE(pick.has_value());
  EXPECT_EQ(PointsBeneath(chart, area, *pick), 1U);
}

TEST(Chart, AxesCoverTheirValuesByRoundSteps) {
  struct Case {
    double least, most, from, to;
    const char *first, *last;
  };
  for (const Case& c : {Case{98.3, 101.2, 98, 101.5, "98.0", "101.5"}, Case{0, 100, 0, 100, "0", "100"},
                        Case{-0.12, 0.31, -0.15, 0.35, "-0.15", "0.35"}, Case{5, 5, 4.7, 5.3, "4.7", "5.3"},
                        Case{0, 0, -1, 1, "-1.0", "1.0"}, Case{1, -1, -1, 1, "-1.0", "1.0"},
                        Case{2e8, 4e8, 2e8, 4e8, "2E+08", "4E+08"}}) {
    const ChartAxis axis = MakeAxis("a", c.least, c.most);
    EXPECT_NEAR(axis.from, c.from, 1e-9 * std::abs(c.from) + 1e-12) << c.least;
    EXPECT_NEAR(axis.to, c.to, 1e-9 * std::abs(c.to) + 1e-12) << c.least;
    EXPECT_EQ(axis.ticks.front().text, c.first);
    EXPECT_EQ(axis.ticks.back().text, c.last);
    EXPECT_LE(axis.from, axis.ticks.front().at);
    EXPECT_GE(axis.ticks.size(), 3U);
    EXPECT_LE(axis.ticks.size(), 14U);
  }
}

}  // namespace
}  // namespace ormel
