#include "view/map_output.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "store/bulk.h"
#include "text/numbers.h"
#include "view/capture_zones.h"
#include "view/label_placer.h"
#include "view/map_legend.h"
#include "view/outdated.h"
#include "view/redraw.h"

namespace ormel {
namespace {

constexpr Color kInk = QBColor(0), kPaper = QBColor(15);
const Pen kFrame{PenStyle::kSolid, 1.0, kInk};

/// Draws what stands around the map; all lengths are fractions of the 10-point size.
class Furniture {
 public:
  Furniture(Ormel& ormel, DrawingDevice& device, VgGdi& vg, const DeviceRect& area)
      : ormel_(ormel), device_(device), vg_(vg), area_(area), unit_(std::max(1, vg.PointUnit())) {}

  void Title(const std::string& title, int top) {
    device_.BeginLayer("Title");
    device_.Text({(area_.left + area_.right) / 2, top + unit_ * 3 / 2}, title,
                 Style(14, true, TextAlign::kCentre));
  }

  void Frame() {
    device_.BeginLayer("Frame");
    Rectangle(area_);
  }

  /// The size of the legend's box [pixels].
  DevicePoint LegendSize(const std::vector<LegendEntry>& entries) const {
    int widest = 0;
    for (const LegendEntry& entry : entries)
      widest = std::max(widest, device_.TextWidth(entry.text, LegendStyle()));
    return {3 * unit_ + widest + 4 * Pad(), Row() * static_cast<int>(entries.size()) + 2 * Pad()};
  }

  /// The places where a legend of that size can stand without covering scale bar or north arrow, by the order
  /// of `LegendCorner`.
  std::vector<DeviceRect> LegendPlaces(DevicePoint size, bool scale_bar, bool north_arrow) const {
    const int pad = Pad(), left = area_.left + pad, right = area_.right - pad - size.x;
    const int top = area_.top + pad, bottom = area_.bottom - pad - size.y;
    const auto box = [&](int x, int y) { return DeviceRect{x, y, x + size.x, y + size.y}; };
    return {box(right, bottom), box(left, top), box(left, bottom - (scale_bar ? 4 * unit_ : 0)),
            box(right, top + (north_arrow ? 6 * unit_ : 0))};
  }

  void Legend(const std::vector<LegendEntry>& entries, const DeviceRect& box) {
    if (entries.empty()) return;
    device_.BeginLayer("Legend");
    FilledRectangle(box);
    const int sample = 3 * unit_;
    int y = box.top + Pad() + Row() / 2;
    for (const LegendEntry& entry : entries) {
      entry.sample(vg_, World({box.left + Pad(), y}), World({box.left + Pad() + sample, y}));
      device_.Text({box.left + 2 * Pad() + sample, y + unit_ / 3}, entry.text, LegendStyle());
      y += Row();
    }
  }

  /// What the scale bar and the north arrow cover.
  DeviceRect ScaleBarBox() const {
    return {area_.left + unit_, area_.bottom - 4 * unit_,
            area_.left + static_cast<int>(0.36 * (area_.right - area_.left)) + 4 * unit_, area_.bottom};
  }
  DeviceRect NorthArrowBox() const {
    return {area_.right - 3 * unit_, area_.top, area_.right, area_.top + 6 * unit_};
  }

  void ScaleBar() {
    device_.BeginLayer("Scale Bar");
    const double pixel = vg_.vgGDIPixelSize();
    if (!(pixel > 0.0)) return;
    const double length = RoundLength(0.3 * (area_.right - area_.left) * pixel);
    const int width = static_cast<int>(std::lround(length / pixel));
    const int left = area_.left + 2 * unit_, bottom = area_.bottom - unit_, thick = std::max(2, unit_ / 3);
    const TextStyle style = Style(9, false, TextAlign::kCentre);
    const std::string end = NumberText(length) + " " + MapLengthUnit(ormel_);
    const DeviceRect box{left - unit_, bottom - thick - 2 * unit_,
                         left + width + device_.TextWidth(end, style) / 2 + unit_ / 2, bottom + unit_ / 2};
    FilledRectangle(box);
    // Two halves, dark and light.
    Bar({left, bottom - thick, left + width / 2, bottom}, kInk);
    Bar({left + width / 2, bottom - thick, left + width, bottom}, kPaper);
    const int text = bottom - thick - unit_ / 3;
    device_.Text({left, text}, "0", style);
    device_.Text({left + width / 2, text}, NumberText(length / 2), style);
    device_.Text({left + width, text}, end, style);
  }

  void NorthArrow() {
    device_.BeginLayer("North Arrow");
    const int x = area_.right - 2 * unit_, top = area_.top + 2 * unit_, half = unit_ * 2 / 3;
    const DevicePoint west[] = {{x, top}, {x - half, top + 3 * unit_}, {x, top + 2 * unit_}};
    const DevicePoint east[] = {{x, top}, {x + half, top + 3 * unit_}, {x, top + 2 * unit_}};
    device_.Polygon(west, kFrame, kInk);
    device_.Polygon(east, kFrame, kPaper);
    device_.Text({x, top - unit_ / 4}, "N", Style(12, true, TextAlign::kCentre));
  }

 private:
  TextStyle LegendStyle() const { return Style(9, false, TextAlign::kLeft); }
  int Row() const { return unit_ * 3 / 2; }
  int Pad() const { return unit_ / 2; }
  TextStyle Style(int size, bool bold, TextAlign align) const {
    TextStyle style;
    style.height = size * unit_ / 10;
    style.bold = bold;
    style.align = align;
    style.color = kInk;
    return style;
  }
  MapPoint World(DevicePoint p) const {
    return {vg_.vgGDIDeviceToWorldX(p.x, false), vg_.vgGDIDeviceToWorldY(p.y, false)};
  }
  void Rectangle(const DeviceRect& r) {
    const DevicePoint ring[] = {
        {r.left, r.top}, {r.right, r.top}, {r.right, r.bottom}, {r.left, r.bottom}, {r.left, r.top}};
    device_.Polyline(ring, kFrame);
  }
  void Bar(const DeviceRect& r, Color fill) {
    const DevicePoint ring[] = {{r.left, r.top}, {r.right, r.top}, {r.right, r.bottom}, {r.left, r.bottom}};
    device_.Polygon(ring, kFrame, fill);
  }
  void FilledRectangle(const DeviceRect& r) { Bar(r, kPaper); }

  Ormel& ormel_;
  DrawingDevice& device_;
  VgGdi& vg_;
  DeviceRect area_;
  int unit_;
};

bool InRing(const std::vector<MapPoint>& ring, MapPoint p) {
  bool inside = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    const MapPoint a = ring[i], b = ring[j];
    if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) inside = !inside;
  }
  return inside;
}

/// What a legend at a place would hide: a hundred points of the box in zones count most, then wells.
class Hidden {
 public:
  Hidden(Ormel& ormel, VgGdi& vg) : vg_(vg) {
    if (Shown(ormel, Layer::kCapzones)) zones_ = ReadZones(ormel);
    if (!Shown(ormel, Layer::kWells)) return;
    RowReader rows(ormel.db(),
                   "select Vertices.X,Vertices.Y from Wells,Vertices where Wells.VID=Vertices.VID");
    while (rows.Next())
      if (InView(vg, {rows.Double(0), rows.Double(1)}))
        wells_.push_back(vg.vgGDIWorldToDevice(rows.Double(0), rows.Double(1)));
  }
  long Under(const DeviceRect& box) const {
    constexpr int kSide = 10;
    long hidden = 0;
    for (int i = 0; i < kSide; ++i)
      for (int j = 0; j < kSide; ++j) {
        const MapPoint at{
            vg_.vgGDIDeviceToWorldX(box.left + (box.right - box.left) * (i + 0.5) / kSide, false),
            vg_.vgGDIDeviceToWorldY(box.top + (box.bottom - box.top) * (j + 0.5) / kSide, false)};
        for (const CaptureZone& zone : zones_.all) hidden += InRing(zone.ring, at) ? 1000 : 0;
      }
    for (const DevicePoint& well : wells_)
      hidden +=
          well.x >= box.left && well.x <= box.right && well.y >= box.top && well.y <= box.bottom ? 10 : 0;
    return hidden;
  }

 private:
  VgGdi& vg_;
  Zones zones_;
  std::vector<DevicePoint> wells_;
};

DeviceRect LegendPlace(Ormel& ormel, VgGdi& vg, const MapSheet& output, const DeviceRect& area,
                       DevicePoint size, const std::vector<DeviceRect>& places) {
  if (output.legend_at) {
    const auto at = [](int from, int to, int length, double share) {
      const int place = from + static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * (to - from)));
      return std::max(from, std::min(place, to - length));
    };
    const int x = at(area.left, area.right, size.x, output.legend_at->first);
    const int y = at(area.top, area.bottom, size.y, output.legend_at->second);
    return {x, y, x + size.x, y + size.y};
  }
  if (output.legend_corner != LegendCorner::kAuto && output.legend_corner != LegendCorner::kBeside)
    return places.at(static_cast<std::size_t>(output.legend_corner) - 1);
  const Hidden hidden(ormel, vg);
  return *std::min_element(places.begin(), places.end(), [&](const DeviceRect& a, const DeviceRect& b) {
    return hidden.Under(a) < hidden.Under(b);
  });
}

/// A legend beside the map leaves it most of the width and is not higher than it; otherwise it stands on it.
bool LegendStandsBeside(const MapSheet& output, const DeviceRect& area, DevicePoint size) {
  return output.legend_corner == LegendCorner::kBeside && !output.legend_at &&
         5 * size.x < 2 * (area.right - area.left) && size.y <= area.bottom - area.top;
}

DeviceRect PageArea(const DrawingDevice& device, const std::optional<PageMargins>& margins) {
  DeviceRect area{0, 0, device.Width(), device.Height()};
  if (!margins) return area;
  const auto pixels = [](double inches, int dpi) { return static_cast<int>(std::lround(inches * dpi)); };
  area.left += pixels(margins->left, device.DpiX());
  area.right -= pixels(margins->right, device.DpiX());
  area.top += pixels(margins->top, device.DpiY());
  area.bottom -= pixels(margins->bottom, device.DpiY());
  return area;
}

}  // namespace

double RoundLength(double longest) {
  if (!(longest > 0.0) || !std::isfinite(longest)) return 0.0;
  const double power = std::pow(10.0, std::floor(std::log10(longest)));
  for (const double step : {5.0, 2.0})
    if (step * power <= longest) return step * power;
  return power;
}

bool DrawMapOutput(Ormel& ormel, ViewState& state, DrawingDevice& device, const MapSheet& output) {
  const Named named(ormel, "DrawMapOutput");
  device.Clear(kPaper);
  DeviceRect area = PageArea(device, output.margins);
  const int top = area.top;
  if (!output.title.empty()) area.top += device.DpiY() * 10 / 72 * 5 / 2;

  VgGdi vg(ormel), sheet(ormel);  // the map's, and that of the whole sheet for a legend beside it
  MapRect window = UsableWindow(ormel, output.window.value_or(ormel.window.SolveWindow));
  if (vg.InitArea(device, area, window, false, 0.0) != VgInit::kDone) return false;
  MapRect whole = window;
  sheet.InitArea(device, area, whole, false, 0.0);
  Furniture margin(ormel, device, sheet, area);
  LabelPlacer labels;
  std::vector<LegendEntry> entries;
  if (output.legend) entries = LegendOf(ormel, state);
  const DevicePoint size = margin.LegendSize(entries);
  const bool beside = !entries.empty() && LegendStandsBeside(output, area, size);
  DeviceRect legend{area.right - size.x, area.top, area.right, area.top + size.y};
  if (beside) {
    area.right -= size.x + std::max(1, vg.PointUnit()) / 2;
    if (vg.InitArea(device, area, window, false, 0.0) != VgInit::kDone) return false;
  }
  Furniture furniture(ormel, device, vg, area);
  if (!entries.empty() && !beside) {
    legend = LegendPlace(ormel, vg, output, area, size,
                         furniture.LegendPlaces(size, output.scale_bar, output.north_arrow));
    labels.Reserve(legend);
  }
  if (output.scale_bar) labels.Reserve(furniture.ScaleBarBox());
  if (output.north_arrow) labels.Reserve(furniture.NorthArrowBox());

  device.SetClip(area);
  DrawMap({ormel, vg, &labels}, state);
  DrawOutdatedBand(ormel, device, area);
  device.ClearClip();
  (beside ? margin : furniture).Legend(entries, legend);
  if (output.scale_bar) furniture.ScaleBar();
  if (output.north_arrow) furniture.NorthArrow();
  if (output.box) furniture.Frame();
  if (!output.title.empty()) furniture.Title(output.title, top);
  return true;
}

}  // namespace ormel
