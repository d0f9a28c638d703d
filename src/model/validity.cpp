#include "model/validity.h"

#include <array>
#include <cmath>
#include <string_view>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/solver_port.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/fingerprint.h"
#include "store/database.h"
#include "text/files.h"

namespace ormel {
namespace {

struct MenuItem {
  std::string_view control;
  int index;
};

/// What a user can do only with results.
constexpr std::array kNeedResults{MenuItem{"MODELRUNFILES", 0},        MenuItem{"RESULTS_TABLE", 0},
                                  MenuItem{"CALIBRATION_STATS", 0},    MenuItem{"MODEL_CMDS", 3},
                                  MenuItem{"SolverIntegrityCheck", 0}, MenuItem{"SolverIntegrityCheck", 1}};

}  // namespace

void TurnOnLayer(Ormel& ormel, LayerItem layer) {
  ormel.menus.Enable("layermenu", layer, true);
  ormel.menus.Check("layermenu", layer, true);
}

void TurnOffLayer(Ormel& ormel, LayerItem layer) {
  ormel.menus.Enable("layermenu", layer, false);
  ormel.menus.Check("layermenu", layer, false);
}

void InvalidateSolution(Ormel& ormel, bool ask, bool redraw) {
  const Named named(ormel, "InvalidateSolution");
  if (!ormel.solution.ValidSolution) return;
  if (ask && !AskYesNo(ormel, "Model Changed!",
                       Lines({"This change may make the current solution inconsistent with your",
                              "current element layout.  Do you want to remove the current solution",
                              "and results from view and invalidate the solution?  "}),
                       Icon::kQuestion))
    return;

  TurnOffLayer(ormel, kLayerContours);
  TurnOffLayer(ormel, kLayerPathlines);
  if (ormel.db().RowCount("TestPoints") == 0) TurnOffLayer(ormel, kLayerTestPoints);
  ormel.menus.Check("layermenu", kLayerResultsOverlay, false);
  ormel.menus.Check("layermenu", kLayerWhpas, false);
  for (const MenuItem& item : kNeedResults) ormel.menus.Enable(item.control, item.index, false);
  ormel.solution.ValidSolution = false;
  ormel.solution.results_drawn = false;
  ormel.solution.traced_lines.clear();
  if (redraw) ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  Note(ormel, "");
}

namespace {

/// Of a valid solution: on offer in any case, and in view or not.
void ShowLayer(Ormel& ormel, LayerItem layer, bool on) {
  ormel.menus.Enable("layermenu", layer, true);
  ormel.menus.Check("layermenu", layer, on);
}

}  // namespace

void ShowSolution(Ormel& ormel) {
  SolutionState& solution = ormel.solution;
  solution.ValidSolution = true;
  ShowLayer(ormel, kLayerContours, solution.ContoursValid);
  ShowLayer(ormel, kLayerPathlines, solution.PathlinesValid);
  if (ormel.db().RowCount("TestPoints") > 0)
    TurnOnLayer(ormel, kLayerTestPoints);
  else
    TurnOffLayer(ormel, kLayerTestPoints);
  for (const MenuItem& item : kNeedResults) ormel.menus.Enable(item.control, item.index, true);
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
  // Where nothing has changed the user's own choice of layers stays.
  if (!was.ValidSolution) return ShowSolution(ormel);
  if (was.ContoursValid != solution.ContoursValid) ShowLayer(ormel, kLayerContours, solution.ContoursValid);
  if (was.PathlinesValid != solution.PathlinesValid)
    ShowLayer(ormel, kLayerPathlines, solution.PathlinesValid);
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
  ormel.menus.Check("layermenu", kLayerContours, recompute);
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

double ComputeDefaultStep(const Ormel& ormel) {
  return 0.004 * std::hypot(ormel.window.SolveWindow.Width(), ormel.window.SolveWindow.Height());
}

}  // namespace ormel
