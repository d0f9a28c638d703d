#include "document/capture_zones.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

#include "core/ormel.h"
#include "document/elements.h"
#include "document/vertex_chains.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/numbers.h"

namespace ormel {
namespace {

/// How zones were made; projects of earlier versions have no such table.
constexpr const char* kMakings = "Zones";

/// The columns behind the zone's own three.
ZoneMaking MakingOf(const RowReader& row) {
  ZoneMaking making;
  making.well = row.Text(3);
  making.part = row.Long(4);
  int column = 5;
  for (double* value :
       {&making.years, &making.area, &making.pumped, &making.pores, &making.recharge, &making.surface,
        &making.edge, &making.left_out, &making.shared, &making.balance, &making.tolerance})
    *value = row.Double(column++);
  making.ends = row.Text(column++);
  making.made = row.Text(column);
  return making;
}

std::set<std::string, std::less<>> WellLabels(Database& db) {
  std::set<std::string, std::less<>> labels;
  RowReader rows(db, "select Label from Wells");
  while (rows.Next()) labels.emplace(rows.Text(0));
  return labels;
}

RowReader ZoneRows(Database& db) {
  constexpr const char* kZones =
      "select c.PID,p.Closed,c.Label,z.Well,z.Part,z.Years,z.Area,z.Pumped,z.Pores,z.Recharge,z.Surface,"
      "z.Edge,z.LeftOut,z.Shared,z.Balance,z.Tolerance,z.Ends,z.Made from Capzones c left join Polygons p on "
      "p.PID=c.PID left join Zones z on z.PID=c.PID";
  constexpr const char* kWithoutMakings =
      "select c.PID,p.Closed,c.Label,null from Capzones c left join Polygons p on p.PID=c.PID";
  return {db, db.HasTable(kMakings) ? kZones : kWithoutMakings};
}

}  // namespace

ZoneTag ZoneTagOf(std::string_view label) {
  for (const std::string_view unit : {" years", " year"}) {
    if (!label.ends_with(unit)) continue;
    const std::string_view rest = label.substr(0, label.size() - unit.size());
    const std::size_t gap = rest.rfind(' ');
    if (gap == std::string_view::npos || gap == 0) return {};
    const std::string_view number = rest.substr(gap + 1);
    const double years = IsNumeric(number) ? Val(number) : 0.0;
    if (!(years > 0.0) || !std::isfinite(years)) return {};
    return {std::string(rest.substr(0, gap)), years};
  }
  return {};
}

std::vector<CaptureZone> ReadCaptureZones(Database& db) {
  const VertexChains chains(db, "Capzones");
  const auto wells = WellLabels(db);
  std::vector<CaptureZone> zones;
  RowReader rows = ZoneRows(db);
  while (rows.Next()) {
    CaptureZone zone;
    zone.pid = rows.Long(0);
    zone.closed = rows.Bool(1);
    zone.label = rows.Text(2);
    const auto points = chains.Of(zone.pid);
    zone.ring.assign(points.begin(), points.end());
    if (!rows.IsNull(3)) {
      zone.making = MakingOf(rows);
      zone.tag = {zone.making->well, zone.making->years};
    } else if (ZoneTag tag = ZoneTagOf(zone.label); wells.contains(tag.well)) {
      zone.tag = std::move(tag);
    }
    zones.push_back(std::move(zone));
  }
  const auto rank = [](const CaptureZone& zone) {
    return std::tuple(!zone.tag.outlined(), std::string_view(zone.tag.well), zone.tag.years,
                      std::string_view(zone.label));
  };
  std::stable_sort(zones.begin(), zones.end(),
                   [&rank](const CaptureZone& a, const CaptureZone& b) { return rank(a) < rank(b); });
  return zones;
}

void AddCaptureZone(Database& db, Pid pid, const std::string& label, const ZoneMaking& making) {
  schema::EnsureTable(db, kMakings);
  db.Execute("insert into Capzones (Label,PID) values (?,?)", {label, pid});
  BulkInsert rows(db, kMakings,
                  {"PID", "Well", "Part", "Years", "Area", "Pumped", "Pores", "Recharge", "Surface", "Edge",
                   "LeftOut", "Shared", "Balance", "Tolerance", "Ends", "Made"});
  rows.Row(pid, making.well, making.part, making.years, making.area, making.pumped, making.pores,
           making.recharge, making.surface, making.edge, making.left_out, making.shared, making.balance,
           making.tolerance, making.ends, making.made);
}

bool RemoveCaptureZones(Ormel& ormel, const std::string& label) {
  std::vector<Pid> old;
  {
    RowReader rows(ormel.db(), "select PID from Capzones where Label=?", {label});
    while (rows.Next()) old.push_back(rows.Long(0));
  }
  for (const Pid pid : old) {
    RemoveElement(ormel, {Element::kCapzone, pid});
    if (ormel.db().HasTable(kMakings)) ormel.db().Execute("delete from Zones where PID=?", {pid});
  }
  return !old.empty();
}

}  // namespace ormel
