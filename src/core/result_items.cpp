#include "core/result_items.h"

#include <array>

#include "core/ormel.h"

namespace ormel {
namespace {

constexpr std::array kItems{ResultItem{"RESULTS_TABLE", 0},        ResultItem{"MODELRUNFILES", 0},
                            ResultItem{"CALIBRATION_STATS", 0},    ResultItem{"MODEL_CMDS", 3},
                            ResultItem{"SolverIntegrityCheck", 0}, ResultItem{"SolverIntegrityCheck", 1}};

}  // namespace

std::span<const ResultItem> ResultItems() {
  return kItems;
}

void EnableResultItems(Ormel& ormel, bool on) {
  for (const ResultItem& item : kItems) ormel.menus.Enable(item.control, item.index, on);
}

}  // namespace ormel
