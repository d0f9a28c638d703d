// The windows and extents of the map and of the model, all in map coordinates.
#pragma once

#include "core/types.h"

namespace ormel {

struct MapWindow {
  MapRect SolveWindow{-100.0, 100.0, 100.0, -100.0};  ///< the present display window
  Extents full{-100.0, 100.0, -100.0, 100.0};         ///< base maps and model taken together
  Extents model{};   ///< ModelXMin ... ModelYMax; (x_min, y_min) is the origin of the solver's coordinates
  Extents solved{};  ///< SolvedXMin ...: the extents of the last solve
  double ReferenceHead = 0.0;  ///< head at the reference point when there is no uniform flow
  bool at_extents = false;     ///< the window equals the extents
  double power_of_ten = 1.0;   ///< scale of the window's width
  double margin_left = 1.0, margin_right = 1.0, margin_top = 1.0, margin_bottom = 1.0;  ///< print, inches
  bool margin_box = true;
};

}  // namespace ormel
