// Generalised minimal residuals with a right preconditioner, restarted (Saad and Schultz, 1986).
#pragma once

#include <functional>
#include <vector>

namespace aem::detail {

struct Gmres {
  using Map = std::function<void(const std::vector<double>& from, std::vector<double>* to)>;

  Map matrix;          ///< to = A from
  Map preconditioner;  ///< to is about the inverse of A times from
  /// Told the residual relative to that of x = 0 after each step; false ends with what there is.
  std::function<bool(double)> go_on;
  double tolerance = 1e-10;  ///< of the residual's norm, relative to that of the right side
  int restart = 60;
  int limit = 300;  ///< steps

  int steps = 0;  ///< taken

  /// Improves x; returns the relative norm of the residual, the true one of A and x.
  double Solve(const std::vector<double>& right, std::vector<double>* x);
};

}  // namespace aem::detail
