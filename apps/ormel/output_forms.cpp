#include "ormel/output_forms.h"

#include <array>
#include <cmath>

#include "core/ormel.h"
#include "store/database.h"
#include "store/recordset.h"
#include "text/numbers.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::string_view kMargins = "Margins", kPaper = "Paper", kBeside = "Beside the Map",
                           kSize = "Size of the Picture";
constexpr double kLargestMargin = 20.0;  ///< inches
constexpr double kCentimetres = 2.54;    ///< in an inch
constexpr double kSmallestWidth = 100.0, kLargestWidth = 16000.0, kSmallestDpi = 50.0, kLargestDpi = 1200.0;

constexpr ControlSpec kTitle{.name = "tbTitle", .kind = kText, .caption = "&Title", .group = kBeside};
constexpr ControlSpec kLegend{
    .name = "chkLegend", .kind = kCheck, .caption = "L&egend of the layers shown", .group = kBeside};
constexpr ControlSpec kLegendPlace{
    .name = "cmbLegend", .kind = ControlKind::kCombo, .caption = "Legend at", .group = kBeside};
constexpr ControlSpec kScaleBar{
    .name = "chkScaleBar", .kind = kCheck, .caption = "&Scale bar", .group = kBeside};
constexpr ControlSpec kNorthArrow{
    .name = "chkNorthArrow", .kind = kCheck, .caption = "&North arrow", .group = kBeside};

constexpr std::array kPrintControls{
    ControlSpec{.name = "tbLeft", .kind = kNumber, .caption = "&Left", .unit = "inches", .group = kMargins},
    ControlSpec{.name = "tbRight", .kind = kNumber, .caption = "&Right", .unit = "inches", .group = kMargins},
    ControlSpec{.name = "tbTop", .kind = kNumber, .caption = "T&op", .unit = "inches", .group = kMargins},
    ControlSpec{
        .name = "tbBottom", .kind = kNumber, .caption = "&Bottom", .unit = "inches", .group = kMargins},
    ControlSpec{.name = "chkBox", .kind = kCheck, .caption = "&Draw a box around the map", .group = kMargins},
    ControlSpec{.name = "optPortrait", .kind = kOption, .caption = "&Portrait", .group = kPaper},
    ControlSpec{.name = "optLandscape", .kind = kOption, .caption = "L&andscape", .group = kPaper},
    kTitle,
    kLegend,
    kLegendPlace,
    kScaleBar,
    kNorthArrow,
    kOkButton,
    kCancelButton};

constexpr std::array kPictureControls{
    kTitle,
    kLegend,
    kLegendPlace,
    kScaleBar,
    kNorthArrow,
    ControlSpec{.name = "tbWidth", .kind = kNumber, .caption = "&Width", .unit = "pixels", .group = kSize},
    ControlSpec{
        .name = "tbDpi", .kind = kNumber, .caption = "&Resolution", .unit = "pixels an inch", .group = kSize},
    ControlSpec{.name = "lblNote",
                .kind = kNote,
                .caption =
                    "The height follows the shape of the window.  The resolution sets the weight of lines "
                    "and letters, and the size on paper."},
    kOkButton,
    kCancelButton};

struct MarginRow {
  const char* control;
  const char* field;
  double MapWindow::*value;
};
constexpr std::array kRows{MarginRow{"tbLeft", "MARGINLeft", &MapWindow::margin_left},
                           MarginRow{"tbRight", "MARGINRight", &MapWindow::margin_right},
                           MarginRow{"tbTop", "MARGINTop", &MapWindow::margin_top},
                           MarginRow{"tbBottom", "MARGINBottom", &MapWindow::margin_bottom}};

/// Margins are kept in inches, and shown in centimetres where the project counts in metres.
double Shown(const Ormel& ormel, double inches) {
  return ormel.project.ComputeMeters ? inches * kCentimetres : inches;
}

}  // namespace

MapExtras ExtrasForm::Extras() const {
  const std::vector<int>& place = State("cmbLegend").selected;
  return {Text("tbTitle"), Checked("chkLegend"), Checked("chkScaleBar"), Checked("chkNorthArrow"),
          place.empty() ? LegendCorner::kAuto : static_cast<LegendCorner>(place.front())};
}

void ExtrasForm::PutExtras(const MapExtras& extras) {
  Put("tbTitle", extras.title);
  PutCheck("chkLegend", extras.legend);
  ControlState& place = Mutable("cmbLegend");
  // In the order of LegendCorner.
  place.items = {"Where it hides least", "Lower right", "Upper left",
                 "Lower left",           "Upper right", "Beside the map"};
  place.selected = {static_cast<int>(extras.legend_corner)};
  PutCheck("chkScaleBar", extras.scale_bar);
  PutCheck("chkNorthArrow", extras.north_arrow);
}

PrintSetup::PrintSetup(Ormel& controller, const MapExtras& extras, bool landscape) : ExtrasForm(controller) {
  InitControls();
  if (controller.project.ComputeMeters)
    for (const MarginRow& row : kRows) Unit(row.control, "cm");
  for (const MarginRow& row : kRows) PutNumber(row.control, Shown(controller, controller.window.*row.value));
  PutCheck("chkBox", controller.window.margin_box);
  PutCheck(landscape ? "optLandscape" : "optPortrait", true);
  PutExtras(extras);
}

std::span<const ControlSpec> PrintSetup::Controls() const {
  return kPrintControls;
}

bool PrintSetup::Ok() {
  FillEmptyNumbers();
  for (const MarginRow& row : kRows) {
    const double margin = Number(row.control);
    if (margin < 0.0 || margin > Shown(ormel(), kLargestMargin))
      return BadEntry(row.control,
                      ormel().project.ComputeMeters ? "A margin must be between 0 and 50.8 cm."
                                                    : "A margin must be between 0 and 20 inches.",
                      "Please enter a new value.");
  }
  Store();
  return true;
}

void PrintSetup::Store() {
  MapWindow& window = ormel().window;
  // One that was left alone stays to its last digit.
  for (const MarginRow& row : kRows)
    if (Text(row.control) != NumberText(Shown(ormel(), window.*row.value)))
      window.*row.value = Number(row.control) / Shown(ormel(), 1.0);
  window.margin_box = Checked("chkBox");
  Recordset model = ormel().db().OpenRecordset("select * from Model");
  if (!model.HasRow()) return;
  model.Edit();
  for (const MarginRow& row : kRows) model[row.field] = window.*row.value;
  model["MARGINDrawBox"] = window.margin_box ? 1 : 0;
  model.Update();
}

SaveMap::SaveMap(Ormel& controller, const MapExtras& extras, int width, int dpi) : ExtrasForm(controller) {
  InitControls();
  PutExtras(extras);
  PutNumber("tbWidth", width);
  PutNumber("tbDpi", dpi);
}

std::span<const ControlSpec> SaveMap::Controls() const {
  return kPictureControls;
}

int SaveMap::Width() const {
  return static_cast<int>(std::lround(Number("tbWidth")));
}

int SaveMap::Dpi() const {
  return static_cast<int>(std::lround(Number("tbDpi")));
}

bool SaveMap::Ok() {
  FillEmptyNumbers();
  const double width = Number("tbWidth"), dpi = Number("tbDpi");
  if (width < kSmallestWidth || width > kLargestWidth)
    return BadEntry("tbWidth", "The width must be between 100 and 16000 pixels.",
                    "Please enter a new value.");
  if (dpi < kSmallestDpi || dpi > kLargestDpi)
    return BadEntry("tbDpi", "The resolution must be between 50 and 1200 pixels an inch.",
                    "Please enter a new value.");
  return true;
}

}  // namespace ormel
