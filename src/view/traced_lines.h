// The streamlines that the user has traced by clicks.
#pragma once

#include "view/canvas.h"

namespace ormel {

struct Ormel;

/// True while there are lines and the solution that they belong to stands.
bool HasTracedLines(const Ormel& ormel);
/// The lines, with the marks of time and elevation that pathlines have.
void ModelDrawTracedLines(const MapCanvas& canvas);

}  // namespace ormel
