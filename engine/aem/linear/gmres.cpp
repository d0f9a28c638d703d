#include "aem/linear/gmres.h"

#include <algorithm>
#include <cmath>

namespace aem::detail {

namespace {

double DotProduct(const std::vector<double>& a, const std::vector<double>& b) {
  double part[4] = {};
  const std::size_t n = a.size(), whole = n - n % 4;
  for (std::size_t i = 0; i < whole; i += 4)
    for (int k = 0; k < 4; ++k) part[k] += a[i + k] * b[i + k];
  for (std::size_t i = whole; i < n; ++i) part[0] += a[i] * b[i];
  return part[0] + part[1] + part[2] + part[3];
}

void AddScaled(double factor, const std::vector<double>& from, std::vector<double>* to) {
  for (std::size_t i = 0; i < from.size(); ++i) (*to)[i] += factor * from[i];
}

/// The triangular factor of the Hessenberg matrix by Givens rotations, one column a step.
struct Rotations {
  std::vector<std::vector<double>> columns;
  std::vector<double> c, s, right;

  void Add(std::vector<double> h) {
    const std::size_t j = columns.size();
    for (std::size_t i = 0; i < j; ++i) {
      const double a = c[i] * h[i] + s[i] * h[i + 1];
      h[i + 1] = -s[i] * h[i] + c[i] * h[i + 1];
      h[i] = a;
    }
    const double size = std::hypot(h[j], h[j + 1]);
    c.push_back(size > 0.0 ? h[j] / size : 1.0);
    s.push_back(size > 0.0 ? h[j + 1] / size : 0.0);
    h[j] = size;
    right.push_back(-s[j] * right[j]);
    right[j] *= c[j];
    columns.push_back(std::move(h));
  }
  std::vector<double> Solve() const {
    const std::size_t n = columns.size();
    std::vector<double> y(n, 0.0);
    for (std::size_t i = n; i-- > 0;) {
      double sum = right[i];
      for (std::size_t j = i + 1; j < n; ++j) sum -= columns[j][i] * y[j];
      y[i] = columns[i][i] != 0.0 ? sum / columns[i][i] : 0.0;
    }
    return y;
  }
};

}  // namespace

double Gmres::Solve(const std::vector<double>& right, std::vector<double>* x) {
  const std::size_t n = right.size();
  const double scale = std::sqrt(DotProduct(right, right));
  if (scale == 0.0) {
    std::fill(x->begin(), x->end(), 0.0);
    return 0.0;
  }
  std::vector<double> work(n), residual(n), prepared(n);
  double norm = 0.0, before = 0.0;
  for (bool more = true;;) {
    matrix(*x, &work);
    for (std::size_t i = 0; i < n; ++i) residual[i] = right[i] - work[i];
    norm = std::sqrt(DotProduct(residual, residual)) / scale;
    // A round that gains nothing will gain nothing: rounding, or no solution.
    if (!more || norm <= tolerance || steps >= limit || !std::isfinite(norm) ||
        (before > 0.0 && norm > 0.5 * before))
      return norm;
    before = norm;
    std::vector<std::vector<double>> basis;
    Rotations rotations;
    rotations.right.push_back(norm * scale);
    basis.push_back(residual);
    for (double& v : basis[0]) v /= norm * scale;
    for (int j = 0; j < restart && steps < limit && more; ++j) {
      preconditioner(basis[j], &prepared);
      matrix(prepared, &work);
      ++steps;
      std::vector<double> h;
      for (const std::vector<double>& v : basis) {
        h.push_back(DotProduct(v, work));
        AddScaled(-h.back(), v, &work);
      }
      const double left = std::sqrt(DotProduct(work, work));
      h.push_back(left);
      rotations.Add(std::move(h));
      const double now = std::abs(rotations.right.back()) / scale;
      more = !go_on || go_on(now);
      if (now <= 0.5 * tolerance || left == 0.0 || !std::isfinite(now)) break;
      basis.push_back(work);
      for (double& v : basis.back()) v /= left;
    }
    const std::vector<double> y = rotations.Solve();
    std::fill(work.begin(), work.end(), 0.0);
    for (std::size_t j = 0; j < y.size(); ++j) AddScaled(y[j], basis[j], &work);
    preconditioner(work, &prepared);
    AddScaled(1.0, prepared, x);
  }
}

}  // namespace aem::detail
