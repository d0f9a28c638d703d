// How the objects of a BBM map look, by their themes and the level of detail.
#pragma once

#include <optional>
#include <string>

#include "basemaps/bbm_format.h"

namespace ormel {

/// What the look depends on beside the object.
struct BbmLevel {
  double span = 0.0;           ///< width of the view [map units]
  bool compute_meters = true;  ///< contours are labelled in these
  /// 0 below a span of 2000, 1 below 3500, else 2.
  int Detail() const { return span < 2000.0 ? 0 : span < 3500.0 ? 1 : 2; }
};

struct BbmLook {
  bool visible = true;
  bool symbols = false;  ///< a symbol at each point instead of a line
  Color color{};
  double width = 1.0;  ///< pixels at 96 dots per inch
  bool dotted = false;
  std::string label;   ///< "" for none; it stands at the line's first point
  double angle = 0.0;  ///< of the label [degrees]
};

inline constexpr Color kBbmSymbolColor = QBColor(5);

/// The pen with which a map begins: that of its theme, else black.
Color BbmFirstPen(const BbmHeader& header);
/// `pen` is the map's current pen, which some lines set for those that follow.
BbmLook LookOfLine(const BbmHeader& header, const BbmObject& line, const BbmLevel& level, Color& pen);
bool IsWater(const BbmObject& area);
/// Points without attributes are left out of line graph maps.
bool IsDrawnPoint(const BbmHeader& header, const BbmObject& point);
/// The colour of an operation stream; white becomes black, so that it is seen.
Color BbmStreamColor(int number);
/// Width of a pen of an operation stream [pixels at 96 dots per inch].
double BbmStreamWidth(const BbmHeader& header, double width);

}  // namespace ormel
