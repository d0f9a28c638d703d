#include "view/base_map_drawing.h"

#include <algorithm>
#include <cmath>

#include "basemaps/bbm_groups.h"
#include "basemaps/cad_color.h"
#include "basemaps/catalogue.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "geo/geo_error.h"
#include "view/label_placer.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

constexpr double kFillOpacity = 0.35;  ///< of a polygon in a fixed colour: what lies beneath stays readable
constexpr Color kNoCadColor = Rgb(255, 0, 0);
constexpr int kLabelSize = 8;

/// Labels of a vector map, apart from one another.
class MapLabels {
 public:
  MapLabels(VgGdi& vg, VgText how) : vg_(vg), how_(how) {}
  void Put(const std::string& text, MapPoint at) {
    if (!text.empty() && InView(vg_, at)) PlaceText(vg_, &placer_, text, at, how_);
  }

 private:
  VgGdi& vg_;
  VgText how_;
  LabelPlacer placer_;
};

class VectorDrawing {
 public:
  VectorDrawing(const MapCanvas& canvas, const VectorMap& map, const BaseMapRow& row, bool cad)
      : vg_(canvas.vg),
        map_(map),
        row_(row),
        cad_(cad),
        view_(ExtentsOf(vg_.World())),
        sheet_(map.At(vg_.vgGDIPixelSize(), view_)),
        labels_(
            vg_,
            {.font = cad ? "Times" : "Arial", .size = kLabelSize, .alignment = cad ? 0 : 1, .halo = !cad}) {}

  void Draw() {
    for (const VectorMap::Role role :
         {VectorMap::Role::kRing, VectorMap::Role::kLine, VectorMap::Role::kPoint})
      for (std::size_t i = 0; i < sheet_.parts.size(); ++i)
        if (sheet_.parts[i].role == role && Meets(sheet_.parts[i].box, view_)) DrawPart(i);
    for (const VectorMap::Part& part : sheet_.parts)
      if (Meets(part.box, view_)) DrawLabel(part);
  }

 private:
  Color ColorOf(const VectorMap::Part& part) const {
    const auto index = map_.ColorIndex(part);
    if (cad_) return index ? CADColorConvert(*index) : kNoCadColor;
    if (row_.ByField()) return CADColorConvert(index.value_or(0));
    return row_.color;
  }

  void DrawPart(std::size_t place) {
    const VectorMap::Part& part = sheet_.parts[place];
    const auto points = sheet_.Of(part);
    const Color color = ColorOf(part);
    if (part.role == VectorMap::Role::kPoint) {
      if (!part.text) vg_.vgGDISymbol(points.front(), VgSymbol::kDot, color, color);
    } else if (part.role == VectorMap::Role::kLine) {
      vg_.vgGDIPolyline(points, PenStyle::kSolid, 1.0, color);
    } else {
      if (filled_ != part.feature) Fill(place, color);
      Outline(points, row_.ByField() && !cad_ ? Rgb(0, 0, 0) : color);
    }
  }

  /// The rings of a feature together, from the one at `place` on: its holes stay open.
  void Fill(std::size_t place, Color color) {
    rings_.clear();
    const std::uint32_t feature = sheet_.parts[place].feature;
    filled_ = feature;
    for (; place < sheet_.parts.size() && sheet_.parts[place].feature == feature &&
           sheet_.parts[place].role == VectorMap::Role::kRing;
         ++place)
      if (Meets(sheet_.parts[place].box, view_)) rings_.push_back(sheet_.Of(sheet_.parts[place]));
    vg_.vgGDIAreas(rings_, color, row_.ByField() ? 1.0 : kFillOpacity);
  }

  void Outline(std::span<const MapPoint> points, Color color) {
    ring_.assign(points.begin(), points.end());
    ring_.push_back(points.front());
    vg_.vgGDIPolyline(ring_, PenStyle::kSolid, 1.0, color);
  }

  void DrawLabel(const VectorMap::Part& part) {
    const std::string& text = map_.Label(part);
    if (text.empty()) return;
    const auto points = sheet_.Of(part);
    if (part.role == VectorMap::Role::kRing)
      labels_.Put(text, {(part.box.x_min + part.box.x_max) / 2.0, (part.box.y_min + part.box.y_max) / 2.0});
    else
      labels_.Put(text, points[points.size() / 2]);
  }

  VgGdi& vg_;
  const VectorMap& map_;
  const BaseMapRow& row_;
  bool cad_;
  Extents view_;
  const VectorMap::Sheet& sheet_;
  MapLabels labels_;
  std::vector<std::span<const MapPoint>> rings_;
  std::vector<MapPoint> ring_;
  std::optional<std::uint32_t> filled_;  ///< feature
};

void DrawOutlines(const MapCanvas& canvas) {
  for (const BbmOutline& outline : BbmOutlines(canvas.ormel)) {
    const Extents& b = outline.box;
    const MapPoint ring[] = {
        {b.x_min, b.y_min}, {b.x_max, b.y_min}, {b.x_max, b.y_max}, {b.x_min, b.y_max}, {b.x_min, b.y_min}};
    canvas.vg.vgGDIPolyline(ring, PenStyle::kSolid, outline.in_group ? 3.0 : 1.0,
                            outline.in_group ? kSelectedColor : QBColor(8));
  }
}

/// A map that fails is told of once, and then left out until it is loaded again.
void DrawOne(const MapCanvas& canvas, BaseMap& map, const BaseMapRow& row) {
  try {
    if (map.raster) return DrawRasterMap(canvas, *map.raster);
    if (map.vector) return DrawVectorMap(canvas, *map.vector, row, map.kind == BaseMapKind::kCad);
    if (map.bbm) DrawBbm(canvas, *map.bbm);
  } catch (const BbmError& e) {
    map.fault = e.what();
    const bool stream = map.bbm && map.bbm->header().operations();
    Inform(canvas.ormel, stream ? BbmError::kStreamTitle : BbmError::kTitle, e.what(), Icon::kStop);
  } catch (const GeoError& e) {
    map.fault = e.reason();
    Inform(canvas.ormel, "Base maps", e.what(), Icon::kWarning);
  }
}

}  // namespace

bool AnyBaseMaps(const Ormel& ormel) {
  // The memory of loaded maps is made on first use, so that asking is no change of the program's state.
  return ormel.project.ProjectOpen && !BaseMapsOf(const_cast<Ormel&>(ormel)).maps.empty();
}

void DrawBaseMaps(const MapCanvas& canvas) {
  const BaseMaps& all = BaseMapsOf(canvas.ormel);
  const std::vector<BaseMapRow> rows = ReadBaseMapRows(canvas.ormel);
  const auto draw = [&](auto is_kind) {
    for (const BaseMapRow& row : rows) {
      BaseMap* map = row.Show ? all.Find(row.MapName) : nullptr;
      if (map != nullptr && map->fault.empty() && is_kind(*map)) DrawOne(canvas, *map, row);
    }
  };
  draw([](const BaseMap& map) { return map.raster != nullptr; });
  draw([](const BaseMap& map) { return map.vector != nullptr; });
  draw([](const BaseMap& map) { return map.bbm != nullptr; });
  DrawOutlines(canvas);
}

void DrawVectorMap(const MapCanvas& canvas, const VectorMap& map, const BaseMapRow& row, bool cad) {
  VectorDrawing(canvas, map, row, cad).Draw();
}

void DrawRasterMap(const MapCanvas& canvas, RasterMap& map) {
  VgGdi& vg = canvas.vg;
  const auto part = map.Read(ExtentsOf(vg.World()), vg.vgGDIPixelSize());
  if (part) vg.vgGDIPicture(part->pixels, part->upper_left, part->upper_right, part->lower_left);
}

}  // namespace ormel
