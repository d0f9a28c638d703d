// Time-related capture zones of a solved model: the ground from which water reaches a well within a time.
//
// Units and signs as in aem/model.h.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "zones/fan.h"

namespace zones {

/// The zone of a well for a time.
struct Zone {
  double time = 0.0;                        ///< [d]
  std::vector<Complex> ring;                ///< counter-clockwise, not closed
  std::vector<std::vector<Complex>> holes;  ///< clockwise: ground within that belongs to others
  double area = 0.0;                        ///< of the ring less its holes [L2]
  Ledger supply;                            ///< where the water of that time came from, by the strips [L3]
  double pumped = 0.0;                      ///< discharge times time [L3]
  double balance = 0.0;                     ///< what `supply` misses of `pumped`, over `pumped`
  double overlap = 0.0;                     ///< area of the strips less that of the ring, over the latter
};

struct WellZones {
  Source source;
  std::vector<Zone> zones;  ///< one a time; empty when `failure` is not
  std::string failure;      ///< why there is none, a sentence
  int tracks = 0;
  std::map<aem::PathEnd, int> ends;  ///< of the tracks at the longest time
};

struct ZoneOptions {
  double tolerance = 2e-3;                   ///< of the outline, in parts of the zone's size
  int threads = 0;                           ///< 0: as many as the machine has
  std::vector<aem::EndlessLine> boundaries;  ///< at which the ground ends
  const std::atomic<bool>* stop = nullptr;
};

/// Zones of several wells; `times` ascending, above 0.  `progress` receives the share of the work that is
/// done, 0 to 1 and rising, some twenty times a well and from one thread at a time, and returns false to
/// stop. Stopped, the result is empty.
std::vector<WellZones> OutlineZones(const PlanField& field, std::span<const Source> wells,
                                    std::span<const double> times, const ZoneOptions& options,
                                    const std::function<bool(double)>& progress = {});

}  // namespace zones
