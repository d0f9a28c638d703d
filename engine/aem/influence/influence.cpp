#include "aem/influence/influence.h"

#include <algorithm>
#include <cmath>

#include "aem/field/farfield.h"

namespace aem::detail {

namespace {

/// The system with what is given alone: no unknowns, and no pieces that have any.
System Bare(const System& s) {
  System bare = s;
  bare.controls.clear();
  std::fill(bare.x.begin(), bare.x.end(), 0.0);
  bare.pieces.clear();
  bare.terms.clear();
  bare.coefficients.clear();
  for (std::size_t p = 0; p < s.pieces.size(); ++p) {
    if (!s.terms[p].empty()) continue;
    bare.pieces.push_back(s.pieces[p]);
    bare.terms.emplace_back();
    for (int n = 0; n < kMaxBasis; ++n) bare.coefficients.push_back(s.coefficients[p * kMaxBasis + n]);
  }
  bare.moments.resize(bare.pieces.size());
  bare.SetCoefficients();
  return bare;
}

}  // namespace

bool Influences::AssembleGiven(const GoOn& go_on) {
  const std::size_t rows = s_.controls.size();
  given_.resize(rows);
  local_.resize(rows);
  System bare = Bare(s_);
  bare.PrepareField();  // refers to where it stands
  ParallelFor(s_.options.threads, rows, [&](std::size_t begin, std::size_t end) {
    for (std::size_t q = begin; q < end; ++q) {
      given_[q] = GivenField(bare, s_.controls[q]);
      local_[q] = LocalValues(s_, s_.controls[q]);
    }
  });
  return go_on(0.05);
}

void Influences::Values(const std::vector<double>& x, std::vector<double>* field,
                        std::vector<double>* strength) const {
  Field(x, field);
  strength->resize(field->size());
  for (std::size_t q = 0; q < field->size(); ++q) {
    (*field)[q] += given_[q];
    double own = 0.0;
    for (int i = 0; i < local_[q].count; ++i) own += local_[q].value[i] * x[local_[q].unknown[i]];
    (*strength)[q] = own;
  }
}

}  // namespace aem::detail
