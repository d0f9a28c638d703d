#include "aem/linear/linear.h"

#include <lapacke.h>
#include <sys/mman.h>

#include <algorithm>
#include <cmath>
#include <new>

#include "aem/parallel.h"

extern "C" void openblas_set_num_threads(int threads);
extern "C" void* blas_memory_alloc(int position);
extern "C" void blas_memory_free(void* buffer);

namespace aem::detail {

namespace {

constexpr std::size_t kThreadsPay = 700;  ///< unknowns from which a second thread helps

void ScaleRows(std::vector<double>* matrix, std::vector<double>* right, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    double* row = matrix->data() + i * n;
    double largest = 0.0;
    for (std::size_t j = 0; j < n; ++j) largest = std::max(largest, std::abs(row[j]));
    if (largest == 0.0) continue;
    const double factor = 1.0 / largest;
    for (std::size_t j = 0; j < n; ++j) row[j] *= factor;
    (*right)[i] *= factor;
  }
}

/// right - matrix x, and its largest entry relative to the largest sum of terms of any row.
double Residual(const std::vector<double>& matrix, const std::vector<double>& right,
                const std::vector<double>& x, std::vector<double>* residual) {
  const std::size_t n = right.size();
  double worst = 0.0, largest = 1e-300;
  for (std::size_t i = 0; i < n; ++i) {
    const double* row = matrix.data() + i * n;
    double sum = right[i], size = std::abs(right[i]);
    for (std::size_t j = 0; j < n; ++j) {
      sum -= row[j] * x[j];
      size += std::abs(row[j] * x[j]);
    }
    (*residual)[i] = sum;
    if (!std::isfinite(sum)) return 2.0;
    worst = std::max(worst, std::abs(sum));
    largest = std::max(largest, size);
  }
  return worst / largest;
}

}  // namespace

double SolveDense(std::vector<double>* matrix, std::vector<double>* right, std::size_t n, int threads) {
  SetDenseThreads(n < kThreadsPay ? 1 : threads);
  ScaleRows(matrix, right, n);
  for (double v : *matrix)
    if (!std::isfinite(v)) return 2.0;
  // LAPACK sees the transpose of our rows; factor that and solve with the transpose.
  std::vector<double> factors = *matrix;
  std::vector<lapack_int> pivots(n);
  const lapack_int size = lapack_int(n);
  if (LAPACKE_dgetrf_work(LAPACK_COL_MAJOR, size, size, factors.data(), size, pivots.data()) != 0) return 1.0;
  std::vector<double> x = *right, residual(n);
  LAPACKE_dgetrs_work(LAPACK_COL_MAJOR, 'T', size, 1, factors.data(), size, pivots.data(), x.data(), size);
  double worst = Residual(*matrix, *right, x, &residual);
  for (int round = 0; round < 3 && worst > 1e-15 && worst < 1.0; ++round) {
    LAPACKE_dgetrs_work(LAPACK_COL_MAJOR, 'T', size, 1, factors.data(), size, pivots.data(), residual.data(),
                        size);
    std::vector<double> better = x;
    for (std::size_t i = 0; i < n; ++i) better[i] += residual[i];
    const double now = Residual(*matrix, *right, better, &residual);
    if (now >= worst) break;
    x = better;
    worst = now;
  }
  *right = x;
  return worst;
}

bool DenseFactors::Factor(std::vector<double> matrix, std::size_t n) {
  factors_ = std::move(matrix);
  pivots_.resize(n);
  const lapack_int size = lapack_int(n);
  const bool regular =
      LAPACKE_dgetrf_work(LAPACK_COL_MAJOR, size, size, factors_.data(), size, pivots_.data()) == 0;
  n_ = regular ? n : 0;
  return regular;
}

void DenseFactors::Solve(std::vector<double>* x) const {
  if (n_ == 0) {
    std::fill(x->begin(), x->end(), 0.0);
    return;
  }
  const lapack_int size = lapack_int(n_);
  LAPACKE_dgetrs_work(LAPACK_COL_MAJOR, 'T', size, 1, factors_.data(), size, pivots_.data(), x->data(), size);
}

bool InvertRows(std::vector<float>* matrix, std::size_t n, std::size_t rows, std::vector<float>* inverse) {
  std::vector<lapack_int> pivots(n);
  const lapack_int size = lapack_int(n);
  if (LAPACKE_sgetrf_work(LAPACK_COL_MAJOR, size, size, matrix->data(), size, pivots.data()) != 0)
    return false;
  // Row i of the inverse solves the transposed system for the unit vector i.
  inverse->assign(n * rows, 0.0F);
  for (std::size_t i = 0; i < rows; ++i) (*inverse)[i * n + i] = 1.0F;
  return LAPACKE_sgetrs_work(LAPACK_COL_MAJOR, 'T', size, lapack_int(rows), matrix->data(), size,
                             pivots.data(), inverse->data(), size) == 0;
}

namespace {

/// The library takes a buffer for each thread that calls it at once with others, at its first calls, and asks
/// the system for it for ever if it gets none.  All are taken here, where want of room can still be told.
void TakeBuffers(int threads) {
  constexpr std::size_t kBuffer = std::size_t(128) << 20;       // as the library has it
  const std::size_t size = kBuffer * std::size_t(threads + 1);  // one more for its own thread
  void* const room = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (room == MAP_FAILED) throw std::bad_alloc();
  ::munmap(room, size);
  std::vector<void*> taken;
  for (int i = 0; i < threads; ++i) taken.push_back(blas_memory_alloc(0));
  for (void* buffer : taken) blas_memory_free(buffer);
}

}  // namespace

void SetDenseThreads(int threads) {
  static const bool taken = [] {
    TakeBuffers(ThreadCount(0));
    return true;
  }();
  if (taken) openblas_set_num_threads(threads);
}

}  // namespace aem::detail
