#include "model/select_beneath.h"

#include <algorithm>
#include <vector>

#include "core/command.h"
#include "core/ormel.h"
#include "document/elements_near.h"
#include "model/digitize.h"
#include "model/selection.h"

namespace ormel {

bool SelectBeneath(Ormel& ormel) {
  if (!ormel.project.ProjectOpen || ormel.mouse.MouseMode != MouseMode::kSelect || ormel.mouse.MovePending)
    return false;
  bool done = false;
  RunCommand(ormel, "SelectBeneath", [&] {
    const std::vector<ElementId> there =
        ElementsNear(ormel, LastClick(ormel), ormel.selection.radius_squared);
    const std::vector<ElementId> selected = SelectedElements(ormel);
    auto now = selected.size() == 1 ? std::find(there.begin(), there.end(), selected.front()) : there.end();
    if (there.empty() || (now != there.end() && there.size() == 1)) return;
    now = now == there.end() || now + 1 == there.end() ? there.begin() : now + 1;
    SelectItems(ormel, {*now});
    done = true;
  });
  return done;
}

}  // namespace ormel
