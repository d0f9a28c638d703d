#include "aem/kernel/aquifer.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace aem::detail {

double Zone::Head(double potential) const {
  const double limit = PotentialAtTop();
  if (potential >= limit) return base + (potential + limit) / (conductivity * full_thickness);
  const double depth = std::sqrt(2.0 * std::abs(potential) / conductivity);
  return potential >= 0.0 ? base + depth : base - depth;
}

double Zone::Potential(double head) const {
  const double depth = head - base;
  if (depth >= full_thickness) return conductivity * full_thickness * depth - PotentialAtTop();
  return 0.5 * conductivity * depth * std::abs(depth);
}

double Zone::Thickness(double potential) const {
  if (potential <= 0.0) return 0.0;
  if (potential >= PotentialAtTop()) return full_thickness;
  return std::sqrt(2.0 * potential / conductivity);
}

double Zone::Slope(double potential) const {
  const double depth =
      potential >= PotentialAtTop() ? full_thickness : std::sqrt(2.0 * std::abs(potential) / conductivity);
  return conductivity * std::max(depth, 1e-3 * full_thickness);
}

Zones::Zones(const Aquifer& aquifer, const std::vector<Domain>& domains,
             const std::vector<std::vector<Complex>>& rings)
    : global_{aquifer.conductivity, aquifer.base, aquifer.thickness, aquifer.porosity},
      top_(aquifer.base + aquifer.thickness),
      domains_(&domains),
      rings_(rings),
      boxes_(rings.size()),
      by_area_(rings.size()) {
  std::vector<double> area(rings.size());
  for (std::size_t i = 0; i < rings.size(); ++i) {
    area[i] = std::abs(SignedArea(rings_[i]));
    for (Complex p : rings_[i]) boxes_[i].Add(p);
    if (domains[i].recharge_sink != 0.0 && !rings_[i].empty()) recharging_.push_back(int(i));
  }
  std::iota(by_area_.begin(), by_area_.end(), 0);
  std::stable_sort(by_area_.begin(), by_area_.end(), [&](int a, int b) { return area[a] < area[b]; });
}

Zone Zones::At(Complex p) const {
  Zone zone = global_;
  bool k = false, base = false, porosity = false;
  for (int d : by_area_) {
    const Domain& domain = (*domains_)[d];
    const bool sets = (!k && domain.conductivity != kNotSet) || (!base && domain.base != kNotSet) ||
                      (!porosity && domain.porosity != kNotSet);
    if (!sets || !Inside(d, p)) continue;
    if (!k && domain.conductivity != kNotSet) {
      zone.conductivity = domain.conductivity;
      k = true;
    }
    if (!base && domain.base != kNotSet) {
      zone.base = domain.base;
      zone.full_thickness = top_ - domain.base;
      base = true;
    }
    if (!porosity && domain.porosity != kNotSet) {
      zone.porosity = domain.porosity;
      porosity = true;
    }
  }
  return zone;
}

double Zones::Recharge(Complex p) const {
  double sum = 0.0;
  for (int d : recharging_)
    if (Inside(d, p)) sum += (*domains_)[d].recharge_sink;
  return sum;
}

}  // namespace aem::detail
