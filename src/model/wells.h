// Wells and ponds, and image wells.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/types.h"

namespace ormel {

struct Ormel;
class Recordset;

/// A row of `Wells` without its place.  Lengths in computation units.
struct WellRow {
  std::string Label{};
  bool HeadSpecified = false;
  bool Pond = false;  ///< a circular area sink of radius `Radius`
  double Head = 0.0;  ///< head, or discharge [length^3/d], positive out of the aquifer; of a
                      ///< discharge-specified pond a rate [length/d]
  double Radius = 1.0;
  double Setback = 0.0;
  int NParticles = 0;  ///< above 0: traced; otherwise its absolute value is only remembered
  double StartElev = 0.0;
  std::int32_t PathlineColor = kDefaultPathlineColor;
  int PPWell = 0;     ///< reserved
  int Transient = 0;  ///< reserved
};

inline constexpr int kWellLimit = 2000;

/// The current row of a recordset on `Wells`.
WellRow ReadWell(const Recordset& wells);
/// Puts the bound recordset on the well and reads it; false when there is none.
bool FindWell(Ormel& ormel, Vid vid, WellRow& found);
/// Adds a well without a question: its vertex at `at` and its row.  The bound recordsets stand on them.
/// Imports, scripts and the dialog all come here.  Throws StoreError, then nothing of the well is kept.
Vid StoreWell(Ormel& ormel, const WellRow& row, MapPoint at);
/// Writes a row that stands already, with its place.
void ChangeWell(Ormel& ormel, Vid vid, const WellRow& row, MapPoint at);

/// True, after a box with `last_line`, when `Wells` holds more than 2000 rows.
bool WellLimitReached(Ormel& ormel, std::string_view last_line);

/// An image well: its label begins with "Mirror_".
bool IsMirror(std::string_view label);
/// "Mirror_" and the first 57 characters of the source's label.
std::string MirrorLabel(std::string_view label);

/// The well at the last click: dialog, row, symbol.
void ElemAddWell(Ormel& ormel);

/// Makes the image of a well in the line through two points, with the opposite sign; an earlier image row of
/// that well is replaced, its vertex stays.  False when nothing was made: too many wells, or two equal points
/// (each with its box).
bool MirrorWell(Ormel& ormel, const std::string& label, MapPoint point1, MapPoint point2, MapPoint well);

}  // namespace ormel
