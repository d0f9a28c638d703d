// Head and discharge potential of Dupuit-Forchheimer flow in one aquifer (Strack, 1989):
//   unconfined  Phi = k (h - b)^2 / 2                 for h below the top
//   confined    Phi = k H (h - b) - k H^2 / 2         otherwise, H = top - b
// Both meet at h = top with Phi = k H^2 / 2 and one slope, dPhi/dh = k times the saturated thickness.
#pragma once

#include <span>
#include <vector>

#include "aem/kernel/geometry.h"
#include "aem/model.h"

namespace aem::detail {

/// Properties in force at a point.
struct Zone {
  double conductivity = 1.0;
  double base = 0.0;
  double full_thickness = 1.0;  ///< top minus base
  double porosity = 0.2;

  double Top() const { return base + full_thickness; }
  /// Potential where the water table meets the top.
  double PotentialAtTop() const { return 0.5 * conductivity * full_thickness * full_thickness; }
  /// Elevation of the head.  Below a potential of 0 the branch is mirrored, so that it stays monotonous.
  double Head(double potential) const;
  double Potential(double head) const;
  /// Saturated thickness, 0 where dry.
  double Thickness(double potential) const;
  /// d Phi / d h, never below a thousandth of the confined value so that an iteration can leave dry ground.
  double Slope(double potential) const;
  bool SameHeads(const Zone& o) const { return base == o.base && full_thickness == o.full_thickness; }
  bool operator==(const Zone&) const = default;
};

/// Domains with their rings, ready for look-up; the smallest that sets a property gives it.
class Zones {
 public:
  Zones() = default;
  Zones(const Aquifer& aquifer, const std::vector<Domain>& domains,
        const std::vector<std::vector<Complex>>& rings);

  Zone At(Complex p) const;
  double Recharge(Complex p) const;  ///< sum over the domains around the point, deck's sign
  const std::vector<Complex>& Ring(int domain) const { return rings_[domain]; }
  bool Inside(int domain, Complex p) const { return boxes_[domain].Has(p) && Contains(rings_[domain], p); }

 private:
  Zone global_;
  double top_ = 0.0;
  const std::vector<Domain>* domains_ = nullptr;
  std::vector<std::vector<Complex>> rings_;
  std::vector<Box> boxes_;
  std::vector<int> by_area_;
  std::vector<int> recharging_;
};

}  // namespace aem::detail
