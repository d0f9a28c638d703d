// Pathlines with their marks of time and elevation, and the commands that set these.
#pragma once

#include "core/types.h"
#include "view/canvas.h"

namespace ormel {

struct Ormel;
class ResultFiles;

/// Draws the paths of the last trace, and those of the wellhead protection areas while these are shown.  A
/// path that begins within 2.1 radii of a well with a colour of its own has that colour.
void ModelDrawPathlines(const MapCanvas& canvas, ResultFiles& files);

/// Shows or hides the pathlines.
void PATHLINES(Ormel& ormel);
/// Time marks: item 0 shows or hides them, 1 to 3 set the spacing to 1, 2 or 5 years, 4 asks for it in days.
void TMARKS(Ormel& ormel, int index);
/// Elevation marks: shows or hides them; with `ask` set asks for the spacing.
void ZMARKS(Ormel& ormel, bool ask);

}  // namespace ormel
