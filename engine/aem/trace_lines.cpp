// What line-sinks, walls and edges do to a particle that meets them.
#include "aem/trace_path.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "aem/geometry.h"

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
  const Event event = FirstEvent(field_, options_, mover_.direction(), place_, slide.Move(place_, way));
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

}  // namespace aem::detail
