#include "solver/driver.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>

#include "core/ask_number.h"
#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/result_items.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/fingerprint.h"
#include "model/global_recharge.h"
#include "model/model_settings.h"
#include "model/model_values.h"
#include "model/validity.h"
#include "solver/element_deck.h"
#include "solver/extents.h"
#include "solver/outside_programs.h"
#include "solver/pathline_tics.h"
#include "solver/result_loader.h"
#include "solver/result_rows.h"
#include "solver/run.h"
#include "solver/solvable.h"
#include "solver/solve_stamp.h"
#include "solver/solve_state.h"
#include "solver/text_sink.h"
#include "solver/user_labels.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr const char* kRegridDeck = "REGRID.DAT";
constexpr int kRecommendedIterations = 2;
constexpr double kMostIterations = 32767.0;  // the store keeps 16 bits

int IterationsOf(double number) {
  return static_cast<int>(std::clamp(std::trunc(number), 0.0, kMostIterations));
}

/// A solve or a reload, from its decision to its redraw.
class SolveRun {
 public:
  SolveRun(Ormel& ormel, const SolveRequest& request)
      : ormel_(ormel), request_(request), view_logs_(request.ViewLogs) {}

  void Run() {
    const StateBeforeRun before(ormel_);
    ormel_.menus.Enable("RESULTS_TABLE", false);
    ormel_.menus.Enable("MODELRUNFILES", false);
    ormel_.view().ClearMouseMode();
    const std::optional<bool> is_new = Decide();
    if (!is_new) return;
    new_ = *is_new;
    if (!OwnsStem()) return before.Restore(ormel_);
    solves_ = new_ || request_.ContinueSolve;
    if (new_ && OfferRechargeDomain(ormel_)) ormel_.view().ZoomActions(Zoom::kRedrawInPlace);
    if (new_ && TellUnsolvable(ormel_)) return before.Restore(ormel_);
    model_ = ReadModel(ormel_);
    // Only a solve says from which model a solution is; a reload hands on what was said.
    const SolutionState& solution = ormel_.solution;
    if (!new_)
      saved_model_ = solution.ValidSolution && solution.solved ? solution.solved->model.solution
                                                               : ModelOfSavedSolution(ormel_);
    RunOutcome outcome;
    try {
      outcome = RunBy(ormel_, Plan());
    } catch (...) {
      before.Restore(ormel_);
      throw;
    }
    if (outcome.end == RunEnd::kDone) return ShowResults();
    before.Restore(ormel_);
    if (outcome.end == RunEnd::kCancelled)
      Feedback(ormel_, "The run was cancelled: results and files are as they were before");
    if (outcome.end == RunEnd::kNotStarted) TellStartFailed(ormel_, outcome.process);
    if (outcome.end == RunEnd::kStopped) {
      GiveUpSolution(before.had_solution());
      NameElementsInLog(ormel_, ModelFile(ormel_, "ERROR.LOG"));
      OfferToShow(ormel_, outcome.culprit);
    }
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

  /// False when the files of this stem are another project's and the user keeps it so.
  bool OwnsStem() {
    const std::string other = OtherOwnerOfStem(ormel_);
    if (other.empty()) return true;
    ProjectState& project = ormel_.project;
    const std::string whose = "The model files \"" + project.OrmelBaseName + "\" in the folder\n" +
                              project.OrmelBasePath + "\nare those of the project " + other + ".";
    if (!new_) {
      Inform(ormel_, kProgramTitle, whose + "\nThis project has no saved solution there.  Solve it anew.",
             Icon::kWarning);
      return false;
    }
    const std::string title = FileTitle(project.DBName);
    const std::string stem = FreeStem(project.OrmelBasePath, title.substr(0, title.rfind('.')));
    if (!AskYesNo(ormel_, "Model Files in Use",
                  whose +
                      "\nSolving would replace its results.  Give this project files of its own, named \"" +
                      stem + "\"?",
                  Icon::kQuestion))
      return false;
    ormel_.db().Execute("update Project set OrmelBaseName=?", {stem});
    project.OrmelBaseName = stem;
    return true;
  }

  /// Another project may have been solved under the same stem while this run waited for the folder.
  bool StillOwnsStem() {
    if (OtherOwnerOfStem(ormel_).empty()) return true;
    Inform(
        ormel_, kProgramTitle,
        "Another project has just been solved with the same name of its model files.  Solve again: you will "
        "be asked for another name.",
        Icon::kWarning);
    return false;
  }

  RunPlan Plan() {
    const std::string& stem = ormel_.project.OrmelBaseName;
    RunPlan plan;
    plan.deck = new_ ? stem + ".DAT" : std::string(kRegridDeck);
    plan.argument = new_ ? stem : std::string(kRegridDeck);
    plan.wait_text = "Solving the model...";
    plan.writing_text = "Writing Data to Solver...";
    plan.files = Files();
    plan.results = StemFile(ormel_, ".XTR");
    plan.write = [this](TextSink& deck) { return WriteDeck(deck); };
    plan.begin = [this] { return StillOwnsStem(); };
    plan.accept = [this] { return Accept(); };
    plan.record = [this] { Record(); };
    return plan;
  }

  std::vector<RunFile> Files() {
    using How = RunFile::How;
    std::vector<RunFile> files;
    const auto add = [&files](const std::string& path, How how) { files.push_back({path, how}); };
    if (new_) {
      add(StemFile(ormel_, ".DAT"), How::kWords);
      add(StemFile(ormel_, ".SOL"), How::kSetAside);
      add(ModelFile(ormel_, "ERROR.LOG"), How::kWords);
      add(ModelFile(ormel_, "MESSAGE.LOG"), How::kWords);
    } else if (request_.ContinueSolve) {
      add(StemFile(ormel_, ".SOL"), How::kCopy);
    }
    add(StemFile(ormel_, ".RUN"), How::kSetAside);
    add(StemFile(ormel_, ".XTR"), How::kSetAside);
    // What was drawn from another solution must not be taken for this one's, also by those who read the file.
    const auto drawn = [&](const char* extension, bool renewed) {
      if (solves_)
        add(StemFile(ormel_, extension), How::kSetAside);
      else if (renewed)
        add(StemFile(ormel_, extension), How::kReplace);
    };
    drawn(".GRD", model_.CONTOURShow != 0);
    if (solves_ || model_.CONTOURShow != 0) add(StemFile(ormel_, ".CTR"), How::kSetAside);
    drawn(".PTH", model_.TRACECompute != 0);
    return files;
  }

  /// False when the user gives up.
  bool WriteDeck(TextSink& deck) {
    const bool regrid_log = request_.KeepSolution && !solves_;
    WriteHead(deck, {.message = regrid_log ? "regrid.log" : "message.log"});
    if (new_) {
      ModelCheckExtents(ormel_, false, false);
      StoreModelOrigin(ormel_);
    } else {
      ModelRestoreModelOrigin(ormel_);
    }
    ormel_.window.solved = ormel_.window.model;
    if (solves_) ormel_.solution.traced_lines.clear();
    if (new_) WriteModelSection(deck);
    const OutputInput output = ReadOutputInput(ormel_);
    WriteLayout(deck, output.window);
    if (new_) {
      deck.Line(" time 0");
      WriteSolveAndSave(deck, model_.SOLVERIterations, output.stem);
    } else {
      WriteLoad(deck, output.stem);
    }
    WriteTimeAtZone(deck, output.solution_time);
    if (request_.ContinueSolve && !new_ && !WriteContinuation(deck)) return false;
    WriteOutput(output, deck);
    deck.Line(" stop");
    SetDrawnFlags(output);
    return true;
  }

  void WriteModelSection(TextSink& deck) {
    InvalidateSolution(ormel_, false, false);
    const SolverInput input = ReadSolverInput(ormel_);
    ToolsWriteVadoxElements(input, deck, false);
    {
      const Named named(ormel_, "SeedResultRows");
      SeedResultRows(ormel_.db(), input);
    }
    // What the elements recommend is left aside: the solver converges in two steps as a rule.
    if (kRecommendedIterations <= model_.SOLVERIterations) return;
    const auto answer = AskNumber(ormel_, InputBox{"Warning",
                                                   Lines({"Your problem may require more iterations than you",
                                                          "have specified.  Ormel recommends that you use at",
                                                          "least the number of iterations Shown below.", "",
                                                          "Enter the number of iterations to be used:"}),
                                                   std::to_string(kRecommendedIterations)});
    model_.SOLVERIterations = std::max(1, IterationsOf(answer.value_or(0.0)));
    ormel_.db().Execute("update Model set SOLVERIterations=?", {model_.SOLVERIterations});
  }

  bool WriteContinuation(TextSink& deck) {
    const auto answer = AskNumber(ormel_, InputBox{"Continue Solution", "Number of additional iterations:",
                                                   std::to_string(model_.SOLVERIterations)});
    const int iterations = IterationsOf(answer.value_or(0.0));
    if (iterations < 1) return false;
    WriteSolveAndSave(deck, iterations, ormel_.project.OrmelBaseName);
    return true;
  }

  void SetDrawnFlags(const OutputInput& output) {
    SolutionState& solution = ormel_.solution;
    if (solves_) ClearDrawnFlags();
    if (output.grid_points) {
      solution.GridValid = true;
      solution.ContoursValid = false;  // those that stand belong to the grid before this one
    }
    if (output.trace) solution.PathlinesValid = true;
  }

  RunEnd Accept() {
    SolutionState& solution = ormel_.solution;
    const LoadReport report = ModelLoadVadoxResults(ormel_);
    if (const std::string fault = FaultOf(report, ModelFile(ormel_, "ERROR.LOG")); !fault.empty()) {
      Inform(ormel_, "Fatal execution error",
             Lines({"The results file", StemFile(ormel_, ".XTR"), "is damaged: " + fault + ".",
                    "The results that stood before stay as they were."}),
             Icon::kStop);
      return RunEnd::kRefused;
    }
    // Without a grid of this solution there is nothing to contour: an older one would give wrong lines.
    if (!solution.ContoursValid && solution.GridValid)
      solution.ContoursValid = RunContourProgram(ormel_, ormel_.project.OrmelBaseName) == ContourEnd::kDone;
    if (solution.GridValid && !solution.ContoursValid) DeleteTolerantly(StemFile(ormel_, ".CTR"));
    solution.ValidSolution = true;
    Fingerprint now = FingerprintOf(ormel_);
    const std::uint64_t model = new_ ? now.solution : saved_model_;
    solution.OfOlderModel = model != now.solution;
    now.solution = model;
    solution.solved = SolvedModel{now, solution.GridValid, solution.ContoursValid, solution.PathlinesValid};
    return RunEnd::kDone;
  }

  /// Lets other programs, and the next opening, know the run; not results of another time than the project
  /// starts with.  A folder that takes no file has lost nothing by that.
  void Record() {
    if (ormel_.solution.SolutionTime != 0.0) return;
    try {
      WriteSolveStamp(ormel_);
    } catch (const FileError& e) {
      Inform(ormel_, kProgramTitle, e.what(), Icon::kWarning);
    }
  }

  void ClearDrawnFlags() {
    ormel_.solution.PathlinesValid = ormel_.solution.ContoursValid = ormel_.solution.GridValid = false;
  }

  void GiveUpSolution(bool had_solution) {
    InvalidateSolution(ormel_, false, false);
    ormel_.solution.ValidSolution = false;
    ClearDrawnFlags();
    // The picture may show what is not valid any more.
    if (had_solution) ormel_.view().ZoomActions(Zoom::kRedrawInPlace);
  }

  void ShowResults() {
    EnableResultItems(ormel_, true);
    SetLayer(ormel_, Layer::kContours, model_.CONTOURShow != 0);
    SetLayer(ormel_, Layer::kPathlines, model_.TRACECompute != 0);
    SetLayer(ormel_, Layer::kTestPoints, ormel_.db().RowCount("TestPoints") > 0);
    WriteTicFiles(ormel_);
    if (ormel_.solution.OfOlderModel || !request_.KeepSolution) NoteSolution(ormel_);
    ormel_.view().ZoomActions(request_.ZoomAfter ? Zoom::kRedraw : Zoom::kRedrawInPlace);
    OfferLogs();
  }

  void OfferLogs() {
    const std::string messages = ModelFile(ormel_, "MESSAGE.LOG");
    const std::string errors = ModelFile(ormel_, "ERROR.LOG");
    for (const std::string& log : {messages, errors}) NameElementsInLog(ormel_, log);
    if (model_.ViewMessageLog != 0 && view_logs_ && FileExists(messages)) ormel_.ui().ViewTextFile(messages);
    if (ErrorLogSpeaks(errors) && model_.ViewErrorLog != 0 && view_logs_) ormel_.ui().ViewTextFile(errors);
  }

  Ormel& ormel_;
  const SolveRequest request_;
  bool view_logs_;
  ModelValues model_;
  std::uint64_t saved_model_ = 0;  ///< fingerprint of the model that the saved solution is of; 0: unknown
  bool new_ = false;
  bool solves_ = false;  ///< writes a solution: a new one, or the saved one continued
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
    const auto answer =
        AskNumber(ormel, InputBox{"Solution Time",
                                  Lines({"Enter the time for the grid.",
                                         "Note: this will be ignored if no Theis wells are used"}),
                                  NumberText(ormel.solution.SolutionTime)});
    if (!answer) return;
    const double time = *answer;
    if (time < 0.0) return;
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
  ormel.solution.ContoursValid = RunContourProgram(ormel, ormel.project.OrmelBaseName) == ContourEnd::kDone;
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
