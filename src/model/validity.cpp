#include "model/validity.h"

#include <cmath>
#include <utility>

#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/result_items.h"
#include "core/solver_port.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/document.h"
#include "document/fingerprint.h"
#include "document/record.h"
#include "store/database.h"
#include "text/files.h"

namespace ormel {

void DecideSolution(Ormel& ormel) {
  if (ormel.ports.document != nullptr) ormel.ports.document->solution_decided = true;
}

namespace {

/// The results stay on view, and look it.
void KeepAsOlder(Ormel& ormel) {
  const bool was = std::exchange(ormel.solution.OfOlderModel, true);
  NoteSolution(ormel);
  if (!was) ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

}  // namespace

void InvalidateSolution(Ormel& ormel, bool ask, bool redraw) {
  const Named named(ormel, "InvalidateSolution");
  DecideSolution(ormel);
  if (!ormel.solution.ValidSolution) return;
  // The user answers in view of what has changed.
  if (ask) ormel.view().Refresh();
  if (ask && !AskYesNo(ormel, "Model Changed!",
                       Lines({"This change may make the current solution inconsistent with your",
                              "current element layout.  Do you want to remove the current solution",
                              "and results from view and invalidate the solution?  "}),
                       Icon::kQuestion)) {
    return KeepAsOlder(ormel);
  }

  TurnOffLayer(ormel, Layer::kContours);
  TurnOffLayer(ormel, Layer::kPathlines);
  if (ormel.db().RowCount("TestPoints") == 0) TurnOffLayer(ormel, Layer::kTestPoints);
  ormel.layers.Switch(Layer::kResultsOverlay, false);
  ormel.layers.Switch(Layer::kCapzones, false);
  EnableResultItems(ormel, false);
  ormel.solution.ValidSolution = false;
  ormel.solution.OfOlderModel = false;
  ormel.solution.results_drawn = false;
  ormel.solution.traced_lines.clear();
  if (redraw) ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  Note(ormel, "");
}

namespace {

/// Of a valid solution: on offer in any case, and in view or not.
void ShowLayer(Ormel& ormel, Layer layer, bool on) {
  TurnOnLayer(ormel, layer);
  ormel.layers.Switch(layer, on);
}

}  // namespace

void ShowSolution(Ormel& ormel) {
  SolutionState& solution = ormel.solution;
  solution.ValidSolution = true;
  ShowLayer(ormel, Layer::kContours, solution.ContoursValid);
  ShowLayer(ormel, Layer::kPathlines, solution.PathlinesValid);
  SetLayer(ormel, Layer::kTestPoints, ormel.db().RowCount("TestPoints") > 0);
  EnableResultItems(ormel, true);
}

namespace {

/// The files that are read while the solution is on view.
bool FilesStand(const Ormel& ormel) {
  const std::string stem = JoinPath(ormel.project.OrmelBasePath, ormel.project.OrmelBaseName);
  const SolvedModel& solved = *ormel.solution.solved;
  return FileExists(stem + ".XTR") && (!solved.GridValid || FileExists(stem + ".GRD")) &&
         (!solved.PathlinesValid || FileExists(stem + ".PTH"));
}

}  // namespace

void MatchSolution(Ormel& ormel, const Fingerprint& before) {
  const Named named(ormel, "MatchSolution");
  DecideSolution(ormel);
  SolutionState& solution = ormel.solution;
  const bool has_run = solution.solved && FilesStand(ormel);
  if (!has_run && !solution.ValidSolution) return;
  const Fingerprint now = FingerprintOf(ormel);
  const SolvedModel solved = has_run ? *solution.solved : SolvedModel{};
  const bool again = has_run && now.solution == solved.model.solution;
  if (!again && now.solution != before.solution) InvalidateSolution(ormel, true, false);
  if (!again && !solution.ValidSolution) return;
  const SolutionState was = solution;
  if (has_run && now.contours == solved.model.contours) {
    solution.GridValid = solved.GridValid;
    solution.ContoursValid = solved.ContoursValid;
  } else if (now.contours != before.contours) {
    solution.GridValid = solution.ContoursValid = false;
  }
  if (has_run && now.paths == solved.model.paths) {
    solution.PathlinesValid = solved.PathlinesValid;
  } else if (now.paths != before.paths) {
    solution.PathlinesValid = false;
  }
  solution.OfOlderModel = has_run ? !again : solution.OfOlderModel;
  if (solution.OfOlderModel != was.OfOlderModel) ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  // Where nothing has changed the user's own choice of layers stays.
  if (!was.ValidSolution) ShowSolution(ormel);
  NoteSolution(ormel);
  if (!was.ValidSolution) return;
  if (was.ContoursValid != solution.ContoursValid) ShowLayer(ormel, Layer::kContours, solution.ContoursValid);
  if (was.PathlinesValid != solution.PathlinesValid)
    ShowLayer(ormel, Layer::kPathlines, solution.PathlinesValid);
}

void SolutionFollower::CommandEnded(Ormel& ormel, const ChangeRecord& record) {
  SolutionState& solution = ormel.solution;
  Document* document = ormel.ports.document;
  if (document == nullptr) return;  // no rows are told
  const bool drawing = ormel.mouse.MouseMode == MouseMode::kDigitize;
  if (IsStep(record)) {
    if (drawing) act_.push_back(record.rows);
    return;
  }
  const bool decided = std::exchange(document->solution_decided, false);
  if (!solution.ValidSolution || record.project_replaced) return act_.clear();
  if (drawing || !act_.empty()) act_.push_back(record.rows);
  if (drawing) return;
  const std::vector<std::vector<RowChange>> act = std::exchange(act_, {});
  const std::vector<RowChange> rows = act.empty() ? record.rows : Joined(act);
  if (!AnySpoils(ormel, rows, Spoils::kSolution)) return;
  if (solution.solved && FingerprintOf(ormel).solution == solution.solved->model.solution) return;
  if (decided) {
    // Whoever decided that it stays: results of another model do not pass as those of this one.
    if (!solution.solved) return;
    return KeepAsOlder(ormel);
  }
  InvalidateSolution(ormel, true, true);
  document->solution_decided = false;
}

void InvalidateContours(Ormel& ormel) {
  const Named named(ormel, "InvalidateContours");
  if (!ormel.solution.ValidSolution) return;
  const bool recompute =
      AskYesNo(ormel, "Recompute?",
               Lines({"This change makes the current contour lines and/or pathlines invalid.",
                      "Recompute contours and pathlines based on the new settings?"}),
               Icon::kQuestion);
  if (recompute) {
    CommitSoFar(ormel);
    ormel.solver().RunContour();
  }
  ormel.layers.Switch(Layer::kContours, recompute);
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

double ComputeDefaultStep(const Ormel& ormel) {
  return 0.004 * std::hypot(ormel.window.SolveWindow.Width(), ormel.window.SolveWindow.Height());
}

}  // namespace ormel
