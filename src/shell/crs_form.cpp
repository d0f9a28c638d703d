#include "shell/crs_form.h"

#include <algorithm>
#include <array>

#include "core/ormel.h"

namespace ormel {
namespace {

constexpr std::size_t kShown = 500;

constexpr std::array kControls{
    ControlSpec{.name = "Search",
                .kind = ControlKind::kText,
                .caption = "Search",
                .tip = "Words of the name, the country or region, or the code",
                .longest = 100},
    ControlSpec{.name = "Systems", .kind = ControlKind::kList, .caption = "Systems"},
    ControlSpec{.name = "Count", .kind = ControlKind::kLabel},
    kOkButton,
    kCancelButton,
};

}  // namespace

CrsForm::CrsForm(Ormel& controller) : OkCancelForm(controller) {
  InitControls();
  Fill();
}

std::span<const ControlSpec> CrsForm::Controls() const {
  return kControls;
}

void CrsForm::Fill() {
  found_ = SearchCrs(Text("Search"), kShown, true);
  ControlState& list = Mutable("Systems");
  list.items.clear();
  list.selected.clear();
  for (const CrsEntry& entry : found_)
    list.items.push_back(entry.code + "  " + entry.name + "  (" + entry.area + ")");
  if (found_.size() == 1) list.selected = {0};
  Caption("Count", list.items.empty() ? "Nothing fits" : std::to_string(list.items.size()) + " shown");
}

void CrsForm::Changed(std::string_view name) {
  if (name == "Search") Fill();
}

std::string CrsForm::Code() const {
  const std::vector<int>& selected = State("Systems").selected;
  return selected.empty() ? "" : found_[static_cast<std::size_t>(selected.front())].code;
}

bool CrsForm::Ok() {
  return !Code().empty() || Refuse("Systems", "Invalid Entry", "Please select a system of the list.");
}

}  // namespace ormel
