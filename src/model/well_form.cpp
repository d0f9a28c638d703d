#include "model/well_form.h"

#include <array>
#include <cstdlib>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/geometry.h"
#include "model/model_values.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::string_view kWell = "Well", kTracing = "Tracing";
constexpr std::size_t kLabelLimit = 32;

constexpr std::array kControls{
    ControlSpec{.name = "tbLabel", .kind = kText, .caption = "Label"},
    ControlSpec{
        .name = "tbData(0)", .kind = kNumber, .caption = "X coordinate", .tab = kWell, .range = kPlaces},
    ControlSpec{
        .name = "tbData(1)", .kind = kNumber, .caption = "Y coordinate", .tab = kWell, .range = kPlaces},
    ControlSpec{.name = "optHeadSpec(0)",
                .kind = kOption,
                .caption = "Head-Specified",
                .tab = kWell,
                .group = "Type"},
    ControlSpec{.name = "optHeadSpec(1)",
                .kind = kOption,
                .caption = "Discharge-Specified",
                .tab = kWell,
                .group = "Type"},
    ControlSpec{
        .name = "tbData(2)", .kind = kNumber, .caption = "Discharge", .tab = kWell, .range = kDischarges},
    ControlSpec{.name = "tbData(3)", .kind = kNumber, .caption = "Radius", .tab = kWell, .range = kSizes},
    ControlSpec{
        .name = "chkPond", .kind = kCheck, .caption = "Use circular area-sink function", .tab = kWell},
    ControlSpec{
        .name = "tbData(10)", .kind = kNumber, .caption = "Setback radius", .tab = kWell, .range = kSizes},
    ControlSpec{.name = "chkTrace", .kind = kCheck, .caption = "Trace particles from well", .tab = kTracing},
    ControlSpec{.name = "tbData(11)",
                .kind = kNumber,
                .caption = "Number of particles",
                .tab = kTracing,
                .range = {1.0, 10000.0, true}},
    ControlSpec{.name = "tbData(12)",
                .kind = kNumber,
                .caption = "Starting elevation",
                .tab = kTracing,
                .range = kElevations},
    ControlSpec{
        .name = "chkPathlineColor", .kind = kCheck, .caption = "Choose Pathline Color", .tab = kTracing},
    ControlSpec{.name = "comColor", .kind = kButton, .caption = "Color...", .tab = kTracing},
    ControlSpec{.name = "picColor", .kind = kColor, .caption = "Pathline Color", .tab = kTracing},
    // Of kinds of wells that are not offered: never in view, never stored.
    ControlSpec{.name = "tbData(4)", .kind = kNumber, .tab = kWell},
    ControlSpec{.name = "tbData(5)", .kind = kNumber, .tab = kWell},
    ControlSpec{.name = "tbData(6)", .kind = kNumber, .tab = kWell},
    ControlSpec{.name = "tbData(7)", .kind = kNumber, .tab = kWell},
    ControlSpec{.name = "tbData(8)", .kind = kNumber, .tab = kWell},
    ControlSpec{.name = "tbData(9)", .kind = kNumber, .tab = kWell}, kOkButton, kCancelButton};

}  // namespace

WellProperties::WellProperties(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
  for (const char* name : {"tbData(4)", "tbData(5)", "tbData(6)", "tbData(7)", "tbData(8)", "tbData(9)"})
    Show(name, false);
  for (const char* name : {"tbData(0)", "tbData(1)"}) Unit(name, MapLengthUnit(ormel));
  for (const char* name : {"tbData(3)", "tbData(10)", "tbData(12)"}) Unit(name, ComputeLengthUnit(ormel));
  Fill({}, {});
}

std::span<const ControlSpec> WellProperties::Controls() const {
  return kControls;
}

void WellProperties::Fill(const WellRow& row, MapPoint at) {
  opened_label_ = row.Label;
  pp_well_ = row.PPWell;
  transient_ = row.Transient;
  Put("tbLabel", row.Label);
  PutNumber("tbData(0)", at.x);
  PutNumber("tbData(1)", at.y);
  PutCheck(row.HeadSpecified ? "optHeadSpec(0)" : "optHeadSpec(1)", true);
  PutNumber("tbData(2)", row.Head);
  PutNumber("tbData(3)", row.Radius);
  PutCheck("chkPond", row.Pond);
  PutNumber("tbData(10)", row.Setback);
  PutNumber("tbData(12)", row.StartElev);
  SetNParticles(row.NParticles);
  SetPathlineColor(row.PathlineColor);
  OfferFields();
  form_changed_ = need_retrace_ = need_reload_pathlines_ = false;
}

WellRow WellProperties::Row() const {
  return {.Label = Text("tbLabel"),
          .HeadSpecified = Checked("optHeadSpec(0)"),
          .Pond = Checked("chkPond"),
          .Head = Number("tbData(2)"),
          .Radius = Number("tbData(3)"),
          .Setback = Number("tbData(10)"),
          .NParticles = NParticles(),
          .StartElev = Number("tbData(12)"),
          .PathlineColor = PathlineColor(),
          .PPWell = pp_well_,
          .Transient = transient_};
}

std::int32_t WellProperties::PathlineColor() const {
  return Checked("chkPathlineColor") ? State("picColor").color.value : kDefaultPathlineColor;
}

void WellProperties::SetPathlineColor(std::int32_t color) {
  const bool chosen = color != kDefaultPathlineColor;
  if (chosen) Mutable("picColor").color = Color{color};
  PutCheck("chkPathlineColor", chosen);
  OfferAll({"comColor", "picColor"}, chosen);
}

int WellProperties::NParticles() const {
  const int count = ToLong(Number("tbData(11)"));
  return Checked("chkTrace") ? count : -count;
}

void WellProperties::SetNParticles(int count) {
  PutCheck("chkTrace", count > 0);
  PutNumber("tbData(11)", std::abs(static_cast<double>(count)));
}

void WellProperties::OfferFields() {
  const bool head = Checked("optHeadSpec(0)"), pond = Checked("chkPond");
  const std::string length = ComputeLengthUnit(ormel());
  const std::string letter = ormel().project.ComputeMeters ? "m" : "ft";
  Caption("tbData(2)", head ? "Head" : "Discharge");
  Unit("tbData(2)", head ? length : pond ? letter + "/day" : letter + "^3/day");
  Caption("tbData(4)", head && pond ? "Pond elevation" : "");
  if (pond && Checked("chkTrace")) {
    PutCheck("chkTrace", false);
    need_retrace_ = true;
  }
  OfferAll({"chkTrace", "tbData(10)"}, !pond);
  OfferAll({"tbData(11)", "tbData(12)"}, !pond && Checked("chkTrace"));
}

void WellProperties::Changed(std::string_view name) {
  if (name == "chkTrace" || name == "tbData(11)" || name == "tbData(12)") {
    need_retrace_ = true;
  } else if (name.starts_with("optHeadSpec") || name == "chkPond" ||
             (name.starts_with("tbData") && name != "tbData(10)")) {
    form_changed_ = true;
  }
  if (name == "chkPathlineColor")
    OfferAll({"comColor", "picColor"}, Checked(name));
  else
    OfferFields();
}

void WellProperties::OtherPressed(std::string_view name) {
  if (name != "comColor" && name != "picColor") return;
  const auto color = ormel().ui().ChooseColor(State("picColor").color);
  if (!color) return;
  Mutable("picColor").color = *color;
  need_reload_pathlines_ = true;
}

void WellProperties::ZeroEmptyFields() {
  EmptyToZero({"tbData(0)", "tbData(1)", "tbData(2)", "tbData(3)", "tbData(10)", "tbData(11)", "tbData(12)"});
}

void WellProperties::Cancelled() {
  ZeroEmptyFields();
}

bool WellProperties::CheckTracing() {
  if (!Checked("chkTrace")) return true;
  // The base is the local one, the top that of the whole aquifer.
  const ModelValues model = ReadModel(ormel());
  const double base = FindLocal(ormel(), At(), "Base"), top = model.AquiferTop();
  if (ToLong(Number("tbData(11)")) <= 0)
    return BadEntry("tbData(11)", "Number of Particles must be greater than 0.", "Please enter a new value.");
  const double start = Number("tbData(12)");
  if (start < base || start > top)
    return Refuse(
        "tbData(12)", "Bad Entry",
        Lines({"Starting Elevation must be between the local base and the aquifer top.",
               "The local base is " + NumberText(base) + " and the aquifer top is " + NumberText(top) + ".",
               "Please enter a new value."}));
  return true;
}

bool WellProperties::Ok() {
  ZeroEmptyFields();
  const std::string& label = Text("tbLabel");
  if (IsDuplicateLabel(ormel(), "Wells", label, opened_label_))
    return Refuse("tbLabel", "Duplicate Label", DuplicateLabelText("Well", label));
  if (label.empty() || TextLength(label) > kLabelLimit)
    return Refuse(
        "tbLabel", "Invalid Label",
        Lines({"Well label cannot be blank, or be larger than 32 characters.", "Please enter a new label"}));
  if (StartsWithNoCase(label, MirrorLabel("")))  // stores compare without regard to case
    return Refuse("tbLabel", "Invalid Label",
                  Lines({"A label that begins with \"Mirror_\" is that of an image well.",
                         "Please enter a new label"}));
  if (!(Number("tbData(3)") > 0.0))
    return BadEntry("tbData(3)", "Radius must be greater than 0.", "Please enter a new value.");
  if (Number("tbData(10)") < 0.0)
    return BadEntry("tbData(10)", "Setback Radius must be positive.", "Please enter a new value.");
  return CheckTracing();
}

}  // namespace ormel
