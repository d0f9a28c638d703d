#include "analysis/report_sources.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "analysis/calibration_charts.h"
#include "analysis/cells.h"
#include "analysis/report_tables.h"
#include "analysis/zones.h"
#include "core/ormel.h"
#include "core/quantities.h"
#include "core/settings.h"
#include "core/table.h"
#include "store/database.h"
#include "text/files.h"

namespace ormel {
namespace {

struct TableRow {
  std::string_view name;
  std::shared_ptr<Table> (*make)(ReportSources&);
};
constexpr std::array kTables{
    TableRow{"zones", [](ReportSources& s) { return ZonesTable(s.ormel()); }},
    TableRow{"zonechecks", [](ReportSources& s) { return ZoneChecksTable(s.ormel()); }},
    TableRow{"areas", [](ReportSources& s) { return AreasTable(s.ormel()); }},
    TableRow{"strings", [](ReportSources& s) { return StringsTable(s.ormel()); }},
    TableRow{"domains", [](ReportSources& s) { return DomainsTable(s.ormel()); }},
    TableRow{"conditions", [](ReportSources& s) { return ConditionsTable(s.ormel()); }},
    TableRow{"balance", [](ReportSources& s) { return BalanceTable(s.Listing()); }},
    TableRow{"errors", [](ReportSources& s) { return ErrorsTable(s.ormel(), s.Listing()); }},
    TableRow{"statistics", [](ReportSources& s) { return StatisticsTable(s.ormel(), s.Calibration()); }},
    TableRow{"flows", [](ReportSources& s) { return FlowsTable(s.ormel()); }},
    TableRow{"warnings", [](ReportSources& s) { return WarningsTable(s.Listing()); }},
    TableRow{"vertices", [](ReportSources& s) { return VerticesTable(s.ormel()); }},
    TableRow{"coordinates", [](ReportSources& s) { return CoordinatesTable(s.ormel(), false); }},
    TableRow{"outlines", [](ReportSources& s) { return CoordinatesTable(s.ormel(), true); }}};

std::string TimeText(const Ormel& ormel) {
  const ClockTime now = ormel.clock().Now();
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d", now.year, now.month, now.day, now.hour,
                now.minute);
  return text.data();
}

std::string LeftOut(const CalibrationData& data) {
  std::string text;
  const auto add = [&text](const char* what, const std::vector<std::string>& labels) {
    if (labels.empty()) return;
    text += what;
    for (std::size_t i = 0; i < labels.size(); ++i) text += (i == 0 ? " " : ", ") + labels[i];
    text += ". ";
  };
  add("Left out, dry in the model:", data.dry);
  add("Left out, without a result:", data.unanswered);
  return text;
}

std::string SolutionText(ReportSources& s) {
  return s.results() ? "The results are those of the model as it stands."
                     : "There are no valid results: " + s.reason() + ". Sections of results are left out.";
}

struct ValueRow {
  std::string_view name;
  Value (*make)(ReportSources&);
};
constexpr std::array kValues{
    ValueRow{"project.file", [](ReportSources& s) { return Value(FileTitle(s.ormel().project.DBName)); }},
    ValueRow{"project.description",
             [](ReportSources& s) { return s.ormel().db().Scalar("select Description from Project"); }},
    ValueRow{"date", [](ReportSources& s) { return Value(TimeText(s.ormel())); }},
    ValueRow{"program", [](ReportSources&) { return Value(kProgramTitle + (" " + VersionText())); }},
    ValueRow{"solution", [](ReportSources& s) { return Value(SolutionText(s)); }},
    ValueRow{"solution.time", [](ReportSources& s) { return Value(s.ormel().solution.SolutionTime); }},
    ValueRow{"unit.map", [](ReportSources& s) { return Value(UnitOf(s.ormel(), Quantity::kMapLength)); }},
    ValueRow{"unit.length", [](ReportSources& s) { return Value(UnitOf(s.ormel(), Quantity::kLength)); }},
    ValueRow{"balance.error",
             [](ReportSources& s) {
               const auto& error = s.Listing().balance_error;
               return When(error.has_value(), 100.0 * error.value_or(0.0));
             }},
    ValueRow{"calibration.leftout", [](ReportSources& s) { return Value(LeftOut(s.Calibration())); }},
    ValueRow{"warnings.state", [](ReportSources& s) {
               return Value(s.Listing().has_log ? "" : "The solver's error log is not there any more.");
             }}};

template <class Rows>
std::string Names(const Rows& rows) {
  std::string names;
  for (const auto& row : rows) names += (names.empty() ? "" : ", ") + std::string(row.name);
  return names;
}

}  // namespace

std::shared_ptr<Table> ReportSources::TableOf(std::string_view name) {
  for (const TableRow& row : kTables)
    if (row.name == name) return row.make(*this);
  return nullptr;
}

std::string ReportSources::TableNames() {
  return Names(kTables);
}

std::optional<Value> ReportSources::ValueOf(std::string_view name) {
  for (const ValueRow& row : kValues)
    if (row.name == name) return row.make(*this);
  return std::nullopt;
}

std::string ReportSources::ValueNames() {
  return Names(kValues);
}

std::optional<Chart> ReportSources::ChartOf(std::string_view name) {
  if (name == "discharges") {
    const std::vector<ObservedFlow> flows = ReadObservedFlows(ormel_);
    if (WithBoth(flows).empty()) return std::nullopt;
    return FlowChart(ormel_, flows);
  }
  const CalibrationData& data = Calibration();
  if (data.points.size() < kLeastPoints) return std::nullopt;
  if (name == "fit") return FitChart(ormel_, data);
  return name == "order" ? OrderChart(ormel_, data) : ResidualChart(ormel_, data);
}

const CalibrationData& ReportSources::Calibration() {
  if (!calibration_) calibration_ = ReadCalibration(ormel_);
  return *calibration_;
}

const SolverListing& ReportSources::Listing() {
  if (!listing_) listing_ = ReadListing(ormel_);
  return *listing_;
}

}  // namespace ormel
