#include "solver/solve_state.h"

#include <array>
#include <string_view>

#include "core/ormel.h"
#include "core/status.h"

namespace ormel {
namespace {

struct ItemName {
  std::string_view control;
  int index;
};

/// Every item that a run, or the end of a solution, changes.
constexpr std::array kItems{ItemName{"RESULTS_TABLE", 0},
                            ItemName{"MODELRUNFILES", 0},
                            ItemName{"CALIBRATION_STATS", 0},
                            ItemName{"MODEL_CMDS", 3},
                            ItemName{"SolverIntegrityCheck", 0},
                            ItemName{"SolverIntegrityCheck", 1},
                            ItemName{"layermenu", kLayerContours},
                            ItemName{"layermenu", kLayerPathlines},
                            ItemName{"layermenu", kLayerTestPoints},
                            ItemName{"layermenu", kLayerResultsOverlay},
                            ItemName{"layermenu", kLayerWhpas}};

}  // namespace

StateBeforeRun::StateBeforeRun(const Ormel& ormel)
    : solution_(ormel.solution), window_(ormel.window), note_(ormel.note) {
  for (const ItemName& item : kItems)
    items_.push_back(
        {ormel.menus.Enabled(item.control, item.index), ormel.menus.Checked(item.control, item.index)});
}

void StateBeforeRun::Restore(Ormel& ormel) const {
  ormel.solution = solution_;
  ormel.window = window_;
  Note(ormel, note_);
  for (std::size_t i = 0; i < kItems.size(); ++i) {
    ormel.menus.Enable(kItems[i].control, kItems[i].index, items_[i].enabled);
    ormel.menus.Check(kItems[i].control, kItems[i].index, items_[i].checked);
  }
}

}  // namespace ormel
