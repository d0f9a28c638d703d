// The frame that all elements share when they are placed or drawn on the map.
#pragma once

#include <functional>
#include <string_view>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// A command that works with the mouse mode and the menus: when it fails, the mode ends and the menus come
/// back before the failure is told.
bool RunEdit(Ormel& ormel, std::string_view name, const std::function<void()>& body);

/// The last click [map units].
MapPoint LastClick(const Ormel& ormel);

/// One click on the map places an element: menus off, mode 1, drawing cursor.
void BeginPlacing(Ormel& ormel, Element element, std::string_view activity, std::string_view feedback);
/// Mode 0, nothing in digitizing, arrow cursor, select status.
void LeaveMouseMode(Ormel& ormel);
/// The click has been dealt with, or the mode is left: mode 0 and the menus on.
void EndPlacing(Ormel& ormel);

/// Vertices by left clicks, the right click ends: menus off, mode 5, drawing cursor.
void BeginDigitizing(Ormel& ormel, Element element, std::string_view activity);
/// Makes `pid` the polygon in digitizing.
void DigitizePolygon(Ormel& ormel, Pid pid);
/// Adds `at` to the polygon in digitizing.
Vid AddDigitizedVertex(Ormel& ormel, MapPoint at);
/// Mode 0 and select status; gives the polygon that was digitized.
Pid EndDigitizing(Ormel& ormel);

/// While something is being drawn: takes its last vertex back, and drawing goes on.  True when the command
/// came to its end.
bool TakeBackVertex(Ormel& ormel);

/// Leaves a mode without a half-drawn element: a string or domain that has no vertex yet is removed.
void AbandonDigitizing(Ormel& ormel);

/// The table of the element rows of a string, domain or line; nullptr for other elements.
const char* PolygonTable(Element element);

}  // namespace ormel
