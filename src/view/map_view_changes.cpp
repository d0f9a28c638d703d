// The map follows the change records: picture, highlights, what is being drawn, toolbar.
#include <algorithm>
#include <utility>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/status.h"
#include "document/elements.h"
#include "document/record.h"
#include "model/selection.h"
#include "store/bulk.h"
#include "store/database.h"
#include "view/map_view_impl.h"
#include "view/symbols.h"

namespace ormel {
namespace {

/// More new elements than these are not laid over the picture one by one.
constexpr std::size_t kMostLaidOver = 64;

bool InTheProject(const Touched& touched) {
  return touched.Has(Role::kModel) || touched.Has(Role::kRun);
}

/// A string is known by its polygon: the vertex in question changes while it is drawn.
Overlay::Key KeyOf(Overlay::Group group, Element element, Vid vid, Pid pid) {
  return {group, element, pid > 0 ? pid : vid, {}};
}

}  // namespace

bool MapViewImpl::Current() const {
  return ormel_.project.db != nullptr && drawn_connection_ == ormel_.project.connections &&
         drawn_changes_ == ormel_.project.db->change_count();
}

void MapViewImpl::NoteDrawn() {
  outdated_ = false;
  if (ormel_.project.db == nullptr || !ormel_.project.db->IsOpen()) return;
  drawn_connection_ = ormel_.project.connections;
  drawn_changes_ = ormel_.project.db->change_count();
}

void MapViewImpl::Refresh() {
  if (!ormel_.project.ProjectOpen) return vg_.vgGDIRefresh();
  if (!Current() && vg_.Ready() && !ormel_.layers.On(Layer::kManualRedraw)) Redraw();
  OfferLayers(false);
  ShowSelection();
  vg_.vgGDIRefresh();
}

void MapViewImpl::DrawOver(Element element, Vid vid, Pid pid) {
  const OverlayShape shape(*this, KeyOf(Overlay::Group::kDrawn, element, vid, pid));
  DrawOneElement(canvas(), element, vid, pid, DrawMode::kNormal);
}

void MapViewImpl::ShowPlace(Element element, MapPoint at) {
  if (!ormel_.project.ProjectOpen || !vg_.Ready()) return;
  const Overlay::Key key{Overlay::Group::kDrawn, element, -1, at};
  places_.push_back(key);
  const OverlayShape shape(*this, key);
  if (element == Element::kWell)
    ElemDrawWell(canvas(), at, 0.0, 1.0, DrawMode::kNormal);
  else if (element == Element::kTestPoint)
    ModelDrawTestPoint(canvas(), at, {}, 0.0, 0.0, DrawMode::kNormal);
  else if (element == Element::kParticle)
    ModelDrawParticle(canvas(), at, DrawMode::kNormal);
  else
    ElemDrawVertex(canvas(), at, DrawMode::kSelected);
}

void MapViewImpl::RemovePlaces() {
  if (places_.empty() || ormel_.mouse.LineInProgress) return;
  for (const Overlay::Key& key : places_) overlay_.Remove(key);
  places_.clear();
  vg_.vgGDIRefresh();
}

void MapViewImpl::ShowDigitized() {
  const MouseState& mouse = ormel_.mouse;
  if (mouse.MouseMode != MouseMode::kDigitize || mouse.CurrentPID == kNoPolygon || !vg_.Ready()) return;
  if (mouse.MouseElement == Element::kCapzone) TurnOnLayer(ormel_, Layer::kCapzones);
  // The corners of the domains that stand show while a new one is drawn.
  if (mouse.MouseElement == Element::kInhomogeneity && corners_of_ != mouse.CurrentPID) {
    corners_of_ = mouse.CurrentPID;
    for (const ElementId& id : ElementsOf(ormel_, Element::kInhomogeneity)) DrawOver(id.element, -1, id.key);
  }
  DrawOver(mouse.MouseElement, -1, mouse.CurrentPID);
}

void MapViewImpl::ShowSelection() {
  const Selection& one = ormel_.selection;
  const bool alone = one.SelectedType != Element::kNone;
  const Vid vertex = alone ? one.vid : -1;
  std::vector<ElementId> now = SelectedElements(ormel_);
  if (now == shown_ && vertex == shown_vertex_) return;
  shown_ = std::move(now);
  shown_vertex_ = vertex;
  overlay_.RemoveGroup(Overlay::Group::kSelected);
  vg_.vgGDIRefresh();
  if (!vg_.Ready() || !ormel_.project.ProjectOpen) return;
  for (const ElementId& id : shown_) {
    const auto [vid, pid] = PlaceOf(id);
    const OverlayShape shape(*this, {Overlay::Group::kSelected, id.element, id.key, {}});
    DrawOneElement(canvas(), id.element, alone ? vertex : vid, pid, DrawMode::kSelected);
  }
}

void MapViewImpl::LiftSelection(MapPoint from) {
  lifted_ = {from, {}, {}};
  const Selection& one = ormel_.selection;
  for (const ElementId& id : SelectedElements(ormel_)) {
    Lifted::Shape shape{PointsOf(ormel_, id), false, -1};
    const std::vector<Vid> vids = VertexIdsOf(ormel_, id);
    if (!vids.empty())
      shape.closed = NeighboursOf(ormel_, id.element, id.key, vids.front()).before.has_value();
    if (one.SelectedType != Element::kNone) {
      const auto vertex = std::find(vids.begin(), vids.end(), one.vid);
      shape.vertex = vertex == vids.end() ? 0 : static_cast<int>(vertex - vids.begin());
    }
    lifted_.shapes.push_back(std::move(shape));
    lifted_.ids.push_back(id);
  }
  if (!ormel_.layers.On(Layer::kManualRedraw)) Redraw();
}

void MapViewImpl::LetGo() {
  if (lifted_.ids.empty() || ormel_.mouse.MoveActive) return;
  lifted_ = {};
  outdated_ = true;
  drawn_connection_ = -1;
}

void MapViewImpl::ForgetGone() {
  const std::vector<ElementId> selected = SelectedElements(ormel_);
  const bool gone =
      std::any_of(selected.begin(), selected.end(), [&](const ElementId& id) { return !Exists(ormel_, id); });
  if (gone) SelectItems(ormel_, selected);
}

void MapViewImpl::FollowByHand(const ChangeRecord& record) {
  bool obsolete = false;
  std::size_t laid_over = 0;
  for (const Touched& touched : TouchedBy(record.rows)) {
    if (!InTheProject(touched)) continue;
    const ElementKind* kind = FindKind(touched.table);
    if (touched.added && kind != nullptr && vg_.Ready() && ++laid_over <= kMostLaidOver) {
      const auto [vid, pid] = PlaceOf({kind->element, touched.row});
      DrawOver(kind->element, vid, pid);
    } else if (!touched.added || (kind != nullptr && laid_over > kMostLaidOver)) {
      obsolete = true;
    }
  }
  outdated_ = false;
  if (obsolete) ZoomActions(Zoom::kRedrawInPlace);  // says that the picture is obsolete
}

void MapViewImpl::FollowRows(const ChangeRecord& record) {
  const std::vector<Touched> touched = TouchedBy(record.rows);
  const bool shown = std::any_of(touched.begin(), touched.end(), InTheProject);
  if (shown) {
    outdated_ = true;
    OfferLayers(false);
    ForgetGone();
  }
  if (ormel_.mouse.MouseMode == MouseMode::kDigitize) {
    if (shown) ShowDigitized();
    return;
  }
  if (Current()) outdated_ = false;
  if (!outdated_) return;
  if (ormel_.layers.On(Layer::kManualRedraw))
    FollowByHand(record);
  else
    Redraw();
}

void MapViewImpl::CommandEnded(const ChangeRecord& record) {
  if (IsStep(record)) {
    // A vertex of the string being drawn was taken back: it may be in the picture already.
    if (ormel_.mouse.MouseMode == MouseMode::kDigitize) Redraw();
    return validity_.CommandEnded(ormel_, record);
  }
  LetGo();
  if (ormel_.project.ProjectOpen && !record.project_replaced) FollowRows(record);
  validity_.CommandEnded(ormel_, record);
  RemovePlaces();
  ShowSelection();
  if (ormel_.menus.revision() == shown_menus_) return;
  SetUpToolbar();
  shown_menus_ = ormel_.menus.revision();
}

}  // namespace ormel
