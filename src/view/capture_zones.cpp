#include "view/capture_zones.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "core/command.h"
#include "core/ormel.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"
#include "view/styles.h"
#include "view/symbols.h"
#include "view/vertex_chains.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

template <class T>
std::size_t PlaceOf(const std::vector<T>& list, const T& item) {
  return static_cast<std::size_t>(std::lower_bound(list.begin(), list.end(), item) - list.begin());
}

template <class T>
void SortUnique(std::vector<T>& list) {
  std::sort(list.begin(), list.end());
  list.erase(std::unique(list.begin(), list.end()), list.end());
}

std::vector<MapPoint> Ring(std::span<const MapPoint> points, bool closed) {
  std::vector<MapPoint> ring(points.begin(), points.end());
  if (closed && ring.size() > 2) ring.push_back(ring.front());
  return ring;
}

/// The zone's ring and those of its holes as one, joined by bridges of no width.
std::vector<MapPoint> GroundOf(const Zones& zones, const Zone& zone) {
  std::vector<MapPoint> ground = zone.points;
  for (const Zone& hole : zones.all) {
    if (!hole.hole || hole.tag.well != zone.tag.well || hole.tag.years != zone.tag.years) continue;
    ground.push_back(zone.points.front());
    ground.insert(ground.end(), hole.points.begin(), hole.points.end());
    ground.push_back(hole.points.front());
  }
  return ground;
}

/// The line of a zone that was drawn by hand, or that is selected, erased or under way.
void DrawPlain(const MapCanvas& canvas, std::span<const MapPoint> points, bool closed, DrawMode mode,
               bool vertices) {
  const Style& style = StyleOf(StyleId::kCapzone);
  const Color color = ColorOfMode(mode, style.color);
  canvas.vg.vgGDIPolyline(Ring(points, closed), PenStyle::kSolid, style.width, color);
  if (mode == DrawMode::kSelected) MarkVertices(canvas, points, StyleOf(StyleId::kVertex).color, 1.0);
  if (mode == DrawMode::kErase) MarkVertices(canvas, points, color, 1.0);
  if (vertices) MarkVertices(canvas, points, color, 1.5);
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

std::size_t Zones::TimeOf(const Zone& zone) const {
  return PlaceOf(times, zone.tag.years);
}

std::size_t Zones::WellOf(const Zone& zone) const {
  return PlaceOf(wells, zone.tag.well);
}

Zones ReadZones(Ormel& ormel) {
  Zones zones;
  const VertexChains chains(ormel.db(), "Capzones");
  const bool known = ormel.db().HasTable("Zones");
  RowReader rows(ormel.db(),
                 known
                     ? "select Capzones.PID,Polygons.Closed,Capzones.Label,Zones.Well,Zones.Years,Zones.Part "
                       "from Capzones left join Polygons on Polygons.PID=Capzones.PID "
                       "left join Zones on Zones.PID=Capzones.PID"
                     : "select Capzones.PID,Polygons.Closed,Capzones.Label,null,null,null from Capzones "
                       "left join Polygons on Polygons.PID=Capzones.PID");
  while (rows.Next()) {
    const auto points = chains.Of(rows.Long(0));
    if (points.empty()) continue;
    ZoneTag tag =
        rows.IsNull(3) ? ZoneTagOf(rows.Text(2)) : ZoneTag{std::string(rows.Text(3)), rows.Double(4)};
    Zone zone{rows.Long(0), rows.Bool(1), std::move(tag), {points.begin(), points.end()}, rows.Long(5) > 0};
    if (zone.tag.outlined()) {
      zones.times.push_back(zone.tag.years);
      zones.wells.push_back(zone.tag.well);
    }
    zones.all.push_back(std::move(zone));
  }
  SortUnique(zones.times);
  SortUnique(zones.wells);
  const auto rank = [](const Zone& zone) { return zone.tag.outlined() ? -zone.tag.years : 1.0; };
  std::stable_sort(zones.all.begin(), zones.all.end(),
                   [&](const Zone& a, const Zone& b) { return rank(a) < rank(b); });
  return zones;
}

void ModelDrawAllCapzones(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ModelDrawAllCapzones");
  const Zones zones = ReadZones(canvas.ormel);
  for (const Zone& zone : zones.all)
    if (zone.tag.outlined() && zone.closed && !zone.hole)
      canvas.vg.vgGDIArea(GroundOf(zones, zone), ZoneAreaColor(zones.WellOf(zone)), kZoneOpacity);
  // Lines above all areas.
  for (const Zone& zone : zones.all) {
    if (zone.tag.outlined())
      canvas.vg.vgGDIFineLine(Ring(zone.points, zone.closed), kZoneLineWidth,
                              ZoneLineColor(zones.TimeOf(zone)));
    else
      DrawPlain(canvas, zone.points, zone.closed, DrawMode::kNormal, false);
  }
}

void ModelDrawCapzone(const MapCanvas& canvas, Pid pid, DrawMode mode, bool vertices) {
  const Named named(canvas.ormel, "ModelDrawCapzone");
  const bool closed = canvas.ormel.db().Scalar("select Closed from Polygons where PID=?", {pid}).AsBool();
  const std::vector<MapPoint> points = ChainOf(canvas.ormel.db(), pid);
  if (!points.empty()) DrawPlain(canvas, points, closed, mode, vertices);
}

}  // namespace ormel
