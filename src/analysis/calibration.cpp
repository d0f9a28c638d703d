#include "analysis/calibration.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "analysis/cells.h"
#include "core/ormel.h"
#include "solver/deck_writer.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr double kDryBelow = -1000.0;  ///< the solver writes -9999 where there is no water
constexpr const char* kTable = "Polygons";
constexpr const char* kField = "ObsDischarge";

double Square(double x) {
  return x * x;
}

/// Half the number, a half rounded to the even neighbour.
std::size_t RoundedHalf(std::size_t count) {
  const std::size_t below = count / 2;
  return count % 2 == 0 || below % 2 == 0 ? below : below + 1;
}

/// The deck labels of a string's segments are LS_<PID>_<Seq>.
Pid PidOfSegment(std::string_view label) {
  constexpr std::size_t kPrefix = 3;
  return label.size() > kPrefix ? static_cast<Pid>(Val(label.substr(kPrefix, label.rfind('_') - kPrefix)))
                                : kNoPolygon;
}

struct Total {
  double discharge = 0.0;
  bool complete = true;
};

std::map<Pid, Total> DischargesOfStrings(Ormel& ormel) {
  std::map<Pid, Total> totals;
  RowReader rows(ormel.db(), "select VadoxLabel,Discharge,SpecifiedHead from LSResults");
  while (rows.Next()) {
    Total& total = totals[PidOfSegment(rows.Text(0))];
    total.discharge += rows.Double(1);
    if (rows.Double(2) == kNoSpecifiedHead) total.complete = false;
  }
  return totals;
}

void AddFlows(Ormel& ormel, bool flux_lines, const std::map<Pid, Total>& modelled,
              std::vector<ObservedFlow>& flows) {
  const bool has_field = ormel.db().HasField(kTable, kField);
  const std::string table = flux_lines ? "FluxInspect" : "LinesinkStrings";
  RowReader rows(ormel.db(), "select e.Label,e.PID," + std::string(has_field ? "p.ObsDischarge" : "null") +
                                 " from " + table + " e left join Polygons p on p.PID=e.PID");
  while (rows.Next()) {
    ObservedFlow flow{std::string(rows.Text(0)), rows.Long(1), flux_lines, {}, {}};
    if (!rows.IsNull(2)) flow.observed = rows.Double(2);
    const auto found = modelled.find(flow.pid);
    if (found != modelled.end() && found->second.complete) flow.modelled = found->second.discharge;
    flows.push_back(std::move(flow));
  }
}

}  // namespace

CalibrationData ReadCalibration(Ormel& ormel) {
  CalibrationData data;
  RowReader rows(ormel.db(),
                 "select Label,VID,X,Y,ObsHead,ModelHead,Difference from TPResults order by Difference;");
  while (rows.Next()) {
    Residual point{std::string(rows.Text(0)),
                   rows.Long(1),
                   {rows.Double(2), rows.Double(3)},
                   rows.Double(4),
                   rows.Double(5),
                   rows.Double(6)};
    // The rows are made with zeros before the results come.
    const bool untouched = point.modelled == 0.0 && point.difference == 0.0 && point.observed != 0.0;
    if (point.modelled < kDryBelow || untouched) {
      (untouched ? data.unanswered : data.dry).push_back(point.label);
      continue;
    }
    for (const double head : {point.observed, point.modelled}) {
      data.Max = std::max(data.Max, head);
      data.Min = std::min(data.Min, head);
    }
    data.points.push_back(std::move(point));
  }
  return data;
}

CalibrationStatistics StatisticsOf(const std::vector<Residual>& points) {
  CalibrationStatistics s;
  s.count = points.size();
  if (points.empty()) return s;
  const auto n = static_cast<double>(points.size());
  double sum = 0.0, absolute = 0.0, squares = 0.0, observed = 0.0;
  double least = points.front().observed, most = least;
  for (const Residual& point : points) {
    sum += point.difference;
    absolute += std::abs(point.difference);
    squares += Square(point.difference);
    observed += point.observed;
    least = std::min(least, point.observed);
    most = std::max(most, point.observed);
  }
  const std::size_t half = points.size() / 2;
  const double upper = points[half].difference;
  s.middle = points.size() % 2 == 0 ? 0.5 * (upper + points[half - 1].difference) : upper;
  s.median = points.size() % 2 == 0
                 ? s.middle
                 : points[std::min(RoundedHalf(points.size()), points.size() - 1)].difference;
  s.maximum = points.back().difference;
  s.minimum = points.front().difference;
  s.average = sum / n;
  s.mean_absolute = absolute / n;
  s.root_mean_square = std::sqrt(squares / n);
  s.observed_range = most - least;
  if (!(s.observed_range > 0.0)) return s;
  double deviations = 0.0;
  for (const Residual& point : points) deviations += Square(point.observed - observed / n);
  s.determination = 1.0 - squares / deviations;
  s.range_percent = 100.0 * s.root_mean_square / s.observed_range;
  return s;
}

std::vector<ObservedFlow> ReadObservedFlows(Ormel& ormel) {
  std::vector<ObservedFlow> flows;
  AddFlows(ormel, false, DischargesOfStrings(ormel), flows);
  std::map<Pid, Total> fluxes;
  RowReader rows(ormel.db(), "select PID,TotalFlux from FIResults");
  while (rows.Next()) fluxes[rows.Long(0)].discharge = rows.Double(1);
  AddFlows(ormel, true, fluxes, flows);
  std::stable_sort(flows.begin(), flows.end(), [](const ObservedFlow& a, const ObservedFlow& b) {
    return CompareNoCase(a.label, b.label) < 0;
  });
  return flows;
}

void StoreObservedFlow(Ormel& ormel, Pid pid, std::optional<double> observed) {
  Database& db = ormel.db();
  schema::EnsureField(db, kTable, kField);
  db.Execute("update Polygons set ObsDischarge=? where PID=?", {OrEmpty(observed), pid});
}

}  // namespace ormel
