// The program's name and version; also the splash box at start.
#pragma once

#include "core/form.h"

namespace ormel {

class About : public Form {
 public:
  explicit About(Ormel& ormel, bool splash = false);

  std::string Title() const override { return "About Ormel"; }
  std::string_view Name() const override { return "About"; }
  std::span<const ControlSpec> Controls() const override;

  /// "Ormel Version 1.0.0"
  const std::string& VersionID() const { return State("VersionID").caption; }
  /// The box closes itself after a short while.
  bool splash() const { return splash_; }

 protected:
  void Pressed(std::string_view name) override;

 private:
  bool splash_;
};

/// `Help_CMDS` "&About Ormel...".
void ShowAbout(Ormel& ormel);

}  // namespace ormel
