// The information panel of an inhomogeneity.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "core/ormel.h"
#include "core/quantities.h"
#include "core/table.h"
#include "model/geometry.h"
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
    ControlSpec{.name = "txVertices", .kind = kLabel, .caption = "Vertices", .tab = kProperties},
    ControlSpec{.name = "txArea", .kind = kLabel, .caption = "Area", .tab = kProperties},
    ControlSpec{.name = "txPerimeter", .kind = kLabel, .caption = "Perimeter", .tab = kProperties},
    ControlSpec{.name = "txHydCond", .kind = kLabel, .caption = "Hydraulic Conductivity", .tab = kProperties},
    ControlSpec{.name = "txBase", .kind = kLabel, .caption = "Bottom Elevation", .tab = kProperties},
    ControlSpec{.name = "txRecharge", .kind = kLabel, .caption = "Added Recharge", .tab = kProperties},
    ControlSpec{.name = "txPorosity", .kind = kLabel, .caption = "Porosity", .tab = kProperties},
    ControlSpec{.name = "txAverageHead", .kind = kLabel, .caption = "Average Head", .tab = kProperties},
    ControlSpec{.name = "txJump", .kind = kLabel, .caption = "Mean Jump of Potential", .tab = kResults},
    ControlSpec{.name = "txDeltaHead", .kind = kLabel, .caption = "Largest Jump of Head", .tab = kResults},
    ControlSpec{.name = "txMissing", .kind = kLabel, .caption = "Without Results", .tab = kResults},
    ControlSpec{.name = "note",
                .kind = kNote,
                .caption =
                    "The potential jumps where conductivity or base change; the head must not: its jump "
                    "is the error of the solution along the edge.",
                .tab = kResults},
    ControlSpec{.name = "grid", .kind = kTable, .caption = "Edge", .tab = kResults},
    ControlSpec{.name = "Close", .kind = kButton, .caption = "Close", .role = ButtonRole::kReject}};

/// A property that counts only while its switch is set.
struct Property {
  const char* control;
  const char* field;
  const char* change;
  Quantity quantity;
};
constexpr std::array kChanges{Property{"txHydCond", "HydCond", "ChangeK", kRate},
                              Property{"txBase", "BottomElevation", "ChangeB", kLength},
                              Property{"txPorosity", "Porosity", "ChangeP", kNone},
                              Property{"txAverageHead", "AverageHead", "ChangeA", kLength}};

double Perimeter(const std::vector<MapPoint>& ring) {
  double length = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const MapPoint &a = ring[i], &b = ring[(i + 1) % ring.size()];
    length += std::hypot(b.x - a.x, b.y - a.y);
  }
  return length;
}

}  // namespace

INInfo::INInfo(Ormel& ormel) : InfoPanel(ormel) {
  InitControls();
}

std::span<const ControlSpec> INInfo::Controls() const {
  return kControls;
}

bool INInfo::PutProperties(Pid pid) {
  RowReader row(ormel().db(), "select * from Inhomogeneities where PID=?", {pid});
  if (!row.Next()) return false;
  const std::vector<MapPoint> ring = PointsOf(ormel(), pid);
  if (ring.empty()) return false;
  PutValue("txLabel", std::string(row.Text(row.Column("Label"))));
  PutValue("txVertices", std::to_string(ring.size()));
  PutValue("txArea", FormatMask(PolygonArea(ring, ring.front()), "#,###,##0.0"), UnitOf(ormel(), kMapArea));
  PutValue("txPerimeter", FormatMask(Perimeter(ring), "#,###,##0.00"), UnitOf(ormel(), kMapLength));
  PutValue("txRecharge", NumberText(row.Double(row.Column("Recharge"))), UnitOf(ormel(), kRate));
  for (const Property& property : kChanges) {
    if (row.Bool(row.Column(property.change)))
      PutValue(property.control, NumberText(row.Double(row.Column(property.field))),
               UnitOf(ormel(), property.quantity));
    else
      PutValue(property.control, "as around it");
  }
  return true;
}

void INInfo::PutResults(Pid pid) {
  auto table = std::make_shared<Table>(
      std::vector<TableColumn>{{.name = "Vertex", .caption = "Vertex"},
                               {.name = "X", .caption = WithUnit(ormel(), "X", kMapLength), .mask = "0.00"},
                               {.name = "Y", .caption = WithUnit(ormel(), "Y", kMapLength), .mask = "0.00"},
                               {.name = "StrPotJumpNode",
                                .caption = WithUnit(ormel(), "Jump at vertex", kDischarge),
                                .mask = "0.0000E+00"},
                               {.name = "ParabStrPotJump",
                                .caption = WithUnit(ormel(), "Parabolic jump", kDischarge),
                                .mask = "0.0000E+00"},
                               {.name = "DeltaPNode",
                                .caption = WithUnit(ormel(), "Head jump at vertex", kLength),
                                .mask = "0.0000E+00"},
                               {.name = "DeltaPCntr",
                                .caption = WithUnit(ormel(), "Head jump at centre", kLength),
                                .mask = "0.0000E+00"}});
  RowReader rows(
      ormel().db(),
      "select StrPotJumpNode,ParabStrPotJump,DeltaPNode,DeltaPCntr,AvgPotJump,X1,Y1 from INResults where "
      "VadoxLabel=?",
      {""});
  double mean_jump = 0.0, largest = 0.0;
  int missing = 0;
  std::size_t number = 0;
  for (const VertexRow& vertex : VerticesOf(ormel(), pid)) {
    std::vector<Value> cells{++number, vertex.at.x, vertex.at.y};
    rows.Restart({SegmentLabel("IN_", pid, vertex.seq)});
    const auto place = [&rows] { return MapPoint{rows.Double(5), rows.Double(6)}; };
    if (rows.Next() && IsSegment(ormel(), vertex.at, vertex.at, place(), place())) {
      for (int i = 0; i < 4; ++i) cells.emplace_back(rows.Double(i));
      largest = std::max({largest, std::abs(rows.Double(2)), std::abs(rows.Double(3))});
      mean_jump = rows.Double(4);
    } else {
      ++missing;
    }
    table->AddRow(std::move(cells));
  }
  PutValue("txJump", FormatMask(mean_jump, "0.0000E+00"), UnitOf(ormel(), kDischarge));
  PutValue("txDeltaHead", FormatMask(largest, "0.0000E+00"), UnitOf(ormel(), kLength));
  PutValue("txMissing", std::to_string(missing) + (missing == 1 ? " vertex" : " vertices"));
  Show("txMissing", missing > 0);
  Mutable("grid").table = std::move(table);
}

void INInfo::init(Pid pid) {
  Crash = !PutProperties(pid);
  if (Crash) return;
  ShowResults(true);
  PutResults(pid);
}

void INInfo::NoSolutionInit(Pid pid) {
  Crash = !PutProperties(pid);
  if (!Crash) ShowResults(false);
}

}  // namespace ormel
