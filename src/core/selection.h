// The selected element.
#pragma once

#include "core/types.h"

namespace ormel {

struct Selection {
  Element SelectedType = Element::kNone;
  Vid vid = -1;  ///< the selected vertex
  Pid pid = kNoPolygon;
  double radius_squared = 0.0;  ///< compared with squared distances [map units squared]; set at each zoom
  Vid found_vid = -1;           ///< last vertex found by ElemFindVertex
};

}  // namespace ormel
