#include "view/capture_zones.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "core/command.h"
#include "core/ormel.h"
#include "document/vertex_chains.h"
#include "store/database.h"
#include "view/styles.h"
#include "view/symbols.h"
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
std::vector<MapPoint> GroundOf(const Zones& zones, const CaptureZone& zone) {
  std::vector<MapPoint> ground = zone.ring;
  for (const CaptureZone& hole : zones.all) {
    if (!hole.IsHole() || hole.tag.well != zone.tag.well || hole.tag.years != zone.tag.years) continue;
    ground.push_back(zone.ring.front());
    ground.insert(ground.end(), hole.ring.begin(), hole.ring.end());
    ground.push_back(hole.ring.front());
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

std::size_t Zones::TimeOf(const CaptureZone& zone) const {
  return PlaceOf(times, zone.tag.years);
}

std::size_t Zones::WellOf(const CaptureZone& zone) const {
  return PlaceOf(wells, zone.tag.well);
}

Zones ReadZones(Ormel& ormel) {
  Zones zones;
  for (CaptureZone& zone : ReadCaptureZones(ormel.db())) {
    if (zone.ring.empty()) continue;
    if (zone.tag.outlined()) {
      zones.times.push_back(zone.tag.years);
      zones.wells.push_back(zone.tag.well);
    }
    zones.all.push_back(std::move(zone));
  }
  SortUnique(zones.times);
  SortUnique(zones.wells);
  const auto rank = [](const CaptureZone& zone) { return zone.tag.outlined() ? -zone.tag.years : 1.0; };
  std::stable_sort(zones.all.begin(), zones.all.end(),
                   [&](const CaptureZone& a, const CaptureZone& b) { return rank(a) < rank(b); });
  return zones;
}

void ModelDrawAllCapzones(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ModelDrawAllCapzones");
  const Zones zones = ReadZones(canvas.ormel);
  for (const CaptureZone& zone : zones.all)
    if (zone.tag.outlined() && zone.closed && !zone.IsHole())
      canvas.vg.vgGDIArea(GroundOf(zones, zone), ZoneAreaColor(zones.WellOf(zone)), kZoneOpacity);
  // Lines above all areas.
  for (const CaptureZone& zone : zones.all) {
    if (zone.tag.outlined())
      canvas.vg.vgGDIFineLine(Ring(zone.ring, zone.closed), kZoneLineWidth,
                              ZoneLineColor(zones.TimeOf(zone)));
    else
      DrawPlain(canvas, zone.ring, zone.closed, DrawMode::kNormal, false);
  }
}

void ModelDrawCapzone(const MapCanvas& canvas, Pid pid, DrawMode mode, bool vertices) {
  const Named named(canvas.ormel, "ModelDrawCapzone");
  const bool closed = canvas.ormel.db().Scalar("select Closed from Polygons where PID=?", {pid}).AsBool();
  const std::vector<MapPoint> points = ChainOf(canvas.ormel.db(), pid);
  if (!points.empty()) DrawPlain(canvas, points, closed, mode, vertices);
}

}  // namespace ormel
