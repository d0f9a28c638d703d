// Solving and evaluating, beside what the bare machine does: compare the ratios, machines differ.
#include <benchmark/benchmark.h>
#include <lapacke.h>

#include <cmath>
#include <random>
#include <vector>

#include "aem/solution.h"
#include "rivers.h"

namespace {

using aem::Complex;
using aem_bench::Rivers;

/// Segments and wells; tells the largest head error by the range of heads as well.
void SolveRivers(benchmark::State& state) {
  aem::Model m = Rivers(int(state.range(0)));
  aem_bench::AddWells(&m, int(state.range(1)));
  for (auto _ : state) {
    aem::Solution s(m);
    benchmark::DoNotOptimize(s.Iterate(1).residual);
    state.PauseTiming();
    const aem::Checks checks = s.Check();
    state.counters["unknowns"] = double(s.Unknowns());
    state.counters["error"] = checks.line_sink_head.value / checks.head_range;
    state.ResumeTiming();
  }
}

void BareFactorisation(benchmark::State& state) {
  const int n = int(state.range(0));
  std::mt19937 random(5);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<double> matrix(std::size_t(n) * n);
  for (double& v : matrix) v = u(random);
  std::vector<lapack_int> pivots(n);
  for (auto _ : state) {
    std::vector<double> work = matrix;
    benchmark::DoNotOptimize(LAPACKE_dgetrf(LAPACK_COL_MAJOR, n, n, work.data(), n, pivots.data()));
  }
}

/// 200 x 200 heads; items are elements times points.
void Grid(benchmark::State& state) {
  const int segments = int(state.range(0));
  aem::Solution s(Rivers(segments), {.direct_summation = state.range(1) == 1});
  s.Iterate(1);
  std::vector<Complex> points;
  const double step = (s.GetModel().layout.right - s.GetModel().layout.left) / 200.0;
  for (int i = 0; i < 200; ++i)
    for (int j = 0; j < 200; ++j)
      points.push_back({s.GetModel().layout.left + 3.0 + step * i, -4999.0 + 50.0 * j});
  std::vector<aem::PointState> states(points.size());
  for (auto _ : state) s.Evaluate(points, states);
  state.SetItemsProcessed(state.iterations() * segments * std::int64_t(points.size()));
}

void ScalarLogarithms(benchmark::State& state) {
  std::vector<Complex> z(100000);
  for (std::size_t i = 0; i < z.size(); ++i) z[i] = {1.0 + double(i % 977), double(i % 13) - 6.5};
  for (auto _ : state) {
    double sum = 0.0;
    for (const Complex& v : z) sum += 0.5 * std::log(std::norm(v)) + std::atan2(v.imag(), v.real());
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t(z.size()));
}

BENCHMARK(SolveRivers)
    ->ArgNames({"segments", "wells"})
    ->Args({100, 0})
    ->Args({1000, 0})
    ->Args({3000, 0})
    ->Args({5000, 50})
    ->Args({15000, 150})
    ->Args({50000, 500})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BareFactorisation)->Arg(1000)->Arg(3000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Grid)
    ->ArgNames({"segments", "direct"})
    ->Args({1000, 0})
    ->Args({1000, 1})
    ->Args({4000, 0})
    ->Args({5000, 0})
    ->Args({50000, 0})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(ScalarLogarithms)->UseRealTime();

}  // namespace
