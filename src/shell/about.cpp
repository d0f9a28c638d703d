#include "shell/about.h"

#include <array>

#include "core/ormel.h"
#include "core/user_interface.h"

namespace ormel {
namespace {

constexpr std::array kControls{
    ControlSpec{.name = "VersionID", .kind = ControlKind::kLabel},
    ControlSpec{.name = "Subject",
                .kind = ControlKind::kNote,
                .caption = "Groundwater flow by analytic elements and time-of-travel capture zones."},
    ControlSpec{.name = "License",
                .kind = ControlKind::kNote,
                .caption = "Free software under the GNU General Public License, version 3 or later."},
    ControlSpec{.name = "OK", .kind = ControlKind::kButton, .caption = "OK", .role = ButtonRole::kReject},
};

}  // namespace

About::About(Ormel& controller, bool splash) : Form(controller), splash_(splash) {
  InitControls();
  Caption("VersionID", std::string(kProgramTitle) + " Version " + VersionText());
}

std::span<const ControlSpec> About::Controls() const {
  return kControls;
}

void About::Pressed(std::string_view name) {
  if (name != "OK") return;
  Result = 1;
  Hide();
}

void ShowAbout(Ormel& ormel) {
  About form(ormel);
  ormel.ui().ShowForm(form);
}

}  // namespace ormel
