// The colours of CAD files by their number.
#pragma once

#include "core/types.h"

namespace ormel {

/// Of the index 1 to 255: the hues of a wheel in 24 steps, five shades each in full and half saturation.  7,
/// 8 and 9 are black, so that they show on white paper; 0, and what is no index, too.
Color CADColorConvert(int index);

}  // namespace ormel
