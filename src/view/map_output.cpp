#include "view/map_output.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/ormel.h"
#include "text/numbers.h"
#include "view/map_legend.h"
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

  void Legend(const std::vector<LegendEntry>& entries) {
    if (entries.empty()) return;
    device_.BeginLayer("Legend");
    const TextStyle style = Style(9, false, TextAlign::kLeft);
    int widest = 0;
    for (const LegendEntry& entry : entries) widest = std::max(widest, device_.TextWidth(entry.text, style));
    const int sample = 3 * unit_, row = unit_ * 3 / 2, pad = unit_ / 2;
    DeviceRect box{area_.right - (sample + widest + 4 * pad), area_.bottom, area_.right, area_.bottom};
    box.top -= row * static_cast<int>(entries.size()) + 2 * pad;
    Inset(box, pad, -pad);
    FilledRectangle(box);
    int y = box.top + pad + row / 2;
    for (const LegendEntry& entry : entries) {
      entry.sample(vg_, World({box.left + pad, y}), World({box.left + pad + sample, y}));
      device_.Text({box.left + 2 * pad + sample, y + unit_ / 3}, entry.text, style);
      y += row;
    }
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
  static void Inset(DeviceRect& box, int left, int down) {
    box.left -= left;
    box.right -= left;
    box.top += down;
    box.bottom += down;
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

  VgGdi vg(ormel);
  MapRect window = UsableWindow(ormel, output.window.value_or(ormel.window.SolveWindow));
  if (vg.InitArea(device, area, window, false, 0.0) != VgInit::kDone) return false;
  device.SetClip(area);
  DrawMap({ormel, vg}, state);
  device.ClearClip();

  Furniture furniture(ormel, device, vg, area);
  if (output.legend) furniture.Legend(LegendOf(ormel, state));
  if (output.scale_bar) furniture.ScaleBar();
  if (output.north_arrow) furniture.NorthArrow();
  if (output.box) furniture.Frame();
  if (!output.title.empty()) furniture.Title(output.title, top);
  return true;
}

}  // namespace ormel
