#include "shell/results_log.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <system_error>

#include "analysis/report_numbers.h"
#include "analysis/solver_listing.h"
#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/quantities.h"
#include "core/run_files.h"
#include "document/kinds.h"
#include "model/selection.h"
#include "solver/solver_remarks.h"
#include "text/files.h"

namespace ormel {
namespace {

namespace fs = std::filesystem;

std::string SolutionFile(const Ormel& ormel) {
  return JoinPath(ormel.project.OrmelBasePath, ormel.project.OrmelBaseName) + ".XTR";
}

/// "2026-11-25 09:40", local time; empty where there is no file.
std::string WrittenAt(const std::string& path) {
  std::error_code error;
  const fs::file_time_type written = fs::last_write_time(path, error);
  if (error) return {};
  const auto age = fs::file_time_type::clock::now() - written;
  const std::time_t time = std::chrono::system_clock::to_time_t(
      std::chrono::system_clock::now() -
      std::chrono::duration_cast<std::chrono::system_clock::duration>(age));
  std::tm local{};
  if (localtime_r(&time, &local) == nullptr) return {};
  std::array<char, 32> text{};
  return std::string(text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local));
}

LogSection About(Ormel& ormel) {
  LogSection section{.title = "Solution", .lines = {}};
  const SolutionState& solution = ormel.solution;
  if (!solution.ValidSolution) {
    section.lines.push_back({.text = solution.solved
                                         ? "The results were taken from view: the model has changed. "
                                           "Solve it again."
                                         : "The model has not been solved.",
                             .value = {},
                             .place = {}});
    return section;
  }
  if (solution.OfOlderModel)
    section.lines.push_back(
        {.text = "Out of date: the model has changed since", .value = {}, .place = {}, .warning = true});
  else
    section.lines.push_back({.text = "Of the model as it stands", .value = {}, .place = {}});
  if (const std::string at = WrittenAt(SolutionFile(ormel)); !at.empty())
    section.lines.push_back({.text = "Solved", .value = at, .place = {}});
  section.lines.push_back({.text = "Model", .value = ormel.project.OrmelBaseName, .place = {}});
  return section;
}

LogSection Remarks(Ormel& ormel) {
  LogSection section{.title = "Solver's remarks", .lines = {}};
  for (const std::string& remark : SolverRemarks(ormel)) {
    LogLine line{.text = remark, .value = {}, .place = {}, .warning = true};
    WithUserLabels(ormel, remark, &line.place);
    section.lines.push_back(std::move(line));
  }
  return section;
}

LogSection Conditions(Ormel& ormel, const SolverListing& listing) {
  LogSection section{.title = "Largest errors of the conditions", .lines = {}};
  for (const ListedError& error : listing.errors) {
    LogLine line{
        .text = error.condition, .value = NumberFormat::Parse("s3")->Text(error.largest), .place = {}};
    if (!error.where.empty()) {
      line.text += " at " + UserLabel(ormel, error.where);
      WithUserLabels(ormel, error.where, &line.place);
    }
    section.lines.push_back(std::move(line));
  }
  return section;
}

LogSection Balance(Ormel& ormel, const SolverListing& listing) {
  LogSection section{.title = "Water balance (positive: leaves the aquifer)", .lines = {}};
  const std::string unit = " " + UnitOf(ormel, Quantity::kDischarge);
  constexpr std::size_t kTotals = 2;  // what is nothing is left out, but for sum and throughflow
  for (std::size_t i = 0; i < listing.balance.size(); ++i) {
    const ListedNumber& number = listing.balance[i];
    if (number.value == 0.0 && i + kTotals < listing.balance.size()) continue;
    section.lines.push_back(
        {.text = number.name, .value = NumberFormat::Parse("s4")->Text(number.value) + unit, .place = {}});
  }
  if (listing.balance_error) {
    constexpr double kFair = 0.01;
    section.lines.push_back({.text = "error over throughflow",
                             .value = NumberFormat::Parse("s2")->Text(*listing.balance_error * 100.0) + " %",
                             .place = {},
                             .warning = std::abs(*listing.balance_error) > kFair});
  }
  return section;
}

}  // namespace

std::vector<LogSection> ResultsLog(Ormel& ormel) {
  std::vector<LogSection> log;
  if (!ormel.project.ProjectOpen) return log;
  log.push_back(About(ormel));
  std::vector<LogSection> more{Remarks(ormel)};
  if (ormel.solution.ValidSolution) {
    const SolverListing listing = ReadListing(ormel);
    more.push_back(Conditions(ormel, listing));
    more.push_back(Balance(ormel, listing));
  }
  for (LogSection& section : more)
    if (!section.lines.empty()) log.push_back(std::move(section));
  return log;
}

std::string ResultsKey(const Ormel& ormel) {
  const SolutionState& solution = ormel.solution;
  if (!ormel.project.ProjectOpen) return {};
  std::string key = std::to_string(ormel.project.connections) + (solution.ValidSolution ? "V" : "-") +
                    (solution.OfOlderModel ? "O" : "-") + (solution.solved ? "S" : "-");
  for (const std::string& path : {SolutionFile(ormel), ModelFile(ormel, "ERROR.LOG")}) {
    std::error_code error;
    const fs::file_time_type written = fs::last_write_time(path, error);
    key += "," + (error ? std::string("none") : std::to_string(written.time_since_epoch().count()));
  }
  return key;
}

void ShowNamed(Ormel& ormel, const NamedElement& element) {
  if (element.vid < 0) return;
  RunCommand(ormel, "ShowNamed", [&] {
    SelectVertex(ormel, element.vid);
    const std::vector<ElementId> ids = SelectedElements(ormel);
    if (!ids.empty()) BringIntoView(ormel, ids.front());
  });
}

void BringIntoView(Ormel& ormel, const ElementId& id) {
  const std::vector<MapPoint> points = PointsOf(ormel, id);
  if (points.empty()) return;
  MapRect all{points[0].x, points[0].x, points[0].y, points[0].y};
  for (const MapPoint& at : points) {
    all.x1 = std::min(all.x1, at.x);
    all.x2 = std::max(all.x2, at.x);
    all.y1 = std::max(all.y1, at.y);
    all.y2 = std::min(all.y2, at.y);
  }
  const MapRect& window = ormel.window.SolveWindow;
  if (all.x1 > window.x1 && all.x2 < window.x2 && all.y1 < window.y1 && all.y2 > window.y2) return;
  constexpr double kRim = 1.25;
  const double scale =
      std::max({1.0, kRim * all.Width() / window.Width(), kRim * all.Height() / window.Height()});
  const double x = 0.5 * (all.x1 + all.x2), y = 0.5 * (all.y1 + all.y2);
  const double half_width = 0.5 * scale * window.Width(), half_height = 0.5 * scale * window.Height();
  ormel.view().ZoomActions(Zoom::kApplyWindow,
                           {x - half_width, x + half_width, y + half_height, y - half_height});
}

}  // namespace ormel
