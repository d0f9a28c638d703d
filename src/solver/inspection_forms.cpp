#include "solver/inspection_forms.h"

#include <array>
#include <cmath>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/table.h"
#include "solver/inspection.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::array kInspectorControls{
    ControlSpec{.name = "chkTop",
                .kind = kCheck,
                .caption = "Inspect at the water table",
                .group = "Where to look and where to start"},
    ControlSpec{.name = "tbElevation",
                .kind = kNumber,
                .caption = "Elevation",
                .group = "Where to look and where to start",
                .range = kElevations},
    ControlSpec{.name = "chkTraceBackwards",
                .kind = kCheck,
                .caption = "Trace backwards, to where the water comes from",
                .group = "Streamline"},
    ControlSpec{.name = "dataStepSize",
                .kind = kNumber,
                .caption = "Step Size",
                .group = "Differences of the solver integrity check",
                .range = kSizes},
    ControlSpec{.name = "note",
                .kind = kNote,
                .caption = "Hold Shift and click on the map for the results at a point, Shift and Ctrl for a "
                           "streamline from it."},
    kOkButton,
    kCancelButton};

constexpr std::array kIntegrityControls{
    ControlSpec{.name = "lblAnalyicNumeric", .kind = kTable},
    ControlSpec{.name = "note",
                .kind = kNote,
                .caption =
                    "Velocities in length per day, div q in 1/day, div Q in length per day, all in "
                    "computational units.  Where heads do not change with depth the numerical Vz is 0, "
                    "while the solver's follows from continuity."},
    ControlSpec{.name = "cmdOk", .kind = kButton, .caption = "OK", .role = ButtonRole::kAccept}};

struct IntegrityRow {
  const char* name;
  std::optional<double> IntegrityValues::*analytic;
  std::optional<double> IntegrityValues::*numeric;
};
constexpr std::array kIntegrityRows{
    IntegrityRow{"Vx", &IntegrityValues::VxAnyl, &IntegrityValues::VxNum},
    IntegrityRow{"Vy", &IntegrityValues::VyAnyl, &IntegrityValues::VyNum},
    IntegrityRow{"Vz", &IntegrityValues::VzAnyl, &IntegrityValues::VzNum},
    IntegrityRow{"div q", &IntegrityValues::divqAnyl, &IntegrityValues::divqNum},
    IntegrityRow{"div Q", &IntegrityValues::divCapQAnyl, &IntegrityValues::divCapQNum}};

Value ValueOf(const std::optional<double>& number) {
  return number ? Value(*number) : Value();
}

}  // namespace

Inspector::Inspector(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
  const InspectorSettings& settings = InspectorSettingsOf(ormel);
  for (const char* field : {"tbElevation", "dataStepSize"}) Unit(field, ComputeLengthUnit(ormel));
  PutNumber("tbElevation", settings.Elevation);
  PutNumber("dataStepSize", settings.StepSize);
  PutCheck("chkTop", settings.at_top);
  PutCheck("chkTraceBackwards", settings.trace_backwards);
  Offer("tbElevation", !settings.at_top);
}

std::span<const ControlSpec> Inspector::Controls() const {
  return kInspectorControls;
}

void Inspector::Changed(std::string_view name) {
  if (name == "chkTop") Offer("tbElevation", !Checked("chkTop"));
}

bool Inspector::Ok() {
  FillEmptyNumbers();
  if (!(StepSize() > 0.0) || !std::isfinite(StepSize()))
    return BadEntry("dataStepSize", "The step size must be greater than zero.", "Please enter a new value.");
  if (!std::isfinite(Elevation()))
    return BadEntry("tbElevation", "The elevation is no number.", "Please enter a new value.");
  InspectorSettingsOf(ormel()) = {Elevation(), Checked("chkTop"), StepSize(), Checked("chkTraceBackwards")};
  return true;
}

SolverIntegrity::SolverIntegrity(Ormel& ormel, const IntegrityValues& values) : Form(ormel) {
  InitControls();
  constexpr const char* kMask = "0.0000E+00";
  auto table = std::make_shared<Table>(
      std::vector<TableColumn>{{.name = "Quantity", .caption = "", .number = false},
                               {.name = "Analytic", .caption = "Analytic", .mask = kMask},
                               {.name = "Numerical", .caption = "Numerical", .mask = kMask},
                               {.name = "Difference", .caption = "Difference", .mask = kMask}});
  for (const IntegrityRow& row : kIntegrityRows) {
    const auto &analytic = values.*row.analytic, &numeric = values.*row.numeric;
    const bool both = analytic && numeric;
    table->AddRow(
        {row.name, ValueOf(analytic), ValueOf(numeric), both ? Value(*numeric - *analytic) : Value()});
  }
  Mutable("lblAnalyicNumeric").table = std::move(table);
}

std::span<const ControlSpec> SolverIntegrity::Controls() const {
  return kIntegrityControls;
}

void SolverIntegrity::Pressed(std::string_view name) {
  if (name != "cmdOk") return;
  Result = 1;
  Hide();
}

}  // namespace ormel
