#include "shell/start.h"

#include <exception>
#include <string_view>

#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/settings.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "shell/about.h"
#include "shell/lifecycle.h"
#include "shell/welcome.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

struct PlacementKey {
  std::string_view key;
  double Placement::*value;
};
constexpr PlacementKey kPlacementKeys[] = {{"Top", &Placement::Top},
                                           {"Left", &Placement::Left},
                                           {"Width", &Placement::Width},
                                           {"Height", &Placement::Height}};

void ShowSplash(Ormel& ormel) {
  About splash(ormel, true);
  ormel.ui().ShowForm(splash);
}

void OpenFirstProject(Ormel& ormel, const std::string& command_line) {
  if (!command_line.empty()) {
    FileOpenProject(ormel, command_line);
  } else if (Val(ormel.settings().GetSetting("WelcomeBox", "0")) == 0.0) {
    ShowWelcome(ormel);
  }
}

/// Menus, toolbar and map of a program in which no project is open yet.
void ResetForm(Ormel& ormel) {
  ormel.mouse = MouseState{};
  ormel.selection = Selection{};
  ormel.layers.Switch(Layer::kTestScale5, true);  // +/- 5
  EnableProjectCommands(ormel, false);
  ormel.view().TurnOffMenus();
  ormel.menus.Enable("FILEMENU", true);
  ormel.menus.Enable("HELPMENU", true);
  ormel.view().SetUpToolbar();
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

}  // namespace

Placement ReadPlacement(const Ormel& ormel) {
  Placement placement;
  const Settings& settings = ormel.settings();
  for (const PlacementKey& entry : kPlacementKeys)
    placement.*entry.value = Val(settings.GetSetting(entry.key, NumberText(placement.*entry.value)));
  placement.First = settings.GetSetting("Width", "").empty();
  const auto on = [&settings](std::string_view key, std::string_view otherwise) {
    const std::string text = settings.GetSetting(key, otherwise);
    return EqualNoCase(Trim(text), "true") || Val(text) != 0.0;
  };
  placement.Toolbar = on("Toolbar", "1");
  placement.Maximized = on("Maximized", "0");
  return placement;
}

void SavePlacement(Ormel& ormel, const Placement& placement) {
  for (const PlacementKey& entry : kPlacementKeys)
    ormel.settings().SaveSetting(entry.key, NumberText(placement.*entry.value));
  ormel.settings().SaveSetting("Toolbar", placement.Toolbar ? "1" : "0");
  ormel.settings().SaveSetting("Maximized", placement.Maximized ? "1" : "0");
}

void Form_Load(Ormel& ormel, const std::string& command_line, const StartSteps& steps) {
  RunCommand(ormel, "Form_Load", [&] {
    ormel.ui().SetCaption(std::string(kProgramTitle) + " - Version " + VersionText());
    const Placement placement = ReadPlacement(ormel);
    if (steps.place) steps.place(placement);
    ormel.layers.Switch(Layer::kToolbar, placement.Toolbar);
    ShowSplash(ormel);
    if (steps.show) steps.show();
    ResetForm(ormel);
    OpenFirstProject(ormel, command_line);
  });
}

void Form_Unload(Ormel& ormel, const std::optional<Placement>& placement) {
  RunCommand(ormel, "Form_Unload", [&] {
    try {
      if (placement && placement->Width > 0.0 && placement->Height > 0.0) SavePlacement(ormel, *placement);
    } catch (const std::exception& e) {
      // The project must be closed all the same.
      Inform(ormel, "Settings", e.what(), Icon::kWarning);
    }
    OfferToKeepView(ormel);
    CloseAll(ormel);
  });
}

}  // namespace ormel
