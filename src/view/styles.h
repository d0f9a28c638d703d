// How everything on the map looks: the one table of colours, widths and symbols, read by what draws and by
// the legend that explains it.
#pragma once

#include <string_view>

#include "core/types.h"
#include "view/vg_gdi.h"

namespace ormel {

enum class StyleId : int {
  kUniformFlow,
  kWell,
  kImageWell,
  kDryWell,
  kWellLabel,
  kLinesinkHead,
  kLinesinkFarField,
  kDrain,
  kLinesinkDischarge,
  kLinesinkShadow,
  kBarrier,
  kDomain,
  kDomainVertex,
  kVertex,
  kWhpaCircle,
  kStreamBoundary,
  kTestPointAbove,
  kTestPointBelow,
  kParticle,
  kFluxLine,
  kCapzone,
  kContour,
  kWhpaContour,
  kPathline,
  kTracedLine,
  kTimeTic,
  kElevationTic,
  kTextLabel,
  kMapLabel,
  kOverlayError,
  kOverlayGains,
  kOverlayLoses,
  kOverlayNone,
  kOverlayDry,
  kOverlayMarked,
  kCount
};

enum class SampleKind {
  kLine,
  kSymbol,  ///< `symbol`, filled in the colour
  kArrow,   ///< the arrow, pointing east
  kCircle,  ///< as a well of some size
  kLetters,
};

struct Style {
  StyleId id;
  std::string_view legend;  ///< what the legend calls it; "" where another entry stands for it
  SampleKind sample;
  Color color;
  double width = 1.0;  ///< of the pen [pixels at 96 dots per inch]
  VgSymbol symbol = VgSymbol::kDot;
};

const Style& StyleOf(StyleId id);

/// The share of a zone's colour that its area takes: what lies beneath stays readable.
inline constexpr double kZoneOpacity = 0.13;
/// The line of a zone, by the place of its time among those of the project, shortest first.
Color ZoneLineColor(std::size_t time);
inline constexpr double kZoneLineWidth = 2.0;
/// The area of a zone, by the place of its well among those that have zones.
Color ZoneAreaColor(std::size_t well);

}  // namespace ormel
