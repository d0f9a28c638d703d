// The questions before a new project is made.
#pragma once

#include "model/dialog.h"

namespace ormel {

class NewDatabaseWizard : public OkCancelForm {
 public:
  explicit NewDatabaseWizard(Ormel& ormel);

  std::string Title() const override { return "New Database Wizard"; }
  std::string_view Name() const override { return "NewDatabaseWizard"; }
  std::span<const ControlSpec> Controls() const override;

  const std::string& Description() const { return Text("tbDesc"); }
  bool ComputeMeters() const { return Checked("optCompute(1)"); }
  bool BasemapMeters() const { return Checked("optBasemap(1)"); }

 protected:
  bool Ok() override;
};

}  // namespace ormel
