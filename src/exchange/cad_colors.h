// Colours of drawings by their index.
#pragma once

#include "core/types.h"

namespace ormel {

/// `color` becomes the colour of the index: 7 to 9 and all above 255 are black, so that they show on a white
/// map.
void CADColorConvert(int index, Color& color);

}  // namespace ormel
