// Margins of the printed map and the box around it.
#pragma once

#include "model/dialog.h"

namespace ormel {

class PrintSetup : public OkCancelForm {
 public:
  /// Shows what the project holds.
  explicit PrintSetup(Ormel& ormel, bool landscape);

  std::string Title() const override { return "Print Setup"; }
  std::string_view Name() const override { return "PrintSetup"; }
  std::span<const ControlSpec> Controls() const override;
  bool Landscape() const { return Checked("optLandscape"); }

 protected:
  /// Keeps the margins in the window state and in the project.
  bool Ok() override;

 private:
  void Store();
};

}  // namespace ormel
