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
/// Off a line-sink on which a path starts: beyond what its ends do to the flow.
constexpr double kBeside = 1e-4;
constexpr double kTiny = 1e-7;     ///< a length that no map and no error bound can show
constexpr double kFarthest = 1e3;  ///< way of the first tried step: where the water stands, way is but time
constexpr double kSlide = 0.1;     ///< along a wall at once
/// The longest travel time at this speed moves a particle by a billionth of a step: it stands still.
constexpr double kStill = 1e-9;
/// The longest travel time at this speed moves it by a thousandth of a step: see Mover.
constexpr double kSlow = 1e-3;

bool Stopped(const std::atomic<bool>* flag) {
  return flag != nullptr && flag->load(std::memory_order_relaxed);
}

class PathTracer {
 public:
  PathTracer(const TraceField& field, const PathStart& start, const TraceOptions& options,
             const std::atomic<bool>* stop)
      : field_(field),
        options_(options),
        stop_(stop),
        mover_(field, start.forward, kSlow * options.step / options.longest_time),
        tolerance_{options.tolerance * options.step, 0.1 * options.tolerance} {
    path_.start = start;
  }

  Path Run() {
    Begin();
    while (!ended_) {
      if (Stopped(stop_) || Stopped(options_.stop)) break;
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
  /// Short steps are taken where the flow diverges, at a well's rim first of all, and their errors grow with
  /// it.
  detail::Tolerance ToleranceOf(double way) const {
    return {tolerance_.position * std::min(1.0, 10.0 * way / options_.step), tolerance_.height};
  }
  void Accept(const Place& end, const Motion& motion);
  void ComeToTime(const Trial& trial, double way);
  void FieldEnds(const Trial& trial, double way);
  Event EventOf(const Trial& trial) const;
  Event EventOnTangent(double way) const {
    return detail::FirstEvent(field_, options_, mover_.direction(), place_, motion_.Move(place_, way));
  }
  void Meet(const Event& event, double way);
  void Arrive(const Event& event, const Motion& motion, double way);
  void CrossLine(const Crossing& crossing, const Motion& motion);
  bool TakenBy(const Crossing& crossing, const Motion& near_side, Complex normal);
  const std::string& LineSinkLabel(const Crossing& crossing) const;
  bool CrossedInVain(const Crossing& crossing);
  void Slide(const Segment& line, Complex normal);

  double Remaining() const { return options_.longest_time - place_.time; }
  void AddPoint(const PointState& state);
  void AddPointHere();
  void End(PathEnd end, std::string label = {}) {
    ended_ = true;
    path_.end = end;
    path_.label = std::move(label);
  }
  void EndAtTop();
  /// Where there is a head but no usable flow, in the middle of a singular point, the water goes nowhere.
  void EndWithoutField(PointStatus status) {
    switch (status) {
      case PointStatus::kOk:
        return End(PathEnd::kStagnation);
      case PointStatus::kDry:
        return End(PathEnd::kDry);
      case PointStatus::kIgnored:
        return End(PathEnd::kIgnored);
    }
  }

  const TraceField& field_;
  const TraceOptions& options_;
  const std::atomic<bool>* stop_;
  Mover mover_;
  detail::Tolerance tolerance_;
  Path path_;
  bool ended_ = false;

  Place place_;
  Motion motion_;      ///< at place_
  double next_ = 0.0;  ///< way of the next tried step [L]

  Crossing last_crossing_;
  Complex last_crossed_at_;
  int crossed_again_ = 0;

  long long calls_ = 0;  ///< of Advance
  Place mark_;           ///< where the particle was at the last look of Stuck
};

// --- the start ---

void PathTracer::Begin() {
  const PathStart& start = path_.start;
  place_.at = start.at;
  const PointState state = field_.At(start.at);
  const bool wet = state.status == PointStatus::kOk && state.thickness > 0.0;
  if (wet) place_.s = std::clamp((start.elevation - state.base) / state.thickness, 0.0, 1.0);
  if (!wet) {
    path_.points.push_back({start.at, start.elevation, 0.0, kNotSet});
    EndWithoutField(state.status == PointStatus::kIgnored ? PointStatus::kIgnored : PointStatus::kDry);
  } else {
    AddPoint(state);
  }
  if (detail::Outside(options_.window, start.at)) End(PathEnd::kWindow);
  if (ended_ || BeginsInWell() || BeginsOnLineSink()) return;
  motion_ = mover_.At(place_);
  if (!motion_.ok) return EndWithoutField(motion_.state.status);
  next_ = kFarthest * options_.step;
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

// --- stepping ---

/// A place that holds the particle although no element says so (opposed flow on both sides of an edge, a
/// corner of walls): many steps without way or time.
bool PathTracer::Stuck() {
  constexpr long long kLook = 1000;
  if (++calls_ % kLook != 0) return false;
  const bool moved =
      std::abs(place_.at - mark_.at) > 1e-3 * options_.step || std::fabs(place_.s - mark_.s) > 1e-4;
  const bool waited = place_.time - mark_.time > 1e-3 * options_.longest_time;
  mark_ = place_;
  return !moved && !waited;
}

bool PathTracer::StandsStill() const {
  return motion_.Speed() * options_.longest_time < kStill * options_.step &&
         std::fabs(motion_.Rise()) * options_.longest_time < kStill;
}

void PathTracer::Advance() {
  if (Remaining() <= 1e-13 * options_.longest_time) return End(PathEnd::kTime);
  if (StandsStill()) return End(PathEnd::kStagnation);
  double way = std::min(next_, 2.0 * Remaining() / motion_.dt);
  const double pace = std::abs(motion_.v);
  if (pace * way > options_.step) way = options_.step / pace;
  const Trial trial = mover_.Step(place_, motion_, way, ToleranceOf(way));
  if (!trial.ok) return FieldEnds(trial, way);
  const double length = std::abs(trial.end.at - place_.at);
  if (length > options_.step * 1.0001) {
    next_ = way * std::max(0.2, 0.95 * options_.step / length);
    return;
  }
  // A bad step has looked at the other side of a line and says little about the way: its tangent does.
  const bool bad = trial.error > 1.0;
  const Event ahead = bad ? EventOnTangent(way) : EventOf(trial);
  if (ahead.kind != EventKind::kNone) return Meet(ahead, way * ahead.fraction);
  const double factor = trial.error > 0.0 ? std::clamp(0.9 * std::pow(trial.error, -0.2), 0.2, 5.0) : 5.0;
  // Near the tip of an element no step is short enough for the error bound: a tiny one is taken as it is.
  const bool tiny = pace * way < kTiny * options_.step && std::fabs(motion_.ds) * way < kTiny;
  next_ = way * factor;
  if (bad && !tiny) return;
  if (bad) next_ = std::max(next_, kTiny * options_.step);
  if (trial.end.time > options_.longest_time) return ComeToTime(trial, way);
  Accept(trial.end, trial.motion);
}

void PathTracer::Accept(const Place& end, const Motion& motion) {
  const double before = place_.time;
  place_ = end;
  place_.time = std::max(place_.time, before);
  place_.s = std::clamp(place_.s, 0.0, 1.0);
  motion_ = motion;
  AddPoint(motion_.state);
}

/// The step ends behind the longest time: the last one ends at it, by the cubic of the time over the way.
void PathTracer::ComeToTime(const Trial& trial, double way) {
  const double goal = options_.longest_time;
  const double over = trial.end.time - goal;
  // Behind by less than an error: back along the velocity there.
  if (over * trial.motion.Speed() <= tolerance_.position &&
      over * std::fabs(trial.motion.Rise()) <= tolerance_.height) {
    Place end = trial.motion.Move(trial.end, -over / trial.motion.dt);
    end.time = goal;
    Accept(end, trial.motion);
    return End(PathEnd::kTime);
  }
  double low = 0.0, high = 1.0;
  for (int i = 0; i < 60; ++i) {
    const double f = 0.5 * (low + high), g = 1.0 - f;
    const double time = place_.time + (trial.end.time - place_.time) * f * f * (3.0 - 2.0 * f) +
                        way * f * g * (motion_.dt * g - trial.motion.dt * f);
    (time < goal ? low : high) = f;
  }
  next_ = way * high;
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
void PathTracer::FieldEnds(const Trial& trial, double way) {
  const Event event = EventOnTangent(way);
  if (event.kind != EventKind::kNone) return Meet(event, way * event.fraction);
  if (std::abs(motion_.v) * way < kTiny * options_.step) return EndWithoutField(trial.failed);
  next_ = 0.25 * way;
}

/// Something is met about `way` ahead.  The last bit is one midpoint step, when that is exact enough; before
/// it ordinary steps come up to it, so that no stage looks at the other side.
void PathTracer::Meet(const Event& event, double way) {
  const bool tiny = std::abs(motion_.v) * way < kTiny * options_.step && std::fabs(motion_.ds) * way < kTiny;
  const Motion middle = mover_.At(motion_.Move(place_, 0.5 * way));
  if (tiny) return Arrive(event, middle.ok ? middle : motion_, way);
  if (!middle.ok) {
    next_ = 0.5 * way;
    return;
  }
  // The midpoint step errs by about the change of its rates, times their relative change.
  const double turn = std::abs(middle.v - motion_.v) + std::fabs(middle.dt - motion_.dt) * middle.Speed();
  const double bend = std::fabs(middle.ds - motion_.ds), rate = std::fabs(middle.ds);
  const double part = std::max(turn, rate > 0.0 ? bend / rate : 0.0);
  if (way * turn * part > tolerance_.position || way * bend * part > tolerance_.height) {
    next_ = 0.9 * way;
    return;
  }
  const Event there =
      detail::FirstEvent(field_, options_, mover_.direction(), place_, middle.Move(place_, 1.5 * way));
  if (there.kind != EventKind::kNone) return Arrive(there, middle, 1.5 * way * there.fraction);
  // The path turns away just before: the midpoint step itself is good.
  const Place end = middle.Move(place_, way);
  if (end.time >= options_.longest_time) return Arrive(event, middle, way);
  const Motion motion = mover_.At(end);
  if (!motion.ok) return EndWithoutField(motion.state.status);
  Accept(end, motion);
}

void PathTracer::Arrive(const Event& event, const Motion& motion, double way) {
  if (motion.dt * way >= Remaining()) {
    place_ = motion.Move(place_, Remaining() / motion.dt);
    place_.s = std::clamp(place_.s, 0.0, 1.0);
    place_.time = options_.longest_time;
    AddPointHere();
    return End(PathEnd::kTime);
  }
  place_ = motion.Move(place_, way);
  place_.s = std::clamp(place_.s, 0.0, 1.0);
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
      return CrossLine(event.crossing, motion);
    case EventKind::kNone:
      return;
  }
}

// --- lines ---

void PathTracer::CrossLine(const Crossing& crossing, const Motion& motion) {
  const Segment line = detail::CrossedSegment(field_.GetModel(), crossing);
  const Complex along = line.to - line.from;
  Complex normal = Complex(0.0, 1.0) * along / std::abs(along);
  if (Dot(normal, motion.v) < 0.0) normal = -normal;
  // The flow and the head on this side of the line.
  Motion near = mover_.At({place_.at - kNudge * options_.step * normal, place_.s, place_.time});
  if (!near.ok) near = motion;
  AddPoint(near.state);
  next_ = kFarthest * options_.step;
  const bool wall = crossing.type == CrossingType::kWall;
  if (wall && field_.GetModel().walls[static_cast<std::size_t>(crossing.index)].conductivity <= 0.0) {
    return Slide(line, normal);
  }
  if (crossing.type == CrossingType::kLineSink && TakenBy(crossing, near, normal)) return;
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
bool PathTracer::TakenBy(const Crossing& crossing, const Motion& near_side, Complex normal) {
  const double near = std::fabs(Dot(near_side.state.discharge, normal));
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
  const double pace = Dot(motion_.v, tangent);
  if (pace / motion_.dt * options_.longest_time < kStill * options_.step) return End(PathEnd::kStagnation);
  const Complex end = Dot(tangent, along) > 0.0 ? line.to : line.from;
  const double to_end = std::max(0.0, Dot(end - place_.at, tangent)) + 2.0 * nudge;
  const double way = std::min({kSlide * options_.step / pace, to_end / pace, Remaining() / motion_.dt});
  Motion slide = motion_;
  slide.v = pace * tangent;
  const Event event =
      detail::FirstEvent(field_, options_, mover_.direction(), place_, slide.Move(place_, way));
  if (event.kind != EventKind::kNone && event.kind != EventKind::kCrossing) {
    return Arrive(event, slide, way * event.fraction);
  }
  // Another line in the way is left to the next ordinary step.
  const bool blocked = event.kind == EventKind::kCrossing;
  const Place to = slide.Move(place_, way * (blocked ? std::max(0.0, event.fraction - 1e-3) : 1.0));
  const Motion there = mover_.At(to);
  if (!there.ok) return EndWithoutField(there.state.status);
  Accept(to, there);
}

// --- points ---

void PathTracer::AddPoint(const PointState& state) {
  path_.points.push_back({place_.at, state.base + place_.s * state.thickness, place_.time, state.head});
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
    while (!stop.load() && !Stopped(options.stop)) {
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
  if (stop.load() || Stopped(options.stop)) paths.clear();
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
