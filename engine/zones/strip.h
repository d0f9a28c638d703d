// The ground between two neighbouring tracks of a well: a stream tube.
//
// What is known of it without looking at its shape is how much water it brings: the flow across its end at
// the well's rim, less what recharge and streams add on the way.  Moving up the tube with the water, its flow
// F changes as dF/dt = -F N / (n b) with the infiltration N, porosity n and thickness b, and at a line-sink
// by the flow behind it over the flow before it.  The pore volume that is swept in a time is the integral of
// F.  Held against the volume between the two tracks this shows whether anything hides between them: another
// well's ground, a bend of the outline, a place where the flow divides.  (Own derivation, from continuity.)
//
// Beneath a stream that takes part of the flow the well's water is the lower part; its share f of the depth
// goes back to 1 where recharge above it has run out.  The ledger counts the well's share alone.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "zones/track.h"

namespace zones {

/// Where the water came from that a well takes in a time [L3].
struct Ledger {
  double pores = 0.0;     ///< it stood in the aquifer's pores when the time began
  double recharge = 0.0;  ///< it fell in as recharge meanwhile
  double surface = 0.0;   ///< from line-sinks, sink disks and wells that give
  double edge = 0.0;      ///< from beyond a boundary, a window, dry or ignored ground
  double left_out = 0.0;  ///< of strips too thin to be followed
  double area = 0.0;      ///< of the ground [L2]
  double shared = 0.0;    ///< of ground whose water goes elsewhere in its upper part [L2]

  void Add(const Ledger& other);
  double Told() const { return pores + recharge + surface + edge + left_out; }
};

/// What a strip must satisfy.
struct StripRules {
  std::span<const double> times;    ///< ascending [d]
  std::span<const double> volumes;  ///< by which errors are measured: of the zone at each time [L3]
  double tolerance = 2e-5;          ///< of a strip's volume, in parts of these
  double widest_parting = 0.0;      ///< width at which a thin strip is cut off [L]
  /// Whether the box around the points holds a well that is not the zone's own.
  std::function<bool(Complex, Complex, Complex, Complex)> holds_well;
};

/// A strip measured.
struct Strip {
  double flow = 0.0;    ///< at the rim [L3/d]
  bool good = false;    ///< its volumes are as they must be up to the longest time, or to where both ended
  double until = 0.0;   ///< the time to which its ground belongs to the zone as a whole [d]
  bool parted = false;  ///< cut off at `until`: its tracks go different ways from there
  std::vector<Ledger> ledgers;        ///< one a time
  std::vector<double> volume_errors;  ///< one a time [L3]
};

/// Measures the strip between two tracks, `a` clockwise of `b` around the well.  `thin`: cut it where it
/// widens instead of calling it bad.
Strip MeasureStrip(const Track& a, const Track& b, double flow, const StripRules& rules, bool thin);

}  // namespace zones
