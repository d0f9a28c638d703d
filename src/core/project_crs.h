// The coordinate reference system of the project's map.
#pragma once

#include <optional>
#include <string>

#include "core/types.h"
#include "geo/crs.h"

namespace ormel {

struct Ormel;

/// The text in `Project.CRS`; empty when none is known, also in a project of an older version.
std::string StoredCrs(const Ormel& ormel);
/// Writes it; what is shown follows with ReadProjectState.
void StoreCrs(Ormel& ormel, const std::string& text);
/// Takes the stored one up; one that cannot be read counts as unknown.
void ReadProjectCrs(Ormel& ormel);
/// Nothing while none is known.
std::optional<Crs> ProjectCrs(const Ormel& ormel);

/// Why a system cannot be that of a map in metres, else of one in feet; empty when it can.  Both feet count
/// as feet: they differ by two parts in a million.
std::string CrsFault(const Crs& crs, bool metres);

/// What stands behind the coordinates of a place: "  5.38721\u00b0 E"; empty where it is not known.
struct GlobeText {
  std::string longitude, latitude;
};
GlobeText GlobeTextOf(const Ormel& ormel, MapPoint at);

}  // namespace ormel
