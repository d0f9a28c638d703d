#include "model/model_settings.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/solver_port.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/global_recharge.h"
#include "model/validity.h"
#include "text/numbers.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::string_view kAquifer = "Aquifer", kContours = "Contours", kTracing = "Tracing",
                           kSolver = "Solver";
constexpr int kCoarse = 40, kDetailed = 80;  ///< grid lines

constexpr std::array kControls{
    ControlSpec{.name = "tbBase",
                .kind = kNumber,
                .caption = "Base Elevation",
                .tab = kAquifer,
                .tip = "Aquifer base elevation (horizontal)",
                .range = kElevations},
    ControlSpec{.name = "tbThickness",
                .kind = kNumber,
                .caption = "Thickness",
                .tab = kAquifer,
                .tip = "Aquifer thickness (set to a large value for unconfined flow)",
                .range = kSizes},
    ControlSpec{.name = "tbHydCond",
                .kind = kNumber,
                .caption = "Hydraulic Conductivity",
                .tab = kAquifer,
                .tip = "Aquifer hydraulic conductivity (permeability)",
                .range = kRates},
    ControlSpec{.name = "tbRecharge",
                .kind = kNumber,
                .caption = "Recharge Rate",
                .tab = kAquifer,
                .tip = "Regional aquifer recharge rate (from annual precipitation)",
                .range = kRecharges},
    ControlSpec{.name = "tbPorosity",
                .kind = kNumber,
                .caption = "Porosity",
                .unit = "[dimensionless]",
                .tab = kAquifer,
                .tip = "Aquifer effective porosity (0.0 < n < 1.0)"},
    ControlSpec{.name = "chkContour", .kind = kCheck, .caption = "Show Contours", .tab = kContours},
    ControlSpec{.name = "tbContourMin",
                .kind = kNumber,
                .caption = "Minimum Contour",
                .tab = kContours,
                .range = kElevations},
    ControlSpec{.name = "tbContourMax",
                .kind = kNumber,
                .caption = "Maximum Contour",
                .tab = kContours,
                .range = kElevations},
    ControlSpec{.name = "tbContourInt",
                .kind = kNumber,
                .caption = "Contour Interval",
                .tab = kContours,
                .range = kSizes},
    ControlSpec{.name = "ContourDetail(0)",
                .kind = kOption,
                .caption = "Coarse",
                .tab = kContours,
                .group = "Grid Resolution"},
    ControlSpec{.name = "ContourDetail(1)",
                .kind = kOption,
                .caption = "Detailed",
                .tab = kContours,
                .group = "Grid Resolution"},
    ControlSpec{.name = "ContourDetail(2)",
                .kind = kOption,
                .caption = "Custom",
                .tab = kContours,
                .group = "Grid Resolution"},
    ControlSpec{.name = "tbContourLevel", .kind = kNumber, .tab = kContours, .group = "Grid Resolution"},
    ControlSpec{
        .name = "chkComputePaths", .kind = kCheck, .caption = "Compute Particle Paths", .tab = kTracing},
    ControlSpec{.name = "tbStepSize",
                .kind = kNumber,
                .caption = "Tracing Step Size",
                .tab = kTracing,
                .range = kSizes},
    ControlSpec{.name = "tbMaxTime",
                .kind = kNumber,
                .caption = "Maximum Travel Time",
                .unit = "days",
                .tab = kTracing,
                .range = kDurations},
    ControlSpec{.name = "chkDefaultStep",
                .kind = kCheck,
                .caption = "Use Default Step Size of",
                .tab = kTracing,
                .tip = "Default step size (a fraction of the current window)"},
    ControlSpec{.name = "tbDefaultStepSize",
                .kind = kNumber,
                .tab = kTracing,
                .tip = "Default step size (a fraction of the current window)",
                .range = kSizes},
    ControlSpec{.name = "tbIterations",
                .kind = kNumber,
                .caption = "Number of Iterations:",
                .tab = kSolver,
                .range = {1.0, 32767.0, true}},
    ControlSpec{
        .name = "chkViewError", .kind = kCheck, .caption = "View error log file after solve", .tab = kSolver},
    ControlSpec{.name = "chkViewMessage",
                .kind = kCheck,
                .caption = "View message log file after solve",
                .tab = kSolver},
    ControlSpec{.name = "lblHelp", .kind = kNote, .caption = "(F1 for Help)"},
    kOkButton,
    kCancelButton};

constexpr std::array kLengths{"tbBase",       "tbThickness", "tbContourMin",     "tbContourMax",
                              "tbContourInt", "tbStepSize",  "tbDefaultStepSize"};
constexpr std::array kRateFields{"tbHydCond", "tbRecharge"};
constexpr std::array kSolutionFields{"tbBase", "tbThickness", "tbHydCond", "tbRecharge", "tbPorosity"};
constexpr std::array kContourFields{"tbContourMin", "tbContourMax", "tbContourInt", "chkContour"};
constexpr std::array kPathFields{"tbStepSize", "tbMaxTime", "tbDefaultStepSize", "chkDefaultStep",
                                 "chkComputePaths"};

bool OneOf(std::span<const char* const> names, std::string_view name) {
  return std::ranges::any_of(names, [name](std::string_view other) { return other == name; });
}

}  // namespace

ModelSettings::ModelSettings(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
}

std::span<const ControlSpec> ModelSettings::Controls() const {
  return kControls;
}

void ModelSettings::Load() {
  const Named named(ormel(), "ModelSettings.FormLoad");
  stored_ = ReadModel(ormel());
  const std::string length = stored_.ComputeMeters ? "meters" : "feet";
  for (const char* name : kLengths) Unit(name, length);
  for (const char* name : kRateFields) Unit(name, length + "/day");

  PutNumber("tbBase", stored_.AQBase);
  PutNumber("tbThickness", stored_.AQThickness);
  PutNumber("tbHydCond", stored_.AQHydCond);
  PutNumber("tbRecharge", stored_.AQRecharge);
  PutNumber("tbPorosity", stored_.AQPorosity);
  PutCheck("chkContour", stored_.CONTOURShow != 0);
  PutNumber("tbContourMin", stored_.CONTOURMinimum);
  PutNumber("tbContourMax", stored_.CONTOURMaximum);
  PutNumber("tbContourInt", stored_.CONTOURInterval);
  PutNumber("tbContourLevel", stored_.CONTOURLevel);
  PutCheck(stored_.CONTOURLevel == kCoarse     ? "ContourDetail(0)"
           : stored_.CONTOURLevel == kDetailed ? "ContourDetail(1)"
                                               : "ContourDetail(2)",
           true);
  PutCheck("chkComputePaths", stored_.TRACECompute != 0);
  PutNumber("tbStepSize", stored_.TRACEStep);
  PutNumber("tbMaxTime", stored_.TRACEMaxTime);
  PutCheck("chkDefaultStep", ormel().solution.use_default_step);
  SetDefaultStepSize(ormel().solution.default_step * BasemapConvert(ormel()));
  PutNumber("tbIterations", stored_.SOLVERIterations);
  PutCheck("chkViewError", stored_.ViewErrorLog != 0);
  PutCheck("chkViewMessage", stored_.ViewMessageLog != 0);
  OfferContourFields();
  ClearFlags();
}

void ModelSettings::ClearFlags() {
  solution_changed_ = contours_changed_ = paths_changed_ = contours_switched_on_ = false;
}

void ModelSettings::SetDefaultStepSize(double step) {
  PutNumber("tbDefaultStepSize", Rounded(step, std::abs(step) * 1e-3));  // six digits
  // Before the first redraw there is no default step.
  if (Checked("chkDefaultStep") && step > 0.0) PutNumber("tbStepSize", step);
}

void ModelSettings::SetIterations(int iterations) {
  PutNumber("tbIterations", std::max(iterations, 1));
}

int ModelSettings::DetailedContours() const {
  return ToLong(Number("tbContourLevel"));
}

void ModelSettings::OfferContourFields() {
  const bool on = Checked("chkContour");
  OfferAll({"tbContourMin", "tbContourMax", "tbContourInt"}, on);
  OfferAll({"ContourDetail(0)", "ContourDetail(1)", "ContourDetail(2)"}, on);
  Offer("tbContourLevel", on && Checked("ContourDetail(2)"));
}

void ModelSettings::Changed(std::string_view name) {
  solution_changed_ |= OneOf(kSolutionFields, name);
  contours_changed_ |= OneOf(kContourFields, name);
  paths_changed_ |= OneOf(kPathFields, name);
  if (name == "chkContour") {
    contours_switched_on_ |= Checked(name);
    OfferContourFields();
  } else if (name == "ContourDetail(0)" || name == "ContourDetail(1)" || name == "ContourDetail(2)") {
    if (Checked("ContourDetail(0)")) PutNumber("tbContourLevel", kCoarse);
    if (Checked("ContourDetail(1)")) PutNumber("tbContourLevel", kDetailed);
    OfferContourFields();
  } else if (name == "chkDefaultStep" || name == "tbDefaultStepSize") {
    if (Checked("chkDefaultStep")) Put("tbStepSize", Text("tbDefaultStepSize"));
  }
}

bool ModelSettings::CheckContours() {
  const double level = Number("tbContourLevel");
  if (level > 200.0 || level < 0.0)
    return BadEntry("tbContourLevel", "Invalid Grid Resolution.",
                    "Please enter a Grid Resolution between 0 and 200.");
  if (!(Number("tbContourMax") > Number("tbContourMin")))
    return BadEntry("tbContourMax", "Maximum Contour must be greater than Minimum Contour.",
                    "Please enter a new Maximum Contour.");
  if (!(Number("tbContourInt") > 0.0))
    return BadEntry("tbContourInt", "Contour Interval must be greater than zero.",
                    "Please enter a new Contour Interval.");
  return true;
}

bool ModelSettings::Check() {
  if (!(Number("tbThickness") > 0.0))
    return BadEntry("tbThickness", "Thickness must be greater than 0.", "Please enter a new value.");
  if (!(Number("tbHydCond") > 0.0))
    return BadEntry("tbHydCond", "Hydraulic Conductivity must be greater than 0.",
                    "Please enter a positive value.");
  const double porosity = Number("tbPorosity");
  if (!(porosity > 0.0 && porosity <= 1.0))
    return BadEntry("tbPorosity", "Porosity must be greater than 0 and less than or equal to 1.",
                    "Please enter a new value.");
  if (!CheckContours()) return false;
  if (Number("tbMaxTime") < 0.0)
    return BadEntry("tbMaxTime", "Maximum Travel Time must be positive.",
                    "Please enter a new Maximum Travel Time.");
  if (Number("tbStepSize") < 0.0)
    return BadEntry("tbStepSize", "Tracing Step Size must be positive.",
                    "Please enter a new Tracing Step Size.");
  if (Number("tbIterations") < 1.0)
    return BadEntry("tbIterations", "Number of Iterations must be positive.",
                    "Please enter a new value for the Number of Iterations.");
  return true;
}

ModelValues ModelSettings::Values() const {
  ModelValues values = stored_;
  values.AQBase = Number("tbBase");
  values.AQThickness = Number("tbThickness");
  values.AQHydCond = Number("tbHydCond");
  values.AQRecharge = Number("tbRecharge");
  values.AQPorosity = Number("tbPorosity");
  values.CONTOURShow = Checked("chkContour") ? 1 : 0;
  values.CONTOURMinimum = Number("tbContourMin");
  values.CONTOURMaximum = Number("tbContourMax");
  values.CONTOURInterval = Number("tbContourInt");
  values.CONTOURLevel = DetailedContours();
  values.TRACECompute = Checked("chkComputePaths") ? 1 : 0;
  values.TRACEStep = Number("tbStepSize");
  values.TRACEMaxTime = Number("tbMaxTime");
  // The store's field holds 16 bits.
  values.SOLVERIterations = std::min(ToLong(Number("tbIterations")), 32767);
  values.ViewErrorLog = Checked("chkViewError") ? 1 : 0;
  values.ViewMessageLog = Checked("chkViewMessage") ? 1 : 0;
  return values;
}

void ModelSettings::WithdrawOutdatedResults() {
  if (!ormel().solution.ValidSolution) return;
  if (contours_changed_ && Checked("chkContour"))
    ormel().solution.GridValid = ormel().solution.ContoursValid = false;
  if (paths_changed_ && Checked("chkComputePaths")) {
    ormel().solution.PathlinesValid = false;
    ormel().layers.Switch(Layer::kPathlines, false);
  }
}

bool ModelSettings::Ok() {
  FillEmptyNumbers();
  if (!Check()) return false;
  WithdrawOutdatedResults();
  stored_ = Values();
  WriteModel(ormel(), stored_);
  ormel().solution.use_default_step = Checked("chkDefaultStep");
  ormel().solution.default_step = Number("tbDefaultStepSize") / BasemapConvert(ormel());
  return true;
}

void ModelSettings::Cancelled() {
  Load();
}

void ModelSettings::FollowUp() {
  Ormel& o = ormel();
  if (solution_changed_) {
    InvalidateSolution(o, false, true);
    return;
  }
  if ((contours_changed_ || paths_changed_) && o.solution.ValidSolution &&
      (Checked("chkContour") || Checked("chkComputePaths"))) {
    if (AskYesNo(o, "Regrid/Retrace?", "Calculate new grid or trace now?", Icon::kQuestion)) {
      CommitSoFar(o);
      o.solver().ModelRunVadox({});
    }
    return;
  }
  o.view().ZoomActions(Zoom::kRedrawInPlace);
}

void ModelEditSettings(Ormel& ormel) {
  RunCommand(ormel, "MODEL_CMDS_Click", [&] {
    ModelSettings form(ormel);
    try {
      form.Load();
    } catch (...) {
      ShowDialogFailure(ormel, "ModelSettings.FormLoad", "Please restart Ormel");
      return;
    }
    ormel.ui().ShowForm(form);
    if (form.Result == OkCancelForm::kOk) {
      if (OfferRechargeDomain(ormel)) form.MarkSolutionChanged();
      form.FollowUp();
    }
    ormel.view().SetUpLayers();
  });
}

namespace {

constexpr std::array kPromptControls{
    ControlSpec{.name = "lblText",
                .kind = kNote,
                .caption = "A valid solution is present. \nDo you want to resolve?"},
    ControlSpec{.name = "SolveOption(0)",
                .kind = kButton,
                .caption = "Yes",
                .tip = "Generate a new solution and new contours, pathlines, and flux inspector results.",
                .role = ButtonRole::kAccept},
    ControlSpec{
        .name = "lblYes",
        .kind = kNote,
        .caption = "Generate a new solution and new contours, pathlines, and flux inspector results."},
    ControlSpec{.name = "SolveOption(1)",
                .kind = kButton,
                .caption = "No",
                .tip = "Just recalculate contour grid, pathlines, test points, and/or flux inspector results "
                       "as needed."},
    ControlSpec{.name = "lblNo",
                .kind = kNote,
                .caption = "Just recalculate contour grid, pathlines, test points, and/or flux inspector "
                           "results as needed."},
    ControlSpec{.name = "SolveOption(2)", .kind = kButton, .caption = "Cancel", .role = ButtonRole::kReject}};

}  // namespace

SolvePrompt::SolvePrompt(Ormel& ormel) : Form(ormel) {
  InitControls();
  // Each way shows its tip below its name, which says the same.
  for (const char* note : {"lblYes", "lblNo"}) Show(note, false);
  Result = static_cast<int>(SolveChoice::kCancel);
}

std::span<const ControlSpec> SolvePrompt::Controls() const {
  return kPromptControls;
}

void SolvePrompt::Pressed(std::string_view name) {
  for (int i = 0; i < 3; ++i)
    if (name == "SolveOption(" + std::to_string(i) + ")") {
      Result = i;
      Hide();
    }
}

}  // namespace ormel
