#include "analysis/zones.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "analysis/cells.h"
#include "core/ormel.h"
#include "core/table.h"
#include "document/capture_zones.h"
#include "model/geometry.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr double kCentric = 0.1, kEccentric = 1.0;  ///< bounds of the dimensionless time of travel

}  // namespace

ZoneShape ShapeOf(const std::vector<MapPoint>& ring) {
  ZoneShape shape;
  shape.vertices = ring.size();
  if (ring.empty()) return shape;
  const MapPoint first = ring.front();
  shape.extents = {first.x, first.x, first.y, first.y};
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const MapPoint &a = ring[i], &b = ring[(i + 1) % ring.size()];
    shape.perimeter += std::hypot(b.x - a.x, b.y - a.y);
    shape.extents.x_min = std::min(shape.extents.x_min, a.x);
    shape.extents.x_max = std::max(shape.extents.x_max, a.x);
    shape.extents.y_min = std::min(shape.extents.y_min, a.y);
    shape.extents.y_max = std::max(shape.extents.y_max, a.y);
  }
  shape.area = std::abs(PolygonArea(ring, first));
  return shape;
}

std::shared_ptr<Table> ZonesTable(Ormel& ormel) {
  std::vector<TableColumn> columns;
  for (const char* name : {"Label", "Well", "Years", "Area", "Perimeter", "Width", "Height", "West", "East",
                           "South", "North", "Vertices"})
    columns.push_back({.name = name, .caption = name});
  auto table = std::make_shared<Table>(std::move(columns));
  for (const CaptureZone& zone : ReadCaptureZones(ormel.db())) {
    const ZoneShape s = ShapeOf(zone.ring);
    const Extents& e = s.extents;
    std::vector<Value> values{zone.label,
                              When(zone.tag.outlined(), zone.tag.well),
                              When(zone.tag.outlined(), zone.tag.years),
                              s.area,
                              s.perimeter,
                              e.x_max - e.x_min,
                              e.y_max - e.y_min,
                              e.x_min,
                              e.x_max,
                              e.y_min,
                              e.y_max,
                              s.vertices};
    table->AddRow(std::move(values));
  }
  return table;
}

std::shared_ptr<Table> ZoneChecksTable(Ormel& ormel) {
  std::vector<TableColumn> columns;
  for (const char* name : {"Label", "Well", "Years", "Part", "Tolerance", "Balance", "Pores", "Recharge",
                           "Surface", "Edge", "LeftOut", "Shared", "Ends", "Made"})
    columns.push_back({.name = name, .caption = name});
  auto table = std::make_shared<Table>(std::move(columns));
  for (const CaptureZone& zone : ReadCaptureZones(ormel.db())) {
    if (!zone.making) continue;
    const ZoneMaking& m = *zone.making;
    const auto percent = [&m](double volume) { return When(m.pumped != 0.0, 100.0 * volume / m.pumped); };
    table->AddRow({zone.label, m.well, m.years, m.part, 100.0 * m.tolerance, 100.0 * m.balance,
                   percent(m.pores), percent(m.recharge), percent(m.surface), percent(m.edge),
                   percent(m.left_out), m.shared, m.ends, m.made});
  }
  return table;
}

std::shared_ptr<Table> AreasTable(Ormel& ormel) {
  std::vector<TableColumn> columns;
  for (const char* name : {"Well", "Method", "Radius", "Area", "Shift", "TimeOfTravel", "Porosity",
                           "Thickness", "AmbientFlow", "Direction", "T", "Discharge", "Point1X", "Point1Y",
                           "Point2X", "Point2Y", "FirstHead", "WHPAData", "Traced"})
    columns.push_back({.name = name, .caption = name});
  auto table = std::make_shared<Table>(std::move(columns));
  // Paths are traced for the longest time of the settings, whatever an area was asked for.
  const Value traced = ormel.db().Scalar("select TRACEMaxTime from Model");
  RowReader rows(ormel.db(),
                 "select a.Well,a.Type,a.Radius,a.TimeOfTravel,a.Porosity,a.Thickness,a.AmbientFlow,"
                 "a.Direction,a.T,a.Point1X,a.Point1Y,a.Point2X,a.Point2Y,a.FirstHead,a.WHPAData,"
                 "(select Head from Wells where Wells.Label=a.Well limit 1) from WHPAs a");
  while (rows.Next()) {
    const auto type = rows.Long(1);
    const double radius = rows.Double(2), t = rows.Double(8), flow = rows.Double(6);
    const Value discharge = rows.Get(15);
    const char* method = "several wells, traced";
    if (type == 1) method = "arbitrary radius";
    const bool calculated = type == 2;
    const bool eccentric = calculated && t > kCentric && t < kEccentric;
    if (calculated) method = t <= kCentric ? "centric circle" : eccentric ? "eccentric circle" : "traced";
    Value shift;
    if (eccentric && flow != 0.0)
      shift = (0.652 * t + 0.00278) * discharge.AsDouble() / (2.0 * std::numbers::pi * flow);
    // Only what the method reads is an input of it.
    const auto input = [&rows, type](int column) { return When(type != 1, rows.Get(column)); };
    const bool boundary = rows.Double(9) != 0.0 || rows.Double(10) != 0.0;
    const auto of_boundary = [&rows, boundary](int column) { return When(boundary, rows.Get(column)); };
    table->AddRow({rows.Get(0), method, When(radius > 0.0, radius),
                   When(radius > 0.0, std::numbers::pi * radius * radius), shift, input(3), input(4),
                   input(5), input(6), input(7), When(calculated, rows.Get(8)), When(type != 1, discharge),
                   of_boundary(9), of_boundary(10), of_boundary(11), of_boundary(12), of_boundary(13),
                   of_boundary(14), When(type == 3 || (calculated && t > 1.0), traced)});
  }
  return table;
}

}  // namespace ormel
