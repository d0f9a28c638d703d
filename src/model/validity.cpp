#include "model/validity.h"

#include <cmath>

#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/result_items.h"
#include "core/solver_port.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "store/database.h"

namespace ormel {
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
