#include "exchange/feature_import.h"

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/status.h"
#include "model/observations.h"
#include "store/database.h"

namespace ormel {

void CarryOut(Ormel& ormel, const ImportPlan& plan) {
  Transaction all(ormel.db());
  try {
    for (const PlannedElement& element : plan.elements)
      plan.target->store(ormel, element.values, element.points);
  } catch (...) {
    all.Rollback();
    throw;
  }
  all.Commit();
  TurnOnLayer(ormel, Layer::kElements);
  if (plan.target->element == Element::kParticle) PathlinesOutdated(ormel);
  Feedback(ormel, std::to_string(plan.elements.size()) +
                      (plan.elements.size() == 1 ? " element was" : " elements were") + " imported");
}

}  // namespace ormel
