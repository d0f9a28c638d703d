#include "tools/info_panels.h"

#include <string>

#include "core/command.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"

namespace ormel {
namespace {

template <class Panel>
void ShowPanel(Ormel& ormel, Pid pid) {
  Panel panel(ormel);
  if (ormel.solution.ValidSolution)
    panel.init(pid);
  else
    panel.NoSolutionInit(pid);
  if (!panel.Crash) ormel.ui().ShowForm(panel);
}

}  // namespace

void InfoPanel::Pressed(std::string_view name) {
  if (name == "Close") Hide();
}

void InfoPanel::PutValue(std::string_view name, const std::string& text, const std::string& unit) {
  Put(name, unit.empty() ? text : text + " " + unit);
}

void InfoPanel::ShowResults(bool on) {
  for (const ControlSpec& control : Controls())
    if (control.tab == "Results") Show(control.name, on);
}

void ShowInfoPanel(Ormel& ormel, Element element, Pid pid) {
  const Named named(ormel, "ShowInfoPanel");
  if (element == Element::kLinesink) ShowPanel<LSInfo>(ormel, pid);
  if (element == Element::kInhomogeneity) ShowPanel<INInfo>(ormel, pid);
}

namespace {

std::string WithNotice(const Ormel& ormel, const char* title) {
  const std::string notice = OlderModelNotice(ormel);
  return notice.empty() ? title : std::string(title) + " - " + notice;
}

}  // namespace

std::string LSInfo::Title() const {
  return WithNotice(ormel(), "Linesink Information");
}

std::string INInfo::Title() const {
  return WithNotice(ormel(), "Inhomogeneity Information");
}

}  // namespace ormel
