// The whole program from start to exit on a model of 100 elements: what a user waits for who changes a well.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

/// 60 line-sinks of a winding river, 10 wells, a domain of 20 vertices and a wall of 10; solved, extracted,
/// 40 columns of grid, 15 paths of ten years from each of two wells.
std::string Town() {
  std::string text =
      " error error.log\n yes\n message message.log\n yes\n echo nul\n picture off\n quit\n \n"
      " modelorigin 0 0 2\n title bench\n aquifer\n base 0\n permeability 20\n thickness 30\n porosity .2\n"
      " uniflow -.3 0\n reference 40000 40000 45\n quit\n layout\n window 0 0 10000 10000\n quit\n";
  text += " inhomogeneity\n transmissivity 60 -9999 -9999 -.001 .25 IN_000001_0000\n";
  for (int i = 0; i < 20; ++i) {
    const double turn = 0.05 * i * 2.0 * M_PI;
    text += fmt::format("  {:.6E} {:.6E} IN_000001_{:04}\n", 3000.0 + 900.0 * std::cos(turn),
                        2500.0 + 700.0 * std::sin(turn), i + 1);
  }
  text += " quit\n inhomogeneity\nslurry open 0 1 .2 -9999 HB_000002_0000\n";
  for (int i = 0; i < 10; ++i)
    text +=
        fmt::format("  {:.6E} {:.6E} HB_000002_{:04}\n", 6000.0 + 120.0 * i, 2000.0 + 12.0 * i * i, i + 1);
  text += " quit\n well\n discharge\n";
  for (int i = 0; i < 10; ++i)
    text += fmt::format("  {:.6E} {:.6E} 2.0E+02 2.0E-01 WL_{:06}\n", 500.0 + 900.0 * i, 3500.0, i + 1);
  text += " quit\n linesink\n head\n resistance 0\n width 0 0\n depth 0\n";
  const auto y = [](double x) { return 5500.0 + 900.0 * std::sin(x / 900.0); };
  for (int i = 0; i < 60; ++i) {
    const double a = 10000.0 * i / 60, b = 10000.0 * (i + 1) / 60;
    text += fmt::format("  {:.6E} {:.6E} {:.6E} {:.6E} {:.5E} LS_000003_{:04}\n", a, y(a), b, y(b),
                        30 + 1e-4 * a, i + 2);
  }
  return text +
         " quit\n time 0\n solve 2 0 0 1\n \n save bench\ny\n time 0\n extract\n file bench\n y\n well "
         "discharge\n"
         " linesink head\n inhomogeneity\n quit\n grid\n horizontalpoints 40\n go\n surfer bench\n y\n quit\n"
         " trace\n file bench\n y\n time 3652.5\n well 500 3500 0 15\n well 5000 3500 0 15\n go\n quit\n "
         "stop\n";
}

void StartToExit(benchmark::State& state) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "ormel_program_bench";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "bench.DAT") << Town();
  const std::string command =
      "cd '" + folder.string() + "' && '" ORMEL_BIN_DIR "/VADOX1.EXE' 1 bench > out.txt 2>&1";
  for (auto _ : state)
    if (std::system(command.c_str()) != 0) state.SkipWithError("the program ended with a failure");
  std::filesystem::remove_all(folder);
}
BENCHMARK(StartToExit)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
