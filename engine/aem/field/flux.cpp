// Flow across a straight line, from stream functions where they exist.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "aem/field/answers.h"

namespace aem::detail {

namespace {

constexpr double kPi = std::numbers::pi;

/// Angle under which the line is seen from a point, positive counter-clockwise; 0 from a point on the line,
/// where what arrives from both sides cancels.
double AngleSeen(Complex from, Complex a, Complex b) {
  const double cross = Cross(a - from, b - from), dot = Dot(a - from, b - from);
  if (dot < 0.0 && std::abs(cross) < 1e-13 * std::abs(dot)) return 0.0;
  return std::atan2(cross, dot);
}

/// Psi(a) - Psi(b) with the jump taken out where the line meets the cut: the piece itself and, for its net
/// discharge, the ray beyond `from`.
double SinkFlux(const System& s, std::size_t p, Complex a, Complex b) {
  const Piece& piece = s.pieces[p];
  const double* c = &s.coefficients[p * kMaxBasis];
  const Complex za = SnappedLocal(piece, a), zb = SnappedLocal(piece, b);
  double psi = Evaluate(piece, c, s.moments[p], b, Side::kLeft).omega.imag() -
               Evaluate(piece, c, s.moments[p], a, Side::kLeft).omega.imag();
  const bool above_a = za.imag() >= 0.0, above_b = zb.imag() >= 0.0;
  if (above_a != above_b) {
    const double t = za.imag() / (za.imag() - zb.imag());
    const double x = za.real() + t * (zb.real() - za.real());
    if (x < 1.0) {
      const double total = 0.5 * piece.Length() * s.moments[p][0];
      const double jump = x <= -1.0 ? total : total - StrengthIntegral(piece, c, ParameterOf(piece, x));
      psi -= above_b ? jump : -jump;
    }
  }
  return -psi;
}

double DiskFlux(const DiskSource& d, Complex a, Complex b) {
  const double length = std::abs(b - a);
  const Complex along = (b - a) / length, right = along * Complex{0.0, -1.0};
  // Positions where the line meets the circle.
  const double foot = Dot(d.at - a, along), off2 = std::norm(d.at - a) - foot * foot;
  const double strength = -0.5 * d.rate * d.radius * d.radius;
  if (off2 >= d.radius * d.radius) return strength * AngleSeen(d.at, a, b);
  const double half = std::sqrt(d.radius * d.radius - std::max(off2, 0.0));
  const double in = std::clamp(foot - half, 0.0, length), out = std::clamp(foot + half, 0.0, length);
  const Complex p = a + in * along, q = a + out * along;
  return -0.5 * d.rate * Dot(a - d.at, right) * (out - in) +
         strength * (AngleSeen(d.at, a, p) + AngleSeen(d.at, q, b));
}

/// Integral of a flow's component to the right of the line by Gauss rules on halves until they agree.
template <class FlowAt>
double Integrate(const FlowAt& flow, Complex a, Complex b, double scale, int depth) {
  const auto rule = [&](Complex u, Complex v) {
    const GaussRule g = Gauss(20);
    const Complex right = 0.5 * (v - u) * Complex{0.0, -1.0};
    double sum = 0.0;
    for (int i = 0; i < g.size; ++i) sum += g.w[i] * Dot(flow(0.5 * (u + v) + 0.5 * (v - u) * g.x[i]), right);
    return sum;
  };
  const Complex m = 0.5 * (a + b);
  const double whole = rule(a, b), halves = rule(a, m) + rule(m, b);
  if (depth <= 0 || std::abs(whole - halves) <= 1e-11 * scale) return halves;
  return Integrate(flow, a, m, scale, depth - 1) + Integrate(flow, m, b, scale, depth - 1);
}

double AreaFlux(const AreaSource& area, Complex a, Complex b) {
  std::vector<double> cuts{0.0, 1.0};
  const std::vector<Complex>& ring = area.Ring();
  for (std::size_t i = 0; i < ring.size(); ++i)
    if (const auto m = Meet(a, b, ring[i], ring[(i + 1) % ring.size()])) cuts.push_back(m->on_first);
  std::sort(cuts.begin(), cuts.end());
  const auto flow = [&](Complex z) { return std::conj(area.Influence(z).w); };
  const double scale = std::abs(area.Rate()) * area.Area();
  double sum = 0.0;
  for (std::size_t i = 0; i + 1 < cuts.size(); ++i)
    if (cuts[i + 1] > cuts[i])
      sum += Integrate(flow, a + cuts[i] * (b - a), a + cuts[i + 1] * (b - a), scale, 12);
  return sum;
}

/// Pieces of a jump that meet at a point have logarithms there that cancel only together, which numbers at
/// the point itself cannot: a hair before it they do, and the flow between is as small.
Complex OffNode(const System& s, Complex at, Complex toward) {
  constexpr double kHair = 1e-8;       // of a piece's length
  constexpr double kRounding = 1e-13;  // of the coordinates: nearer, a point counts as the end itself
  if (s.edge_index.Empty()) return at;
  thread_local std::vector<int> found;
  Box box;
  box.Add(at);
  s.edge_index.Find(box, &found);
  const double least = kRounding * (std::abs(at.real()) + std::abs(at.imag()));
  double hair = std::abs(toward - at);
  bool on_node = false;
  for (int e : found)
    for (int p : s.edges[e].pieces) {
      const Piece& piece = s.pieces[p];
      const double reach = std::max(kHair * piece.Length(), least);
      const bool at_to = !piece.tip && std::abs(at - piece.to) < reach;  // at a tip there is no jump
      if (std::abs(at - piece.from) >= reach && !at_to) continue;
      on_node = true;
      hair = std::min(hair, 2.0 * reach);
    }
  return on_node ? at + hair * (toward - at) / std::abs(toward - at) : at;
}

}  // namespace

double Flux(const System& s, Complex first, Complex last) {
  if (s.refused || first == last) return 0.0;
  const Complex from = OffNode(s, first, last), to = OffNode(s, last, first);
  if (from == to) return 0.0;
  const Complex uniform = s.model.aquifer.uniform_flow;
  double sum = Dot(uniform, (to - from) * Complex{0.0, -1.0});
  for (const std::vector<WellSource>* list : {&s.wells, &s.partial_wells})
    for (const WellSource& w : *list) sum -= w.discharge / (2.0 * kPi) * AngleSeen(w.at, from, to);
  for (const auto& [record, conductivity] : s.theis) {
    const auto flow = [&record = record, k = conductivity, &s](Complex z) {
      return std::conj(TheisInfluence(record, k, s.time, z).w);
    };
    const double foot = NearestOnSegment(from, to, record.at).position;
    const Complex middle = from + foot * (to - from);
    if (middle != from) sum += Integrate(flow, from, middle, std::abs(record.rate), 20);
    if (middle != to) sum += Integrate(flow, middle, to, std::abs(record.rate), 20);
  }
  for (const DiskSource& d : s.disks) sum += DiskFlux(d, from, to);
  for (const AreaSource& a : s.areas) sum += AreaFlux(a, from, to);
  for (std::size_t p = 0; p < s.pieces.size(); ++p) {
    if (s.pieces[p].kind == PieceKind::kSink) {
      sum += SinkFlux(s, p, from, to);
      continue;
    }
    const double* c = &s.coefficients[p * kMaxBasis];
    sum += Evaluate(s.pieces[p], c, s.moments[p], from, Side::kLeft).omega.imag() -
           Evaluate(s.pieces[p], c, s.moments[p], to, Side::kLeft).omega.imag();
  }
  return sum;
}

}  // namespace aem::detail
