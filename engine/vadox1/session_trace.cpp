// The trace command: starts at points and around wells, paths, their file and the count of their ends.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <functional>
#include <span>
#include <utility>

#include "aem/trace.h"
#include "files/output_file.h"
#include "vadox1/path_file.h"
#include "vadox1/run.h"
#include "vadox1/session.h"

namespace vadox1 {
namespace {

/// Without a step of its own a trace takes this part of the window's diagonal.
constexpr double kDefaultStep = 0.004;
/// A step below this part of the diagonal only fills the disk.
constexpr double kLeastStep = 1e-7;

/// Paths in memory at once: a short step makes many points of each.
constexpr std::size_t kAtOnce = 64;

constexpr double kTop = 1e30;  ///< an elevation above every water table

double StepOf(const TraceCommand& command, const aem::Window& window, Logs& logs) {
  const double diagonal = std::hypot(window.right - window.left, window.top - window.bottom);
  const double standard = kDefaultStep * diagonal;
  if (command.step == 0.0)
    logs.Message(fmt::format("Note: the tracing step is 0: the standard one, {:.6g}, was used.", standard));
  const double step = command.step.value_or(0.0) == 0.0 ? standard : *command.step;
  if (step >= kLeastStep * diagonal) return step;
  logs.Error(fmt::format("The tracing step {:.6g} is too small for the window; {:.6g} was used instead.",
                         step, kLeastStep * diagonal));
  return kLeastStep * diagonal;
}

/// Paths of these starts.  `progress` may throw; an interrupt must not leave a worker thread by an exception.
std::vector<aem::Path> TraceSome(const aem::TraceField& field, std::span<const aem::PathStart> starts,
                                 const aem::TraceOptions& options,
                                 const std::function<void(std::size_t)>& progress) {
  std::exception_ptr stopped;
  std::vector<aem::Path> paths = aem::TracePaths(field, starts, options, [&](std::size_t done) {
    try {
      progress(done);
    } catch (...) {
      stopped = std::current_exception();
    }
    return stopped == nullptr;
  });
  if (stopped) std::rethrow_exception(stopped);
  if (interrupted.load()) throw Interrupted();
  return paths;
}

}  // namespace

const aem::TraceWell* WellAt(const std::vector<aem::TraceWell>& wells, aem::Complex at) {
  const aem::TraceWell* nearest = nullptr;
  for (const aem::TraceWell& well : wells) {
    if (nearest == nullptr || std::abs(well.at - at) < std::abs(nearest->at - at)) nearest = &well;
  }
  if (nearest == nullptr) return nullptr;
  // The deck writes one place with different numbers of digits.
  const double tolerance = std::max({nearest->radius, 1e-5 * std::abs(at), 1e-3});
  return std::abs(nearest->at - at) <= tolerance ? nearest : nullptr;
}

struct Session::Starts {
  std::vector<aem::PathStart> starts;
  std::vector<std::string> reasons;
};

Session::Starts Session::CollectStarts(const TraceCommand& command) {
  Starts all;
  for (const PointStart& point : command.points) {
    all.starts.push_back({point.at, point.elevation.value_or(kTop), point.forward});
    all.reasons.emplace_back("point");
  }
  if (command.wells.empty()) return all;
  const aem::SolutionField field(*solution_);
  std::vector<aem::TraceWell> wells = field.Wells().wells();
  wells.insert(wells.end(), field.Disks().begin(), field.Disks().end());
  for (const WellStart& start : command.wells) {
    const aem::TraceWell* well = WellAt(wells, start.at);
    if (well == nullptr) {
      logs_.Report({aem::Severity::kWarning, "", start.line,
                    fmt::format("No well stands at {:.8g}, {:.8g}: its particles were left out.",
                                start.at.real(), start.at.imag())},
                   true);
      continue;
    }
    int number = 0;
    for (const aem::PathStart& particle : aem::StartsAround(*well, start.particles, start.elevation)) {
      all.starts.push_back(particle);
      all.reasons.push_back(
          fmt::format("well {}, particle {} of {}", well->label, ++number, start.particles));
    }
  }
  return all;
}

void Session::Do(const TraceCommand& command) {
  const aem::Solution& solution = Solved();
  if (command.time == 0.0) {
    files::WriteWholeFile(command.file, PathText({}));
    logs_.Message("Note: the longest travel time is 0: no paths were traced.");
    return;
  }
  const aem::Window window = WindowOr({}, "trace");
  Starts starts = CollectStarts(command);
  aem::TraceOptions options;
  options.longest_time = command.time;
  options.step = StepOf(command, window, logs_);
  options.window = window;
  options.stop = &interrupted;
  for (const BoundaryLine& line : command.boundaries) options.boundaries.push_back({line.from, line.to});

  const aem::SolutionField field(solution);
  const std::string text = fmt::format("Tracing {} paths", starts.starts.size());
  Progress(0.0, text);
  std::array<int, aem::kPathEnds> counts{};
  files::OutputFile out(command.file);
  if (starts.starts.empty()) out.Write(PathText({}));
  for (std::size_t begin = 0; begin < starts.starts.size(); begin += kAtOnce) {
    const std::size_t size = std::min(kAtOnce, starts.starts.size() - begin);
    std::vector<aem::Path> paths =
        TraceSome(field, std::span(starts.starts).subspan(begin, size), options, [&](std::size_t done) {
          Progress(static_cast<double>(begin + done) / static_cast<double>(starts.starts.size()), text);
        });
    std::vector<NamedPath> named(size);
    for (std::size_t i = 0; i < size; ++i) {
      ++counts[static_cast<std::size_t>(paths[i].end)];
      named[i] = {std::move(paths[i]), std::move(starts.reasons[begin + i])};
    }
    out.Write(PathText(named));
  }
  out.Commit();
  logs_.Message(fmt::format("{} paths traced into {}", starts.starts.size(), command.file));
  for (int end = 0; end < aem::kPathEnds; ++end) {
    const int count = counts[static_cast<std::size_t>(end)];
    if (count > 0) {
      logs_.Message(
          fmt::format("  ended by {}: {}", aem::PathEndName(static_cast<aem::PathEnd>(end)), count));
    }
  }
}

}  // namespace vadox1
