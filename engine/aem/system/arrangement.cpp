#include "aem/system/arrangement.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <span>
#include <unordered_map>

#include "aem/input/validate.h"
#include "aem/system/strings.h"
#include "aem/system/system.h"

namespace aem::detail {

namespace {

/// Vertices, those closer than the tolerance counted as one.
class Nodes {
 public:
  Nodes(double tolerance, std::vector<Complex>* at) : tolerance_(tolerance), at_(at) {}

  int Get(Complex p) {
    const long long i = Cell(p.real()), j = Cell(p.imag());
    for (long long a = i - 1; a <= i + 1; ++a)
      for (long long b = j - 1; b <= j + 1; ++b) {
        const auto found = cells_.find({a, b});
        if (found == cells_.end()) continue;
        for (int k : found->second)
          if (std::abs((*at_)[k] - p) <= tolerance_) return k;
      }
    at_->push_back(p);
    cells_[{i, j}].push_back(int(at_->size()) - 1);
    return int(at_->size()) - 1;
  }

 private:
  long long Cell(double v) const { return std::llround(v / (2.0 * tolerance_)); }
  double tolerance_;
  std::vector<Complex>* at_;
  std::map<std::pair<long long, long long>, std::vector<int>> cells_;
};

/// An edge as drawn, and the nodes that lie on it.
struct Drawn {
  int from = -1, to = -1;
  int domain = -1, wall = -1, segment = -1;
  int string = -1;  ///< a line-sink: cuts others and is cut, but is no edge
  std::vector<std::pair<double, int>> on;
};

/// A vertex that is not the same as the one before it.
struct Corner {
  int node = -1;
  int vertex = -1;  ///< the segment that leaves it in the model's numbering
};

std::vector<Corner> CornersOf(const std::vector<LabelledPoint>& points, bool closed, Nodes* nodes) {
  std::vector<Corner> list;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const int node = nodes->Get(points[i].at);
    if (list.empty() || list.back().node != node) {
      list.push_back({node, int(i)});
    } else {
      list.back().vertex = int(i);
    }
  }
  if (closed)
    while (list.size() > 1 && list.front().node == list.back().node) list.pop_back();
  return list;
}

void AddDrawn(const std::vector<Corner>& list, bool closed, int domain, int wall, std::vector<Drawn>* drawn) {
  const std::size_t n = list.size();
  for (std::size_t i = 0; i + (closed ? 0 : 1) < n; ++i)
    if (list[i].node != list[(i + 1) % n].node)
      drawn->push_back({list[i].node, list[(i + 1) % n].node, domain, wall, list[i].vertex, -1, {}});
}

/// The first `edges` of the list are rings and walls; line-sinks behind them do not cut each other.
void CutEdges(double tolerance, Nodes* nodes, const std::vector<Complex>& at, std::size_t edges,
              std::vector<Drawn>* drawn) {
  std::vector<std::pair<Complex, Complex>> lines;
  for (const Drawn& d : *drawn) lines.emplace_back(at[d.from], at[d.to]);
  const SegmentIndex index(lines);
  std::vector<int> found;
  for (std::size_t i = 0; i < drawn->size(); ++i) {
    const auto [a, b] = lines[i];
    Drawn& own = (*drawn)[i];
    own.on.emplace_back(0.0, own.from);
    own.on.emplace_back(1.0, own.to);
    Box box;
    box.Add(a);
    box.Add(b);
    box.Grow(2.0 * tolerance);
    index.Find(box, &found);
    for (int other : found) {
      if (other == int(i) || (i >= edges && other >= int(edges))) continue;
      const auto [c, d] = lines[other];
      bool touches = false;
      for (int node : {(*drawn)[other].from, (*drawn)[other].to}) {
        if (node == own.from || node == own.to) {
          touches = true;
          continue;
        }
        const Nearest near = NearestOnSegment(a, b, node == (*drawn)[other].from ? c : d);
        if (near.distance > tolerance) continue;
        touches = true;
        own.on.emplace_back(near.position, node);
      }
      if (touches) continue;
      const auto meeting = Meet(a, b, c, d);
      if (meeting) own.on.emplace_back(meeting->on_first, nodes->Get(a + meeting->on_first * (b - a)));
    }
    std::sort(own.on.begin(), own.on.end());
  }
}

/// Segments of the line-sink strings as drawn lines; cuts of each stand in the system, none as yet.  `ends`
/// are the nodes of strings without resistance that a head or a level rules.
struct Strings {
  std::vector<Drawn> drawn;
  std::vector<std::pair<int, std::pair<int, int>>> ends;  ///< node; string and segment
};

Strings DrawStrings(System& s, bool alone, Nodes* nodes) {
  Strings strings;
  s.segment_cuts.resize(s.model.line_sinks.size());
  for (std::size_t k = 0; k < s.model.line_sinks.size(); ++k) {
    const LineSinkString& line_sink = s.model.line_sinks[k];
    s.segment_cuts[k].resize(line_sink.segments.size());
    if (alone) continue;
    for (std::size_t i = 0; i < line_sink.segments.size(); ++i) {
      const int a = nodes->Get(line_sink.segments[i].from), b = nodes->Get(line_sink.segments[i].to);
      if (a == b) continue;
      strings.drawn.push_back({a, b, -1, -1, int(i), int(k), {}});
      if (line_sink.kind != LineSinkKind::kDischarge && !Resists(line_sink))
        for (int node : {a, b}) strings.ends.emplace_back(node, std::pair{int(k), int(i)});
    }
  }
  return strings;
}

/// Edges of domains and walls between neighbouring nodes, each once: a wall goes before the edge it lies on.
void CollectEdges(System& s, std::span<const Drawn> drawn, Arrangement* result) {
  s.rings.assign(s.model.domains.size(), {});
  std::map<std::pair<int, int>, std::size_t> known;
  for (const Drawn& d : drawn) {
    for (std::size_t i = 0; i + 1 < d.on.size(); ++i) {
      const int a = d.on[i].second, b = d.on[i + 1].second;
      if (a == b) continue;
      if (d.domain >= 0) s.rings[d.domain].push_back(result->nodes[a]);
      const auto [entry, added] = known.try_emplace({std::min(a, b), std::max(a, b)}, result->edges.size());
      if (added) {
        result->edges.push_back({a, b, d.wall, d.domain, d.segment});
      } else if (d.wall >= 0 && result->edges[entry->second].wall < 0) {
        const int domain = result->edges[entry->second].domain;
        result->edges[entry->second] = {a, b, d.wall, domain, d.segment};
      }
    }
  }
}

}  // namespace

Arrangement Arrange(System& s) {
  Arrangement result;
  Nodes nodes(s.tolerance, &result.nodes);
  std::vector<Drawn> drawn;
  for (std::size_t d = 0; d < s.model.domains.size(); ++d) {
    const std::vector<LabelledPoint>& ring = s.model.domains[d].ring;
    if (!EnclosesArea(CleanRing(ring, s.tolerance), s.tolerance)) continue;
    AddDrawn(CornersOf(ring, true, &nodes), true, int(d), -1, &drawn);
  }
  for (std::size_t w = 0; w < s.model.walls.size(); ++w) {
    const bool closed = s.model.walls[w].kind != WallKind::kOpen;
    AddDrawn(CornersOf(s.model.walls[w].points, closed, &nodes), closed, -1, int(w), &drawn);
  }
  const Strings strings = DrawStrings(s, drawn.empty(), &nodes);
  const std::size_t edges = drawn.size();
  drawn.insert(drawn.end(), strings.drawn.begin(), strings.drawn.end());
  CutEdges(s.tolerance, &nodes, result.nodes, edges, &drawn);
  for (std::size_t i = edges; i < drawn.size(); ++i)
    for (const auto& [position, node] : drawn[i].on)
      if (position > 0.0 && position < 1.0)
        s.segment_cuts[drawn[i].string][drawn[i].segment].push_back(position);
  result.on_string.assign(result.nodes.size(), false);
  for (std::size_t i = edges; i < drawn.size(); ++i)
    for (const auto& [position, node] : drawn[i].on) result.on_string[node] = true;
  result.string_ends.assign(result.nodes.size(), 0);
  result.ending.assign(result.nodes.size(), {-1, -1});
  for (const auto& [node, segment] : strings.ends) {
    ++result.string_ends[node];
    result.ending[node] = segment;
  }
  drawn.resize(edges);
  CollectEdges(s, drawn, &result);
  return result;
}

}  // namespace aem::detail
