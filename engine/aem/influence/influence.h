// What unknowns give to the field at control points, and the equations made of it: held whole for small
// systems, through the hierarchy for large ones.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "aem/system/equations.h"

namespace aem::detail {

/// Told the part done of the present work; false ends it.
using GoOn = std::function<bool(double)>;

/// What Influences::Solve returns when it was cancelled.
inline constexpr double kCancelled = 3.0;

class Influences {
 public:
  virtual ~Influences() = default;

  /// False: cancelled.
  virtual bool Assemble(const GoOn& go_on) = 0;
  /// Field and strength at every control point from unknowns.
  void Values(const std::vector<double>& x, std::vector<double>* field, std::vector<double>* strength) const;
  /// Solves the moments of a * field + b * strength = r for x, which is where an iteration starts.  Returns
  /// the residual relative to the largest sum of terms; 1e-6 or more: x is as before.
  /// `tolerance` is for the residual of an iterative solution.
  virtual double Solve(const std::vector<Linearised>& linear, double tolerance, const GoOn& go_on,
                       std::vector<double>* x) = 0;
  /// Steps of the last solution; 0: by factorisation.
  virtual int Steps() const { return 0; }

 protected:
  explicit Influences(const System& system) : s_(system) {}
  /// Field at every control point from unknowns, without what is given.
  virtual void Field(const std::vector<double>& x, std::vector<double>* field) const = 0;
  /// Given field and local rows, threaded; false: cancelled.
  bool AssembleGiven(const GoOn& go_on);

  const System& s_;
  std::vector<double> given_;
  std::vector<LocalRow> local_;
};

std::unique_ptr<Influences> MakeDense(const System& system);
std::unique_ptr<Influences> MakeHierarchical(const System& system);

}  // namespace aem::detail
