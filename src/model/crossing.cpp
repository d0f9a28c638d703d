#include "model/crossing.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/barriers.h"
#include "model/move.h"
#include "model/vertices.h"

namespace ormel {
namespace {

/// Which side of a-b `p` lies on: 1 left, -1 right, 0 as good as on it.
int SideOf(MapPoint a, MapPoint b, MapPoint p) {
  const double ux = b.x - a.x, uy = b.y - a.y, vx = p.x - a.x, vy = p.y - a.y;
  const double cross = ux * vy - uy * vx;
  const double noise = 1e-9 * std::hypot(ux, uy) * std::hypot(vx, vy);
  return cross > noise ? 1 : cross < -noise ? -1 : 0;
}

struct Segment {
  MapPoint a, b;
};

std::vector<Segment> SegmentsOf(std::span<const MapPoint> points, bool closed) {
  std::vector<Segment> segments;
  for (std::size_t i = 1; i < points.size(); ++i) segments.push_back({points[i - 1], points[i]});
  if (closed && points.size() > 2) segments.push_back({points.back(), points.front()});
  return segments;
}

bool CrossesAny(const std::vector<Segment>& segments, std::size_t one) {
  const auto crosses = [&](const Segment& other) {
    return SegmentsCross(segments[one].a, segments[one].b, other.a, other.b);
  };
  return std::any_of(segments.begin(), segments.end(), crosses);
}

bool Tell(Ormel& ormel, const std::string& text) {
  Inform(ormel, "Crossing Lines", text, Icon::kWarning);
  return true;
}

bool MoveCrosses(Ormel& ormel, Element element, Pid pid, Vid vid, MapPoint to) {
  std::vector<MapPoint> points;
  std::size_t moved = 0;
  for (const VertexRow& row : VerticesOf(ormel, pid)) {
    if (row.vid == vid) moved = points.size();
    points.push_back(row.vid == vid ? to : row.at);
  }
  const bool ring = IsRing(ormel, element, pid);
  const std::vector<Segment> segments = SegmentsOf(points, ring);
  // The segment before the vertex and the one behind it.
  const std::size_t before = moved > 0 ? moved - 1 : ring ? segments.size() - 1 : segments.size();
  return (before < segments.size() && CrossesAny(segments, before)) ||
         (moved < segments.size() && CrossesAny(segments, moved));
}

}  // namespace

bool SegmentsCross(MapPoint a, MapPoint b, MapPoint c, MapPoint d) {
  return SideOf(a, b, c) * SideOf(a, b, d) < 0 && SideOf(c, d, a) * SideOf(c, d, b) < 0;
}

bool CrossesItself(std::span<const MapPoint> points, bool closed) {
  std::vector<Segment> segments = SegmentsOf(points, closed);
  // From left to right, so that only those whose ranges of x overlap are compared.
  for (Segment& s : segments)
    if (s.b.x < s.a.x) std::swap(s.a, s.b);
  std::ranges::sort(segments, {}, [](const Segment& s) { return s.a.x; });
  for (std::size_t i = 0; i < segments.size(); ++i)
    for (std::size_t j = i + 1; j < segments.size() && segments[j].a.x <= segments[i].b.x; ++j)
      if (SegmentsCross(segments[i].a, segments[i].b, segments[j].a, segments[j].b)) return true;
  return false;
}

bool IsRing(Ormel& ormel, Element element, Pid pid) {
  if (element == Element::kInhomogeneity) return true;
  BarrierRow row;
  return element == Element::kBarrier && FindBarrier(ormel, pid, row) && row.Closed != BarrierClosed::kOpen;
}

bool RefuseCrossingMove(Ormel& ormel, Element element, Pid pid, Vid vid, MapPoint to) {
  if (element != Element::kLinesink && element != Element::kBarrier && element != Element::kInhomogeneity)
    return false;
  bool crosses = MoveCrosses(ormel, element, pid, vid, to);
  if (element == Element::kInhomogeneity) {
    for (const Vid corner : SharedCorners(ormel, vid)) {
      VertexRow row;
      crosses =
          crosses || (FindVertex(ormel, corner, row) && MoveCrosses(ormel, element, row.pid, corner, to));
    }
  }
  return crosses && Tell(ormel,
                         "At this place the line would cross itself, and the solver could not use it.\n"
                         "The vertex stays where it was.");
}

bool RefuseCrossingMoves(Ormel& ormel, const std::set<Vid>& vids, MapPoint by) {
  std::set<Pid> pulled;
  VertexRow row;
  for (const Vid vid : vids)
    if (FindVertex(ormel, vid, row) && row.pid > 0) pulled.insert(row.pid);
  for (const Pid pid : pulled) {
    std::vector<MapPoint> points;
    bool whole = true;
    for (const VertexRow& vertex : VerticesOf(ormel, pid)) {
      const bool moves = vids.contains(vertex.vid);
      whole = whole && moves;
      points.push_back(moves ? MapPoint{vertex.at.x + by.x, vertex.at.y + by.y} : vertex.at);
    }
    if (!whole && CrossesItself(points, true))
      return Tell(ormel,
                  "A domain that shares a corner with what is moved would cross itself, and the solver could "
                  "not use it.\nNothing has been moved.");
  }
  return false;
}

bool RefuseCrossingVertex(Ormel& ormel, MapPoint at) {
  std::vector<MapPoint> points = PointsOf(ormel, ormel.mouse.CurrentPID);
  points.push_back(at);
  const std::vector<Segment> segments = SegmentsOf(points, false);
  if (segments.empty() || !CrossesAny(segments, segments.size() - 1)) return false;
  return Tell(ormel,
              "At this place the line would cross itself, and the solver could not use it.\n"
              "Please choose another place for the vertex.");
}

bool RefuseCrossingEnd(Ormel& ormel, Element element) {
  const Pid pid = ormel.mouse.CurrentPID;
  if (!IsRing(ormel, element, pid)) return false;
  const std::vector<Segment> segments = SegmentsOf(PointsOf(ormel, pid), true);
  if (segments.empty() || !CrossesAny(segments, segments.size() - 1)) return false;
  return Tell(ormel,
              "The line back to the first vertex would cross the others, and the solver could not use the "
              "ring.\nPlease add vertices that lead around, or take the last ones back by Backspace.");
}

}  // namespace ormel
