// "Saved Windows": picks one of the named windows of the project.
#pragma once

#include <vector>

#include "core/form.h"
#include "core/types.h"

namespace ormel {

class RestoreWindowForm final : public Form {
 public:
  explicit RestoreWindowForm(Ormel& ormel);
  std::string Title() const override { return "Saved Windows"; }
  std::string_view Name() const override { return "RestoreWindow"; }
  std::span<const ControlSpec> Controls() const override;

  /// The window in the fields; read when `Result` is 1.
  MapRect Window() const;

 private:
  void Changed(std::string_view name) override;
  void Pressed(std::string_view name) override;
  void Load();
  void Pick(int index);
  /// Moves through the rows.
  void Navigate(int step);
  void DeleteWindow();

  std::vector<MapRect> windows_;
};

}  // namespace ormel
