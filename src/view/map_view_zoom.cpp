// The window on the map: the one way to a redraw and to a change of the window.
#include <cmath>
#include <optional>
#include <string>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "solver/extents.h"
#include "store/database.h"
#include "store/recordset.h"
#include "text/strings.h"
#include "view/map_view_impl.h"
#include "view/restore_window_form.h"

namespace ormel {
namespace {

constexpr int kArrow = 0, kCross = 2, kRecentreCursor = 5;
/// A rubber rectangle has at least this share of the window in both directions.
constexpr double kSmallestShare = 0.01;
/// A window narrower or lower than this cannot be zoomed further [map units].
constexpr double kZoomLimitMetres = 0.2, kZoomLimitFeet = 0.0667;
constexpr double kScrollShare = 0.25;
constexpr std::size_t kWindowNameLength = 64;

MapRect Scaled(const MapRect& r, double factor) {
  const double cx = (r.x1 + r.x2) * 0.5, cy = (r.y1 + r.y2) * 0.5;
  const double w = r.Width() * factor * 0.5, h = r.Height() * factor * 0.5;
  return {cx - w, cx + w, cy + h, cy - h};
}

MapRect Moved(const MapRect& r, double right, double up) {
  const double dx = r.Width() * right, dy = r.Height() * up;
  return {r.x1 + dx, r.x2 + dx, r.y1 + dy, r.y2 + dy};
}

MapRect CentredAt(const MapRect& r, double x, double y) {
  const double w = r.Width() * 0.5, h = r.Height() * 0.5;
  return {x - w, x + w, y + h, y - h};
}

}  // namespace

void MapViewImpl::SetWindow(const MapRect& window) {
  ormel_.window.SolveWindow = window;
  ormel_.window.at_extents = false;
}

void MapViewImpl::SaveWindow() {
  const std::optional<std::string> name =
      ormel_.ui().Ask(InputBox{"Save Window", "Enter a name for the window: ", ""});
  if (!name || name->empty()) return;
  if (TextLength(*name) > kWindowNameLength) {
    Inform(ormel_, "Save Window",
           "The name of a window has at most 64 characters.  The window was not saved.");
    return;
  }
  const MapRect& window = ormel_.window.SolveWindow;
  Recordset rows = ormel_.db().OpenRecordset("select * from SavedWindows");
  rows.AddNew();
  rows["Name"] = *name;
  rows["X1"] = window.x1;
  rows["Y1"] = window.y1;
  rows["X2"] = window.x2;
  rows["Y2"] = window.y2;
  rows.Update();
}

void MapViewImpl::RestoreWindow() {
  RestoreWindowForm form(ormel_);
  ormel_.ui().ShowForm(form);
  if (form.Result == 1) SetWindow(form.Window());
}

void MapViewImpl::Recentre() {
  TurnOffMenus();
  ElemTurnOffSelection();
  ormel_.mouse.MouseMode = MouseMode::kPlace;
  ormel_.mouse.MouseElement = Element::kRecentre;
  ormel_.mouse.cursor = kRecentreCursor;
  Activity(ormel_, "Recenter");
  Feedback(ormel_, "Click mouse to specify new window center");
  vg_.vgGDIRefresh();
}

void MapViewImpl::ApplyRectangle(const MapRect& rect) {
  const MapRect& window = ormel_.window.SolveWindow;
  const bool wide = rect.Width() / window.Width() >= kSmallestShare;
  const bool high = rect.Height() / window.Height() >= kSmallestShare;
  if (wide && high)
    SetWindow(rect);
  else
    Inform(ormel_, "Can't set window", "Selected window is too small");
  ormel_.mouse.cursor = kArrow;
  SelectStatus(ormel_);
}

/// The codes that only start or ask something and end without a redraw.
bool MapViewImpl::ZoomMode(Zoom code) {
  if (code == Zoom::kStartRectangle) {
    if (ormel_.mouse.MouseMode != MouseMode::kSelect) return true;
    TurnOffMenus();
    ElemTurnOffSelection();
    ormel_.mouse.MouseMode = MouseMode::kRectangle;
    ormel_.mouse.MouseElement = Element::kZoomRectangle;
    ormel_.mouse.LineInProgress = false;
    ormel_.mouse.cursor = kCross;
    Activity(ormel_, "Zoom to Window");
    Feedback(ormel_, "Press mouse button at one corner of the new window and drag to the other");
    vg_.vgGDIRefresh();
    return true;
  }
  if (code == Zoom::kSaveWindow) {
    SaveWindow();
    return true;
  }
  if (code == Zoom::kRecentre) {
    Recentre();
    return true;
  }
  return false;
}

/// Sets the window that a code asks for; false for a number that is no code.
bool MapViewImpl::ChangeWindow(Zoom code, const MapRect& rect) {
  const MapRect& window = ormel_.window.SolveWindow;
  switch (code) {
    case Zoom::kIn:
      SetWindow(Scaled(window, 0.5));
      return true;
    case Zoom::kOut:
      SetWindow(Scaled(window, 2.0));
      return true;
    case Zoom::kExtents:
      ModelCheckExtents(ormel_, false, false);
      FindMapExtents(ormel_);
      SetWindow(WindowOf(ormel_.window.full));
      ormel_.window.at_extents = true;
      return true;
    case Zoom::kRestoreWindow:
      RestoreWindow();
      return true;
    case Zoom::kLeft:
      SetWindow(Moved(window, -kScrollShare, 0.0));
      return true;
    case Zoom::kRight:
      SetWindow(Moved(window, kScrollShare, 0.0));
      return true;
    case Zoom::kUp:
      SetWindow(Moved(window, 0.0, kScrollShare));
      return true;
    case Zoom::kDown:
      SetWindow(Moved(window, 0.0, -kScrollShare));
      return true;
    case Zoom::kApplyRectangle:
      ApplyRectangle(rect);
      return true;
    case Zoom::kApplyWindow:
      SetWindow(rect);
      return true;
    case Zoom::kRecentreAtClick:
      SetWindow(CentredAt(window, ormel_.mouse.LastX, ormel_.mouse.LastY));
      TurnOnMenus();
      ormel_.mouse.cursor = kArrow;
      return true;
    case Zoom::kRedraw:
    case Zoom::kRedrawInPlace:
    case Zoom::kStartRectangle:
    case Zoom::kSaveWindow:
    case Zoom::kRecentre:
      return true;
  }
  return false;
}

void MapViewImpl::ZoomActions(Zoom code, const MapRect& rect) {
  if (!ormel_.project.ProjectOpen) {
    layers_of_.clear();
    Redraw();  // wipes the map
    return;
  }
  RunCommand(ormel_, "ZoomActions", [&] {
    ormel_.window.SolveWindow = UsableWindow(ormel_, ormel_.window.SolveWindow);
    if (ZoomMode(code)) return;
    if (code == Zoom::kRedrawInPlace) {
      ElemTurnOffSelection();
      if (ormel_.layers.On(Layer::kManualRedraw)) {
        Activity(ormel_, "REDRAW");
        Feedback(ormel_, "Current picture is obsolete -- press CTRL-L to refresh");
        return;
      }
    } else if (!ChangeWindow(code, rect)) {
      Inform(ormel_, "Ormel", "Internal error in Zoom commands");
      return;
    }
    KeepRubberStart([this] { Redraw(); });
    Tail();
  });
}

/// What follows each redraw of a command.  An element that is being drawn or placed while the menus rest
/// stays in hand: its mode is the only way back to them.
void MapViewImpl::Tail() {
  const MouseState& mouse = ormel_.mouse;
  const bool of_the_map =
      mouse.MouseMode == MouseMode::kRectangle || mouse.MouseElement == Element::kRecentre;
  const bool in_hand = mouse.MenusOff && mouse.MouseMode != MouseMode::kSelect && !of_the_map;
  StoreWindow();
  if (!in_hand) {
    ElemTurnOffSelection();
    ClearMouseMode();
  }
  CheckZoomLimit();
  vg_.vgGDIRefresh();
}

/// A change of the window under a rubber line: the line keeps its start on the map.
void MapViewImpl::KeepRubberStart(const std::function<void()>& change) {
  overlay_.RemoveGroup(Overlay::Group::kRubber);  // it comes back with the next move of the pointer
  auto& rubber = ormel_.mouse.Rubber;
  const double x = vg_.vgGDIDeviceToWorldX(rubber[0], false), y = vg_.vgGDIDeviceToWorldY(rubber[1], false);
  change();
  if (!vg_.Ready() || !ormel_.mouse.LineInProgress) return;
  const DevicePoint start = vg_.vgGDIWorldToDevice(x, y);
  rubber[0] = static_cast<float>(start.x);
  rubber[1] = static_cast<float>(start.y);
}

void MapViewImpl::StoreWindow() {
  const MapRect& window = ormel_.window.SolveWindow;
  const double w = window.Width(), h = window.Height();
  ormel_.selection.radius_squared = (w * w + h * h) * 0.0005;
  if (w > 0.0) ormel_.window.power_of_ten = std::pow(10.0, std::floor(std::log10(w)));
  Database& db = ormel_.db();
  if (db.read_only()) return;
  Recordset model = db.OpenRecordset("select * from Model");
  if (!model.HasRow()) return;
  const MapRect stored{model.Get<double>("WINDOWX1"), model.Get<double>("WINDOWX2"),
                       model.Get<double>("WINDOWY1"), model.Get<double>("WINDOWY2")};
  if (stored == window) return;  // no write for a redraw in place
  const bool current = Current();
  model.Edit();
  model["WINDOWX1"] = window.x1;
  model["WINDOWX2"] = window.x2;
  model["WINDOWY1"] = window.y1;
  model["WINDOWY2"] = window.y2;
  model.Update();
  if (current) drawn_changes_ = db.change_count();
}

void MapViewImpl::CheckZoomLimit() {
  const bool metres = ormel_.db().Scalar("select BasemapMeters from Model").AsBool();
  const double limit = metres ? kZoomLimitMetres : kZoomLimitFeet;
  const MapRect& window = ormel_.window.SolveWindow;
  const bool may = window.Width() >= limit && window.Height() >= limit;
  for (const char* key : {"WINDOWZOOMIN", "WINDOWZOOMWIN"}) ormel_.menus.Enable(key, may);
  for (const Zoom code : {Zoom::kIn, Zoom::kStartRectangle})
    ormel_.menus.Enable("ZOOM_CMDS", static_cast<int>(code), may);
  ormel_.ui().MenusChanged();
}

void MapViewImpl::ApplyView(const MapRect& window) {
  if (!ormel_.project.ProjectOpen) {
    Redraw();
    return;
  }
  RunCommand(ormel_, "ZoomActions", [&] {
    KeepRubberStart([&] {
      SetWindow(UsableWindow(ormel_, window));
      Redraw();
    });
    StoreWindow();
    CheckZoomLimit();
    vg_.vgGDIRefresh();
  });
}

void MapViewImpl::ZoomAbout(DevicePoint at, double factor) {
  if (!vg_.Ready()) return;
  if (factor < 1.0 && !ormel_.menus.Enabled("WINDOWZOOMIN")) return;
  const double x = vg_.vgGDIDeviceToWorldX(at.x, false), y = vg_.vgGDIDeviceToWorldY(at.y, false);
  const MapRect& r = ormel_.window.SolveWindow;
  ApplyView(
      {x + (r.x1 - x) * factor, x + (r.x2 - x) * factor, y + (r.y1 - y) * factor, y + (r.y2 - y) * factor});
}

void MapViewImpl::Pan(DevicePoint from, DevicePoint to) {
  if (!vg_.Ready()) return;
  const double dx = vg_.vgGDIDeviceToWorldX(from.x, false) - vg_.vgGDIDeviceToWorldX(to.x, false);
  const double dy = vg_.vgGDIDeviceToWorldY(from.y, false) - vg_.vgGDIDeviceToWorldY(to.y, false);
  const MapRect& r = ormel_.window.SolveWindow;
  ApplyView({r.x1 + dx, r.x2 + dx, r.y1 + dy, r.y2 + dy});
}

void ZOOM_CMDS(Ormel& ormel, int index) {
  ormel.view().ZoomActions(static_cast<Zoom>(index));
}

}  // namespace ormel
