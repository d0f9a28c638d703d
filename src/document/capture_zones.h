// The capture zone polygons of a project, and of the outlined ones how each was made.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;
class Database;

/// Whose zone it is, and how long the water travels.  A zone that was drawn by hand has no time.
struct ZoneTag {
  std::string well;
  double years = 0.0;
  bool outlined() const { return years > 0.0; }
};
/// From a label of the form "<well> <n> years" or "<well> 1 year", for rings of which nothing else tells.
/// Whether there is such a well is another question.
ZoneTag ZoneTagOf(std::string_view label);

/// A row of `Zones`: how a ring was outlined.  Volumes are of water [computation length cubed].
struct ZoneMaking {
  std::string well;       ///< the user's label
  std::int64_t part = 0;  ///< 0 the outline, else the number of a hole
  double years = 0.0;
  double area = 0.0;  ///< as it was stored, negative for a hole [map units squared]
  double pumped = 0.0;
  /// What the water that the well takes was before: in the aquifer, recharge, streams and ponds, from beyond
  /// an edge; and what was not followed.
  double pores = 0.0, recharge = 0.0, surface = 0.0, edge = 0.0, left_out = 0.0;
  double shared = 0.0;  ///< area whose upper water goes elsewhere [computation length squared]
  double balance = 0.0, tolerance = 0.0;  ///< shares of what is pumped
  std::string ends;                       ///< where the paths ended
  std::string made;                       ///< local time, "2026-11-25 09:10"
};

struct CaptureZone {
  Pid pid = kNoPolygon;
  std::string label;
  bool closed = false;
  std::vector<MapPoint> ring;
  ZoneTag tag;  ///< of the making; without one of the label, where it names a well of the project
  std::optional<ZoneMaking> making;
  bool IsHole() const { return making && making->part > 0; }
};

/// All, by well and time, those that were drawn by hand last; of equal ones by label.
std::vector<CaptureZone> ReadCaptureZones(Database& db);

/// Makes a closed polygon that has its vertices a zone.
void AddCaptureZone(Database& db, Pid pid, const std::string& label, const ZoneMaking& making);
/// Those of that label, with all that belongs to them; false when there is none.
bool RemoveCaptureZones(Ormel& ormel, const std::string& label);

}  // namespace ormel
