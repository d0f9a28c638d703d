#include "aem/equations.h"

#include <algorithm>
#include <cmath>

namespace aem::detail {

namespace {

/// One head on both sides; with one base the ratio of the potentials is that of the conductivities, whether
/// confined or not, so the condition is linear.  Otherwise one Newton step on head(left) = head(right).
Linearised LineariseEdge(const Control& c, double field, double jump) {
  if (c.zone.SameHeads(c.right)) {
    const double sum = c.zone.conductivity + c.right.conductivity;
    return {(c.right.conductivity - c.zone.conductivity) / sum, 0.5, 0.0};
  }
  const double left = field + 0.5 * jump, right = field - 0.5 * jump;
  const double slope_left = c.zone.Slope(left), slope_right = c.right.Slope(right);
  const double sum = slope_left + slope_right;
  const double difference = c.zone.Head(left) - c.right.Head(right);
  Linearised l{(slope_right - slope_left) / sum, 0.5, 0.0};
  l.r = l.a * field + l.b * jump - difference * slope_left * slope_right / sum;
  return l;
}

}  // namespace

Linearised Linearise(const System&, const Control& c, double field, double strength) {
  switch (c.condition) {
    case Condition::kHead:
      return {1.0, 0.0, c.zone.Potential(c.head)};
    case Condition::kEdge:
      return LineariseEdge(c, field, strength);
    case Condition::kResistance:
    case Condition::kWall:
      break;
  }
  return {};
}

bool DependsOnHead(const System&, const Control& c) {
  switch (c.condition) {
    case Condition::kHead:
      return false;
    case Condition::kEdge:
      return !c.zone.SameHeads(c.right);
    case Condition::kResistance:
    case Condition::kWall:
      break;
  }
  return true;
}

LocalRow LocalValues(const System& s, const Control& c) {
  LocalRow row;
  if (c.piece < 0) {
    row.count = 1;
    row.unknown[0] = c.unknown;
    row.value[0] = 1.0;
    return row;
  }
  const Piece& piece = s.pieces[c.piece];
  std::array<double, kMaxBasis> values{};
  BasisValues(piece, c.parameter, values.data(), nullptr);
  for (const Term& t : s.terms[c.piece]) {
    double sum = 0.0;
    for (int n = 0; n < piece.size; ++n) sum += t.coefficient[n] * values[n];
    row.unknown[row.count] = t.unknown;
    row.value[row.count++] = sum;
  }
  return row;
}

void InfluenceRow(const System& s, const Control& c, double* row) {
  std::fill(row, row + s.x.size(), 0.0);
  row[0] = 1.0;
  for (const WellSource& w : s.wells)
    if (w.unknown >= 0) row[w.unknown] += WellInfluence(w, c.at).omega.real();
  for (const DiskSource& d : s.disks)
    if (d.unknown >= 0) row[d.unknown] += DiskInfluence(d, c.at).omega.real();
  std::array<Flow, kMaxBasis> basis;
  for (std::size_t p = 0; p < s.pieces.size(); ++p) {
    if (s.terms[p].empty()) continue;
    const Piece& piece = s.pieces[p];
    if (int(p) == c.piece) {
      InfluenceOnSelf(piece, c.parameter, basis.data());
    } else {
      const bool left = Cross(piece.to - piece.from, c.toward) >= 0.0;
      Influence(piece, c.at, left ? Side::kLeft : Side::kRight, basis.data());
    }
    for (const Term& t : s.terms[p]) {
      double sum = 0.0;
      for (int n = 0; n < piece.size; ++n) sum += t.coefficient[n] * basis[n].omega.real();
      row[t.unknown] += sum;
    }
  }
}

}  // namespace aem::detail
