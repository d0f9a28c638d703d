// Which vertex lies nearest to a place: kept true by the change records, read anew only with another project.
#pragma once

#include <compare>
#include <cstdint>
#include <set>

#include "core/changes.h"
#include "core/types.h"

namespace ormel {

struct Ormel;

class HitIndex {
 public:
  struct Hit {
    Vid vid = -1;                   ///< -1 while there is no vertex
    double distance_squared = 0.0;  ///< [map units squared]
  };
  /// Of two at one distance the one that was made first.  Looks at the vertices in the order of their X, from
  /// `at` outward, until they are farther in X alone.
  Hit Nearest(Ormel& ormel, MapPoint at);

  /// A command has ended: brings the index up to date.
  void Follow(const Ormel& ormel, const ChangeRecord& record);

 private:
  struct Place {
    double x = 0.0;
    Vid vid = 0;
    double y = 0.0;
    auto operator<=>(const Place&) const = default;
  };
  void Read(Ormel& ormel);

  std::set<Place> places_;
  bool read_ = false;
  bool within_a_command_ = false;  ///< read when its changes could still be undone
  int connection_ = -1;            ///< of which project
  std::uint64_t changes_ = 0;      ///< of that project, seen so far
};

}  // namespace ormel
