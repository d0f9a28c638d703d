#include "model/edit.h"

#include <array>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/solver_port.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/barriers.h"
#include "model/digitize.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/observation_forms.h"
#include "model/selection.h"
#include "model/uniform_flow.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "model/well_form.h"
#include "model/wells.h"
#include "store/recordset.h"

namespace ormel {
namespace {

bool Accepted(Ormel& ormel, OkCancelForm& form) {
  ormel.ui().ShowForm(form);
  return form.Result == OkCancelForm::kOk;
}

MapPoint PlaceOf(Ormel& ormel, Vid vid) {
  VertexRow vertex;
  FindVertex(ormel, vid, vertex);
  return vertex.at;
}

/// What follows an edit of a well, by what its dialog says was touched.
void AfterWell(Ormel& ormel, const WellProperties& form) {
  if (form.NeedReloadPathlines() && ormel.solution.ValidSolution) {
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
    ormel.ui().Ask(Box{kProgramTitle, "redrawing pathlines", Buttons::kOkCancel, Icon::kNone});
  }
  if (form.FormChanged()) InvalidateSolution(ormel, true, true);
  if (form.NeedRetrace() && ormel.solution.ValidSolution &&
      AskYesNo(ormel, "Regrid/Retrace?", "Calculate new grid or trace now?", Icon::kQuestion)) {
    CommitSoFar(ormel);
    ormel.solver().ModelRunVadox({});
  }
}

void EditWell(Ormel& ormel, const Selection& selected) {
  WellRow row;
  if (!FindWell(ormel, selected.vid, row)) return;
  if (IsMirror(row.Label)) return;  // follows its source
  WellProperties form(ormel);
  form.Fill(row, PlaceOf(ormel, selected.vid));
  if (!Accepted(ormel, form)) return;
  ChangeWell(ormel, selected.vid, form.Row(), form.At());
  AfterWell(ormel, form);
}

void EditLinesink(Ormel& ormel, const Selection& selected) {
  LinesinkRow row;
  if (!FindLinesink(ormel, selected.pid, row)) return;
  LinesinkString form(ormel);
  form.Fill(row, row.Label);
  form.SetLabelFocus();
  if (!Accepted(ormel, form)) return;
  ChangeLinesink(ormel, selected.pid, form.Row());
  InvalidateSolution(ormel, true, true);
}

void EditBarrier(Ormel& ormel, const Selection& selected) {
  BarrierRow row;
  if (!FindBarrier(ormel, selected.pid, row)) return;
  NoFlowString form(ormel);
  form.Fill(row);
  if (!Accepted(ormel, form)) return;
  ChangeBarrier(ormel, selected.pid, form.Row());
  InvalidateSolution(ormel, true, true);
}

void EditUniformFlow(Ormel& ormel, const Selection& /*selected*/) {
  ElemAddUniformFlow(ormel, true);
}

void EditInhomogeneity(Ormel& ormel, const Selection& selected) {
  DropTrivialAverageHead(ormel, selected.pid);
  InhomogeneityRow row;
  if (!FindInhomogeneity(ormel, selected.pid, row)) return;
  Inhomogeneity form(ormel);
  form.Fill(row);
  if (!Accepted(ormel, form)) return;
  ChangeInhomogeneity(ormel, selected.pid, form.Row());
  if (form.Invalidate()) InvalidateSolution(ormel, true, true);
}

void EditTestPoint(Ormel& ormel, const Selection& selected) {
  TestPointRow row;
  if (!FindTestPoint(ormel, selected.vid, row)) return;
  TestPointProperties form(ormel);
  form.Fill(row, PlaceOf(ormel, selected.vid));
  if (!Accepted(ormel, form)) return;
  if (ormel.solution.ValidSolution)
    Inform(ormel, "Test Point Changed",
           "New results for this test point will be available only after re-solving the model");
  ChangeTestPoint(ormel, selected.vid, form.Row(), form.At());
}

void EditParticle(Ormel& ormel, const Selection& selected) {
  ParticleRow row;
  if (!FindParticle(ormel, selected.vid, row)) return;
  ParticleProperties form(ormel);
  form.Fill(row);
  if (!Accepted(ormel, form)) return;
  ChangeParticle(ormel, selected.vid, form.Row());
  PathlinesOutdated(ormel);
}

void EditCapzone(Ormel& ormel, const Selection& selected) {
  Recordset& zones = *ormel.project.bound.Capzones;
  if (!zones.FindKey("PID", selected.pid)) return;
  FluxInspectDialog form(ormel, "Capzone Properties", zones.Get<std::string>("Label"));
  if (!Accepted(ormel, form) || !zones.FindKey("PID", selected.pid)) return;
  zones.Edit();
  zones["Label"] = form.Label();
  zones.Update();
}

void EditTextLabel(Ormel& ormel, const Selection& selected) {
  TextLabelRow row;
  if (!FindTextLabel(ormel, selected.vid, row)) return;
  TextLabelDialog form(ormel);
  form.Fill(row);
  if (!Accepted(ormel, form)) return;
  ChangeTextLabel(ormel, selected.vid, form.Row());
}

struct Editor {
  Element element;
  void (*edit)(Ormel&, const Selection&);
};
constexpr std::array kEditors{
    Editor{Element::kWell, EditWell},
    Editor{Element::kLinesink, EditLinesink},
    Editor{Element::kBarrier, EditBarrier},
    Editor{Element::kUniformFlow, EditUniformFlow},
    Editor{Element::kInhomogeneity, EditInhomogeneity},
    Editor{Element::kTestPoint, EditTestPoint},
    Editor{Element::kParticle, EditParticle},
    Editor{Element::kCapzone, EditCapzone},
    Editor{Element::kTextLabel, EditTextLabel},
};

}  // namespace

void ElemSetProperties(Ormel& ormel) {
  RunEdit(ormel, "ElemSetProperties", [&] {
    // A redraw on the way turns the selection off: the edit keeps its own.
    const Selection selected = ormel.selection;
    DecideSolution(ormel);  // each dialog knows what was touched
    for (const Editor& editor : kEditors)
      if (editor.element == selected.SelectedType) editor.edit(ormel, selected);
    ClearSelection(ormel);
  });
}

}  // namespace ormel
