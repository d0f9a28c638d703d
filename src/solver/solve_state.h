// The program's state before a run, for a run that does not count.
#pragma once

#include <string>
#include <vector>

#include "core/layer_switches.h"
#include "core/map_window.h"
#include "core/solution_state.h"

namespace ormel {

struct Ormel;

class StateBeforeRun {
 public:
  explicit StateBeforeRun(const Ormel& ormel);
  void Restore(Ormel& ormel) const;
  bool had_solution() const { return solution_.ValidSolution; }

 private:
  SolutionState solution_;
  MapWindow window_;
  std::string note_;
  LayerSwitches layers_;
  std::vector<bool> enabled_;  ///< the items of core/result_items.h
};

}  // namespace ormel
