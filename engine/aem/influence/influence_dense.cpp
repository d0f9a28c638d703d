// Influences held whole: rows of control points, columns of unknowns; solved by factorisation.
#include <algorithm>
#include <cmath>

#include "aem/influence/influence.h"
#include "aem/linear/linear.h"

namespace aem::detail {

namespace {

class Dense final : public Influences {
 public:
  explicit Dense(const System& s) : Influences(s), rows_(s.controls.size()), columns_(s.x.size()) {}

  bool Assemble(const GoOn& go_on) override {
    if (!AssembleGiven(go_on)) return false;
    matrix_.resize(rows_ * columns_);
    const std::size_t chunk = std::max<std::size_t>(64, rows_ / 16);
    for (std::size_t start = 0; start < rows_; start += chunk) {
      const std::size_t count = std::min(chunk, rows_ - start);
      ParallelFor(s_.options.threads, count, [&](std::size_t begin, std::size_t end) {
        for (std::size_t q = start + begin; q < start + end; ++q)
          InfluenceRow(s_, s_.controls[q], &matrix_[q * columns_]);
      });
      if (!go_on(double(start + count) / double(rows_))) return false;
    }
    return true;
  }

  double Solve(const std::vector<Linearised>& linear, double, const GoOn&, std::vector<double>* x) override {
    std::vector<double> matrix(columns_ * columns_, 0.0), right(columns_, 0.0);
    std::vector<std::vector<std::pair<std::size_t, double>>> tests(columns_);
    for (std::size_t q = 0; q < rows_; ++q)
      for (int i = 0; i < local_[q].count; ++i)
        tests[local_[q].unknown[i]].emplace_back(q, local_[q].test[i] * s_.controls[q].weight);
    ParallelFor(s_.options.threads, columns_, [&](std::size_t begin, std::size_t end) {
      for (std::size_t j = begin; j < end; ++j)
        for (const auto& [q, weight] : tests[j]) {
          AddEquation(linear[q], weight, q, &matrix[j * columns_]);
          right[j] += weight * (linear[q].r - linear[q].a * given_[q]);
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
  void Field(const std::vector<double>& x, std::vector<double>* field) const override {
    field->resize(rows_);
    ParallelFor(s_.options.threads, rows_, [&](std::size_t begin, std::size_t end) {
      for (std::size_t q = begin; q < end; ++q) {
        const double* row = &matrix_[q * columns_];
        double sum = 0.0;
        for (std::size_t j = 0; j < columns_; ++j) sum += row[j] * x[j];
        (*field)[q] = sum;
      }
    });
  }

  void AddEquation(const Linearised& l, double weight, std::size_t q, double* out) const {
    const double factor = weight * l.a;
    const double* row = &matrix_[q * columns_];
    if (factor != 0.0)
      for (std::size_t i = 0; i < columns_; ++i) out[i] += factor * row[i];
    for (int i = 0; i < local_[q].count; ++i) out[local_[q].unknown[i]] += weight * l.b * local_[q].value[i];
    if (l.coupled >= 0)
      for (const auto& [i, c] : s_.carried_terms[l.coupled]) out[i] += weight * l.scale * c;
  }

  std::size_t rows_, columns_;
  std::vector<double> matrix_;
};

}  // namespace

std::unique_ptr<Influences> MakeDense(const System& system) {
  return std::make_unique<Dense>(system);
}

}  // namespace aem::detail
