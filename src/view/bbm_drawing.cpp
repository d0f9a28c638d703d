// Draws a BBM map by its themes and the level of detail of the view.
#include <algorithm>
#include <cmath>
#include <limits>

#include "basemaps/bbm_look.h"
#include "basemaps/catalogue.h"
#include "core/ormel.h"
#include "view/base_map_drawing.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

constexpr double kLabelSpacing = 0.15;  ///< of the view's diagonal, between labels of the same text
constexpr std::size_t kShortestLabel = 3;
constexpr int kLabelSize = 8;
constexpr double kSymbolSize = 1.0;

class BbmDrawing {
 public:
  BbmDrawing(const MapCanvas& canvas, const BBMap& map)
      : vg_(canvas.vg),
        map_(map),
        reader_(map),
        view_(ExtentsOf(vg_.World())),
        level_{view_.x_max - view_.x_min, canvas.ormel.project.ComputeMeters},
        spacing_(kLabelSpacing * std::hypot(view_.x_max - view_.x_min, view_.y_max - view_.y_min)),
        pen_(BbmFirstPen(map.header())) {}

  void Draw() {
    if (map_.header().operations()) return DrawOperations();
    for (const BbmRecord& record : map_.areas()) DrawArea(record);
    for (const BbmRecord& record : map_.lines())
      if (Seen(record)) DrawLine(record);
    const bool twice = map_.header().data_type == kBbmPlain;
    for (int time = 0; time < (twice ? 2 : 1); ++time)
      for (const BbmRecord& record : map_.points())
        if (Seen(record)) DrawPoint(record);
  }

 private:
  bool Seen(const BbmRecord& record) const {
    const auto [x1, x2] = std::minmax(record.x1, record.x2);
    const auto [y1, y2] = std::minmax(record.y1, record.y2);
    const MapPoint low = map_.Place({x1, y1}), high = map_.Place({x2, y2});
    return Meets({low.x, high.x, low.y, high.y}, view_);
  }

  void Symbol(MapPoint at) {
    vg_.vgGDISymbol(at, VgSymbol::kUprightCross, kBbmSymbolColor, kBbmSymbolColor, kSymbolSize);
  }

  void DrawArea(const BbmRecord& record) {
    if (record.count < 1) return;
    reader_.ReadArea(record, object_);
    if (!IsWater(object_)) return;
    const BbmObject area = object_;
    const auto rings = reader_.Rings(area);
    const std::vector<std::span<const MapPoint>> spans(rings.begin(), rings.end());
    vg_.vgGDIAreas(spans, pen_, 1.0);
  }

  void DrawLine(const BbmRecord& record) {
    reader_.ReadLine(record, object_);
    const BbmLook look = LookOfLine(map_.header(), object_, level_, pen_);
    if (!look.visible || object_.points.empty()) return;
    points_.clear();
    for (const BbmObject::At& at : object_.points) points_.push_back(map_.Place(at));
    if (look.symbols)
      for (const MapPoint& at : points_) Symbol(at);
    else
      vg_.vgGDIPolyline(points_, look.dotted ? PenStyle::kDot : PenStyle::kSolid, look.width, look.color);
    PlaceLabel(look);
  }

  void PlaceLabel(const BbmLook& look) {
    if (look.label.size() < kShortestLabel) return;
    const MapPoint at = points_.front();
    double nearest = 1e30;
    for (const Placed& other : placed_)
      if (other.text == look.label)
        nearest = std::min(nearest, std::hypot(at.x - other.at.x, at.y - other.at.y));
    if (nearest < spacing_) return;
    vg_.vgGDItext(
        look.label, at,
        {.font = "Verdana", .size = kLabelSize, .bold = true, .color = QBColor(0), .angle = look.angle});
    placed_.push_back({look.label, at});
  }

  void DrawPoint(const BbmRecord& record) {
    reader_.ReadPoint(record, object_);
    if (IsDrawnPoint(map_.header(), object_)) Symbol(map_.Place(object_.points.front()));
  }

  void DrawOperations() {
    BBMap::Reader::Steps steps;
    steps.line = [this](std::span<const MapPoint> points, int color, double width) {
      vg_.vgGDIPolyline(points, PenStyle::kSolid, BbmStreamWidth(map_.header(), width),
                        BbmStreamColor(color));
    };
    steps.polygon = [this](std::span<const MapPoint> points, int color) {
      vg_.vgGDIPolygon(points, PenStyle::kSolid, 1.0, BbmStreamColor(color), BbmStreamColor(color));
    };
    reader_.Walk(steps);
  }

  struct Placed {
    std::string text;
    MapPoint at;
  };

  VgGdi& vg_;
  const BBMap& map_;
  BBMap::Reader reader_;
  Extents view_;
  BbmLevel level_;
  double spacing_;
  Color pen_;
  BbmObject object_;
  std::vector<MapPoint> points_;
  std::vector<Placed> placed_;
};

}  // namespace

void DrawBbm(const MapCanvas& canvas, const BBMap& map) {
  BbmDrawing(canvas, map).Draw();
}

}  // namespace ormel
