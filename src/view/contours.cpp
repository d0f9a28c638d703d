#include "view/contours.h"

#include <cmath>
#include <span>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "solver/result_files.h"
#include "store/database.h"
#include "text/masks.h"
#include "view/label_placer.h"
#include "view/outdated.h"
#include "view/styles.h"
#include "view/vg_gdi.h"
#include "view/wall_cells.h"

namespace ormel {
namespace {

constexpr double kPi = 3.14159265358979;

/// A contour label keeps clear of the end of its line by this [pixels].
constexpr double kLabelRoom = 12.0;

/// Where the middle of a segment in the box has room for the level; once a line.
void DrawLabel(const MapCanvas& canvas, const Extents& box, std::span<const MapPoint> points,
               const std::string& text, Color color) {
  const double room = kLabelRoom * canvas.vg.vgGDIPixelSize();
  double since = room;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const MapPoint a = points[i - 1], b = points[i];
    const MapPoint middle{(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
    const bool inside =
        middle.x > box.x_min && middle.x < box.x_max && middle.y > box.y_min && middle.y < box.y_max;
    since += std::hypot(b.x - a.x, b.y - a.y);
    if (!inside || since < room) continue;
    since = 0.0;
    const VgText how{
        .font = "Arial", .size = 10, .color = color, .angle = ContourLabelAngle(a, b), .halo = true};
    if (PlaceText(canvas.vg, canvas.labels, text, middle, how)) return;
  }
}

/// The pieces of a line that stay when it is broken at walls.
template <class Piece>
void EachPiece(std::span<const MapPoint> points, const WallCells& walls, Piece piece) {
  if (walls.empty()) return piece(points);
  std::size_t first = 0;
  // A scrap between two breaks cuts the corner of a cell beside the wall: it belongs to what was left out.
  const auto scrap = [&](std::size_t last) {
    const MapPoint a = points[first], b = points[last];
    return first > 0 && std::hypot(b.x - a.x, b.y - a.y) < 1.5 * walls.CellSize();
  };
  for (std::size_t i = 1; i < points.size(); ++i) {
    const MapPoint a = points[i - 1], b = points[i];
    if (!walls.Holds({(a.x + b.x) * 0.5, (a.y + b.y) * 0.5})) continue;
    if (i - 1 > first && !scrap(i - 1)) piece(points.subspan(first, i - first));
    first = i;
  }
  if (points.size() - first > 1) piece(points.subspan(first));
}

/// What is drawn of the contours: each set with its walls and its colour.
template <class Each>
void EachContourSet(Ormel& ormel, ResultFiles& files, Each each) {
  const bool asked = ormel.layers.On(Layer::kContours) && ormel.solution.ContoursValid &&
                     ormel.db().Scalar("select CONTOURShow from Model").AsBool();
  const auto of_file = [&](const std::string& stem, StyleId style) {
    const auto set = files.Contours(ormel, ResultFileName(ormel, stem, ".CTR"));
    if (set) each(*set, WallCells(ormel, stem), StyleOf(style));
  };
  if (asked) of_file(ormel.project.OrmelBaseName, StyleId::kContour);
  if (!ormel.layers.On(Layer::kWhpas)) return;
  for (const std::string& stem : WhpaStems(ormel)) of_file(stem, StyleId::kWhpaContour);
}

std::span<const MapPoint> PointsOf(const ContourSet& set, const ContourSet::Line& line) {
  return {set.points.data() + line.first, line.count};
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
  const Named named(canvas.ormel, "ModelDrawContours");
  EachContourSet(canvas.ormel, files, [&](const ContourSet& set, const WallCells& walls, const Style& style) {
    for (const ContourSet::Line& line : set.lines)
      EachPiece(PointsOf(set, line), walls, [&](std::span<const MapPoint> piece) {
        canvas.vg.vgGDIFineLine(piece, style.width, ResultColor(canvas.ormel, style.color));
      });
  });
}

void ModelDrawContourLabels(const MapCanvas& canvas, ResultFiles& files) {
  const Named named(canvas.ormel, "ModelDrawContours");
  const Extents box = ContourLabelBox(canvas.vg.World());
  const NumberMask mask("###0.0");
  EachContourSet(canvas.ormel, files, [&](const ContourSet& set, const WallCells& walls, const Style& style) {
    for (const ContourSet::Line& line : set.lines) {
      std::span<const MapPoint> longest;  // of the pieces between walls, this one names the line
      EachPiece(PointsOf(set, line), walls, [&](std::span<const MapPoint> piece) {
        if (piece.size() > longest.size()) longest = piece;
      });
      if (longest.size() > 1)
        DrawLabel(canvas, box, longest, mask.Format(line.level), ResultColor(canvas.ormel, style.color));
    }
  });
}

}  // namespace ormel
