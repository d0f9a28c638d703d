// A chart as data: what a form's chart control shows, and what a picture of it is drawn from.
//
// No toolkit: one renderer of the window shows and saves any chart.  Which point lies under the pointer is
// decided here, so that the screen, scripts and tests agree.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

enum class ChartMark { kPoints, kLine };

struct ChartPoint {
  double x = 0.0, y = 0.0;  ///< in the units of the axes
  std::string label{};      ///< of the element that it stands for
};

struct ChartSeries {
  std::string name;  ///< in the legend
  ChartMark mark = ChartMark::kPoints;
  Color color{};
  std::vector<ChartPoint> points{};
  bool picks = false;  ///< its points can be pointed at
};

struct ChartTick {
  double at = 0.0;
  std::string text;
};

struct ChartAxis {
  std::string title;
  double from = 0.0, to = 1.0;  ///< from < to
  std::vector<ChartTick> ticks{};
};

struct Chart {
  std::string title;
  ChartAxis x, y;
  std::vector<ChartSeries> series{};
};

/// One point of a chart.
struct ChartPick {
  std::size_t series = 0, point = 0;
  friend bool operator==(const ChartPick&, const ChartPick&) = default;
};

/// The rectangle between the axes, on a screen whose rows grow downward [pixels].
struct PlotArea {
  double left = 0.0, top = 0.0, width = 0.0, height = 0.0;
};
struct PlotPosition {
  double x = 0.0, y = 0.0;
};

PlotPosition PositionOf(const Chart& chart, const PlotArea& area, const ChartPoint& point);

/// The point nearest to a position, no farther than `reach` [pixels]; of points at one place the one drawn
/// last.
std::optional<ChartPick> PointNear(const Chart& chart, const PlotArea& area, PlotPosition at, double reach);

/// How many other points of the series that can be pointed at stand on the same pixel as `pick`.
std::size_t PointsBeneath(const Chart& chart, const PlotArea& area, ChartPick pick);

/// An axis over the values `least` to `most`, widened to whole ticks of 1, 2 or 5 times a power of ten. Equal
/// values, or none, get room on both sides.
ChartAxis MakeAxis(std::string title, double least, double most, int about_ticks = 6);

}  // namespace ormel
