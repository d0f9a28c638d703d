#include "model/selection.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/document.h"
#include "model/barriers.h"
#include "model/digitize.h"
#include "model/observations.h"
#include "model/vertices.h"
#include "store/database.h"

namespace ormel {
namespace {

void OfferEditCommands(Ormel& ormel, const ElementKind& kind) {
  const std::array captions{kind.captions.properties, kind.captions.move, kind.captions.remove};
  // A boundary's vertex goes with its area.
  const bool move_only = kind.element == Element::kWhpaBoundaryVertex;
  for (int i = 0; i < 3; ++i) {
    ormel.menus.SetCaption("EDIT_CMDS", i + 1, captions.at(static_cast<std::size_t>(i)));
    ormel.menus.Enable("EDIT_CMDS", i + 1, i == 1 || !move_only);
  }
  ormel.menus.SetCaption("EDIT_CMDS", 4, "&Refine");
  ormel.menus.Enable("EDIT_CMDS", 4, kind.Polygon());
}

void Keep(Ormel& ormel, std::vector<ElementId> ids) {
  if (ormel.ports.document != nullptr) ormel.ports.document->selected = std::move(ids);
}

void SelectNothing(Ormel& ormel) {
  ClearSelection(ormel);
  Feedback(ormel, "Click mouse button to select element");
}

void Select(Ormel& ormel, const Owner& owner) {
  ormel.selection.SelectedType = owner.element;
  ormel.selection.vid = owner.vid;
  ormel.selection.pid = owner.pid;
  Keep(ormel, {IdOf(owner.element, owner.vid, owner.pid)});
  if (const ElementKind* kind = FindKind(owner.element)) OfferEditCommands(ormel, *kind);
  Feedback(ormel, DescribeSelection(ormel));
}

Owner OwnerAt(Ormel& ormel, MapPoint at) {
  const Vid found = ElemFindVertex(ormel, at);
  if (found == kLabelFound)
    return {Element::kTextLabel, ormel.project.bound.TextLabels->GetBookmark().row, kSinglePoint};
  return found == kNothingFound ? Owner{} : OwnerOf(ormel, found);
}

}  // namespace

ElementId ElementAt(Ormel& ormel, MapPoint at) {
  const Owner owner = OwnerAt(ormel, at);
  return owner.element == Element::kNone ? ElementId{} : IdOf(owner.element, owner.vid, owner.pid);
}

std::vector<ElementId> SelectedElements(const Ormel& ormel) {
  const Selection& one = ormel.selection;
  if (one.SelectedType != Element::kNone) return {IdOf(one.SelectedType, one.vid, one.pid)};
  return ormel.ports.document == nullptr ? std::vector<ElementId>() : ormel.ports.document->selected;
}

void ClearSelection(Ormel& ormel) {
  ormel.selection.SelectedType = Element::kNone;
  Keep(ormel, {});
  for (int index = 1; index <= 4; ++index) ormel.menus.Enable("EDIT_CMDS", index, false);
}

void SelectItems(Ormel& ormel, std::vector<ElementId> ids) {
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  std::erase_if(ids, [&](const ElementId& id) { return !Exists(ormel, id); });
  if (ids.empty()) return SelectNothing(ormel);
  if (ids.size() == 1) {
    const auto [vid, pid] = PlaceOf(ids.front());
    return Select(ormel, {ids.front().element, vid, pid});
  }
  ormel.selection.SelectedType = Element::kNone;
  ormel.selection.vid = -1;
  ormel.selection.pid = kNoPolygon;
  Feedback(ormel, std::to_string(ids.size()) + " elements are selected");
  Keep(ormel, std::move(ids));
  constexpr std::array kCaptions{"&Properties", "&Move Elements", "&Delete Elements", "&Refine"};
  for (int index = 1; index <= 4; ++index) {
    ormel.menus.SetCaption("EDIT_CMDS", index, kCaptions.at(static_cast<std::size_t>(index - 1)));
    ormel.menus.Enable("EDIT_CMDS", index, index == 2 || index == 3);
  }
}

bool IsPolygonElement(Element element) {
  return PolygonTable(element) != nullptr;
}

void ElemSelectElement(Ormel& ormel) {
  RunCommand(ormel, "ElemSelectElement", [&] {
    if (ormel.mouse.MouseMode == MouseMode::kPlace && ormel.mouse.MouseElement == Element::kGridCorner)
      return;
    ClearSelection(ormel);
    const Owner owner = OwnerAt(ormel, LastClick(ormel));
    if (owner.element == Element::kNone)
      SelectNothing(ormel);
    else
      Select(ormel, owner);
  });
}

void SelectVertex(Ormel& ormel, Vid vid) {
  ClearSelection(ormel);
  const Owner owner = OwnerOf(ormel, vid);
  if (owner.element == Element::kNone) {
    SelectNothing(ormel);
  } else {
    Select(ormel, owner);
  }
}

Neighbours NeighboursOf(Ormel& ormel, Element element, Pid pid, Vid vid) {
  if (!IsPolygonElement(element)) return {};
  bool closed = element == Element::kInhomogeneity;
  if (element == Element::kBarrier) {
    BarrierRow row;
    closed = FindBarrier(ormel, pid, row) && row.Closed != BarrierClosed::kOpen;
  }
  const std::vector<VertexRow> rows = VerticesOf(ormel, pid);
  Neighbours neighbours;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].vid != vid) continue;
    if (i > 0 || (closed && rows.size() > 2))
      neighbours.before = rows[(i + rows.size() - 1) % rows.size()].at;
    if (i + 1 < rows.size() || (closed && rows.size() > 2)) neighbours.after = rows[(i + 1) % rows.size()].at;
  }
  return neighbours;
}

}  // namespace ormel
