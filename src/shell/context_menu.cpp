#include "shell/context_menu.h"

#include <algorithm>
#include <array>

#include "core/command.h"
#include "core/ormel.h"
#include "model/selection.h"
#include "shell/menus.h"

namespace ormel {
namespace {

struct Row {
  const char* control;
  int index;
  const char* verb;  ///< before the caption
  bool of_selection;
};
constexpr std::array kRows{
    Row{"EDIT_CMDS", 1, "", true},     Row{"EDIT_CMDS", 2, "", true},     Row{"EDIT_CMDS", 3, "", true},
    Row{"EDIT_CMDS", 4, "", true},     Row{"COPY", 0, "", true},          Row{"PASTE", 0, "", false},
    Row{"SELECTALL", 0, "", false},    Row{"ELEM_NEW", 1, "New ", false}, Row{"ELEM_NEW", 2, "New ", false},
    Row{"ELEM_NEW", 3, "New ", false}, Row{"ELEM_NEW", 4, "New ", false}, Row{"MODEL_CMDS", 4, "", false},
    Row{"MODEL_CMDS", 5, "", false},   Row{"MODEL_CMDS", 6, "", false},   Row{"ZOOM_CMDS", 3, "", false},
    Row{"ZOOM_CMDS", 4, "", false}};

}  // namespace

bool OffersContextMenu(Ormel& ormel, MapPoint at) {
  const MouseState& mouse = ormel.mouse;
  if (!ormel.project.ProjectOpen || mouse.MouseDisabled || mouse.MouseMode != MouseMode::kSelect ||
      mouse.MovePending)
    return false;
  bool information = false;
  RunCommand(ormel, "OffersContextMenu", [&] {
    const Element element = ElementAt(ormel, at).element;
    information = element == Element::kLinesink || element == Element::kInhomogeneity;
  });
  return !information;
}

std::vector<ContextItem> ContextMenu(Ormel& ormel, MapPoint at) {
  RunCommand(ormel, "ContextMenu", [&] {
    const ElementId id = ElementAt(ormel, at);
    const std::vector<ElementId> selected = SelectedElements(ormel);
    if (id.element != Element::kNone && std::find(selected.begin(), selected.end(), id) == selected.end())
      SelectItems(ormel, {id});
  });
  const bool any = !SelectedElements(ormel).empty();
  std::vector<ContextItem> items;
  std::string_view group;
  for (const Row& row : kRows) {
    const MenuItem* item = FindMenuItem(row.control, row.index);
    if (item == nullptr || (row.of_selection && !any) || !ItemEnabled(ormel, *item)) continue;
    const std::string_view top = row.of_selection ? "selection" : item->parent;
    items.push_back({item, row.verb + ItemCaption(ormel, *item), !items.empty() && top != group});
    group = top;
  }
  return items;
}

}  // namespace ormel
