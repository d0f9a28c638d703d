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
#include "store/database.h"

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
                       Icon::kQuestion)) {
    ormel.solution.OfOlderModel = true;
    NoteSolution(ormel);
    return;
  }

  TurnOffLayer(ormel, kLayerContours);
  TurnOffLayer(ormel, kLayerPathlines);
  if (ormel.db().RowCount("TestPoints") == 0) TurnOffLayer(ormel, kLayerTestPoints);
  ormel.menus.Check("layermenu", kLayerResultsOverlay, false);
  ormel.menus.Check("layermenu", kLayerWhpas, false);
  for (const MenuItem& item : kNeedResults) ormel.menus.Enable(item.control, item.index, false);
  ormel.solution.ValidSolution = false;
  ormel.solution.OfOlderModel = false;
  ormel.solution.results_drawn = false;
  ormel.solution.traced_lines.clear();
  if (redraw) ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  Note(ormel, "");
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
