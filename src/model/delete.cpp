#include "model/delete.h"

#include <array>

#include "core/command.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/digitize.h"
#include "model/image_wells.h"
#include "model/move.h"
#include "model/observations.h"
#include "model/selection.h"
#include "model/several.h"
#include "model/uniform_flow.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/database.h"
#include "store/recordset.h"

namespace ormel {
namespace {

constexpr std::array kControls{
    ControlSpec{.name = "Message", .kind = ControlKind::kNote},
    ControlSpec{.name = "cmdWhole",
                .kind = ControlKind::kButton,
                .caption = "&Entire Element",
                .role = ButtonRole::kAccept},
    ControlSpec{.name = "cmdVertex", .kind = ControlKind::kButton, .caption = "&Vertex"},
    ControlSpec{
        .name = "Cancel", .kind = ControlKind::kButton, .caption = "Cancel", .role = ButtonRole::kReject}};

/// The selection is gone: no element, select status.
void NothingSelected(Ormel& ormel) {
  ClearSelection(ormel);
  SelectStatus(ormel);
}

bool Confirmed(Ormel& ormel, const char* question) {
  return AskOkCancel(ormel, "Confirm", question, Icon::kQuestion);
}

void DeletePointRow(Ormel& ormel, Recordset& rows, Vid vid) {
  if (rows.FindKey("VID", vid)) rows.Delete();
  DeleteVertex(ormel, vid);
}

void DeletePoint(Ormel& ormel, const Selection& selected, Recordset& rows, const char* question) {
  if (!Confirmed(ormel, question)) return;
  DeletePointRow(ormel, rows, selected.vid);
  NothingSelected(ormel);
}

void DeleteParticle(Ormel& ormel, const Selection& selected) {
  DeletePoint(ormel, selected, *ormel.project.bound.Particles, "Delete this particle?");
}

void DeleteTestPoint(Ormel& ormel, const Selection& selected) {
  DeletePoint(ormel, selected, *ormel.project.bound.TestPoints, "Delete this test point?");
}

void DeleteTextLabel(Ormel& ormel, const Selection& selected) {
  if (!Confirmed(ormel, "Delete this label?")) return;
  TextLabelRow row;
  if (FindTextLabel(ormel, selected.vid, row)) ormel.project.bound.TextLabels->Delete();
  NothingSelected(ormel);
}

void DeleteWell(Ormel& ormel, const Selection& selected) {
  WellRow row;
  if (!FindWell(ormel, selected.vid, row) || !Confirmed(ormel, "Delete this element?")) return;
  const bool has_area = !IsMirror(row.Label) && HasProtectionArea(ormel, row.Label);
  if (has_area && !Confirmed(ormel,
                             "A protection area is drawn for this well.  The area, its stream boundary and "
                             "the image of the well go with it.  Delete them all?"))
    return;
  if (has_area) RemoveAreasOf(ormel, row.Label);
  DeletePointRow(ormel, *ormel.project.bound.Wells, selected.vid);
  NothingSelected(ormel);
}

void DeleteUniformFlow(Ormel& ormel, const Selection& /*selected*/) {
  if (!Confirmed(ormel, "Remove the current uniform flow field?")) {
    Inform(ormel, "Operation canceled", "Uniform flow is still in use");
    return;
  }
  RemoveUniformFlow(ormel);
  NothingSelected(ormel);
}

/// A string, domain or line.
struct PolygonDelete {
  Element element;
  const char* question;
  bool whole_invalidates;  ///< although its place would not
  const char* vertex_note;
};
constexpr const char* kWholeString = "Delete this vertex or the entire string?";
constexpr std::array kPolygonDeletes{
    PolygonDelete{Element::kLinesink, kWholeString, false, ""},
    PolygonDelete{Element::kBarrier, kWholeString, false, ""},
    PolygonDelete{Element::kInhomogeneity, kWholeString, false, ""},
    PolygonDelete{Element::kFluxLine, "Delete this vertex or the flux inspection line?", true,
                  "To view the change in this flux inspection line, you must re-solve the model"},
    PolygonDelete{Element::kCapzone, "Delete this vertex or the entire protection area?", false, ""},
};

void DeleteVertexOf(Ormel& ormel, const Selection& selected) {
  std::vector<Vid> shared;
  if (selected.SelectedType == Element::kInhomogeneity) shared = SharedCorners(ormel, selected.vid);
  for (const Vid corner : shared) {
    VertexRow row;
    if (FindVertex(ormel, corner, row)) DeletePolygonVertex(ormel, row.pid, corner);
  }
  DeletePolygonVertex(ormel, selected.pid, selected.vid);
  if (VerticesOf(ormel, selected.pid).size() != 1) return;
  if (selected.SelectedType == Element::kLinesink)
    ElemCheckPhantomLinesinkVertices(ormel, selected.pid);
  else if (selected.SelectedType == Element::kBarrier && ElemCheckPhantomNoFlowVertices(ormel, selected.pid))
    RemoveElement(ormel, {Element::kBarrier, selected.pid});
}

void DeletePolygonOrVertex(Ormel& ormel, const Selection& selected, const PolygonDelete& kind) {
  LSConfirm form(ormel, kind.question);
  ormel.ui().ShowForm(form);
  if (form.Choice() == DeleteChoice::kNeither) return;
  // The last vertex of an element is the element.
  const bool whole = form.Choice() == DeleteChoice::kWhole || VerticesOf(ormel, selected.pid).size() <= 1;
  if (whole)
    DeletePolygonElement(ormel, PolygonTable(kind.element), selected.pid);
  else
    DeleteVertexOf(ormel, selected);
  NothingSelected(ormel);
  if (!whole && *kind.vertex_note != '\0') Inform(ormel, "Please Note", kind.vertex_note);
  if (whole && kind.whole_invalidates) InvalidateSolution(ormel, true, true);
}

struct Deleter {
  Element element;
  void (*remove)(Ormel&, const Selection&);
};
constexpr std::array kDeleters{
    Deleter{Element::kWell, DeleteWell}, Deleter{Element::kParticle, DeleteParticle},
    Deleter{Element::kTestPoint, DeleteTestPoint}, Deleter{Element::kTextLabel, DeleteTextLabel},
    Deleter{Element::kUniformFlow, DeleteUniformFlow}};

}  // namespace

LSConfirm::LSConfirm(Ormel& ormel, const std::string& message) : Form(ormel) {
  InitControls();
  Caption("Message", message);
}

std::span<const ControlSpec> LSConfirm::Controls() const {
  return kControls;
}

void LSConfirm::Pressed(std::string_view name) {
  Result = static_cast<int>(name == "cmdWhole"    ? DeleteChoice::kWhole
                            : name == "cmdVertex" ? DeleteChoice::kVertex
                                                  : DeleteChoice::kNeither);
  Hide();
}

void DeletePolygonVertex(Ormel& ormel, Pid pid, Vid vid) {
  DeleteVertex(ormel, vid);
  const std::vector<VertexRow> left = VerticesOf(ormel, pid);
  if (!left.empty()) Resequence(ormel, pid, left.front().vid);
}

void ElemDeleteElements(Ormel& ormel) {
  RunEdit(ormel, "ElemDeleteElements", [&] {
    const Selection selected = ormel.selection;
    if (selected.SelectedType == Element::kNone && !SelectedElements(ormel).empty())
      return DeleteSelected(ormel);
    for (const Deleter& deleter : kDeleters)
      if (deleter.element == selected.SelectedType) deleter.remove(ormel, selected);
    for (const PolygonDelete& kind : kPolygonDeletes)
      if (kind.element == selected.SelectedType) DeletePolygonOrVertex(ormel, selected, kind);
  });
}

}  // namespace ormel
