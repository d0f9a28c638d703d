// Interface options that live as long as the program runs.
#pragma once

#include "core/types.h"

namespace ormel {

struct GuiOptions {
  int haze_field = 3;  ///< as typed, 1 to 5
  Color HazeColor = QBColor(15);
  double LinesinkShadow = 0.0;   ///< white line under line-sinks [pen width]; 0 disables it
  double VertexTolerance = 0.0;  ///< [map units]; set at each open to the full width times 1E-05
  int HazeLevel() const { return 7 - haze_field; }
};

}  // namespace ormel
