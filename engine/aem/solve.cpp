// The iteration: linearise, assemble, solve, look at what changed.
#include <algorithm>
#include <cmath>

#include "aem/equations.h"
#include "aem/influence.h"
#include "aem/system.h"

namespace aem::detail {

namespace {

constexpr double kHeadTolerance = 1e-9;  ///< change of head, relative to the range, that ends the iteration

double HeadAt(const Control& c, double field, double strength) {
  if (KindOf(c.condition) != FieldKind::kPotential) return kNotSet;
  return c.condition == Condition::kEdge || c.condition == Condition::kWallHead
             ? c.zone.Head(field + 0.5 * strength)
             : c.zone.Head(field);
}

/// Largest change of head at the control points, and the range of heads there.
struct Change {
  double largest = 0.0, low = 1e300, high = -1e300;

  void Add(const Control& c, double field, double strength, double old_field, double old_strength) {
    const double head = HeadAt(c, field, strength);
    if (head == kNotSet) return;
    largest = std::max(largest, std::abs(head - HeadAt(c, old_field, old_strength)));
    low = std::min(low, head);
    high = std::max(high, head);
  }
  double Tolerance() const { return kHeadTolerance * std::max(high - low, 1e-3); }
};

/// Where the first iteration starts: beds at their stage, edges at the head of the reference point or of the
/// domain's average.
void StartValues(const System& s, std::vector<double>* field, std::vector<double>* strength) {
  for (std::size_t q = 0; q < s.controls.size(); ++q) {
    const Control& c = s.controls[q];
    if (KindOf(c.condition) != FieldKind::kPotential) continue;
    const bool given = c.condition == Condition::kHead || c.condition == Condition::kResistance ||
                       c.condition == Condition::kScreen;
    double head = given ? c.head : s.model.aquifer.reference_head;
    if (c.condition == Condition::kEdge) {
      const int domain = s.edges[s.owners[c.piece].edge].domain;
      if (domain >= 0 && s.model.domains[domain].average_head != kNotSet)
        head = s.model.domains[domain].average_head;
    }
    if (given) {
      (*field)[q] = c.zone.Potential(head);
      continue;
    }
    head = std::max(
        {head, c.zone.base + 0.1 * c.zone.full_thickness, c.right.base + 0.1 * c.right.full_thickness});
    (*field)[q] = 0.5 * (c.zone.Potential(head) + c.right.Potential(head));
    (*strength)[q] = c.zone.Potential(head) - c.right.Potential(head);
  }
}

bool Settled(const std::vector<double>& before, const std::vector<double>& after) {
  double largest = 0.0, change = 0.0;
  for (std::size_t i = 0; i < before.size(); ++i) {
    largest = std::max(largest, std::abs(after[i]));
    change = std::max(change, std::abs(after[i] - before[i]));
  }
  return change <= 1e-8 * largest;
}

}  // namespace

namespace {

/// Unknowns up to which factorisation is faster than the hierarchy.
constexpr std::size_t kDense = 1500;
/// Unknowns up to which the equations can be held whole: at 12,000 with 24,000 control points some 4 GiB.
constexpr double kDenseBytes = 5.0e9;

bool FitsDense(const System& s) {
  return 8.0 * double(s.x.size()) * (double(s.controls.size()) + 2.0 * double(s.x.size())) <= kDenseBytes;
}

/// One linear solve; where the hierarchical one does not converge, the equations are held whole if they fit.
class LinearSolver {
 public:
  explicit LinearSolver(const System& s) : s_(s), hierarchical_(s.x.size() > kDense) { Make(); }

  bool Assemble(const GoOn& go_on) { return influences_->Assemble(go_on); }
  void Values(const std::vector<double>& x, std::vector<double>* field, std::vector<double>* strength) const {
    influences_->Values(x, field, strength);
  }
  double Solve(const std::vector<Linearised>& linear, const GoOn& go_on, std::vector<double>* x) {
    const double residual = influences_->Solve(linear, go_on, x);
    if (residual < 1e-6 || residual == kCancelled || !hierarchical_ || !FitsDense(s_)) return residual;
    hierarchical_ = false;
    Make();
    if (!Assemble(go_on)) return kCancelled;
    return influences_->Solve(linear, go_on, x);
  }

 private:
  void Make() { influences_ = hierarchical_ ? MakeHierarchical(s_) : MakeDense(s_); }

  const System& s_;
  bool hierarchical_;
  std::unique_ptr<Influences> influences_;
};

}  // namespace

IterationReport System::Iterate(int asked, const ProgressCallback& progress) {
  IterationReport report;
  if (refused) return report;
  asked = std::max(1, asked);
  bool depends = false;
  for (const Control& c : controls) depends = depends || DependsOnHead(*this, c);
  const auto tell = [&](double fraction, const char* what) {
    const bool go_on = !progress || progress({report.iterations + 1, asked, fraction, report.change, what});
    report.cancelled = !go_on;
    return go_on;
  };
  LinearSolver field(*this);
  if (!field.Assemble([&](double part) { return tell(0.5 * part, "assembling"); })) return report;
  std::vector<double> values, strengths, new_values, new_strengths;
  field.Values(x, &values, &strengths);
  if (iterations_done == 0) StartValues(*this, &values, &strengths);
  const int limit = depends ? asked + options.extra_iterations : 1;
  while (report.iterations < limit && !report.converged) {
    Route();
    std::vector<Linearised> linear;
    linear.reserve(controls.size());
    for (std::size_t q = 0; q < controls.size(); ++q)
      linear.push_back(Linearise(*this, controls[q], values[q], strengths[q]));
    if (!tell(0.5, "solving")) return report;
    std::vector<double> next = x;
    report.residual = field.Solve(
        linear, [&](double part) { return tell(0.5 + 0.5 * part, "solving"); }, &next);
    if (report.residual == kCancelled) return report;
    if (!(report.residual < 1e-6)) {
      Add(Severity::kFatal, {},
          "The system of equations has no single solution: look for elements that state two conditions at "
          "one "
          "place, or for a region without any given head.");
      report.findings.push_back(findings.back());
      return report;
    }
    field.Values(next, &new_values, &new_strengths);
    Change change;
    for (std::size_t q = 0; q < controls.size(); ++q)
      change.Add(controls[q], new_values[q], new_strengths[q], values[q], strengths[q]);
    x = next;
    SetCoefficients();
    values.swap(new_values);
    strengths.swap(new_strengths);
    const std::vector<double> carried_before = carried;
    const int switched = SwitchStates(values, report.iterations > asked + options.extra_iterations / 2);
    ++report.iterations;
    ++iterations_done;
    report.change = change.largest;
    const bool still =
        change.largest <= change.Tolerance() && switched == 0 && Settled(carried_before, carried);
    report.converged = !depends || (still && report.iterations >= std::min(asked, 2));
    if (!tell(1.0, "iteration done")) break;
  }
  converged = report.converged;
  if (!report.converged && !report.cancelled) {
    Add(Severity::kWarning, {},
        "The iteration has not converged: heads still change.  Continue the solution with more iterations.");
    report.findings.push_back(findings.back());
  }
  return report;
}

}  // namespace aem::detail
