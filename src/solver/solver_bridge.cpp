#include "solver/solver_bridge.h"

#include "solver/driver.h"

namespace ormel {

void SolverBridge::ModelRunVadox(const SolveRequest& request) {
  ormel::ModelRunVadox(ormel_, request);
}

void SolverBridge::ModelRunWHPAs() {
  if (whpas_) whpas_(ormel_);
}

void SolverBridge::RunContour() {
  ormel::RunContour(ormel_);
}

}  // namespace ormel
