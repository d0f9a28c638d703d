// Solving and evaluating, beside what the bare machine does: compare the ratios, machines differ.
#include <benchmark/benchmark.h>
#include <lapacke.h>

#include <cmath>
#include <random>
#include <vector>

#include "aem/solution.h"

namespace {

using aem::Complex;

/// Rivers that run side by side from south to north, `segments` in all.
aem::Model Rivers(int segments) {
  aem::Model m;
  m.aquifer = {0.0, 20.0, 10.0, 0.2, {0.2, 0.1}, true, {60000.0, 60000.0}, 30.0, 0};
  m.layout = {-5000.0, -5000.0, 5000.0, 5000.0, true};
  std::mt19937 random(3);
  std::uniform_real_distribution<double> turn(-0.36, 0.36);
  const int strings = std::max(1, segments / 100);
  for (int k = 0; k < strings; ++k) {
    aem::LineSinkString s;
    s.origin.label = "R" + std::to_string(k);
    Complex at{-4500.0 + 9000.0 * k / strings, -4500.0};
    for (int i = 0; i < segments / strings; ++i) {
      const Complex next = at + std::polar(80.0, 1.57 + turn(random));
      s.segments.push_back({s.origin, at, next, 26.0 + 4.0 * (at.imag() + 4500.0) / 9000.0});
      at = next;
    }
    m.line_sinks.push_back(s);
  }
  return m;
}

void SolveRivers(benchmark::State& state) {
  const aem::Model m = Rivers(int(state.range(0)));
  for (auto _ : state) {
    aem::Solution s(m);
    benchmark::DoNotOptimize(s.Iterate(1).residual);
    state.counters["unknowns"] = double(s.Unknowns());
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
  for (int i = 0; i < 200; ++i)
    for (int j = 0; j < 200; ++j) points.push_back({-4997.0 + 50.0 * i, -4999.0 + 50.0 * j});
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

BENCHMARK(SolveRivers)->Arg(100)->Arg(1000)->Arg(3000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BareFactorisation)->Arg(1000)->Arg(3000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Grid)
    ->ArgNames({"segments", "direct"})
    ->Args({1000, 0})
    ->Args({1000, 1})
    ->Args({3000, 0})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(ScalarLogarithms)->UseRealTime();

}  // namespace
