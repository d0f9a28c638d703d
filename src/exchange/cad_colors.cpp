#include "exchange/cad_colors.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ormel {
namespace {

constexpr int kFirstHue = 10, kFirstGrey = 250, kHues = 24;
/// Brightness of the five pairs of a hue: the full colour, then its partner of half the saturation.
constexpr std::array kFactors{255.0, 165.75, 127.5, 76.5, 38.25};
constexpr std::array kGreys{51, 91, 132, 173, 214, 255};

/// Share of red, of green or of blue in one of 24 hues, 15 degrees apart from red; `shift` of the channel [in
/// hues].
double Share(int hue, int shift) {
  constexpr int kStep = 4;  // hues over which a channel rises or falls
  const int at = (hue + shift) % kHues;
  if (at <= kStep || at >= 5 * kStep) return 1.0;
  if (at < 2 * kStep) return (2.0 * kStep - at) / kStep;
  return at <= 4 * kStep ? 0.0 : (at - 4.0 * kStep) / kStep;
}

Color HueColor(int index) {
  const int hue = (index - kFirstHue) / 10, rank = index % 10;
  const double full = kFactors[static_cast<std::size_t>(rank / 2)];
  const double low = rank % 2 == 1 ? 0.5 : 0.0;  // what the channel keeps where its share is none
  const auto channel = [&](int shift) {
    return static_cast<int>(full * (low + (1.0 - low) * Share(hue, shift)));
  };
  return Rgb(channel(0), channel(16), channel(8));
}

}  // namespace

void CADColorConvert(int index, Color& color) {
  constexpr std::array kPlain{Rgb(0, 0, 0),     Rgb(255, 0, 0), Rgb(255, 255, 0), Rgb(0, 255, 0),
                              Rgb(0, 255, 255), Rgb(0, 0, 255), Rgb(255, 0, 255), Rgb(0, 0, 0),
                              Rgb(0, 0, 0),     Rgb(0, 0, 0)};
  if (index < 0 || index > 255) {
    color = Rgb(0, 0, 0);
  } else if (index < kFirstHue) {
    color = kPlain[static_cast<std::size_t>(index)];
  } else if (index < kFirstGrey) {
    color = HueColor(index);
  } else {
    const int grey = kGreys[static_cast<std::size_t>(index - kFirstGrey)];
    color = Rgb(grey, grey, grey);
  }
}

}  // namespace ormel
