#include "shell/new_database_wizard.h"

#include <array>

#include "store/schema.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kComputeFrame = "Units for Computations (Elevations, Properties, Pumping Rates)";
constexpr std::string_view kBasemapFrame = "Distance units in Basemap Files";

constexpr std::array kControls{
    ControlSpec{.name = "tbDesc",
                .kind = ControlKind::kMultiline,
                .caption = "Project Description",
                .tip = "Description of the new project (enter several lines)"},
    ControlSpec{.name = "optCompute(0)",
                .kind = ControlKind::kOption,
                .caption = "Feet and Days",
                .group = kComputeFrame,
                .tip = "Heads in feet, time in days, conductivity in ft/day, pumping rates in ft^3/day"},
    ControlSpec{.name = "optCompute(1)",
                .kind = ControlKind::kOption,
                .caption = "Meters and Days",
                .group = kComputeFrame,
                .tip = "Heads in meters, time in days, conductivity in m/day, pumping rates in m^3/day)"},
    ControlSpec{.name = "optBasemap(0)",
                .kind = ControlKind::kOption,
                .caption = "Feet",
                .group = kBasemapFrame,
                .tip = "Set basemap distance units to feet"},
    ControlSpec{.name = "optBasemap(1)",
                .kind = ControlKind::kOption,
                .caption = "Meters",
                .group = kBasemapFrame,
                .tip = "Set basemap distance units to meters (set for USGS DLG Optinal Format)"},
    ControlSpec{.name = "OK",
                .kind = ControlKind::kButton,
                .caption = "Create Database",
                .role = ButtonRole::kAccept},
    ControlSpec{
        .name = "Cancel", .kind = ControlKind::kButton, .caption = "Abort", .role = ButtonRole::kReject},
};

}  // namespace

NewDatabaseWizard::NewDatabaseWizard(Ormel& controller) : OkCancelForm(controller) {
  InitControls();
  Put("tbDesc", "New Ormel Project");
  PutCheck("optCompute(1)", true);
  PutCheck("optBasemap(1)", true);
}

std::span<const ControlSpec> NewDatabaseWizard::Controls() const {
  return kControls;
}

bool NewDatabaseWizard::Ok() {
  if (TextLength(Description()) > schema::kDefaultTextSize)
    return Refuse("tbDesc", "Invalid Data",
                  "The description is longer than 255 characters.\nPlease enter a shorter one.");
  return true;
}

}  // namespace ormel
