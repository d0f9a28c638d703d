// The conditions at control points and the linear system that their moments make.
#pragma once

#include <vector>

#include "aem/system.h"

namespace aem::detail {

/// a * field + b * strength = r at a control point, from the present iterate.
struct Linearised {
  double a = 1.0, b = 0.0, r = 0.0;
};

/// Field: potential (mean of both sides on a doublet).  Strength: density or jump at the point.
Linearised Linearise(const System& system, const Control& control, double field, double strength);

/// Whether the condition changes with the head, so that one solution is not enough.
bool DependsOnHead(const System& system, const Control& control);

/// A strength at control point q as a sum over unknowns; also the test functions of q.
struct LocalRow {
  int count = 0;
  std::array<int, 2 * kMaxBasis> unknown{};
  std::array<double, 2 * kMaxBasis> value{};
};
LocalRow LocalValues(const System& system, const Control& control);

/// What every unknown gives at a control point: row of `unknowns` potentials.
void InfluenceRow(const System& system, const Control& control, double* row);

}  // namespace aem::detail
