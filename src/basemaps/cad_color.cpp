#include "basemaps/cad_color.h"

#include <array>

namespace ormel {
namespace {

constexpr std::array kFirst{Rgb(0, 0, 0),     Rgb(255, 0, 0), Rgb(255, 255, 0), Rgb(0, 255, 0),
                            Rgb(0, 255, 255), Rgb(0, 0, 255), Rgb(255, 0, 255), Rgb(0, 0, 0),
                            Rgb(0, 0, 0),     Rgb(0, 0, 0)};
constexpr std::array kShades{255.0, 165.75, 127.5, 76.5, 38.25};
constexpr std::array kGreys{51, 91, 132, 173, 214, 255};
constexpr int kFirstHue = 10, kFirstGrey = 250, kStepsOfSector = 4;

}  // namespace

Color CADColorConvert(int index) {
  if (index < 0 || index > 255) return Rgb(0, 0, 0);
  if (index < kFirstHue) return kFirst[static_cast<std::size_t>(index)];
  if (index >= kFirstGrey) {
    const int grey = kGreys[static_cast<std::size_t>(index - kFirstGrey)];
    return Rgb(grey, grey, grey);
  }
  const int hue = (index - kFirstHue) / 10, shade = index % 10;
  const double high = kShades[static_cast<std::size_t>(shade / 2)], low = shade % 2 == 0 ? 0.0 : high / 2.0;
  const double part = hue % kStepsOfSector / static_cast<double>(kStepsOfSector);
  const int top = static_cast<int>(high), bottom = static_cast<int>(low),
            rising = static_cast<int>(low + (high - low) * part),
            falling = static_cast<int>(high - (high - low) * part);
  switch (hue / kStepsOfSector) {
    case 0:
      return Rgb(top, rising, bottom);
    case 1:
      return Rgb(falling, top, bottom);
    case 2:
      return Rgb(bottom, top, rising);
    case 3:
      return Rgb(bottom, falling, top);
    case 4:
      return Rgb(rising, bottom, top);
    default:
      return Rgb(top, bottom, falling);
  }
}

}  // namespace ormel
