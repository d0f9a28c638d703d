// A map of 2,000 wells, 2,000 strings of line-sinks, 500 domains, 300 contours and 1,000 pathlines is drawn
// anew in under 100 ms once its files are in memory; panning reads no file.  Here without the painting:
// bench_qtdevice measures the same with it.
#include <benchmark/benchmark.h>

#include "solver/result_files.h"

#include "bench_device.h"
#include "solver/result_files.h"
#include "town.h"
#include "view/mouse.h"

namespace ormel {
namespace {

using BenchTown = Town<BenchSurface>;

BenchTown& TheTown() {
  static BenchTown town;
  return town;
}

/// The picture alone, as a command that redraws in place sees it.
void RedrawTown(benchmark::State& state) {
  BenchTown& town = TheTown();
  const long reads = ormel::ResultFilesOf(town.ormel).reads();
  for (auto _ : state) town.map.Redraw();
  state.counters["calls"] = static_cast<double>(town.surface.device.calls);
  state.counters["points"] = static_cast<double>(town.surface.device.points);
  if (ormel::ResultFilesOf(town.ormel).reads() != reads)
    state.SkipWithError("a redraw read a result file again");
}
BENCHMARK(RedrawTown)->Unit(benchmark::kMillisecond);

/// Zoomed in tenfold: what lies outside costs little.
void RedrawTownClose(benchmark::State& state) {
  BenchTown& town = TheTown();
  const MapRect full = town.ormel.window.SolveWindow;
  town.ormel.window.SolveWindow = {4500.0, 5500.0, 5500.0, 4500.0};
  for (auto _ : state) town.map.Redraw();
  town.ormel.window.SolveWindow = full;
}
BENCHMARK(RedrawTownClose)->Unit(benchmark::kMillisecond);

/// A file of 100 MB: 2.6 million points of contours, or 1.3 million of pathlines.
std::string BigFile(const test::TempDir& folder, bool paths) {
  std::string block = paths ? "START\r\n" : "LEVEL 12.5\r\n";
  char line[120];
  for (int k = 0; k < 900; ++k) {
    if (paths)
      std::snprintf(line, sizeof line, "      %13.4f %13.4f %13.4f %13.4f %13.4f\r\n", 1000.0 + k * 1.37,
                    2000.0 - k * 0.73, 20.0, k * 18.25, 20.0);
    else
      std::snprintf(line, sizeof line, "      %14.4f%+14.4f\r\n", 1000.0 + k * 1.37, 2000.0 - k * 0.73);
    block += line;
  }
  if (paths) block += "END\r\n";
  std::string text;
  constexpr std::size_t kSize = 100000000;
  text.reserve(kSize + block.size());
  while (text.size() < kSize) text += block;
  const std::string name = folder / (paths ? "big.PTH" : "big.CTR");
  test::WriteAll(name, text);
  return name;
}

void ReadBigFile(benchmark::State& state) {
  BenchTown& town = TheTown();
  const bool paths = state.range(0) != 0;
  state.SetLabel(paths ? "pathlines" : "contours");
  const test::TempDir folder;
  const std::string name = BigFile(folder, paths);
  for (auto _ : state) {
    ResultFiles files;
    const std::size_t points = paths ? files.Paths(town.ormel, name)->points.size()
                                     : files.Contours(town.ormel, name)->points.size();
    if (points < 1000000) state.SkipWithError("the file was not read to its end");
  }
}
BENCHMARK(ReadBigFile)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// The pointer over the map, and with a rubber line behind it.
void MoveThePointer(benchmark::State& state) {
  BenchTown& town = TheTown();
  town.ormel.mouse.MouseMode = state.range(0) != 0 ? MouseMode::kDigitize : MouseMode::kSelect;
  town.ormel.mouse.MouseElement = state.range(0) != 0 ? Element::kLinesink : Element::kNone;
  town.ormel.mouse.LineInProgress = state.range(0) != 0;
  int step = 0;
  for (auto _ : state) {
    step = (step + 7) % 1000;
    Map_MouseMove(town.map, MouseButton::kNone, 0, {step, 1000 - step});
  }
  town.map.ClearMouseMode();
}
BENCHMARK(MoveThePointer)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

/// A click in select mode on a full map.
void ClickOnTheMap(benchmark::State& state) {
  BenchTown& town = TheTown();
  int step = 0;
  for (auto _ : state) {
    step = (step + 7) % 1000;
    Map_MouseDown(town.map, MouseButton::kLeft, 0, {step, 1000 - step});
    Map_MouseUp(town.map, MouseButton::kLeft, 0, {step, 1000 - step});
  }
}
BENCHMARK(ClickOnTheMap)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ormel
