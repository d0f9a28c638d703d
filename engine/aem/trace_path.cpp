#include "aem/trace_path.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace aem::detail {

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
  Event event = Meets(place_, trial.middle);
  if (event.kind != EventKind::kNone) {
    event.fraction *= 0.5;
    return event;
  }
  event = Meets(trial.middle, trial.end);
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
  const Event there = Meets(place_, middle.Move(place_, 1.5 * way));
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
    case EventKind::kRim:
      return CrossRim(*event.well);
    case EventKind::kNone:
      return;
  }
}

PathFlow PathTracer::FlowOf(const PointState& state) {
  const double storage = state.thickness * state.porosity;
  return {storage > 0.0 ? state.discharge / storage : Complex{}, storage, state.net_recharge};
}

void PathTracer::AddPoint(const PointState& state) {
  path_.points.push_back({.at = place_.at,
                          .elevation = state.base + place_.s * state.thickness,
                          .time = place_.time,
                          .head = state.head,
                          .flow = FlowOf(state),
                          .behind = {}});
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

}  // namespace aem::detail
