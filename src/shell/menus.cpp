#include "shell/menus.h"

#include <algorithm>
#include <array>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/user_interface.h"
#include "shell/recent_projects.h"

namespace ormel {
namespace {

constexpr std::string_view kNotAvailable = "not available in this version";

const MenuItem* ParentOf(const MenuItem& item) {
  return item.parent.empty() ? nullptr : FindMenuItem(item.parent, item.parent_index);
}

/// The command stands, in this program.
bool IsAvailable(const Ormel& ormel, MenuCommand run, unsigned flags) {
  return run != nullptr && ((flags & kNeedsWindow) == 0 || ormel.ports.window != nullptr);
}

bool StateAllows(const Ormel& ormel, unsigned flags) {
  if ((flags & kNeedsProject) != 0 && !ormel.project.ProjectOpen) return false;
  return (flags & kNeedsSolution) == 0 || ormel.solution.ValidSolution;
}

/// Why an item that is switched off in an open project rests; index -1 stands for every item.
struct RestReason {
  std::string_view control;
  int index;
  std::string_view reason;
};
constexpr std::string_view kSolveFirst = "solve the model first", kNothing = "the project has none";
constexpr std::array kRestReasons{RestReason{"UNDO", -1, "nothing has been changed"},
                                  RestReason{"REDO", -1, "nothing has been undone"},
                                  RestReason{"EDIT_CMDS", -1, "select an element on the map first"},
                                  RestReason{"ZOOM_CMDS", -1, "the map is as close as it gets"},
                                  RestReason{"layermenu", kLayerContours, kSolveFirst},
                                  RestReason{"layermenu", kLayerPathlines, kSolveFirst},
                                  RestReason{"layermenu", -1, kNothing},
                                  RestReason{"DeleteWHPA", -1, kNothing},
                                  RestReason{"WHPA", -1, kNothing},
                                  RestReason{"MODEL_CMDS", -1, kSolveFirst},
                                  RestReason{"RUN_FILES", -1, kSolveFirst},
                                  RestReason{"MODELRUNFILES", -1, kSolveFirst},
                                  RestReason{"RESULTS_TABLE", -1, kSolveFirst},
                                  RestReason{"CALIBRATION_STATS", -1, kSolveFirst},
                                  RestReason{"SolverIntegrityCheck", -1, kSolveFirst}};

/// Procedures may enable and disable it; a layer's item follows its switch.
bool StateOf(const Ormel& ormel, std::string_view control, int index) {
  const auto layer = LayerOf(control, index);
  return ormel.menus.Enabled(control, index) && (!layer || ormel.layers.Offered(*layer));
}

}  // namespace

const MenuItem* FindMenuItem(std::string_view control, int index) {
  for (const MenuItem& item : MenuItems())
    if (item.control == control && item.index == index) return &item;
  return nullptr;
}

const ToolbarButton* FindToolbarButton(std::string_view key) {
  for (const ToolbarButton& button : ToolbarButtons())
    if (button.key == key) return &button;
  return nullptr;
}

bool HasSubmenu(const MenuItem& item) {
  const auto items = MenuItems();
  return std::any_of(items.begin(), items.end(), [&item](const MenuItem& other) {
    return other.parent == item.control && other.parent_index == item.index;
  });
}

std::string ItemCaption(const Ormel& ormel, const MenuItem& item) {
  if (item.control != "RECENT") {
    std::string caption = ormel.menus.Caption(item.control, item.index);
    if (!caption.empty()) return caption;
    const auto layer = item.caption.empty() ? LayerOf(item.control, item.index) : std::nullopt;
    return std::string(layer ? RowOf(*layer).caption : item.caption);
  }
  const std::vector<std::string> paths = RecentProjects(ormel);
  const auto number = static_cast<std::size_t>(item.index);
  if (number >= paths.size()) return {};
  std::string caption = "&" + std::to_string(item.index + 1) + " ";
  for (const char c : paths[number]) caption += c == '&' ? std::string("&&") : std::string(1, c);
  return caption;
}

std::string_view ItemTip(const Ormel& ormel, const MenuItem& item) {
  if (HasSubmenu(item)) return {};
  if (!IsAvailable(ormel, item.run, item.flags)) return kNotAvailable;
  if (ItemEnabled(ormel, item)) return {};
  if (ormel.mouse.MenusOff && ormel.project.ProjectOpen)
    return "first place what you began, or leave it by Escape";
  if (!StateAllows(ormel, item.flags & kNeedsProject)) return "open a project first";
  if (!StateAllows(ormel, item.flags)) return "solve the model first";
  for (const MenuItem* at = &item; at != nullptr; at = ParentOf(*at)) {
    if (StateOf(ormel, at->control, at->index)) continue;
    for (const RestReason& row : kRestReasons)
      if (row.control == at->control && (row.index < 0 || row.index == at->index)) return row.reason;
  }
  return "not at present";
}

bool ItemEnabled(const Ormel& ormel, const MenuItem& item) {
  if (!HasSubmenu(item) && !IsAvailable(ormel, item.run, item.flags)) return false;
  if (!StateAllows(ormel, item.flags) || !StateOf(ormel, item.control, item.index)) return false;
  const MenuItem* parent = ParentOf(item);
  return parent == nullptr || ItemEnabled(ormel, *parent);
}

bool ItemChecked(const Ormel& ormel, const MenuItem& item) {
  const auto layer = LayerOf(item.control, item.index);
  return layer ? ormel.layers.On(*layer) : ormel.menus.Checked(item.control, item.index);
}

bool ButtonEnabled(const Ormel& ormel, const ToolbarButton& button) {
  if (!ormel.menus.Enabled("Toolbar1") || !ormel.menus.Enabled(button.key)) return false;
  if (!button.control.empty()) {
    const MenuItem* item = FindMenuItem(button.control, button.index);
    return item != nullptr && ItemEnabled(ormel, *item);
  }
  return IsAvailable(ormel, button.run, button.flags) && StateAllows(ormel, button.flags);
}

bool Dispatch(Ormel& ormel, std::string_view control, int index) {
  const MenuItem* item = FindMenuItem(control, index);
  if (item == nullptr || item->run == nullptr || !ItemEnabled(ormel, *item)) return false;
  RunCommand(ormel, std::string(control) + "_Click", [&] { item->run(ormel, index); });
  ormel.ui().MenusChanged();
  return true;
}

bool DispatchButton(Ormel& ormel, std::string_view key) {
  const ToolbarButton* button = FindToolbarButton(key);
  if (button == nullptr || !ButtonEnabled(ormel, *button)) return false;
  if (!button->control.empty()) return Dispatch(ormel, button->control, button->index);
  RunCommand(ormel, "Toolbar1_ButtonClick", [&] { button->run(ormel, button->index); });
  ormel.ui().MenusChanged();
  return true;
}

}  // namespace ormel
