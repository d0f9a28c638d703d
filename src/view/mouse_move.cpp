// The move of the selected element or vertex under the pointer.
#include "core/ormel.h"
#include "core/status.h"
#include "model/move.h"
#include "model/selection.h"
#include "model/wells.h"
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
      WellRow well;
      if (FindWell(ormel, ormel.selection.vid, well))
        ElemDrawWell(canvas, event.world, well.Setback, well.Radius, DrawMode::kSelected);
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

/// A lifted element under the pointer: all of it, or with one vertex there and the edges at it dashed.
void DrawLifted(const MouseEvent& event, const Lifted::Shape& shape, MapPoint from) {
  VgGdi& vg = event.view.vg();
  const MapPoint by{event.world.x - from.x, event.world.y - from.y};
  const std::size_t count = shape.points.size();
  const auto at = [&](std::size_t i) {
    if (shape.vertex >= 0) return i == static_cast<std::size_t>(shape.vertex) ? event.world : shape.points[i];
    return MapPoint{shape.points[i].x + by.x, shape.points[i].y + by.y};
  };
  if (count == 1 && shape.vertex < 0)
    return vg.vgGDISymbol(at(0), VgSymbol::kDiamond, QBColor(12), QBColor(12));
  const std::size_t edges = shape.closed && count > 2 ? count : count - 1;
  for (std::size_t i = 0; count > 1 && i < edges; ++i) {
    const std::size_t next = (i + 1) % count;
    const bool pulled = static_cast<int>(i) == shape.vertex || static_cast<int>(next) == shape.vertex;
    const bool begins = static_cast<int>(i) == shape.vertex;  // a pulled edge starts at its fixed end
    vg.vgGDILine(at(begins ? next : i), at(begins ? i : next), pulled ? PenStyle::kDash : PenStyle::kSolid,
                 1.0, QBColor(12));
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
    event.view.LiftSelection(event.world);
  }
  void Move(const MouseEvent& event) const override {
    if (!event.ormel.mouse.MoveActive) return;
    const MapViewImpl::OverlayShape overlay(event.view, kMovedKey);
    const Lifted& lifted = event.view.lifted();
    const bool one = event.ormel.selection.SelectedType != Element::kNone;
    for (const Lifted::Shape& shape : lifted.shapes) DrawLifted(event, shape, lifted.from);
    if (one) DrawMovedPoint(event, {event.ormel, event.view.vg()});
  }
  void Release(const MouseEvent& event) const override {
    RemoveRubber(event.view);
    event.ormel.mouse.cursor = 0;
    ElemEndMove(event.ormel, event.view.lifted().from, event.world);
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
