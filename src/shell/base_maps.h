// The base maps of a project being opened.
#pragma once

#include "core/types.h"

namespace ormel {

struct Ormel;

/// Loads the project's base maps; true when there is any, with their extents [map units].  This version draws
/// no base maps: it tells the user how many a project has, keeps them in the project, and gives false.
bool LoadBaseMaps(Ormel& ormel, Extents& bounds);

}  // namespace ormel
