// A user who does anything, the same for the same seed: answers at random, fills forms at random.
#pragma once

#include <algorithm>
#include <random>
#include <string>

#include "core/form.h"
#include "core/user_interface.h"

namespace ormel::test {

class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}
  /// 0 to count - 1.
  int Below(int count) { return static_cast<int>(engine_() % static_cast<unsigned>(count)); }
  bool Chance(int percent) { return Below(100) < percent; }
  template <class Rows>
  auto& Of(Rows& rows) {
    return rows[static_cast<std::size_t>(Below(static_cast<int>(std::size(rows))))];
  }

 private:
  std::mt19937 engine_;
};

class RandomUser : public UserInterface {
 public:
  explicit RandomUser(unsigned seed) : dice(seed) {}

  Answer Ask(const Box& box) override {
    if (box.title.find("Unhandled") != std::string::npos) failures += box.text + "\n";
    if (box.buttons == Buttons::kOk) return Answer::kOk;
    const bool agree = dice.Chance(80);
    if (box.buttons == Buttons::kYesNo) return agree ? Answer::kYes : Answer::kNo;
    return agree ? Answer::kOk : Answer::kCancel;
  }
  std::optional<std::string> Ask(const InputBox&) override {
    if (dice.Chance(10)) return std::nullopt;
    return std::to_string(5 + dice.Below(400));
  }
  std::optional<std::string> Ask(const FileDialog&) override { return std::nullopt; }
  std::optional<Color> ChooseColor(Color) override { return QBColor(dice.Below(16)); }
  std::optional<FontChoice> ChooseFont(const FontChoice&) override {
    return FontChoice{"Arial", 6 + dice.Below(20), dice.Chance(50), dice.Chance(50)};
  }

  void ShowForm(Form& form) override {
    form.MarkShown();
    for (const ControlSpec& control : form.Controls())
      if (!form.Hidden() && dice.Chance(60)) Fill(form, control);
    Press(form, dice.Chance(85) ? ButtonRole::kAccept : ButtonRole::kReject);
    Press(form, ButtonRole::kReject);
  }

  void SetPanel(Panel, std::string_view) override {}
  void SetCaption(std::string_view) override {}
  void PleaseWaitShow(std::string_view) override {}
  void PleaseWaitHide() override {}
  void Progress(double, std::string_view) override {}
  bool CancelRequested() override { return false; }
  void CopyText(std::string_view text) override { copied = text; }
  void ViewTextFile(const std::string&) override {}
  void ShowHelp(std::string_view) override {}
  void MenusChanged() override {}

  Dice dice;
  std::string failures, copied;

 private:
  void Fill(Form& form, const ControlSpec& control) {
    const ControlState& state = form.State(control.name);
    if (!state.enabled || !state.visible) return;
    switch (control.kind) {
      case ControlKind::kText:
        // Stem and folder of the run's files stay where the test can look.
        if (control.name != "BasePath" && control.name != "BaseName")
          form.SetText(control.name, "E" + std::to_string(dice.Below(100000)));
        return;
      case ControlKind::kMultiline:
        return form.SetText(control.name, "words " + std::to_string(dice.Below(1000)));
      case ControlKind::kNumber:
        return form.SetText(control.name, std::to_string(dice.Below(3000) / 10.0));
      case ControlKind::kCheck:
      case ControlKind::kOption:
        return form.SetChecked(control.name, dice.Chance(50) || control.kind == ControlKind::kOption);
      case ControlKind::kCombo:
      case ControlKind::kList:
      case ControlKind::kMultiList:
        if (!state.items.empty())
          form.Select(control.name, {dice.Below(static_cast<int>(state.items.size()))});
        return;
      case ControlKind::kColor:
        return form.Click(control.name);
      default:
        return;
    }
  }
  void Press(Form& form, ButtonRole role) {
    std::vector<std::string_view> buttons;
    for (const ControlSpec& control : form.Controls())
      if (control.role == role) buttons.push_back(control.name);
    if (!form.Hidden() && !buttons.empty()) form.Click(dice.Of(buttons));
  }
};

}  // namespace ormel::test
