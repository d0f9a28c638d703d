#include "shell/welcome.h"

#include <array>

#include "core/ormel.h"
#include "core/processes.h"
#include "core/settings.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "shell/examples.h"
#include "shell/help.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr std::string_view kDontShow = "chkDontShow";

constexpr std::array kControls{
    ControlSpec{.name = "Intro",
                .kind = ControlKind::kNote,
                .caption =
                    "Draw wells, rivers, barriers and zones of the aquifer on the map, solve the model "
                    "and trace the capture zones of the wells."},
    ControlSpec{.name = "cmdButton(0)",
                .kind = ControlKind::kButton,
                .caption = "Tutorial",
                .tip = "From an empty project to a capture zone"},
    ControlSpec{.name = "cmdButton(1)",
                .kind = ControlKind::kButton,
                .caption = "Example: Town Well Field",
                .tip = "Wells in a river valley"},
    ControlSpec{.name = "cmdButton(2)",
                .kind = ControlKind::kButton,
                .caption = "Example: Basin and Range",
                .tip = "Wells in a closed basin"},
    ControlSpec{.name = kDontShow,
                .kind = ControlKind::kCheck,
                .caption = "Don't show this dialog box in the future"},
    ControlSpec{.name = "cmdButton(3)",
                .kind = ControlKind::kButton,
                .caption = "Start Ormel",
                .role = ButtonRole::kReject},
};

struct Example {
  Welcome::Button button;
  const char* file;
  std::string_view description;
};
constexpr std::array kExamples{
    Example{
        Welcome::kFirstExample, "example.orm",
        "The well field of a small town in a river valley: pumping wells, regional flow toward the river, "
        "a gravel terrace, and ten years of travel."},
    Example{Welcome::kSecondExample, "basin and range.orm",
            "Wells in a closed basin between two mountain ranges: recharge along the fronts, a fault, a "
            "river that "
            "dries up, a playa, heads to compare with observed ones, and thirty years of travel."},
};

}  // namespace

Welcome::Welcome(Ormel& controller) : Form(controller) {
  InitControls();
  Offer("cmdButton(1)", !ExamplePath(controller, kFirstExample).empty());
  Offer("cmdButton(2)", !ExamplePath(controller, kSecondExample).empty());
}

std::span<const ControlSpec> Welcome::Controls() const {
  return kControls;
}

void Welcome::Pressed(std::string_view name) {
  constexpr std::string_view kPrefix = "cmdButton(";
  if (!name.starts_with(kPrefix)) return;
  Result = name[kPrefix.size()] - '0';
  try {
    ormel().settings().SaveSetting("WelcomeBox", Checked(kDontShow) ? "1" : "0");
  } catch (const std::exception& e) {
    Inform(ormel(), "Settings", e.what(), Icon::kWarning);
  }
  Hide();
}

std::string ExamplePath(const Ormel& ormel, Welcome::Button example) {
  for (const Example& entry : kExamples) {
    if (entry.button != example) continue;
    const std::string path = JoinPath(ormel.processes().ProgramFolder(), entry.file);
    return FileExists(path) ? path : std::string();
  }
  return {};
}

void ShowWelcome(Ormel& ormel) {
  Welcome form(ormel);
  form.Result = Welcome::kStart;
  ormel.ui().ShowForm(form);
  if (form.Result == Welcome::kTutorial) ormel.ui().ShowHelp(kTutorialTopic);
  for (const Example& entry : kExamples) {
    if (form.Result != entry.button) continue;
    const std::string text = std::string(entry.description) + "\nLoad the example file?";
    if (AskYesNo(ormel, kProgramTitle, text, Icon::kQuestion))
      OpenExample(ormel, ExamplePath(ormel, entry.button));
  }
}

}  // namespace ormel
