// A solved model and its zones.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "zones/closed_models.h"
#include "zones/polygons.h"

namespace zones_test {

/// Closed forms hold to this.
inline constexpr double kExact = 1e-3;

inline std::vector<zones::WellZones> Outlined(const aem::Model& m, const std::vector<double>& times,
                                              double now = 0.0) {
  aem::Solution solution(m);
  EXPECT_FALSE(solution.Refused());
  solution.Iterate(3);
  solution.SetTime(now);
  solution.PrepareManyPoints();
  const aem::SolutionField field(solution);
  const zones::PlanField plan(field, now);
  const std::vector<zones::Source> sources = Sources(plan);
  std::vector<zones::WellZones> results = zones::OutlineZones(plan, sources, times, {});
  EXPECT_EQ(results.size(), sources.size());
  for (const zones::WellZones& well : results) {
    EXPECT_EQ(well.failure, "") << well.source.label;
    EXPECT_EQ(well.zones.size(), times.size());
  }
  return results;
}

/// What every zone is, whatever the flow.
inline void ExpectSound(const std::vector<zones::WellZones>& wells) {
  for (const zones::WellZones& well : wells) {
    const zones::Zone* before = nullptr;
    for (const zones::Zone& zone : well.zones) {
      SCOPED_TRACE(well.source.label + " at " + std::to_string(zone.time));
      const Polygon polygon(zone);
      EXPECT_TRUE(polygon.Valid());
      EXPECT_GT(SignedArea(zone.ring), 0.0);
      EXPECT_TRUE(InZone(zone, well.source.at));
      EXPECT_NEAR(polygon.Area() / zone.area, 1.0, 1e-9);
      EXPECT_LT(std::fabs(zone.balance), 0.005)
          << "of pumped: pores " << zone.supply.pores / zone.pumped << " recharge "
          << zone.supply.recharge / zone.pumped << " surface " << zone.supply.surface / zone.pumped
          << " left out " << zone.supply.left_out / zone.pumped << "; strips over ring " << zone.overlap;
      if (before != nullptr) {
        EXPECT_GT(Polygon(*before).Shared(polygon) / before->area, 1.0 - 3.0 * kExact);
      }
      before = &zone;
    }
  }
}

/// Zones of two wells at one time share less than `most` of the smaller.
inline void ExpectApart(const std::vector<zones::WellZones>& wells, double most) {
  for (std::size_t i = 0; i < wells.size(); ++i)
    for (std::size_t k = 0; k < i; ++k)
      for (std::size_t j = 0; j < wells[i].zones.size() && j < wells[k].zones.size(); ++j) {
        const zones::Zone &a = wells[i].zones[j], &b = wells[k].zones[j];
        EXPECT_LT(Polygon(a).Shared(Polygon(b)), most * std::min(a.area, b.area))
            << wells[i].source.label << " and " << wells[k].source.label << " at " << a.time;
      }
}

/// In confined flow without recharge the pore volume is Q t.
inline void ExpectFullVolume(const std::vector<zones::WellZones>& wells, double most = kExact) {
  for (const zones::WellZones& well : wells)
    for (const zones::Zone& zone : well.zones)
      EXPECT_NEAR(zone.area * kThickness * kPorosity / zone.pumped, 1.0, most)
          << well.source.label << " Q " << well.source.discharge << " at " << zone.time;
}

/// Outlines of a well whose flow is radial are circles.
inline void ExpectCircle(const zones::Zone& zone, Complex centre, double radius) {
  EXPECT_NEAR(zone.area / (kPi * radius * radius), 1.0, kExact) << "at " << zone.time;
  for (const Complex at : zone.ring) ASSERT_NEAR(std::abs(at - centre) / radius, 1.0, 2.0 * kExact);
}

}  // namespace zones_test
