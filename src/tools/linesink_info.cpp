// The information panel of a line-sink string.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/quantities.h"
#include "core/table.h"
#include "model/vertices.h"
#include "solver/deck_labels.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/masks.h"
#include "text/numbers.h"
#include "tools/info_panels.h"

namespace ormel {
namespace {

using enum ControlKind;
using enum Quantity;

constexpr std::string_view kProperties = "Properties", kResults = "Results";

constexpr std::array kControls{
    ControlSpec{.name = "txLabel", .kind = kLabel, .caption = "Label", .tab = kProperties},
    ControlSpec{.name = "txKind", .kind = kLabel, .caption = "Kind", .tab = kProperties},
    ControlSpec{.name = "txVertices", .kind = kLabel, .caption = "Vertices", .tab = kProperties},
    ControlSpec{.name = "txLength", .kind = kLabel, .caption = "Length", .tab = kProperties},
    ControlSpec{.name = "txStart", .kind = kLabel, .caption = "Starting Head", .tab = kProperties},
    ControlSpec{.name = "txEnd", .kind = kLabel, .caption = "Ending Head", .tab = kProperties},
    ControlSpec{.name = "txResistance", .kind = kLabel, .caption = "Resistance", .tab = kProperties},
    ControlSpec{.name = "txWidth", .kind = kLabel, .caption = "Width", .tab = kProperties},
    ControlSpec{.name = "txDepth", .kind = kLabel, .caption = "Depth", .tab = kProperties},
    ControlSpec{.name = "txLocation", .kind = kLabel, .caption = "Linesink Location", .tab = kProperties},
    ControlSpec{.name = "txInflow", .kind = kLabel, .caption = "Inflow at the Upper End", .tab = kProperties},
    ControlSpec{.name = "txOverland", .kind = kLabel, .caption = "Overland Flow", .tab = kProperties},
    ControlSpec{.name = "txEndStream", .kind = kLabel, .caption = "End of the Stream", .tab = kProperties},
    ControlSpec{.name = "txDischarge", .kind = kLabel, .caption = "Total Discharge", .tab = kResults},
    ControlSpec{.name = "txPerLength", .kind = kLabel, .caption = "Mean per Length", .tab = kResults},
    ControlSpec{.name = "txError", .kind = kLabel, .caption = "Largest Error in Head", .tab = kResults},
    ControlSpec{.name = "txMissing", .kind = kLabel, .caption = "Without Results", .tab = kResults},
    ControlSpec{.name = "grid", .kind = kTable, .caption = "Segments", .tab = kResults},
    ControlSpec{.name = "Close", .kind = kButton, .caption = "Close", .role = ButtonRole::kReject}};

constexpr std::array kLocations{"Unknown", "Along stream centerline", "Along surface water boundary"};

/// What the solver says of a segment; of one with given discharge what was given.
struct SegmentResult {
  std::optional<double> specified_head, calculated_head, discharge, error;
};

Value ValueOf(const std::optional<double>& number) {
  return number ? Value(*number) : Value();
}

double Distance(const VertexRow& a, const VertexRow& b) {
  return std::hypot(b.at.x - a.at.x, b.at.y - a.at.y);
}

}  // namespace

struct LSInfo::Data {
  Pid pid = kNoPolygon;
  std::string label;
  bool by_head = true, drain = false, farfield = false, routed = false;
  double start = 0.0, end = 0.0, resistance = 0.0, width = 0.0, depth = 0.0;
  double inflow = 0.0, overland = 0.0;
  bool end_stream = false;
  std::size_t location = 0;
  std::vector<VertexRow> vertices;

  /// [map length]
  double Length() const {
    double length = 0.0;
    for (std::size_t i = 1; i < vertices.size(); ++i) length += Distance(vertices[i - 1], vertices[i]);
    return length;
  }
  std::string Kind() const {
    if (!by_head) return "Discharge-specified";
    if (routed) return "Routed stream";
    if (drain) return "Drain";
    return farfield ? "Head-specified, far field" : "Head-specified";
  }
};

LSInfo::LSInfo(Ormel& ormel) : InfoPanel(ormel) {
  InitControls();
}

std::span<const ControlSpec> LSInfo::Controls() const {
  return kControls;
}

bool LSInfo::Read(Pid pid, Data& data) {
  RowReader row(ormel().db(), "select * from LinesinkStrings where PID=?", {pid});
  if (!row.Next()) return false;
  const auto number = [&row](std::string_view name) {
    const int column = row.Column(name);
    return column < 0 ? 0.0 : row.Double(column);
  };
  const auto flag = [&row](std::string_view name) { return row.Long(row.Column(name)) != 0; };
  data.pid = pid;
  data.label = row.Text(row.Column("Label"));
  data.by_head = flag("HeadSpecified");
  data.drain = flag("Drain");
  data.farfield = flag("Farfield");
  data.routed = flag("Routing");
  data.start = number("StartingHead");
  data.end = number("EndingHead");
  data.resistance = number("Resistance");
  data.width = number("Width");
  data.depth = number("Depth");
  data.inflow = number("EndInflow");
  data.overland = number("Overlandflow");
  data.end_stream = number("EndStream") == 1.0;
  const std::int64_t location = row.Long(row.Column("AutoSWIZC"));
  data.location = location >= 0 && location < std::ssize(kLocations) ? static_cast<std::size_t>(location) : 0;
  data.vertices = VerticesOf(ormel(), pid);
  return !data.vertices.empty();
}

void LSInfo::PutProperties(const Data& data) {
  const std::size_t segments = data.vertices.size() - 1;
  PutValue("txLabel", data.label);
  PutValue("txKind", data.Kind());
  PutValue("txVertices", std::to_string(data.vertices.size()) + " (" + std::to_string(segments) +
                             (segments == 1 ? " segment)" : " segments)"));
  PutValue("txLength", FormatMask(data.Length(), "#,###,##0.00"), UnitOf(ormel(), kMapLength));
  Caption("txStart", data.by_head ? "Starting Head" : "Starting Sink Density");
  Caption("txEnd", data.by_head ? "Ending Head" : "Ending Sink Density");
  const std::string unit = UnitOf(ormel(), data.by_head ? kLength : kSinkDensity);
  PutValue("txStart", NumberText(data.start), unit);
  PutValue("txEnd", NumberText(data.end), unit);
  PutValue("txResistance", NumberText(data.resistance), UnitOf(ormel(), kDays));
  PutValue("txWidth", NumberText(data.width), UnitOf(ormel(), kLength));
  PutValue("txDepth", NumberText(data.depth), UnitOf(ormel(), kLength));
  PutValue("txLocation", kLocations[data.location]);
  PutValue("txInflow", NumberText(data.inflow), UnitOf(ormel(), kDischarge));
  PutValue("txOverland", NumberText(data.overland), UnitOf(ormel(), kDischarge));
  PutValue("txEndStream", data.end_stream ? "Yes" : "No");
  for (const char* name : {"txInflow", "txOverland", "txEndStream"}) Show(name, data.by_head && data.routed);
  // The bed of a string that has none.
  const bool bed = data.by_head && !data.farfield;
  for (const char* name : {"txResistance", "txWidth", "txDepth", "txLocation"}) Show(name, bed);
}

void LSInfo::PutResults(const Data& data) {
  auto table = std::make_shared<Table>(std::vector<TableColumn>{
      {.name = "Segment", .caption = "Segment"},
      {.name = "X1", .caption = WithUnit(ormel(), "From X", kMapLength), .mask = "0.00"},
      {.name = "Y1", .caption = WithUnit(ormel(), "From Y", kMapLength), .mask = "0.00"},
      {.name = "Length", .caption = WithUnit(ormel(), "Length", kMapLength), .mask = "0.00"},
      {.name = "SpecifiedHead", .caption = WithUnit(ormel(), "Specified head", kLength), .mask = "0.000"},
      {.name = "CalculatedHead",
       .caption = WithUnit(ormel(), "Calculated head", kLength),
       .mask = "0.000",
       .special = -9999.0,
       .special_text = "dry"},
      {.name = "Error", .caption = WithUnit(ormel(), "Error", kLength), .mask = "0.0000E+00"},
      {.name = "Discharge", .caption = WithUnit(ormel(), "Discharge", kDischarge), .mask = "0.000"},
      {.name = "DischargePerLength",
       .caption = WithUnit(ormel(), "Per length", kSinkDensity),
       .mask = "0.0000E+00"}});
  RowReader rows(ormel().db(),
                 "select SpecifiedHead,CalculatedHead,Discharge,Error,X1,Y1,X2,Y2 from LSResults where "
                 "VadoxLabel=?",
                 {""});
  const double convert = BasemapConvert(ormel()), whole = data.Length();
  double passed = 0.0, total = 0.0, largest_error = 0.0;
  int missing = 0;
  for (std::size_t i = 1; i < data.vertices.size(); ++i) {
    const VertexRow &from = data.vertices[i - 1], &to = data.vertices[i];
    const double length = Distance(from, to);
    SegmentResult result;
    rows.Restart({SegmentLabel("LS_", data.pid, to.seq)});
    const bool found = rows.Next() && IsSegment(ormel(), from.at, to.at, {rows.Double(4), rows.Double(5)},
                                                {rows.Double(6), rows.Double(7)});
    if (!data.by_head) {
      // As the deck has it: the density at the segment's middle.
      const double share = whole > 0.0 ? (passed + 0.5 * length) / whole : 0.0;
      result.discharge = (data.start + (data.end - data.start) * share) * length * convert;
    } else if (found) {
      result = {rows.Double(0), rows.Double(1), rows.Double(2), rows.Double(3)};
      largest_error = std::max(largest_error, std::abs(*result.error));
    } else {
      ++missing;
    }
    passed += length;
    total += result.discharge.value_or(0.0);
    const double across = length * convert;
    table->AddRow({i, from.at.x, from.at.y, length, ValueOf(result.specified_head),
                   ValueOf(result.calculated_head), ValueOf(result.error), ValueOf(result.discharge),
                   result.discharge && across > 0.0 ? Value(*result.discharge / across) : Value()});
  }
  PutValue("txDischarge", FormatMask(total, "#,###,##0.000"), UnitOf(ormel(), kDischarge));
  PutValue("txPerLength", whole > 0.0 ? FormatMask(total / (whole * convert), "0.0000E+00") : "",
           UnitOf(ormel(), kSinkDensity));
  PutValue("txError", FormatMask(largest_error, "0.0000E+00"), UnitOf(ormel(), kLength));
  Show("txError", data.by_head);
  PutValue("txMissing", std::to_string(missing) + (missing == 1 ? " segment" : " segments"));
  Show("txMissing", missing > 0);
  Mutable("grid").table = std::move(table);
}

void LSInfo::init(Pid pid) {
  Data data;
  Crash = !Read(pid, data);
  if (Crash) return;
  PutProperties(data);
  ShowResults(true);
  PutResults(data);
}

void LSInfo::NoSolutionInit(Pid pid) {
  Data data;
  Crash = !Read(pid, data);
  if (Crash) return;
  PutProperties(data);
  ShowResults(false);
}

}  // namespace ormel
