#include <algorithm>
#include <string>
#include <unordered_map>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/masks.h"
#include "text/strings.h"
#include "view/label_placer.h"
#include "view/styles.h"
#include "view/symbols.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

/// A computed head below this says that the well has fallen dry [computation length].
constexpr double kDryHead = -1000.0;
constexpr std::string_view kMirrorPrefix = "Mirror_";

Color WellColor(DrawMode mode) {
  if (mode == DrawMode::kDryWell) return StyleOf(StyleId::kDryWell).color;
  if (mode == DrawMode::kImageWell) return StyleOf(StyleId::kImageWell).color;
  return ColorOfMode(mode, StyleOf(StyleId::kWell).color);
}

void DrawWellSymbol(const MapCanvas& canvas, MapPoint at, double setback, double radius, DrawMode mode) {
  const double to_map = 1.0 / BasemapConvert(canvas.ormel);
  const Color color = WellColor(mode);
  if (setback > 0.0) canvas.vg.vgGDICircle(at, setback * to_map, PenStyle::kSolid, 1.0, color);
  // As large on paper and on dense screens as on plain ones.
  const double smallest = kSmallestWell * canvas.vg.vgGDIPixelSize() * canvas.vg.target()->DpiX() / 96.0;
  canvas.vg.vgGDICircle(at, std::max(radius * to_map, smallest), PenStyle::kSolid, 1.0, color);
}

/// To the right and a little below; where that is taken to the left, above or below.  `placer` null: there in
/// any case.
void DrawWellLabel(const MapCanvas& canvas, MapPoint at, std::string_view label) {
  const MapRect window = canvas.vg.World();
  const double dx = 0.015 * window.Width(), dy = 0.005 * window.Height();
  const double line = 1.2 * canvas.vg.PointUnit() * canvas.vg.vgGDIPixelSize();
  struct Side {
    MapPoint place;
    int alignment;
  };
  const Side sides[] = {{{at.x + dx, at.y - dy}, 0},
                        {{at.x - dx, at.y - dy}, 2},
                        {{at.x + 0.5 * dx, at.y + 0.6 * line}, 0},
                        {{at.x + 0.5 * dx, at.y - 1.3 * line}, 0}};
  for (const Side& side : sides) {
    const VgText how{.font = "Verdana",
                     .size = 10,
                     .bold = true,
                     .color = StyleOf(StyleId::kWellLabel).color,
                     .alignment = side.alignment,
                     .halo = true};
    if (PlaceText(canvas.vg, canvas.labels, label, side.place, how)) return;
  }
}

bool LabelsShown(const MapCanvas& canvas, DrawMode mode) {
  return mode != DrawMode::kErase && canvas.ormel.layers.On(Layer::kWellLabels);
}

/// Deck labels of the wells that the last solve found dry.
class DryWells {
 public:
  explicit DryWells(Ormel& ormel) : mask_("000000") {
    if (!ormel.solution.ValidSolution) return;
    RowReader rows(ormel.db(), "select VadoxLabel,Head from WLResults");
    // The first row of a label counts, as a search for it would find that one.
    while (rows.Next()) dry_.try_emplace(std::string(rows.Text(0)), rows.Double(1) < kDryHead);
  }
  bool Holds(Vid vid) const {
    if (dry_.empty()) return false;
    const auto it = dry_.find("WL_" + mask_.Format(static_cast<double>(vid)));
    return it != dry_.end() && it->second;
  }

 private:
  NumberMask mask_;
  std::unordered_map<std::string, bool> dry_;
};

DrawMode ModeOfWell(const DryWells& dry, Vid vid, std::string_view label) {
  if (StartsWithNoCase(label, kMirrorPrefix)) return DrawMode::kImageWell;
  return dry.Holds(vid) ? DrawMode::kDryWell : DrawMode::kNormal;
}

}  // namespace

void ElemDrawAllWells(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ElemDrawAllWells");
  const DryWells dry(canvas.ormel);
  RowReader rows(canvas.ormel.db(),
                 "select Wells.VID,Vertices.X,Vertices.Y,Wells.Setback,Wells.Radius,Wells.Label "
                 "from Wells,Vertices where Wells.VID=Vertices.VID order by Wells.VID");
  while (rows.Next()) {
    if (canvas.IsLifted(Element::kWell, rows.Long(0))) continue;
    const MapPoint at{rows.Double(1), rows.Double(2)};
    DrawWellSymbol(canvas, at, rows.Double(3), rows.Double(4), ModeOfWell(dry, rows.Long(0), rows.Text(5)));
  }
}

void ElemDrawAllWellLabels(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ElemDrawAllWells");
  RowReader rows(canvas.ormel.db(),
                 "select Vertices.X,Vertices.Y,Wells.Label,Wells.VID from Wells,Vertices "
                 "where Wells.VID=Vertices.VID order by Wells.VID");
  while (rows.Next())
    if (!canvas.IsLifted(Element::kWell, rows.Long(3)))
      DrawWellLabel(canvas, {rows.Double(0), rows.Double(1)}, rows.Text(2));
}

void ReserveWells(const MapCanvas& canvas) {
  if (canvas.labels == nullptr) return;
  const int half = canvas.vg.PointUnit() / 2;
  RowReader rows(canvas.ormel.db(),
                 "select Vertices.X,Vertices.Y from Wells,Vertices where Wells.VID=Vertices.VID");
  while (rows.Next()) {
    if (!InView(canvas.vg, {rows.Double(0), rows.Double(1)})) continue;
    const DevicePoint at = canvas.vg.vgGDIWorldToDevice(rows.Double(0), rows.Double(1));
    canvas.labels->Reserve({at.x - half, at.y - half, at.x + half, at.y + half});
  }
}

void ElemDrawWell(const MapCanvas& canvas, MapPoint at, double setback, double radius, DrawMode mode) {
  const Named named(canvas.ormel, "ElemDrawWell");
  if (LabelsShown(canvas, mode)) {
    RowReader rows(canvas.ormel.db(),
                   "select Wells.Label from Vertices,Wells where Vertices.X=? and Vertices.Y=? and "
                   "Wells.VID=Vertices.VID",
                   {at.x, at.y});
    if (rows.Next()) DrawWellLabel(canvas, at, rows.Text(0));
  }
  DrawWellSymbol(canvas, at, setback, radius, mode);
}

}  // namespace ormel
