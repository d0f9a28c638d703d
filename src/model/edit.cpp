#include "model/edit.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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

MapPoint PlaceOf(Ormel& ormel, Vid vid) {
  VertexRow vertex;
  FindVertex(ormel, vid, vertex);
  return vertex.at;
}

/// The form of a kind, and the element that it was filled from.
template <class F>
class EditWith : public ElementEdit {
 public:
  template <class... More>
  EditWith(Ormel& ormel, std::int64_t key, More&&... more)
      : form_(ormel, std::forward<More>(more)...), ormel_(ormel), key_(key) {}
  OkCancelForm& form() override { return form_; }

 protected:
  F form_;
  Ormel& ormel_;
  std::int64_t key_;
};

class WellEdit final : public EditWith<WellProperties> {
 public:
  using EditWith::EditWith;
  bool Fill() {
    WellRow row;
    if (!FindWell(ormel_, key_, row) || IsMirror(row.Label)) return false;  // a mirror follows its source
    form_.Fill(row, PlaceOf(ormel_, key_));
    return true;
  }
  Touches Touched() const override {
    return {.solution = form_.FormChanged(),
            .look = form_.NeedReloadPathlines(),
            .grid_or_trace = form_.NeedRetrace()};
  }
  void Store() override { ChangeWell(ormel_, key_, form_.Row(), form_.At()); }
};

class LinesinkEdit final : public EditWith<LinesinkString> {
 public:
  using EditWith::EditWith;
  bool Fill() {
    LinesinkRow row;
    if (!FindLinesink(ormel_, key_, row)) return false;
    form_.Fill(row, row.Label);
    form_.SetLabelFocus();
    return true;
  }
  Touches Touched() const override { return {.solution = true}; }
  void Store() override { ChangeLinesink(ormel_, key_, form_.Row()); }
};

class BarrierEdit final : public EditWith<NoFlowString> {
 public:
  using EditWith::EditWith;
  bool Fill() {
    BarrierRow row;
    if (!FindBarrier(ormel_, key_, row)) return false;
    form_.Fill(row);
    return true;
  }
  Touches Touched() const override { return {.solution = true}; }
  void Store() override { ChangeBarrier(ormel_, key_, form_.Row()); }
};

class InhomogeneityEdit final : public EditWith<Inhomogeneity> {
 public:
  using EditWith::EditWith;
  bool Fill() {
    InhomogeneityRow row;
    if (!FindInhomogeneity(ormel_, key_, row)) return false;
    form_.Fill(row);
    return true;
  }
  Touches Touched() const override { return {.solution = form_.Invalidate()}; }
  void Store() override { ChangeInhomogeneity(ormel_, key_, form_.Row()); }
};

class TestPointEdit final : public EditWith<TestPointProperties> {
 public:
  using EditWith::EditWith;
  bool Fill() {
    TestPointRow row;
    if (!FindTestPoint(ormel_, key_, row)) return false;
    form_.Fill(row, PlaceOf(ormel_, key_));
    return true;
  }
  Touches Touched() const override { return {.test_point = true}; }
  void Store() override { ChangeTestPoint(ormel_, key_, form_.Row(), form_.At()); }
};

class ParticleEdit final : public EditWith<ParticleProperties> {
 public:
  using EditWith::EditWith;
  bool Fill() {
    ParticleRow row;
    if (!FindParticle(ormel_, key_, row)) return false;
    form_.Fill(row);
    return true;
  }
  Touches Touched() const override { return {.paths = true}; }
  void Store() override { ChangeParticle(ormel_, key_, form_.Row()); }
};

/// A line that has nothing but its label.
class LabelEdit final : public EditWith<FluxInspectDialog> {
 public:
  LabelEdit(Ormel& ormel, Recordset& rows, Pid pid, std::string title, const std::string& label)
      : EditWith(ormel, pid, std::move(title), label), rows_(rows) {}
  Touches Touched() const override { return {}; }
  void Store() override {
    if (!rows_.FindKey("PID", key_)) return;
    rows_.Edit();
    rows_["Label"] = form_.Label();
    rows_.Update();
  }

 private:
  Recordset& rows_;
};

class TextLabelEdit final : public EditWith<TextLabelDialog> {
 public:
  using EditWith::EditWith;
  bool Fill() {
    TextLabelRow row;
    if (!FindTextLabel(ormel_, key_, row)) return false;
    form_.Fill(row);
    return true;
  }
  Touches Touched() const override { return {}; }
  void Store() override { ChangeTextLabel(ormel_, key_, form_.Row()); }
};

template <class E>
std::unique_ptr<ElementEdit> Filled(Ormel& ormel, std::int64_t key) {
  auto edit = std::make_unique<E>(ormel, key);
  if (!edit->Fill()) return nullptr;
  return edit;
}

std::unique_ptr<ElementEdit> LabelOf(Ormel& ormel, Recordset& rows, Pid pid, const char* title) {
  if (!rows.FindKey("PID", pid)) return nullptr;
  return std::make_unique<LabelEdit>(ormel, rows, pid, title, rows.Get<std::string>("Label"));
}
std::unique_ptr<ElementEdit> CapzoneEdit(Ormel& ormel, Pid pid) {
  return LabelOf(ormel, *ormel.project.bound.Capzones, pid, "Capzone Properties");
}
std::unique_ptr<ElementEdit> FluxLineEdit(Ormel& ormel, Pid pid) {
  return LabelOf(ormel, *ormel.project.bound.FluxInspectors, pid, "Flux Inspection Line Properties");
}

struct Editor {
  Element element;
  std::unique_ptr<ElementEdit> (*make)(Ormel&, std::int64_t key);
  bool by_dialog = true;
};
constexpr std::array kEditors{
    Editor{Element::kWell, Filled<WellEdit>},
    Editor{Element::kLinesink, Filled<LinesinkEdit>},
    Editor{Element::kBarrier, Filled<BarrierEdit>},
    Editor{Element::kInhomogeneity, Filled<InhomogeneityEdit>},
    Editor{Element::kTestPoint, Filled<TestPointEdit>},
    Editor{Element::kParticle, Filled<ParticleEdit>},
    Editor{Element::kFluxLine, FluxLineEdit, false},
    Editor{Element::kCapzone, CapzoneEdit},
    Editor{Element::kTextLabel, Filled<TextLabelEdit>},
};

const Editor* FindEditor(Element element) {
  const auto* found = std::find_if(kEditors.begin(), kEditors.end(),
                                   [element](const Editor& editor) { return editor.element == element; });
  return found == kEditors.end() ? nullptr : found;
}

/// What is told before an edit is stored.
void Announce(Ormel& ormel, const Touches& touches) {
  if (touches.test_point && ormel.solution.ValidSolution)
    Inform(ormel, "Test Point Changed",
           "New results for this test point will be available only after re-solving the model");
}

/// What follows an edit, by what its form says was touched.
void Follow(Ormel& ormel, const Touches& touches) {
  if (touches.look && ormel.solution.ValidSolution) {
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
    ormel.ui().Ask(Box{kProgramTitle, "redrawing pathlines", Buttons::kOkCancel, Icon::kNone});
  }
  if (touches.solution) InvalidateSolution(ormel, true, true);
  if (touches.paths) PathlinesOutdated(ormel);
  if (touches.grid_or_trace && ormel.solution.ValidSolution &&
      AskYesNo(ormel, "Regrid/Retrace?", "Calculate new grid or trace now?", Icon::kQuestion)) {
    CommitSoFar(ormel);
    ormel.solver().ModelRunVadox({});
  }
}

void Add(Touches& all, const Touches& one) {
  for (bool Touches::*what :
       {&Touches::solution, &Touches::paths, &Touches::test_point, &Touches::look, &Touches::grid_or_trace})
    all.*what = all.*what || one.*what;
}

void EditByDialog(Ormel& ormel, const ElementId& id) {
  if (id.element == Element::kUniformFlow) return ElemAddUniformFlow(ormel, true);
  const Editor* editor = FindEditor(id.element);
  if (editor == nullptr || !editor->by_dialog) return;
  if (id.element == Element::kInhomogeneity) DropTrivialAverageHead(ormel, id.key);
  const std::unique_ptr<ElementEdit> edit = editor->make(ormel, id.key);
  if (edit == nullptr) return;
  ormel.ui().ShowForm(edit->form());
  if (edit->form().Result != OkCancelForm::kOk) return;
  const Touches touches = edit->Touched();
  Announce(ormel, touches);
  edit->Store();
  Follow(ormel, touches);
}

}  // namespace

std::unique_ptr<ElementEdit> EditOf(Ormel& ormel, const ElementId& id) {
  const Editor* editor = FindEditor(id.element);
  return editor == nullptr ? nullptr : editor->make(ormel, id.key);
}

void ElemSetProperties(Ormel& ormel) {
  RunEdit(ormel, "ElemSetProperties", [&] {
    // A redraw on the way turns the selection off: the edit keeps its own.
    const Selection selected = ormel.selection;
    DecideSolution(ormel);  // each dialog knows what was touched
    EditByDialog(ormel, IdOf(selected.SelectedType, selected.vid, selected.pid));
    ClearSelection(ormel);
  });
}

bool EditElements(Ormel& ormel, std::span<const ElementId> ids, const std::function<void(Form&)>& change) {
  bool accepted = false;
  RunEdit(ormel, "EditElements", [&] {
    DecideSolution(ormel);
    std::vector<std::unique_ptr<ElementEdit>> edits;
    Touches touches;
    for (const ElementId& id : ids) {
      std::unique_ptr<ElementEdit> edit = EditOf(ormel, id);
      if (edit == nullptr) continue;
      OkCancelForm& form = edit->form();
      form.MarkShown();
      change(form);
      form.Click(kOkButton.name);
      if (form.Result != OkCancelForm::kOk) return;
      Add(touches, edit->Touched());
      edits.push_back(std::move(edit));
    }
    Announce(ormel, touches);
    for (const std::unique_ptr<ElementEdit>& edit : edits) edit->Store();
    accepted = true;
    Follow(ormel, touches);
  });
  return accepted;
}

}  // namespace ormel
