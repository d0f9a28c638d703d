#include "model/observation_forms.h"

#include <array>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/status.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::size_t kTestPointLabelLimit = 20;

constexpr std::array kTestPointControls{
    ControlSpec{.name = "tbLabel", .kind = kText, .caption = "Label"},
    ControlSpec{.name = "tbX", .kind = kNumber, .caption = "X", .range = {-1e9, 1e9, false, true}},
    ControlSpec{.name = "tbY", .kind = kNumber, .caption = "Y", .range = {-1e9, 1e9, false, true}},
    ControlSpec{
        .name = "tbObsHead", .kind = kNumber, .caption = "Observed Head", .range = {-1e7, 1e7, false, true}},
    kOkButton,
    kCancelButton};

constexpr std::array kParticleControls{
    ControlSpec{.name = "chkDirection(1)",
                .kind = kOption,
                .caption = "Forward in time",
                .group = "Tracing Direction"},
    ControlSpec{.name = "chkDirection(0)",
                .kind = kOption,
                .caption = "Backward in time",
                .group = "Tracing Direction"},
    ControlSpec{.name = "chkSatdThick",
                .kind = kCheck,
                .caption = "Start at top of saturated thickness",
                .tip = "On-start at aquifer top  Off-start at entered elevation"},
    ControlSpec{.name = "tbElevation",
                .kind = kNumber,
                .caption = "Starting Elevation:",
                .range = {-1e7, 1e7, false, true}},
    kOkButton,
    kCancelButton};

constexpr std::array kTextControls{
    ControlSpec{.name = "tbText", .kind = kText, .group = "Label Text", .longest = 255},
    ControlSpec{.name = "btnFont", .kind = kButton, .caption = "Font...", .group = "Label Text"},
    ControlSpec{.name = "txFont", .kind = kFont, .group = "Label Text"},
    ControlSpec{
        .name = "chkLabelType(0)", .kind = kOption, .caption = "Permanent Label", .group = "Type of Label"},
    ControlSpec{
        .name = "chkLabelType(1)", .kind = kOption, .caption = "Hydrography Label", .group = "Type of Label"},
    kOkButton,
    kCancelButton};

constexpr std::array kNameControls{
    ControlSpec{.name = "tbLabel", .kind = kText, .caption = "Name", .longest = 32}, kOkButton,
    kCancelButton};

constexpr const char *kInvalidEntry = "Invalid Entry",
                     *kInvalidValue = "Invalid data value.  Please re-enter";

}  // namespace

TestPointProperties::TestPointProperties(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
  Unit("tbX", MapLengthUnit(ormel));
  Unit("tbY", MapLengthUnit(ormel));
  Unit("tbObsHead", ormel.project.ComputeMeters ? "m" : "ft");
}

std::span<const ControlSpec> TestPointProperties::Controls() const {
  return kTestPointControls;
}

void TestPointProperties::Fill(const TestPointRow& row, MapPoint at) {
  Put("tbLabel", row.Label);
  PutNumber("tbObsHead", row.ObsHead);
  PutNumber("tbX", at.x);
  PutNumber("tbY", at.y);
}

bool TestPointProperties::Ok() {
  const std::string& label = Text("tbLabel");
  if (label.empty() || TextLength(label) > kTestPointLabelLimit)
    return Refuse("tbLabel", "Invalid Label",
                  Lines({"Test Point label cannot be blank, or be larger than 20 characters.",
                         "Please enter a new label"}));
  for (const char* name : {"tbObsHead", "tbX", "tbY"})
    if (!IsNumeric(Text(name))) return Refuse(name, kInvalidEntry, kInvalidValue);
  return true;
}

ParticleProperties::ParticleProperties(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
  Unit("tbElevation", ComputeLengthUnit(ormel));
  Fill({});
}

std::span<const ControlSpec> ParticleProperties::Controls() const {
  return kParticleControls;
}

void ParticleProperties::Fill(const ParticleRow& row) {
  PutCheck(row.Forward ? "chkDirection(1)" : "chkDirection(0)", true);
  PutCheck("chkSatdThick", row.SatdThick);
  PutNumber("tbElevation", row.Elevation);
  Offer("tbElevation", !row.SatdThick);
}

ParticleRow ParticleProperties::Row() const {
  return {Number("tbElevation"), Checked("chkSatdThick"), Checked("chkDirection(1)")};
}

void ParticleProperties::Changed(std::string_view name) {
  if (name == "chkSatdThick") Offer("tbElevation", !Checked(name));
}

bool ParticleProperties::Ok() {
  if (!IsNumeric(Text("tbElevation"))) return Refuse("tbElevation", kInvalidEntry, kInvalidValue);
  return true;
}

TextLabelDialog::TextLabelDialog(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
  Fill({});
}

std::span<const ControlSpec> TextLabelDialog::Controls() const {
  return kTextControls;
}

void TextLabelDialog::ShowFont() {
  Put("txFont", font_.name + ", " + std::to_string(font_.size));
}

void TextLabelDialog::Fill(const TextLabelRow& row) {
  Put("tbText", row.Text);
  font_ = row.font;
  if (font_.name.empty()) font_.name = "Arial";
  PutCheck(row.type == LabelType::kHydrography ? "chkLabelType(1)" : "chkLabelType(0)", true);
  ShowFont();
}

TextLabelRow TextLabelDialog::Row() const {
  return {.Text = Text("tbText"),
          .font = font_,
          .type = Checked("chkLabelType(1)") ? LabelType::kHydrography : LabelType::kPermanent};
}

void TextLabelDialog::OtherPressed(std::string_view name) {
  if (name != "btnFont") return;
  if (const auto chosen = ormel().ui().ChooseFont(font_)) font_ = *chosen;
  ShowFont();
}

bool TextLabelDialog::Ok() {
  if (!Text("tbText").empty()) return true;
  if (!AskOkCancel(ormel(), "Error in Input", "No text has been entered.  Cancel text entry?",
                   Icon::kQuestion))
    return true;  // the empty label is kept
  Result = kCancel;
  Hide();
  return false;
}

FluxInspectDialog::FluxInspectDialog(Ormel& ormel, std::string prompt, const std::string& label)
    : OkCancelForm(ormel), prompt_(std::move(prompt)) {
  InitControls();
  Put("tbLabel", label);
}

std::span<const ControlSpec> FluxInspectDialog::Controls() const {
  return kNameControls;
}

bool FluxInspectDialog::Ok() {
  if (Text("tbLabel").empty()) return Refuse("tbLabel", "Data Missing", "Label must be specified. ");
  return true;
}

}  // namespace ormel
