// Exports of a million path points and imports of 20,000 test points.  To be held: 5 s and 200 MB; 2 s.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdio>
#include <string>

#include "core/command.h"
#include "exchange/dxf_export.h"
#include "exchange/shape_export.h"
#include "exchange/surfer_export.h"
#include "exchange/table_exchange.h"
#include "solver/result_files.h"
#include "support/test_project.h"

namespace ormel {
namespace {

double MegabytesAtMost() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

/// A thousand paths of a thousand points.
struct Paths {
  test::TestProject project;
  Paths() {
    project.ormel.solution.ValidSolution = true;
    std::string text;
    char line[128];
    for (int path = 0; path < 1000; ++path) {
      text += "START 0 0 0 0 point, forward\r\n";
      for (int i = 0; i < 1000; ++i) {
        std::snprintf(line, sizeof line, "      %13.4f %13.4f %13.4f %13.4f %13.4f\r\n", 1.5 * i, 7.25 * path,
                      50.0 - 0.01 * i, 1.25 * i, 101.0);
        text += line;
      }
      text += "END   boundary\r\n";
    }
    test::WriteAll(project.dir / "town.PTH", text);
  }
  void Report(benchmark::State& state) const {
    state.SetItemsProcessed(state.iterations() * 1'000'000);
    state.counters["MB"] = MegabytesAtMost();
  }
};

/// With the reading of the file.
template <class Write>
void Run(benchmark::State& state, const Write& write) {
  Paths paths;
  for (auto _ : state) {
    ResultFilesOf(paths.project.ormel).Clear();
    write(paths.project.ormel, paths.project.dir / "out");
  }
  paths.Report(state);
}

void PathsToShapefile(benchmark::State& state) {
  Run(state, [](Ormel& ormel, const std::string& out) {
    WriteShapes(ormel, *FindShapeKind("pathlines"), {}, out + ".shp");
  });
}
BENCHMARK(PathsToShapefile)->Unit(benchmark::kMillisecond)->Iterations(3);

void PathsToDxf(benchmark::State& state) {
  Run(state, [](Ormel& ormel, const std::string& out) {
    WriteDxf(ormel, VectorMode::kPathlines, {}, out + ".dxf");
  });
}
BENCHMARK(PathsToDxf)->Unit(benchmark::kMillisecond)->Iterations(3);

void PathsToBoundaryLines(benchmark::State& state) {
  Run(state, [](Ormel& ormel, const std::string& out) {
    WriteBoundaryLines(ormel, VectorMode::kPathlines, out + ".bln");
  });
}
BENCHMARK(PathsToBoundaryLines)->Unit(benchmark::kMillisecond)->Iterations(3);

void TestPointsFromTable(benchmark::State& state) {
  std::string text;
  for (int i = 0; i < 20'000; ++i)
    text += std::to_string(i % 200 * 25) + "," + std::to_string(i / 200 * 25) + ",101.5,TP " +
            std::to_string(i) + "\r\n";
  for (auto _ : state) {
    state.PauseTiming();
    test::TestProject project;
    project.ormel.gui.VertexTolerance = 0.01;
    test::WriteAll(project.dir / "in.tp", text);
    state.ResumeTiming();
    RunCommand(project.ormel, "Import", [&] { ToolsImportTP(project.ormel, project.dir / "in.tp"); });
    if (project.ormel.db().RowCount("TestPoints") != 20'000) state.SkipWithError("rows are missing");
  }
}
BENCHMARK(TestPointsFromTable)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace ormel
