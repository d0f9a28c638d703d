#include "aem/ignored.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "aem/system.h"
#include "aem/validate.h"

namespace aem::detail {

namespace {

bool HasGivenHead(const Model& m, const std::vector<Complex>& ring) {
  for (const Well& w : m.wells)
    if (w.by_head && Contains(ring, w.at)) return true;
  for (const PartialWell& w : m.partial_wells)
    if (w.by_head && Contains(ring, w.at)) return true;
  for (const SinkDisk& d : m.disks)
    if (d.by_head && Contains(ring, d.at)) return true;
  for (const LineSinkString& s : m.line_sinks) {
    if (s.kind == LineSinkKind::kDischarge) continue;
    for (const LineSinkSegment& g : s.segments)
      if (Contains(ring, 0.5 * (g.from + g.to))) return true;
  }
  return false;
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

void FindIgnored(System& s) {
  const Complex reference = s.model.aquifer.reference_point;
  for (std::size_t w = 0; w < s.model.walls.size(); ++w) {
    const Wall& wall = s.model.walls[w];
    if (wall.kind == WallKind::kOpen) continue;
    const std::vector<Complex> ring = CleanRing(wall.points, s.tolerance);
    const bool reference_inside = Contains(ring, reference);
    const bool keeps_outside = wall.kind == WallKind::kKeepOutside;
    const bool keeps_inside = wall.kind == WallKind::kKeepInside;
    if (keeps_outside || keeps_inside) s.ignored.push_back({int(w), keeps_outside, ring});
    if ((keeps_outside && reference_inside) || (keeps_inside && !reference_inside))
      s.Add(Severity::kFatal, wall.origin,
            "The reference point lies on the side of this wall that is ignored: move the reference point or "
            "keep "
            "the other side.");
    if (keeps_outside || (wall.conductivity > 0.0 && !keeps_inside)) continue;
    if (!HasGivenHead(s.model, ring))
      s.Add(Severity::kFatal, wall.origin,
            "This closed wall shuts in a region without any given head: give a head inside or ignore the "
            "inside.");
    else if (reference_inside && !keeps_inside)
      s.Add(Severity::kFatal, wall.origin,
            "The reference point lies inside this closed wall: move it outside.");
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
