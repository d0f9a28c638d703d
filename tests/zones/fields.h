// Random fields of wells in uniform flow, for zones whose areas are known: in confined flow without recharge
// the zone of a well for time t has the pore volume Q t.
#pragma once

#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "aem/solution.h"
#include "zones/zone.h"

namespace zones_test {

using aem::Complex;

inline constexpr double kConductivity = 20.0, kThickness = 10.0, kPorosity = 0.25;

inline aem::Model Aquifer(double gradient, double direction = 0.0) {
  aem::Model m;
  m.aquifer.conductivity = kConductivity;
  m.aquifer.thickness = kThickness;
  m.aquifer.porosity = kPorosity;
  m.aquifer.uniform_flow = std::polar(kConductivity * kThickness * gradient, direction);
  m.aquifer.has_reference = true;
  m.aquifer.reference_point = {0.0, 0.0};
  m.aquifer.reference_head = 1e5;  // confined everywhere
  m.layout = {-3000.0, -3000.0, 3000.0, 3000.0, true};
  return m;
}

inline void AddWell(aem::Model& m, Complex at, double discharge, double radius = 0.3) {
  m.wells.push_back({{"WL_" + std::to_string(m.wells.size() + 1), 1}, at, radius, false, discharge});
}

/// Two to eight wells in a square of 1,800, their rates over three orders, in a gradient of 0 to 0.01.
inline aem::Model RandomField(std::mt19937& random) {
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  aem::Model m = Aquifer(0.01 * unit(random), 2.0 * std::numbers::pi * unit(random));
  const int wells = 2 + int(7 * unit(random));
  for (int k = 0; k < wells; ++k) {
    const Complex at{1800.0 * unit(random), 1800.0 * unit(random)};
    AddWell(m, at, std::pow(10.0, 3.0 * unit(random)), 0.05 + 0.4 * unit(random));
  }
  return m;
}

/// Every well of the model that takes water.
inline std::vector<zones::Source> Sources(const zones::PlanField& field) {
  std::vector<zones::Source> sources;
  for (const aem::TraceWell& well : field.RealWells().wells())
    if (well.discharge > 0.0) sources.push_back({well.at, well.radius, well.discharge, well.label});
  return sources;
}

}  // namespace zones_test
