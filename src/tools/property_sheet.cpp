#include "tools/property_sheet.h"

#include <algorithm>
#include <memory>
#include <set>

#include "core/command.h"
#include "core/ormel.h"
#include "document/kinds.h"
#include "model/edit.h"
#include "model/selection.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// More elements than these are not read one by one at each click.
constexpr std::size_t kMost = 500;

const ControlSpec* SpecOf(const Form& form, std::string_view control) {
  for (const ControlSpec& spec : form.Controls())
    if (EqualNoCase(spec.name, control)) return &spec;
  return nullptr;
}

/// "Auto(*)": the controls of its numbers.
std::vector<std::string> Numbered(const Form& form, std::string_view control) {
  std::vector<std::string> names;
  const std::size_t star = control.find('*');
  if (star == std::string_view::npos) return names;
  for (int number = 0;; ++number) {
    std::string name(control);
    name.replace(star, 1, std::to_string(number));
    if (SpecOf(form, name) == nullptr) return names;
    names.push_back(std::move(name));
  }
}

/// The controls of which one is chosen; none where a property is no choice.
std::vector<std::string> ChoicesOf(const Form& form, const Property& property) {
  if (!property.off.empty()) return {std::string(property.control), std::string(property.off)};
  return Numbered(form, property.control);
}

std::string CaptionOf(const Form& form, std::string_view control) {
  std::string text = form.State(control).caption;
  std::erase(text, '&');
  if (!text.empty() && text.back() == ':') text.pop_back();
  return text;
}

std::string TextOf(const Form& form, const SheetRow& row) {
  for (const std::string& control : ChoicesOf(form, row.property))
    if (form.Checked(control)) return CaptionOf(form, control);
  if (row.kind == ControlKind::kCombo) return {};
  if (row.kind == ControlKind::kCheck) return form.Checked(row.property.control) ? "yes" : "no";
  return form.Text(row.property.control);
}

bool Offered(const Form& form, std::string_view control) {
  const ControlState& state = form.State(control);
  return state.enabled && state.visible;
}

/// A field behind a switch can be typed: that turns its switch on.
bool CanBeSet(const Form& form, const Property& property) {
  const std::vector<std::string> choices = ChoicesOf(form, property);
  if (std::any_of(choices.begin(), choices.end(),
                  [&](const std::string& control) { return Offered(form, control); }))
    return true;
  if (!choices.empty()) return false;
  return Offered(form, property.control) || (!property.with.empty() && Offered(form, property.with));
}

}  // namespace

void PropertySheet::AddRows(const OkCancelForm& form, const KindRow& kind) {
  std::set<std::string_view> listed;
  for (const Property& property : kind.properties) listed.insert(property.control);
  const auto add = [&](const Property& property) {
    const std::vector<std::string> choices = ChoicesOf(form, property);
    SheetRow row{.property = property, .caption = {}, .unit = {}, .text = {}};
    if (!choices.empty()) {
      row.kind = ControlKind::kCombo;
      for (const std::string& control : choices) row.choices.push_back(CaptionOf(form, control));
      row.caption = SpecOf(form, choices.front())->group;
    } else if (const ControlSpec* spec = SpecOf(form, property.control)) {
      row.kind = spec->kind == ControlKind::kOption ? ControlKind::kCheck : spec->kind;
      row.caption = CaptionOf(form, property.control);
      if (row.caption.empty() && !property.with.empty()) row.caption = CaptionOf(form, property.with);
      row.unit = form.State(property.control).unit;
    } else {
      return;
    }
    if (row.caption.empty()) row.caption = property.name;
    row.text = TextOf(form, row);
    row.enabled = CanBeSet(form, property);
    rows_.push_back(std::move(row));
  };
  for (const Property& property : kind.properties) {
    // A switch that only comes with its fields gets a row before the first of them.
    if (!property.with.empty() && listed.insert(property.with).second) add({property.with, property.with});
    add(property);
  }
}

void PropertySheet::Merge(const OkCancelForm& form) {
  for (SheetRow& row : rows_) {
    row.mixed = row.mixed || TextOf(form, row) != row.text;
    row.enabled = row.enabled && CanBeSet(form, row.property);
  }
}

/// What is each element's own cannot be the same for several.
void PropertySheet::SettleForSeveral(const KindRow& kind) {
  const bool unique = FindKind(kind.element)->unique_label;
  for (SheetRow& row : rows_) {
    if (row.mixed) row.text.clear();
    const bool place = row.property.name == "X" || row.property.name == "Y";
    if (place || (unique && row.property.name == kind.label)) row.enabled = false;
  }
}

void PropertySheet::Read() {
  rows_.clear();
  ids_.clear();
  title_ = "Select an element on the map or in the list.";
  if (!ormel_.project.ProjectOpen) title_ = "No project is open.";
  const std::vector<ElementId> ids = ormel_.project.ProjectOpen ? SelectedElements(ormel_) : ids_;
  if (ids.empty()) return;
  const Element element = ids.front().element;
  const ElementKind* kind = FindKind(element);
  const KindRow* row = FindKindRow(element);
  if (std::any_of(ids.begin(), ids.end(), [&](const ElementId& id) { return id.element != element; })) {
    title_ =
        std::to_string(ids.size()) + " elements of several kinds: only those of one kind are set together.";
    return;
  }
  if (ids.size() > kMost) {
    title_ = std::to_string(ids.size()) + " elements: more than " + std::to_string(kMost) +
             " are not set at once.";
    return;
  }
  for (const ElementId& id : ids) {
    const auto edit = row == nullptr ? nullptr : EditOf(ormel_, id);
    if (edit == nullptr) {
      rows_.clear();
      ids_.clear();
      title_ = IsImageWell(ormel_, id) ? "An image well follows its source."
                                       : "Its properties are set in its dialog (Alt+Return).";
      return;
    }
    if (ids_.empty())
      AddRows(edit->form(), *row);
    else
      Merge(edit->form());
    ids_.push_back(id);
  }
  const bool one = ids_.size() == 1;
  title_ = one ? std::string(kind->name) : std::to_string(ids_.size()) + " " + std::string(kind->plural);
  if (!one) SettleForSeveral(*row);
}

bool PropertySheet::Set(std::size_t row, const std::string& text) {
  if (row >= rows_.size() || !rows_[row].enabled) return false;
  const SheetRow& changed = rows_[row];
  if (!changed.mixed && text == changed.text) return true;
  const std::vector<ElementId> ids = ids_;
  const auto change = [&](Form& form) {
    std::vector<ControlSetting> settings = SettingsOf(changed.property, text);
    if (const std::vector<std::string> choices = ChoicesOf(form, changed.property); !choices.empty()) {
      settings.clear();
      for (const std::string& control : choices)
        if (CaptionOf(form, control) == text) settings.push_back({control, "yes"});
    }
    for (const ControlSetting& setting : settings) SetControl(form, setting);
  };
  const bool done = EditElements(ormel_, ids, change);
  RunCommand(ormel_, "SelectItems", [&] { SelectItems(ormel_, ids); });
  Read();
  return done;
}

}  // namespace ormel
