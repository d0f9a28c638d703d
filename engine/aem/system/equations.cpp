#include "aem/system/equations.h"

#include <algorithm>
#include <cmath>

#include "aem/kernel/partial.h"
#include "aem/system/strings.h"

namespace aem::detail {

namespace {

/// One head on both sides; with one base the ratio of the potentials is that of the conductivities, whether
/// confined or not, so the condition is linear.  Otherwise one Newton step on the potential of the thinner
/// side as a function of that of the thicker one: this is smooth where the thinner side falls dry, while its
/// head as a function of its own potential has an infinite slope there.
Linearised LineariseEdge(const Control& c, double field, double jump) {
  if (c.zone.SameHeads(c.right)) {
    const double sum = c.zone.conductivity + c.right.conductivity;
    return {(c.right.conductivity - c.zone.conductivity) / sum, 0.5, 0.0};
  }
  const bool thin_left = c.zone.base > c.right.base;
  const Zone &thin = thin_left ? c.zone : c.right, &thick = thin_left ? c.right : c.zone;
  const double at_thick = thin_left ? field - 0.5 * jump : field + 0.5 * jump;
  const double head = thick.Head(at_thick);
  const double slope =
      thin.conductivity * std::min(std::abs(head - thin.base), thin.full_thickness) / thick.Slope(at_thick);
  const double sign = thin_left ? 1.0 : -1.0;
  return {sign * (1.0 - slope) / (1.0 + slope), 0.5,
          sign * (thin.Potential(head) - slope * at_thick) / (1.0 + slope)};
}

/// Inflow per length w (h - stage)/c above the bed's bottom, -w d/c below; written for the potential by one
/// Newton step on the head, so that the field keeps a factor of one.
Linearised LineariseBed(const LineSinkString& string, const Control& c, double field) {
  const double slope = c.zone.Slope(field), head = c.zone.Head(field);
  const double width = EffectiveWidth(string, c.zone.conductivity * c.zone.Thickness(field));
  const double factor = slope * string.resistance / width;
  if (string.kind != LineSinkKind::kDrain && head < c.head - string.depth)
    return {0.0, -factor, slope * string.depth};
  return {1.0, -factor, field - slope * (head - c.head)};
}

/// Flow through a leaky wall is conductivity/thickness times the mean saturated thickness times the
/// difference in head.  Between equal zones this is the jump over k, confined or unconfined alike.
double WallFactor(const Wall& wall, const Zone& zone) {
  return wall.conductivity > 0.0 ? wall.conductivity / (wall.thickness * zone.conductivity) : 0.0;
}

Linearised LineariseWall(const System& s, const Control& c) {
  const Wall& wall = s.model.walls[s.edges[s.owners[c.piece].edge].wall];
  return {1.0, c.zone == c.right ? -WallFactor(wall, c.zone) : 0.0, 0.0};
}

/// Between two zones the leakage depends on both potentials: one Newton step on it.
Linearised LineariseWallHead(const System& s, const Control& c, double field, double jump) {
  const Wall& wall = s.model.walls[s.edges[s.owners[c.piece].edge].wall];
  const double left = field + 0.5 * jump, right = field - 0.5 * jump;
  const double mean = 0.5 * (c.zone.Thickness(left) + c.right.Thickness(right));
  const double conductance =
      wall.conductivity / wall.thickness * std::max(mean, 1e-3 * c.zone.full_thickness);
  const double dl = conductance / c.zone.Slope(left), dr = conductance / c.right.Slope(right);
  const double flow = conductance * (c.zone.Head(left) - c.right.Head(right));
  Linearised l{-(dl - dr), -0.5 * (dl + dr), 0.0};
  l.r = l.a * field + l.b * jump + flow;
  return l;
}

}  // namespace

double EffectiveWidth(const LineSinkString& string, double transmissivity) {
  const double w = string.width, length = std::sqrt(std::max(transmissivity, 1e-30) * string.resistance);
  switch (string.location) {
    case BedLocation::kUnknown:
      return w;
    case BedLocation::kCentreline:
      return 2.0 * length * std::tanh(0.5 * w / length);
    case BedLocation::kWaterEdge:
      return length * std::tanh(w / length);
  }
  return w;
}

double LoopScale(const std::vector<std::pair<int, double>>& loop) {
  double sum = 0.0;
  for (const auto& [i, w] : loop) sum += std::abs(w);
  return sum * sum;
}

double ScreenFactor(const PartialWell& well, const Zone& zone, double potential) {
  return PartialCorrection(well, zone, std::max(zone.Thickness(potential), 1e-3 * zone.full_thickness))
      .OnScreen();
}

Linearised Linearise(const System& s, const Control& c, double field, double strength) {
  if (c.piece >= 0 && s.owners[c.piece].string >= 0) {
    const PieceOwner& o = s.owners[c.piece];
    const LineSinkString& string = s.model.line_sinks[o.string];
    const int flag = s.flag_of[o.string][o.segment];
    if (flag >= 0 && s.flags[flag] != 0) {
      const LineSinkSegment& g = string.segments[o.segment];
      const double scale = 1.0 / std::abs(g.to - g.from);
      return {0.0, 1.0, -s.carried_given[flag] * scale, flag, scale};
    }
    if (c.condition == Condition::kResistance) return LineariseBed(string, c, field);
  }
  switch (c.condition) {
    case Condition::kHead:
    case Condition::kResistance:
      return {1.0, 0.0, c.zone.Potential(c.head)};
    case Condition::kScreen: {
      const PartialWell& well = s.model.partial_wells[c.element];
      return {1.0, ScreenFactor(well, c.zone, field), c.zone.Potential(c.head)};
    }
    case Condition::kEdge:
      return LineariseEdge(c, field, strength);
    case Condition::kWall:
      return LineariseWall(s, c);
    case Condition::kWallStream:
      return {1.0, 0.0, 0.0};
    case Condition::kWallHead:
      return LineariseWallHead(s, c, field, strength);
    case Condition::kBalance:
      return {0.0, 0.0, -s.carried_given.back(), int(s.flags.size()), 1.0};
    case Condition::kNone:
      return {0.0, 1.0, 0.0};
  }
  return {};
}

bool DependsOnHead(const System& s, const Control& c) {
  switch (c.condition) {
    case Condition::kHead:
      return c.piece >= 0 && s.flag_of[s.owners[c.piece].string][s.owners[c.piece].segment] >= 0;
    case Condition::kEdge:
      return !c.zone.SameHeads(c.right);
    case Condition::kWall:
    case Condition::kWallStream:
    case Condition::kBalance:
    case Condition::kNone:
      return false;
    case Condition::kResistance:
    case Condition::kScreen:
    case Condition::kWallHead:
      return true;
  }
  return true;
}

LocalRow LocalValues(const System& s, const Control& c) {
  LocalRow row;
  if (c.piece < 0) {
    row.count = 1;
    row.unknown[0] = c.unknown;
    row.value[0] = row.test[0] = 1.0;
    return row;
  }
  const Piece& piece = s.pieces[c.piece];
  std::array<double, kMaxBasis> values{}, slopes{};
  const bool by_slope = c.condition == Condition::kWallStream && !c.at_end;
  BasisValues(piece, c.parameter, values.data(), by_slope ? slopes.data() : nullptr);
  for (const Term& t : s.terms[c.piece]) {
    double value = 0.0, slope = 0.0;
    for (int n = 0; n < piece.size; ++n) {
      value += t.coefficient[n] * values[n];
      slope += t.coefficient[n] * slopes[n];
    }
    row.unknown[row.count] = t.unknown;
    const bool left_to_edges = KindOf(c.condition) != FieldKind::kPotential &&
                               std::size_t(t.unknown) < s.edge_only.size() && s.edge_only[t.unknown] != 0;
    const double test = (by_slope ? slope : value - c.test_cut) / (1.0 - c.test_cut);
    row.test[row.count] = left_to_edges ? 0.0 : test;
    row.value[row.count++] = value;
  }
  return row;
}

namespace {

/// One number of a flow as the control point sees it.
double Seen(const Control& c, FieldKind kind, const Flow& f) {
  if (kind == FieldKind::kPotential) return f.omega.real();
  if (kind == FieldKind::kDoubletStream) return f.omega.imag();
  return -Dot(std::conj(f.w), c.toward);  // towards the right of the wall
}

bool Counts(FieldKind kind, PieceKind piece) {
  return kind == FieldKind::kPotential ||
         (kind == FieldKind::kDoubletStream) == (piece == PieceKind::kDoublet);
}

Side SeenFrom(const Control& c, FieldKind kind, const Piece& piece) {
  if (kind == FieldKind::kNormalFlow) return Side::kMean;
  return {c.toward * std::conj(piece.to - piece.from), c.toward == Complex{}};
}

}  // namespace

void PieceInfluence(const System& s, const Control& c, int p, double* seen) {
  const FieldKind kind = KindOf(c.condition);
  const Piece& piece = s.pieces[p];
  if (!Counts(kind, piece.kind)) {
    std::fill(seen, seen + piece.size, 0.0);
    return;
  }
  if (p != c.piece && kind == FieldKind::kPotential) {
    PotentialInfluence(piece, c.at, SeenFrom(c, kind, piece), seen);
    return;
  }
  std::array<Flow, kMaxBasis> basis;
  if (p == c.piece)
    InfluenceOnSelf(piece, c.parameter, basis.data());
  else
    Influence(piece, c.at, SeenFrom(c, kind, piece), basis.data());
  for (int n = 0; n < piece.size; ++n) seen[n] = Seen(c, kind, basis[n]);
}

double PointInfluence(const Control& c, const WellSource& well) {
  const FieldKind kind = KindOf(c.condition);
  return kind == FieldKind::kDoubletStream ? 0.0 : Seen(c, kind, WellInfluence(well, c.at));
}

double PointInfluence(const Control& c, const DiskSource& disk) {
  const FieldKind kind = KindOf(c.condition);
  return kind == FieldKind::kDoubletStream ? 0.0 : Seen(c, kind, DiskInfluence(disk, c.at));
}

void InfluenceRow(const System& s, const Control& c, double* row) {
  std::fill(row, row + s.x.size(), 0.0);
  if (KindOf(c.condition) == FieldKind::kPotential) row[0] = 1.0;
  for (const std::vector<WellSource>* list : {&s.wells, &s.partial_wells})
    for (const WellSource& w : *list)
      if (w.unknown >= 0) row[w.unknown] += PointInfluence(c, w);
  for (const DiskSource& d : s.disks)
    if (d.unknown >= 0) row[d.unknown] += PointInfluence(c, d);
  std::array<double, kMaxBasis> seen;
  for (std::size_t p = 0; p < s.pieces.size(); ++p) {
    if (s.terms[p].empty() || !Counts(KindOf(c.condition), s.pieces[p].kind)) continue;
    PieceInfluence(s, c, int(p), seen.data());
    for (const Term& t : s.terms[p]) {
      double sum = 0.0;
      for (int n = 0; n < s.pieces[p].size; ++n) sum += t.coefficient[n] * seen[n];
      row[t.unknown] += sum;
    }
  }
}

double GivenField(const System& s, const Control& c) {
  const FieldKind kind = KindOf(c.condition);
  if (kind == FieldKind::kDoubletStream) return 0.0;
  // Doublets are never given, so that all of the field counts.
  return Seen(c, kind, s.SteadyField(c.at, kind == FieldKind::kNormalFlow ? Complex{} : c.toward));
}

}  // namespace aem::detail
