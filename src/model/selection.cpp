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

/// Captions of `EDIT_CMDS` 1 to 4, and which of them are off.
struct EditMenu {
  Element element;
  std::array<std::string_view, 4> captions;
  bool refine = false;
  bool move_only = false;
};

constexpr EditMenu Strings(Element element, bool refine) {
  return {element, {"&Properties...", "&Move Vertex", "&Delete...", "&Refine"}, refine, false};
}

constexpr std::array kEditMenus{
    EditMenu{Element::kWell, {"Well &Properties", "&Move Well", "&Delete Well", "&Refine"}},
    Strings(Element::kLinesink, true),
    Strings(Element::kBarrier, true),
    Strings(Element::kInhomogeneity, true),
    Strings(Element::kFluxLine, true),
    Strings(Element::kCapzone, true),
    EditMenu{Element::kUniformFlow,
             {"Uniform Flow &Properties", "&Move Uniform Flow", "&Delete Uniform Flow", "&Refine"}},
    EditMenu{Element::kTestPoint,
             {"Test Point &Properties", "&Move Test Point", "&Delete Test Point", "&Refine"}},
    EditMenu{Element::kParticle, {"Particle &Properties", "&Move Particle", "&Delete Particle", "&Refine"}},
    EditMenu{Element::kTextLabel, {"Text &Properties", "&Move Label", "&Delete Label", "&Refine"}},
    EditMenu{Element::kWhpaBoundaryVertex,
             {"&Properties", "&Move Boundary Vertex", "&Delete", "&Refine"},
             false,
             true},
};

/// The owners of a vertex, asked in this order: the first that claims it wins.
struct Claim {
  Element element;
  const char* sql;
  bool by_pid;
};
constexpr std::array kClaims{
    Claim{Element::kWell, "select count(*) from Wells where VID=?", false},
    Claim{Element::kLinesink, "select count(*) from LinesinkStrings where PID=?", true},
    Claim{Element::kInhomogeneity, "select count(*) from Inhomogeneities where PID=?", true},
    Claim{Element::kBarrier, "select count(*) from NoFlowStrings where PID=?", true},
    Claim{Element::kFluxLine, "select count(*) from FluxInspect where PID=?", true},
    Claim{Element::kCapzone, "select count(*) from Capzones where PID=?", true},
    Claim{Element::kTestPoint, "select count(*) from TestPoints where VID=?", false},
    Claim{Element::kWhpaBoundaryVertex, "select count(*) from WHPAs where ? in (VID1,VID2)", false},
    Claim{Element::kParticle, "select count(*) from Particles where VID=?", false},
};

void OfferEditCommands(Ormel& ormel, Element element) {
  for (const EditMenu& menu : kEditMenus) {
    if (menu.element != element) continue;
    for (int i = 0; i < 4; ++i) {
      ormel.menus.SetCaption("EDIT_CMDS", i + 1, menu.captions.at(static_cast<std::size_t>(i)));
      ormel.menus.Enable("EDIT_CMDS", i + 1, i == 1 || (i == 3 ? menu.refine : !menu.move_only));
    }
  }
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
  OfferEditCommands(ormel, owner.element);
  ormel.view().DrawElement(owner.element, owner.vid, owner.pid, DrawMode::kSelected);
  ormel.view().SetUpToolbar();
  Feedback(ormel, DescribeSelection(ormel));
  ormel.view().Refresh();
}

}  // namespace

bool IsPolygonElement(Element element) {
  return PolygonTable(element) != nullptr;
}

Owner OwnerOf(Ormel& ormel, Vid vid) {
  VertexRow vertex;
  if (!FindVertex(ormel, vid, vertex)) return {};
  if (vertex.pid == kUniformFlowPoint) return {Element::kUniformFlow, vid, vertex.pid};
  for (const Claim& claim : kClaims) {
    if (claim.by_pid && vertex.pid < 1) continue;
    if (claim.element == Element::kWhpaBoundaryVertex && !ormel.db().HasField("WHPAs", "VID1")) continue;
    if (ormel.db().Scalar(claim.sql, {claim.by_pid ? vertex.pid : vid}).AsLong() > 0)
      return {claim.element, vid, vertex.pid};
  }
  return {};
}

void ElemSelectElement(Ormel& ormel) {
  RunCommand(ormel, "ElemSelectElement", [&] {
    if (ormel.mouse.MouseMode == MouseMode::kPlace && ormel.mouse.MouseElement == Element::kGridCorner)
      return;
    ormel.view().ElemTurnOffSelection();
    const Vid found = ElemFindVertex(ormel, LastClick(ormel));
    Owner owner;
    if (found == kLabelFound)
      owner.element = Element::kTextLabel;
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
