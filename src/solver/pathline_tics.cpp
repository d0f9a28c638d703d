#include "solver/pathline_tics.h"

#include <cmath>
#include <fstream>
#include <string>

#include "core/layers.h"
#include "core/ormel.h"
#include "core/project.h"
#include "core/run_files.h"
#include "core/status.h"
#include "solver/result_files.h"
#include "text/files.h"
#include "text/names.h"
#include "text/numbers.h"

namespace ormel {
namespace {

bool Inside(const MapRect* window, MapPoint p) {
  return window == nullptr ||
         (p.x >= window->x1 && p.x <= window->x2 && p.y >= window->y2 && p.y <= window->y1);
}

MapPoint Between(MapPoint a, MapPoint b, double part) {
  return {a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part};
}

/// Calls `step(i)` for each step from point i-1 to point i of every path, `start()` before each path.
template <class Start, class Step>
void WalkSteps(const PathSet& set, Start start, Step step) {
  for (const PathSet::Path& path : set.paths) {
    start();
    for (std::size_t i = path.first + 1; i < path.first + path.count; ++i) step(i);
  }
}

std::string TicText(const std::vector<Tic>& tics, bool with_multiple) {
  std::string text;
  for (const Tic& tic : tics) {
    std::string line = RawNumber(tic.at.x);
    PrintZoneTab(line);
    line += RawNumber(tic.at.y);
    if (with_multiple) {
      PrintZoneTab(line);
      line += RawNumber(static_cast<double>(tic.multiple));
    }
    text += line;
    text += "\r\n";
  }
  return text;
}

/// A scratch file that nobody reads back: written without waiting for the disk.
void WriteTicFile(Ormel& ormel, const char* name, const std::string& text) {
  if (Viewing(ormel)) return;
  const std::string file = JoinPath(ormel.project.OrmelBasePath, name);
  RemoveLink(file);
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << text;
  if (!out.flush()) Note(ormel, "Cannot write " + file);
}

}  // namespace

std::vector<Tic> TimeTics(const PathSet& set, double spacing, const MapRect* window, std::size_t most) {
  std::vector<Tic> tics;
  if (!(spacing > 0.0)) return tics;
  std::int64_t next = 1;
  const auto start = [&] { next = 1; };
  const auto step = [&](std::size_t i) {
    const double t0 = set.times[i - 1], t1 = set.times[i];
    if (!std::isfinite(t1) || t1 <= static_cast<double>(next) * spacing) return;
    if (!Inside(window, set.points[i])) {  // count on without drawing
      const double passed = std::ceil(t1 / spacing);
      if (passed < 9e15) next = static_cast<std::int64_t>(passed);
      return;
    }
    for (; t1 > static_cast<double>(next) * spacing && tics.size() < most; ++next) {
      const double t = static_cast<double>(next) * spacing;
      tics.push_back({Between(set.points[i - 1], set.points[i], t1 > t0 ? (t - t0) / (t1 - t0) : 0.0), next});
    }
  };
  WalkSteps(set, start, step);
  return tics;
}

std::vector<Tic> ElevationTics(const PathSet& set, double spacing, const MapRect* window, std::size_t most) {
  std::vector<Tic> tics;
  if (!(spacing > 0.0)) return tics;
  const auto step = [&](std::size_t i) {
    if (!Inside(window, set.points[i])) return;
    const double z0 = set.elevations[i - 1], z1 = set.elevations[i];
    const double below0 = std::floor(z0 / spacing), below1 = std::floor(z1 / spacing);
    if (!(std::abs(below0) < 9e15 && std::abs(below1) < 9e15)) return;
    auto from = static_cast<std::int64_t>(below0), to = static_cast<std::int64_t>(below1);
    const std::int64_t way = to > from ? 1 : -1;
    if (way > 0) {
      ++from;
      ++to;
    }
    for (std::int64_t k = from; k != to && tics.size() < most; k += way) {
      const double z = static_cast<double>(k) * spacing;
      tics.push_back({Between(set.points[i - 1], set.points[i], (z - z0) / (z1 - z0)), k, way > 0});
    }
  };
  WalkSteps(
      set, [] {}, step);
  return tics;
}

void WriteTicFiles(Ormel& ormel) {
  std::vector<Tic> times, elevations;
  const auto set =
      ormel.solution.ValidSolution
          ? ResultFilesOf(ormel).Paths(ormel, ResultFileName(ormel, ormel.project.OrmelBaseName, ".PTH"))
          : nullptr;
  if (set && ormel.layers.On(Layer::kTimeTics))
    times = TimeTics(*set, ormel.solution.TimeTicSpacing, nullptr, kMostTics);
  if (set && ormel.layers.On(Layer::kElevationTics))
    elevations = ElevationTics(*set, ormel.solution.ElevationTicSpacing, nullptr, kMostTics);
  WriteTicFile(ormel, "TICMARKST.TIC", TicText(times, false));
  WriteTicFile(ormel, "TICMARKSZ.TIC", TicText(elevations, true));
}

}  // namespace ormel
