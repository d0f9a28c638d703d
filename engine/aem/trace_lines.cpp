// What line-sinks, walls and edges do to a particle that meets them.
#include "aem/trace_path.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "aem/kernel/geometry.h"

namespace aem::detail {

void PathTracer::CrossLine(const Crossing& crossing, const Motion& motion) {
  const Segment line = CrossedSegment(field_.GetModel(), crossing);
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
  TellBehind();
  if (!motion_.ok) EndWithoutField(motion_.state.status);
}

/// Over the rim of a disk to its other side: recharge changes there, and no step goes over it.
void PathTracer::CrossRim(const TraceWell& disk) {
  AddPointHere();
  const Complex off = place_.at - disk.at;
  const double distance = std::abs(off), nudge = kNudge * options_.step;
  // The way it goes tells the side; where it goes along the rim, the one it was not on.
  const bool outward = Dot(off, motion_.v) > 0.0;
  if (distance > 0.0) place_.at = disk.at + off / distance * (disk.radius + (outward ? nudge : -nudge));
  motion_ = mover_.At(place_);
  TellBehind();
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
  path_.points.back().passing = far / near;
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

/// The mean motion over `way` along a line from where the particle is, by the classical Runge-Kutta step.
Motion PathTracer::MeanAlong(Complex tangent, double way) const {
  constexpr double kWeights[] = {1.0 / 6.0, 1.0 / 3.0, 1.0 / 3.0, 1.0 / 6.0};
  constexpr double kNext[] = {0.5, 0.5, 1.0, 0.0};
  Motion mean = motion_, stage = motion_;
  mean.v = {};
  mean.ds = mean.dt = 0.0;
  for (int i = 0; i < 4; ++i) {
    stage.v = Dot(stage.v, tangent) * tangent;
    mean.v += kWeights[i] * stage.v;
    mean.ds += kWeights[i] * stage.ds;
    mean.dt += kWeights[i] * stage.dt;
    if (i == 3) break;
    stage = mover_.At(stage.Move(place_, kNext[i] * way));
    if (!stage.ok) return stage;
  }
  return mean;
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
  double way = std::min({kSlide * options_.step / pace, to_end / pace, Remaining() / motion_.dt});
  const Motion slide = MeanAlong(tangent, way);
  if (!slide.ok) return EndWithoutField(slide.state.status);
  if (Dot(slide.v, tangent) <= 0.0) return End(PathEnd::kStagnation);
  way = std::min(way, Remaining() / slide.dt);
  const Event event = Meets(place_, slide.Move(place_, way));
  if (event.kind != EventKind::kNone && event.kind != EventKind::kCrossing && event.kind != EventKind::kRim) {
    return Arrive(event, slide, way * event.fraction);
  }
  // Another line in the way is left to the next ordinary step.
  const bool blocked = event.kind != EventKind::kNone;
  const Place to = slide.Move(place_, way * (blocked ? std::max(0.0, event.fraction - 1e-3) : 1.0));
  const Motion there = mover_.At(to);
  if (!there.ok) return EndWithoutField(there.state.status);
  Accept(to, there);
}

}  // namespace aem::detail
