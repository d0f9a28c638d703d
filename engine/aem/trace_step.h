// One step of a particle: its motion at a place, and the embedded Runge-Kutta step.  Internal to the tracer.
//
// Paths are integrated over their length, not over time: d(place)/dw = V / W and dt/dw = 1 / W with the
// velocity V and W = sqrt(|V|^2 + slow^2).  Towards a well the velocity grows like 1/r, but along the length
// the radial path is a straight line and its time a parabola, which every step solves exactly, however long
// it is.  `slow` is a velocity too small to see; it keeps the equations finite where the water stands still.
// (Own derivation; known as an arc-length form.)
#pragma once

#include <complex>

#include "aem/trace_field.h"

namespace aem::detail {

/// Where a particle is: in plan, its relative height (0 base, 1 top of the saturated aquifer), its travel
/// time.
struct Place {
  Complex at;
  double s = 0.0;
  double time = 0.0;  ///< [d]
};

/// How it moves there, in the direction of tracing, per length of way [L].
struct Motion {
  Complex v;        ///< at most 1 long
  double ds = 0.0;  ///< [1/L]
  double dt = 0.0;  ///< [d/L]
  PointState state;
  bool ok = false;  ///< false where there is no flow field: dry or ignored ground

  Place Move(const Place& from, double way) const {
    return {from.at + v * way, from.s + ds * way, from.time + dt * way};
  }
  /// Velocity in plan [L/d] and growth of the relative height [1/d].
  double Speed() const { return std::abs(v) / dt; }
  double Rise() const { return ds / dt; }
};

/// A tried step of Dormand and Prince.
struct Trial {
  bool ok = false;
  PointStatus failed = PointStatus::kOk;  ///< why not ok; kOk: no finite flow
  Place end, middle;
  Motion motion;       ///< at the end
  double error = 0.0;  ///< estimate over tolerance: above 1 the step is too long
};

struct Tolerance {
  double position = 0.0;  ///< [L]; for the time, the way done in it
  double height = 0.0;    ///< of the relative height
};

class Mover {
 public:
  /// `slow` as above [L/d], above 0.
  Mover(const TraceField& field, bool forward, double slow);
  Motion At(const Place& place) const;
  /// A step of `way` from `from`, where the motion is `first`.
  Trial Step(const Place& from, const Motion& first, double way, const Tolerance& tolerance) const;
  /// +1 forward, -1 backward.
  double direction() const { return direction_; }

 private:
  bool NearPartialWell(Complex at, double thickness) const;

  const TraceField& field_;
  double direction_;
  double slow_;
};

}  // namespace aem::detail
