#include "aem/trace.h"

#include <algorithm>
#include <complex>
#include <mutex>
#include <numbers>

#include "aem/parallel.h"
#include "aem/trace_path.h"

namespace aem {

using detail::PathTracer;
using detail::Stopped;

const char* PathEndName(PathEnd end) {
  constexpr const char* kNames[kPathEnds] = {"time reached", "well",       "surface water",
                                             "boundary",     "window",     "water table",
                                             "dry ground",   "stagnation", "ignored region"};
  return kNames[static_cast<int>(end)];
}

Path TracePath(const TraceField& field, const PathStart& start, const TraceOptions& options) {
  return PathTracer(field, start, options, nullptr).Run();
}

std::vector<Path> TracePaths(const TraceField& field, std::span<const PathStart> starts,
                             const TraceOptions& options, const std::function<bool(std::size_t)>& progress) {
  std::vector<Path> paths(starts.size());
  std::atomic<std::size_t> next{0}, done{0};
  std::atomic<bool> stop{false};
  std::mutex reporting;
  const auto work = [&] {
    while (!stop.load() && !Stopped(options.stop)) {
      const std::size_t index = next.fetch_add(1);
      if (index >= starts.size()) return;
      paths[index] = PathTracer(field, starts[index], options, &stop).Run();
      const std::size_t finished = done.fetch_add(1) + 1;
      if (!progress) continue;
      const std::lock_guard lock(reporting);
      if (!progress(finished)) stop.store(true);
    }
  };
  const auto wanted = std::size_t(detail::ThreadCount(options.threads));
  detail::RunOnThreads(int(std::min(wanted, starts.size())), &stop, work);
  if (stop.load() || Stopped(options.stop)) paths.clear();
  return paths;
}

std::vector<PathStart> StartsAround(const TraceWell& well, int particles, double elevation) {
  std::vector<PathStart> starts;
  for (int i = 0; i < particles; ++i) {
    const double angle = 2.0 * std::numbers::pi * i / particles;
    // A hair outside of the rim, where the flow field is that of the aquifer.
    starts.push_back(
        {well.at + std::polar(well.radius * (1.0 + 1e-7), angle), elevation, well.discharge < 0.0});
  }
  return starts;
}

}  // namespace aem
