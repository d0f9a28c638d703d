// The outline of a time-related capture zone from backward traces.
//
// Particles leave the rim of a well against the flow.  Where they are after the time of travel T is the
// outline of the ground whose water reaches the well within T: the backward flow maps the rim to it, so that
// the tips in the order of the particles' angles are its vertices.  Particles are added between neighbours
// until the outline moves less than a tolerance, also where neighbours part ways at a stagnation point.  A
// particle that ends early (at a stream, a boundary) contributes its end.  Own derivation.
#pragma once

#include <functional>
#include <vector>

#include "core/types.h"

namespace ormel {

/// One particle: where it is after each of the times, and where it left the traced window, if it did.
struct Ray {
  double angle = 0.0;  ///< of release, counter-clockwise from east [rad]
  std::vector<ModelPoint> tips;
  bool cut = false;  ///< left the window or could not be followed before the longest time
};

/// Traces particles released at these angles, in the same order.  False stops the outline.
using RayTracer = std::function<bool(const std::vector<double>& angles, std::vector<Ray>& rays)>;

struct OutlineOptions {
  double tolerance = 0.002;  ///< largest move of the outline, in parts of its diagonal
  int first_rays = 32;
  double longest_side = 0.05;  ///< of the outline between two tips, in parts of its diagonal
  int rounds = 40;             ///< each halves the angles where the outline still moves
};

struct Outline {
  bool traced = false;     ///< the tracer went to its end
  bool converged = false;  ///< the outline moves less than the tolerance everywhere
  bool cut = false;        ///< a particle was cut off: the zone is larger than the outline
  std::vector<std::vector<ModelPoint>> rings;  ///< one for each time, counter-clockwise order of release
  std::size_t rays = 0;
};

/// `times` ascending; the rays have one tip for each.
Outline TraceOutline(const std::vector<double>& times, const RayTracer& tracer,
                     const OutlineOptions& options);

/// Leaves out vertices that lie within `distance` of the line without them (Douglas and Peucker 1973), as
/// long as at least four stay.
std::vector<ModelPoint> SimplifyRing(const std::vector<ModelPoint>& ring, double distance);

/// Area of a ring, positive when counter-clockwise.
double RingArea(const std::vector<ModelPoint>& ring);
/// Diagonal of the ring's bounding box.
double RingDiagonal(const std::vector<ModelPoint>& ring);

}  // namespace ormel
