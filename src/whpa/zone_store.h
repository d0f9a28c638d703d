// Outlined capture zones in the project: polygons of `Capzones`, and in `Zones` how each was made.
#pragma once

#include <string>
#include <vector>

#include "core/types.h"
#include "solver/zone_file.h"

namespace ormel {

struct Ormel;

/// A well whose zones are stored.
struct ZoneOwner {
  std::string label;      ///< the user's
  std::string zone_name;  ///< what its zones are called after; the label unless that is taken
};

/// Label of a zone: "<name> <n> years", of its holes "<name> <n> years hole <k>"; the name is cut to the
/// field's length.
std::string ZoneLabel(const std::string& name, double years, std::size_t part = 0);

/// Stores the outline and the holes of a zone; those of the same label are replaced, and holes that are no
/// more go.  Points are taken from the model's coordinates to the map's.
void StoreZone(Ormel& ormel, const ZoneOwner& owner, const WellOutlines& well, const ZoneOutline& zone,
               double tolerance);

}  // namespace ormel
