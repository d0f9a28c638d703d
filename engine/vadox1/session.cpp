#include "vadox1/session.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "files/output_file.h"
#include "files/text_lines.h"
#include "vadox1/extraction.h"
#include "vadox1/grid_file.h"
#include "vadox1/listing.h"
#include "vadox1/run.h"
#include "vadox1/solution_file.h"

namespace vadox1 {

void TellProgress(int percent, const std::string& text) {
  std::printf("PROGRESS %d %s\n", percent, text.c_str());
  std::fflush(stdout);
}

namespace {

/// How long commands take beside each other, for the progress.
struct WorkWeight {
  double operator()(const SolveCommand&) const { return 60.0; }
  double operator()(const GridCommand&) const { return 20.0; }
  double operator()(const TraceCommand&) const { return 20.0; }
  double operator()(const ZonesCommand&) const { return 60.0; }
  double operator()(const ExtractCommand&) const { return 4.0; }
  double operator()(const SaveCommand&) const { return 1.0; }
  double operator()(const LoadCommand&) const { return 4.0; }
  template <class Other>
  double operator()(const Other&) const {
    return 0.0;
  }
};

double WorkOf(const Action& action) {
  return std::visit(WorkWeight{}, action);
}

}  // namespace

Session::Session(Deck deck, Logs& logs, std::string deck_name)
    : deck_(std::move(deck)), logs_(logs), deck_name_(std::move(deck_name)), layout_(deck_.model.layout) {}

void Session::Run() {
  for (const aem::Finding& finding : deck_.findings) logs_.Report(finding, true);
  work_all_ = 1e-9;
  for (const Command& command : deck_.commands) work_all_ += WorkOf(command.action);
  for (const Command& command : deck_.commands) {
    work_now_ = WorkOf(command.action);
    std::visit([this](const auto& action) { Do(action); }, command.action);
    work_done_ += work_now_;
  }
}

void Session::Progress(double share_of_command, const std::string& text) {
  if (interrupted.load()) throw Interrupted();
  const double done = work_done_ + work_now_ * std::clamp(share_of_command, 0.0, 1.0);
  const int percent = std::max(last_percent_, static_cast<int>(100.0 * done / work_all_));
  if (percent == last_percent_ && text == last_text_) return;
  last_percent_ = percent;
  last_text_ = text;
  TellProgress(percent, text);
}

// --- model and solution ---

void Session::Build(aem::Model model) {
  solution_.emplace(std::move(model));
  reported_ = 0;
  ReportFindings();
  RefuseIfFatal();
}

void Session::ReportFindings() {
  const std::vector<aem::Finding>& findings = solution_->Findings();
  for (; reported_ < findings.size(); ++reported_) logs_.Report(findings[reported_], !from_file_);
}

void Session::RefuseIfFatal() {
  if (!solution_->Refused()) return;
  std::string text;
  int more = 0;
  constexpr int kShown = 8;
  int shown = 0;
  for (const aem::Finding& finding : solution_->Findings()) {
    if (finding.severity != aem::Severity::kFatal) continue;
    if (shown++ < kShown) {
      text += FindingText(finding, !from_file_) + "\n";
    } else {
      ++more;
    }
  }
  if (more > 0) text += fmt::format("and {} more; see the error log.\n", more);
  if (text.empty()) text = "The model cannot be solved.\n";
  throw Fatal(text, true);
}

aem::Solution& Session::Solved() {
  if (!solution_ || !solved_) {
    throw Fatal(
        "There is no solution yet: the deck asks for results before \"solve\" or \"load\". Solve first.");
  }
  return *solution_;
}

void Session::Do(const LogCommand& command) {
  if (command.log == Log::kError) RememberErrorLog(command.file);
  logs_.Name(command);
}
void Session::Do(const LayoutCommand& command) {
  layout_ = command.window;
}

void Session::Do(const TimeCommand& command) {
  time_ = command.days;
  if (solution_) solution_->SetTime(time_);
}

void Session::Do(const SolveCommand& command) {
  if (!solution_) {
    if (!deck_.describes_model)
      throw Fatal("The deck has nothing to solve: it describes no model and loads none.");
    Progress(0.0, "Preparing the model");
    deck_.model.layout = layout_;
    Build(deck_.model);
  }
  solution_->SetTime(time_);
  const auto progress = [this](const aem::Progress& step) {
    if (interrupted.load()) return false;
    const double share = (step.iteration - 1 + step.fraction) / std::max(step.asked, step.iteration);
    Progress(share, fmt::format("Solving, iteration {} of {}: {}", step.iteration,
                                std::max(step.asked, step.iteration), step.what));
    return true;
  };
  const aem::IterationReport report = solution_->Iterate(command.iterations, progress);
  ReportFindings();
  if (report.cancelled) throw Interrupted();
  RefuseIfFatal();
  solved_ = true;
  ReportSolve(report);
}

void Session::ReportSolve(const aem::IterationReport& report) {
  logs_.Message(
      fmt::format("{} unknowns, {} iterations, {}; largest change of head in the last one {:.3E}, "
                  "residual of the linear system {:.1E}",
                  solution_->Unknowns(), report.iterations, report.converged ? "converged" : "not converged",
                  report.change, report.residual));
  const aem::Checks checks = solution_->Check();
  logs_.Message(ChecksText(checks));
  std::string failed;
  for (const aem::Finding& finding : ChecksFindings(checks)) {
    logs_.Report(finding, false);
    if (finding.severity == aem::Severity::kFatal) failed += FindingText(finding, false) + "\n";
  }
  if (!failed.empty()) throw Fatal(failed, true);
  files::WriteWholeFile(deck_name_ + ".OUT", ListingText(*solution_, checks, deck_.origin));
}

void Session::Do(const SaveCommand& command) {
  Progress(0.0, "Saving the solution");
  const aem::Solution& solution = Solved();
  files::WriteWholeFile(command.file,
                        PackSolution({deck_.origin, time_, solution.GetModel(), solution.SaveState()}));
}

void Session::Do(const LoadCommand& command) {
  Progress(0.0, "Loading the solution");
  SavedSolution saved;
  try {
    saved = UnpackSolution(files::ReadWholeFile(command.file));
  } catch (const SolutionFileError& error) {
    throw Fatal(fmt::format("The saved solution \"{}\" {}.", command.file, error.what()));
  } catch (const files::FileError& error) {
    throw Fatal(
        fmt::format("{} Solve the model first: there is no saved solution to go on from.", error.what()));
  }
  deck_.origin = saved.origin;
  if (!layout_.set) layout_ = saved.model.layout;
  from_file_ = true;
  Build(std::move(saved.model));
  if (!solution_->LoadState(saved.state)) {
    throw Fatal(fmt::format("The saved solution \"{}\" does not fit its model. Solve the model again.",
                            command.file));
  }
  time_ = saved.time;
  solution_->SetTime(time_);
  solved_ = true;
}

// --- outputs ---

aem::Window Session::WindowOr(const aem::Window& window, const char* command) const {
  if (window.set) return window;
  if (layout_.set) return layout_;
  throw Fatal(fmt::format("\"{}\" needs a window: give it one, or a layout window before it.", command));
}

void Session::Do(const ExtractCommand& command) {
  Progress(0.0, "Extracting results");
  const aem::Solution& solution = Solved();
  if (command.file.empty())
    throw Fatal("\"extract\" names no file. Write \"file\" and a name into its block.");
  std::vector<aem::Finding> findings;
  const std::string origin = fmt::format("* Origin {:.15g} {:.15g}\r\n", deck_.origin.x, deck_.origin.y);
  files::WriteWholeFile(command.file, origin + ExtractionText(solution, command, findings));
  for (const aem::Finding& finding : findings) logs_.Report(finding, true);
}

void Session::Do(const GridCommand& command) {
  const aem::Solution& solution = Solved();
  if (command.columns < 2) {
    // What an earlier run left must not pass as this one's.
    std::remove(command.file.c_str());
    logs_.Message(fmt::format("Note: a grid of {} columns is none: no heads were gridded.", command.columns));
    return;
  }
  const GridShape shape = ShapeGrid(WindowOr(command.window, "grid"), command.columns);
  if (shape.rows == 0) {
    throw Fatal(
        fmt::format("A grid of {} columns over this window has more than {:.0f} nodes. Choose a coarser one.",
                    command.columns, kMostNodes));
  }
  const std::string text = fmt::format("Grid of {} x {} heads", shape.columns, shape.rows);
  const std::vector<double> heads = GridHeads(solution, shape, [&](double share) {
    Progress(share, text);
    return true;
  });
  files::OutputFile out(command.file);
  WriteGrid(shape, heads, [&](std::string_view piece) { out.Write(piece); });
  out.Commit();
}

}  // namespace vadox1
