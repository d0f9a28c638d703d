#include "shell/base_maps.h"

#include <string>

#include "core/command.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "store/database.h"

namespace ormel {

bool LoadBaseMaps(Ormel& ormel, Extents& /*bounds*/) {
  const Named named(ormel, "LoadBaseMaps");
  const std::int64_t count = ormel.db().RowCount("Basemaps");
  if (count > 0)
    Inform(ormel, "Base maps",
           "This version does not show base maps.  The " + std::to_string(count) +
               " base map(s) of the project stay in its list.",
           Icon::kInformation);
  return false;
}

}  // namespace ormel
