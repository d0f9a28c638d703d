#include "view/map_view_impl.h"

#include <array>
#include <chrono>
#include <utility>
#include <vector>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/document.h"
#include "model/selection.h"
#include "model/validity.h"
#include "store/database.h"
#include "view/symbols.h"
#include "view/traced_lines.h"

namespace ormel {
namespace {

/// A picture that took longer the last time gets a wait box [s].
constexpr double kSlow = 0.5;

/// Menus and items that rest while the map is drawn: control and number of its items.
constexpr std::pair<const char*, int> kRestWhileDrawing[] = {
    {"FILE_CMDS", 8}, {"TOOLS_CMDS", 7}, {"SimpleWHPAMenu", 1}, {"INSPECTORMENU", 1},
    {"EXPORT", 4},    {"EXPORTDB", 4},   {"Import", 6},         {"EDITMENU", 1},
    {"VIEWMENU", 1},  {"ELEMMENU", 1},   {"MODELMENU", 1},      {"WINDOWMENU", 1}};

class MenusAtRest {
 public:
  explicit MenusAtRest(MenuState& menus) : menus_(menus) {
    for (const auto& [control, count] : kRestWhileDrawing)
      for (int index = 0; index < count; ++index)
        if (menus_.Enabled(control, index)) {
          menus_.Enable(control, index, false);
          resting_.emplace_back(control, index);
        }
  }
  ~MenusAtRest() {
    for (const auto& [control, index] : resting_) menus_.Enable(control, index, true);
  }
  MenusAtRest(const MenusAtRest&) = delete;
  MenusAtRest& operator=(const MenusAtRest&) = delete;

 private:
  MenuState& menus_;
  std::vector<std::pair<const char*, int>> resting_;
};

class FlagDuring {
 public:
  explicit FlagDuring(bool& flag) : flag_(flag) { flag_ = true; }
  ~FlagDuring() { flag_ = false; }
  FlagDuring(const FlagDuring&) = delete;
  FlagDuring& operator=(const FlagDuring&) = delete;

 private:
  bool& flag_;
};

/// A picture on the surface from its beginning to its end.
class Picture {
 public:
  explicit Picture(MapSurface* surface) : surface_(surface) {
    if (surface_ != nullptr) device_ = surface_->BeginPicture();
  }
  ~Picture() {
    if (device_ != nullptr) surface_->EndPicture();
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;
  DrawingDevice* device() const { return device_; }

 private:
  MapSurface* surface_;
  DrawingDevice* device_ = nullptr;
};

struct EditorGrid {
  bool shown = false;
  double spacing = 0.0;
};

EditorGrid GridOf(Ormel& ormel) {
  EditorGrid grid;
  grid.shown = ormel.layers.On(Layer::kEditorGrid);
  grid.spacing = ormel.db().Scalar("select EDITGRIDSpacing from Model").AsDouble();
  return grid;
}

}  // namespace

MapViewImpl::MapViewImpl(Ormel& ormel, MapSurface* surface) : ormel_(ormel), surface_(surface), vg_(ormel) {
  vg_.SetRefreshTarget([this] {
    if (surface_ != nullptr) surface_->Update();
  });
  ormel.changes.Subscribe(*this);
}

MapViewImpl::~MapViewImpl() {
  ormel_.changes.Unsubscribe(*this);
}

MapViewImpl::OverlayShape::OverlayShape(MapViewImpl& view, const Overlay::Key& key)
    : view_(view), redirect_(view.vg_, view.overlay_.Start(key)) {}

MapViewImpl::OverlayShape::~OverlayShape() {
  if (view_.surface_ != nullptr) view_.surface_->Update();
}

void MapViewImpl::DrawPicture(DrawingDevice& device) {
  if (!ormel_.project.ProjectOpen) {
    device.Clear(kMapBackground);
    return;
  }
  DisplayList ground;
  ground.Shape(device);
  ground.Clear(kMapBackground);
  const EditorGrid grid = GridOf(ormel_);
  MapRect window = ormel_.window.SolveWindow;
  const VgInit init = vg_.vgGDIInitObject(ground, window, grid.shown, grid.spacing);
  if (init == VgInit::kOverflow) {  // the zoom ends here: back to the window that could be drawn
    window = drawn_window_;
    if (vg_.vgGDIInitObject(ground, window, false, grid.spacing) != VgInit::kDone)
      return ground.Replay(device);
  }
  if (init == VgInit::kUnchanged) return ground.Replay(device);
  vg_.Retarget(device);
  ormel_.window.SolveWindow = window;
  drawn_window_ = window;
  ormel_.solution.default_step = ComputeDefaultStep(ormel_);
  MapCanvas map = canvas();
  if (!lifted_.ids.empty()) map.lifted = &lifted_.ids;
  picture_.Draw(map, state_, device, ground, [this](std::string_view text) { Feedback(ormel_, text); });
}

void MapViewImpl::Redraw() {
  if (drawing_) return;
  const FlagDuring drawing(drawing_);
  const Named named(ormel_, "Redraw");
  if (ormel_.project.ProjectOpen) OfferLayers(false);
  overlay_.RemoveGroup(Overlay::Group::kDrawn);
  overlay_.RemoveGroup(Overlay::Group::kSelected);
  const Picture picture(surface_);
  if (picture.device() == nullptr) return;
  ++redraw_count_;
  const std::string feedback = Feedback(std::as_const(ormel_));
  const auto start = std::chrono::steady_clock::now();
  {
    const bool slow = last_seconds_ > kSlow && ormel_.project.ProjectOpen;
    if (slow) PleaseWaitShow(ormel_, "Redrawing...");
    const MenusAtRest rest(ormel_.menus);
    const bool disabled = std::exchange(ormel_.mouse.MouseDisabled, true);
    struct After {
      MapViewImpl& view;
      DrawingDevice& device;
      bool disabled, slow;
      ~After() {
        view.idle_.Shape(device);
        view.vg_.Retarget(view.idle_);
        view.ormel_.mouse.MouseDisabled = disabled;
        if (slow) PleaseWaitHide(view.ormel_);
      }
    } const after{*this, *picture.device(), disabled, slow};
    DrawPicture(*picture.device());
  }
  NoteDrawn();
  last_seconds_ = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  if (Feedback(std::as_const(ormel_)) != feedback) Feedback(ormel_, feedback);
  shown_.clear();
  ShowSelection();
  corners_of_ = kNoPolygon;
  ShowDigitized();
}

void MapViewImpl::DrawTracedLines() {
  if (!HasTracedLines(ormel_) || !vg_.Ready()) return;
  const OverlayShape shape(*this, {Overlay::Group::kDrawn, Element::kNone, -1, {}});
  ModelDrawTracedLines(canvas());
}

void MapViewImpl::ElemTurnOffSelection() {
  const Named named(ormel_, "ElemTurnOffSelection");
  overlay_.RemoveGroup(Overlay::Group::kSelected);
  shown_.clear();
  ClearSelection(ormel_);
  SetUpToolbar();
  vg_.vgGDIRefresh();
}

void MapViewImpl::ClearMouseMode() {
  MouseState& mouse = ormel_.mouse;
  mouse.MouseMode = MouseMode::kSelect;
  mouse.MouseElement = Element::kNone;
  mouse.CurrentPID = kNoPolygon;
  mouse.LineInProgress = false;
  mouse.MovePending = false;
  mouse.MoveActive = false;
  ormel_.selection.SelectedType = Element::kNone;
  if (ormel_.ports.document != nullptr) ormel_.ports.document->selected.clear();
  overlay_.RemoveGroup(Overlay::Group::kRubber);
  SelectStatus(ormel_);
}

namespace {

constexpr std::array kMenus{"FILEMENU",  "HSEMENU",   "EDITMENU",   "VIEWMENU", "ELEMMENU",
                            "MODELMENU", "TOOLSMENU", "WINDOWMENU", "HELPMENU", "Toolbar1"};

/// A button of the toolbar and what enables it.
struct ToolButton {
  const char* key;
  bool needs_project;
  int edit_command;  ///< follows this item of EDIT_CMDS; 0 for none
};
constexpr std::array kToolButtons{
    ToolButton{"FILENEW", false, 0},          ToolButton{"FILEOPEN", false, 0},
    ToolButton{"FILEPRINT", true, 0},         ToolButton{"EDITPROPERTIES", true, 1},
    ToolButton{"EDITMOVEVERTEX", true, 2},    ToolButton{"EDITDELETE", true, 3},
    ToolButton{"EDITREFINE", true, 4},        ToolButton{"ELEMWELL", true, 0},
    ToolButton{"ELEMLINESINK", true, 0},      ToolButton{"ELEMNOFLOW", true, 0},
    ToolButton{"ELEMINHO", true, 0},          ToolButton{"MODELPARTICLE", true, 0},
    ToolButton{"MODELTESTPOINT", true, 0},    ToolButton{"MODELFLUXINSPECT", true, 0},
    ToolButton{"MODELCAPZONE", true, 0},      ToolButton{"MODELCALC", true, 0},
    ToolButton{"MODELSETTINGS", true, 0},     ToolButton{"WINDOWZOOMOUT", true, 0},
    ToolButton{"WINDOWZOOMEXTENTS", true, 0}, ToolButton{"WINDOWSCROLLLEFT", true, 0},
    ToolButton{"WINDOWSCROLLRIGHT", true, 0}, ToolButton{"WINDOWSCROLLUP", true, 0},
    ToolButton{"WINDOWSCROLLDOWN", true, 0},  ToolButton{"WINDOWRECENTER", true, 0},
    ToolButton{"ArbitraryWHPA", true, 0},     ToolButton{"CalculatedWHPA", true, 0},
    ToolButton{"MultipleWHPA", true, 0},      ToolButton{"RefreshWHPA", true, 0},
};

}  // namespace

void MapViewImpl::TurnOffMenus() {
  for (const char* menu : kMenus) ormel_.menus.Enable(menu, false);
  ormel_.mouse.MenusOff = true;
  ormel_.ui().MenusChanged();
}

void MapViewImpl::TurnOnMenus() {
  for (const char* menu : kMenus) ormel_.menus.Enable(menu, true);
  ormel_.mouse.MenusOff = false;
  ormel_.ui().MenusChanged();
}

void MapViewImpl::SetUpToolbar() {
  const bool open = ormel_.project.ProjectOpen;
  for (const ToolButton& button : kToolButtons) {
    bool on = open || !button.needs_project;
    if (button.edit_command > 0) on = on && ormel_.menus.Enabled("EDIT_CMDS", button.edit_command);
    ormel_.menus.Enable(button.key, on);
  }
  // The two that zoom in follow the zoom limit while a project is open.
  if (!open)
    for (const char* key : {"WINDOWZOOMIN", "WINDOWZOOMWIN"}) ormel_.menus.Enable(key, false);
  ormel_.ui().MenusChanged();
}

void MapViewImpl::DisableMouse() {
  for (int i = 0; i < 2; ++i) {
    float& kept = ormel_.mouse.Rubber[static_cast<std::size_t>(i)];
    kept = static_cast<float>(static_cast<int>(kept));
  }
  ormel_.mouse.MouseDisabled = true;
}

void MapViewImpl::EnableMouse() {
  DisableMouse();
  ormel_.mouse.MouseDisabled = false;
}

}  // namespace ormel
