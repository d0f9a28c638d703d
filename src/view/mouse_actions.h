// What the pointer does in each mode: one small class for each meaning behind one interface.
#pragma once

#include "core/types.h"

namespace ormel {

struct Ormel;
class MapViewImpl;

/// One event.  `device` is on the editor grid while snapping is on, `world` the same place on the map.
struct MouseEvent {
  MapViewImpl& view;
  Ormel& ormel;
  DevicePoint device;
  MapPoint world;
  int shift = 0;
};

/// Actions have no state of their own: it lies in the controller's MouseState.
class MouseAction {
 public:
  virtual ~MouseAction() = default;
  virtual void Press(const MouseEvent& /*event*/) const {}
  virtual void Move(const MouseEvent& /*event*/) const {}
  virtual void Release(const MouseEvent& /*event*/) const {}
  virtual void RightPress(const MouseEvent& /*event*/) const {}
  /// Takes the last vertex back.
  virtual void Back(const MouseEvent& /*event*/) const {}
  /// Leaves the mode without a half-drawn element.
  virtual void Cancel(const MouseEvent& /*event*/) const {}
};

/// The action of the present mode and element code; a pending move comes before both.
const MouseAction& CurrentAction(const Ormel& ormel);
/// True when the mode and code have an action of their own.
bool HasAction(MouseMode mode, Element element);

const MouseAction& MoveAction();
const MouseAction& SelectAction();

/// Shift inspects the results at the point, Shift and Ctrl trace a path from it.  True when the press was one
/// of them.
bool PressWithKeys(const MouseEvent& event);

// Shared by the actions.
/// Keeps the place as the start of the rubber line.
void StartRubber(const MouseEvent& event);
/// A dashed line, or a rectangle, from the start of the rubber line to the pointer.
void DrawRubberLine(const MouseEvent& event);
void DrawRubberRectangle(const MouseEvent& event);
void RemoveRubber(MapViewImpl& view);
/// `LastX` and `LastY`.
void KeepLast(const MouseEvent& event);

}  // namespace ormel
