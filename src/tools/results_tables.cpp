#include "tools/results_tables.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/ormel.h"
#include "core/table.h"
#include "solver/result_rows.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"

namespace ormel {
namespace {

using enum Quantity;

constexpr const char* kPlace = "0.00";
constexpr const char* kHead = "0.000";
constexpr const char* kSmall = "0.0000E+00";
constexpr const char* kFlow = "0.000";

constexpr std::array kWells{ResultsColumn{"Label", "Label"},
                            ResultsColumn{"X", "X", kMapLength, kPlace},
                            ResultsColumn{"Y", "Y", kMapLength, kPlace},
                            ResultsColumn{"Radius", "Radius", kLength, kHead},
                            ResultsColumn{"Discharge", "Discharge", kDischarge, kFlow},
                            ResultsColumn{"SpecifiedHead", "Specified head", kLength, kHead},
                            ResultsColumn{"Head", "Head", kLength, kHead},
                            ResultsColumn{"VadoxLabel", "Solver's label"}};
constexpr std::array kLinesinks{ResultsColumn{"Label", "Label"},
                                ResultsColumn{"X1", "From X", kMapLength, kPlace},
                                ResultsColumn{"Y1", "From Y", kMapLength, kPlace},
                                ResultsColumn{"X2", "To X", kMapLength, kPlace},
                                ResultsColumn{"Y2", "To Y", kMapLength, kPlace},
                                ResultsColumn{"SpecifiedHead", "Specified head", kLength, kHead},
                                ResultsColumn{"CalculatedHead", "Calculated head", kLength, kHead},
                                ResultsColumn{"Discharge", "Discharge", kDischarge, kFlow},
                                ResultsColumn{"Width", "Width", kLength, kHead},
                                ResultsColumn{"Resistance", "Resistance", kDays, kHead},
                                ResultsColumn{"Depth", "Depth", kLength, kHead},
                                ResultsColumn{"Error", "Error", kLength, kSmall},
                                ResultsColumn{"VadoxLabel", "Solver's label"}};
constexpr std::array kDomains{
    ResultsColumn{"Label", "Label"},
    ResultsColumn{"X1", "Vertex X", kMapLength, kPlace},
    ResultsColumn{"Y1", "Vertex Y", kMapLength, kPlace},
    ResultsColumn{"XC", "Centre X", kMapLength, kPlace},
    ResultsColumn{"YC", "Centre Y", kMapLength, kPlace},
    ResultsColumn{"Conductivity", "Conductivity", kRate, kSmall},
    ResultsColumn{"BottomElev", "Base", kLength, kHead},
    ResultsColumn{"ExtractRate", "Extraction", kRate, kSmall},
    ResultsColumn{"Porosity", "Porosity", kNone, "0.000"},
    ResultsColumn{"DomainArea", "Area", kArea, "0.0"},
    ResultsColumn{"AvgPotJump", "Mean jump of potential", kDischarge, kSmall},
    ResultsColumn{"StrPotJumpNode", "Jump at vertex", kDischarge, kSmall},
    ResultsColumn{"ParabStrPotJump", "Parabolic jump", kDischarge, kSmall},
    ResultsColumn{"DeltaPNode", "Head error at vertex", kLength, kSmall},
    ResultsColumn{"DeltaPCntr", "Head error at centre", kLength, kSmall},
    ResultsColumn{"RealStrExtrNode", "Extraction at vertex, real", kNone, kSmall},
    ResultsColumn{"ImagStrExtrNode", "Extraction at vertex, imaginary", kNone, kSmall},
    ResultsColumn{"RealStrExtrCntr", "Extraction at centre", kNone, kSmall},
    ResultsColumn{"Tfac", "Factor", kNone, kSmall},
    ResultsColumn{"VadoxLabel", "Solver's label"}};
constexpr std::array kBarriers{ResultsColumn{"Label", "Label"},
                               ResultsColumn{"X1", "Vertex X", kMapLength, kPlace},
                               ResultsColumn{"Y1", "Vertex Y", kMapLength, kPlace},
                               ResultsColumn{"XC", "Centre X", kMapLength, kPlace},
                               ResultsColumn{"YC", "Centre Y", kMapLength, kPlace},
                               ResultsColumn{"Conductivity", "Conductivity", kRate, kSmall},
                               ResultsColumn{"Width", "Thickness", kLength, kHead},
                               ResultsColumn{"Porosity", "Porosity", kNone, "0.000"},
                               ResultsColumn{"WallBottomElev", "Bottom", kLength, kHead},
                               ResultsColumn{"StrPotJumpNode", "Jump at vertex", kDischarge, kSmall},
                               ResultsColumn{"ParabStrPotJump", "Parabolic jump", kDischarge, kSmall},
                               ResultsColumn{"DeltaFlowCntr", "Flow error at centre", kNone, kSmall},
                               ResultsColumn{"DeltaFlowNode", "Flow error at vertex", kNone, kSmall},
                               ResultsColumn{"VadoxLabel", "Solver's label"}};
constexpr std::array kTestPoints{ResultsColumn{"Label", "Label"},
                                 ResultsColumn{"X", "X", kMapLength, kPlace},
                                 ResultsColumn{"Y", "Y", kMapLength, kPlace},
                                 ResultsColumn{"ObsHead", "Observed head", kLength, kHead},
                                 ResultsColumn{"ModelHead", "Modeled head", kLength, kHead},
                                 ResultsColumn{"Difference", "Difference", kLength, kHead},
                                 ResultsColumn{"VID", "Vertex"}};
constexpr std::array kFluxLines{ResultsColumn{"Label", "Label"},
                                ResultsColumn{"TotalFlux", "Total flux", kDischarge, kFlow},
                                ResultsColumn{"PID", "Polygon"}};

constexpr std::array kTables{ResultsTable{"WLResults", "Wells", kWells},
                             ResultsTable{"LSResults", "Linesinks", kLinesinks},
                             ResultsTable{"INResults", "Inhomogeneities", kDomains},
                             ResultsTable{"NFResults", "Barriers", kBarriers},
                             ResultsTable{"TPResults", "Test Points", kTestPoints},
                             ResultsTable{"FIResults", "Flux Lines", kFluxLines}};

/// A number that is none.
struct Special {
  std::string_view field;
  double value;
  const char* text;
};
constexpr double kDry = -9999.0;
constexpr std::array kSpecials{
    Special{"Head", kDry, "dry"}, Special{"CalculatedHead", kDry, "dry"}, Special{"ModelHead", kDry, "dry"},
    Special{"SpecifiedHead", kNoSpecifiedHead, ""}, Special{"WallBottomElev", kDry, "full depth"}};

TableColumn ColumnOf(const Ormel& ormel, const ResultsColumn& column, bool text) {
  TableColumn made{.name = column.field,
                   .caption = WithUnit(ormel, column.caption, column.quantity),
                   .mask = column.mask,
                   .number = !text};
  for (const Special& special : kSpecials) {
    if (special.field != column.field) continue;
    made.special = special.value;
    made.special_text = special.text;
  }
  return made;
}

/// A line-sink of given discharge gets no results: the zeros of its row are none.
void EmptyUnsolved(const Table& table, std::vector<Value>& values) {
  constexpr std::array<std::string_view, 7> kUnsolved{"SpecifiedHead", "CalculatedHead", "Discharge", "Width",
                                                      "Resistance",    "Depth",          "Error"};
  for (std::size_t i = 0; i < values.size(); ++i)
    if (std::ranges::find(kUnsolved, table.columns()[i].name) != kUnsolved.end()) values[i] = Value();
}

/// Wells that were given a head; the others' specified head is none.
std::unordered_set<Vid> WellsByHead(Database& db) {
  std::unordered_set<Vid> wells;
  RowReader rows(db, "select VID from Wells where HeadSpecified=1");
  while (rows.Next()) wells.insert(rows.Long(0));
  return wells;
}

void EmptySpecifiedHeads(Database& db, Table& table) {
  const auto& columns = table.columns();
  const auto at = [&](std::string_view name) {
    return static_cast<std::size_t>(std::ranges::find(columns, name, &TableColumn::name) - columns.begin());
  };
  const std::size_t head = at("SpecifiedHead"), label = at("VadoxLabel");
  if (head >= columns.size() || label >= columns.size()) return;
  const std::unordered_set<Vid> by_head = WellsByHead(db);
  for (std::size_t row = 0; row < table.Rows(); ++row) {
    const std::string text = table.At(row, label).AsText();
    const auto vid =
        static_cast<Vid>(Val(std::string_view(text).substr(std::min<std::size_t>(3, text.size()))));
    if (!by_head.contains(vid)) table.Change(row, head, Value());
  }
}

}  // namespace

std::span<const ResultsTable> ResultsTables() {
  return kTables;
}

std::shared_ptr<Table> ReadResults(Ormel& ormel, const ResultsTable& results) {
  RowReader rows(ormel.db(), "select * from " + std::string(results.name));
  std::vector<TableColumn> columns;
  std::vector<int> positions;
  for (const ResultsColumn& column : results.columns) {
    const int position = rows.Column(column.field);
    if (position < 0) continue;
    const bool text = std::string_view(column.field).ends_with("Label");
    columns.push_back(ColumnOf(ormel, column, text));
    positions.push_back(position);
  }
  auto table = std::make_shared<Table>(std::move(columns));
  table->Reserve(static_cast<std::size_t>(ormel.db().RowCount(results.name)));
  const int specified = results.name == "LSResults" ? rows.Column("SpecifiedHead") : -1;
  while (rows.Next()) {
    std::vector<Value> values;
    values.reserve(positions.size());
    for (const int position : positions) values.push_back(rows.Get(position));
    if (specified >= 0 && rows.Double(specified) == kNoSpecifiedHead) EmptyUnsolved(*table, values);
    table->AddRow(std::move(values));
  }
  if (results.name == "WLResults") EmptySpecifiedHeads(ormel.db(), *table);
  return table;
}

}  // namespace ormel
