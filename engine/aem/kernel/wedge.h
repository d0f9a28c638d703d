// Where a string of given head ends on edges between zones, heads near its end vary like a power of the
// distance: h - h0 = A r^p f(angle), with f'' + p^2 f = 0 in every sector, f = 0 along the string, and head
// and flow continuous across edges.  For a string at right angles to one edge p = (2/pi) atan sqrt(k1/k2), k1
// on the side of the string (own derivation by symmetry); the density along the string goes like r^(p - 1).
#pragma once

#include <vector>

namespace aem::detail {

/// A ray from the end, with what lies counter-clockwise of it.
struct WedgeRay {
  double angle = 0.0;
  double transmissivity = 1.0;  ///< of the sector that begins here [L2/d]
  bool wall = false;            ///< nothing crosses the ray
};

/// The lowest power above 0.  `rays` by rising angle; the string leaves along `string`, within the sector
/// that its place among the rays says.
double WedgePower(std::vector<WedgeRay> rays, double string);

}  // namespace aem::detail
