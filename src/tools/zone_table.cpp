#include "tools/zone_table.h"

#include <array>
#include <cmath>
#include <vector>

#include "core/ormel.h"
#include "core/table.h"
#include "core/table_file.h"
#include "core/user_interface.h"
#include "document/capture_zones.h"
#include "model/geometry.h"
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

constexpr double kSquareMetresPerHectare = 1e4, kSquareFeetPerAcre = 43560.0;

}  // namespace

std::shared_ptr<Table> ReadZoneTable(Database& db, bool metres) {
  const double unit = metres ? kSquareMetresPerHectare : kSquareFeetPerAcre;
  auto table = std::make_shared<Table>(Columns(metres));
  for (const CaptureZone& zone : ReadCaptureZones(db)) {
    const double area = zone.ring.empty() ? 0.0 : PolygonArea(zone.ring, zone.ring.front());
    if (!zone.making) {
      table->AddRow({zone.label, Value(), Value(), area / unit, Value(), Value(), Value(), Value(), Value(),
                     Value(), "drawn by hand"});
      continue;
    }
    const ZoneMaking& m = *zone.making;
    const auto percent = [&m](double volume) { return m.pumped > 0.0 ? 100.0 * volume / m.pumped : 0.0; };
    const double stored = std::fabs(m.area);
    const bool changed = std::fabs(area - stored) > 1e-6 * stored;
    const char* state = changed          ? "changed by hand"
                        : m.shared > 0.0 ? "checked; part of it beneath streams"
                                         : "checked";
    table->AddRow({zone.label, m.well, m.years, area / unit, percent(m.pores), percent(m.recharge),
                   percent(m.surface), percent(m.edge), 100.0 * m.balance, 100.0 * m.tolerance, state, m.made,
                   m.ends});
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
