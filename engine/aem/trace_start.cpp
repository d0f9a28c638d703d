// Where a path begins: in a well, on a line-sink, on dry ground.
#include "aem/trace_path.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "aem/kernel/geometry.h"

namespace aem::detail {

void PathTracer::Begin() {
  const PathStart& start = path_.start;
  place_.at = start.at;
  const PointState state = field_.At(start.at);
  const bool wet = state.status == PointStatus::kOk && state.thickness > 0.0;
  if (wet) place_.s = std::clamp((start.elevation - state.base) / state.thickness, 0.0, 1.0);
  if (!wet) {
    path_.points.push_back({.at = start.at, .elevation = start.elevation, .flow = {}, .behind = {}});
    EndWithoutField(state.status == PointStatus::kIgnored ? PointStatus::kIgnored : PointStatus::kDry);
  } else {
    AddPoint(state);
  }
  if (Outside(options_.window, start.at)) End(PathEnd::kWindow);
  if (ended_ || BeginsInWell() || BeginsOnLineSink()) return;
  LeaveTip();
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

/// The velocity at the end of a wall is infinite and has no side: the path begins a hair beyond.
void PathTracer::LeaveTip() {
  for (const Wall& wall : field_.GetModel().walls) {
    const std::vector<LabelledPoint>& points = wall.points;
    if (wall.kind != WallKind::kOpen || points.size() < 2) continue;
    const std::pair<Complex, Complex> ends[] = {{points.front().at, points[1].at},
                                                {points.back().at, points[points.size() - 2].at}};
    for (const auto& [tip, before] : ends)
      if (std::abs(place_.at - tip) <= kNudge * options_.step && tip != before)
        place_.at = tip + kBeside * options_.step * (tip - before) / std::abs(tip - before);
  }
}

}  // namespace aem::detail
