#include "aem/system/ignored.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "aem/input/validate.h"
#include "aem/system/system.h"

namespace aem::detail {

namespace {

/// What holds the level of a region, and what brings or takes water there.
struct Supply {
  bool head = false;    ///< given for better and worse
  bool drain = false;   ///< holds for what takes or loses only as much as there is: drains and routed streams
  bool water = false;   ///< something brings water that a drain can take
  bool source = false;  ///< something of given rate, whatever it is
};

bool Holds(const Supply& s) {
  return s.head || (s.drain && s.water);
}

/// Supplies of all regions: of the unbounded one first, then of the enclosures.
class Supplies {
 public:
  explicit Supplies(const System& s) : s_(s), of_(s.enclosures.size() + 1) {
    AddPoints(s.model.wells);
    AddPoints(s.model.partial_wells);
    AddPoints(s.model.disks);
    for (const TheisRecord& t : s.model.theis)
      if (Supply* here = At(t.at)) here->source = true;
    for (std::size_t k = 0; k < s.model.line_sinks.size(); ++k)
      for (std::size_t i = 0; i < s.model.line_sinks[k].segments.size(); ++i) AddSegment(k, i);
    for (std::size_t d = 0; d < s.rings.size(); ++d) AddRecharge(d);
  }

  /// -1: the unbounded region.
  const Supply& Of(int enclosure) const { return of_[std::size_t(enclosure + 1)]; }
  /// Of all that is computed.
  Supply Whole() const {
    Supply sum;
    for (const Supply& o : of_) {
      sum.head = sum.head || o.head;
      sum.drain = sum.drain || o.drain;
      sum.water = sum.water || o.water;
    }
    return sum;
  }

 private:
  Supply* At(Complex at) {
    return s_.Ignored(at) ? nullptr : &of_[std::size_t(EnclosureAt(s_.enclosures, at) + 1)];
  }

  template <class List>
  void AddPoints(const List& list) {
    for (const auto& e : list)
      if (Supply* here = At(e.at)) {
        here->head = here->head || e.by_head;
        here->source = true;
        here->water = here->water || (!e.by_head && e.value < 0.0);
      }
  }

  void AddSegment(std::size_t k, std::size_t i) {
    const LineSinkString& string = s_.model.line_sinks[k];
    const LineSinkSegment& g = string.segments[i];
    std::vector<double> cuts = s_.segment_cuts[k][i];
    cuts.insert(cuts.end(), {0.0, 1.0});
    std::sort(cuts.begin(), cuts.end());
    const double smallest = 2.0 * s_.tolerance / std::max(std::abs(g.to - g.from), s_.tolerance);
    const bool routed = string.kind == LineSinkKind::kStream;
    for (std::size_t c = 0; c + 1 < cuts.size(); ++c) {
      if (cuts[c + 1] - cuts[c] <= smallest) continue;
      Supply* here = At(g.from + 0.5 * (cuts[c] + cuts[c + 1]) * (g.to - g.from));
      if (here == nullptr) continue;
      here->head = here->head || string.kind == LineSinkKind::kHead;
      here->drain = here->drain || string.kind == LineSinkKind::kDrain || routed;
      here->source = here->source || (string.kind == LineSinkKind::kDischarge && g.value != 0.0);
      here->water = here->water || (routed && (string.inflow > 0.0 || string.overland_flow > 0.0)) ||
                    (string.kind == LineSinkKind::kDischarge && g.value < 0.0);
    }
  }

  /// Any part of a domain will do: what a drain then takes is looked at after the solve.
  void AddRecharge(std::size_t d) {
    const double rate = s_.model.domains[d].recharge_sink;
    const std::vector<Complex>& ring = s_.rings[d];
    if (rate == 0.0 || ring.size() < 3) return;
    const auto add = [&](Complex at) {
      if (Supply* here = At(at)) {
        here->source = true;
        here->water = here->water || rate < 0.0;
      }
    };
    // Its ring has a vertex at every wall that it meets, so that an edge lies in one region.
    const double turn = SignedArea(ring) > 0.0 ? 1.0 : -1.0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const Complex along = ring[(i + 1) % ring.size()] - ring[i];
      add(ring[i] + 0.5 * along + 1e-6 * turn * along * Complex{0.0, 1.0});
    }
    for (const Enclosure& e : s_.enclosures)
      if (Contains(ring, e.inside)) add(e.inside);
  }

  const System& s_;
  std::vector<Supply> of_;
};

bool Crosses(const std::vector<Complex>& a, const std::vector<Complex>& b) {
  const auto inside = [](double t) { return t > 1e-9 && t < 1.0 - 1e-9; };
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < b.size(); ++j)
      if (const auto m = Meet(a[i], a[(i + 1) % a.size()], b[j], b[(j + 1) % b.size()]))
        if (inside(m->on_first) && inside(m->on_second)) return true;
  return false;
}

/// Rings that do not cross lie in or out as a whole: the middle of an edge, moved inward a little, decides.
bool LiesWithin(const std::vector<Complex>& inner, const std::vector<Complex>& outer) {
  const double turn = SignedArea(inner) > 0.0 ? 1.0 : -1.0;
  const Complex along = inner[1] - inner[0];
  return Contains(outer, inner[0] + 0.5 * along + 1e-6 * turn * along * Complex{0.0, 1.0});
}

/// A wall around a region that is left out for want of a head.
int WallOf(const System& s, const IgnoredRegion& region) {
  for (const Enclosure& e : s.enclosures)
    if (e.way == region.way) return e.walls[0];
  return 0;
}

}  // namespace

namespace {

constexpr const char* kNoHead =
    "This closed wall shuts in a region without any given head: give a head inside or ignore the inside.";
constexpr const char* kIdleDrain =
    "This closed wall shuts in a region whose drains and streams get no water, so that none of them holds a "
    "head there: give a head inside or ignore the inside.";

/// The reference point's head is not used where it is ignored; then something else must give one.
void CheckReference(System& s, const Supplies& supplies) {
  const Complex reference = s.model.aquifer.reference_point;
  for (const IgnoredRegion& r : s.ignored) {
    if (Contains(r.ring, reference) != r.inside) continue;
    const Origin& wall = s.model.walls[r.wall].origin;
    if (Holds(r.inside ? supplies.Of(-1) : supplies.Whole()))
      s.Add(Severity::kNote, wall,
            "The reference point lies on the ignored side of this wall: its head is not used, no water comes "
            "from infinity, and the heads given on the other side decide.");
    else
      s.Add(
          Severity::kFatal, wall,
          "The reference point lies on the ignored side of this wall, and nothing on the other side gives a "
          "head: give one there or move the reference point to the other side.");
    return;
  }
}

/// One closed wall shuts it in and nothing else does.
bool IsOneWall(const System& s, const Enclosure& e) {
  return e.walls.size() == 1 && s.model.walls[e.walls[0]].kind != WallKind::kOpen;
}

const Origin& FirstWall(const System& s, const Enclosure& e) {
  return s.model.walls[e.walls[0]].origin;
}

/// "This wall and HB_000002_0000 shut in a region near 100, 200", the first label being that of the finding.
std::string ShutIn(const System& s, const Enclosure& e) {
  std::string text = "This wall";
  for (std::size_t i = 1; i < e.walls.size(); ++i)
    text += (i + 1 < e.walls.size() ? ", " : " and ") + s.model.walls[e.walls[i]].origin.label;
  return text + (e.walls.size() > 1 ? " shut" : " shuts") + " in a region near " + PlaceText(e.inside);
}

/// Without a given head and without water that comes or goes nothing flows there, and its one head is
/// anyone's guess: it is left out.
void LeaveOut(System& s, const Enclosure& e) {
  s.Add(Severity::kWarning, FirstWall(s, e),
        ShutIn(s, e) +
            " without any given head: its heads are undetermined and left out.  Give a head inside, or "
            "let the walls end where they meet.");
  s.ignored.push_back({-1, true, e.ring, e.way});
}

/// Ground that is left out is so with all within its ring.
bool HoldsAnother(const System& s, const Enclosure& e) {
  return std::any_of(s.enclosures.begin(), s.enclosures.end(),
                     [&](const Enclosure& o) { return &o != &e && Contains(e.ring, o.inside); });
}

void CheckEnclosure(System& s, const Enclosure& e, const Supply& supply) {
  const bool one = IsOneWall(s, e), holds = Holds(supply);
  if (!holds && one) {
    s.Add(Severity::kFatal, FirstWall(s, e), supply.drain ? kIdleDrain : kNoHead);
  } else if (!holds && (supply.source || HoldsAnother(s, e))) {
    s.Add(Severity::kFatal, FirstWall(s, e),
          ShutIn(s, e) + " without any given head, but with " +
              (supply.source ? "a well or other source" : "another such region within") +
              ": give a head inside, or let the walls end where they meet.");
  } else if (!holds) {
    LeaveOut(s, e);
  }
}

}  // namespace

void FindIgnored(System& s) {
  for (std::size_t w = 0; w < s.model.walls.size(); ++w) {
    const Wall& wall = s.model.walls[w];
    if (wall.kind == WallKind::kKeepOutside || wall.kind == WallKind::kKeepInside)
      s.ignored.push_back(
          {int(w), wall.kind == WallKind::kKeepOutside, CleanRing(wall.points, s.tolerance), {}});
  }
  const Supplies supplies(s);
  CheckReference(s, supplies);
  if (s.refused) return;
  const bool from_infinity = !KeepsInside(s);
  const int reference = EnclosureAt(s.enclosures, s.model.aquifer.reference_point);
  std::vector<char> ignored;
  for (const Enclosure& e : s.enclosures) ignored.push_back(s.Ignored(e.inside) ? 1 : 0);
  for (std::size_t i = 0; i < s.enclosures.size(); ++i) {
    if (ignored[i] != 0) continue;
    const Enclosure& e = s.enclosures[i];
    if (int(i) == reference && from_infinity && (Holds(supplies.Of(reference)) || !IsOneWall(s, e)))
      s.Add(Severity::kFatal, FirstWall(s, e),
            IsOneWall(s, e) ? "The reference point lies inside this closed wall: move it outside."
                            : ShutIn(s, e) + ", and the reference point lies there: move it outside.");
    else
      CheckEnclosure(s, e, supplies.Of(int(i)));
  }
}

bool KeepsInside(const System& s) {
  return std::any_of(s.ignored.begin(), s.ignored.end(), [](const auto& r) { return !r.inside; });
}

void CheckIdle(System& s) {
  const Supplies supplies(s);
  for (std::size_t e = 0; e < s.enclosures.size(); ++e) {
    if (s.Ignored(s.enclosures[e].inside) || supplies.Of(int(e)).head) continue;
    bool holds = false;
    for (std::size_t k = 0; k < s.flag_of.size() && !holds; ++k)
      for (std::size_t i = 0; i < s.flag_of[k].size() && !holds; ++i) {
        const LineSinkSegment& g = s.model.line_sinks[k].segments[i];
        const int flag = s.flag_of[k][i];
        holds = flag >= 0 && s.flags[flag] == 0 && EnclosureAt(s.enclosures, 0.5 * (g.from + g.to)) == int(e);
      }
    if (holds) continue;
    s.Add(Severity::kFatal, FirstWall(s, s.enclosures[e]),
          IsOneWall(s, s.enclosures[e])
              ? kIdleDrain
              : ShutIn(s, s.enclosures[e]) +
                    " whose drains and streams get no water, so that none of them holds a head there: give a "
                    "head inside, or let the walls end where they meet.");
  }
}

void BuildAreas(System& s) {
  for (std::size_t d = 0; d < s.rings.size(); ++d) {
    const double rate = s.model.domains[d].recharge_sink;
    const std::vector<Complex>& ring = s.rings[d];
    const bool has_base = s.model.domains[d].base != kNotSet;
    if ((rate == 0.0 && !has_base) || ring.size() < 3) continue;
    bool whole = true;
    for (const IgnoredRegion& region : s.ignored) {
      if (Crosses(ring, region.ring)) {
        s.Add(Severity::kFatal, s.model.domains[d].origin,
              (rate != 0.0 ? "The domain's recharge" : "The domain, which has a base of its own,") +
                  std::string(" lies partly on ignored ground: let its ring end at wall ") +
                  s.model.walls[region.wall >= 0 ? region.wall : WallOf(s, region)].origin.label + ".");
        return;
      }
      if (rate == 0.0) continue;
      const bool within = LiesWithin(ring, region.ring);
      const bool around = !within && LiesWithin(region.ring, ring);
      if (region.inside && around) s.areas.emplace_back(region.ring, -rate);
      if (!region.inside && around) s.areas.emplace_back(region.ring, rate);
      if (region.inside ? within : !within) whole = false;
    }
    if (whole && rate != 0.0) s.areas.emplace_back(ring, rate);
  }
}

namespace {

/// The integral of the jump along a control's share of its piece, as the edge runs, times `factor`.
void AddJump(const System& s, const Control& c, double factor, std::map<int, double>* sum) {
  const JumpEdge& edge = s.edges[s.owners[c.piece].edge];
  const double way =
      Dot(s.pieces[c.piece].to - s.pieces[c.piece].from, edge.to - edge.from) > 0.0 ? 1.0 : -1.0;
  std::array<double, kMaxBasis> values;
  BasisValues(s.pieces[c.piece], c.parameter, values.data(), nullptr);
  for (const Term& t : s.terms[c.piece])
    for (int n = 0; n < s.pieces[c.piece].size; ++n)
      (*sum)[t.unknown] += factor * way * c.weight * t.coefficient[n] * values[n];
}

}  // namespace

void WeighLoops(System& s) {
  for (const IgnoredRegion& r : s.ignored) {
    if (!r.inside) continue;
    const std::map<int, double> way(r.way.begin(), r.way.end());
    std::map<int, double> sum;
    for (const Control& c : s.controls) {
      if (c.condition != Condition::kWall) continue;
      const JumpEdge& edge = s.edges[s.owners[c.piece].edge];
      const auto on_way = way.find(edge.drawn);
      if (r.wall < 0 ? on_way != way.end() : edge.wall == r.wall)
        AddJump(s, c, r.wall < 0 ? on_way->second : 1.0, &sum);
    }
    if (!sum.empty()) s.loops.emplace_back(sum.begin(), sum.end());
  }
}

}  // namespace aem::detail
