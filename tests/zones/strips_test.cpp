// Tracks and the strips between them, on paths whose flow is known.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "zones/strip.h"
#include "zones/track.h"

namespace zones_test {
namespace {

using aem::Complex;

constexpr double kTaken = 600.0, kStorage = 2.0, kPi = std::numbers::pi;

/// Of a straight path to a well at the origin, by a few of its points; time to r is pi n b r2/Q.
aem::Path Radial(double angle, const std::vector<double>& radii) {
  aem::Path path;
  for (const double r : radii) {
    aem::PathPoint point;
    point.at = std::polar(r, angle);
    point.time = kPi * kStorage * r * r / kTaken;
    point.flow = {std::polar(-kTaken / (2.0 * kPi * kStorage * r), angle), kStorage, 0.0};
    path.points.push_back(point);
  }
  return path;
}

zones::Track RadialTrack(double angle, const std::vector<double>& radii) {
  return {Radial(angle, radii), angle};
}

double TimeTo(double r) {
  return kPi * kStorage * r * r / kTaken;
}

TEST(Track, IsWhereItIsBetweenItsMarks) {
  const zones::Track track = RadialTrack(0.4, {1.0, 20.0, 100.0});
  std::size_t hint = 0;
  for (const double r : {1.5, 7.0, 60.0, 99.0, 3.0})
    EXPECT_NEAR(std::abs(track.At(TimeTo(r), &hint).at - std::polar(r, 0.4)), 0.0, 1e-5 * r);
  EXPECT_NEAR(std::abs(track.At(TimeTo(500.0), &hint).at), 100.0, 1e-9);
}

TEST(Track, DrawsBendsWithinTheSagitta) {
  aem::Path path;
  for (const double turn : {0.0, 0.3, 0.6}) {
    aem::PathPoint point;
    point.at = std::polar(100.0, turn);
    point.time = 100.0 * turn;
    point.flow = {std::polar(-1.0, turn + kPi / 2.0), kStorage, 0.0};
    path.points.push_back(point);
  }
  const std::vector<Complex> line = zones::Track(path, 0.0).Line(0.0, 60.0, 0.01);
  for (std::size_t i = 0; i + 1 < line.size(); ++i)
    EXPECT_NEAR(std::abs(0.5 * (line[i] + line[i + 1])), 100.0, 0.02);
}

zones::StripRules Rules(const std::vector<double>& times, const std::vector<double>& volumes) {
  zones::StripRules rules;
  rules.times = times;
  rules.volumes = volumes;
  rules.tolerance = 1e-3;
  rules.widest_parting = 0.5;
  return rules;
}

struct StripCase {
  double flow;  ///< over that of the sector
  bool ended;
  bool well;
  bool good;
};

// A sector of a tenth of a radian brings a tenth over two pi of the water; what is said to flow must be that.
TEST(Strip, IsGoodOnlyWhenItsGroundHoldsItsWater) {
  const std::vector<double> radii{1.0, 20.0, 60.0, 100.0};
  const std::vector<double> times{TimeTo(50.0), TimeTo(100.0)},
      volumes{0.1 * kTaken * times[0], 0.1 * kTaken * times[1]};
  for (const StripCase& c : {StripCase{1.0, false, false, true}, StripCase{1.1, false, false, false},
                             StripCase{0.9, false, false, false}, StripCase{1.0, true, false, false},
                             StripCase{1.0, false, true, false}}) {
    aem::Path second = Radial(0.1, radii);
    if (c.ended) {
      second = Radial(0.1, {1.0, 20.0, 60.0});
      second.end = aem::PathEnd::kSurfaceWater;
    }
    zones::StripRules rules = Rules(times, volumes);
    rules.holds_well = [&](Complex, Complex, Complex, Complex) { return c.well; };
    const zones::Strip strip = zones::MeasureStrip(RadialTrack(0.0, radii), {second, 0.1},
                                                   c.flow * kTaken * 0.1 / (2.0 * kPi), rules, false);
    EXPECT_EQ(strip.good, c.good) << c.flow << c.ended << c.well;
    if (!c.good) continue;
    EXPECT_NEAR(strip.ledgers[1].Told() / (strip.flow * times[1]), 1.0, 2e-3);
  }
}

TEST(Strip, ThatEndsOnARiverTellsWhatTheRiverGives) {
  const std::vector<double> radii{1.0, 20.0, 60.0};
  aem::Path first = Radial(0.0, radii), second = Radial(0.1, radii);
  first.end = second.end = aem::PathEnd::kSurfaceWater;
  first.label = second.label = "LS_000001_0001";
  const std::vector<double> times{TimeTo(30.0), TimeTo(100.0)}, volumes{kTaken * times[0], kTaken * times[1]};
  const zones::Strip strip = zones::MeasureStrip({first, 0.0}, {second, 0.1}, kTaken * 0.1 / (2.0 * kPi),
                                                 Rules(times, volumes), false);
  EXPECT_TRUE(strip.good);
  EXPECT_FALSE(strip.parted);
  EXPECT_EQ(strip.ledgers[0].surface, 0.0);
  EXPECT_NEAR(strip.ledgers[1].surface, strip.flow * (TimeTo(100.0) - TimeTo(60.0)), 1e-6 * volumes[1]);
  EXPECT_NEAR(strip.ledgers[1].Told() / (strip.flow * times[1]), 1.0, 2e-3);
}

}  // namespace
}  // namespace zones_test
