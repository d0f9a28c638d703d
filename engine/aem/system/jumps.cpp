// Line-doublets along domain edges and walls: pieces, unknowns, control points.
//
// The jump is continuous along edges, so that no end of a piece is a singular point: its unknowns are values
// at nodes and bubbles P_{n+1} - P_{n-1} on pieces.  Where m edges meet, each of the m sectors between them
// has its own level of the potential; jumps are differences of levels and one level is free, so m - 1
// unknowns remain and the strengths sum to zero around the node.  One edge alone ends there: its jump is
// zero.
#include <algorithm>
#include <cmath>

#include "aem/kernel/grading.h"
#include "aem/kernel/power_law.h"
#include "aem/kernel/wedge.h"
#include "aem/system/arrangement.h"
#include "aem/system/refine.h"
#include "aem/system/system.h"

namespace aem::detail {

namespace {

const Order& OrderOf(const System& s, int edge) {
  return kOrders[s.orders.of_edge[edge]];
}

/// A jump as a sum of unknowns.
using Combination = std::vector<std::pair<int, double>>;

using Junction = std::vector<std::pair<double, int>>;  ///< as in Arrangement::around

int EdgeOf(const std::pair<double, int>& leaving) {
  return leaving.second < 0 ? -leaving.second - 1 : leaving.second;
}

struct Ends {
  Combination start, end;  ///< of each edge
  EndShape start_shape, end_shape;
  bool start_mixed = false, end_mixed = false;  ///< walls and edges without a wall meet there
};

double TurnAt(const std::vector<std::pair<double, int>>& around, std::size_t i) {
  if (around.size() != 2) return 1.5;
  return std::abs(std::remainder(around[1 - i].first - around[i].first + M_PI, 2.0 * M_PI));
}

/// Levels of the sectors around a node become unknowns; every edge gets its jump there.
void MakeNode(System& s, Junction* node, bool on_string, double power, std::vector<Ends>* ends) {
  Junction& around = *node;
  std::sort(around.begin(), around.end());
  const std::size_t m = around.size();
  std::vector<int> level(m, -1);
  bool any_wall = false, any_edge = false;
  for (const auto& [angle, e] : around) {
    const bool wall = s.edges[e < 0 ? -e - 1 : e].wall >= 0;
    any_wall = any_wall || wall;
    any_edge = any_edge || !wall;
  }
  const auto walls = std::count_if(around.begin(), around.end(), [&](const auto& a) {
    return s.edges[a.second < 0 ? -a.second - 1 : a.second].wall >= 0;
  });
  const bool edges_decide = walls == 1 && m > 1;
  for (std::size_t i = 1; i < m; ++i) {
    level[i] = s.NewUnknown();
    s.edge_only.resize(s.x.size(), 0);
    s.edge_only.back() = edges_decide ? 1 : 0;
  }
  for (std::size_t i = 0; i < m; ++i) {
    // Sector i lies counter-clockwise of edge i: left of it, seen from the node.
    const int left = level[i], right = level[(i + m - 1) % m];
    const bool arrives = around[i].second < 0;
    const int edge = arrives ? -around[i].second - 1 : around[i].second;
    Combination jump;
    const double sign = arrives ? -1.0 : 1.0;
    if (left != right) {
      if (left >= 0) jump.emplace_back(left, sign);
      if (right >= 0) jump.emplace_back(right, -sign);
    }
    const double turn = m == 1 ? 0.0 : any_wall && any_edge ? 2.0 : on_string ? 1.0 : TurnAt(around, i);
    const EndShape shape{m == 1 && power == 0.0, turn, power};
    if (arrives) {
      (*ends)[edge].end = jump;
      (*ends)[edge].end_shape = shape;
      (*ends)[edge].end_mixed = any_wall && any_edge && !edges_decide;
    } else {
      (*ends)[edge].start = jump;
      (*ends)[edge].start_shape = shape;
      (*ends)[edge].start_mixed = any_wall && any_edge && !edges_decide;
    }
  }
}

void AddTerm(std::vector<Term>* terms, int unknown, int n, double value) {
  for (Term& t : *terms)
    if (t.unknown == unknown) {
      t.coefficient[n] += value;
      return;
    }
  Term t;
  t.unknown = unknown;
  t.coefficient[n] = value;
  terms->push_back(t);
}

/// Unknowns of a piece whose jump at `from` and `to` is given.
void MakeTerms(System& s, int index, const Combination& at_from, const Combination& at_to, double sign) {
  std::vector<Term>* terms = &s.terms[index];
  const Piece& piece = s.pieces[index];
  if (piece.tip) {
    for (const auto& [unknown, factor] : at_from) AddTerm(terms, unknown, 0, sign * factor);
  } else {
    for (const auto& [unknown, factor] : at_from) {
      AddTerm(terms, unknown, 0, 0.5 * sign * factor);
      AddTerm(terms, unknown, 1, -0.5 * sign * factor);
    }
    for (const auto& [unknown, factor] : at_to) {
      AddTerm(terms, unknown, 0, 0.5 * sign * factor);
      AddTerm(terms, unknown, 1, 0.5 * sign * factor);
    }
  }
  const int reach = piece.tip ? 1 : 2;
  for (int n = reach; n < piece.size; ++n) {
    const int bubble = s.NewUnknown();
    AddTerm(terms, bubble, n, 1.0);
    AddTerm(terms, bubble, n - reach, -1.0);
  }
}

/// `weight`: of the condition of an edge, by that of the length.  `test_cut`: of a wall, as in Control.
void AddControls(System& s, int index, bool reversed, double weight = 1.0, double test_cut = 0.0) {
  const Piece& p = s.pieces[index];
  const JumpEdge& edge = s.edges[s.owners[index].edge];
  const GaussRule rule = Gauss(OrderOf(s, s.owners[index].edge).points);
  for (int q = 0; q < rule.size; ++q) {
    Control c;
    c.parameter = p.tip ? 0.5 * (1.0 + rule.x[q]) : rule.x[q];
    // Weights are those of the length: dX = 4U dU on a tip piece.
    c.weight = 0.5 * p.Length() * rule.w[q] * (p.tip ? 2.0 * c.parameter : 1.0);
    c.at = p.Global(PositionOf(p, c.parameter));
    c.toward = p.Direction() * Complex{0.0, 1.0};
    c.piece = index;
    c.zone = reversed ? edge.right : edge.left;
    c.right = reversed ? edge.left : edge.right;
    if (edge.wall < 0) {
      c.condition = Condition::kEdge;
      c.weight *= weight;
      s.controls.push_back(c);
      continue;
    }
    // integral of v times the flow, by parts for the doublets: minus integral v Psi' = integral v' Psi - [v
    // Psi]
    c.test_cut = test_cut;
    c.condition = Condition::kWall;
    s.controls.push_back(c);
    c.condition = Condition::kWallStream;
    s.controls.push_back(c);
    if (s.model.walls[edge.wall].conductivity > 0.0 && c.zone != c.right) {
      c.condition = Condition::kWallHead;
      s.controls.push_back(c);
    }
  }
}

/// The term [v Psi] at an end of a wall's piece.  Where walls meet walls only, these cancel around the node.
void AddEndTerm(System& s, int index, bool at_from) {
  const Piece& p = s.pieces[index];
  if (s.edges[s.owners[index].edge].wall < 0 || (p.tip && !at_from)) return;
  // Far enough from the node that the rounding of coordinates leaves its distance.
  const double rounding = 1e-16 * (std::abs(p.from) + std::abs(p.to)) / p.Length();
  const double inward = std::clamp(1e6 * rounding, 1e-6, 1e-3);
  Control c;
  c.parameter = at_from ? ParameterOf(p, -1.0 + inward) : 1.0 - inward;
  c.weight = at_from ? 1.0 : -1.0;
  c.at = p.Global(PositionOf(p, c.parameter));
  c.toward = p.Direction() * Complex{0.0, 1.0};
  c.piece = index;
  c.condition = Condition::kWallStream;
  c.at_end = true;
  s.controls.push_back(c);
}

/// Where pieces of line-sinks that lie on the edge end: both must be divided alike to meet two conditions.
std::vector<double> StringEnds(const System& s, Complex from, Complex to) {
  std::vector<double> positions;
  Box box;
  box.Add(from);
  box.Add(to);
  box.Grow(s.tolerance);
  std::vector<int> found;
  s.segment_index.Find(box, &found);
  for (int k : found) {
    const auto [string, segment] = s.segment_of[k];
    const LineSinkSegment& g = s.model.line_sinks[string].segments[segment];
    const double reach = 2.0 * s.tolerance;
    if (NearestOnSegment(from, to, 0.5 * (g.from + g.to)).distance > reach) continue;
    for (const Part& part : s.segment_parts[string][segment])
      for (double t : {part.start, part.end}) {
        const Nearest near = NearestOnSegment(from, to, g.from + t * (g.to - g.from));
        if (near.distance <= reach) positions.push_back(near.position);
      }
  }
  return positions;
}

/// What to lower a wall's test function by, so that it begins with 0 beyond the blind links: where powers are
/// small what passes there would count as much as all the rest.
double TestCut(const System& s, const JumpEdge& edge, double seen, double power, const Combination& at_node) {
  const bool alone = std::all_of(at_node.begin(), at_node.end(),
                                 [&](const auto& part) { return s.edge_only[part.first] != 0; });
  return edge.wall >= 0 && alone && seen < 1.0 ? std::pow(seen, power) : 0.0;
}

/// The last part before a place where heads follow a power of the distance, from its jumps at both ends
/// alone.  The condition of an edge weighs every link alike, since each tells as much of the law as any
/// other; that of a wall is an integral by parts and keeps its weights.
void AddPowerPart(System& s, int e, const Part& part, bool at_start, double power, const Combination& at_node,
                  const Combination& away, bool mixed) {
  const JumpEdge& edge = s.edges[e];
  const Complex along = edge.to - edge.from;
  const double length = (part.end - part.start) * std::abs(along);
  const double smallest = SmallestLink(edge.from, edge.to) / length;
  std::vector<Link> links = Links(power, smallest);
  const double seen = links.size() > kBlindLinks ? links[links.size() - kBlindLinks].far : 0.0;
  const double test_cut = TestCut(s, edge, seen, power, at_node);
  if (at_start) std::reverse(links.begin(), links.end());
  for (const Link& link : links) {
    const Part placed = Placed(link, part, at_start);
    Piece piece;
    piece.kind = PieceKind::kDoublet;
    piece.size = kMaxBasis;
    piece.from = edge.from + placed.start * along;
    piece.to = edge.from + placed.end * along;
    const int index = s.AddPiece(piece, {-1, -1, placed.start, placed.end, e, true, link.near < seen});
    LinkCoefficients law = JumpOn(link, power);
    if (!at_start) law = Reversed(law);
    for (int n = 0; n < kMaxBasis; ++n) {
      for (const auto& [unknown, factor] : at_node)
        AddTerm(&s.terms[index], unknown, n, factor * ((n == 0 ? 1.0 : 0.0) - law[n]));
      for (const auto& [unknown, factor] : away) AddTerm(&s.terms[index], unknown, n, factor * law[n]);
    }
    if (link.near >= seen || (edge.wall >= 0 && test_cut == 0.0))
      AddControls(s, index, false, 1.0 / (link.far - link.near), test_cut);
    if (link.near == 0.0 && mixed) AddEndTerm(s, index, at_start);
    s.edges[e].pieces.push_back(index);
  }
}

void MakePieces(System& s, int e, const Ends& ends) {
  const Complex from = s.edges[e].from, to = s.edges[e].to;
  const std::vector<Part> divided =
      Divide(ends.start_shape, ends.end_shape, OrderOf(s, e), s.tolerance / std::abs(to - from));
  const std::vector<Part> parts =
      CutAt(NearWells(s, from, to, s.features.Divide(from, to, divided)), StringEnds(s, from, to));
  Combination at_start = ends.start;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const Part& part = parts[i];
    Combination at_end = ends.end;
    if (i + 1 < parts.size()) at_end = {{s.NewUnknown(), 1.0}};
    if (i == 0 && ends.start_shape.power > 0.0 && parts.size() > 2) {
      AddPowerPart(s, e, part, true, ends.start_shape.power, at_start, at_end, ends.start_mixed);
      at_start = at_end;
      continue;
    }
    if (i + 1 == parts.size() && ends.end_shape.power > 0.0 && parts.size() > 2) {
      AddPowerPart(s, e, part, false, ends.end_shape.power, at_end, at_start, ends.end_mixed);
      continue;
    }
    const bool reversed = part.tip_at_start;
    Piece piece;
    piece.kind = PieceKind::kDoublet;
    piece.size = OrderOf(s, e).jump_size;
    piece.tip = part.tip_at_start || part.tip_at_end;
    PieceOwner owner;
    owner.edge = e;
    owner.start = reversed ? part.end : part.start;
    owner.end = reversed ? part.start : part.end;
    piece.from = from + owner.start * (to - from);
    piece.to = from + owner.end * (to - from);
    const int index = s.AddPiece(piece, owner);
    MakeTerms(s, index, reversed ? at_end : at_start, reversed ? at_start : at_end, reversed ? -1.0 : 1.0);
    AddControls(s, index, reversed);
    if (i == 0 && ends.start_mixed) AddEndTerm(s, index, !reversed);
    if (i + 1 == parts.size() && ends.end_mixed) AddEndTerm(s, index, reversed);
    s.edges[e].pieces.push_back(index);
    at_start = at_end;
  }
}

}  // namespace

namespace {

/// Edges within ignored ground carry nothing.
bool Skipped(const System& s, int wall, Complex middle, Complex aside) {
  for (const IgnoredRegion& r : s.ignored) {
    if (wall >= 0 && r.wall == wall) continue;
    const bool left = Contains(r.ring, middle + aside) == r.inside,
               right = Contains(r.ring, middle - aside) == r.inside;
    if (left && right) return true;
  }
  return false;
}

}  // namespace

namespace {

/// Walls, and what meets them, are of full order: their condition holds in the mean and shows no error of its
/// own at points.
void OrderEdges(System& s, const std::vector<Junction>& nodes) {
  if (s.orders.of_edge.size() != s.edges.size())
    s.orders.of_edge.assign(s.edges.size(), static_cast<unsigned char>(s.orders.start));
  for (const Junction& node : nodes) {
    const bool wall =
        std::any_of(node.begin(), node.end(), [&](const auto& a) { return s.edges[EdgeOf(a)].wall >= 0; });
    for (const auto& leaving : node) {
      unsigned char& order = s.orders.of_edge[EdgeOf(leaving)];
      if (wall) order = std::max<unsigned char>(order, kWallOrder);
    }
  }
}

}  // namespace

namespace {

/// Nodes of the edges and free ends of strings, as far as other lines can come near their own.
std::vector<Feature> PlacesOf(const System& s, const Arrangement& arrangement) {
  std::vector<Feature> places;
  for (std::size_t i = 0; i < arrangement.nodes.size(); ++i) {
    double reach = arrangement.string_ends[i] == 1 ? 0.05 * s.extent.Diagonal() : 0.0;
    for (const auto& leaving : arrangement.around[i]) {
      const JumpEdge& edge = s.edges[EdgeOf(leaving)];
      reach = std::max(reach, 0.5 * std::abs(edge.to - edge.from));
    }
    if (reach > 0.0) places.push_back({arrangement.nodes[i], reach});
  }
  return places;
}

}  // namespace

namespace {

/// Powers where a string ends on edges, see wedge.h.
void FindPowers(System& s, Arrangement* arrangement) {
  arrangement->power.assign(arrangement->nodes.size(), 0.0);
  for (std::size_t n = 0; n < arrangement->nodes.size(); ++n) {
    Junction around = arrangement->around[n];
    if (around.empty() || arrangement->string_ends[n] != 1) continue;
    std::sort(around.begin(), around.end());
    const auto [string, segment] = arrangement->ending[n];
    const LineSinkSegment& g = s.model.line_sinks[string].segments[segment];
    const int end = std::abs(g.from - arrangement->nodes[n]) < std::abs(g.to - arrangement->nodes[n]) ? 0 : 1;
    std::vector<WedgeRay> rays;
    for (const auto& leaving : around) {
      const JumpEdge& edge = s.edges[EdgeOf(leaving)];
      const Zone& zone = leaving.second < 0 ? edge.right : edge.left;
      rays.push_back({leaving.first, zone.Slope(zone.Potential(g.value)), edge.wall >= 0});
    }
    const double direction = std::arg(end == 0 ? g.to - g.from : g.from - g.to);
    const bool along_edge = std::any_of(around.begin(), around.end(), [&](const auto& a) {
      return std::abs(std::remainder(a.first - direction, 2.0 * M_PI)) < 1e-3;
    });
    if (along_edge) continue;
    const double power = WedgePower(rays, direction);
    // A free end has a power of a half, which its own piece has already; so it is where zones hardly differ.
    if (std::abs(power - 0.5) < 0.02) continue;
    arrangement->power[n] = power;
    s.end_power[{string, segment, end}] = power;
  }
}

}  // namespace

void PlaceEdges(System& s, Arrangement* arrangement) {
  arrangement->around.assign(arrangement->nodes.size(), {});
  std::vector<std::pair<Complex, Complex>> lines;
  for (std::size_t i = 0; i < arrangement->edges.size(); ++i) {
    const ArrangementEdge& e = arrangement->edges[i];
    JumpEdge edge;
    edge.drawn = int(i);
    edge.from = arrangement->nodes[e.from];
    edge.to = arrangement->nodes[e.to];
    edge.wall = e.wall;
    edge.domain = e.domain;
    edge.segment = e.segment;
    const Complex middle = 0.5 * (edge.from + edge.to);
    const Complex aside = 1e-5 * (edge.to - edge.from) * Complex{0.0, 1.0};
    edge.left = s.zones.At(middle + aside);
    edge.right = s.zones.At(middle - aside);
    const bool differ = edge.left.conductivity != edge.right.conductivity || !edge.left.SameHeads(edge.right);
    if (e.wall < 0 && !differ) continue;
    if (Skipped(s, e.wall, middle, aside)) continue;
    const int index = int(s.edges.size());
    arrangement->around[e.from].emplace_back(std::arg(edge.to - edge.from), index);
    arrangement->around[e.to].emplace_back(std::arg(edge.from - edge.to), -index - 1);
    lines.emplace_back(edge.from, edge.to);
    s.edges.push_back(std::move(edge));
  }
  s.edge_index = SegmentIndex(lines);
  FindPowers(s, arrangement);
  if (!lines.empty()) s.features = Features(PlacesOf(s, *arrangement), lines, s.tolerance);
}

void BuildJumps(System& s, Arrangement* arrangement) {
  OrderEdges(s, arrangement->around);
  std::vector<Ends> ends(s.edges.size());
  for (std::size_t i = 0; i < arrangement->around.size(); ++i)
    if (!arrangement->around[i].empty())
      MakeNode(s, &arrangement->around[i], arrangement->on_string[i], arrangement->power[i], &ends);
  for (std::size_t e = 0; e < s.edges.size(); ++e) MakePieces(s, int(e), ends[e]);
}

}  // namespace aem::detail
