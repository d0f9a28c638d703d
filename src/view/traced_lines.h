// The streamlines that the user has traced by clicks.
#pragma once

#include "view/canvas.h"

namespace ormel {

struct Ormel;

/// Apart from the pathlines of the solve, which lie in another colour.
inline constexpr Color kTracedLineColor = QBColor(12);
inline constexpr double kTracedLineWidth = 2.0;

/// True while there are lines and the solution that they belong to stands.
bool HasTracedLines(const Ormel& ormel);
/// The lines, with the marks of time and elevation that pathlines have.
void ModelDrawTracedLines(const MapCanvas& canvas);

}  // namespace ormel
