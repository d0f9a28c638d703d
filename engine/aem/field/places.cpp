// Where elements lie: for tracing.
#include <algorithm>
#include <cmath>

#include "aem/field/answers.h"
#include "aem/system/strings.h"

namespace aem::detail {

namespace {

/// The piece of a segment that holds a position, and its parameter there.
struct OnPiece {
  int piece = -1;
  double parameter = 0.0;
};

OnPiece Locate(const System& s, int string, int segment, double position) {
  for (int p : s.segment_pieces[string][segment]) {
    const PieceOwner& o = s.owners[p];
    const double low = std::min(o.start, o.end), high = std::max(o.start, o.end);
    if (position < low || (position > high && high < 1.0)) continue;
    const double x = std::clamp(2.0 * (position - o.start) / (o.end - o.start) - 1.0, -1.0, 1.0);
    return {p, ParameterOf(s.pieces[p], x)};
  }
  return {};
}

template <class List>
void NearestWell(const List& list, SinkType type, Complex point, SinkHit* best) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    const double distance = std::abs(list[i].at - point);
    if (distance >= best->distance) continue;
    *best = {type, int(i), -1, 0.0, distance};
  }
}

void Consider(Complex from, Complex to, Complex a, Complex b, CrossingType type, int index, int segment,
              Crossing* best) {
  const auto m = Meet(from, to, a, b);
  if (!m || m->on_first <= 0.0) return;
  if (m->on_first * std::abs(to - from) < 1e-12 * std::abs(b - a)) return;
  const bool first = m->on_first < best->fraction - 1e-12 || best->type == CrossingType::kNone;
  const bool prior = type == CrossingType::kWall ||
                     (type == CrossingType::kLineSink && best->type == CrossingType::kDomainEdge);
  if (!first && !(std::abs(m->on_first - best->fraction) <= 1e-12 && prior)) return;
  *best = {type, index, segment, m->on_second, m->on_first};
}

}  // namespace

SinkHit NearestSink(const System& s, Complex point, double distance) {
  SinkHit best;
  best.distance = std::nextafter(distance, 1e300);
  NearestWell(s.model.wells, SinkType::kWell, point, &best);
  NearestWell(s.model.partial_wells, SinkType::kPartialWell, point, &best);
  NearestWell(s.model.theis, SinkType::kTheisWell, point, &best);
  Box box;
  box.Add(point);
  box.Grow(distance);
  thread_local std::vector<int> found;
  s.segment_index.Find(box, &found);
  for (int k : found) {
    const auto [string, segment] = s.segment_of[k];
    const LineSinkSegment& g = s.model.line_sinks[string].segments[segment];
    const Nearest near = NearestOnSegment(g.from, g.to, point);
    if (near.distance < best.distance)
      best = {SinkType::kLineSink, string, segment, near.position, near.distance};
  }
  if (best.type == SinkType::kNone) best.distance = distance;
  return best;
}

Crossing FirstCrossing(const System& s, Complex from, Complex to) {
  Crossing best;
  thread_local std::vector<int> found;
  s.edge_index.FindAlong(from, to, &found);
  for (int e : found) {
    const JumpEdge& edge = s.edges[e];
    const CrossingType type = edge.wall >= 0 ? CrossingType::kWall : CrossingType::kDomainEdge;
    Consider(from, to, edge.from, edge.to, type, edge.wall >= 0 ? edge.wall : edge.domain, edge.segment,
             &best);
  }
  s.segment_index.FindAlong(from, to, &found);
  for (int k : found) {
    const auto [string, segment] = s.segment_of[k];
    const LineSinkSegment& g = s.model.line_sinks[string].segments[segment];
    Consider(from, to, g.from, g.to, CrossingType::kLineSink, string, segment, &best);
  }
  return best;
}

double SinkDensity(const System& s, int string, int segment, double position) {
  const OnPiece on = Locate(s, string, segment, position);
  return on.piece < 0 ? 0.0
                      : Strength(s.pieces[on.piece], &s.coefficients[on.piece * kMaxBasis], on.parameter);
}

bool Percolates(const System& s, int string, int segment, double position) {
  const LineSinkString& line = s.model.line_sinks[string];
  if (s.refused || line.kind == LineSinkKind::kDischarge || line.kind == LineSinkKind::kDrain ||
      !Resists(line))
    return false;
  const LineSinkSegment& g = line.segments[segment];
  const Complex along = g.to - g.from;
  const PointState state = s.State(g.from + position * along, along * Complex{0.0, 1.0});
  const double stage = Stage(line, s.tolerance).At(segment, position);
  return state.status != PointStatus::kOk || state.head < stage - line.depth;
}

}  // namespace aem::detail
