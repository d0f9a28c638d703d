// The iteration: linearise, assemble, solve, look at what changed.
#include <algorithm>
#include <cmath>

#include "aem/equations.h"
#include "aem/linear.h"
#include "aem/system.h"

namespace aem::detail {

namespace {

constexpr double kHeadTolerance = 1e-9;  ///< change of head, relative to the range, that ends the iteration

/// Influence of every unknown at every control point, held whole.
class DenseField {
 public:
  explicit DenseField(const System& s) : s_(s), rows_(s.controls.size()), columns_(s.x.size()) {}

  bool Assemble(const std::function<bool(double)>& go_on) {
    matrix_.resize(rows_ * columns_);
    given_.resize(rows_);
    local_.resize(rows_);
    System bare = Bare();
    const std::size_t chunk = std::max<std::size_t>(64, rows_ / 16);
    for (std::size_t start = 0; start < rows_; start += chunk) {
      const std::size_t count = std::min(chunk, rows_ - start);
      ParallelFor(s_.options.threads, count, [&](std::size_t begin, std::size_t end) {
        for (std::size_t q = start + begin; q < start + end; ++q) {
          InfluenceRow(s_, s_.controls[q], &matrix_[q * columns_]);
          given_[q] = GivenField(bare, s_.controls[q]);
          local_[q] = LocalValues(s_, s_.controls[q]);
        }
      });
      if (!go_on(double(start + count) / double(rows_))) return false;
    }
    return true;
  }

  void Values(const std::vector<double>& x, std::vector<double>* field, std::vector<double>* strength) const {
    field->resize(rows_);
    strength->resize(rows_);
    for (std::size_t q = 0; q < rows_; ++q) {
      double sum = given_[q], own = 0.0;
      const double* row = &matrix_[q * columns_];
      for (std::size_t j = 0; j < columns_; ++j) sum += row[j] * x[j];
      for (int i = 0; i < local_[q].count; ++i) own += local_[q].value[i] * x[local_[q].unknown[i]];
      (*field)[q] = sum;
      (*strength)[q] = own;
    }
  }

  double Solve(const std::vector<Linearised>& linear, std::vector<double>* x) const {
    std::vector<double> matrix(columns_ * columns_, 0.0), right(columns_, 0.0);
    std::vector<std::vector<std::pair<std::size_t, double>>> tests(columns_);
    for (std::size_t q = 0; q < rows_; ++q)
      for (int i = 0; i < local_[q].count; ++i)
        tests[local_[q].unknown[i]].emplace_back(q, local_[q].test[i] * s_.controls[q].weight);
    ParallelFor(s_.options.threads, columns_, [&](std::size_t begin, std::size_t end) {
      for (std::size_t j = begin; j < end; ++j) {
        double* out = &matrix[j * columns_];
        for (const auto& [q, weight] : tests[j]) {
          const Linearised& l = linear[q];
          const double factor = weight * l.a;
          const double* row = &matrix_[q * columns_];
          if (factor != 0.0)
            for (std::size_t i = 0; i < columns_; ++i) out[i] += factor * row[i];
          for (int i = 0; i < local_[q].count; ++i)
            out[local_[q].unknown[i]] += weight * l.b * local_[q].value[i];
          if (l.coupled >= 0)
            for (const auto& [i, c] : s_.carried_terms[l.coupled]) out[i] += weight * l.scale * c;
          right[j] += weight * (l.r - l.a * given_[q]);
        }
      }
    });
    for (const auto& loop : s_.loops)
      for (const auto& [i, wi] : loop)
        for (const auto& [j, wj] : loop) matrix[std::size_t(i) * columns_ + j] += wi * wj / LoopScale(loop);
    const double residual = SolveDense(&matrix, &right, columns_, s_.options.threads);
    if (residual < 1e-6) *x = right;
    return residual;
  }

 private:
  static double LoopScale(const std::vector<std::pair<int, double>>& loop) {
    double sum = 0.0;
    for (const auto& [i, w] : loop) sum += std::abs(w);
    return sum * sum;
  }

  /// The system with every unknown at zero: what is given.
  System Bare() const {
    System bare = s_;
    std::fill(bare.x.begin(), bare.x.end(), 0.0);
    bare.SetCoefficients();
    return bare;
  }

  const System& s_;
  std::size_t rows_, columns_;
  std::vector<double> matrix_, given_;
  std::vector<LocalRow> local_;
};

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

/// The equations are held whole: at 12,000 unknowns with 24,000 control points some 4 GiB.
bool TooLarge(const System& s) {
  const double bytes = 8.0 * double(s.x.size()) * (double(s.controls.size()) + 2.0 * double(s.x.size()));
  return bytes > 5.0e9;
}

}  // namespace

IterationReport System::Iterate(int asked, const ProgressCallback& progress) {
  IterationReport report;
  if (refused) return report;
  asked = std::max(1, asked);
  bool depends = false;
  if (TooLarge(*this)) {
    Add(Severity::kFatal, {},
        "The model has " + std::to_string(x.size()) +
            " unknowns; the equations of more than 12000 do not fit the memory that is meant for them.  "
            "Leave out "
            "vertices of line-sinks and domains that do not matter.");
    report.findings.push_back(findings.back());
    return report;
  }
  for (const Control& c : controls) depends = depends || DependsOnHead(*this, c);
  const auto tell = [&](double fraction, const char* what) {
    const bool go_on = !progress || progress({report.iterations + 1, asked, fraction, report.change, what});
    report.cancelled = !go_on;
    return go_on;
  };
  DenseField field(*this);
  if (!field.Assemble([&](double part) { return tell(0.8 * part, "assembling"); })) return report;
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
    if (!tell(0.85, "solving")) return report;
    std::vector<double> next = x;
    report.residual = field.Solve(linear, &next);
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
