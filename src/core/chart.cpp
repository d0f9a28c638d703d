#include "core/chart.h"

#include <algorithm>
#include <cmath>

#include "text/masks.h"

namespace ormel {
namespace {

double Squared(double x) {
  return x * x;
}

/// 1, 2 or 5 times a power of ten, near `wanted`.
double NiceStep(double wanted) {
  const double power = std::pow(10.0, std::floor(std::log10(wanted)));
  const double ratio = wanted / power;
  constexpr double kToTwo = 1.5, kToFive = 3.5, kToTen = 7.5;
  if (ratio < kToTwo) return power;
  if (ratio < kToFive) return 2.0 * power;
  return ratio < kToTen ? 5.0 * power : 10.0 * power;
}

/// As many decimals as the step has.
std::string TickText(double value, double step) {
  constexpr double kLargest = 1e7, kSmallest = 1e-5;
  const double size = std::max(std::abs(value), step);
  if (size >= kLargest || step < kSmallest) {
    std::string text = FormatMask(value, "0.##E+00");
    if (const std::size_t bare = text.find(".E"); bare != std::string::npos) text.erase(bare, 1);
    return text;
  }
  const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
  return FormatMask(value, decimals == 0 ? "0" : "0." + std::string(static_cast<std::size_t>(decimals), '0'));
}

}  // namespace

PlotPosition PositionOf(const Chart& chart, const PlotArea& area, const ChartPoint& point) {
  const double across = (point.x - chart.x.from) / (chart.x.to - chart.x.from);
  const double up = (point.y - chart.y.from) / (chart.y.to - chart.y.from);
  return {area.left + across * area.width, area.top + (1.0 - up) * area.height};
}

std::optional<ChartPick> PointNear(const Chart& chart, const PlotArea& area, PlotPosition at, double reach) {
  std::optional<ChartPick> nearest;
  double least = reach * reach;
  for (std::size_t s = 0; s < chart.series.size(); ++s) {
    if (!chart.series[s].picks) continue;
    const std::vector<ChartPoint>& points = chart.series[s].points;
    for (std::size_t i = 0; i < points.size(); ++i) {
      const PlotPosition p = PositionOf(chart, area, points[i]);
      const double distance = Squared(p.x - at.x) + Squared(p.y - at.y);
      if (distance > least) continue;
      least = distance;
      nearest = ChartPick{s, i};
    }
  }
  return nearest;
}

std::size_t PointsBeneath(const Chart& chart, const PlotArea& area, ChartPick pick) {
  const PlotPosition at = PositionOf(chart, area, chart.series[pick.series].points[pick.point]);
  std::size_t count = 0;
  for (std::size_t s = 0; s < chart.series.size(); ++s) {
    if (!chart.series[s].picks) continue;
    for (std::size_t i = 0; i < chart.series[s].points.size(); ++i) {
      const PlotPosition p = PositionOf(chart, area, chart.series[s].points[i]);
      const bool same = std::abs(p.x - at.x) < 0.5 && std::abs(p.y - at.y) < 0.5;
      if (same && ChartPick{s, i} != pick) ++count;
    }
  }
  return count;
}

ChartAxis MakeAxis(std::string title, double least, double most, int about_ticks) {
  ChartAxis axis;
  axis.title = std::move(title);
  if (!(least <= most)) least = most = 0.0;
  const double size = std::max(std::abs(least), std::abs(most));
  if (most - least <= 1e-12 * size || most == least) {
    const double room = size > 0.0 ? 0.05 * size : 1.0;
    least -= room;
    most += room;
  }
  const double step = NiceStep((most - least) / about_ticks);
  const double first = std::floor(least / step + 1e-9), last = std::ceil(most / step - 1e-9);
  axis.from = first * step;
  axis.to = last * step;
  for (double tick = first; tick <= last; tick += 1.0)
    axis.ticks.push_back({tick * step, TickText(tick * step, step)});
  return axis;
}

}  // namespace ormel
