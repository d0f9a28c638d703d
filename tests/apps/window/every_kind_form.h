// A form with one control of each kind, with reactions and a check like those of the program's own forms.
#pragma once

#include <array>
#include <stdexcept>

#include "core/form.h"
#include "core/table.h"

namespace ormel::test {

class EveryKind : public Form {
 public:
  explicit EveryKind(Ormel& controller) : Form(controller) {
    InitControls();
    Put("label", "DRY");
    Put("text", "Well 7");
    PutNumber("number", 12.5);
    PutCheck("option(0)", true);
    Mutable("combo").items = {"Coarse", "Fine"};
    Mutable("list").items = {"North", "South", "East"};
    Mutable("many").items = {"A", "B", "C"};
    Mutable("swatch").color = Rgb(10, 200, 30);
    auto table = std::make_shared<Table>(
        std::vector<TableColumn>{{.name = "Label", .caption = "Label", .number = false},
                                 {.name = "Head", .caption = "Head\n[m]", .mask = "0.00"}});
    for (const auto& [label, head] : {std::pair("b", 2.0), std::pair("a", 30.125), std::pair("c", 1.0)})
      table->AddRow({label, head});
    Mutable("table").table = std::move(table);
    Offer("number", false);
    Show("late", false);
  }
  std::string Title() const override { return "Every Kind"; }
  std::string_view Name() const override { return "EveryKind"; }
  std::span<const ControlSpec> Controls() const override { return kControls; }

  int pressed = 0;
  void LetEdit() { Mutable("table").editable = true; }
  std::string failure;  ///< thrown at the next press of the button

 protected:
  void Changed(std::string_view name) override {
    if (name == "check") {
      Offer("number", Checked("check"));
      Unit("number", "m/day");
      Show("late", Checked("check"));
    }
  }
  void CellEdited(std::string_view name, std::size_t row, std::size_t column,
                  std::string_view text) override {
    Mutable(name).table->Change(row, column, Value(text));
  }
  void Pressed(std::string_view name) override {
    ++pressed;
    if (!failure.empty()) throw std::runtime_error(failure);
    if (name == "Cancel") Result = 2;
    if (name == "OK") {
      if (Number("number") < 0.0) {
        Focus("number");
        return;
      }
      Result = 1;
    }
    if (name == "OK" || name == "Cancel") Hide();
  }

 private:
  static constexpr std::array kControls{
      ControlSpec{.name = "text", .kind = ControlKind::kText, .caption = "&Label"},
      ControlSpec{.name = "swatch", .kind = ControlKind::kColor, .caption = "Colour", .tab = "First"},
      ControlSpec{.name = "button", .kind = ControlKind::kButton, .caption = "Color...", .tab = "First"},
      ControlSpec{.name = "option(0)",
                  .kind = ControlKind::kOption,
                  .caption = "Head",
                  .tab = "First",
                  .group = "Kind"},
      ControlSpec{.name = "option(1)",
                  .kind = ControlKind::kOption,
                  .caption = "Discharge",
                  .tab = "First",
                  .group = "Kind"},
      ControlSpec{.name = "check", .kind = ControlKind::kCheck, .caption = "Trace", .tab = "Second"},
      ControlSpec{.name = "number",
                  .kind = ControlKind::kNumber,
                  .caption = "Rate",
                  .unit = "ft/day",
                  .tab = "Second"},
      ControlSpec{.name = "late", .kind = ControlKind::kText, .caption = "Late", .tab = "Third"},
      ControlSpec{.name = "multiline", .kind = ControlKind::kMultiline, .caption = "Notes", .tab = "Second"},
      ControlSpec{.name = "combo", .kind = ControlKind::kCombo, .caption = "Grid", .tab = "Second"},
      ControlSpec{.name = "list", .kind = ControlKind::kList, .caption = "Windows", .tab = "Lists"},
      ControlSpec{.name = "many", .kind = ControlKind::kMultiList, .caption = "Wells", .tab = "Lists"},
      ControlSpec{.name = "table", .kind = ControlKind::kTable, .caption = "Results", .tab = "Table"},
      ControlSpec{.name = "font", .kind = ControlKind::kFont, .caption = "Font", .tab = "Lists"},
      ControlSpec{.name = "label", .kind = ControlKind::kLabel, .caption = "State"},
      ControlSpec{.name = "note", .kind = ControlKind::kNote, .caption = "A note that explains."},
      ControlSpec{.name = "OK", .kind = ControlKind::kButton, .caption = "OK", .role = ButtonRole::kAccept},
      ControlSpec{
          .name = "Cancel", .kind = ControlKind::kButton, .caption = "Cancel", .role = ButtonRole::kReject}};
};

}  // namespace ormel::test
