// What a solved system says about its walls.
#include <algorithm>
#include <cmath>

#include "aem/field/answers.h"

namespace aem::detail {

double AllowedLeakage(const System& s, const JumpEdge& edge, Complex at) {
  const Wall& wall = s.model.walls[edge.wall];
  if (wall.conductivity == 0.0) return 0.0;
  const Complex toward = (edge.to - edge.from) * Complex{0.0, 1.0};
  const double left = s.Field(at, toward).omega.real(), right = s.Field(at, -toward).omega.real();
  if (edge.left == edge.right)
    return wall.conductivity / (wall.thickness * edge.left.conductivity) * (left - right);
  const double thickness = 0.5 * (edge.left.Thickness(left) + edge.right.Thickness(right));
  return wall.conductivity / wall.thickness * thickness * (edge.left.Head(left) - edge.right.Head(right));
}

namespace {

double LeakageBetween(const System& s, const JumpEdge& edge, Complex a, Complex b) {
  const GaussRule rule = Gauss(6);
  double sum = 0.0;
  for (int i = 0; i < rule.size; ++i)
    sum += 0.5 * rule.w[i] * AllowedLeakage(s, edge, 0.5 * (a + b) + 0.5 * (b - a) * rule.x[i]);
  return sum * std::abs(b - a);
}

/// A place where an edge ends in links of a power law counts from beyond the smallest of these: what passes
/// within them, some micrometres, is no leak.
Complex BeyondLinks(const System& s, const std::vector<int>& edges, Complex at, Complex toward) {
  constexpr double kLinks = 25.0;  // two links farther, each five times the one before
  for (int e : edges)
    for (int p : s.edges[e].pieces) {
      const Piece& piece = s.pieces[p];
      const double off = std::min(std::abs(piece.from - at), std::abs(piece.to - at));
      if (s.owners[p].law && off < 0.1 * piece.Length())
        return at + kLinks * piece.Length() * (toward - at) / std::abs(toward - at);
    }
  return at;
}

double JumpAt(const System& s, const JumpEdge& edge, Complex at) {
  const Complex toward = (edge.to - edge.from) * Complex{0.0, 1.0};
  return s.Field(at, toward).omega.real() - s.Field(at, -toward).omega.real();
}

}  // namespace

/// Edges of a segment lie in order along it; each lets through what it does between a and b.
double ExcessLeakage(const System& s, const std::vector<int>& edges, Complex a, Complex b) {
  double allowed = 0.0;
  const double length = std::abs(b - a);
  for (int e : edges) {
    const JumpEdge& edge = s.edges[e];
    if (s.model.walls[edge.wall].conductivity == 0.0) continue;
    const Complex along = (b - a) / length;
    const double turned = Dot(edge.to - edge.from, along) > 0.0 ? 1.0 : -1.0;
    const double u = Dot(edge.from - a, along), v = Dot(edge.to - a, along);
    const double low = std::max(0.0, std::min(u, v)), high = std::min(length, std::max(u, v));
    if (high > low) allowed += turned * LeakageBetween(s, edge, a + low * along, a + high * along);
  }
  return (Flux(s, BeyondLinks(s, edges, a, b), BeyondLinks(s, edges, b, a)) - allowed) / length;
}

std::vector<std::vector<std::vector<int>>> WallEdges(const System& s) {
  std::vector<std::vector<std::vector<int>>> list(s.model.walls.size());
  for (std::size_t w = 0; w < list.size(); ++w) list[w].resize(s.model.walls[w].points.size());
  for (std::size_t e = 0; e < s.edges.size(); ++e)
    if (s.edges[e].wall >= 0) list[s.edges[e].wall][s.edges[e].segment].push_back(int(e));
  return list;
}

std::vector<WallResult> WallResults(const System& s) {
  std::vector<WallResult> results(s.model.walls.size());
  if (s.refused) return results;
  const auto edges = WallEdges(s);
  for (std::size_t w = 0; w < results.size(); ++w) {
    const Wall& wall = s.model.walls[w];
    const std::size_t n = wall.points.size(), count = wall.kind == WallKind::kOpen && n > 0 ? n - 1 : n;
    for (std::size_t i = 0; i < count; ++i) {
      const Complex a = wall.points[i].at, b = wall.points[(i + 1) % n].at;
      WallVertexResult v;
      v.node = a;
      v.centre = 0.5 * (a + b);
      const auto at = [&](double t) { return a + t * (b - a); };
      for (int e : edges[w][i]) {
        const JumpEdge& edge = s.edges[e];
        v.leakage += LeakageBetween(s, edge, edge.from, edge.to);
      }
      if (!edges[w][i].empty()) {
        const JumpEdge& first = s.edges[edges[w][i].front()];
        const JumpEdge& last = s.edges[edges[w][i].back()];
        const int middle = s.EdgeAt(at(0.5));
        const double start = JumpAt(s, first, at(1e-6)), end = JumpAt(s, last, at(1.0 - 1e-6));
        v.jump_node = start;
        if (middle >= 0) v.jump_parabolic = JumpAt(s, s.edges[middle], at(0.5)) - 0.5 * (start + end);
        v.delta_flow_node = ExcessLeakage(s, edges[w][i], at(0.0), at(0.5));
        v.delta_flow_centre = ExcessLeakage(s, edges[w][i], at(0.25), at(0.75));
      }
      results[w].leakage += v.leakage;
      results[w].vertices.push_back(v);
    }
  }
  return results;
}

}  // namespace aem::detail
