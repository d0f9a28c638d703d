// The iteration: linearise, assemble, solve, look at what changed.
#include <algorithm>
#include <cmath>

#include "aem/influence/influence.h"
#include "aem/system/equations.h"
#include "aem/system/ignored.h"
#include "aem/system/system.h"

namespace aem::detail {

namespace {

constexpr double kHeadTolerance = 1e-9;  ///< change of head, relative to the range, that ends the iteration

/// Of an edge on its thicker side; where that is dry its base, since there is no head there that could
/// settle.
double HeadAt(const Control& c, double field, double strength) {
  if (!TellsHead(c.condition)) return kNotSet;
  if (c.condition != Condition::kEdge && c.condition != Condition::kWallHead)
    return std::max(c.zone.Head(field), c.zone.base);
  const bool left = c.zone.base <= c.right.base;
  const Zone& zone = left ? c.zone : c.right;
  return std::max(zone.Head(field + (left ? 0.5 : -0.5) * strength), zone.base);
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
    if (!TellsHead(c.condition)) continue;
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

/// Memory that the equations may take when they are held whole: at 12,000 unknowns with 24,000 control points
/// some 4 GiB.
constexpr double kDenseBytes = 5.0e9;

bool FitsDense(const System& s) {
  return 8.0 * double(s.x.size()) * (double(s.controls.size()) + 2.0 * double(s.x.size())) <= kDenseBytes;
}

/// One linear solve; where the hierarchical one does not converge, the equations are held whole if they fit.
class LinearSolver {
 public:
  explicit LinearSolver(const System& s) : s_(s), hierarchical_(s.x.size() > s.options.factorise) { Make(); }

  bool Assemble(const GoOn& go_on) { return influences_->Assemble(go_on); }
  void Values(const std::vector<double>& x, std::vector<double>* field, std::vector<double>* strength) const {
    influences_->Values(x, field, strength);
  }
  int Steps() const { return influences_->Steps(); }
  bool Factorised() const { return !hierarchical_; }
  double Solve(const std::vector<Linearised>& linear, double tolerance, const GoOn& go_on,
               std::vector<double>* x) {
    const double residual = influences_->Solve(linear, tolerance, go_on, x);
    if (residual < std::max(1e-6, 2.0 * tolerance) || residual == kCancelled || !hierarchical_ ||
        !FitsDense(s_))
      return residual;
    hierarchical_ = false;
    Make();
    if (!Assemble(go_on)) return kCancelled;
    return influences_->Solve(linear, tolerance, go_on, x);
  }

 private:
  void Make() { influences_ = hierarchical_ ? MakeHierarchical(s_) : MakeDense(s_); }

  const System& s_;
  bool hierarchical_;
  std::unique_ptr<Influences> influences_;
};

/// One call of Iterate: steps of linearising and solving, and rounds of raising orders before the first.
class Iteration {
  static constexpr const char* kSingular =
      "The system of equations has no single solution: look for elements that state two conditions at one "
      "place, "
      "or for a region without any given head.";
  static constexpr const char* kTooHard =
      "The equations could not be solved: the iteration of the linear system does not converge, and there "
      "are too "
      "many unknowns to factorise it.  Look for elements that state two conditions at one place, for a "
      "region "
      "without any given head and for conductivities that differ by many orders of magnitude, or leave out "
      "vertices that do not matter.";
  static constexpr double kRough = 1e-7, kFine = 1e-10;

 public:
  Iteration(System* system, int asked, const ProgressCallback& progress)
      : s_(*system), asked_(asked), progress_(progress) {}

  IterationReport Run() {
    constexpr int kRounds = 6;
    // Orders are chosen on what a rough solution shows.
    const bool began = s_.iterations_done == 0;
    if (began) tolerance_ = kRough;
    bool good = Begin() && Step();
    while (good && began && round_ < kRounds && !nothing_new_ && Raise()) {
      ++round_;
      good = Begin() && Step();
    }
    tolerance_ = kFine;
    if (good && began && !solver_->Factorised()) {
      ++round_;
      s_.iterations_done = report_.iterations = 0;
      good = Step();
    }
    if (good) GoOn();
    // Where conditions depend on the head, its last shape may ask for more than the first did.
    if (good && began && depends_ && report_.converged && Raise() && Begin() && Step()) GoOn();
    if (report_.iterations > 0 && !report_.cancelled && !s_.refused) {
      const std::size_t before = s_.findings.size();
      CheckIdle(s_);
      report_.findings.insert(report_.findings.end(), s_.findings.begin() + std::ptrdiff_t(before),
                              s_.findings.end());
    }
    s_.converged = report_.converged;
    if (!report_.converged && !report_.cancelled && !s_.refused && report_.iterations > 0)
      Tell(Severity::kWarning,
           "The iteration has not converged: heads still change.  Continue the solution with more "
           "iterations.");
    return std::move(report_);
  }

 private:
  /// `done`: iterations that are whole.  The first is solved in rounds, whose number nobody knows before:
  /// each is given half of what is left.
  bool Report(int done, double fraction, const char* what) {
    if (done == 0) fraction = 1.0 - std::pow(0.5, round_ - 1) * (1.0 - 0.5 * fraction);
    const bool go_on = !progress_ || progress_({done + 1, asked_, fraction, report_.change, what});
    report_.cancelled = !go_on;
    return go_on;
  }

  void Tell(Severity severity, const char* text) {
    s_.Add(severity, {}, text);
    report_.findings.push_back(s_.findings.back());
  }

  bool Begin() {
    depends_ = std::any_of(s_.controls.begin(), s_.controls.end(),
                           [&](const Control& c) { return DependsOnHead(s_, c); });
    solver_ = std::make_unique<LinearSolver>(s_);
    if (!solver_->Assemble([&](double part) { return Report(report_.iterations, 0.5 * part, "assembling"); }))
      return false;
    solver_->Values(s_.x, &values_, &strengths_);
    if (s_.iterations_done == 0) StartValues(s_, &values_, &strengths_);
    return true;
  }

  /// One linear solution; false: it is the last.
  bool Step() {
    s_.Route();
    linear_.clear();
    for (std::size_t q = 0; q < s_.controls.size(); ++q)
      linear_.push_back(Linearise(s_, s_.controls[q], values_[q], strengths_[q]));
    if (!Report(report_.iterations, 0.5, "solving")) return false;
    std::vector<double> next = s_.x, values, strengths;
    report_.residual = solver_->Solve(
        linear_, tolerance_,
        [&](double part) { return Report(report_.iterations, 0.5 + 0.5 * part, "solving"); }, &next);
    report_.linear_steps += solver_->Steps();
    if (report_.residual == kCancelled) return false;
    if (!(report_.residual < std::max(1e-6, 2.0 * tolerance_))) {
      Tell(Severity::kFatal, solver_->Factorised() ? kSingular : kTooHard);
      return false;
    }
    solver_->Values(next, &values, &strengths);
    Change change;
    for (std::size_t q = 0; q < s_.controls.size(); ++q)
      change.Add(s_.controls[q], values[q], strengths[q], values_[q], strengths_[q]);
    s_.x = std::move(next);
    s_.SetCoefficients();
    Follow(change.largest, &values, &strengths);
    const std::vector<double> carried_before = s_.carried;
    const int switched =
        s_.SwitchStates(values, report_.iterations > asked_ + s_.options.extra_iterations / 2);
    ++report_.iterations;
    ++s_.iterations_done;
    report_.change = change.largest;
    const bool still =
        change.largest <= change.Tolerance() && switched == 0 && Settled(carried_before, s_.carried);
    report_.converged = !depends_ || (still && report_.iterations >= std::min(asked_, 2));
    return Report(report_.iterations - 1, 1.0, tolerance_ == kRough ? "choosing orders" : "iteration done");
  }

  /// Whether orders were raised and all begins anew.
  bool Raise() {
    if (!s_.RaiseOrders(linear_, values_, strengths_)) return false;
    solver_.reset();
    std::vector<double> before = s_.x;
    s_.Rebuild();
    nothing_new_ = s_.x.size() == before.size();  // what was raised has no corner that it divides for
    if (nothing_new_) s_.x = std::move(before);
    s_.iterations_done = report_.iterations = 0;
    report_.converged = false;
    return !s_.refused;
  }

  /// Where the next iteration is linearised: at what was solved, or half way there where heads swing.
  void Follow(double change, std::vector<double>* values, std::vector<double>* strengths) {
    constexpr int kPatience = 4;
    swings_ = change > 0.7 * report_.change ? swings_ + 1 : 0;
    if (report_.iterations == 0 || swings_ < kPatience) {
      values_ = *values;
      strengths_ = *strengths;
      return;
    }
    for (std::size_t q = 0; q < values_.size(); ++q) {
      values_[q] = 0.5 * (values_[q] + (*values)[q]);
      strengths_[q] = 0.5 * (strengths_[q] + (*strengths)[q]);
    }
  }

  /// Beyond the iterations allowed it goes on as long as every dozen of them gains.
  void GoOn() {
    constexpr int kLook = 12, kMost = 600;
    const int limit = depends_ ? asked_ + s_.options.extra_iterations : 1;
    const bool may_go_on = depends_ && s_.options.extra_iterations > 0;
    std::vector<double> changes;
    const auto gains = [&] {
      if (changes.size() < 2 * kLook) return true;
      const auto middle = changes.end() - kLook;
      return *std::min_element(middle, changes.end()) < 0.7 * *std::min_element(middle - kLook, middle);
    };
    while (!report_.converged) {
      const bool beyond = report_.iterations >= limit;
      if (beyond && !(may_go_on && report_.iterations < kMost && gains())) return;
      if (!Step()) return;
      changes.push_back(report_.change);
    }
  }

  System& s_;
  int asked_;
  const ProgressCallback& progress_;
  IterationReport report_;
  bool depends_ = false;
  bool nothing_new_ = false;  ///< raising orders has come to its end
  int round_ = 1;             ///< of raising orders
  int swings_ = 0;            ///< iterations one after another that changed heads about as much as before
  double tolerance_ = kFine;  ///< of iterative linear solutions
  std::unique_ptr<LinearSolver> solver_;
  std::vector<Linearised> linear_;
  std::vector<double> values_, strengths_;
};

}  // namespace

IterationReport System::Iterate(int asked, const ProgressCallback& progress) {
  if (refused) return {};
  return Iteration(this, std::max(1, asked), progress).Run();
}

}  // namespace aem::detail
