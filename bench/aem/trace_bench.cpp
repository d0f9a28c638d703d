// Paths beside a grid over the same model, and their growth with the number of elements.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "aem/solution.h"
#include "aem/trace.h"
#include "rivers.h"

namespace {

using aem::Complex;

constexpr int kWells = 50, kParticles = 20;

/// 4,000 segments of given head: the model of the ratio.
const aem::Solution& Solved(bool direct) {
  static std::map<bool, std::unique_ptr<aem::Solution>> known;
  static std::vector<std::byte> state;
  std::unique_ptr<aem::Solution>& s = known[direct];
  if (s) return *s;
  aem::Model m = aem_bench::Rivers(4000);
  aem_bench::AddWells(&m, kWells);
  s = std::make_unique<aem::Solution>(m, aem::Options{.direct_summation = direct});
  if (state.empty()) {
    s->Iterate(1);
    state = s->SaveState();
  } else {
    s->LoadState(state);
  }
  return *s;
}

/// Rivers of given inflow 225 apart, so that growth adds area and changes nothing around a well: no solve.
const aem::Solution& Given(int segments) {
  static std::map<int, std::unique_ptr<aem::Solution>> known;
  std::unique_ptr<aem::Solution>& s = known[segments];
  if (s) return *s;
  aem::Model m = aem_bench::Rivers(segments);
  double sign = 1.0;
  for (aem::LineSinkString& string : m.line_sinks) {
    string.kind = aem::LineSinkKind::kDischarge;
    for (aem::LineSinkSegment& g : string.segments) g.value = 0.05 * (sign = -sign);
  }
  aem_bench::AddWells(&m, kWells);
  s = std::make_unique<aem::Solution>(m);
  return *s;
}

/// 1,000 backward paths of ten years from around the wells.
void Trace(benchmark::State& state, const aem::Solution& s) {
  const aem::SolutionField field(s);
  std::vector<aem::PathStart> starts;
  for (const aem::TraceWell& well : field.Wells().wells())
    for (const aem::PathStart& start : aem::StartsAround(well, kParticles, 1e30)) starts.push_back(start);
  aem::TraceOptions options;
  options.longest_time = 3652.5;
  options.step = 40.0;
  options.window = s.GetModel().layout;
  std::size_t points = 0;
  for (auto _ : state) {
    const std::vector<aem::Path> paths = aem::TracePaths(field, starts, options);
    points = 0;
    for (const aem::Path& path : paths) points += path.points.size();
  }
  state.counters["paths"] = double(starts.size());
  state.counters["points"] = double(points);
}

void TraceSolved(benchmark::State& state) {
  Trace(state, Solved(false));
}

void TraceGiven(benchmark::State& state) {
  Trace(state, Given(int(state.range(0))));
}

void Grid(benchmark::State& state) {
  const aem::Solution& s = Solved(state.range(0) == 1);
  std::vector<Complex> points;
  for (int i = 0; i < 200; ++i)
    for (int j = 0; j < 200; ++j) points.push_back({-4997.0 + 50.0 * i, -4999.0 + 50.0 * j});
  std::vector<aem::PointState> states(points.size());
  for (auto _ : state) s.Evaluate(points, states);
}

BENCHMARK(TraceSolved)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Grid)->ArgName("direct")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(TraceGiven)->Arg(5000)->Arg(15000)->Arg(50000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
