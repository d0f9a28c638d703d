#include "view/mouse_actions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <utility>
#include <vector>

#include "basemaps/bbm_groups.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "document/elements.h"
#include "document/kinds.h"
#include "model/barriers.h"
#include "model/crossing.h"
#include "model/digitize.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/observations.h"
#include "model/selection.h"
#include "model/several.h"
#include "model/uniform_flow.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"
#include "tools/info_panels.h"
#include "view/map_view_impl.h"
#include "view/mouse.h"
#include "whpa/commands.h"

namespace ormel {
namespace {

constexpr int kArrowCursor = 0;
const Overlay::Key kRubberKey{Overlay::Group::kRubber, Element::kNone, 0, {}};
const Pen kRubberPen{PenStyle::kDash, 1.0, QBColor(8)};

DevicePoint RubberStart(const Ormel& ormel) {
  return {static_cast<int>(std::lround(ormel.mouse.Rubber[0])),
          static_cast<int>(std::lround(ormel.mouse.Rubber[1]))};
}

/// A hand is never quite still.
bool Dragged(const MouseEvent& event) {
  constexpr int kStill = 3;  // pixels
  const DevicePoint start = RubberStart(event.ormel);
  return std::abs(event.device.x - start.x) > kStill || std::abs(event.device.y - start.y) > kStill;
}

/// From the start of the rubber line to the pointer [map units].
Extents RubberBox(const MouseEvent& event) {
  const VgGdi& vg = event.view.vg();
  const DevicePoint start = RubberStart(event.ormel);
  const double x = vg.vgGDIDeviceToWorldX(start.x, false), y = vg.vgGDIDeviceToWorldY(start.y, false);
  return {std::min(x, event.world.x), std::max(x, event.world.x), std::min(y, event.world.y),
          std::max(y, event.world.y)};
}

/// A right click on a vertex of a string or domain opens its information panel.  True when it did.
bool OpenPanel(const MouseEvent& event) {
  const Vid vid = ElemFindVertex(event.ormel, event.world);
  if (vid < 0) return false;
  const Owner owner = OwnerOf(event.ormel, vid);
  if (owner.element != Element::kLinesink && owner.element != Element::kInhomogeneity) return false;
  ShowInfoPanel(event.ormel, owner.element, owner.pid);
  return true;
}

/// A click selects, a dragged box selects all within it; with Ctrl or Shift they come to the selection or
/// leave it.  A click with Shift inspects the results, and so does nothing before it is known to be one.
class Selecting final : public MouseAction {
 public:
  void Press(const MouseEvent& event) const override {
    KeepLast(event);
    StartRubber(event);
    event.view.press_shift() = event.shift;
    if (event.shift == kCtrlKey)
      ToggleSelected(event.ormel, LastClick(event.ormel));
    else if (event.shift == 0)
      ElemSelectElement(event.ormel);
  }
  void Move(const MouseEvent& event) const override {
    if (event.view.press_shift() >= 0 && Dragged(event)) DrawRubberRectangle(event);
  }
  void Release(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    const int shift = std::exchange(event.view.press_shift(), -1);
    if (shift < 0) return;  // the press placed something, and ended that mode
    if (Dragged(event))
      SelectWithin(event.ormel, RubberBox(event), shift != 0);
    else if (shift == kShiftKey)
      PressWithKeys({event.view, event.ormel, event.device, event.world, shift});
  }
  void RightPress(const MouseEvent& event) const override { OpenPanel(event); }
};

/// One click places something; the procedure ends the mode.
class Placing : public MouseAction {
 public:
  using Place = void (*)(Ormel&);
  explicit Placing(Place place, bool right_click_ends = false)
      : place_(place), right_click_ends_(right_click_ends) {}
  void Press(const MouseEvent& event) const override {
    KeepLast(event);
    StartRubber(event);
    RemoveRubber(event.view);
    event.ormel.mouse.cursor = kArrowCursor;
    place_(event.ormel);
  }
  void RightPress(const MouseEvent& event) const override {
    if (right_click_ends_) Cancel(event);
  }
  void Cancel(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    EndPlacing(event.ormel);
  }

 private:
  Place place_;
  bool right_click_ends_;
};

void AddUniformFlow(Ormel& ormel) {
  ElemAddUniformFlow(ormel, false);
}
void RecentreAtClick(Ormel& ormel) {
  ormel.view().ZoomActions(Zoom::kRecentreAtClick);
}

/// The arrow of the uniform flow follows the pointer until it is placed.
class PlacingFlow final : public Placing {
 public:
  PlacingFlow() : Placing(AddUniformFlow) {}
  void Move(const MouseEvent& event) const override {
    constexpr double kLength = 40.0, kBarb = 10.0;  // pixels
    RowReader rows(event.ormel.db(), "select UNIFLOWOrientation from Model");
    const double angle = (rows.Next() ? rows.Double(0) : 0.0) * 3.14159265358979 / 180.0;
    const double u = std::cos(angle), v = -std::sin(angle);  // rows grow downward
    const auto at = [&](double along, double aside) {
      return DevicePoint{event.device.x + static_cast<int>(std::lround(along * u - aside * v)),
                         event.device.y + static_cast<int>(std::lround(along * v + aside * u))};
    };
    const DevicePoint shape[] = {event.device, at(kLength, 0.0), at(kLength - kBarb, kBarb * 0.5),
                                 at(kLength - kBarb, -kBarb * 0.5)};
    for (std::size_t i = 0; i < 4; ++i) {
      event.ormel.mouse.Rubber[4 + 2 * i] = static_cast<float>(shape[i].x);
      event.ormel.mouse.Rubber[5 + 2 * i] = static_cast<float>(shape[i].y);
    }
    const MapViewImpl::OverlayShape overlay(event.view, kRubberKey);
    const Pen pen{PenStyle::kSolid, 1.0, QBColor(2)};
    for (std::size_t i : {0U, 2U, 3U})
      event.view.vg().target()->Polyline(std::array{shape[1], shape[i]}, pen);
  }
};

/// Vertices by clicks, a right click ends.
class Digitizing final : public MouseAction {
 public:
  using Vertex = void (*)(Ormel&, bool first);
  using End = void (*)(Ormel&);
  Digitizing(Vertex vertex, End end) : vertex_(vertex), end_(end) {}

  void Press(const MouseEvent& event) const override {
    const bool first = !event.ormel.mouse.LineInProgress;
    KeepLast(event);
    StartRubber(event);
    RemoveRubber(event.view);
    vertex_(event.ormel, first);
    StartAtLastVertex(event);
  }
  void Move(const MouseEvent& event) const override {
    if (event.ormel.mouse.LineInProgress) DrawRubberLine(event);
  }
  void RightPress(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    if (event.ormel.mouse.LineInProgress)
      end_(event.ormel);
    else
      AbandonDigitizing(event.ormel);  // nothing was drawn: the row made for it goes
  }
  void Cancel(const MouseEvent& event) const override {
    Ormel& ormel = event.ormel;
    const Pid pid = ormel.mouse.CurrentPID;
    const ElementKind* kind = FindKind(ormel.mouse.MouseElement);
    const bool drawing = ormel.mouse.LineInProgress && kind != nullptr && pid != kNoPolygon;
    const auto half_drawn = [&] { return VerticesOf(ormel, pid).size() < kind->fewest; };
    // Its end is refused as long as it would cross itself: the way out gives it up.
    const auto cannot_close = [&] {
      return IsRing(ormel, kind->element, pid) && CrossesItself(PointsOf(ormel, pid), true);
    };
    if (!drawing || !(half_drawn() || cannot_close())) return RightPress(event);
    RemoveRubber(event.view);
    EndDigitizing(ormel);
    RemoveElement(ormel, {kind->element, pid});
    ormel.view().TurnOnMenus();
  }
  void Back(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    TakeBackVertex(event.ormel);
    StartAtLastVertex(event);
  }

 private:
  /// The vertex may have gone to a corner of another domain.
  static void StartAtLastVertex(const MouseEvent& event) {
    if (event.ormel.mouse.CurrentPID == kNoPolygon) return;
    const std::vector<VertexRow> rows = VerticesOf(event.ormel, event.ormel.mouse.CurrentPID);
    if (rows.empty()) return;
    const DevicePoint at = event.view.vg().vgGDIWorldToDevice(rows.back().at.x, rows.back().at.y);
    event.ormel.mouse.Rubber[0] = static_cast<float>(at.x);
    event.ormel.mouse.Rubber[1] = static_cast<float>(at.y);
  }
  Vertex vertex_;
  End end_;
};

/// The zoom rectangle: dragged, or set by two clicks.
class ZoomRectangle final : public MouseAction {
 public:
  void Press(const MouseEvent& event) const override {
    if (event.ormel.mouse.LineInProgress) return Apply(event);
    KeepLast(event);
    StartRubber(event);
    event.ormel.mouse.LineInProgress = true;
  }
  void Move(const MouseEvent& event) const override {
    if (event.ormel.mouse.LineInProgress) DrawRubberRectangle(event);
  }
  void Release(const MouseEvent& event) const override {
    if (event.ormel.mouse.LineInProgress && Dragged(event)) Apply(event);
  }
  void RightPress(const MouseEvent& event) const override { Cancel(event); }
  void Cancel(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    EndPlacing(event.ormel);
  }

 private:
  static void Apply(const MouseEvent& event) {
    Ormel& ormel = event.ormel;
    const Extents box = RubberBox(event);
    KeepLast(event);
    RemoveRubber(event.view);
    ormel.mouse.LineInProgress = false;
    ormel.view().ZoomActions(Zoom::kApplyRectangle, WindowOf(box));
    ormel.view().TurnOnMenus();
  }
};

/// Two clicks give the stream boundary of a protection area.
class StreamBoundary final : public MouseAction {
 public:
  void Press(const MouseEvent& event) const override {
    const bool first = !event.ormel.mouse.LineInProgress;
    KeepLast(event);
    StartRubber(event);
    RemoveRubber(event.view);
    event.ormel.mouse.LineInProgress = true;
    ElemAddStreamBoundaryVertex(event.ormel, first ? 1 : 2);
    // A second point on the first one is refused, and the line goes on.
    if (!event.ormel.mouse.LineInProgress) EndPlacing(event.ormel);
  }
  void Move(const MouseEvent& event) const override {
    if (event.ormel.mouse.LineInProgress) DrawRubberLine(event);
  }
  void Back(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    TakeBackVertex(event.ormel);
  }
  void RightPress(const MouseEvent& event) const override { Cancel(event); }
  void Cancel(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    CancelStreamBoundary(event.ormel);
    EndPlacing(event.ormel);
  }
};

/// Picks base maps; the mode stays until the right click.
class BasemapSelection final : public MouseAction {
 public:
  void Press(const MouseEvent& event) const override {
    KeepLast(event);
    StartRubber(event);
    BBMSelect(event.ormel);
  }
  void RightPress(const MouseEvent& event) const override { Cancel(event); }
  void Cancel(const MouseEvent& event) const override {
    EndPlacing(event.ormel);
    event.ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  }
};

const Selecting kSelecting;
const Placing kWell{ElemAddWell}, kTestPoint{ModelAddTestPoint}, kParticle{ModelAddParticle},
    kText{ModelAddText, true}, kRecentre{RecentreAtClick};
const PlacingFlow kFlow;
const BasemapSelection kBasemaps;
const ZoomRectangle kRectangle;
const Digitizing kLinesink{ElemAddLinesinkVertex, ElemEndLinesinkString},
    kBarrier{ElemAddNoFlowVertex, ElemEndNoFlowString},
    kInhomogeneity{ElemAddInhoVertex, ElemEndInhomogeneity},
    kFluxLine{ModelAddFluxVertex, ModelEndFluxInspect}, kCapzone{ModelAddCZVertex, ModelEndCapzone};
const StreamBoundary kStream;
const MouseAction kNothing;

struct ActionRow {
  MouseMode mode;
  Element element;
  const MouseAction* action;
};
const ActionRow kActions[] = {
    {MouseMode::kPlace, Element::kWell, &kWell},
    {MouseMode::kPlace, Element::kUniformFlow, &kFlow},
    {MouseMode::kPlace, Element::kUniformFlowArrow, &kFlow},
    {MouseMode::kPlace, Element::kTestPoint, &kTestPoint},
    {MouseMode::kPlace, Element::kParticle, &kParticle},
    {MouseMode::kPlace, Element::kTextLabel, &kText},
    {MouseMode::kPlace, Element::kRecentre, &kRecentre},
    {MouseMode::kPlace, Element::kBaseMapSelection, &kBasemaps},
    {MouseMode::kRectangle, Element::kZoomRectangle, &kRectangle},
    {MouseMode::kDigitize, Element::kLinesink, &kLinesink},
    {MouseMode::kDigitize, Element::kBarrier, &kBarrier},
    {MouseMode::kDigitize, Element::kInhomogeneity, &kInhomogeneity},
    {MouseMode::kDigitize, Element::kFluxLine, &kFluxLine},
    {MouseMode::kDigitize, Element::kCapzone, &kCapzone},
    {MouseMode::kDigitize, Element::kStreamBoundary, &kStream},
};

const MouseAction* FindAction(MouseMode mode, Element element) {
  for (const ActionRow& row : kActions)
    if (row.mode == mode && row.element == element) return row.action;
  return nullptr;
}

void DrawRubber(const MouseEvent& event, std::span<const DevicePoint> shape) {
  event.ormel.mouse.Rubber[2] = static_cast<float>(event.device.x);
  event.ormel.mouse.Rubber[3] = static_cast<float>(event.device.y);
  const MapViewImpl::OverlayShape overlay(event.view, kRubberKey);
  event.view.vg().target()->Polyline(shape, kRubberPen);
}

}  // namespace

const MouseAction& SelectAction() {
  return kSelecting;
}

const MouseAction& CurrentAction(const Ormel& ormel) {
  const MouseState& mouse = ormel.mouse;
  if (mouse.MovePending) return MoveAction();
  if (mouse.MouseMode == MouseMode::kSelect) return kSelecting;
  const MouseAction* found = FindAction(mouse.MouseMode, mouse.MouseElement);
  return found != nullptr ? *found : kNothing;
}

bool HasAction(MouseMode mode, Element element) {
  return mode == MouseMode::kSelect || FindAction(mode, element) != nullptr;
}

void KeepLast(const MouseEvent& event) {
  // The digits beyond a pixel's share would only fill the boxes that show the place.
  const double pixel = event.ormel.mouse.Snap ? 0.0 : event.view.vg().vgGDIPixelSize();
  event.ormel.mouse.LastX = Rounded(event.world.x, pixel);
  event.ormel.mouse.LastY = Rounded(event.world.y, pixel);
}

void StartRubber(const MouseEvent& event) {
  for (const std::size_t i : {0U, 2U}) {
    event.ormel.mouse.Rubber[i] = static_cast<float>(event.device.x);
    event.ormel.mouse.Rubber[i + 1] = static_cast<float>(event.device.y);
  }
}

void DrawRubberLine(const MouseEvent& event) {
  DrawRubber(event, std::array{RubberStart(event.ormel), event.device});
}

void DrawRubberRectangle(const MouseEvent& event) {
  const DevicePoint a = RubberStart(event.ormel), b = event.device;
  DrawRubber(event, std::array{a, DevicePoint{b.x, a.y}, b, DevicePoint{a.x, b.y}, a});
}

void RemoveRubber(MapViewImpl& view) {
  view.overlay().RemoveGroup(Overlay::Group::kRubber);
  view.vg().vgGDIRefresh();
}

}  // namespace ormel
