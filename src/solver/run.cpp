#include "solver/run.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "core/command.h"
#include "core/ormel.h"
#include "core/project.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "solver/extents.h"
#include "solver/outside_programs.h"
#include "solver/solve_state.h"
#include "solver/text_sink.h"
#include "store/database.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr const char* kJournal = "_RUN.JNL";
constexpr const char* kLock = "_RUN.LCK";

std::string JournalOf(const Ormel& ormel) {
  return JoinPath(ormel.project.OrmelBasePath, kJournal);
}

std::shared_ptr<void> LockFolder(Ormel& ormel) {
  return ormel.processes().Lock(JoinPath(ormel.project.OrmelBasePath, kLock));
}

/// Waits for another program's run in the same folder: logs, decks and messages have names that all share.
/// Null when the user gives up.
std::shared_ptr<void> WaitForFolder(Ormel& ormel) {
  constexpr std::chrono::milliseconds kPause{50};
  std::shared_ptr<void> lock = LockFolder(ormel);
  if (lock) return lock;
  const PleaseWait wait(ormel, "Waiting for another run in the model folder...");
  while (!lock && !ormel.ui().CancelRequested()) {
    ormel.ui().Progress(-1.0, "");
    std::this_thread::sleep_for(kPause);
    lock = LockFolder(ormel);
  }
  return lock;
}

/// What a program that was killed while it wrote a file of a run has left.
void ClearTemporaryFiles(const Ormel& ormel, const std::vector<RunFile>& files) {
  std::vector<std::string> stems{ormel.project.OrmelBaseName, "REGRID", "_INSPECT", "_TRACE", "_RUN"};
  for (const RunFile& file : files) stems.push_back(BaseName(file.path));
  ClearTemporariesOf(ormel.project.OrmelBasePath, stems);
}

class Run {
 public:
  Run(Ormel& ormel, const RunPlan& plan) : ormel_(ormel), plan_(plan), before_(ormel) {}

  RunOutcome Go() {
    const std::shared_ptr<void> lock = WaitForFolder(ormel_);
    if (!lock) return {RunEnd::kCancelled, {}, {}};
    KeptFiles::Recover(JournalOf(ormel_));  // of a run of another program that was interrupted
    if (plan_.begin && !plan_.begin()) return {RunEnd::kGivenUp, {}, {}};
    CommitSoFar(ormel_);  // what the user has done stays whatever becomes of the run
    rows_.emplace(ormel_.db());
    try {
      outcome_.end = Steps();
    } catch (...) {
      Undo();
      throw;
    }
    if (outcome_.end == RunEnd::kDone)
      Keep();
    else
      Undo();
    return std::move(outcome_);
  }

 private:
  RunEnd Steps() {
    RemoveWorkLinks(ormel_, BaseName(plan_.deck));
    if (!plan_.files.empty()) kept_.Keep(JournalOf(ormel_), plan_.files);
    for (const std::string& path : plan_.scratch) DeleteTolerantly(path);
    for (const char* name : {"VADOX1.INI", "VADOX.OPS"}) DeleteTolerantly(ModelFile(ormel_, name));
    if (!WriteDeck()) return RunEnd::kGivenUp;
    noexecutable(ormel_, kSolverProgram);
    const int size = plan_.size_number > 0 ? plan_.size_number : ModelGetSize(ormel_, false);
    outcome_.process = RunSolver(ormel_, size, plan_.argument, plan_.wait_text);
    if (outcome_.process.cancelled) return RunEnd::kCancelled;
    if (!outcome_.process.started) return RunEnd::kNotStarted;
    if (TellFatalStop(ormel_, outcome_.process, &outcome_.culprit) || !ResultsStand())
      return RunEnd::kStopped;
    return plan_.accept ? plan_.accept() : RunEnd::kDone;
  }

  bool WriteDeck() {
    std::optional<PleaseWait> wait;
    if (!plan_.writing_text.empty()) wait.emplace(ormel_, plan_.writing_text);
    TextFileWriter file(JoinPath(ormel_.project.OrmelBasePath, plan_.deck));
    FileSink deck(file);
    const bool goes_on = plan_.write(deck);
    file.Commit();
    return goes_on;
  }

  bool ResultsStand() {
    if (plan_.results.empty() || FileExists(plan_.results)) return true;
    Inform(ormel_, "Fatal execution error",
           Lines({std::string(kSolverProgram) + " ended without its results file", plan_.results,
                  "No results were loaded."}),
           Icon::kStop);
    return false;
  }

  void Keep() {
    kept_.Committing();
    rows_->Commit();
    rows_.reset();
    CommitSoFar(ormel_);
    if (plan_.record) plan_.record();
    kept_.Finish();
  }

  void Undo() {
    rows_->Rollback();
    rows_.reset();
    const bool words = outcome_.end == RunEnd::kStopped || outcome_.end == RunEnd::kRefused;
    kept_.Restore(!words);
    DeleteTolerantly(ModelFile(ormel_, "VADOX.OPS"));
    ClearTemporaryFiles(ormel_, plan_.files);  // of a solver that had to be killed
    before_.Restore(ormel_);
  }

  Ormel& ormel_;
  const RunPlan& plan_;
  const StateBeforeRun before_;
  std::optional<Transaction> rows_;
  KeptFiles kept_;
  RunOutcome outcome_{RunEnd::kGivenUp, {}, {}};
};

}  // namespace

RunOutcome RunBy(Ormel& ormel, const RunPlan& plan) {
  if (Viewing(ormel)) {
    Inform(
        ormel, kProgramTitle,
        "The project is open for viewing only: a run would replace the model files of who works on it.  Make "
        "a duplicate of it first.",
        Icon::kWarning);
    return {RunEnd::kGivenUp, {}};
  }
  return Run(ormel, plan).Go();
}

bool TakeBackInterruptedRun(Ormel& ormel) {
  const std::string journal = JournalOf(ormel);
  const std::shared_ptr<void> lock = LockFolder(ormel);
  if (!lock) return false;
  ClearTemporaryFiles(ormel, {});
  return KeptFiles::Recover(journal);
}

}  // namespace ormel
