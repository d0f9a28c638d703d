#include "model/uniform_flow.h"

#include <array>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/digitize.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "store/database.h"
#include "text/numbers.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::array kControls{
    ControlSpec{.name = "tbdata(0)", .kind = kNumber, .caption = "Reference Head", .range = kElevations},
    ControlSpec{.name = "txunits", .kind = kLabel},
    ControlSpec{.name = "tbdata(1)", .kind = kNumber, .caption = "Gradient", .range = {0.0, 10.0, true}},
    ControlSpec{.name = "tbdata(2)", .kind = kNumber, .caption = "Orientation", .unit = "degrees"},
    kOkButton,
    kCancelButton};

void RemoveOnRequest(Ormel& ormel) {
  if (ReadModel(ormel).UNIFLOWCompute == 0) return;
  if (!AskYesNo(ormel, "Remove function", "Remove the current uniform flow field?", Icon::kQuestion)) {
    Inform(ormel, "Operation canceled", "Uniform flow is still in use");
    return;
  }
  RemoveUniformFlow(ormel);
}

}  // namespace

UniformFlow::UniformFlow(Ormel& ormel) : OkCancelForm(ormel), model_(ReadModel(ormel)) {
  InitControls();
  // Beside its number; the label of older forms keeps its text for scripts.
  Unit("tbdata(0)", ComputeLengthUnit(ormel));
  Caption("txunits", ComputeLengthUnit(ormel));
  Show("txunits", false);
  PutNumber("tbdata(0)", model_.UNIFLOWRefHead);
  PutNumber("tbdata(1)", model_.UNIFLOWGradient);
  PutNumber("tbdata(2)", model_.UNIFLOWOrientation);
}

std::span<const ControlSpec> UniformFlow::Controls() const {
  return kControls;
}

bool UniformFlow::Ok() {
  FillEmptyNumbers();
  if (Head() < model_.AQBase)
    return BadEntry("tbdata(0)",
                    "Specified Reference Head is below aquifer base of " + NumberText(model_.AQBase) + ".",
                    "Press Ok to re-enter Reference Head.");
  if (Gradient() < 0.0)
    return BadEntry("tbdata(1)", "Specified gradient is negative. Gradient must be positive.",
                    "Press Ok to re-enter Gradient.");
  if (!(Orientation() >= -180.0 && Orientation() <= 180.0))
    return BadEntry("tbdata(2)", "Orientation must be between -180 and 180 degrees.",
                    "Press Ok to re-enter Orientation.");
  return true;
}

void StoreUniformFlow(Ormel& ormel, MapPoint reference, double head, double gradient, double orientation) {
  ModelValues model = ReadModel(ormel);
  model.UNIFLOWRefX = reference.x;
  model.UNIFLOWRefY = reference.y;
  WriteModel(ormel, model);
  ChangeUniformFlow(ormel, head, gradient, orientation);
  ormel.db().Execute("delete from Vertices where PID=?", {kUniformFlowPoint});
  ElemAddVertex(ormel, reference, kUniformFlowPoint, 0);
}

void ChangeUniformFlow(Ormel& ormel, double head, double gradient, double orientation) {
  ModelValues model = ReadModel(ormel);
  model.UNIFLOWRefHead = head;
  model.UNIFLOWGradient = gradient;
  model.UNIFLOWOrientation = orientation;
  model.UNIFLOWCompute = 1;
  WriteModel(ormel, model);
}

void RemoveUniformFlow(Ormel& ormel) {
  ModelValues model = ReadModel(ormel);
  model.UNIFLOWRefX = model.UNIFLOWRefY = model.UNIFLOWRefHead = 0.0;
  model.UNIFLOWGradient = model.UNIFLOWOrientation = 0.0;
  model.UNIFLOWCompute = 0;
  WriteModel(ormel, model);
  ormel.db().Execute("delete from Vertices where PID=?", {kUniformFlowPoint});
}

void ElemUniformFlow(Ormel& ormel) {
  RunEdit(ormel, "ELEM_CMDS_Click", [&] {
    const bool use = AskYesNo(
        ormel, "Warning - Uniform Flow",
        Lines({"Ormel is designed to encourage the implementation of models",
               "which develop the regional flow field from boundary conditions.",
               "Modeling using boundary conditions yields a more robust predictive",
               "tool than modeling using a regionally applied uniform flow function.",
               "Uniform flow is included in Ormel for conceptual modeling purposes.",
               "When used improperly, it may yield improper results.",
               "The uniform flow feature should NOT be positioned inside an aquifer",
               "inhomogeneity, since the flow rate will be calculated using the global",
               "aquifer parameters as defined in the Model>Settings>Aquifer tab.",
               "Please refer to the the Ormel manual for further details about the",
               "proper use of uniform flow.", "Press NO to remove any current uniform flow settings.",
               "Do you wish to use uniform flow? "}),
        Icon::kWarning);
    if (!use) {
      RemoveOnRequest(ormel);
      return;
    }
    ormel.view().ElemTurnOffSelection();
    BeginPlacing(ormel, Element::kUniformFlow, "Uniform Flow",
                 "Place mouse at the point of known head and click the button");
  });
}

void ElemAddUniformFlow(Ormel& ormel, bool edit_only) {
  RunEdit(ormel, "ElemAddUniformFlow", [&] {
    LeaveMouseMode(ormel);
    ormel.mouse.NextSeq = 1;
    UniformFlow form(ormel);
    ormel.ui().ShowForm(form);
    if (form.Result == OkCancelForm::kOk) {
      if (edit_only)
        ChangeUniformFlow(ormel, form.Head(), form.Gradient(), form.Orientation());
      else
        StoreUniformFlow(ormel, LastClick(ormel), form.Head(), form.Gradient(), form.Orientation());
      ormel.menus.Enable("ELEM_CMDS", 3, true);
      TurnOnLayer(ormel, Layer::kElements);
      InvalidateSolution(ormel, true, true);
    } else {
      Inform(ormel, kProgramTitle, "Uniform Flow settings have not been changed.");
    }
    ormel.view().TurnOnMenus();
  });
}

}  // namespace ormel
