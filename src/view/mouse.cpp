#include "view/mouse.h"

#include <algorithm>
#include <array>
#include <string>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/project_crs.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/edit.h"
#include "model/selection.h"
#include "solver/inspection.h"
#include "text/masks.h"
#include "view/map_view_impl.h"
#include "view/mouse_actions.h"

namespace ormel {
namespace {

constexpr Color kInspectColor = QBColor(12);

MouseEvent EventAt(MapViewImpl& view, int shift, DevicePoint at) {
  Ormel& ormel = view.ormel();
  VgGdi& vg = view.vg();
  MouseEvent event{view, ormel, at, {}, shift};
  event.world = {vg.vgGDIDeviceToWorldX(at.x, ormel.mouse.Snap),
                 vg.vgGDIDeviceToWorldY(at.y, ormel.mouse.Snap)};
  // Without a mapping there is nothing to snap to.
  if (ormel.mouse.Snap && vg.Ready()) event.device = vg.vgGDIWorldToDevice(event.world.x, event.world.y);
  return event;
}

/// Shows which point is being asked about.
class PointMark {
 public:
  PointMark(MapViewImpl& view, MapPoint at)
      : view_(view), key_{Overlay::Group::kRubber, Element::kTestPoint, -1, at} {
    const MapViewImpl::OverlayShape shape(view, key_);
    view.vg().vgGDISymbol(at, VgSymbol::kCircleUprightCross, kInspectColor, kInspectColor);
  }
  ~PointMark() { view_.overlay().Remove(key_); }
  PointMark(const PointMark&) = delete;
  PointMark& operator=(const PointMark&) = delete;

 private:
  MapViewImpl& view_;
  Overlay::Key key_;
};

bool Listening(const Ormel& ormel) {
  return !ormel.mouse.MouseDisabled && ormel.project.ProjectOpen;
}

/// Runs what an event means, and shows afterwards what it changed.
template <class Body>
void Handle(MapViewImpl& view, const char* name, Body body) {
  RunCommand(view.ormel(), name, body);
  view.vg().vgGDIRefresh();
}

}  // namespace

bool PressWithKeys(const MouseEvent& event) {
  const bool inspect = event.shift == kShiftKey, trace = event.shift == (kShiftKey | kCtrlKey);
  if (!inspect && !trace) return false;
  if (!event.ormel.solution.ValidSolution) {
    Inform(event.ormel, "Error", "No solution is present.  Solve the model and try again.");
    return true;
  }
  const PointMark mark(event.view, event.world);
  if (inspect)
    ModelInspectResults(event.ormel, event.world.x, event.world.y);
  else
    ModelTraceOneStreamline(event.ormel, event.world.x, event.world.y);
  return true;
}

void Map_MouseDown(MapViewImpl& view, MouseButton button, int shift, DevicePoint at) {
  Ormel& ormel = view.ormel();
  if (!Listening(ormel) || button == MouseButton::kNone) return;
  Handle(view, "Map_MouseDown", [&] {
    const MouseEvent event = EventAt(view, shift, at);
    const MouseAction& action = CurrentAction(ormel);
    if (button == MouseButton::kRight) return action.RightPress(event);
    const bool waits = &action == &SelectAction() && shift == kShiftKey;  // it may begin a box
    if (!waits && PressWithKeys(event)) return;
    ormel.mouse.ButtonDown = true;
    action.Press(event);
  });
}

void Map_MouseMove(MapViewImpl& view, MouseButton /*button*/, int shift, DevicePoint at) {
  Ormel& ormel = view.ormel();
  if (ormel.mouse.MouseDisabled) return;
  if (!ormel.project.ProjectOpen) {
    if (!ormel.feedback.empty()) Feedback(ormel, "");
    return Map_MouseLeave(view);
  }
  RunCommand(ormel, "Map_MouseMove", [&] {
    const MouseEvent event = EventAt(view, shift, at);
    CurrentAction(ormel).Move(event);
    ShowPosition(view, event.world);
  });
}

void Map_MouseUp(MapViewImpl& view, MouseButton button, int shift, DevicePoint at) {
  Ormel& ormel = view.ormel();
  if (!Listening(ormel) || button != MouseButton::kLeft) return;
  Handle(view, "Map_MouseUp", [&] {
    const MouseEvent event = EventAt(view, shift, at);
    KeepLast(event);
    const bool down = ormel.mouse.ButtonDown;
    ormel.mouse.ButtonDown = false;
    if (down) CurrentAction(ormel).Release(event);
  });
}

void Map_DblClick(MapViewImpl& view) {
  Ormel& ormel = view.ormel();
  if (!Listening(ormel) || ormel.selection.SelectedType == Element::kNone) return;
  Handle(view, "Map_DblClick", [&] {
    ormel.mouse.ButtonDown = false;
    ElemSetProperties(ormel);
  });
}

void Map_MouseLeave(MapViewImpl& view) {
  view.ormel().ui().SetPanel(Panel::kX, "");
  view.ormel().ui().SetPanel(Panel::kY, "");
}

void ShowPosition(MapViewImpl& view, MapPoint at) {
  static const NumberMask mask("#,###,##0.0");
  Ormel& ormel = view.ormel();
  const GlobeText globe = GlobeTextOf(ormel, at);
  ormel.ui().SetPanel(Panel::kX, "X: " + mask.Format(at.x) + ormel.project.unit_suffix + globe.longitude);
  ormel.ui().SetPanel(Panel::kY, "Y: " + mask.Format(at.y) + ormel.project.unit_suffix + globe.latitude);
}

bool Map_KeyDown(MapViewImpl& view, MapKey key) {
  Ormel& ormel = view.ormel();
  if (!Listening(ormel)) return false;
  if (key == MapKey::kEscape) {
    const bool in_mode = ormel.mouse.MouseMode != MouseMode::kSelect || ormel.mouse.MovePending;
    if (!in_mode && SelectedElements(ormel).empty()) return false;
    if (!in_mode) {
      Handle(view, "Form_KeyDown", [&] { view.ElemTurnOffSelection(); });
      return true;
    }
    Handle(view, "Form_KeyDown", [&] {
      const MouseEvent event = EventAt(view, 0, {});
      CurrentAction(ormel).Cancel(event);
    });
    return true;
  }
  if (key == MapKey::kBackspace) {
    if (ormel.mouse.MouseMode != MouseMode::kDigitize) return false;
    Handle(view, "Form_KeyDown", [&] { CurrentAction(ormel).Back(EventAt(view, 0, {})); });
    return true;
  }
  if (ormel.mouse.MenusOff || ormel.mouse.MouseMode != MouseMode::kSelect) return false;
  struct Row {
    MapKey key;
    Zoom zoom;
  };
  constexpr std::array kKeys{Row{MapKey::kLeft, Zoom::kLeft},    Row{MapKey::kRight, Zoom::kRight},
                             Row{MapKey::kUp, Zoom::kUp},        Row{MapKey::kDown, Zoom::kDown},
                             Row{MapKey::kPageUp, Zoom::kIn},    Row{MapKey::kPageDown, Zoom::kOut},
                             Row{MapKey::kHome, Zoom::kExtents}, Row{MapKey::kEnd, Zoom::kStartRectangle}};
  const auto row = std::find_if(kKeys.begin(), kKeys.end(), [&](const Row& r) { return r.key == key; });
  if (row == kKeys.end()) return false;
  const bool closer = row->zoom == Zoom::kIn || row->zoom == Zoom::kStartRectangle;
  if (closer && !ormel.menus.Enabled("ZOOM_CMDS", static_cast<int>(row->zoom))) return true;
  view.ZoomActions(row->zoom);
  return true;
}

}  // namespace ormel
