#include "whpa/forms.h"

#include <algorithm>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "store/database.h"
#include "text/numbers.h"
#include "text/strings.h"
#include "whpa/step_forms.h"

namespace ormel {
namespace {

constexpr ControlSpec kContinue{.name = "ContinueCancel(0)",
                                .kind = ControlKind::kButton,
                                .caption = "Continue",
                                .role = ButtonRole::kAccept};
constexpr ControlSpec kCancel{.name = "ContinueCancel(1)",
                              .kind = ControlKind::kButton,
                              .caption = "Cancel",
                              .role = ButtonRole::kReject};
constexpr ControlSpec kWellList{
    .name = "listWell", .kind = ControlKind::kMultiList, .caption = "Select Well(s)"};
constexpr ControlSpec kPorosity{.name = "DataPorosity",
                                .kind = ControlKind::kNumber,
                                .caption = "Aquifer Porosity",
                                .range = {0.0, 1.0, true}};
/// With a check of its own words.
constexpr ControlSpec kMeanPorosity{
    .name = "DataPorosity", .kind = ControlKind::kNumber, .caption = "Aquifer Porosity"};
constexpr ControlSpec kThickness{
    .name = "DataThickness", .kind = ControlKind::kNumber, .caption = "Aquifer Thickness", .range = kSizes};

constexpr ControlSpec kOutline{.name = "chkOutline",
                               .kind = ControlKind::kCheck,
                               .caption = "Outline the area of the pathlines",
                               .tip =
                                   "The ground from which water reaches the well within the maximum travel "
                                   "time is outlined, checked and stored as a capture zone too"};

constexpr ControlSpec kArbitraryControls[] = {
    kWellList,
    {.name = "DataRadius",
     .kind = ControlKind::kNumber,
     .caption = "Radius",
     .unit = "m",
     .range = {0.0, 1e9}},
    {.name = "DataRadius2",
     .kind = ControlKind::kNumber,
     .caption = "Radius",
     .unit = "ft",
     .range = {0.0, 1e9}},
    {.name = "DrawCancel(0)", .kind = ControlKind::kButton, .caption = "Draw", .role = ButtonRole::kAccept},
    {.name = "DrawCancel(1)", .kind = ControlKind::kButton, .caption = "Cancel", .role = ButtonRole::kReject},
};

constexpr ControlSpec kCalculatedControls[] = {
    {.name = "lblExplanation",
     .kind = ControlKind::kNote,
     .caption =
         "This can only be done for one well at a time. Based on the data, a dimensionless travel time "
         "parameter T is calculated, used to decide on a centric circle, excentric circle, or pathlines "
         "for well in ambient flow."},
    {.name = "cmbWell", .kind = ControlKind::kCombo, .caption = "Selected Well"},
    {.name = "DataTime",
     .kind = ControlKind::kNumber,
     .caption = "Time of Travel",
     .unit = "days",
     .range = {0.0, 1e9}},
    kPorosity,
    kThickness,
    {.name = "DataAmbient", .kind = ControlKind::kNumber, .caption = "Ambient Flow", .range = {0.0, 1e7}},
    kOutline,
    kContinue,
    kCancel,
};

constexpr ControlSpec kMultipleControls[] = {
    {.name = "lblExplanation",
     .kind = ControlKind::kNote,
     .caption =
         "To ensure proper treatment of well interference, capture zones will be represented by sets of "
         "particle traces from each well selected above."},
    kWellList,
    kMeanPorosity,
    kThickness,
    {.name = "DataAmbientFlow", .kind = ControlKind::kNumber, .caption = "Ambient Flow", .range = {0.0, 1e7}},
    {.name = "DataDirectionFlow",
     .kind = ControlKind::kNumber,
     .caption = "Direction of Flow",
     .unit = "Degrees",
     .tip = "Where the ambient flow goes, counter-clockwise from east",
     .range = kDegrees},
    kOutline,
    kContinue,
    kCancel,
};

constexpr std::string_view kNoWells = "No Wells are selected. Please select atleast one well.";

const char* LengthUnit(const Ormel& ormel) {
  return ormel.project.ComputeMeters ? "m" : "ft";
}
const char* FlowUnit(const Ormel& ormel) {
  return ormel.project.ComputeMeters ? "m^2/day" : "ft^2/day";
}

}  // namespace

void WhpaForm::FillWells(std::string_view list) {
  ControlState& state = Mutable(list);
  for (const WhpaWell& well : wells_) state.items.push_back(well.label);
}

void WhpaForm::SelectWells(std::string_view list, const std::vector<WhpaRow>& rows) {
  ControlState& state = Mutable(list);
  for (std::size_t i = 0; i < wells_.size(); ++i) {
    const bool chosen = std::any_of(
        rows.begin(), rows.end(), [&](const WhpaRow& row) { return EqualNoCase(row.Well, wells_[i].label); });
    if (chosen) state.selected.push_back(static_cast<int>(i));
  }
}

std::vector<WhpaWell> WhpaForm::SelectedWells(std::string_view list) const {
  std::vector<WhpaWell> selected;
  for (const int index : State(list).selected) selected.push_back(wells_[static_cast<std::size_t>(index)]);
  return selected;
}

// --- arbitrary radius
// ----------------------------------------------------------------------------------------

WHPAArbitrary::WHPAArbitrary(Ormel& ormel, std::vector<WhpaWell> wells) : WhpaForm(ormel, std::move(wells)) {
  InitControls();
  Put("DataRadius", "0");
  Put("DataRadius2", "0");
  FillWells("listWell");
  const std::vector<WhpaRow> rows = ReadWhpaRows(ormel, "Type=1");
  if (rows.empty()) return;
  const double radius = rows.back().Radius;
  const bool meters = ormel.project.BasemapMeters;
  PutNumber("DataRadius", meters ? radius : radius / kFeetPerMetre);
  PutNumber("DataRadius2", meters ? radius * kFeetPerMetre : radius);
  SelectWells("listWell", rows);
}

std::span<const ControlSpec> WHPAArbitrary::Controls() const {
  return kArbitraryControls;
}

double WHPAArbitrary::Radius() const {
  return Number(ormel().project.BasemapMeters ? "DataRadius" : "DataRadius2");
}

void WHPAArbitrary::Changed(std::string_view name) {
  if (name == "DataRadius") PutNumber("DataRadius2", Number(name) * kFeetPerMetre);
  if (name == "DataRadius2") PutNumber("DataRadius", Number(name) / kFeetPerMetre);
}

void WHPAArbitrary::Pressed(std::string_view name) {
  if (name == "DrawCancel(0)") {
    if (State("listWell").selected.empty()) return Stay("listWell", "No Wells Selected", kNoWells);
    FillEmptyNumbers();
    DrawOrCancel = true;
  }
  Hide();
}

// --- calculated
// ----------------------------------------------------------------------------------------------

WHPACalculated::WHPACalculated(Ormel& ormel, std::vector<WhpaWell> wells)
    : WhpaForm(ormel, std::move(wells)) {
  InitControls();
  FillWells("cmbWell");
  for (const char* name : {"DataTime", "DataPorosity", "DataThickness", "DataAmbient"}) Put(name, "0");
  Unit("DataThickness", LengthUnit(ormel));
  Unit("DataAmbient", FlowUnit(ormel));
  const std::vector<WhpaRow> rows = ReadWhpaRows(ormel, "Type=2");
  if (rows.empty()) return;
  const WhpaRow& row = rows.front();
  SelectWells("cmbWell", {row});
  if (!State("cmbWell").selected.empty()) Put("cmbWell", row.Well);
  PutNumber("DataTime", row.TimeOfTravel);
  PutNumber("DataPorosity", row.Porosity);
  PutNumber("DataThickness", row.Thickness);
  PutNumber("DataAmbient", row.AmbientFlow);
  Mutable("chkOutline").checked = row.Outline;
  answers.direction = row.Direction;
}

std::span<const ControlSpec> WHPACalculated::Controls() const {
  return kCalculatedControls;
}

const WhpaWell* WHPACalculated::Selected() const {
  const auto& selected = State("cmbWell").selected;
  return selected.empty() ? nullptr : &wells()[static_cast<std::size_t>(selected.front())];
}

WhpaInput WHPACalculated::Input() const {
  const WhpaWell* well = Selected();
  return {well == nullptr ? 0.0 : well->discharge, Number("DataTime"), Number("DataPorosity"),
          Number("DataThickness"), Number("DataAmbient")};
}

bool WHPACalculated::Check() {
  if (Selected() == nullptr) return Refuse("cmbWell", "No Well Selected", "No well was selected!");
  if (!(Number("DataPorosity") > 0))
    return Refuse("DataPorosity", "Invalid Porosity", "Porosity must be larger than 0.");
  if (!(Number("DataThickness") > 0))
    return Refuse("DataThickness", "Invalid Thickness", "Thickness must be larger than 0.");
  if (Selected()->discharge == 0.0)
    return Refuse("cmbWell", "Choose Another Well",
                  "This well has no discharge, please choose another well.");
  return true;
}

void WHPACalculated::Pressed(std::string_view name) {
  if (name == "ContinueCancel(0)") return Continue();
  Hide();
}

void WHPACalculated::Continue() {
  FillEmptyNumbers();
  if (!Check()) return;
  TWavey = DimensionlessTime(Input());
  const WhpaShape shape = ShapeFor(TWavey);
  const double direction = answers.direction;
  answers = {};
  answers.direction = direction;
  if (shape == WhpaShape::kPathlines) {
    AskPathlines();
  } else {
    AskCircle(shape);
  }
  if (answers.Any()) Hide();
}

void WHPACalculated::AskCircle(WhpaShape shape) {
  if (shape == WhpaShape::kCentricCircle) {
    WHPACentric form(ormel(), ComputeToMapLength(ormel(), CentricRadius(Input())), TWavey);
    ormel().ui().ShowForm(form);
    answers.draw_centric = form.DrawOrCancel;
    return;
  }
  const double L = AmbientLength(Input().Q, Input().Qo);
  WHPAEccentric form(ormel(), ComputeToMapLength(ormel(), EccentricRadius(L, TWavey)),
                     ComputeToMapLength(ormel(), EccentricShift(L, TWavey)), TWavey, answers.direction);
  ormel().ui().ShowForm(form);
  answers.draw_eccentric = form.DrawOrCancel;
  answers.direction = form.Direction();
}

void WHPACalculated::AskPathlines() {
  if (!MayReplaceMultiple(ormel())) return;
  WHPAUniform form(ormel(), TWavey, answers.direction);
  ormel().ui().ShowForm(form);
  answers.direction = form.Direction();
  answers.draw_stream = !form.GoBack && form.stream.DrawOrCancel;
  answers.stream_boundary = answers.draw_stream && form.stream.StreamBoundary();
  answers.first_head = form.stream.Head();
  answers.conductivity = form.stream.Conductivity();
}

bool MayReplaceMultiple(Ormel& ormel) {
  if (ormel.db().Scalar("select count(*) from WHPAs where Type=3").AsLong() == 0) return true;
  if (!AskOkCancel(ormel, "Warning",
                   Lines({"Multiple Well WHPAs exist.",
                          "Multiple Wells and a Calculated WHPA with T > 1 may not co-exist.",
                          "Press OK to delete the Multiple Well WHPA records and continue."}),
                   Icon::kWarning))
    return false;
  // Their image wells go with them: an image left behind would pump in the next run.
  RemoveWhpaRows(ormel, "Type=3");
  return true;
}

bool MayReplaceCalculated(Ormel& ormel) {
  if (ormel.db().Scalar("select count(*) from WHPAs where Type=2 and T>1").AsLong() == 0) return true;
  if (!AskOkCancel(ormel, "Warning",
                   Lines({"A calculated WHPA with T > 1 already exists.",
                          "Press OK to delete the calculated WHPA and continue."}),
                   Icon::kWarning))
    return false;
  RemoveWhpaRows(ormel, "Type=2 and T>1");
  return true;
}

// --- multiple wells
// ------------------------------------------------------------------------------------------

WHPAMultiple::WHPAMultiple(Ormel& ormel, std::vector<WhpaWell> wells) : WhpaForm(ormel, std::move(wells)) {
  InitControls();
  FillWells("listWell");
  for (const char* name : {"DataPorosity", "DataThickness", "DataAmbientFlow", "DataDirectionFlow"})
    Put(name, "0");
  Unit("DataThickness", LengthUnit(ormel));
  Unit("DataAmbientFlow", FlowUnit(ormel));
  const std::vector<WhpaRow> rows = ReadWhpaRows(ormel, "Type=3");
  if (rows.empty()) return;
  PutNumber("DataPorosity", rows.front().Porosity);
  PutNumber("DataThickness", rows.front().Thickness);
  PutNumber("DataAmbientFlow", rows.front().AmbientFlow);
  PutNumber("DataDirectionFlow", rows.front().Direction);
  Mutable("chkOutline").checked = rows.front().Outline;
  SelectWells("listWell", rows);
}

std::span<const ControlSpec> WHPAMultiple::Controls() const {
  return kMultipleControls;
}

void WHPAMultiple::Pressed(std::string_view name) {
  if (name != "ContinueCancel(0)") return Hide();
  FillEmptyNumbers();
  if (State("listWell").selected.empty()) return Stay("listWell", "No Wells Selected", kNoWells);
  const double porosity = Number("DataPorosity");
  if (!(porosity > 0 && porosity <= 1)) return Stay("DataPorosity", "", "Porosity must between 0 and 1");
  WHPAStream stream(ormel());
  ormel().ui().ShowForm(stream);
  if (!stream.DrawOrCancel) return;
  answers.draw_stream = true;
  answers.stream_boundary = stream.StreamBoundary();
  answers.first_head = stream.Head();
  answers.conductivity = stream.Conductivity();
  answers.direction = Number("DataDirectionFlow");
  Hide();
}

}  // namespace ormel
