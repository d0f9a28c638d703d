// The dialogs of the instant inspector.
#pragma once

#include "model/dialog.h"
#include "solver/inspection_check.h"

namespace ormel {

/// Where to look, how wide the differences are, and which way to trace.
class Inspector final : public OkCancelForm {
 public:
  explicit Inspector(Ormel& ormel);
  std::string Title() const override { return "Instant Inspector Settings"; }
  std::string_view Name() const override { return "Inspector"; }
  std::span<const ControlSpec> Controls() const override;

  double Elevation() const { return Number("tbElevation"); }
  double StepSize() const { return Number("dataStepSize"); }

 protected:
  bool Ok() override;
  void Changed(std::string_view name) override;
};

/// Values of the solver beside those from central differences.
class SolverIntegrity final : public Form {
 public:
  SolverIntegrity(Ormel& ormel, const IntegrityValues& values);
  std::string Title() const override { return "Solver Integrity Check"; }
  std::string_view Name() const override { return "SolverIntegrity"; }
  std::span<const ControlSpec> Controls() const override;

 protected:
  void Pressed(std::string_view name) override;
};

}  // namespace ormel
