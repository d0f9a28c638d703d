// Influences through the tree of sources; solved by iteration with a preconditioner.
#include <algorithm>
#include <cmath>

#include "aem/influence/influence.h"
#include "aem/influence/preconditioner.h"
#include "aem/influence/source_tree.h"
#include "aem/linear/gmres.h"

namespace aem::detail {

namespace {

/// Whether factors of the equations differ by so much that another preconditioner pays.
bool HaveChanged(const std::vector<Linearised>& before, const std::vector<Linearised>& now) {
  constexpr double kPays = 0.05;
  const auto apart = [](double a, double b) {
    return std::abs(a - b) > kPays * std::max(std::abs(a), std::abs(b));
  };
  for (std::size_t q = 0; q < now.size(); ++q)
    if (apart(before[q].a, now[q].a) || apart(before[q].b, now[q].b)) return true;
  return false;
}

class Hierarchical final : public Influences {
 public:
  explicit Hierarchical(const System& s) : Influences(s), tree_(s) {}

  bool Assemble(const GoOn& go_on) override {
    if (!AssembleGiven(go_on)) return false;
    for (std::size_t q = 0; q < s_.controls.size(); ++q)
      if (s_.controls[q].piece < 0 && s_.controls[q].unknown == 0) reference_ = q;
    reference_row_.resize(s_.x.size());
    InfluenceRow(s_, s_.controls[reference_], reference_row_.data());
    FindTests();
    return tree_.Assemble(go_on);
  }

  double Solve(const std::vector<Linearised>& linear, double tolerance, const GoOn& go_on,
               std::vector<double>* x) override {
    linear_ = &linear;
    if (!preconditioner_ || HaveChanged(prepared_, linear)) {
      preconditioner_.reset();
      preconditioner_ =
          std::make_unique<Preconditioner>(EquationParts{s_, tree_, local_, linear, reference_row_});
      prepared_ = linear;
    }
    const std::vector<double>& scale = preconditioner_->RowScale();
    std::vector<double> right(s_.x.size(), 0.0), moment(linear.size());
    for (std::size_t q = 0; q < linear.size(); ++q) moment[q] = linear[q].r - linear[q].a * given_[q];
    Test(moment, &right);
    for (std::size_t j = 0; j < right.size(); ++j) right[j] *= scale[j];
    bool cancelled = false;
    Gmres gmres;
    gmres.tolerance = tolerance;
    gmres.matrix = [&](const std::vector<double>& from, std::vector<double>* to) { Multiply(from, to); };
    gmres.preconditioner = [&](const std::vector<double>& from, std::vector<double>* to) {
      preconditioner_->Apply(from, to);
    };
    gmres.go_on = [&](double residual) {
      cancelled = !go_on(std::clamp(std::log10(std::max(residual, 1e-30)) / std::log10(tolerance), 0.0, 1.0));
      return !cancelled;
    };
    std::vector<double> next = *x;
    const double residual = gmres.Solve(right, &next);
    steps_ = gmres.steps;
    if (cancelled) return kCancelled;
    if (!(residual < std::max(1e-6, 2.0 * tolerance)))
      return std::isfinite(residual) ? std::max(residual, 1e-6) : 2.0;
    *x = std::move(next);
    return residual;
  }

  int Steps() const override { return steps_; }

 private:
  struct Entry {
    std::size_t control = 0;
    double weight = 0.0;
  };

  /// Control points and weights that make the equation of each unknown.
  void FindTests() {
    std::vector<std::size_t> count(s_.x.size() + 1, 0);
    for (const LocalRow& row : local_)
      for (int i = 0; i < row.count; ++i) ++count[row.unknown[i] + 1];
    for (std::size_t j = 1; j < count.size(); ++j) count[j] += count[j - 1];
    test_start_ = count;
    tests_.resize(count.back());
    for (std::size_t q = 0; q < local_.size(); ++q)
      for (int i = 0; i < local_[q].count; ++i)
        tests_[count[local_[q].unknown[i]]++] = {q, local_[q].test[i] * s_.controls[q].weight};
  }

  void Test(const std::vector<double>& moment, std::vector<double>* out) const {
    ParallelFor(s_.options.threads, out->size(), [&](std::size_t begin, std::size_t end) {
      for (std::size_t j = begin; j < end; ++j) {
        double sum = 0.0;
        for (std::size_t k = test_start_[j]; k < test_start_[j + 1]; ++k)
          sum += tests_[k].weight * moment[tests_[k].control];
        (*out)[j] = sum;
      }
    });
  }

  void Field(const std::vector<double>& x, std::vector<double>* field) const override {
    field->assign(s_.controls.size(), 0.0);
    std::vector<double> strength(tree_.Strengths(), 0.0);
    using Kind = SourceTree::Source::Kind;
    for (const SourceTree::Source& source : tree_.Sources()) {
      double* to = strength.data() + source.first;
      switch (source.kind) {
        case Kind::kPiece:
          for (const Term& t : s_.terms[source.index])
            for (int n = 0; n < source.size; ++n) to[n] += t.coefficient[n] * x[t.unknown];
          break;
        case Kind::kWell:
          *to = x[s_.wells[source.index].unknown];
          break;
        case Kind::kPartialWell:
          *to = x[s_.partial_wells[source.index].unknown];
          break;
        case Kind::kDisk:
          *to = x[s_.disks[source.index].unknown];
          break;
      }
    }
    tree_.Field(strength, field);
    for (std::size_t q = 0; q < field->size(); ++q)
      if (KindOf(s_.controls[q].condition) == FieldKind::kPotential) (*field)[q] += x[0];
    double sum = 0.0;
    for (std::size_t j = 0; j < x.size(); ++j) sum += reference_row_[j] * x[j];
    (*field)[reference_] = sum;
  }

  /// The system, rows scaled.
  void Multiply(const std::vector<double>& x, std::vector<double>* to) const {
    std::vector<double> moment;
    Field(x, &moment);
    for (std::size_t q = 0; q < moment.size(); ++q) {
      const Linearised& l = (*linear_)[q];
      double own = 0.0;
      for (int i = 0; i < local_[q].count; ++i) own += local_[q].value[i] * x[local_[q].unknown[i]];
      moment[q] = l.a * moment[q] + l.b * own;
      if (l.coupled >= 0)
        for (const auto& [i, c] : s_.carried_terms[l.coupled]) moment[q] += l.scale * c * x[i];
    }
    to->resize(x.size());
    Test(moment, to);
    for (const auto& loop : s_.loops) {
      double sum = 0.0;
      for (const auto& [j, w] : loop) sum += w * x[j];
      for (const auto& [i, w] : loop) (*to)[i] += w * sum / LoopScale(loop);
    }
    const std::vector<double>& scale = preconditioner_->RowScale();
    for (std::size_t j = 0; j < to->size(); ++j) (*to)[j] *= scale[j];
  }

  SourceTree tree_;
  int steps_ = 0;
  std::size_t reference_ = 0;
  std::vector<double> reference_row_;
  std::vector<std::size_t> test_start_;
  std::vector<Entry> tests_;
  const std::vector<Linearised>* linear_ = nullptr;
  std::unique_ptr<Preconditioner> preconditioner_;
  std::vector<Linearised> prepared_;  ///< what the preconditioner was made of
};

}  // namespace

std::unique_ptr<Influences> MakeHierarchical(const System& system) {
  return std::make_unique<Hierarchical>(system);
}

}  // namespace aem::detail
