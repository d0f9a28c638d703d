// Deck writer and loader on a model of 2,000 wells and 2,000 line-sinks, and the readers of large files.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "solver/contour_file.h"
#include "solver/deck_labels.h"
#include "solver/element_deck.h"
#include "solver/extents.h"
#include "solver/grid_file.h"
#include "solver/path_file.h"
#include "solver/result_loader.h"
#include "solver/result_rows.h"
#include "solver/text_sink.h"
#include "support/test_project.h"
#include "text/files.h"
#include "text/masks.h"

namespace ormel {
namespace {

using test::TempDir;
using test::TestProject;
using test::WriteAll;

/// `count` wells, and line-sinks in strings of 20 segments.
struct LargeProject : TestProject {
  explicit LargeProject(int count) {
    Transaction together(ormel.db());
    BulkInsert vertices(ormel.db(), "Vertices", {"VID", "PID", "Seq", "X", "Y"});
    BulkInsert wells(ormel.db(), "Wells", {"VID", "Label", "Head", "Radius"});
    for (int i = 1; i <= count; ++i) {
      vertices.Row(i, -1, -1, 10.0 * i, 7.0 * (i % 100));
      wells.Row(i, "Well " + std::to_string(i), 100.0 + i, 0.3);
    }
    constexpr int kSegments = 20;
    BulkInsert strings(ormel.db(), "LinesinkStrings", {"PID", "Label", "StartingHead", "EndingHead"});
    int vid = count;
    for (int pid = 1; pid <= count / kSegments; ++pid) {
      strings.Row(pid, "River " + std::to_string(pid), 30.0, 20.0);
      for (int k = 0; k <= kSegments; ++k) vertices.Row(++vid, pid, 1 + 100 * k, 25.0 * k, 40.0 * pid);
    }
  }
  void WriteDeck() {
    TextFileWriter deck(dir / "deck.DAT");
    FileSink sink(deck);
    const SolverInput input = ReadSolverInput(ormel);
    ToolsWriteVadoxElements(input, sink, false);
    SeedResultRows(ormel.db(), input);
    deck.Commit();
  }
  void WriteExtraction(int count) {
    std::string text = "! discharge specified wells\r\n";
    for (int i = 1; i <= count; ++i)
      text += " 1234.567891, 2345.678912, .3, 101.5, 25.12345678, " + VertexLabel("WL_", i) + "\r\n";
    text += "! head specified line sinks\r\n";
    for (int pid = 1; pid <= count / 20; ++pid)
      for (int k = 1; k <= 20; ++k)
        text += " 1.5, 2.5, 3.5, 4.5, 29.5, 29.49999999, 12.25, 1, 2, 3, 0, 0, 1E-9, " +
                SegmentLabel("LS_", pid, 1 + 100 * k) + "\r\n";
    WriteAll(dir / "town.XTR", text);
  }
};

void BM_WriteDeck(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  LargeProject p(count);
  ModelCheckExtents(p.ormel, false, false);
  for (auto _ : state) p.WriteDeck();
  state.SetComplexityN(count);
}
BENCHMARK(BM_WriteDeck)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->Arg(4000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

void BM_LoadResults(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  LargeProject p(count);
  ModelCheckExtents(p.ormel, false, false);
  p.WriteDeck();
  p.WriteExtraction(count);
  for (auto _ : state) {
    const LoadReport report = ModelLoadVadoxResults(p.ormel);
    if (report.records != static_cast<std::size_t>(2 * count)) state.SkipWithError("records are missing");
  }
  state.SetComplexityN(count);
}
BENCHMARK(BM_LoadResults)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->Arg(4000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

constexpr std::size_t kLargeFile = 100U << 20U;

std::string Repeat(const std::string& block) {
  std::string text;
  text.reserve(kLargeFile + block.size());
  while (text.size() < kLargeFile) text += block;
  return text;
}

void BM_ReadContours(benchmark::State& state) {
  const TempDir dir;
  std::string block = "LEVEL 101.5\r\n";
  for (int i = 0; i < 500; ++i) block += "         12345.678901 +2345678.901234\r\n";
  WriteAll(dir / "a.CTR", Repeat(block));
  for (auto _ : state) {
    std::size_t points = 0;
    if (ReadContourFile(dir / "a.CTR", [&](const ContourLine& line) { points += line.points.size(); }))
      state.SkipWithError("damaged");
    benchmark::DoNotOptimize(points);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLargeFile));
}
BENCHMARK(BM_ReadContours)->Unit(benchmark::kMillisecond);

void BM_ReadPaths(benchmark::State& state) {
  const TempDir dir;
  std::string block = "START 1 2 3 4\r\n";
  for (int i = 0; i < 500; ++i)
    block += "      1.2345678E+03 2.3456789E+03 1.2345678E+01 3.6512345E+02 2.1234567E+01\r\n";
  WriteAll(dir / "a.PTH", Repeat(block + "END window\r\n"));
  for (auto _ : state) {
    std::size_t points = 0;
    if (ReadPathFile(dir / "a.PTH", [&](const Pathline& line) { points += line.points.size(); }))
      state.SkipWithError("damaged");
    benchmark::DoNotOptimize(points);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLargeFile));
}
BENCHMARK(BM_ReadPaths)->Unit(benchmark::kMillisecond);

void BM_ReadGrid(benchmark::State& state) {
  const TempDir dir;
  constexpr int kColumns = 5000;
  constexpr int kRows = 1900;
  std::string text = "DSAA\r\n5000 1900\r\n0 1\r\n0 1\r\n0 1\r\n";
  std::string row;
  for (int i = 0; i < kColumns; ++i) row += i % 10 == 9 ? "25.1234567\r\n" : "25.1234567 ";
  for (int j = 0; j < kRows; ++j) text += row;
  WriteAll(dir / "a.GRD", text);
  for (auto _ : state) {
    double sum = 0.0;
    if (ReadGridFile(
            dir / "a.GRD", [](const GridHeader&) {},
            [&](std::size_t, std::span<const double> values) { sum += values.back(); }))
      state.SkipWithError("damaged");
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_ReadGrid)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ormel
