// Capture zones and protection areas as a report tells of them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;
class Table;

struct ZoneShape {
  double area = 0.0;       ///< of the polygon, 0 or more [map units squared]
  double perimeter = 0.0;  ///< [map units]
  Extents extents;
  std::size_t vertices = 0;
};

/// Of a closed ring.
ZoneShape ShapeOf(const std::vector<MapPoint>& ring);

/// The computed table "zones": per capture zone polygon `Label`, `Well`, `Years`, `Area`, `Perimeter`,
/// `Width`, `Height`, `West`, `East`, `South`, `North`, `Vertices`.  Well and time are those that the store
/// keeps of an outlined zone; without, those of the label "<well> <n> years" where such a well exists.  A
/// zone drawn by hand has none.
std::shared_ptr<Table> ZonesTable(Ormel& ormel);

/// The computed table "zonechecks": what the store keeps of how zones were outlined: `Label`, `Well`,
/// `Years`, `Part`, `Tolerance` and `Balance` [percent], the shares of the pumped water [percent] that stood
/// in the aquifer
/// (`Pores`), fell as recharge (`Recharge`), came from streams, ponds and wells (`Surface`), from beyond an
/// edge
/// (`Edge`) or was not followed (`LeftOut`), the area whose upper water goes elsewhere (`Shared`, computation
/// length squared), where the paths ended (`Ends`) and `Made`.  Zones drawn by hand have no row.
std::shared_ptr<Table> ZoneChecksTable(Ormel& ormel);

/// The computed table "areas": the rows of `WHPAs` with the well's discharge, the shift of an eccentric
/// circle [computation length], the circle's area [map units squared] and the way each was found.
std::shared_ptr<Table> AreasTable(Ormel& ormel);

}  // namespace ormel
