// The solver's work around the engine: reading decks, saving solutions, tracing, writing grids, contouring.
// Each runs at two sizes or beside what it is measured by; the counters give the rates.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <cmath>
#include <string>

#include "aem/trace.h"
#include "contour/contour_run.h"
#include "vadox1/deck.h"
#include "vadox1/grid_file.h"
#include "vadox1/path_file.h"
#include "vadox1/solution_file.h"

namespace {

/// A river of head line-sinks that winds across the window and wells beside it.
std::string River(int segments, int wells) {
  std::string text =
      " quit\n title bench\n aquifer\n base 0\n permeability 20\n thickness 30\n porosity .2\n"
      " uniflow -.3 0\n reference 40000 40000 45\n quit\n layout\n window 0 0 10000 10000\n quit\n "
      "linesink\n head\n"
      " resistance 0\n width 0 0\n depth 0\n";
  const auto y = [](double x) { return 5000.0 + 900.0 * std::sin(x / 900.0); };
  for (int i = 0; i < segments; ++i) {
    const double a = 10000.0 * i / segments, b = 10000.0 * (i + 1) / segments;
    text += fmt::format("  {:.7E} {:.7E} {:.7E} {:.7E} {:.5E} LS_000001_{:04}\n", a, y(a), b, y(b),
                        30 + 1e-4 * a, i + 2);
  }
  text += " quit\n well\n discharge\n";
  for (int i = 0; i < wells; ++i) {
    text +=
        fmt::format("  {:.7E} {:.7E} 2.0E+02 2.0E-01 WL_{:06}\n", 500.0 + 9000.0 * i / wells, 2500.0, i + 1);
  }
  return text + " quit\n stop\n";
}

void ParseDeck(benchmark::State& state) {
  const std::string text = River(static_cast<int>(state.range(0)), 10);
  for (auto _ : state) benchmark::DoNotOptimize(vadox1::ParseDeck(text));
  state.counters["lines/s"] =
      benchmark::Counter(static_cast<double>(state.range(0)), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(ParseDeck)->Arg(5000)->Arg(50000)->Unit(benchmark::kMillisecond);

void SaveAndLoad(benchmark::State& state) {
  vadox1::SavedSolution saved;
  saved.model = vadox1::ParseDeck(River(static_cast<int>(state.range(0)), 10)).model;
  saved.state.resize(static_cast<std::size_t>(state.range(0)) * 64);
  for (auto _ : state) benchmark::DoNotOptimize(vadox1::UnpackSolution(vadox1::PackSolution(saved)));
}
BENCHMARK(SaveAndLoad)->Arg(5000)->Arg(50000)->Unit(benchmark::kMillisecond);

void Contour(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  contour::Grid grid{n, n, 0.0, 1.0, 0.0, 1.0, {}};
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < n; ++i) grid.values.push_back(std::sin(12.0 * i / n) * std::cos(9.0 * j / n));
  }
  for (auto _ : state) {
    std::string text;
    contour::TraceContours(grid, {-1.0, 0.05, 1.0}, [&](double level, const contour::Polyline& line) {
      contour::AppendContour(text, level, line);
    });
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(Contour)->Arg(200)->Arg(800)->Unit(benchmark::kMillisecond);

/// One solved model for grid and paths.
const aem::Solution& Solved() {
  static const aem::Solution solution = [] {
    aem::Solution made(vadox1::ParseDeck(River(60, 10)).model);
    made.Iterate(1);
    return made;
  }();
  return solution;
}

void HeadGrid(benchmark::State& state) {
  const vadox1::GridShape shape = vadox1::ShapeGrid(Solved().GetModel().layout, 50);
  for (auto _ : state) {
    benchmark::DoNotOptimize(vadox1::GridHeads(Solved(), shape, [](double) { return true; }));
  }
  state.counters["nodes/s"] =
      benchmark::Counter(static_cast<double>(shape.nodes()), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(HeadGrid)->Unit(benchmark::kMillisecond)->UseRealTime();

void TenYearsBackward(benchmark::State& state) {
  const aem::SolutionField field(Solved());
  std::vector<aem::PathStart> starts;
  for (const aem::TraceWell& well : field.Wells().wells()) {
    for (const aem::PathStart& start : aem::StartsAround(well, 20, 0.0)) starts.push_back(start);
  }
  aem::TraceOptions options;
  options.longest_time = 3650.0;
  options.window = Solved().GetModel().layout;
  options.step = 0.004 * std::hypot(1e4, 1e4);
  for (auto _ : state) benchmark::DoNotOptimize(aem::TracePaths(field, starts, options));
  state.counters["paths/s"] =
      benchmark::Counter(static_cast<double>(starts.size()), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(TenYearsBackward)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
