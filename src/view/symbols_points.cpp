#include <algorithm>
#include <cmath>
#include <string>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/masks.h"
#include "view/label_placer.h"
#include "view/styles.h"
#include "view/symbols.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

/// Scaled symbols stay between a visible dot and a shape that does not hide its surroundings.
constexpr double kSmallestScale = 0.25, kLargestScale = 4.0;

double FullScale(const Ormel& ormel) {
  if (ormel.layers.On(Layer::kTestScale20)) return 20.0;
  if (ormel.layers.On(Layer::kTestScale10)) return 10.0;
  return 5.0;
}

std::string SignedDifference(double difference) {
  const std::string digits = FormatMask(difference, "###0.00");
  return difference > 0.0 ? "+" + digits : digits;
}

void DrawDifferenceText(const MapCanvas& canvas, MapPoint at, double difference, Color color) {
  const double pixel = canvas.vg.vgGDIPixelSize();
  const MapPoint beside{at.x + 0.5 * canvas.vg.PointUnit() * pixel, at.y};
  canvas.vg.vgGDItext(SignedDifference(difference), beside, {.font = "Arial", .size = 10, .color = color});
}

const Style& TestPointStyle(double difference) {
  return StyleOf(difference > 0.0 ? StyleId::kTestPointAbove : StyleId::kTestPointBelow);
}

void DrawPlainTestPoint(const MapCanvas& canvas, MapPoint at, double difference, DrawMode mode) {
  const Style& style = TestPointStyle(difference);
  const Color color = ColorOfMode(mode, style.color);
  canvas.vg.vgGDISymbol(at, style.symbol, color, color);
}

}  // namespace

void ElemDrawUniformFlow(const MapCanvas& canvas, DrawMode mode) {
  const Named named(canvas.ormel, "ElemDrawUniformFlow");
  RowReader rows(canvas.ormel.db(),
                 "select UNIFLOWCompute,UNIFLOWRefX,UNIFLOWRefY,UNIFLOWOrientation from Model");
  if (!rows.Next() || !rows.Bool(0)) return;
  Color color = StyleOf(StyleId::kUniformFlow).color;
  if (mode == DrawMode::kSelected) color = Rgb(255, 0, 0);
  if (mode == DrawMode::kErase) color = kMapBackground;
  canvas.vg.vgGDISymbol({rows.Double(1), rows.Double(2)}, VgSymbol::kArrow, color, color, rows.Double(3),
                        1.0);
}

void ElemDrawVertex(const MapCanvas& canvas, MapPoint at, DrawMode mode) {
  const Named named(canvas.ormel, "ElemDrawVertex");
  const Color color = ColorOfMode(mode, QBColor(12));
  canvas.vg.vgGDISymbol(at, VgSymbol::kDiamond, color, color);
}

void ModelDrawTestPoint(const MapCanvas& canvas, MapPoint at, std::string_view /*label*/, double /*obshead*/,
                        double difference, DrawMode mode) {
  const Named named(canvas.ormel, "ModelDrawTestPoint");
  const LayerSwitches& layers = canvas.ormel.layers;
  const bool as_text = layers.On(Layer::kTestText);
  const bool scaled = layers.On(Layer::kTestScaled);
  if (!as_text && !scaled) return DrawPlainTestPoint(canvas, at, difference, mode);

  const Color color = ColorOfMode(mode, TestPointStyle(difference).color);
  double scale = 1.0;
  if (scaled)
    scale = std::clamp(std::abs(difference) / FullScale(canvas.ormel), kSmallestScale, kLargestScale);
  canvas.vg.vgGDISymbol(at, VgSymbol::kDiamondWithLine, color, color, scale);
  if (as_text) DrawDifferenceText(canvas, at, difference, color);
}

void ModelDrawAllTestPoints(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ModelDrawAllTestPoints");
  if (!canvas.ormel.layers.On(Layer::kTestPoints)) return;
  if (!canvas.ormel.solution.ValidSolution) {
    RowReader rows(canvas.ormel.db(),
                   "select Vertices.X,Vertices.Y,TestPoints.VID from TestPoints,Vertices where "
                   "TestPoints.VID=Vertices.VID "
                   "order by TestPoints.VID");
    while (rows.Next())
      if (!canvas.IsLifted(Element::kTestPoint, rows.Long(2)))
        DrawPlainTestPoint(canvas, {rows.Double(0), rows.Double(1)}, 0.0, DrawMode::kNormal);
    return;
  }
  RowReader rows(canvas.ormel.db(), "select X,Y,Label,ObsHead,Difference from TPResults");
  while (rows.Next())
    ModelDrawTestPoint(canvas, {rows.Double(0), rows.Double(1)}, rows.Text(2), rows.Double(3), rows.Double(4),
                       DrawMode::kNormal);
}

void ModelDrawParticle(const MapCanvas& canvas, MapPoint at, DrawMode mode) {
  const Named named(canvas.ormel, "ModelDrawParticle");
  const Style& style = StyleOf(StyleId::kParticle);
  const Color color = ColorOfMode(mode, style.color);
  canvas.vg.vgGDISymbol(at, style.symbol, color, color);
}

void ModelDrawAllParticles(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ModelDrawAllParticles");
  RowReader rows(canvas.ormel.db(),
                 "select Vertices.X,Vertices.Y,Particles.VID from Particles,Vertices where "
                 "Particles.VID=Vertices.VID "
                 "order by Particles.VID");
  while (rows.Next())
    if (!canvas.IsLifted(Element::kParticle, rows.Long(2)))
      ModelDrawParticle(canvas, {rows.Double(0), rows.Double(1)}, DrawMode::kNormal);
}

void ModelDrawAllText(const MapCanvas& canvas, LabelClass wanted) {
  const Named named(canvas.ormel, "ModelDrawAllText");
  const bool users = wanted == LabelClass::kUser;
  const double width = canvas.vg.World().Width();
  const char* sql =
      "select X,Y,Text,FontName,FontSize,FontBold,FontItalic,LabelType,ScalerX,rowid from TextLabels";
  RowReader rows(canvas.ormel.db(), sql);
  while (rows.Next()) {
    if (canvas.IsLifted(Element::kTextLabel, rows.Long(9))) continue;
    const std::int64_t type = rows.Long(7);
    const LabelClass is = type == 0   ? LabelClass::kUser
                          : type == 1 ? LabelClass::kHydrography
                                      : LabelClass::kHypsography;
    if (is != wanted || (users && !(rows.Double(8) / 10.0 < width))) continue;
    const MapPoint at{rows.Double(0), rows.Double(1)};
    const std::string font(rows.Text(3));
    const VgText how{.font = font,
                     .size = static_cast<int>(rows.Long(4)),
                     .bold = rows.Bool(5),
                     .italic = rows.Bool(6),
                     .color = StyleOf(users ? StyleId::kTextLabel : StyleId::kMapLabel).color};
    // Where the user has put a label it stays; what the program places keeps away from it.
    if (canvas.labels != nullptr)
      if (const auto box = canvas.vg.TextBox(rows.Text(2), at, how)) canvas.labels->Reserve(*box);
    canvas.vg.vgGDItext(rows.Text(2), at, how);
  }
}

}  // namespace ormel
