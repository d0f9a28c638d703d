#include "whpa/zone_store.h"

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/settings.h"
#include "model/geometry.h"
#include "model/vertices.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/masks.h"
#include "text/numbers.h"
#include "text/strings.h"
#include "whpa/outline_command.h"

namespace ormel {
namespace {

constexpr std::size_t kLabelLimit = 32;
constexpr std::size_t kEndsLimit = 255;

std::string EndsText(const WellOutlines& well) {
  std::string text;
  for (const auto& [reason, count] : well.ends)
    text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + reason;
  return std::string(TextLeft(text, kEndsLimit));
}

std::string MadeText(const Ormel& ormel) {
  const ClockTime now = ormel.clock().Now();
  const auto two = [](int number) { return FormatMask(number, "00"); };
  return FormatMask(now.year, "0000") + "-" + two(now.month) + "-" + two(now.day) + " " + two(now.hour) +
         ":" + two(now.minute);
}

void DeleteZone(Ormel& ormel, const std::string& label) {
  std::vector<Pid> old;
  {
    RowReader rows(ormel.db(), "select PID from Capzones where Label=?", {label});
    while (rows.Next()) old.push_back(rows.Long(0));
  }
  for (const Pid pid : old) {
    DeletePolygonElement(ormel, "Capzones", pid);
    ormel.db().Execute("delete from Zones where PID=?", {pid});
  }
}

/// Holes of an earlier outline of the same name.
void DeleteHoles(Ormel& ormel, const std::string& name, double years) {
  for (std::size_t part = 1;; ++part) {
    const std::string label = ZoneLabel(name, years, part);
    if (ormel.db().Scalar("select count(*) from Capzones where Label=?", {label}).AsLong() == 0) return;
    DeleteZone(ormel, label);
  }
}

}  // namespace

std::string ZoneLabel(const std::string& name, double years, std::size_t part) {
  std::string suffix = " " + NumberText(years) + (years == 1.0 ? " year" : " years");
  if (part > 0) suffix += " hole " + std::to_string(part);
  const std::size_t room = kLabelLimit > suffix.size() ? kLabelLimit - suffix.size() : 0;
  return std::string(TextLeft(name, room)) + suffix;
}

void StoreZone(Ormel& ormel, const ZoneOwner& owner, const WellOutlines& well, const ZoneOutline& zone,
               double tolerance) {
  Database& db = ormel.db();
  schema::EnsureTable(db, "Zones");
  const double years = zone.time / kDaysPerYear;
  DeleteHoles(ormel, owner.zone_name, years);
  for (std::size_t part = 0; part < zone.rings.size(); ++part) {
    const std::string label = ZoneLabel(owner.zone_name, years, part);
    DeleteZone(ormel, label);
    std::vector<MapPoint> points;
    for (const ModelPoint& point : zone.rings[part]) points.push_back(MToW(ormel, point));
    const Pid pid = AddPolygonWithVertices(ormel, true, points);
    db.Execute("insert into Capzones (Label,PID) values (?,?)", {label, pid});
    BulkInsert rows(db, "Zones",
                    {"PID", "Well", "Part", "Years", "Area", "Pumped", "Pores", "Recharge", "Surface", "Edge",
                     "LeftOut", "Shared", "Balance", "Tolerance", "Ends", "Made"});
    const auto number = static_cast<std::int64_t>(part);
    rows.Row(pid, owner.label, number, years, SignedArea<MapPoint>(points, points.front()), zone.pumped,
             zone.pores, zone.recharge, zone.surface, zone.edge, zone.left_out, zone.shared, zone.balance,
             tolerance, EndsText(well), MadeText(ormel));
  }
}

}  // namespace ormel
