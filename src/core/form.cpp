#include "core/form.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "core/ask_number.h"
#include "core/chart.h"
#include "core/ormel.h"
#include "core/table.h"
#include "core/user_interface.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {

namespace {

bool IsTyped(const ControlSpec& spec, const ControlState& state) {
  return state.visible && state.enabled && !state.text.empty() &&
         (spec.kind == ControlKind::kNumber || spec.kind == ControlKind::kText ||
          spec.kind == ControlKind::kMultiline);
}

/// "&Left:" as a sentence names it.
std::string Plain(std::string_view caption) {
  std::string name(caption);
  std::erase(name, '&');
  while (!name.empty() && (name.back() == ':' || name.back() == ' ')) name.pop_back();
  return name;
}

}  // namespace

std::string ReadsAs(const ControlSpec& spec, const ControlState& state) {
  if (spec.kind != ControlKind::kNumber || state.text.empty() || !state.enabled) return {};
  const double value = Val(state.text);
  if (!std::isfinite(value)) return "too large";
  return IsNumeric(state.text) ? std::string() : "reads as " + NumberText(value);
}

std::string Form::FieldName(const ControlSpec& spec) const {
  if (std::string name = Plain(State(spec.name).caption); !name.empty()) return name;
  if (!spec.group.empty()) return std::string(spec.group);
  const ControlSpec* before = nullptr;  // a check box whose field stands beside it
  for (const ControlSpec& other : Controls()) {
    if (other.name == spec.name) break;
    before = &other;
  }
  return before == nullptr ? std::string(spec.name) : Plain(State(before->name).caption);
}

bool Form::NumberHolds(const ControlSpec& spec) {
  const ControlState& state = State(spec.name);
  const double value = Val(state.text);
  const std::string field = FieldName(spec);
  const NumberRange& range = spec.range;
  if (!IsNumeric(state.text) && !range.strict && std::isfinite(value) &&
      !AcceptAsNumber(ormel_, field, state.text)) {
    Focus(spec.name);
    return false;
  }
  if (value <= range.largest && (range.own_low || value >= range.lowest)) return true;
  std::string unit = state.unit.empty() || state.unit.front() == '[' ? std::string() : " " + state.unit;
  return Refuse(spec.name, "Out of Range",
                field + " must be between " + NumberText(range.lowest) + " and " + NumberText(range.largest) +
                    unit + ".\nPlease enter a new value.");
}

bool Form::TextHolds(const ControlSpec& spec) {
  const std::size_t length = TextLength(Text(spec.name));
  if (spec.longest == 0 || length <= spec.longest) return true;
  return Refuse(spec.name, "Too Long",
                FieldName(spec) + " has " + std::to_string(length) + " characters; no more than " +
                    std::to_string(spec.longest) + " can be stored.\nPlease enter a shorter text.");
}

bool Form::FieldsHold() {
  for (const ControlSpec& spec : Controls()) {
    if (!IsTyped(spec, State(spec.name))) continue;
    if (!(spec.kind == ControlKind::kNumber ? NumberHolds(spec) : TextHolds(spec))) return false;
  }
  return true;
}

void Form::InitControls() {
  for (const ControlSpec& spec : Controls()) {
    ControlState& state = states_[std::string(spec.name)];
    state.caption = spec.caption;
    state.unit = spec.unit;
  }
}

bool Form::Has(std::string_view name) const {
  return states_.find(name) != states_.end();
}

const ControlState& Form::State(std::string_view name) const {
  const auto it = states_.find(name);
  if (it == states_.end())
    throw std::logic_error(std::string(Name()) + " has no control " + std::string(name));
  return it->second;
}

ControlState& Form::Mutable(std::string_view name) {
  ++revision_;
  return const_cast<ControlState&>(State(name));
}

const ControlSpec& Form::Spec(std::string_view name) const {
  for (const ControlSpec& spec : Controls())
    if (spec.name == name) return spec;
  throw std::logic_error(std::string(Name()) + " has no control " + std::string(name));
}

double Form::Number(std::string_view name) const {
  return Val(Text(name));
}

void Form::Put(std::string_view name, std::string_view text) {
  Mutable(name).text = text;
}

void Form::PutNumber(std::string_view name, double value) {
  Put(name, NumberText(value));
}

void Form::PutCheck(std::string_view name, bool on) {
  const ControlSpec& spec = Spec(name);
  if (spec.kind == ControlKind::kOption && on) {
    for (const ControlSpec& other : Controls())
      if (other.kind == ControlKind::kOption && other.group == spec.group)
        Mutable(other.name).checked = false;
  }
  Mutable(name).checked = on;
}

void Form::SetText(std::string_view name, std::string_view text) {
  if (Text(name) == text) return;
  Put(name, text);
  Changed(name);
}

void Form::SetChecked(std::string_view name, bool on) {
  if (Checked(name) == on) return;
  PutCheck(name, on);
  Changed(name);
}

void Form::Select(std::string_view name, std::vector<int> indices) {
  ControlState& state = Mutable(name);
  const int count = static_cast<int>(state.table ? state.table->Rows() : state.items.size());
  std::erase_if(indices, [count](int i) { return i < 0 || i >= count; });
  if (state.selected == indices) return;
  state.selected = std::move(indices);
  if (!state.table)
    state.text =
        state.selected.empty() ? std::string() : state.items[static_cast<size_t>(state.selected.front())];
  Changed(name);
}

void Form::Click(std::string_view name) {
  const ControlSpec& spec = Spec(name);
  if (!State(name).enabled || !State(name).visible) return;
  switch (spec.kind) {
    case ControlKind::kCheck:
      SetChecked(name, !Checked(name));
      return;
    case ControlKind::kOption:
      SetChecked(name, true);
      return;
    default:
      if (spec.role == ButtonRole::kAccept && !FieldsHold()) return;
      Pressed(name);
  }
}

void Form::LeaveField(std::string_view name) {
  if (Spec(name).kind == ControlKind::kNumber && Text(name).empty()) SetText(name, "0");
}

void Form::SortTable(std::string_view name, std::size_t column, bool descending) {
  ControlState& state = Mutable(name);
  if (!state.table) return;
  state.selected.clear();
  state.table->Sort(column, descending);
}

void Form::CopyTable(std::string_view name) {
  const ControlState& state = State(name);
  if (state.table) ormel_.ui().CopyText(state.table->Tabbed(state.selected));
}

void Form::PointAt(std::string_view name, const ChartPick* pick) {
  const std::string text = pick != nullptr ? PointText(name, *pick) : std::string();
  if (Text(name) != text) Put(name, text);
}

void Form::PickPoint(std::string_view name, const ChartPick& pick) {
  const ControlState& state = State(name);
  if (!state.chart || !state.enabled || pick.series >= state.chart->series.size()) return;
  if (pick.point < state.chart->series[pick.series].points.size()) PointPicked(name, pick);
}

void Form::EditCell(std::string_view name, std::size_t row, std::size_t column, std::string_view text) {
  const ControlState& state = Mutable(name);
  if (!state.table || !state.editable || !state.enabled) return;
  if (row >= state.table->Rows() || column >= state.table->columns().size()) return;
  if (state.table->At(row, column).AsText() != text) CellEdited(name, row, column, text);
}

void Form::FillEmptyNumbers() {
  for (const ControlSpec& spec : Controls())
    if (spec.kind == ControlKind::kNumber && Text(spec.name).empty()) Put(spec.name, "0");
}

bool Form::Refuse(std::string_view name, std::string_view title, std::string_view text) {
  ormel_.ui().Ask(Box{std::string(title), std::string(text), Buttons::kOk, Icon::kWarning});
  if (!name.empty()) Focus(name);
  return false;
}

}  // namespace ormel
