#include "view/contours.h"

#include <cmath>
#include <span>

#include "core/command.h"
#include "core/ormel.h"
#include "solver/result_files.h"
#include "store/database.h"
#include "text/masks.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

constexpr double kPi = 3.14159265358979;

void DrawLabel(const MapCanvas& canvas, const Extents& box, std::span<const MapPoint> points,
               const std::string& text, Color color) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    const MapPoint a = points[i - 1], b = points[i];
    const MapPoint middle{(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
    const bool inside =
        middle.x > box.x_min && middle.x < box.x_max && middle.y > box.y_min && middle.y < box.y_max;
    if (!inside) continue;
    canvas.vg.vgGDItext(text, middle,
                        {.font = "Arial", .size = 10, .color = color, .angle = ContourLabelAngle(a, b)});
    return;
  }
}

void DrawContourSet(const MapCanvas& canvas, const ContourSet& set, Color color) {
  const Extents box = ContourLabelBox(canvas.vg.World());
  const NumberMask mask("###0.0");
  for (const ContourSet::Line& line : set.lines) {
    const std::span<const MapPoint> points(set.points.data() + line.first, line.count);
    if (points.size() < 2) continue;  // nothing to see, and no place for a label
    DrawLabel(canvas, box, points, mask.Format(line.level), color);
    canvas.vg.vgGDIPolyline(points, PenStyle::kSolid, 1.0, color);
  }
}

}  // namespace

Extents ContourLabelBox(const MapRect& window) {
  const double width = window.Width(), height = window.Height();
  return {window.x1 + 0.04 * width, window.x2 - 0.04 * width, window.y2 + 0.04 * height,
          window.y1 - 0.1 * height};
}

double ContourLabelAngle(MapPoint from, MapPoint to) {
  const double dx = to.x - from.x, dy = to.y - from.y;
  double angle = 0.0;
  if (dx == 0.0)
    angle = dy < 0.0 ? -90.0 : dy > 0.0 ? 90.0 : 0.0;
  else
    angle = std::atan(dy / dx) * 180.0 / kPi;
  return angle < 0.0 ? angle + 360.0 : angle;
}

void ModelDrawContours(const MapCanvas& canvas, ResultFiles& files) {
  Ormel& ormel = canvas.ormel;
  const Named named(ormel, "ModelDrawContours");
  const bool asked = ormel.menus.Checked("layermenu", kLayerContours) && ormel.solution.ContoursValid &&
                     ormel.db().Scalar("select CONTOURShow from Model").AsBool();
  if (asked) {
    const auto set = files.Contours(ormel, ResultFileName(ormel, ormel.project.OrmelBaseName, ".CTR"));
    if (set) DrawContourSet(canvas, *set, QBColor(1));
  }
  if (!ormel.menus.Checked("ShowWHPAs")) return;
  for (const std::string& stem : WhpaStems(ormel)) {
    const auto set = files.Contours(ormel, ResultFileName(ormel, stem, ".CTR"));
    if (set) DrawContourSet(canvas, *set, Rgb(255, 0, 0));
  }
}

}  // namespace ormel
