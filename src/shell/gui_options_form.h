// The dialog "Interface Options".
#pragma once

#include "core/user_interface.h"
#include "model/dialog.h"

namespace ormel {

class GUIOptions : public OkCancelForm {
 public:
  /// Reads the interface options and the project's default label font.
  explicit GUIOptions(Ormel& ormel);

  std::string Title() const override { return "Interface Options"; }
  std::string_view Name() const override { return "GUIOptions"; }
  std::span<const ControlSpec> Controls() const override;

 protected:
  bool Ok() override;
  void OtherPressed(std::string_view name) override;
  void Changed(std::string_view name) override;

 private:
  void ShowFontName();
  void StoreFont();
  FontChoice font_;
  bool redraw_ = false;
};

/// `TOOLS_CMDS` "GUI Options".
void ShowGUIOptions(Ormel& ormel);

}  // namespace ormel
