// The box at start: tutorial, examples, or straight to work.
#pragma once

#include "core/form.h"

namespace ormel {

class Welcome : public Form {
 public:
  enum Button { kTutorial = 0, kFirstExample = 1, kSecondExample = 2, kStart = 3 };

  explicit Welcome(Ormel& ormel);

  std::string Title() const override { return "Welcome to Ormel"; }
  std::string_view Name() const override { return "Welcome"; }
  std::span<const ControlSpec> Controls() const override;

 protected:
  /// Each button stores the check box, hides the box and leaves its index in `Result`.
  void Pressed(std::string_view name) override;
};

/// Shows the box and does what its button says.
void ShowWelcome(Ormel& ormel);

/// Full path of an example project, empty when it is not installed.
std::string ExamplePath(const Ormel& ormel, Welcome::Button example);

}  // namespace ormel
