#include "whpa/zone_store.h"

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/settings.h"
#include "document/capture_zones.h"
#include "model/geometry.h"
#include "model/vertices.h"
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

/// Holes of an earlier outline of the same name.
void DeleteHoles(Ormel& ormel, const std::string& name, double years) {
  for (std::size_t part = 1; RemoveCaptureZones(ormel, ZoneLabel(name, years, part)); ++part) {
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
  const double years = zone.time / kDaysPerYear;
  DeleteHoles(ormel, owner.zone_name, years);
  for (std::size_t part = 0; part < zone.rings.size(); ++part) {
    const std::string label = ZoneLabel(owner.zone_name, years, part);
    RemoveCaptureZones(ormel, label);
    std::vector<MapPoint> points;
    for (const ModelPoint& point : zone.rings[part]) points.push_back(MToW(ormel, point));
    AddCaptureZone(ormel.db(), AddPolygonWithVertices(ormel, true, points), label,
                   {.well = owner.label,
                    .part = static_cast<std::int64_t>(part),
                    .years = years,
                    .area = SignedArea<MapPoint>(points, points.front()),
                    .pumped = zone.pumped,
                    .pores = zone.pores,
                    .recharge = zone.recharge,
                    .surface = zone.surface,
                    .edge = zone.edge,
                    .left_out = zone.left_out,
                    .shared = zone.shared,
                    .balance = zone.balance,
                    .tolerance = tolerance,
                    .ends = EndsText(well),
                    .made = MadeText(ormel)});
  }
}

}  // namespace ormel
