#include "zones/fan.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <utility>

namespace zones {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr std::size_t kFirstTracks = 32;
/// Part of the well's water that a strip may carry which is cut off where its tracks part.
constexpr double kThin = 1e-6;
/// A strip's volume may be off by this part of the outline's tolerance: some 150 strips make a zone, and
/// their errors have both signs.
constexpr double kStripShare = 5e-3;
/// The rim in parts of the shortest length that the flow around the well has.
constexpr double kRimShare = 0.02;
/// Width, in parts of the size of the smallest zone, at which a thin strip is cut off.
constexpr double kParting = 0.002;
/// Longest step and error of a step, in parts of the zone's size.
constexpr double kStep = 0.5, kStepError = 2e-6;
/// The same around transient wells, whose water from storage dwindles outward.
constexpr double kTransientStep = 0.1;
constexpr int kRounds = 60;
/// Far from the well neighbouring tracks are apart by their own errors at last, however near they began: from
/// this round on a strip's error may be twice as large in each, up to so many times.
constexpr int kNoisyRound = 6;
constexpr double kMostNoise = 50.0;
/// So many tracks tell that it cannot be mended by more.
constexpr std::size_t kMostTracks = 4000;

double Cross(Complex a, Complex b) {
  return a.real() * b.imag() - a.imag() * b.real();
}

bool InTriangle(Complex p, Complex a, Complex b, Complex c) {
  const double u = Cross(b - a, p - a), v = Cross(c - b, p - b), w = Cross(a - c, p - c);
  return (u > 0.0 && v > 0.0 && w > 0.0) || (u < 0.0 && v < 0.0 && w < 0.0);
}

/// `more` begins where `path` ends, after the time `begun`.
void Continue(aem::Path& path, aem::Path more, double begun) {
  const std::size_t known = path.points.empty() ? 0 : 1;
  for (std::size_t i = known; i < more.points.size(); ++i) {
    path.points.push_back(more.points[i]);
    path.points.back().time += begun;
  }
  path.end = more.end;
  path.label = std::move(more.label);
}

}  // namespace

Fan::Fan(const PlanField& field, const Source& source, std::span<const double> times,
         const FanOptions& options)
    : field_(field), source_(source), times_(times.begin(), times.end()), options_(options) {
  ChooseRim();
}

/// Paths begin where the well's own draw is far above all other flow, and well within the smallest zone.
void Fan::ChooseRim() {
  const aem::PointState centre = field_.At(source_.at);
  storage_ = std::max(centre.porosity * centre.thickness, 1e-300);
  const double background = std::abs(centre.discharge);
  // Safely on the inner side of the rim, where rounding leaves no doubt which formula holds.
  rim_ = std::min(0.99 * source_.radius, kRimShare * SizeAfter(times_.front()));
  if (background > 0.0) rim_ = std::min(rim_, kRimShare * source_.discharge / (2.0 * kPi * background));
  to_centre_ = kPi * rim_ * rim_ * storage_ / source_.discharge;
  least_size_ = SizeAfter(times_.front());
}

double Fan::SizeAfter(double time) const {
  return std::sqrt(source_.discharge * time / (kPi * storage_));
}

/// From one asked time to the next, with steps by the size that the zone has then: between the ends of a step
/// a place is known less well than at them.
bool Fan::TraceAll(const std::vector<double>& angles, std::vector<Track>* tracks) {
  std::vector<aem::Path> paths(angles.size());
  std::vector<std::size_t> going(angles.size());
  std::iota(going.begin(), going.end(), std::size_t{0});
  double begun = to_centre_;
  for (const double time : times_) {
    std::vector<aem::PathStart> starts;
    for (const std::size_t i : going) {
      const bool first = paths[i].points.empty();
      starts.push_back(
          {first ? source_.at + std::polar(rim_, angles[i]) : paths[i].points.back().at, -1e30, false});
    }
    aem::TraceOptions options;
    options.longest_time = time - begun;
    options.step = (field_.HasTransients() ? kTransientStep : kStep) * SizeAfter(time);
    options.tolerance = kStepError;
    options.boundaries = options_.boundaries;
    options.threads = options_.threads;
    options.stop = options_.stop;
    std::vector<aem::Path> stage = aem::TracePaths(field_, starts, options);
    if (stage.size() != starts.size()) return false;
    std::vector<std::size_t> still_going;
    for (std::size_t k = 0; k < going.size(); ++k) {
      Continue(paths[going[k]], std::move(stage[k]), begun);
      if (paths[going[k]].end == aem::PathEnd::kTime) still_going.push_back(going[k]);
    }
    going = std::move(still_going);
    begun = time;
  }
  for (std::size_t i = 0; i < paths.size(); ++i) tracks->emplace_back(paths[i], angles[i]);
  return true;
}

/// Into the well across its rim between two angles, by Simpson's rule.
double Fan::FlowBetween(double from, double to) const {
  const auto inward = [&](double angle) {
    const Complex outward = std::polar(1.0, angle);
    const Complex discharge = field_.At(source_.at + rim_ * outward).discharge;
    return -(discharge.real() * outward.real() + discharge.imag() * outward.imag());
  };
  return rim_ * (to - from) / 6.0 * (inward(from) + 4.0 * inward(0.5 * (from + to)) + inward(to));
}

double Fan::AngleAfter(std::size_t i) const {
  return i + 1 == tracks_.size() ? tracks_.front().angle() + 2.0 * kPi : tracks_[i + 1].angle();
}

bool Fan::HoldsWell(Complex a, Complex b, Complex c, Complex d) const {
  bool holds = false;
  const auto [left, right] = std::minmax({a.real(), b.real(), c.real(), d.real()});
  const auto [low, high] = std::minmax({a.imag(), b.imag(), c.imag(), d.imag()});
  field_.Wells().ForEachNear({left, low}, {right, high}, [&](const aem::TraceWell& well) {
    if (holds || well.discharge == 0.0 || std::abs(well.at - source_.at) <= source_.radius) return;
    holds = InTriangle(well.at, a, b, c) || InTriangle(well.at, a, c, d);
  });
  return holds;
}

StripRules Fan::Rules() const {
  const double noise = std::clamp(std::exp2(round_ - kNoisyRound), 1.0, kMostNoise);
  StripRules rules;
  rules.times = times_;
  rules.volumes = volumes_;
  rules.tolerance = noise * kStripShare * options_.tolerance;
  rules.widest_parting = kParting * least_size_;
  rules.holds_well = [this](Complex a, Complex b, Complex c, Complex d) { return HoldsWell(a, b, c, d); };
  return rules;
}

/// Of the strips so far, as far as they are usable.
void Fan::MeasureVolumes() {
  volumes_.assign(times_.size(), 0.0);
  for (std::size_t j = 0; j < times_.size(); ++j) {
    for (const Strip& strip : strips_)
      if (!strip.ledgers.empty()) volumes_[j] += std::max(0.0, strip.ledgers[j].pores);
    // Not below what a zone has that recharge or streams supply almost wholly, nor above what it takes.
    const double all = source_.discharge * times_[j];
    volumes_[j] = strips_.empty() ? all : std::clamp(volumes_[j], 1e-3 * all, all);
  }
}

void Fan::Measure(const std::vector<char>& fresh) {
  const StripRules rules = Rules();
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    if (!fresh[i]) continue;
    const double flow = FlowBetween(tracks_[i].angle(), AngleAfter(i));
    const bool thin = std::fabs(flow) <= kThin * source_.discharge;
    strips_[i] = MeasureStrip(tracks_[i], Next(i), flow, rules, false);
    if (!strips_[i].good && thin) {
      strips_[i] = MeasureStrip(tracks_[i], Next(i), flow, rules, true);
      strips_[i].good = true;
    }
  }
}

/// A track into the middle of each of these strips.
bool Fan::Add(const std::vector<std::size_t>& where) {
  std::vector<double> angles;
  for (const std::size_t i : where) angles.push_back(0.5 * (tracks_[i].angle() + AngleAfter(i)));
  std::vector<Track> fresh_tracks;
  if (!TraceAll(angles, &fresh_tracks)) return false;
  std::vector<Track> tracks;
  std::vector<Strip> strips;
  std::vector<char> fresh;
  std::size_t next = 0;
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    const bool divided = next < where.size() && where[next] == i;
    tracks.push_back(std::move(tracks_[i]));
    strips.push_back(divided ? Strip{} : std::move(strips_[i]));
    fresh.push_back(divided);
    if (!divided) continue;
    tracks.push_back(std::move(fresh_tracks[next++]));
    strips.emplace_back();
    fresh.push_back(1);
  }
  tracks_ = std::move(tracks);
  strips_ = std::move(strips);
  Measure(fresh);
  return true;
}

/// Each round halves what the strips carry that are not good yet, down to what is too thin to matter.
void Fan::TellProgress(const std::vector<std::size_t>& bad) {
  if (!options_.progress) return;
  double widest = kThin;
  for (const std::size_t i : bad) widest = std::max(widest, std::fabs(strips_[i].flow) / source_.discharge);
  told_ = std::max(told_, 1.0 - std::log(widest / kThin) / std::log(1.0 / kThin));
  options_.progress(told_);
}

bool Fan::Build() {
  std::vector<double> angles;
  for (std::size_t i = 0; i < kFirstTracks; ++i) angles.push_back(2.0 * kPi * double(i) / kFirstTracks);
  MeasureVolumes();
  if (!TraceAll(angles, &tracks_)) return false;
  strips_.resize(tracks_.size());
  Measure(std::vector<char>(tracks_.size(), 1));
  for (round_ = 0; round_ < kRounds; ++round_) {
    MeasureVolumes();
    std::vector<std::size_t> bad;
    for (std::size_t i = 0; i < strips_.size(); ++i)
      if (!strips_[i].good) bad.push_back(i);
    TellProgress(bad);
    if (bad.empty() || tracks_.size() + bad.size() > kMostTracks) break;
    if (!Add(bad)) return false;
  }
  rim_flow_ = 0.0;
  for (const Strip& strip : strips_) rim_flow_ += strip.flow / source_.discharge;
  return true;
}

int Fan::Unresolved() const {
  return static_cast<int>(
      std::count_if(strips_.begin(), strips_.end(), [](const Strip& s) { return !s.good; }));
}

}  // namespace zones
