#include "zones/zone.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

#include "aem/parallel.h"
#include "zones/rings.h"

namespace zones {
namespace {

/// Of a zone's water, over which it is no zone at all; right ones stay below 0.007.
constexpr double kMostImbalance = 0.05;
/// By which the flow across the rim may miss the well's discharge: else something stands within the rim.
constexpr double kRimError = 0.01;
/// Of the work for a well that is done when its tracks are followed.
constexpr double kFollowed = 0.85;

/// What all wells have done, told as one share.
class Shares {
 public:
  Shares(std::size_t wells, const std::function<bool(double)>& tell, std::atomic<bool>* stop)
      : of_well_(wells, 0.0), tell_(tell), stop_(stop) {}
  void Put(std::size_t well, double share) {
    if (!tell_) return;
    const std::lock_guard lock(guard_);
    all_ += share - of_well_[well];
    of_well_[well] = share;
    if (!stop_->load() && !tell_(all_ / double(of_well_.size()))) stop_->store(true);
  }

 private:
  std::mutex guard_;
  std::vector<double> of_well_;
  double all_ = 0.0;
  const std::function<bool(double)>& tell_;
  std::atomic<bool>* stop_;
};

/// Places that a zone never closes over: wells but its own.
std::vector<Complex> OtherWells(const PlanField& field, const Source& source) {
  std::vector<Complex> places;
  for (const aem::TraceWell& well : field.Wells().wells())
    if (well.discharge != 0.0 && std::abs(well.at - source.at) > source.radius) places.push_back(well.at);
  return places;
}

WellZones OutlineWell(const PlanField& field, const Source& source, std::span<const double> times,
                      const FanOptions& options) {
  WellZones result;
  result.source = source;
  const aem::PointState there = field.At(source.at);
  if (there.status != aem::PointStatus::kOk || !(there.thickness * there.porosity > 0.0)) {
    result.failure = "The well stands in ground that is dry or left out.";
    return result;
  }
  Fan fan(field, source, times, options);
  if (!fan.Build()) return result;
  result.tracks = static_cast<int>(fan.tracks().size());
  for (const Track& track : fan.tracks()) ++result.ends[track.end()];
  if (fan.Unresolved() > 0) {
    result.failure = "Its paths could not be told apart within the tolerance.";
    return result;
  }
  if (!(std::fabs(fan.RimFlow() - 1.0) <= kRimError)) {
    result.failure = "What flows to it is not what it takes: another element stands within its radius.";
    return result;
  }
  const std::vector<Complex> others = OtherWells(field, source);
  for (std::size_t j = 0; j < times.size(); ++j) {
    if (options.stop->load()) return result;
    Rings rings = RingsOf(fan, source, times[j], options.tolerance, others);
    if (!rings.failure.empty()) {
      result.failure = rings.failure;
      result.zones.clear();
      return result;
    }
    Zone zone;
    zone.time = times[j];
    for (const Strip& strip : fan.strips()) zone.supply.Add(strip.ledgers[j]);
    zone.ring = std::move(rings.outer);
    zone.holes = std::move(rings.holes);
    zone.area = rings.area;
    zone.pumped = source.discharge * times[j];
    zone.overlap = zone.supply.area / zone.area - 1.0;
    // The strips end in chords, the ring is drawn smoothly, and it is the ring that is answered for.
    zone.supply.pores *= zone.area / zone.supply.area;
    zone.balance = 1.0 - zone.supply.Told() / zone.pumped;
    if (!(std::fabs(zone.balance) < kMostImbalance)) {
      result.failure = "Its water balance does not close.";
      result.zones.clear();
      return result;
    }
    result.zones.push_back(std::move(zone));
  }
  return result;
}

}  // namespace

std::vector<WellZones> OutlineZones(const PlanField& field, std::span<const Source> wells,
                                    std::span<const double> times, const ZoneOptions& options,
                                    const std::function<bool(double)>& progress) {
  std::vector<WellZones> results(wells.size());
  const auto machine = static_cast<std::size_t>(aem::detail::ThreadCount(options.threads));
  const std::size_t team_size = std::clamp<std::size_t>(wells.size(), 1, machine);
  std::atomic<bool> stop{false};
  FanOptions fan;
  fan.tolerance = options.tolerance;
  fan.threads = static_cast<int>(std::max<std::size_t>(1, machine / team_size));
  fan.boundaries = options.boundaries;
  fan.stop = options.stop != nullptr ? options.stop : &stop;
  std::atomic<std::size_t> next{0};
  Shares shares(wells.size(), progress, &stop);
  const auto work = [&] {
    for (;;) {
      const std::size_t index = next.fetch_add(1);
      if (index >= wells.size() || stop.load() || fan.stop->load()) return;
      FanOptions own = fan;
      own.progress = [&](double share) { shares.Put(index, kFollowed * share); };
      results[index] = OutlineWell(field, wells[index], times, own);
      shares.Put(index, 1.0);
    }
  };
  aem::detail::RunOnThreads(static_cast<int>(team_size), &stop, work);
  if (stop.load() || fan.stop->load()) results.clear();
  return results;
}

}  // namespace zones
