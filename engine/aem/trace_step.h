// One step of a particle: its motion at a place, and the embedded Runge-Kutta step.  Internal to the tracer.
#pragma once

#include "aem/trace_field.h"

namespace aem::detail {

/// Where a particle is: in plan, and its relative height (0 base, 1 top of the saturated aquifer).
struct Place {
  Complex at;
  double s = 0.0;
};

/// How it moves there, in the direction of tracing: per day of travel time.
struct Motion {
  Complex v;
  double ds = 0.0;
  PointState state;
  bool ok = false;  ///< false where there is no flow field: dry or ignored ground

  Place Move(const Place& from, double days) const { return {from.at + v * days, from.s + ds * days}; }
};

/// A tried step of Dormand and Prince.
struct Trial {
  bool ok = false;
  PointStatus failed = PointStatus::kOk;  ///< why not ok
  Place end, middle;
  Motion motion;       ///< at the end
  double error = 0.0;  ///< estimate over tolerance: above 1 the step is too long
};

struct Tolerance {
  double position = 0.0;  ///< [L]
  double height = 0.0;    ///< of the relative height
};

class Mover {
 public:
  Mover(const TraceField& field, bool forward);
  Motion At(const Place& place) const;
  /// A step of `days` from `from`, where the motion is `first`.
  Trial Step(const Place& from, const Motion& first, double days, const Tolerance& tolerance) const;
  /// +1 forward, -1 backward.
  double direction() const { return direction_; }

 private:
  bool NearPartialWell(Complex at, double thickness) const;

  const TraceField& field_;
  double direction_;
};

}  // namespace aem::detail
