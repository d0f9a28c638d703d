#include <array>
#include <cmath>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/user_interface.h"
#include "model/inhomogeneities.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::string_view kProperties = "Properties", kScenarios = "Scenarios";
constexpr int kFields = 5;

/// A switch, its field and its members of the row.
struct SwitchedField {
  const char* check;
  const char* field;
  double InhomogeneityRow::*value;
  bool InhomogeneityRow::*change;
};
constexpr std::array<SwitchedField, kFields> kSwitched{{
    {"chkChangeK", "tbData(0)", &InhomogeneityRow::HydCond, &InhomogeneityRow::ChangeK},
    {"chkChangeR", "tbData(1)", &InhomogeneityRow::Recharge, &InhomogeneityRow::ChangeR},
    {"chkChangeP", "tbData(2)", &InhomogeneityRow::Porosity, &InhomogeneityRow::ChangeP},
    {"chkChangeB", "tbData(3)", &InhomogeneityRow::BottomElevation, &InhomogeneityRow::ChangeB},
    {"chkChangeA", "tbData(4)", &InhomogeneityRow::AverageHead, &InhomogeneityRow::ChangeA},
}};

constexpr std::array kControls{
    ControlSpec{.name = "tbLabel", .kind = kText, .caption = "Inhomogeneity Name", .longest = 32},
    ControlSpec{.name = "chkChangeK",
                .kind = kCheck,
                .caption = "Change hydraulic conductivity from default",
                .tab = kProperties},
    ControlSpec{
        .name = "tbData(0)", .kind = kNumber, .caption = "Conductivity", .tab = kProperties, .range = kRates},
    ControlSpec{.name = "chkChangeR",
                .kind = kCheck,
                .caption = "Change recharge rate from default",
                .tab = kProperties},
    ControlSpec{.name = "tbData(1)",
                .kind = kNumber,
                .caption = "Added Recharge Rate",
                .tab = kProperties,
                .range = kRecharges},
    ControlSpec{
        .name = "chkChangeP", .kind = kCheck, .caption = "Change porosity from default", .tab = kProperties},
    ControlSpec{.name = "tbData(2)", .kind = kNumber, .caption = "Porosity", .tab = kProperties},
    ControlSpec{.name = "chkChangeB",
                .kind = kCheck,
                .caption = "Change base elevation from default",
                .tab = kProperties},
    ControlSpec{.name = "tbData(3)",
                .kind = kNumber,
                .caption = "Base Elevation",
                .tab = kProperties,
                .range = kElevations},
    ControlSpec{.name = "chkChangeA",
                .kind = kCheck,
                .caption = "Provide estimate of average head",
                .tab = kProperties},
    ControlSpec{.name = "tbData(4)",
                .kind = kNumber,
                .caption = "Average Head",
                .tab = kProperties,
                .range = kElevations},
    ControlSpec{.name = "comColor", .kind = kButton, .caption = "Color...", .tab = kProperties},
    ControlSpec{.name = "picColor", .kind = kColor, .caption = "Inhomogeneity Color", .tab = kProperties},
    // Names of a scenario page; what stands there goes no further than the dialog.
    ControlSpec{.name = "lblNoScenarios",
                .kind = kNote,
                .caption = "This version computes no scenarios: what is entered here is not kept.",
                .tab = kScenarios},
    ControlSpec{.name = "lblScenario",
                .kind = kNote,
                .caption = "Enter symbolic names for the following properties:",
                .tab = kScenarios},
    ControlSpec{.name = "chkScenarioHydCond",
                .kind = kCheck,
                .caption = "Include in scenarios",
                .tab = kScenarios,
                .group = "Conductivity"},
    ControlSpec{.name = "tbScenario(0)", .kind = kText, .tab = kScenarios, .group = "Conductivity"},
    ControlSpec{.name = "chkScenarioRecharge",
                .kind = kCheck,
                .caption = "Include in scenarios",
                .tab = kScenarios,
                .group = "Added Recharge Rate"},
    ControlSpec{.name = "tbScenario(1)", .kind = kText, .tab = kScenarios, .group = "Added Recharge Rate"},
    kOkButton, kCancelButton};

/// What applies inside a domain that changes nothing.
double ModelValue(const ModelValues& model, int index) {
  const std::array<double, kFields> values{model.AQHydCond, model.AQRecharge, model.AQPorosity, model.AQBase,
                                           model.AquiferTop()};
  return values.at(static_cast<std::size_t>(index));
}

}  // namespace

Inhomogeneity::Inhomogeneity(Ormel& ormel) : OkCancelForm(ormel), model_(ReadModel(ormel)) {
  InitControls();
  const std::string rate = model_.ComputeMeters ? "m/day" : "ft/day";
  Unit("tbData(0)", rate);
  Unit("tbData(1)", rate);
  Unit("tbData(3)", ComputeLengthUnit(ormel));
  Unit("tbData(4)", ComputeLengthUnit(ormel));
  Put("tbScenario(0)", "__NONE__");
  Put("tbScenario(1)", "__NONE__");
  Fill({});
}

std::span<const ControlSpec> Inhomogeneity::Controls() const {
  return kControls;
}

void Inhomogeneity::Fill(const InhomogeneityRow& row) {
  opened_label_ = row.Label;
  Put("tbLabel", row.Label);
  Mutable("picColor").color = row.color;
  for (int i = 0; i < kFields; ++i) {
    const SwitchedField& entry = kSwitched.at(static_cast<std::size_t>(i));
    PutCheck(entry.check, row.*entry.change);
    PutNumber(entry.field, row.*entry.value);
  }
  // An estimate of the average head serves a change of the base only.
  if (!row.ChangeB) PutCheck("chkChangeA", false);
  for (int i = 0; i < kFields; ++i) OfferField(i);
  invalidate_ = false;
}

void Inhomogeneity::OfferField(int index) {
  const SwitchedField& entry = kSwitched.at(static_cast<std::size_t>(index));
  const bool on = Checked(entry.check);
  Offer(entry.field, on);
  if (!on) PutNumber(entry.field, ModelValue(model_, index));
}

InhomogeneityRow Inhomogeneity::Row() const {
  InhomogeneityRow row;
  row.Label = Text("tbLabel");
  row.color = State("picColor").color;
  for (const SwitchedField& entry : kSwitched) {
    row.*entry.value = Number(entry.field);
    row.*entry.change = Checked(entry.check);
  }
  return row;
}

void Inhomogeneity::Changed(std::string_view name) {
  invalidate_ = true;
  for (int i = 0; i < kFields; ++i)
    if (name == kSwitched.at(static_cast<std::size_t>(i)).check) OfferField(i);
}

void Inhomogeneity::OtherPressed(std::string_view name) {
  if (name != "comColor" && name != "picColor") return;
  if (const auto color = ormel().ui().ChooseColor(State("picColor").color))
    Mutable("picColor").color = *color;
}

bool Inhomogeneity::Ok() {
  for (const SwitchedField& entry : kSwitched) EmptyToZero({entry.field});
  const std::string& label = Text("tbLabel");
  if (label.empty()) return Refuse("tbLabel", "Data Missing", "Label must be specified. ");
  if (IsDuplicateLabel(ormel(), "Inhomogeneities", label, opened_label_))
    return Refuse("tbLabel", "Duplicate Label", DuplicateLabelText("Inhomogeneity", label));
  if (Number("tbData(0)") < 0.0)
    return BadEntry("tbData(0)", "Hydraulic Conductivity cannot be negative.",
                    "Please enter a positive value.");
  const double porosity = Number("tbData(2)");
  if (std::abs(porosity) > 1.0 || !(porosity > 0.0))
    return BadEntry("tbData(2)", "Porosity must be greater than 0 and no larger than 1.",
                    "Please enter a new value.");
  return AcceptConductivity();
}

bool Inhomogeneity::AcceptConductivity() {
  if (!Checked("chkChangeK") || Number("tbData(0)") > 0.0) return true;
  const bool keep =
      ormel().ui().Ask(Box{.title = "No Conductivity",
                           .text = "A domain without conductivity lets no water pass, and a model that "
                                   "holds one cannot be solved.\nKeep a conductivity of 0?",
                           .buttons = Buttons::kYesNo,
                           .icon = Icon::kWarning,
                           .safe_default = true}) == Answer::kYes;
  if (!keep) Focus("tbData(0)");
  return keep;
}

}  // namespace ormel
