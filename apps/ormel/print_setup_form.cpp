#include "ormel/print_setup_form.h"

#include <array>

#include "core/ormel.h"
#include "store/database.h"
#include "store/recordset.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::string_view kMargins = "Margins", kPaper = "Paper";
constexpr double kLargestMargin = 20.0;  ///< inches

constexpr std::array kControls{
    ControlSpec{.name = "tbLeft", .kind = kNumber, .caption = "&Left", .unit = "inches", .group = kMargins},
    ControlSpec{.name = "tbRight", .kind = kNumber, .caption = "&Right", .unit = "inches", .group = kMargins},
    ControlSpec{.name = "tbTop", .kind = kNumber, .caption = "&Top", .unit = "inches", .group = kMargins},
    ControlSpec{
        .name = "tbBottom", .kind = kNumber, .caption = "&Bottom", .unit = "inches", .group = kMargins},
    ControlSpec{.name = "chkBox", .kind = kCheck, .caption = "&Draw a box around the map", .group = kMargins},
    ControlSpec{.name = "optPortrait", .kind = kOption, .caption = "&Portrait", .group = kPaper},
    ControlSpec{.name = "optLandscape", .kind = kOption, .caption = "L&andscape", .group = kPaper},
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

}  // namespace

PrintSetup::PrintSetup(Ormel& controller, bool landscape) : OkCancelForm(controller) {
  InitControls();
  for (const MarginRow& row : kRows) PutNumber(row.control, controller.window.*row.value);
  PutCheck("chkBox", controller.window.margin_box);
  PutCheck(landscape ? "optLandscape" : "optPortrait", true);
}

std::span<const ControlSpec> PrintSetup::Controls() const {
  return kControls;
}

bool PrintSetup::Ok() {
  FillEmptyNumbers();
  for (const MarginRow& row : kRows) {
    const double margin = Number(row.control);
    if (margin < 0.0 || margin > kLargestMargin)
      return BadEntry(row.control, "A margin must be between 0 and 20 inches.", "Please enter a new value.");
  }
  Store();
  return true;
}

void PrintSetup::Store() {
  MapWindow& window = ormel().window;
  for (const MarginRow& row : kRows) window.*row.value = Number(row.control);
  window.margin_box = Checked("chkBox");
  Recordset model = ormel().db().OpenRecordset("select * from Model");
  if (!model.HasRow()) return;
  model.Edit();
  for (const MarginRow& row : kRows) model[row.field] = window.*row.value;
  model["MARGINDrawBox"] = window.margin_box ? 1 : 0;
  model.Update();
}

}  // namespace ormel
