// Elements that are no lines: wells, circular and polygonal areas.
#pragma once

#include <span>
#include <vector>

#include "aem/kernel/geometry.h"
#include "aem/kernel/piece.h"

namespace aem::detail {

/// A vertical well: Omega = Q/(2 pi) ln(z - at); within the radius the value at the radius.
struct WellSource {
  Complex at;
  double radius = 1.0;
  double discharge = 0.0;  ///< [L3/d]
  int unknown = -1;        ///< -1: discharge given
};
/// Per unit discharge.
Flow WellInfluence(const WellSource& well, Complex z);

/// A circular area sink (Strack, 1989): outside like a well, inside
/// Phi = rate/4 (r^2 - R^2) + rate R^2/2 ln R.  omega is real inside.
struct DiskSource {
  Complex at;
  double radius = 1.0;
  double rate = 0.0;  ///< [L/d]
  int unknown = -1;
};
/// Per unit rate.
Flow DiskInfluence(const DiskSource& disk, Complex z);

/// A polygon with a uniform rate.  By Gauss' theorem on G = r^2 (ln r - 1)/4, whose Laplacian is ln r,
///   area integral of ln r = sum over edges d/4 * integral (2 ln r - 1) ds,
///   its gradient          = - sum over edges n * integral ln r ds,
/// d the distance from the point to the edge's line along its outward normal n (own derivation).  Far away
/// the area's moments take over; there the potential is analytic and has a stream function.
class AreaSource {
 public:
  static constexpr int kMoments = 24;

  AreaSource(std::vector<Complex> ring, double rate);
  Flow Influence(Complex z) const;  ///< for the rate it was made with; omega is real when near
  double Rate() const { return rate_; }
  double Area() const { return area_; }
  Complex Centre() const { return centre_; }
  double Reach() const { return reach_; }  ///< the farthest vertex from the centre
  const std::vector<Complex>& Ring() const { return ring_; }
  /// Adds the rate times the integrals of t^k dA/reach^2, t = (z - centre)/reach, k = 0 ... kMoments.
  void AddMoments(Complex centre, double reach, std::span<Complex> moments) const;

 private:
  std::vector<Complex> ring_;  ///< counter-clockwise
  double rate_ = 0.0, area_ = 0.0, reach_ = 0.0;
  Complex centre_;
  std::vector<Complex> moments_;  ///< about the own centre
};

/// What areas with these moments give at a point farther than three times the reach from the centre.
Flow FarAreas(std::span<const Complex> moments, Complex centre, double reach, Complex z);

}  // namespace aem::detail
