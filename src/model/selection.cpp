#include "model/selection.h"

#include <array>
#include <string_view>
#include <vector>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
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

void SelectNothing(Ormel& ormel) {
  ormel.selection.SelectedType = Element::kNone;
  for (int index = 1; index <= 4; ++index) ormel.menus.Enable("EDIT_CMDS", index, false);
  ormel.view().SetUpToolbar();
  Feedback(ormel, "Click mouse button to select element");
  ormel.view().Refresh();
}

void Select(Ormel& ormel, const Owner& owner) {
  ormel.selection.SelectedType = owner.element;
  ormel.selection.vid = owner.vid;
  ormel.selection.pid = owner.pid;
  if (const ElementKind* kind = FindKind(owner.element)) OfferEditCommands(ormel, *kind);
  ormel.view().DrawElement(owner.element, owner.vid, owner.pid, DrawMode::kSelected);
  ormel.view().SetUpToolbar();
  Feedback(ormel, DescribeSelection(ormel));
  ormel.view().Refresh();
}

}  // namespace

bool IsPolygonElement(Element element) {
  return PolygonTable(element) != nullptr;
}

void ElemSelectElement(Ormel& ormel) {
  RunCommand(ormel, "ElemSelectElement", [&] {
    if (ormel.mouse.MouseMode == MouseMode::kPlace && ormel.mouse.MouseElement == Element::kGridCorner)
      return;
    ormel.view().ElemTurnOffSelection();
    const Vid found = ElemFindVertex(ormel, LastClick(ormel));
    Owner owner;
    if (found == kLabelFound)
      owner = {Element::kTextLabel, ormel.project.bound.TextLabels->GetBookmark().row, kSinglePoint};
    else if (found != kNothingFound)
      owner = OwnerOf(ormel, found);
    if (owner.element == Element::kNone)
      SelectNothing(ormel);
    else
      Select(ormel, owner);
  });
}

void SelectVertex(Ormel& ormel, Vid vid) {
  ormel.view().ElemTurnOffSelection();
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
