#include "solver/driver.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/fingerprint.h"
#include "model/model_settings.h"
#include "model/model_values.h"
#include "model/validity.h"
#include "solver/deck_writer.h"
#include "solver/extents.h"
#include "solver/kept_files.h"
#include "solver/outside_programs.h"
#include "solver/result_loader.h"
#include "solver/run_deck.h"
#include "solver/solve_state.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr const char* kRegridDeck = "REGRID.DAT";
constexpr int kRecommendedIterations = 2;
constexpr double kMostIterations = 32767.0;  // the store keeps 16 bits

int IterationsOf(const std::string& text) {
  return static_cast<int>(std::clamp(std::trunc(Val(text)), 0.0, kMostIterations));
}

/// One run from its decision to its redraw.
class SolveRun {
 public:
  SolveRun(Ormel& ormel, const SolveRequest& request)
      : ormel_(ormel), request_(request), view_logs_(request.ViewLogs), before_(ormel) {}

  void Run() {
    ormel_.menus.Enable("RESULTS_TABLE", false);
    ormel_.menus.Enable("MODELRUNFILES", false);
    ormel_.view().ClearMouseMode();
    const std::optional<bool> is_new = Decide();
    if (!is_new) return;
    new_ = *is_new;
    // What the user has done so far stays whatever becomes of the run; the run's own rows do only when it
    // counts.
    CommitSoFar(ormel_);
    Transaction rows(ormel_.db());
    model_ = ReadModel(ormel_);
    if (!Prepare(rows)) {
      Undo(rows);
      return;
    }
    if (!RunPrograms(rows)) return;
    kept_.Finish();
    rows.Commit();
    Contours();
    ShowResults();
  }

 private:
  /// True for a new solution, false to use the saved one; nothing when the user cancels.
  std::optional<bool> Decide() {
    SolutionState& solution = ormel_.solution;
    if (request_.KeepSolution) return false;
    if (!solution.ValidSolution) return true;
    if (!FileExists(StemFile(ormel_, ".SOL"))) return false;
    if (request_.ContinueSolve) return false;
    if (!request_.AskFirst) return false;
    SolvePrompt prompt(ormel_);
    ormel_.ui().ShowForm(prompt);
    if (prompt.Choice() == SolveChoice::kCancel) return std::nullopt;
    if (prompt.Choice() == SolveChoice::kNew) return true;
    view_logs_ = false;
    return false;
  }

  void ClearDrawnFlags() {
    ormel_.solution.PathlinesValid = ormel_.solution.ContoursValid = ormel_.solution.GridValid = false;
  }

  /// What was drawn from another solution must not be taken for this one's, also by those who read the file.
  void SetDrawnFileAside(const char* extension, bool renewed) {
    if (new_ || request_.ContinueSolve)
      kept_.Delete(StemFile(ormel_, extension));
    else if (renewed)
      kept_.Replace(StemFile(ormel_, extension));
  }

  void SetFilesAside() {
    if (new_) {
      kept_.Delete(StemFile(ormel_, ".DAT"));
      kept_.Delete(StemFile(ormel_, ".SOL"));
      kept_.Delete(ModelFile(ormel_, "ERROR.LOG"));
      kept_.Delete(ModelFile(ormel_, "MESSAGE.LOG"));
    } else if (request_.ContinueSolve) {
      kept_.Copy(StemFile(ormel_, ".SOL"));
    }
    if (new_ || request_.ContinueSolve) {
      ClearDrawnFlags();
      ormel_.solution.solved.reset();
      ormel_.solution.traced_lines.clear();
    }
    kept_.Delete(StemFile(ormel_, ".XTR"));
    SetDrawnFileAside(".GRD", model_.CONTOURShow != 0);
    SetDrawnFileAside(".CTR", model_.CONTOURShow != 0);
    SetDrawnFileAside(".PTH", model_.TRACECompute != 0);
    DeleteTolerantly(ModelFile(ormel_, "VADOX1.INI"));
    DeleteTolerantly(ModelFile(ormel_, "VADOX.OPS"));
  }

  /// False when the user gives up.  A failure here has not run anything: all stays as it was.
  bool Prepare(Transaction& rows) {
    try {
      SetFilesAside();
      return WriteDeck();
    } catch (...) {
      Undo(rows);
      throw;
    }
  }

  /// False when the user gives up.
  bool WriteDeck() {
    const std::string& folder = ormel_.project.OrmelBasePath;
    const std::string name = new_ ? ormel_.project.OrmelBaseName + ".DAT" : std::string(kRegridDeck);
    TextFileWriter deck(JoinPath(folder, name));
    const bool regrid_log = request_.KeepSolution && !new_ && !request_.ContinueSolve;
    WriteRunHead(deck, regrid_log ? "regrid.log" : "message.log");
    if (new_) {
      ModelCheckExtents(ormel_, false, false);
      StoreModelOrigin(ormel_);
    } else {
      ModelRestoreModelOrigin(ormel_);
    }
    ormel_.window.solved = ormel_.window.model;
    if (new_) WriteModelSection(deck);
    WriteLayout(ormel_, deck);
    const bool goes_on = new_ ? WriteNewSolve(deck) : WriteReload(deck);
    if (goes_on) {
      WriteExtract(ormel_, deck);
      WriteGridAndTrace(deck);
      deck.Line(" stop");
    }
    deck.Commit();
    return goes_on;
  }

  void WriteModelSection(TextFileWriter& deck) {
    InvalidateSolution(ormel_, false, false);
    ToolsWriteVadoxElements(ormel_, deck, true, false);
    // The writer's own recommendation is left aside: the solver converges in two steps as a rule.
    if (kRecommendedIterations <= model_.SOLVERIterations) return;
    const auto answer = ormel_.ui().Ask(InputBox{"Warning",
                                                 Lines({"Your problem may require more iterations than you",
                                                        "have specified.  Ormel recommends that you use at",
                                                        "least the number of iterations Shown below.", "",
                                                        "Enter the number of iterations to be used:"}),
                                                 std::to_string(kRecommendedIterations)});
    model_.SOLVERIterations = std::max(1, IterationsOf(answer.value_or("")));
    ormel_.db().Execute("update Model set SOLVERIterations=?", {model_.SOLVERIterations});
  }

  bool WriteNewSolve(TextFileWriter& deck) {
    deck.Line(" time 0");
    WriteSolveAndSave(ormel_, deck, model_.SOLVERIterations);
    WriteSolutionTime(ormel_, deck);
    return true;
  }

  bool WriteReload(TextFileWriter& deck) {
    deck.Line(" load " + ormel_.project.OrmelBaseName);
    WriteSolutionTime(ormel_, deck);
    if (!request_.ContinueSolve) return true;
    const auto answer = ormel_.ui().Ask(InputBox{
        "Continue Solution", "Number of additional iterations:", std::to_string(model_.SOLVERIterations)});
    const int iterations = IterationsOf(answer.value_or(""));
    if (iterations < 1) return false;
    WriteSolveAndSave(ormel_, deck, iterations);
    return true;
  }

  void WriteGridAndTrace(TextFileWriter& deck) {
    if (model_.CONTOURShow != 0) {
      ormel_.solution.GridValid = true;
      ormel_.solution.ContoursValid = false;  // those that stand belong to the grid before this one
      WriteGrid(ormel_, deck, model_);
    }
    if (model_.TRACECompute != 0) {
      ormel_.solution.PathlinesValid = true;
      WriteTrace(ormel_, deck, model_);
    }
  }

  /// The solver.  False when the run ends here; the user has been told why.
  bool RunPrograms(Transaction& rows) {
    noexecutable(ormel_, kSolverProgram);
    const int size = ModelGetSize(ormel_, false);
    const ProcessResult result =
        RunSolver(ormel_, size, new_ ? ormel_.project.OrmelBaseName : kRegridDeck, "Solving the model...");
    if (!result.started) {
      Undo(rows);
      TellStartFailed(ormel_, result);
      return false;
    }
    if (result.cancelled) {
      Undo(rows);
      Feedback(ormel_, "The run was cancelled: results and files are as they were before");
      return false;
    }
    if (TellFatalStop(ormel_, result) || !ResultsFileStands()) {
      kept_.Finish();
      rows.Commit();
      GiveUpSolution();
      return false;
    }
    return true;
  }

  void Undo(Transaction& rows) {
    rows.Rollback();
    kept_.Restore();
    DeleteTolerantly(ModelFile(ormel_, "VADOX.OPS"));
    before_.Restore(ormel_);
  }

  bool ResultsFileStands() {
    const std::string path = StemFile(ormel_, ".XTR");
    if (FileExists(path)) return true;
    Inform(ormel_, "Fatal execution error",
           Lines({std::string(kSolverProgram) + " ended without its results file", path,
                  "No results were loaded."}),
           Icon::kStop);
    return false;
  }

  void GiveUpSolution() {
    InvalidateSolution(ormel_, false, false);
    ormel_.solution.ValidSolution = false;
    ClearDrawnFlags();
    // The picture may show what is not valid any more.
    if (before_.had_solution()) ormel_.view().ZoomActions(Zoom::kRedrawInPlace);
  }

  void Contours() {
    for (const char* item : {"RESULTS_TABLE", "MODELRUNFILES", "CALIBRATION_STATS"})
      ormel_.menus.Enable(item, true);
    // Without a grid of this solution there is nothing to contour: an older one would give wrong lines.
    if (ormel_.solution.ContoursValid || !ormel_.solution.GridValid) return;
    DeleteTolerantly(StemFile(ormel_, ".CTR"));
    ormel_.solution.ContoursValid = RunContourProgram(ormel_, ormel_.project.OrmelBaseName);
  }

  void SetLayer(LayerItem layer, bool on) {
    if (on)
      TurnOnLayer(ormel_, layer);
    else
      TurnOffLayer(ormel_, layer);
  }

  void ShowResults() {
    SetLayer(kLayerContours, model_.CONTOURShow != 0);
    SetLayer(kLayerPathlines, model_.TRACECompute != 0);
    SetLayer(kLayerTestPoints, ormel_.db().RowCount("TestPoints") > 0);
    ormel_.solution.ValidSolution = true;
    ormel_.menus.Enable("SolverIntegrityCheck", 0, true);
    ormel_.menus.Enable("SolverIntegrityCheck", 1, true);
    ModelLoadVadoxResults(ormel_);
    NoteSolved(ormel_, new_ || request_.ContinueSolve);
    if (!request_.KeepSolution) Note(ormel_, "CURRENT");
    ormel_.view().ZoomActions(request_.ZoomAfter ? Zoom::kRedraw : Zoom::kRedrawInPlace);
    ormel_.menus.Enable("MODEL_CMDS", 3, true);
    OfferLogs();
  }

  void OfferLogs() {
    const std::string messages = ModelFile(ormel_, "MESSAGE.LOG");
    const std::string errors = ModelFile(ormel_, "ERROR.LOG");
    if (model_.ViewMessageLog != 0 && view_logs_ && FileExists(messages)) ormel_.ui().ViewTextFile(messages);
    if (ErrorLogSpeaks(errors) && model_.ViewErrorLog != 0 && view_logs_) ormel_.ui().ViewTextFile(errors);
  }

  Ormel& ormel_;
  const SolveRequest request_;
  bool view_logs_;
  const StateBeforeRun before_;
  KeptFiles kept_;
  ModelValues model_;
  bool new_ = false;
};

}  // namespace

void ModelRunVadox(Ormel& ormel, const SolveRequest& request) {
  RunCommand(ormel, "ModelRunVadox", [&] {
    try {
      const Named named(ormel, "ModelRunVadox");
      SolveRun(ormel, request).Run();
    } catch (...) {
      ShowFailure(ormel, "ModelRunVadox");
      InvalidateSolution(ormel, true, false);
    }
  });
}

void SolutionTime(Ormel& ormel) {
  RunCommand(ormel, "SolutionTime", [&] {
    constexpr const char* kRefused = "Can't set time";
    if (!ormel.solution.ValidSolution) {
      Inform(ormel, kRefused, "You must have a valid solution before changing the time setting",
             Icon::kWarning);
      return;
    }
    const auto answer = ormel.ui().Ask(InputBox{
        "Solution Time",
        Lines({"Enter the time for the grid.", "Note: this will be ignored if no Theis wells are used"}),
        NumberText(ormel.solution.SolutionTime)});
    if (!answer) return;
    const double time = Val(*answer);
    if (!std::isfinite(time) || time < 0.0) return;
    if (time != ormel.solution.SolutionTime) ormel.solution.traced_lines.clear();
    ormel.solution.SolutionTime = time;
    ModelRunVadox(ormel, {.KeepSolution = true, .ZoomAfter = true, .ViewLogs = true});
  });
}

void RUN_FILES(Ormel& ormel, int index) {
  // Names that begin with a point follow the stem.
  constexpr std::array<std::string_view, 8> kFiles{".DAT", "ERROR.LOG", ".OUT",        ".CTR",
                                                   ".PTH", ".XTR",      "MESSAGE.LOG", "ECHO.LOG"};
  if (index < 0 || index >= static_cast<int>(kFiles.size())) return;
  const std::string_view file = kFiles[static_cast<std::size_t>(index)];
  const std::string path = file.front() == '.' ? StemFile(ormel, file) : ModelFile(ormel, file);
  ormel.ui().ViewTextFile(path);
}

void RunContour(Ormel& ormel) {
  ormel.solution.ContoursValid = RunContourProgram(ormel, ormel.project.OrmelBaseName);
}

void OrmelErrorAnalysis(Ormel& ormel, std::string_view text, int number) {
  constexpr int kObjectMissing = 91;
  constexpr int kReadOnly = 3051;
  std::string message = std::string(text) + " (error number " + std::to_string(number) + ")";
  if (number == kReadOnly)
    message +=
        "\n\n The file might be 'read only'. If the file was copied from, or opened from, a cd, the file "
        "will "
        "be 'read only'.";
  Inform(ormel, kProgramTitle, message, number == kObjectMissing ? Icon::kNone : Icon::kStop);
}

}  // namespace ormel
