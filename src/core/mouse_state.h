// What the pointer means on the map, and what is being digitized.
#pragma once

#include <array>

#include "core/types.h"

namespace ormel {

struct MouseState {
  ormel::MouseMode MouseMode = ormel::MouseMode::kSelect;
  Element MouseElement = Element::kNone;
  bool MovePending = false;     ///< "Move" was chosen; the next press starts a move
  bool MoveActive = false;      ///< the button is down on a move
  bool LineInProgress = false;  ///< a first vertex exists; the rubber line follows the pointer
  bool ButtonDown = false;
  Pid CurrentPID = kNoPolygon;  ///< polygon in digitizing
  Seq NextSeq = 1;              ///< `Seq` of the next vertex of a string being drawn
  bool MenusOff = false;
  bool MouseDisabled = false;
  std::array<float, 12> Rubber{};   ///< device positions: 0 to 3 the rubber line, 4 to 11 the flow arrow
  double LastX = 0.0, LastY = 0.0;  ///< last click, map coordinates
  bool Snap = false;                ///< snap to the editor grid
  int cursor = 0;                   ///< 0 arrow, 2 drawing cross, 3 hourglass, 5 recentre
};

}  // namespace ormel
