// The bulk paths of the model: vertices of one string, wells with their rows, free places for imports.
// A time per item that stays the same as the count grows is what linear means here.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/ormel.h"
#include "core/project.h"
#include "document/document.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/database.h"
#include "store/recordset.h"
#include "store/schema.h"

namespace ormel {
namespace {

/// A new project in a file of its own, removed at the end.
class Project {
 public:
  Project() {
    std::filesystem::remove(path_);
    DBNewDatabase(path_, {});
    AttachProject(ormel, path_);
    LoadDataControls(ormel);
  }
  ~Project() {
    DetachProject(ormel);
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;
  Ormel ormel;

 private:
  std::string path_ = (std::filesystem::temp_directory_path() / "ormel_bench_model.orm").string();
};

void CountItems(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

void StringOfVertices(benchmark::State& state) {
  std::vector<MapPoint> points;
  for (std::int64_t i = 0; i < state.range(0); ++i) points.push_back({static_cast<double>(i), 0.5});
  for (auto _ : state) {
    state.PauseTiming();
    Project project;
    state.ResumeTiming();
    const Transaction transaction(project.ormel.db());
    benchmark::DoNotOptimize(AddPolygonWithVertices(project.ormel, false, points));
  }
  CountItems(state);
}
BENCHMARK(StringOfVertices)
    ->RangeMultiplier(4)
    ->Range(2500, 40000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

void WellsWithRows(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    Project project;
    project.ormel.gui.VertexTolerance = 0.01;
    state.ResumeTiming();
    const Transaction transaction(project.ormel.db());
    FreePlaces places(project.ormel);
    for (std::int64_t i = 0; i < state.range(0); ++i)
      StoreWell(project.ormel, {.Label = "W" + std::to_string(i)},
                places.Find({static_cast<double>(i % 1000), 0}));
  }
  CountItems(state);
}
BENCHMARK(WellsWithRows)->RangeMultiplier(4)->Range(500, 8000)->Unit(benchmark::kMillisecond)->Complexity();

void NearestOfMany(benchmark::State& state) {
  Project project;
  {
    const Transaction transaction(project.ormel.db());
    for (std::int64_t i = 0; i < state.range(0); ++i)
      ElemAddVertex(project.ormel, {static_cast<double>(i), 1.0}, kSinglePoint, 0);
  }
  project.ormel.selection.radius_squared = 100.0;
  for (auto _ : state) benchmark::DoNotOptimize(ElemFindVertex(project.ormel, {77.2, 0.0}));
  CountItems(state);
}

/// A click while the document's index stands: 200,000 vertices are to take less than 5 ms.
void NearestByIndex(benchmark::State& state) {
  Project project;
  Document document(project.ormel);
  {
    const Transaction transaction(project.ormel.db());
    for (std::int64_t i = 0; i < state.range(0); ++i)
      ElemAddVertex(project.ormel, {static_cast<double>(i * 7919 % 100003), static_cast<double>(i % 317)},
                    kSinglePoint, 0);
  }
  project.ormel.selection.radius_squared = 100.0;
  double x = 0.0;
  for (auto _ : state) benchmark::DoNotOptimize(ElemFindVertex(project.ormel, {x += 37.3, 100.0}));
}
BENCHMARK(NearestByIndex)->Arg(20000)->Arg(200000)->Unit(benchmark::kMicrosecond);

BENCHMARK(NearestOfMany)->RangeMultiplier(4)->Range(2500, 40000)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace
}  // namespace ormel
