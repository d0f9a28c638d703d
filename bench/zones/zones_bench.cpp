// Capture zones of 2, 5 and 10 years: of six wells in a small model, and of a hundred in one of 5,000
// line-sinks, on all cores; the solve is not counted.
#include <benchmark/benchmark.h>

#include <vector>

#include "aem/rivers.h"
#include "aem/solution.h"
#include "zones/zone.h"

namespace {

/// Arguments: line-sinks, wells.
void Outline(benchmark::State& state) {
  aem::Model model = aem_bench::Rivers(static_cast<int>(state.range(0)));
  aem_bench::AddWells(&model, static_cast<int>(state.range(1)));
  aem::Solution solution(model);
  solution.Iterate(1);
  solution.PrepareManyPoints();
  const aem::SolutionField field(solution);
  const zones::PlanField plan(field, 0.0);
  std::vector<zones::Source> sources;
  for (const aem::TraceWell& well : field.Wells().wells())
    sources.push_back({well.at, well.radius, well.discharge, well.label});
  const std::vector<double> times{730.0, 1825.0, 3650.0};
  int tracks = 0, refused = 0;
  double worst = 0.0;
  for (auto _ : state) {
    tracks = refused = 0;
    for (const zones::WellZones& well : zones::OutlineZones(plan, sources, times, {})) {
      tracks += well.tracks;
      refused += well.failure.empty() ? 0 : 1;
      for (const zones::Zone& zone : well.zones) worst = std::max(worst, std::abs(zone.balance));
    }
  }
  state.counters["tracks"] = tracks;
  state.counters["refused"] = refused;
  state.counters["balance"] = worst;
}
BENCHMARK(Outline)
    ->ArgNames({"line-sinks", "wells"})
    ->Args({100, 6})
    ->Args({5000, 100})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
