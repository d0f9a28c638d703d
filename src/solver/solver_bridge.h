// The solver port of a program, for its composition.
#pragma once

#include <functional>

#include "core/solver_port.h"

namespace ormel {

struct Ormel;

class SolverBridge : public Solver {
 public:
  /// `whpas`: runs the wellhead protection areas, which stand above this folder.
  SolverBridge(Ormel& ormel, std::function<void(Ormel&)> whpas) : ormel_(ormel), whpas_(std::move(whpas)) {}

  void ModelRunVadox(const SolveRequest& request) override;
  void ModelRunWHPAs() override;
  void RunContour() override;

 private:
  Ormel& ormel_;
  std::function<void(Ormel&)> whpas_;
};

}  // namespace ormel
