#include "solver/solve_state.h"

#include "core/ormel.h"
#include "core/result_items.h"
#include "core/status.h"

namespace ormel {

StateBeforeRun::StateBeforeRun(const Ormel& ormel)
    : solution_(ormel.solution), window_(ormel.window), note_(ormel.note), layers_(ormel.layers) {
  for (const ResultItem& item : ResultItems())
    enabled_.push_back(ormel.menus.Enabled(item.control, item.index));
}

void StateBeforeRun::Restore(Ormel& ormel) const {
  ormel.solution = solution_;
  ormel.window = window_;
  ormel.layers = layers_;
  Note(ormel, note_);
  for (std::size_t i = 0; i < enabled_.size(); ++i)
    ormel.menus.Enable(ResultItems()[i].control, ResultItems()[i].index, enabled_[i]);
}

}  // namespace ormel
