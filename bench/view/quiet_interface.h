// A user who says nothing: for measurements.
#pragma once

#include "core/user_interface.h"

namespace ormel {

class QuietInterface final : public UserInterface {
 public:
  Answer Ask(const Box&) override { return Answer::kOk; }
  std::optional<std::string> Ask(const InputBox&) override { return std::nullopt; }
  std::optional<std::string> Ask(const FileDialog&) override { return std::nullopt; }
  std::optional<Color> ChooseColor(Color) override { return std::nullopt; }
  std::optional<FontChoice> ChooseFont(const FontChoice&) override { return std::nullopt; }
  void ShowForm(Form&) override {}
  void SetPanel(Panel, std::string_view) override {}
  void SetCaption(std::string_view) override {}
  void PleaseWaitShow(std::string_view) override {}
  void PleaseWaitHide() override {}
  void Progress(double, std::string_view) override {}
  bool CancelRequested() override { return false; }
  void ViewTextFile(const std::string&) override {}
  void ShowHelp(std::string_view) override {}
  void MenusChanged() override {}
};

}  // namespace ormel
