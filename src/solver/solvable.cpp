#include "solver/solvable.h"

#include <array>
#include <string>

#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/crossing.h"
#include "model/model_values.h"
#include "model/vertices.h"
#include "solver/deck_labels.h"
#include "solver/user_labels.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

bool IsEmpty(Ormel& ormel) {
  for (const char* table : {"Wells", "LinesinkStrings", "NoFlowStrings", "Inhomogeneities"})
    if (ormel.db().RowCount(table) > 0) return false;
  return ReadModel(ormel).UNIFLOWCompute == 0;
}

struct RingKind {
  const char* prefix;
  const char* noun;
  const char* rows;
};
constexpr std::array kRings{RingKind{"IN_", "inhomogeneity", "select PID from Inhomogeneities"},
                            RingKind{"HB_", "barrier", "select PID from NoFlowStrings where Closed<>0"}};

}  // namespace

bool TellUnsolvable(Ormel& ormel) {
  if (IsEmpty(ormel)) {
    Inform(
        ormel, "No Elements",
        "The model has no elements: no well, no linesink, no barrier, no inhomogeneity and no uniform flow.\n"
        "There is nothing to solve.  Please add elements first.",
        Icon::kWarning);
    return true;
  }
  for (const RingKind& kind : kRings) {
    RowReader rows(ormel.db(), kind.rows);
    while (rows.Next()) {
      const Pid pid = rows.Long(0);
      if (!CrossesItself(PointsOf(ormel, pid), true)) continue;
      std::optional<NamedElement> element;
      const std::string label = WithUserLabels(ormel, VertexLabel(kind.prefix, pid), &element);
      Inform(ormel, "Crossing Lines",
             "The edge of the " + std::string(kind.noun) + " " + label +
                 " crosses itself, so that it has no inside and the solver would leave it out.\n"
                 "Please move its vertices apart.",
             Icon::kWarning);
      OfferToShow(ormel, element);
      return true;
    }
  }
  return false;
}

}  // namespace ormel
