#include "view/styles.h"

#include <array>

namespace ormel {
namespace {

using enum SampleKind;
using S = StyleId;

/// In the order of the enumeration.
constexpr std::array kStyles = std::to_array<Style>({
    {S::kUniformFlow, "Uniform flow", kArrow, QBColor(2), 1.0, VgSymbol::kArrow},
    {S::kWell, "Well", kCircle, QBColor(5)},
    {S::kImageWell, "Image well", kCircle, Rgb(170, 170, 170)},
    {S::kDryWell, "Dry well", kCircle, QBColor(10)},
    {S::kWellLabel, "", kLetters, Rgb(0, 0, 255)},
    {S::kLinesinkHead, "Linesink, head specified", kLine, Rgb(0, 0, 255), 1.5},
    {S::kLinesinkFarField, "Linesink, far field", kLine, QBColor(3), 1.5},
    {S::kDrain, "Drain", kLine, QBColor(6), 1.5},
    {S::kLinesinkDischarge, "Linesink, discharge specified", kLine, QBColor(5), 1.5},
    {S::kLinesinkShadow, "", kLine, QBColor(15)},
    {S::kBarrier, "Barrier", kLine, QBColor(0), 2.0},
    {S::kDomain, "Inhomogeneity", kLine, QBColor(0)},
    {S::kDomainVertex, "", kSymbol, Rgb(128, 128, 128), 2.0, VgSymbol::kDiamond},
    {S::kVertex, "", kSymbol, QBColor(0), 1.0, VgSymbol::kDiamond},
    {S::kWhpaCircle, "Wellhead protection area", kCircle, Rgb(255, 0, 0)},
    {S::kStreamBoundary, "Stream boundary", kLine, QBColor(0), 3.0},
    {S::kTestPointAbove, "Test point, computed head above observed", kSymbol, QBColor(2), 1.0,
     VgSymbol::kDot},
    {S::kTestPointBelow, "Test point", kSymbol, QBColor(4), 1.0, VgSymbol::kDot},
    {S::kParticle, "Particle", kSymbol, QBColor(4), 1.0, VgSymbol::kDiagonalCross},
    {S::kFluxLine, "Flux inspection line", kLine, QBColor(5)},
    {S::kCapzone, "Protection area, drawn", kLine, QBColor(9)},
    {S::kContour, "Head contour", kLine, QBColor(1)},
    {S::kWhpaContour, "Head contour, protection area", kLine, Rgb(255, 0, 0)},
    {S::kPathline, "Pathline", kLine, QBColor(4)},
    {S::kTracedLine, "Traced streamline", kLine, QBColor(12), 2.0},
    {S::kTimeTic, "Time mark", kSymbol, QBColor(0), 1.0, VgSymbol::kDot},
    {S::kElevationTic, "Elevation mark", kSymbol, QBColor(0), 1.0, VgSymbol::kUprightCross},
    {S::kTextLabel, "", kLetters, QBColor(0)},
    {S::kMapLabel, "", kLetters, QBColor(13)},
    {S::kOverlayError, "Linesink, error in head", kLine, QBColor(4), 4.0},
    {S::kOverlayGains, "Linesink, takes water", kLine, QBColor(11), 4.0},
    {S::kOverlayLoses, "Linesink, gives water", kLine, QBColor(13), 4.0},
    {S::kOverlayNone, "Linesink, no discharge", kLine, QBColor(7), 2.0},
    {S::kOverlayDry, "Stream without flow", kLine, QBColor(3), 2.0},
    {S::kOverlayMarked, "", kLine, QBColor(10), 2.0},
});

constexpr bool InOrder() {
  for (std::size_t i = 0; i < kStyles.size(); ++i)
    if (static_cast<std::size_t>(kStyles[i].id) != i) return false;
  return kStyles.size() == static_cast<std::size_t>(S::kCount);
}
static_assert(InOrder(), "each style has its row, in the order of the enumeration");

/// From near to far: told apart in print, on a screen and by most eyes that see few colours.
constexpr std::array kTimes{Rgb(178, 24, 43),  Rgb(230, 110, 0), Rgb(0, 130, 90),
                            Rgb(33, 102, 172), Rgb(98, 40, 140), Rgb(90, 90, 90)};
constexpr std::array kWells{Rgb(66, 133, 244), Rgb(244, 160, 0), Rgb(15, 157, 88), Rgb(171, 71, 188),
                            Rgb(0, 172, 193),  Rgb(219, 68, 55), Rgb(121, 85, 72), Rgb(96, 125, 139)};

}  // namespace

const Style& StyleOf(StyleId id) {
  return kStyles.at(static_cast<std::size_t>(id));
}

Color ZoneLineColor(std::size_t time) {
  return kTimes[time < kTimes.size() ? time : kTimes.size() - 1];
}

Color ZoneAreaColor(std::size_t well) {
  return kWells[well % kWells.size()];
}

}  // namespace ormel
