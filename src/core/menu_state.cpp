#include "core/menu_state.h"

namespace ormel {

const MenuState::Item* MenuState::Find(std::string_view control, int index) const {
  const auto it = items_.find({std::string(control), index});
  return it == items_.end() ? nullptr : &it->second;
}

MenuState::Item& MenuState::At(std::string_view control, int index) {
  ++revision_;
  return items_[{std::string(control), index}];
}

bool MenuState::Enabled(std::string_view control, int index) const {
  const Item* item = Find(control, index);
  return item == nullptr || item->enabled;
}

bool MenuState::Checked(std::string_view control, int index) const {
  const Item* item = Find(control, index);
  return item != nullptr && item->checked;
}

void MenuState::Enable(std::string_view control, int index, bool on) {
  if (Enabled(control, index) != on) At(control, index).enabled = on;
}

void MenuState::Check(std::string_view control, int index, bool on) {
  if (Checked(control, index) != on) At(control, index).checked = on;
}

void MenuState::SetCaption(std::string_view control, int index, std::string_view caption) {
  if (Caption(control, index) != caption) At(control, index).caption = caption;
}

std::string MenuState::Caption(std::string_view control, int index) const {
  const Item* item = Find(control, index);
  return item == nullptr ? std::string() : item->caption;
}

}  // namespace ormel
