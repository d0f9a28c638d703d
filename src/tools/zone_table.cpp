#include "tools/zone_table.h"

#include <array>
#include <cmath>
#include <map>
#include <vector>

#include "core/ormel.h"
#include "core/table.h"
#include "core/table_file.h"
#include "core/user_interface.h"
#include "model/geometry.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr std::array kControls{
    ControlSpec{.name = "lblExplanation",
                .kind = ControlKind::kNote,
                .caption =
                    "Shares tell where the water came from that the well takes in the time: it stood in the "
                    "aquifer, or recharge, streams or the ground beyond an edge brought it.  The balance "
                    "is what these miss of it; a zone that misses more than 1 percent is not stored."},
    ControlSpec{.name = "grid", .kind = ControlKind::kTable},
    kCopyButton,
    kExportButton,
    kPrintButton,
    ControlSpec{
        .name = "Close", .kind = ControlKind::kButton, .caption = "Close", .role = ButtonRole::kReject}};

std::vector<TableColumn> Columns(bool metres) {
  const std::string area = metres ? "Area\nha" : "Area\nacres";
  return {{.name = "Zone", .caption = "Zone", .number = false},
          {.name = "Well", .caption = "Well", .number = false},
          {.name = "Years", .caption = "Time\nyears"},
          {.name = "Area", .caption = area, .mask = "#,##0.000"},
          {.name = "Aquifer", .caption = "Aquifer\n%", .mask = "0.0"},
          {.name = "Recharge", .caption = "Recharge\n%", .mask = "0.0"},
          {.name = "Streams", .caption = "Streams\n%", .mask = "0.0"},
          {.name = "Edge", .caption = "Edge\n%", .mask = "0.0"},
          {.name = "Balance", .caption = "Balance\n%", .mask = "0.000"},
          {.name = "Tolerance", .caption = "Tolerance\n%", .mask = "0.0##"},
          {.name = "State", .caption = "State", .number = false},
          {.name = "Made", .caption = "Made", .number = false},
          {.name = "Ends", .caption = "Ends of paths", .number = false}};
}

/// Areas of all capture zone polygons, in square map units.
std::map<std::int64_t, double> Areas(Database& db) {
  std::map<std::int64_t, double> areas;
  RowReader rows(db,
                 "select Vertices.PID,X,Y from Vertices inner join Capzones on Capzones.PID=Vertices.PID "
                 "order by Vertices.PID,Seq");
  std::map<std::int64_t, std::vector<MapPoint>> rings;
  while (rows.Next()) rings[rows.Long(0)].push_back({rows.Double(1), rows.Double(2)});
  for (const auto& [pid, ring] : rings) areas[pid] = PolygonArea(ring, ring.front());
  return areas;
}

constexpr double kSquareMetresPerHectare = 1e4, kSquareFeetPerAcre = 43560.0;

}  // namespace

std::shared_ptr<Table> ReadZoneTable(Database& db, bool metres) {
  const double unit = metres ? kSquareMetresPerHectare : kSquareFeetPerAcre;
  auto table = std::make_shared<Table>(Columns(metres));
  const std::map<std::int64_t, double> areas = Areas(db);
  const bool known = db.HasTable("Zones");
  RowReader rows(
      db, known ? "select Capzones.Label,Capzones.PID,Zones.Well,Years,Area,Pumped,Pores,Recharge,"
                  "Surface,Edge,Balance,Tolerance,Ends,Made,Shared from Capzones left join Zones on "
                  "Zones.PID=Capzones.PID order by Zones.Well is null,Zones.Well,Zones.Years,Capzones.Label"
                : "select Label,PID,null,null,null,null,null,null,null,null,null,null,null,null,null "
                  "from Capzones order by Label");
  while (rows.Next()) {
    const auto found = areas.find(rows.Long(1));
    const double area = found == areas.end() ? 0.0 : found->second;
    if (rows.IsNull(2)) {
      table->AddRow({rows.Get(0), Value(), Value(), area / unit, Value(), Value(), Value(), Value(), Value(),
                     Value(), "drawn by hand"});
      continue;
    }
    const double pumped = rows.Double(5);
    const auto percent = [&](int column) {
      return pumped > 0.0 ? 100.0 * rows.Double(column) / pumped : 0.0;
    };
    const double stored = std::fabs(rows.Double(4));  // holes are stored with a negative one
    const bool changed = std::fabs(area - stored) > 1e-6 * stored;
    const char* state = changed                 ? "changed by hand"
                        : rows.Double(14) > 0.0 ? "checked; part of it beneath streams"
                                                : "checked";
    table->AddRow({rows.Get(0), rows.Get(2), rows.Double(3), area / unit, percent(6), percent(7), percent(8),
                   percent(9), 100.0 * rows.Double(10), 100.0 * rows.Double(11), state, rows.Get(13),
                   rows.Get(12)});
  }
  return table;
}

ZoneTable::ZoneTable(Ormel& ormel)
    : Form(ormel), table_(ReadZoneTable(ormel.db(), ormel.project.BasemapMeters)) {
  InitControls();
  Mutable("grid").table = table_;
  Offer("Copy", table_->Rows() > 0);
  Offer("Export", table_->Rows() > 0);
  Offer("Print", table_->Rows() > 0 && ormel.ports.publisher != nullptr);
}

std::span<const ControlSpec> ZoneTable::Controls() const {
  return kControls;
}

void ZoneTable::Pressed(std::string_view name) {
  if (name == "Copy") return CopyTable("grid");
  if (name == "Export") return SaveTable(ormel(), *table_, "Capture zones");
  if (name == "Print") return PrintTable(ormel(), *table_, "Capture zones");
  if (name == "Close") Hide();
}

void ViewZoneTable(Ormel& ormel) {
  ZoneTable form(ormel);
  ormel.ui().ShowForm(form);
}

}  // namespace ormel
