#include "aem/trace.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <mutex>
#include <numbers>
#include <thread>
#include <utility>

#include "aem/trace_events.h"
#include "aem/trace_step.h"

namespace aem {
namespace {

using detail::Event;
using detail::EventKind;
using detail::Motion;
using detail::Mover;
using detail::Place;
using detail::Segment;
using detail::Trial;

double Dot(Complex a, Complex b) {
  return a.real() * b.real() + a.imag() * b.imag();
}

/// Parts of the longest step.
constexpr double kNudge = 1e-6;  ///< off a line, so that the side is certain
constexpr double kBeside =
    1e-4;  ///< off a line-sink on which a path starts: beyond what its ends do to the flow
constexpr double kTiny = 1e-7;  ///< a length that no map and no error bound can show
constexpr double kSlide = 0.1;  ///< along a wall at once
/// The longest travel time at this speed moves a particle by a billionth of a step: it stands still.
constexpr double kStill = 1e-9;

class PathTracer {
 public:
  PathTracer(const TraceField& field, const PathStart& start, const TraceOptions& options,
             const std::atomic<bool>* stop)
      : field_(field),
        options_(options),
        stop_(stop),
        mover_(field, start.forward),
        tolerance_{options.tolerance * options.step, 0.1 * options.tolerance} {
    path_.start = start;
  }

  Path Run() {
    Begin();
    while (!ended_) {
      if (stop_ != nullptr && stop_->load(std::memory_order_relaxed)) break;
      if (Stuck()) {
        End(PathEnd::kStagnation);
      } else {
        Advance();
      }
    }
    return std::move(path_);
  }

 private:
  void Begin();
  bool BeginsInWell();
  bool BeginsOnLineSink();
  bool Stuck();
  void Advance();
  bool StandsStill() const;
  void Accept(const Trial& trial, double days);
  void FieldEnds(const Trial& trial, double days);
  Event EventOf(const Trial& trial) const;
  Event EventOnTangent(double days) const {
    return detail::FirstEvent(field_, options_, mover_.direction(), place_, motion_.Move(place_, days));
  }
  void Meet(const Event& event, double days);
  void Arrive(const Event& event, const Motion& motion, double days);
  void CrossLine(const Crossing& crossing, const Motion& motion);
  bool TakenBy(const Crossing& crossing, const Motion& motion, Complex normal);
  const std::string& LineSinkLabel(const Crossing& crossing) const;
  bool CrossedInVain(const Crossing& crossing);
  void Slide(const Segment& line, Complex normal);

  double Remaining() const { return options_.longest_time - time_; }
  void AddPoint(const PointState& state);
  void AddPointHere();
  void End(PathEnd end, std::string label = {}) {
    ended_ = true;
    path_.end = end;
    path_.label = std::move(label);
  }
  void EndAtTop();
  void EndWithoutField(PointStatus status) {
    End(status == PointStatus::kIgnored ? PathEnd::kIgnored : PathEnd::kDry);
  }

  const TraceField& field_;
  const TraceOptions& options_;
  const std::atomic<bool>* stop_;
  Mover mover_;
  detail::Tolerance tolerance_;
  Path path_;
  bool ended_ = false;

  Place place_;
  Motion motion_;  ///< at place_
  double time_ = 0.0;
  double next_ = 0.0;  ///< length of the next tried step [d]

  Crossing last_crossing_;
  Complex last_crossed_at_;
  int crossed_again_ = 0;

  long long calls_ = 0;  ///< of Advance
  Place mark_;           ///< where the particle was at the last look of Stuck
  double mark_time_ = -1.0;
};

// --- the start
// ------------------------------------------------------------------------------------------------

void PathTracer::Begin() {
  const PathStart& start = path_.start;
  place_.at = start.at;
  const PointState state = field_.At(start.at);
  const bool wet = state.status == PointStatus::kOk && state.thickness > 0.0;
  if (wet) place_.s = std::clamp((start.elevation - state.base) / state.thickness, 0.0, 1.0);
  if (!wet) {
    path_.points.push_back({start.at, start.elevation, 0.0, kNotSet});
    EndWithoutField(state.status);
  } else {
    AddPoint(state);
  }
  if (detail::Outside(options_.window, start.at)) End(PathEnd::kWindow);
  if (ended_ || BeginsInWell() || BeginsOnLineSink()) return;
  motion_ = mover_.At(place_);
  if (!motion_.ok) return EndWithoutField(motion_.state.status);
  next_ = options_.longest_time;
}

/// Within the rim of a well the path is over at once, or, when the well drives it away, begins at the rim.
bool PathTracer::BeginsInWell() {
  const Complex at = place_.at;
  field_.Wells().ForEachNear(at, at, [&](const TraceWell& well) {
    const double distance = std::abs(at - well.at);
    if (distance > well.radius * (1.0 + 2e-7) || ended_) return;
    if (well.discharge * mover_.direction() > 0.0) {
      End(PathEnd::kWell, well.label);
    } else if (distance < well.radius) {
      const Complex outward = distance > 0.0 ? (at - well.at) / distance : Complex(1.0, 0.0);
      place_.at = well.at + outward * well.radius * (1.0 + 1e-7);
    }
  });
  return ended_;
}

/// On a line-sink the particle leaves to the side where the water does; when it does to neither, it is taken.
bool PathTracer::BeginsOnLineSink() {
  const double nudge = kNudge * options_.step;
  const SinkHit hit = field_.NearestSink(place_.at, nudge);
  if (hit.type != SinkType::kLineSink) return false;
  const LineSinkSegment& segment = field_.GetModel()
                                       .line_sinks[static_cast<std::size_t>(hit.index)]
                                       .segments[static_cast<std::size_t>(hit.segment)];
  const Complex along = segment.to - segment.from;
  const Complex normal = Complex(0.0, 1.0) * along / std::abs(along);
  double fastest = 0.0;
  Complex best = place_.at;
  for (const double side : {1.0, -1.0}) {
    const Complex beside = place_.at + side * kBeside * options_.step * normal;
    const Motion motion = mover_.At({beside, place_.s});
    const double away = motion.ok ? Dot(motion.v, side * normal) : 0.0;
    if (away > fastest) fastest = away, best = beside;
  }
  if (fastest > 0.0) {
    place_.at = best;
  } else {
    End(PathEnd::kSurfaceWater, segment.origin.label);
  }
  return ended_;
}

// --- stepping
// -------------------------------------------------------------------------------------------------

/// A place that holds the particle although no element says so (opposed flow on both sides of an edge, a
/// corner of walls): many steps without way or time.
bool PathTracer::Stuck() {
  constexpr long long kLook = 1000;
  if (++calls_ % kLook != 0) return false;
  const bool moved =
      std::abs(place_.at - mark_.at) > 1e-3 * options_.step || std::fabs(place_.s - mark_.s) > 1e-4;
  const bool waited = mark_time_ < 0.0 || time_ - mark_time_ > 1e-3 * options_.longest_time;
  mark_ = place_;
  mark_time_ = time_;
  return !moved && !waited;
}

bool PathTracer::StandsStill() const {
  return std::abs(motion_.v) * options_.longest_time < kStill * options_.step &&
         std::fabs(motion_.ds) * options_.longest_time < kStill;
}

void PathTracer::Advance() {
  const double remaining = Remaining();
  if (remaining <= 1e-13 * options_.longest_time) return End(PathEnd::kTime);
  if (StandsStill()) return End(PathEnd::kStagnation);
  const double speed = std::abs(motion_.v);
  double days = std::min(next_, remaining);
  if (speed * days > options_.step) days = options_.step / speed;
  const Trial trial = mover_.Step(place_, motion_, days, tolerance_);
  if (!trial.ok) return FieldEnds(trial, days);
  const double length = std::abs(trial.end.at - place_.at);
  if (length > options_.step * 1.0001) {
    next_ = days * std::max(0.2, 0.95 * options_.step / length);
    return;
  }
  // A bad step has looked at the other side of a line and says little about the way: its tangent does.
  const bool bad = trial.error > 1.0;
  const Event ahead = bad ? EventOnTangent(days) : EventOf(trial);
  if (ahead.kind != EventKind::kNone) return Meet(ahead, days * ahead.fraction);
  const double factor = trial.error > 0.0 ? std::clamp(0.9 * std::pow(trial.error, -0.2), 0.2, 5.0) : 5.0;
  // Near the tip of an element no step is short enough for the error bound: a tiny one is taken as it is.
  const bool tiny = speed * days < kTiny * options_.step && std::fabs(motion_.ds) * days < kTiny;
  next_ = days * factor;
  if (bad && !tiny) return;
  Accept(trial, days);
}

void PathTracer::Accept(const Trial& trial, double days) {
  place_ = trial.end;
  place_.s = std::clamp(place_.s, 0.0, 1.0);
  time_ = days >= Remaining() ? options_.longest_time : time_ + days;
  motion_ = trial.motion;
  AddPoint(motion_.state);
}

Event PathTracer::EventOf(const Trial& trial) const {
  Event event = detail::FirstEvent(field_, options_, mover_.direction(), place_, trial.middle);
  if (event.kind != EventKind::kNone) {
    event.fraction *= 0.5;
    return event;
  }
  event = detail::FirstEvent(field_, options_, mover_.direction(), trial.middle, trial.end);
  if (event.kind != EventKind::kNone) event.fraction = 0.5 + 0.5 * event.fraction;
  return event;
}

/// The step led to where there is no flow: up to something on the way, or by shorter steps to the last wet
/// place.
void PathTracer::FieldEnds(const Trial& trial, double days) {
  const Event event = EventOnTangent(days);
  if (event.kind != EventKind::kNone) return Meet(event, days * event.fraction);
  if (std::abs(motion_.v) * days < kTiny * options_.step) return EndWithoutField(trial.failed);
  next_ = 0.25 * days;
}

/// Something is met about `days` ahead.  The last bit of the way is one midpoint step, when that is exact
/// enough; before it ordinary steps come up to it, so that no stage looks at the other side.
void PathTracer::Meet(const Event& event, double days) {
  const double way = std::abs(motion_.v) * days, rise = std::fabs(motion_.ds) * days;
  const bool tiny = way < kTiny * options_.step && rise < kTiny;
  const Motion middle = mover_.At(motion_.Move(place_, 0.5 * days));
  if (tiny) return Arrive(event, middle.ok ? middle : motion_, days);
  if (!middle.ok) {
    next_ = 0.5 * days;
    return;
  }
  const double turn = std::abs(middle.v - motion_.v), speed = std::abs(middle.v);
  const double bend = std::fabs(middle.ds - motion_.ds), rate = std::fabs(middle.ds);
  const double part = std::max(speed > 0.0 ? turn / speed : 0.0, rate > 0.0 ? bend / rate : 0.0);
  if (days * turn * part > tolerance_.position || days * bend * part > tolerance_.height) {
    next_ = 0.9 * days;
    return;
  }
  const Event there =
      detail::FirstEvent(field_, options_, mover_.direction(), place_, middle.Move(place_, 1.5 * days));
  if (there.kind != EventKind::kNone) return Arrive(there, middle, 1.5 * days * there.fraction);
  // The path turns away just before: the midpoint step itself is good.
  place_ = middle.Move(place_, days);
  place_.s = std::clamp(place_.s, 0.0, 1.0);
  time_ = std::min(time_ + days, options_.longest_time);
  motion_ = mover_.At(place_);
  if (!motion_.ok) return EndWithoutField(motion_.state.status);
  AddPoint(motion_.state);
}

void PathTracer::Arrive(const Event& event, const Motion& motion, double days) {
  if (days >= Remaining()) {
    place_ = motion.Move(place_, Remaining());
    time_ = options_.longest_time;
    AddPointHere();
    return End(PathEnd::kTime);
  }
  place_ = motion.Move(place_, days);
  place_.s = std::clamp(place_.s, 0.0, 1.0);
  time_ += days;
  switch (event.kind) {
    case EventKind::kWindow:
      place_.at = {std::clamp(place_.at.real(), options_.window.left, options_.window.right),
                   std::clamp(place_.at.imag(), options_.window.bottom, options_.window.top)};
      AddPointHere();
      return End(PathEnd::kWindow);
    case EventKind::kBoundary:
      AddPointHere();
      return End(PathEnd::kBoundary);
    case EventKind::kWell:
      AddPointHere();
      return End(PathEnd::kWell, event.well->label);
    case EventKind::kWaterTable:
      place_.s = 1.0;
      AddPointHere();
      return EndAtTop();
    case EventKind::kCrossing:
      AddPoint(motion.state);
      return CrossLine(event.crossing, motion);
    case EventKind::kNone:
      return;
  }
}

// --- lines
// ----------------------------------------------------------------------------------------------------

void PathTracer::CrossLine(const Crossing& crossing, const Motion& motion) {
  const Segment line = detail::CrossedSegment(field_.GetModel(), crossing);
  const Complex along = line.to - line.from;
  Complex normal = Complex(0.0, 1.0) * along / std::abs(along);
  if (Dot(normal, motion.v) < 0.0) normal = -normal;
  next_ = options_.longest_time;
  const bool wall = crossing.type == CrossingType::kWall;
  if (wall && field_.GetModel().walls[static_cast<std::size_t>(crossing.index)].conductivity <= 0.0) {
    return Slide(line, normal);
  }
  if (crossing.type == CrossingType::kLineSink && TakenBy(crossing, motion, normal)) return;
  if (CrossedInVain(crossing)) {
    if (crossing.type == CrossingType::kLineSink) return End(PathEnd::kSurfaceWater, LineSinkLabel(crossing));
    return Slide(line, normal);
  }
  place_.at += kNudge * options_.step * normal;
  motion_ = mover_.At(place_);
  if (!motion_.ok) EndWithoutField(motion_.state.status);
}

const std::string& PathTracer::LineSinkLabel(const Crossing& crossing) const {
  const LineSinkString& string = field_.GetModel().line_sinks[static_cast<std::size_t>(crossing.index)];
  return string.segments[static_cast<std::size_t>(crossing.segment)].origin.label;
}

/// Whether the line-sink ends the path; otherwise the particle passes and its relative height is adjusted.
bool PathTracer::TakenBy(const Crossing& crossing, const Motion& motion, Complex normal) {
  const double near = std::fabs(Dot(motion.state.discharge, normal));
  const double taken =
      mover_.direction() * field_.SinkDensity(crossing.index, crossing.segment, crossing.position);
  const double far = near - taken;
  if (far <= 0.0 || place_.s * near > far) {
    End(PathEnd::kSurfaceWater, LineSinkLabel(crossing));
    return true;
  }
  place_.s *= near / far;
  return false;
}

/// The same line crossed again and again with hardly any way between: the flow of both sides leads to it.
bool PathTracer::CrossedInVain(const Crossing& crossing) {
  const bool same = crossing.type == last_crossing_.type && crossing.index == last_crossing_.index &&
                    crossing.segment == last_crossing_.segment;
  const bool near = std::abs(place_.at - last_crossed_at_) < 1e-2 * options_.step;
  crossed_again_ = same && near ? crossed_again_ + 1 : 0;
  last_crossing_ = crossing;
  last_crossed_at_ = place_.at;
  return crossed_again_ >= 4;
}

/// Along a line that the water follows, on the side that the particle came from.
void PathTracer::Slide(const Segment& line, Complex normal) {
  const double nudge = kNudge * options_.step;
  place_.at -= nudge * normal;
  motion_ = mover_.At(place_);
  if (!motion_.ok) return EndWithoutField(motion_.state.status);
  const Complex along = line.to - line.from;
  Complex tangent = along / std::abs(along);
  if (Dot(motion_.v, tangent) < 0.0) tangent = -tangent;
  const double speed = Dot(motion_.v, tangent);
  if (speed * options_.longest_time < kStill * options_.step) return End(PathEnd::kStagnation);
  const Complex end = Dot(tangent, along) > 0.0 ? line.to : line.from;
  const double to_end = std::max(0.0, Dot(end - place_.at, tangent)) + 2.0 * nudge;
  const double days = std::min({kSlide * options_.step, to_end, speed * Remaining()}) / speed;
  Motion slide = motion_;
  slide.v = speed * tangent;
  Place to = slide.Move(place_, days);
  const Event event = detail::FirstEvent(field_, options_, mover_.direction(), place_, to);
  if (event.kind != EventKind::kNone && event.kind != EventKind::kCrossing) {
    return Arrive(event, slide, days * event.fraction);
  }
  // Another line in the way is left to the next ordinary step.
  const double done =
      days * (event.kind == EventKind::kCrossing ? std::max(0.0, event.fraction - 1e-3) : 1.0);
  place_ = slide.Move(place_, done);
  place_.s = std::clamp(place_.s, 0.0, 1.0);
  time_ = std::min(time_ + done, options_.longest_time);
  motion_ = mover_.At(place_);
  if (!motion_.ok) return EndWithoutField(motion_.state.status);
  AddPoint(motion_.state);
}

// --- points
// ---------------------------------------------------------------------------------------------------

void PathTracer::AddPoint(const PointState& state) {
  path_.points.push_back({place_.at, state.base + place_.s * state.thickness, time_, state.head});
}

/// Water leaves through the top into a pond, or to the air; backward, it came from there.
void PathTracer::EndAtTop() {
  for (const TraceWell& disk : field_.Disks()) {
    const bool takes = disk.discharge * mover_.direction() > 0.0;
    if (takes && std::abs(place_.at - disk.at) <= disk.radius) return End(PathEnd::kSurfaceWater, disk.label);
  }
  End(PathEnd::kWaterTable);
}

void PathTracer::AddPointHere() {
  const Motion here = mover_.At(place_);
  AddPoint(here.ok ? here.state : motion_.state);
}

}  // namespace

const char* PathEndName(PathEnd end) {
  constexpr const char* kNames[kPathEnds] = {"time reached", "well",       "surface water",
                                             "boundary",     "window",     "water table",
                                             "dry ground",   "stagnation", "ignored region"};
  return kNames[static_cast<int>(end)];
}

Path TracePath(const TraceField& field, const PathStart& start, const TraceOptions& options) {
  return PathTracer(field, start, options, nullptr).Run();
}

std::vector<Path> TracePaths(const TraceField& field, std::span<const PathStart> starts,
                             const TraceOptions& options, const std::function<bool(std::size_t)>& progress) {
  std::vector<Path> paths(starts.size());
  std::atomic<std::size_t> next{0}, done{0};
  std::atomic<bool> stop{false};
  std::mutex reporting;
  const auto work = [&] {
    while (!stop.load()) {
      const std::size_t index = next.fetch_add(1);
      if (index >= starts.size()) return;
      paths[index] = PathTracer(field, starts[index], options, &stop).Run();
      const std::size_t finished = done.fetch_add(1) + 1;
      if (!progress) continue;
      const std::lock_guard lock(reporting);
      if (!progress(finished)) stop.store(true);
    }
  };
  const unsigned wanted = options.threads > 0 ? static_cast<unsigned>(options.threads)
                                              : std::max(1u, std::thread::hardware_concurrency());
  const std::size_t threads = std::min<std::size_t>(wanted, starts.size());
  std::vector<std::jthread> team;
  for (std::size_t i = 1; i < threads; ++i) team.emplace_back(work);
  work();
  team.clear();
  if (stop.load()) paths.clear();
  return paths;
}

std::vector<PathStart> StartsAround(const TraceWell& well, int particles, double elevation) {
  std::vector<PathStart> starts;
  for (int i = 0; i < particles; ++i) {
    const double angle = 2.0 * std::numbers::pi * i / particles;
    // A hair outside of the rim, where the flow field is that of the aquifer.
    starts.push_back(
        {well.at + std::polar(well.radius * (1.0 + 1e-7), angle), elevation, well.discharge < 0.0});
  }
  return starts;
}

}  // namespace aem
