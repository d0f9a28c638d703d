// The move of the selected element or vertex under the pointer.
#include "core/ormel.h"
#include "core/status.h"
#include "model/move.h"
#include "model/selection.h"
#include "store/bulk.h"
#include "store/database.h"
#include "view/map_view_impl.h"
#include "view/mouse_actions.h"
#include "view/symbols.h"

namespace ormel {
namespace {

const Overlay::Key kMovedKey{Overlay::Group::kRubber, Element::kNone, 1, {}};

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
      const Neighbours edges =
          NeighboursOf(event.ormel, selection.SelectedType, selection.pid, selection.vid);
      for (const auto& end : {edges.before, edges.after})
        if (end) vg.vgGDILine(*end, event.world, PenStyle::kDash, 1.0, QBColor(12));
    }
    DrawMovedPoint(event, {event.ormel, vg});
  }
  void Release(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    event.ormel.mouse.cursor = 0;
    ElemEndMove(event.ormel, event.world);
  }
  void RightPress(const MouseEvent& event) const override { Cancel(event); }
  void Cancel(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    ElemCancelMove(event.ormel);
  }
};

const Moving kMoving;

}  // namespace

const MouseAction& MoveAction() {
  return kMoving;
}

}  // namespace ormel
