#include "view/whpa_drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "solver/extents.h"
#include "store/bulk.h"
#include "store/database.h"
#include "view/styles.h"
#include "view/symbols.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

constexpr double kPi = 3.14159265358979;

/// Bounds of the dimensionless time of travel between the three ways to draw a calculated area.
constexpr double kCentric = 0.1, kEccentric = 1.0;

enum WhpaType : std::int64_t { kArbitrary = 1, kCalculated = 2, kMultiple = 3 };

struct WhpaRow {
  std::int64_t type;
  double radius, t, ambient_flow, direction, discharge;
  MapPoint well;
  std::string label;
};

void DrawCircle(const MapCanvas& canvas, MapPoint centre, double radius) {
  const Style& style = StyleOf(StyleId::kWhpaCircle);
  canvas.vg.vgGDICircle(centre, radius, PenStyle::kSolid, style.width, style.color);
}

/// False for an area whose capture zone is made of pathlines.
bool HasCircle(const Ormel& ormel, const WhpaRow& row, WhpaCircle& circle) {
  circle = {row.label, row.type, row.well, row.radius};
  if (row.type == kArbitrary || row.t <= kCentric) return true;
  if (row.t >= kEccentric) return false;
  const double shift = ComputeToMapLength(ormel, WhpaShift(row.t, row.discharge, row.ambient_flow));
  const double angle = row.direction * kPi / 180.0;
  // Upstream of the well: the direction is where the water flows to.
  circle.centre = {row.well.x - shift * std::cos(angle), row.well.y - shift * std::sin(angle)};
  return true;
}

void AddCirclesOfType(Ormel& ormel, WhpaType type, std::vector<WhpaCircle>& circles) {
  RowReader rows(
      ormel.db(),
      "select "
      "WHPAs.Radius,WHPAs.T,WHPAs.AmbientFlow,WHPAs.Direction,Wells.Head,Vertices.X,Vertices.Y,Wells.Label "
      "from WHPAs,Wells,Vertices where WHPAs.Type=? and Wells.Label=WHPAs.Well and "
      "Vertices.VID=Wells.VID",
      {static_cast<std::int64_t>(type)});
  WhpaCircle circle;
  while (rows.Next()) {
    const WhpaRow row{type,
                      rows.Double(0),
                      rows.Double(1),
                      rows.Double(2),
                      rows.Double(3),
                      rows.Double(4),
                      {rows.Double(5), rows.Double(6)},
                      std::string(rows.Text(7))};
    if (HasCircle(ormel, row, circle)) circles.push_back(circle);
  }
}

/// Half the length of a line that crosses window and model wherever its middle lies.
double ReachAcross(const Ormel& ormel, const MapRect& view, MapPoint middle) {
  const Extents& model = ormel.window.model;
  const double of_model = std::hypot(model.x_max - model.x_min, model.y_max - model.y_min);
  const double away = std::hypot((view.x1 + view.x2) * 0.5 - middle.x, (view.y1 + view.y2) * 0.5 - middle.y);
  return std::max(of_model, std::hypot(view.Width(), view.Height()) + away);
}

}  // namespace

double WhpaShift(double t, double well_discharge, double ambient_flow) {
  const double length =
      well_discharge > 0.0 && ambient_flow != 0.0 ? well_discharge / (2.0 * ambient_flow * kPi) : 0.0;
  return (0.652 * t + 0.00278) * length;
}

std::vector<WhpaCircle> WhpaCircles(Ormel& ormel) {
  std::vector<WhpaCircle> circles;
  for (const WhpaType type : {kArbitrary, kCalculated, kMultiple}) AddCirclesOfType(ormel, type, circles);
  return circles;
}

void ElemDrawAllWHPAs(const MapCanvas& canvas) {
  if (!canvas.ormel.layers.On(Layer::kWhpas)) return;
  const Named named(canvas.ormel, "ElemDrawWHPAs");
  for (const WhpaCircle& circle : WhpaCircles(canvas.ormel)) DrawCircle(canvas, circle.centre, circle.radius);
}

void ElemDrawAllStreamBoundarys(const MapCanvas& canvas) {
  if (!canvas.ormel.layers.On(Layer::kWhpas)) return;
  const Named named(canvas.ormel, "ElemDrawAllStreamBoundaries");
  const Style& style = StyleOf(StyleId::kStreamBoundary);
  std::set<std::array<double, 4>> drawn;  // wells of one area share their boundary
  RowReader rows(canvas.ormel.db(),
                 "select Point1X,Point1Y,Point2X,Point2Y from WHPAs "
                 "where Point1X<>0 and Point1Y<>0 and Point2X<>0 and Point2Y<>0");
  while (rows.Next()) {
    const MapPoint a{rows.Double(0), rows.Double(1)}, b{rows.Double(2), rows.Double(3)};
    if (!drawn.insert({a.x, a.y, b.x, b.y}).second) continue;
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    if (length > 0.0) {
      const double u = (b.x - a.x) / length, v = (b.y - a.y) / length;
      const MapPoint middle{(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
      const double reach = ReachAcross(canvas.ormel, canvas.vg.World(), middle);
      canvas.vg.vgGDILine({middle.x + reach * u, middle.y + reach * v},
                          {middle.x - reach * u, middle.y - reach * v}, PenStyle::kSolid, style.width,
                          style.color);
    }
    for (const MapPoint& point : {a, b})
      canvas.vg.vgGDISymbol(point, VgSymbol::kDiamond, style.color, style.color);
  }
}

void ShowWHPAs(Ormel& ormel) {
  RunCommand(ormel, "ShowWHPAs", [&] {
    const bool on = !ormel.layers.On(Layer::kWhpas);
    ormel.layers.Switch(Layer::kWhpas, on);
    const bool traced =
        on && ormel.db().Scalar("select count(*) from WHPAs where T>1 or Type=3").AsLong() > 0;
    if (traced) ModelCheckExtents(ormel, false, false);
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  });
}

}  // namespace ormel
