// The move of the selected element or vertex under the pointer.
#include <optional>

#include "core/ormel.h"
#include "core/status.h"
#include "store/bulk.h"
#include "store/database.h"
#include "view/map_view_impl.h"
#include "view/mouse_actions.h"
#include "view/symbols.h"

namespace ormel {
namespace {

const Overlay::Key kMovedKey{Overlay::Group::kRubber, Element::kNone, 1, {}};

/// The vertices before and behind one of a polygon, for the rubber edges.
struct Edges {
  std::optional<MapPoint> before, after;
};

Edges EdgesOf(Ormel& ormel, Pid pid, Vid vid, bool closed) {
  Edges edges;
  std::optional<MapPoint> first, previous;
  bool found = false;
  RowReader rows(ormel.db(), "select VID,X,Y from Vertices where PID=? order by Seq", {pid});
  while (rows.Next()) {
    const MapPoint at{rows.Double(1), rows.Double(2)};
    if (found && !edges.after) edges.after = at;
    if (rows.Long(0) == vid) {
      found = true;
      edges.before = previous;
    }
    if (!first) first = at;
    previous = at;
  }
  if (!closed || !found) return edges;
  if (!edges.before) edges.before = previous;
  if (!edges.after) edges.after = first;
  return edges;
}

bool IsClosed(Ormel& ormel, Element element, Pid pid) {
  if (element == Element::kInhomogeneity) return true;
  return element == Element::kBarrier &&
         ormel.db().Scalar("select Closed from NoFlowStrings where PID=?", {pid}).AsBool();
}

void DrawMovedPoint(const MouseEvent& event, const MapCanvas& canvas) {
  Ormel& ormel = event.ormel;
  switch (ormel.selection.SelectedType) {
    case Element::kWell: {
      RowReader rows(ormel.db(), "select Setback,Radius from Wells where VID=?", {ormel.selection.vid});
      if (rows.Next()) ElemDrawWell(canvas, event.world, rows.Double(0), rows.Double(1), DrawMode::kSelected);
      return;
    }
    case Element::kTestPoint:
      return ModelDrawTestPoint(canvas, event.world, {}, 0.0, 0.0, DrawMode::kSelected);
    case Element::kParticle:
      return ModelDrawParticle(canvas, event.world, DrawMode::kSelected);
    default:
      return ElemDrawVertex(canvas, event.world, DrawMode::kSelected);
  }
}

class Moving final : public MouseAction {
 public:
  void Press(const MouseEvent& event) const override {
    Ormel& ormel = event.ormel;
    const bool text = ormel.selection.SelectedType == Element::kTextLabel;
    Feedback(ormel, text ? "Place cursor at new text location and release mouse button"
                         : "Place cursor at new vertex location and release mouse button");
    if (text) ormel.mouse.cursor = 3;
    ormel.mouse.MoveActive = true;
  }
  void Move(const MouseEvent& event) const override {
    if (!event.ormel.mouse.MoveActive) return;
    const Selection& selection = event.ormel.selection;
    const MapViewImpl::OverlayShape overlay(event.view, kMovedKey);
    VgGdi& vg = event.view.vg();
    if (selection.pid > 0) {
      const Edges edges = EdgesOf(event.ormel, selection.pid, selection.vid,
                                  IsClosed(event.ormel, selection.SelectedType, selection.pid));
      for (const auto& end : {edges.before, edges.after})
        if (end) vg.vgGDILine(*end, event.world, PenStyle::kDash, 1.0, QBColor(12));
    }
    DrawMovedPoint(event, {event.ormel, vg});
  }
  void Release(const MouseEvent& event) const override {
    KeepLast(event);
    RemoveRubber(event.view);
    Leave(event);
    if (event.view.hooks().end_move) event.view.hooks().end_move(event.world);
  }
  void RightPress(const MouseEvent& event) const override { Cancel(event); }
  void Cancel(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    Leave(event);
    SelectStatus(event.ormel);
    event.view.TurnOnMenus();
  }

 private:
  static void Leave(const MouseEvent& event) {
    event.ormel.mouse.MoveActive = false;
    event.ormel.mouse.cursor = 0;
    event.ormel.mouse.ButtonDown = false;
    event.ormel.mouse.MovePending = false;
  }
};

const Moving kMoving;

}  // namespace

const MouseAction& MoveAction() {
  return kMoving;
}

}  // namespace ormel
