// Random fields of wells, whose zones have known volumes: every area, place, order and overlap is held
// against what must be.
//   trial_zone_fields [fields] [first seed]
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "zones/fields.h"
#include "zones/polygons.h"

namespace zones_test {
namespace {

struct Tally {
  int zones = 0, failures = 0, wrong = 0, unnested = 0, overlapping = 0;
  double area = 0.0, balance = 0.0, unheld = 0.0, shared = 0.0, seconds = 0.0;
};

void Note(double& worst, double value) {
  worst = std::max(worst, value);
}

void LookAt(unsigned seed, const zones::WellZones& well, Tally* tally) {
  if (!well.failure.empty()) {
    ++tally->failures;
    std::printf("%u %s Q %.1f: %s (%d tracks)\n", seed, well.source.label.c_str(), well.source.discharge,
                well.failure.c_str(), well.tracks);
  }
  const zones::Zone* before = nullptr;
  for (const zones::Zone& zone : well.zones) {
    ++tally->zones;
    const Polygon polygon(zone);
    const double off = std::fabs(polygon.Area() * kThickness * kPorosity / zone.pumped - 1.0);
    const bool sound = polygon.Valid() && SignedArea(zone.ring) > 0.0 && InZone(zone, well.source.at);
    const double unheld = before == nullptr ? 0.0 : 1.0 - Polygon(*before).Shared(polygon) / before->area;
    const bool wrong = off > 0.01 || !sound;
    tally->wrong += wrong;
    tally->unnested += unheld > 0.01;
    if (wrong || unheld > 0.01)
      std::printf("%u %s Q %.1f T %.1f: area off %.4f sound %d not held %.4f balance %.1e tracks %d\n", seed,
                  well.source.label.c_str(), well.source.discharge, zone.time, off, sound, unheld,
                  zone.balance, well.tracks);
    Note(tally->area, off), Note(tally->balance, std::fabs(zone.balance)), Note(tally->unheld, unheld);
    before = &zone;
  }
}

void LookBetween(unsigned seed, const std::vector<zones::WellZones>& wells, Tally* tally) {
  for (std::size_t i = 0; i < wells.size(); ++i)
    for (std::size_t k = 0; k < i; ++k)
      for (std::size_t j = 0; j < std::min(wells[i].zones.size(), wells[k].zones.size()); ++j) {
        const zones::Zone &a = wells[i].zones[j], &b = wells[k].zones[j];
        const double shared = Polygon(a).Shared(Polygon(b)) / std::min(a.area, b.area);
        Note(tally->shared, shared);
        if (shared <= 0.01) continue;
        ++tally->overlapping;
        std::printf("%u %s and %s share %.4f at %.1f\n", seed, wells[i].source.label.c_str(),
                    wells[k].source.label.c_str(), shared, a.time);
      }
}

void Run(unsigned seed, Tally* tally) {
  std::mt19937 random(seed);
  aem::Solution solution(RandomField(random));
  solution.Iterate(1);
  solution.PrepareManyPoints();
  const aem::SolutionField field(solution);
  const zones::PlanField plan(field, 0.0);
  std::uniform_real_distribution<double> exponent(-1.0, 2.0);
  std::vector<double> times;
  for (int i = 0; i < 3; ++i) times.push_back(365.0 * std::pow(10.0, exponent(random)));
  std::sort(times.begin(), times.end());
  const auto start = std::chrono::steady_clock::now();
  const auto wells = zones::OutlineZones(plan, Sources(plan), times, {});
  tally->seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  for (const zones::WellZones& well : wells) LookAt(seed, well, tally);
  LookBetween(seed, wells, tally);
}

}  // namespace
}  // namespace zones_test

int main(int argc, char** argv) {
  const unsigned count = argc > 1 ? unsigned(std::atoi(argv[1])) : 500;
  const unsigned first = argc > 2 ? unsigned(std::atoi(argv[2])) : 1;
  zones_test::Tally t;
  for (unsigned seed = first; seed < first + count; ++seed) zones_test::Run(seed, &t);
  std::printf("%u fields, %d zones in %.1f s: %d wells without a zone, %d wrong, %d not nested, %d overlap\n",
              count, t.zones, t.seconds, t.failures, t.wrong, t.unnested, t.overlapping);
  std::printf("worst: area %.2e, balance %.2e, not held %.2e, shared %.2e\n", t.area, t.balance, t.unheld,
              t.shared);
  return t.failures + t.wrong + t.unnested + t.overlapping > 0 ? 1 : 0;
}
