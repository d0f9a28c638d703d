#include <array>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/linesinks.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::string_view kType = "Type", kLocation = "Linesink Location", kStream = "Stream Flow";

constexpr std::array kControls{
    ControlSpec{.name = "tbLabel", .kind = kText, .caption = "Label", .longest = 32},
    ControlSpec{.name = "optHeadSpec(0)", .kind = kOption, .caption = "Head-Specified", .group = kType},
    ControlSpec{.name = "optHeadSpec(1)", .kind = kOption, .caption = "Discharge-Specified", .group = kType},
    ControlSpec{.name = "tbData(0)", .kind = kNumber, .caption = "Starting Head", .range = kElevations},
    ControlSpec{.name = "tbData(1)", .kind = kNumber, .caption = "Ending Head", .range = kElevations},
    ControlSpec{.name = "ShiftHead", .kind = kButton, .caption = "copy Ending Head to Starting Head"},
    ControlSpec{
        .name = "tbData(2)", .kind = kNumber, .caption = "Resistance", .unit = "days", .range = kDurations},
    ControlSpec{.name = "tbData(3)", .kind = kNumber, .caption = "Width", .range = kSizes},
    ControlSpec{.name = "tbData(4)", .kind = kNumber, .caption = "Depth", .range = kSizes},
    ControlSpec{.name = "chkFarField", .kind = kCheck, .caption = "Treat as \"far-field\""},
    ControlSpec{.name = "chkDrain", .kind = kCheck, .caption = "Use as drain element"},
    ControlSpec{.name = "Auto(0)", .kind = kOption, .caption = "Unknown", .group = kLocation},
    ControlSpec{.name = "Auto(1)", .kind = kOption, .caption = "Along stream centerline", .group = kLocation},
    ControlSpec{
        .name = "Auto(2)", .kind = kOption, .caption = "Along surface water boundary", .group = kLocation},
    ControlSpec{
        .name = "chkStream", .kind = kCheck, .caption = "Show the flow of the stream", .group = kStream},
    ControlSpec{.name = "chkRouting",
                .kind = kCheck,
                .caption = "Follow the flow along the stream",
                .group = kStream},
    ControlSpec{.name = "chkEndStream", .kind = kCheck, .caption = "End of the stream", .group = kStream},
    ControlSpec{.name = "tbInflow",
                .kind = kNumber,
                .caption = "Inflow at the Upper End",
                .group = kStream,
                .range = {0.0, 1e12}},
    ControlSpec{.name = "tbOverland",
                .kind = kNumber,
                .caption = "Overland Flow",
                .group = kStream,
                .range = kDischarges},
    kOkButton,
    kCancelButton};

constexpr std::array kLocations{"Auto(0)", "Auto(1)", "Auto(2)"};

struct BedField {
  const char* name;
  const char* refusal;
};
constexpr std::array kBed{BedField{"tbData(2)", "Resistance cannot be negative."},
                          BedField{"tbData(3)", "Width cannot be negative."},
                          BedField{"tbData(4)", "Depth cannot be negative."}};

}  // namespace

LinesinkString::LinesinkString(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
  Unit("tbData(3)", ComputeLengthUnit(ormel));
  Unit("tbData(4)", ComputeLengthUnit(ormel));
  const char* flow = ormel.project.ComputeMeters ? "m^3/day" : "ft^3/day";
  for (const char* name : {"tbInflow", "tbOverland"}) Unit(name, flow);
  Fill({}, {});
}

std::span<const ControlSpec> LinesinkString::Controls() const {
  return kControls;
}

void LinesinkString::Fill(const LinesinkRow& row, const std::string& own_label) {
  own_label_ = own_label;
  Put("tbLabel", row.Label);
  PutCheck(row.HeadSpecified ? "optHeadSpec(0)" : "optHeadSpec(1)", true);
  PutNumber("tbData(0)", row.StartingHead);
  PutNumber("tbData(1)", row.EndingHead);
  PutNumber("tbData(2)", row.Resistance);
  PutNumber("tbData(3)", row.Width);
  PutNumber("tbData(4)", row.Depth);
  PutCheck("chkDrain", row.Drain);
  PutCheck("chkRouting", row.Routing);
  PutCheck("chkEndStream", row.EndStream);
  PutNumber("tbInflow", row.EndInflow);
  PutNumber("tbOverland", row.Overlandflow);
  PutCheck("chkStream", row.Routing || row.EndStream || row.EndInflow != 0.0 || row.Overlandflow != 0.0);
  PutCheck("chkFarField", row.Farfield);
  const auto location = static_cast<std::size_t>(row.AutoSWIZC);
  PutCheck(location < kLocations.size() ? kLocations.at(location) : kLocations.front(), true);
  OfferFields();
}

LinesinkRow LinesinkString::Row() const {
  return {.Label = Text("tbLabel"),
          .HeadSpecified = Checked("optHeadSpec(0)"),
          .StartingHead = Number("tbData(0)"),
          .EndingHead = Number("tbData(1)"),
          .Resistance = Number("tbData(2)"),
          .Width = Number("tbData(3)"),
          .Depth = Number("tbData(4)"),
          .Drain = Checked("chkDrain"),
          .AutoSWIZC = Checked("Auto(1)")   ? LinesinkLocation::kCentreline
                       : Checked("Auto(2)") ? LinesinkLocation::kBoundary
                                            : LinesinkLocation::kUnknown,
          .Farfield = Checked("chkFarField"),
          .Routing = Checked("chkRouting"),
          .EndStream = Checked("chkEndStream"),
          .EndInflow = Number("tbInflow"),
          .Overlandflow = Number("tbOverland")};
}

void LinesinkString::SetLabelFocus() {
  OfferFields();
  Focus("tbLabel");
}

void LinesinkString::OfferFields() {
  const bool head = Checked("optHeadSpec(0)");
  const std::string unit = head                            ? ComputeLengthUnit(ormel())
                           : ormel().project.ComputeMeters ? "m^2/day"
                                                           : "ft^2/day";
  Caption("tbData(0)", head ? "Starting Head" : "Starting Sink Density");
  Caption("tbData(1)", head ? "Ending Head" : "Ending Sink Density");
  Unit("tbData(0)", unit);
  Unit("tbData(1)", unit);
  Offer("chkFarField", head);
  const bool near = head && !Checked("chkFarField");
  OfferAll({"tbData(2)", "tbData(3)", "tbData(4)"}, near);
  // Folded away where no flow is followed.
  OfferAll({"chkStream", "chkRouting"}, near);
  OfferAll({"chkEndStream", "tbInflow", "tbOverland"}, near && Checked("chkRouting"));
  for (const char* name : {"chkRouting", "chkEndStream", "tbInflow", "tbOverland"})
    Show(name, Checked("chkStream"));
}

void LinesinkString::Changed(std::string_view name) {
  if (name.starts_with("optHeadSpec") || name == "chkFarField" || name == "chkStream" || name == "chkRouting")
    OfferFields();
}

void LinesinkString::OtherPressed(std::string_view name) {
  if (name == "ShiftHead") Put("tbData(0)", Text("tbData(1)"));
}

void LinesinkString::Cancelled() {
  FillEmptyNumbers();
}

bool LinesinkString::CheckBed() {
  for (const BedField& field : kBed)
    if (Number(field.name) < 0.0)
      return BadEntry(field.name, field.refusal, "Please enter a positive value.");
  if (Checked("chkDrain") && !(Number("tbData(2)") > 0.0))
    return Refuse("tbData(2)", "Error", "Linesinks specified as drains must have resistance");
  return true;
}

bool LinesinkString::AcceptHeads() {
  if (!Checked("optHeadSpec(0)") || !(Number("tbData(0)") < Number("tbData(1)"))) return true;
  const bool change = AskYesNo(ormel(), kProgramTitle,
                               Lines({"Warning: Starting head is lower than ending head.",
                                      "               Entering a line sink string in upgradient",
                                      "               direction may lead to incorrect reporting",
                                      "               of cumulative groundwater inflow along a string.", "",
                                      "               Do you want to change head data?"}),
                               Icon::kWarning);
  if (change) Focus("tbData(0)");
  return !change;
}

bool LinesinkString::Ok() {
  FillEmptyNumbers();
  const std::string& label = Text("tbLabel");
  if (label.empty()) return Refuse("tbLabel", "Data Missing", "A unique Label must be specified.");
  if (IsDuplicateLabel(ormel(), "LinesinkStrings", label, own_label_))
    return Refuse("tbLabel", "Duplicate Label", DuplicateLabelText("Linesink", label));
  return CheckBed() && AcceptHeads();
}

}  // namespace ormel
