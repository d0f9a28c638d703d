// A strength that follows a power of the distance r from a place, on links that shrink towards it: each is a
// plain piece, and together they carry one law of one or two unknowns (own procedure).  Within a link, whose
// ends are a factor of two and a half apart, polynomials of degree five follow the law to 1e-4 of its change
// there.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "aem/kernel/grading.h"
#include "aem/kernel/piece.h"

namespace aem::detail {

/// A link as shares of the part that the law holds on: r runs from `near` to `far`, 1 at the part's far end.
struct Link {
  double near = 0.0, far = 1.0;
};

/// From the far end inward; the last begins at 0.  They end where less than a thousandth of r^power is left,
/// or below `smallest`, the share that coordinates still tell apart.
std::vector<Link> Links(double power, double smallest);

/// Length down to which links of a segment are told apart by its coordinates [L].
double SmallestLink(Complex from, Complex to);

/// Where a link lies on a segment, if the part's end at the place is its start, or else its end.
Part Placed(const Link& link, const Part& part, bool at_start);

using LinkCoefficients = std::array<double, kMaxBasis>;

/// How many links, from the place on, are no law to whoever looks from within them or beside: from farther
/// away they are, since they have its moments.  No condition is met there.
inline constexpr std::size_t kBlindLinks = 3;

/// Legendre coefficients of r^(power - 1) on a link, X towards larger r; its first six moments are exact.
LinkCoefficients DensityOn(const Link& link, double power);

/// Of r^power, whose values at both ends and first four moments are kept.
LinkCoefficients JumpOn(const Link& link, double power);

/// The same for X towards the place.
LinkCoefficients Reversed(LinkCoefficients c);

}  // namespace aem::detail
