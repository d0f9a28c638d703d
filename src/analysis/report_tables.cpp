#include "analysis/report_tables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/cells.h"
#include "core/ormel.h"
#include "core/quantities.h"
#include "core/table.h"
#include "solver/deck_labels.h"
#include "solver/result_rows.h"
#include "solver/user_labels.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

std::shared_ptr<Table> Made(std::initializer_list<const char*> names) {
  std::vector<TableColumn> columns;
  for (const char* name : names) columns.push_back({.name = name, .caption = name});
  return std::make_shared<Table>(std::move(columns));
}

/// The deck label of a string's segment or a domain's vertex without its own number.
std::string StemOfLabel(std::string_view label) {
  return std::string(label.substr(0, std::min(label.rfind('_'), label.size())));
}

/// Worst of a condition.
struct Worst {
  std::size_t count = 0;
  double largest = 0.0;
  std::string where{};
  void Take(double error, std::string_view label) {
    ++count;
    if (std::abs(error) <= largest && !where.empty()) return;
    largest = std::abs(error);
    where = label;
  }
};

Worst WorstOf(Ormel& ormel, const char* sql) {
  Worst worst;
  RowReader rows(ormel.db(), sql);
  while (rows.Next()) worst.Take(rows.Double(1), rows.Text(0));
  return worst;
}

struct ConditionRow {
  const char* condition;
  Quantity quantity;
  const char* sql;
};
constexpr std::array kConditions{
    ConditionRow{"head of head-specified wells, at the radius", Quantity::kLength,
                 "select r.Label,r.Head-r.SpecifiedHead from WLResults r inner join Wells w on r.VadoxLabel="
                 "'WL_' || substr('000000' || w.VID,-max(6,length(w.VID))) where w.HeadSpecified=1 and "
                 "r.Head>-1000"},
    ConditionRow{"head or bed of line-sinks, along each segment", Quantity::kLength,
                 "select Label,Error from LSResults where SpecifiedHead<>-999"},
    ConditionRow{"head on both sides of domains, at vertices", Quantity::kLength,
                 "select Label,DeltaPNode from INResults"},
    ConditionRow{"head on both sides of domains, between vertices", Quantity::kLength,
                 "select Label,DeltaPCntr from INResults"},
    ConditionRow{"flow through barriers, at vertices", Quantity::kNone,
                 "select Label,DeltaFlowNode from NFResults"},
    ConditionRow{"flow through barriers, between vertices", Quantity::kNone,
                 "select Label,DeltaFlowCntr from NFResults"}};

struct StringTotal {
  std::string label;
  std::size_t segments = 0;
  double length = 0.0, discharge = 0.0, error = 0.0;
  double least = std::numeric_limits<double>::infinity(), most = -least;
  bool given = false;
};

struct RingOwner {
  const char* element;
  const char* table;
  bool zone = false;
};
constexpr std::array kRingOwners{
    RingOwner{"linesink string", "LinesinkStrings"}, RingOwner{"barrier", "NoFlowStrings"},
    RingOwner{"inhomogeneity", "Inhomogeneities"}, RingOwner{"flux inspection line", "FluxInspect"},
    RingOwner{"capture zone", "Capzones", true}};

/// Label, X, Y and `PID` of each vertex, in order.
RowReader RingRows(Ormel& ormel, const RingOwner& owner) {
  return {ormel.db(), std::string("select e.Label,v.X,v.Y,e.PID from ") + owner.table +
                          " e inner join Vertices v on v.PID=e.PID order by e.Label,e.PID,v.Seq"};
}

std::string ToTwoDecimals(double value) {
  return NumberText(std::round(value * 100.0) / 100.0);
}

}  // namespace

std::shared_ptr<Table> StringsTable(Ormel& ormel) {
  std::vector<StringTotal> totals;
  std::map<std::string, std::size_t> places;
  RowReader rows(ormel.db(),
                 "select VadoxLabel,Label,X1,Y1,X2,Y2,Discharge,CalculatedHead,Error,SpecifiedHead from "
                 "LSResults order by VadoxLabel");
  while (rows.Next()) {
    const auto [place, is_new] = places.try_emplace(StemOfLabel(rows.Text(0)), totals.size());
    if (is_new) totals.push_back({std::string(rows.Text(1))});
    StringTotal& total = totals[place->second];
    ++total.segments;
    total.length += std::hypot(rows.Double(4) - rows.Double(2), rows.Double(5) - rows.Double(3));
    total.given = total.given || rows.Double(9) == kNoSpecifiedHead;
    total.discharge += rows.Double(6);
    total.least = std::min(total.least, rows.Double(7));
    total.most = std::max(total.most, rows.Double(7));
    total.error = std::max(total.error, std::abs(rows.Double(8)));
  }
  auto table = Made({"Label", "Segments", "Length", "Discharge", "LeastHead", "MostHead", "LargestError"});
  for (const StringTotal& t : totals) {
    const auto result = [&t](double value) { return When(!t.given, value); };
    table->AddRow({t.label, t.segments, t.length, result(t.discharge), result(t.least), result(t.most),
                   result(t.error)});
  }
  return table;
}

std::shared_ptr<Table> DomainsTable(Ormel& ormel) {
  struct Total {
    std::string label;
    std::size_t vertices = 0;
    double area = 0.0, conductivity = 0.0, base = 0.0, extraction = 0.0, porosity = 0.0, error = 0.0;
  };
  std::vector<Total> totals;
  std::map<std::string, std::size_t> places;
  RowReader rows(ormel.db(),
                 "select VadoxLabel,Label,DomainArea,Conductivity,BottomElev,ExtractRate,Porosity,DeltaPNode,"
                 "DeltaPCntr from INResults order by VadoxLabel");
  while (rows.Next()) {
    const auto [place, is_new] = places.try_emplace(StemOfLabel(rows.Text(0)), totals.size());
    if (is_new)
      totals.push_back({std::string(rows.Text(1)), 0, rows.Double(2), rows.Double(3), rows.Double(4),
                        rows.Double(5), rows.Double(6), 0.0});
    Total& total = totals[place->second];
    ++total.vertices;
    total.error = std::max({total.error, std::abs(rows.Double(7)), std::abs(rows.Double(8))});
  }
  auto table =
      Made({"Label", "Vertices", "Area", "Conductivity", "Base", "Recharge", "Porosity", "LargestError"});
  for (const Total& t : totals)
    table->AddRow(
        {t.label, t.vertices, t.area, t.conductivity, t.base, 0.0 - t.extraction, t.porosity, t.error});
  return table;
}

std::shared_ptr<Table> ConditionsTable(Ormel& ormel) {
  auto table = Made({"Condition", "Count", "Largest", "Where", "Unit"});
  for (const ConditionRow& row : kConditions) {
    const Worst worst = WorstOf(ormel, row.sql);
    if (worst.count == 0) continue;
    table->AddRow({row.condition, worst.count, worst.largest, worst.where, UnitOf(ormel, row.quantity)});
  }
  return table;
}

std::shared_ptr<Table> BalanceTable(const SolverListing& listing) {
  auto table = Made({"Term", "Discharge"});
  for (const ListedNumber& term : listing.balance) table->AddRow({term.name, term.value});
  return table;
}

std::shared_ptr<Table> ErrorsTable(Ormel& ormel, const SolverListing& listing) {
  auto table = Made({"Condition", "Largest", "Where"});
  for (const ListedError& error : listing.errors)
    table->AddRow(
        {error.condition, error.largest, When(!error.where.empty(), UserLabel(ormel, error.where))});
  return table;
}

std::shared_ptr<Table> StatisticsTable(Ormel& ormel, const CalibrationData& data) {
  auto table = Made({"Statistic", "Value", "Unit"});
  if (data.points.size() < kLeastPoints) return table;
  const CalibrationStatistics s = StatisticsOf(data.points);
  const std::string unit = UnitOf(ormel, Quantity::kLength);
  const auto add = [&table](const char* name, Value value, const std::string& of) {
    table->AddRow({name, std::move(value), of});
  };
  add("Observations", s.count, "");
  add("Maximum difference", s.maximum, unit);
  add("Minimum difference", s.minimum, unit);
  add("Average difference", s.average, unit);
  add("Median difference", s.middle, unit);
  add("Mean absolute difference", s.mean_absolute, unit);
  add("Root-mean-square difference", s.root_mean_square, unit);
  add("Range of the observed heads", s.observed_range, unit);
  if (s.range_percent) add("Root-mean-square difference over that range", *s.range_percent, "%");
  if (s.determination) add("Coefficient of determination", *s.determination, "");
  return table;
}

std::shared_ptr<Table> ResidualsTable(const Ormel& ormel, const CalibrationData& data) {
  const auto column = [&ormel](const char* name, const char* caption, Quantity quantity, const char* mask) {
    return TableColumn{.name = name, .caption = WithUnit(ormel, caption, quantity), .mask = mask};
  };
  std::vector<TableColumn> columns{{.name = "Label", .caption = "Test point", .number = false},
                                   column("X", "X", Quantity::kMapLength, "0.00"),
                                   column("Y", "Y", Quantity::kMapLength, "0.00"),
                                   column("ObsHead", "Observed head", Quantity::kLength, "0.000"),
                                   column("ModelHead", "Modeled head", Quantity::kLength, "0.000"),
                                   column("Difference", "Difference", Quantity::kLength, "0.000")};
  auto table = std::make_shared<Table>(std::move(columns));
  for (const Residual& p : data.points)
    table->AddRow({p.label, p.at.x, p.at.y, p.observed, p.modelled, p.difference});
  return table;
}

std::shared_ptr<Table> FlowsTable(Ormel& ormel) {
  auto table = Made({"Label", "Kind", "Observed", "Modeled", "Difference"});
  for (const ObservedFlow& flow : ReadObservedFlows(ormel)) {
    if (!flow.observed) continue;
    const bool both = flow.modelled.has_value();
    table->AddRow({flow.label, flow.flux_line ? "flux inspection line" : "linesink string", *flow.observed,
                   OrEmpty(flow.modelled), When(both, *flow.observed - flow.modelled.value_or(0.0))});
  }
  return table;
}

std::shared_ptr<Table> WarningsTable(const SolverListing& listing) {
  auto table = Made({"Message"});
  for (const std::string& line : listing.warnings) table->AddRow({line});
  return table;
}

std::shared_ptr<Table> VerticesTable(Ormel& ormel) {
  auto table = Made({"Element", "Label", "X", "Y"});
  for (const RingOwner& owner : kRingOwners) {
    RowReader rows = RingRows(ormel, owner);
    while (rows.Next()) table->AddRow({owner.element, rows.Get(0), rows.Get(1), rows.Get(2)});
  }
  return table;
}

std::shared_ptr<Table> CoordinatesTable(Ormel& ormel, bool zones) {
  auto table = Made({"Element", "Label", "Vertices", "Coordinates"});
  for (const RingOwner& owner : kRingOwners) {
    if (owner.zone != zones) continue;
    RowReader rows = RingRows(ormel, owner);
    std::int64_t vertices = 0, pid = kNoPolygon;
    std::string label, coordinates;
    const auto end_row = [&] {
      if (vertices > 0) table->AddRow({owner.element, label, vertices, coordinates});
      vertices = 0;
      coordinates.clear();
    };
    while (rows.Next()) {
      if (rows.Long(3) != pid) end_row();
      pid = rows.Long(3);
      label = rows.Text(0);
      coordinates +=
          (vertices++ == 0 ? "" : "; ") + ToTwoDecimals(rows.Double(1)) + " " + ToTwoDecimals(rows.Double(2));
    }
    end_row();
  }
  return table;
}

}  // namespace ormel
