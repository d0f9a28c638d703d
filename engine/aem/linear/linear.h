// Dense linear systems through LAPACK, with their own check of the result.
#pragma once

#include <cstddef>
#include <vector>

namespace aem::detail {

/// Solves matrix * x = right.  `matrix` is row-major and is lost.  Rows are scaled to a largest entry of 1
/// before the factorisation; the answer is refined and the residual relative to |matrix||x| + |right|
/// returned. 1 or more: the system is singular or the answer is no number.
double SolveDense(std::vector<double>* matrix, std::vector<double>* right, std::size_t n, int threads);

/// Factors of a dense matrix, row-major, for many right sides.
class DenseFactors {
 public:
  /// False: singular, and nothing is held.
  bool Factor(std::vector<double> matrix, std::size_t n);
  /// x = inverse * x; zeros when nothing is held.
  void Solve(std::vector<double>* x) const;

 private:
  std::size_t n_ = 0;
  std::vector<double> factors_;
  std::vector<int> pivots_;
};

/// The first `rows` rows of the inverse of a small matrix of n columns, column-major, which is lost; each row
/// is n numbers of `inverse`.  On the calling thread alone.  False: singular.
bool InvertRows(std::vector<float>* matrix, std::size_t n, std::size_t rows, std::vector<float>* inverse);
/// Threads that dense algebra may use from now on.  To be called before anything else of this header.  Throws
/// std::bad_alloc where there is no room for the library's buffers.
void SetDenseThreads(int threads);

}  // namespace aem::detail
