#include "view/outdated.h"

#include <algorithm>

#include "core/ormel.h"

namespace ormel {
namespace {

constexpr Color kBand = Rgb(255, 221, 120), kInk = Rgb(60, 40, 0);
constexpr double kBandOpacity = 0.9;
constexpr int kPale = 185;       ///< what the colours go towards
constexpr double kKept = 0.25;   ///< share of a colour that stays
constexpr int kPointsHigh = 10;  ///< of the letters

bool OfOlderModel(const Ormel& ormel) {
  return ormel.project.ProjectOpen && ormel.solution.ValidSolution && ormel.solution.OfOlderModel;
}

int Pale(int part) {
  return static_cast<int>(kKept * part + (1.0 - kKept) * kPale);
}

}  // namespace

Color ResultColor(const Ormel& ormel, Color color) {
  if (!OfOlderModel(ormel)) return color;
  return Rgb(Pale(RedOf(color)), Pale(GreenOf(color)), Pale(BlueOf(color)));
}

void DrawOutdatedBand(const Ormel& ormel, DrawingDevice& device, const DeviceRect& area) {
  if (!OfOlderModel(ormel)) return;
  const int letters = std::max(8, device.DpiY() * kPointsHigh / 72);
  const DeviceRect band{area.left, area.top, area.right, std::min(area.bottom, area.top + 2 * letters)};
  device.BeginLayer("Out of Date");
  device.Cover(band, kBand, kBandOpacity);
  TextStyle style;
  style.height = letters;
  style.bold = true;
  style.color = kInk;
  style.align = TextAlign::kCentre;
  const char* text = "OUT OF DATE: these results are of an older model";
  if (device.TextWidth(text, style) > area.right - area.left) text = "OUT OF DATE";
  device.Text({(band.left + band.right) / 2, band.top + letters * 27 / 20}, text, style);
}

}  // namespace ormel
