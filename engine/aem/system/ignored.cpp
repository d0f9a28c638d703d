#include "aem/system/ignored.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "aem/input/validate.h"
#include "aem/system/system.h"

namespace aem::detail {

namespace {

/// What holds the level of a region.
struct Supply {
  bool head = false;   ///< given for better and worse
  bool drain = false;  ///< holds for what takes or loses only as much as there is: drains and routed streams
  bool water = false;  ///< something brings water that a drain can take
};

template <class List, class Where>
void AddPoints(const List& list, const Where& where, Supply* supply) {
  for (const auto& e : list) {
    if (!where(e.at)) continue;
    supply->head = supply->head || e.by_head;
    supply->water = supply->water || (!e.by_head && e.value < 0.0);
  }
}

template <class Where>
Supply SupplyOf(const Model& m, const Where& where) {
  Supply supply;
  AddPoints(m.wells, where, &supply);
  AddPoints(m.partial_wells, where, &supply);
  AddPoints(m.disks, where, &supply);
  for (const LineSinkString& s : m.line_sinks)
    for (const LineSinkSegment& g : s.segments) {
      if (!where(0.5 * (g.from + g.to))) continue;
      const bool routed = s.kind == LineSinkKind::kStream;
      supply.head = supply.head || s.kind == LineSinkKind::kHead;
      supply.drain = supply.drain || s.kind == LineSinkKind::kDrain || routed;
      supply.water = supply.water || (routed && (s.inflow > 0.0 || s.overland_flow > 0.0)) ||
                     (s.kind == LineSinkKind::kDischarge && g.value < 0.0);
    }
  for (const Domain& d : m.domains) {
    if (d.recharge_sink >= 0.0 || d.ring.empty()) continue;
    // Any part of it inside will do: what a drain then takes is looked at after the solve.
    for (std::size_t i = 0; i < d.ring.size(); ++i) {
      const Complex a = d.ring[i].at, b = d.ring[(i + 1) % d.ring.size()].at;
      supply.water = supply.water || where(a) || where(0.5 * (a + b));
    }
  }
  return supply;
}

bool Holds(const Supply& s) {
  return s.head || (s.drain && s.water);
}

/// Whether recharge falls on a region from a domain that holds it whole.
bool RechargedWhole(const Model& m, const std::vector<Complex>& ring) {
  return std::any_of(m.domains.begin(), m.domains.end(), [&](const Domain& d) {
    if (d.recharge_sink >= 0.0 || d.ring.size() < 3) return false;
    std::vector<Complex> around;
    for (const LabelledPoint& p : d.ring) around.push_back(p.at);
    return Contains(around, ring[0]);
  });
}

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

}  // namespace

namespace {

constexpr const char* kNoHead =
    "This closed wall shuts in a region without any given head: give a head inside or ignore the inside.";
constexpr const char* kIdleDrain =
    "This closed wall shuts in a region whose drains and streams get no water, so that none of them holds a "
    "head there: give a head inside or ignore the inside.";

/// The reference point's head is not used where it is ignored; then something else must give one.
void CheckReference(System& s) {
  const Complex reference = s.model.aquifer.reference_point;
  for (const IgnoredRegion& r : s.ignored) {
    if (Contains(r.ring, reference) != r.inside) continue;
    const Supply kept = SupplyOf(s.model, [&](Complex at) { return !s.Ignored(at); });
    const Origin& wall = s.model.walls[r.wall].origin;
    if (Holds(kept) || (kept.drain && RechargedWhole(s.model, r.ring)))
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

/// A region that no water enters or leaves but through elements, and the ring around it.
bool IsTight(const Wall& wall) {
  if (wall.kind == WallKind::kOpen || wall.kind == WallKind::kKeepOutside) return false;
  return wall.conductivity == 0.0 || wall.kind == WallKind::kKeepInside;
}

}  // namespace

void FindIgnored(System& s) {
  for (std::size_t w = 0; w < s.model.walls.size(); ++w) {
    const Wall& wall = s.model.walls[w];
    if (wall.kind == WallKind::kKeepOutside || wall.kind == WallKind::kKeepInside)
      s.ignored.push_back({int(w), wall.kind == WallKind::kKeepOutside, CleanRing(wall.points, s.tolerance)});
  }
  CheckReference(s);
  if (s.refused) return;
  for (const Wall& wall : s.model.walls) {
    if (!IsTight(wall)) continue;
    const std::vector<Complex> ring = CleanRing(wall.points, s.tolerance);
    const auto inside = [&](Complex at) { return Contains(ring, at) && !s.Ignored(at); };
    Supply supply = SupplyOf(s.model, inside);
    supply.water = supply.water || (supply.drain && RechargedWhole(s.model, ring));
    if (!Holds(supply))
      s.Add(Severity::kFatal, wall.origin, supply.drain ? kIdleDrain : kNoHead);
    else if (Contains(ring, s.model.aquifer.reference_point) && wall.kind == WallKind::kClosed)
      s.Add(Severity::kFatal, wall.origin,
            "The reference point lies inside this closed wall: move it outside.");
  }
}

void CheckIdle(System& s) {
  for (const Wall& wall : s.model.walls) {
    if (!IsTight(wall)) continue;
    const std::vector<Complex> ring = CleanRing(wall.points, s.tolerance);
    const auto inside = [&](Complex at) { return Contains(ring, at) && !s.Ignored(at); };
    if (SupplyOf(s.model, inside).head) continue;
    bool holds = false;
    for (std::size_t k = 0; k < s.flag_of.size() && !holds; ++k)
      for (std::size_t i = 0; i < s.flag_of[k].size() && !holds; ++i) {
        const LineSinkSegment& g = s.model.line_sinks[k].segments[i];
        const int flag = s.flag_of[k][i];
        holds = flag >= 0 && s.flags[flag] == 0 && inside(0.5 * (g.from + g.to));
      }
    if (!holds) s.Add(Severity::kFatal, wall.origin, kIdleDrain);
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
                  s.model.walls[region.wall].origin.label + ".");
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

void WeighLoops(System& s) {
  std::map<int, std::map<int, double>> sums;
  for (const Control& c : s.controls) {
    if (c.condition != Condition::kWall) continue;
    const int wall = s.edges[s.owners[c.piece].edge].wall;
    const bool free = std::any_of(s.ignored.begin(), s.ignored.end(),
                                  [&](const IgnoredRegion& r) { return r.wall == wall && r.inside; });
    if (!free) continue;
    std::array<double, kMaxBasis> values;
    BasisValues(s.pieces[c.piece], c.parameter, values.data(), nullptr);
    for (const Term& t : s.terms[c.piece])
      for (int n = 0; n < s.pieces[c.piece].size; ++n)
        sums[wall][t.unknown] += c.weight * t.coefficient[n] * values[n];
  }
  for (const auto& [wall, weights] : sums) s.loops.emplace_back(weights.begin(), weights.end());
}

}  // namespace aem::detail
