// The pointer and the keys on the map.
//
// Two numbers of the controller, the mouse mode and the element code, decide what a click means; one small
// class for each meaning is chosen from a table by them (view/mouse_actions.h).  The state lies in the
// controller, the temporary shapes in the overlay of the view.  Positions are pixels of the picture's device.
#pragma once

#include "core/types.h"

namespace ormel {

class MapViewImpl;

enum class MouseButton : int { kNone = 0, kLeft = 1, kRight = 2 };

/// Added up in `shift`.
inline constexpr int kShiftKey = 1, kCtrlKey = 2, kAltKey = 4;

void Map_MouseDown(MapViewImpl& view, MouseButton button, int shift, DevicePoint at);
void Map_MouseMove(MapViewImpl& view, MouseButton button, int shift, DevicePoint at);
void Map_MouseUp(MapViewImpl& view, MouseButton button, int shift, DevicePoint at);
/// Edits the selected element.
void Map_DblClick(MapViewImpl& view);
/// The pointer has left the map: the panels of its position go blank.
void Map_MouseLeave(MapViewImpl& view);

enum class MapKey : int { kLeft, kRight, kUp, kDown, kPageUp, kPageDown, kHome, kEnd, kEscape, kBackspace };
/// The four arrows scroll, Page Up and Page Down zoom in and out, Home shows the extents, End starts a zoom
/// rectangle; all only while no mode holds the mouse.  Escape leaves a mode as the right click would, and a
/// string or domain with too few points is taken away; in none it ends the selection.  Backspace, while
/// something is drawn, takes its last vertex back.  False when the key meant nothing.
bool Map_KeyDown(MapViewImpl& view, MapKey key);

/// Pointer position as shown in its panel: "#,###,##0.0" and the unit.
void ShowPosition(MapViewImpl& view, MapPoint at);

}  // namespace ormel
