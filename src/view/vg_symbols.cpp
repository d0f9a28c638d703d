// The symbols as a table of shapes.  Positions are in units of the symbol's size, x to the right and y
// upward.
#include <array>
#include <cmath>
#include <span>

#include "view/vg_gdi.h"

namespace ormel {
namespace {

struct UnitPoint {
  double x, y;
};

enum class Part {
  kArea,        ///< polygon, outlined and filled
  kColourArea,  ///< polygon, filled with the outline's colour
  kLine,
  kTurnedLine,  ///< line turned by the symbol's angle
  kRing,        ///< circle of radius 1, not filled
  kDisc,        ///< circle of radius 1, filled
};

struct Shape {
  Part part;
  std::span<const UnitPoint> points;
};

struct SymbolRow {
  double size;  ///< of a 10-point letter
  bool scaled;
  std::span<const Shape> shapes;
};

constexpr double kSin45 = 0.70710678;
constexpr UnitPoint kDiamond[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
constexpr UnitPoint kClosedDiamond[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 0}};
constexpr UnitPoint kDownStroke[] = {{-1, 1}, {1, -1}};
constexpr UnitPoint kUpStroke[] = {{-1, -1}, {1, 1}};
constexpr UnitPoint kAcross[] = {{-1, 0}, {1, 0}};
constexpr UnitPoint kUpright[] = {{0, -1}, {0, 1}};
constexpr UnitPoint kUpperHalf[] = {{1, 0}, {kSin45, kSin45}, {0, 1}, {-kSin45, kSin45}, {-1, 0}};
constexpr UnitPoint kLowerHalf[] = {{-1, 0}, {-kSin45, -kSin45}, {0, -1}, {kSin45, -kSin45}, {1, 0}};
constexpr UnitPoint kShaft[] = {{0, 0}, {4, 0}};
constexpr UnitPoint kBarbs[] = {{3, 0.6}, {4, 0}, {3, -0.6}};
constexpr UnitPoint kUpperDiamond[] = {{0, 0}, {-0.5, 0.5}, {0, 1}, {0.5, 0.5}, {0, 0}};

constexpr Shape kShapes0[] = {{Part::kArea, kDiamond}};
constexpr Shape kShapes1[] = {{Part::kLine, kClosedDiamond}};
constexpr Shape kShapes2[] = {{Part::kRing, {}}, {Part::kLine, kDownStroke}, {Part::kLine, kUpStroke}};
constexpr Shape kShapes3[] = {{Part::kRing, {}}, {Part::kLine, kAcross}, {Part::kLine, kUpright}};
constexpr Shape kShapes4[] = {{Part::kDisc, {}}};
constexpr Shape kShapes5[] = {{Part::kLine, kDownStroke}, {Part::kLine, kUpStroke}};
constexpr Shape kShapes6[] = {{Part::kLine, kAcross}, {Part::kLine, kUpright}};
constexpr Shape kShapes7[] = {{Part::kArea, kUpperHalf},
                              {Part::kLine, kLowerHalf},
                              {Part::kTurnedLine, kShaft},
                              {Part::kTurnedLine, kBarbs}};
constexpr Shape kShapes8[] = {{Part::kRing, {}}};
constexpr Shape kShapes9[] = {{Part::kArea, kDiamond}, {Part::kColourArea, kUpperDiamond}};
constexpr Shape kShapes10[] = {{Part::kArea, kDiamond}, {Part::kLine, kUpright}};

constexpr std::array<SymbolRow, kVgSymbolCount> kSymbols{{
    {0.3, true, kShapes0},
    {0.3, false, kShapes1},
    {0.4, false, kShapes2},
    {0.4, false, kShapes3},
    {0.15, false, kShapes4},
    {0.4, false, kShapes5},
    {0.4, false, kShapes6},
    {0.5, false, kShapes7},
    {0.2, false, kShapes8},
    {0.6, false, kShapes9},
    {0.3, true, kShapes10},
}};

}  // namespace

void VgGdi::vgGDISymbol(MapPoint at, VgSymbol symbol, Color color, Color fill, double scale,
                        double pen_width) {
  if (!Ready()) return;
  const SymbolRow& row = kSymbols[static_cast<std::size_t>(symbol)];
  const double size = row.size * point_unit_ * (row.scaled ? scale : 1.0);
  const Spot centre = Locate(at);
  const double reach = size * 5.0 + 2.0;
  const bool seen = centre.x + reach >= view_.left && centre.x - reach <= view_.right &&
                    centre.y + reach >= view_.top && centre.y - reach <= view_.bottom;
  if (!seen) return;

  const DevicePoint middle{static_cast<int>(std::lround(centre.x)), static_cast<int>(std::lround(centre.y))};
  const Pen pen{PenStyle::kSolid, pen_width, color};
  const double angle = scale * 3.1415927 / 180.0;
  for (const Shape& shape : row.shapes) {
    const bool turned = shape.part == Part::kTurnedLine;
    const double c = turned ? std::cos(angle) : 1.0, s = turned ? std::sin(angle) : 0.0;
    line_.clear();
    for (const UnitPoint& p : shape.points)
      line_.push_back({middle.x + static_cast<int>(std::lround(size * (p.x * c - p.y * s))),
                       middle.y - static_cast<int>(std::lround(size * (p.x * s + p.y * c)))});
    const int radius = static_cast<int>(std::lround(size));
    switch (shape.part) {
      case Part::kArea:
        target_->Polygon(line_, pen, fill);
        break;
      case Part::kColourArea:
        target_->Polygon(line_, pen, color);
        break;
      case Part::kLine:
      case Part::kTurnedLine:
        target_->Polyline(line_, pen);
        break;
      case Part::kRing:
        target_->Circle(middle, radius, pen, std::nullopt);
        break;
      case Part::kDisc:
        target_->Circle(middle, radius, {PenStyle::kNone, pen_width, color}, fill);  // ink only inside
        break;
    }
  }
}

}  // namespace ormel
