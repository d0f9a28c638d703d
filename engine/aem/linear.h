// Dense linear systems through LAPACK, with their own check of the result.
#pragma once

#include <cstddef>
#include <vector>

namespace aem::detail {

/// Solves matrix * x = right.  `matrix` is row-major and is lost.  Rows are scaled to a largest entry of 1
/// before the factorisation; the answer is refined and the residual relative to |matrix||x| + |right|
/// returned. 1 or more: the system is singular or the answer is no number.
double SolveDense(std::vector<double>* matrix, std::vector<double>* right, std::size_t n, int threads);

}  // namespace aem::detail
