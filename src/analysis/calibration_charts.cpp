#include "analysis/calibration_charts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "core/ormel.h"
#include "core/quantities.h"

namespace ormel {
namespace {

constexpr Color kPoint = Rgb(0x1F, 0x5F, 0xA8), kLine = Rgb(0x70, 0x70, 0x70);

/// A caption with its unit behind it.
std::string Title(const Ormel& ormel, const std::string& text, Quantity quantity) {
  std::string unit = UnitOf(ormel, quantity);
  if (const std::size_t power = unit.find("^3"); power != std::string::npos) unit.replace(power, 2, "\u00b3");
  return text + " [" + unit + "]";
}

struct Range {
  double least = std::numeric_limits<double>::infinity(), most = -least;
  void Take(double value) {
    least = std::min(least, value);
    most = std::max(most, value);
  }
};

ChartSeries PointSeries(std::string name) {
  ChartSeries series{std::move(name), ChartMark::kPoints, kPoint};
  series.picks = true;
  return series;
}

ChartSeries Line(std::string name, ChartPoint from, ChartPoint to) {
  return {std::move(name), ChartMark::kLine, kLine, {std::move(from), std::move(to)}};
}

}  // namespace

Chart FitChart(const Ormel& ormel, const CalibrationData& data) {
  Chart chart;
  chart.title = "Modeled against Observed Head";
  chart.x = MakeAxis(Title(ormel, "Observed head", Quantity::kLength), data.Min, data.Max);
  chart.y = MakeAxis(Title(ormel, "Modeled head", Quantity::kLength), data.Min, data.Max);
  chart.series.push_back(Line("Perfect fit", {data.Max, data.Max}, {data.Min, data.Min}));
  ChartSeries points = PointSeries("Test points");
  for (const Residual& p : data.points) points.points.push_back({p.observed, p.modelled, p.label});
  chart.series.push_back(std::move(points));
  return chart;
}

Chart OrderChart(const Ormel& ormel, const CalibrationData& data) {
  Chart chart;
  chart.title = "Differences in Order";
  const double last = data.points.size() > 1 ? static_cast<double>(data.points.size() - 1) : 1.0;
  const double height = data.Max > data.Min ? 4.0 * (data.Max - data.Min) : 1.0;
  ChartSeries points = PointSeries("Test points");
  Range range;
  for (std::size_t i = 0; i < data.points.size(); ++i) {
    const Residual& p = data.points[i];
    range.Take(p.difference);
    points.points.push_back(
        {p.difference, (data.Max - data.Min) * static_cast<double>(i) / (last / 4.0), p.label});
  }
  chart.x = MakeAxis(Title(ormel, "Observed less modeled head", Quantity::kLength), range.least, range.most);
  chart.y.title = "Share of the test points [%]";
  constexpr double kRoom = 0.04;  // so that the first and the last point are whole
  chart.y.from = -kRoom * height;
  chart.y.to = (1.0 + kRoom) * height;
  for (const int percent : {0, 25, 50, 75, 100})
    chart.y.ticks.push_back({height * percent / 100.0, std::to_string(percent)});
  if (chart.x.from < 0.0 && chart.x.to > 0.0)
    chart.series.push_back(Line("No difference", {0.0, chart.y.from}, {0.0, chart.y.to}));
  chart.series.push_back(std::move(points));
  return chart;
}

Chart ResidualChart(const Ormel& ormel, const CalibrationData& data) {
  Chart chart;
  chart.title = "Difference against Observed Head";
  ChartSeries points = PointSeries("Test points");
  Range heads, differences;
  differences.Take(0.0);
  for (const Residual& p : data.points) {
    heads.Take(p.observed);
    differences.Take(p.difference);
    points.points.push_back({p.observed, p.difference, p.label});
  }
  chart.x = MakeAxis(Title(ormel, "Observed head", Quantity::kLength), heads.least, heads.most);
  chart.y = MakeAxis(Title(ormel, "Observed less modeled head", Quantity::kLength), differences.least,
                     differences.most);
  chart.series.push_back(Line("No difference", {chart.x.from, 0.0}, {chart.x.to, 0.0}));
  chart.series.push_back(std::move(points));
  return chart;
}

std::vector<ObservedFlow> WithBoth(const std::vector<ObservedFlow>& flows) {
  std::vector<ObservedFlow> both;
  for (const ObservedFlow& flow : flows)
    if (flow.observed && flow.modelled) both.push_back(flow);
  return both;
}

Chart FlowChart(const Ormel& ormel, const std::vector<ObservedFlow>& flows) {
  Chart chart;
  chart.title = "Modeled against Observed Discharge";
  ChartSeries points = PointSeries("Strings and lines");
  Range range;
  for (const ObservedFlow& flow : WithBoth(flows)) {
    range.Take(*flow.observed);
    range.Take(*flow.modelled);
    points.points.push_back({*flow.observed, *flow.modelled, flow.label});
  }
  chart.x = MakeAxis(Title(ormel, "Observed discharge", Quantity::kDischarge), range.least, range.most);
  chart.y = MakeAxis(Title(ormel, "Modeled discharge", Quantity::kDischarge), range.least, range.most);
  if (!points.points.empty())
    chart.series.push_back(
        Line("Perfect fit", {chart.x.from, chart.x.from, {}}, {chart.x.to, chart.x.to, {}}));
  chart.series.push_back(std::move(points));
  return chart;
}

}  // namespace ormel
