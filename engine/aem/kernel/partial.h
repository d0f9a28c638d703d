// The local three-dimensional flow near a partially penetrating well.
//
// A screen of uniform flux in a slab of thickness H between impermeable planes (Hantush, 1964, steady form);
// beside the two-dimensional well it adds
//   Phi' = -(Q/2 pi) (2H/(pi l)) sum 1/n (sin(n pi t/H) - sin(n pi b/H)) cos(n pi z/H) K0(n pi r/H)
// with t and b the screen's ends above the base and l its length.  The series falls off like exp(-pi r/H),
// below 1e-3 of the drawdown beyond two thicknesses.
//
// Nearer than a thickness, where thousands of its terms count, the images of the screen in both planes are
// summed instead, those of a few thicknesses one by one and the rest by the Euler-Maclaurin formula (own
// derivation):  Phi' = -(Q H/(4 pi l)) sum over m of
//   G(z - b + 2mH) - G(z - t + 2mH) + G(z + t + 2mH) - G(z + b + 2mH),  G(u) = asinh(u/r),
// less the mean over the height, which the integrals of the far images cancel.
#pragma once

#include "aem/kernel/aquifer.h"
#include "aem/model.h"

namespace aem::detail {

class PartialCorrection {
 public:
  /// `thickness` [L] saturated; the part of the screen that lies within it counts.
  PartialCorrection(const PartialWell& well, const Zone& zone, double thickness);

  struct Local {
    double potential = 0.0;  ///< per unit discharge [-]
    double radial = 0.0;     ///< discharge outward per unit discharge [1/L]
    double vertical = 0.0;   ///< specific discharge upward per unit discharge [1/L2]
  };
  Local At(double distance, double elevation) const;
  /// Mean of the potential over the screen at the radius, per unit discharge.
  double OnScreen() const;
  bool Reaches(double distance) const { return distance < 6.0 * thickness_; }

 private:
  double Coefficient(int n) const;
  double OnScreenBySeries() const;
  Local BySeries(double r, double z) const;
  Local ByImages(double r, double z) const;
  double base_, thickness_, bottom_, top_, radius_;
};

}  // namespace aem::detail
