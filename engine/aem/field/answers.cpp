#include "aem/field/answers.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "aem/kernel/partial.h"
#include "aem/system/equations.h"
#include "aem/system/strings.h"

namespace aem::detail {

namespace {

double HeadOrNone(const System& s, Complex at) {
  return s.State(at).head;
}

struct Range {
  double low = 1e300, high = -1e300;
  void Add(double head) {
    if (head == kNotSet) return;
    low = std::min(low, head);
    high = std::max(high, head);
  }
};

}  // namespace

double HeadRange(const System& s) {
  if (s.refused) return 0.0;
  Range range;
  for (const WellSource& w : s.wells) range.Add(HeadOrNone(s, w.at));
  for (const LineSinkString& string : s.model.line_sinks) {
    if (string.kind == LineSinkKind::kDischarge) continue;
    for (const LineSinkSegment& g : string.segments) range.Add(g.value);
  }
  for (const SinkDisk& d : s.model.disks) range.Add(HeadOrNone(s, d.at));
  Box box;
  const Window& w = s.model.layout;
  if (w.set) {
    box.Add({w.left, w.bottom});
    box.Add({w.right, w.top});
  } else {
    box = s.extent;
  }
  for (int i = 0; i <= 4; ++i)
    for (int j = 0; j <= 4; ++j)
      range.Add(HeadOrNone(
          s, {box.left + 0.25 * i * (box.right - box.left), box.bottom + 0.25 * j * (box.top - box.bottom)}));
  return range.high > range.low ? range.high - range.low : 0.0;
}

std::vector<WellResult> WellResults(const System& s) {
  std::vector<WellResult> results(s.wells.size());
  if (s.refused) return results;
  ParallelFor(s.options.threads, results.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      const PointState state = s.State(s.wells[i].at);
      results[i] = {s.wells[i].discharge, state.head,
                    s.model.wells[i].by_head ? s.model.wells[i].value : kNotSet,
                    state.status == PointStatus::kDry};
    }
  });
  return results;
}

std::vector<WellResult> PartialWellResults(const System& s) {
  std::vector<WellResult> results(s.partial_wells.size());
  if (s.refused) return results;
  for (std::size_t i = 0; i < results.size(); ++i) {
    const WellSource& source = s.partial_wells[i];
    const PartialWell& well = s.model.partial_wells[i];
    WellResult& r = results[i];
    r.discharge = source.discharge;
    r.specified_head = well.by_head ? well.value : kNotSet;
    if (s.Ignored(source.at)) continue;
    const Zone zone = s.ZoneAt(source.at, {});
    const double far = s.Field(source.at, {}).omega.real();
    const double potential = far + source.discharge * ScreenFactor(well, zone, far);
    r.dry = potential <= 0.0;
    if (!r.dry) r.head = zone.Head(potential);
  }
  return results;
}

void AddPartialWells(const System& s, Complex at, double elevation, PointState* state, double* vertical) {
  for (std::size_t i = 0; i < s.partial_wells.size(); ++i) {
    const WellSource& source = s.partial_wells[i];
    const Complex offset = at - source.at;
    const double distance = std::abs(offset);
    if (distance > 6.0 * state->thickness) continue;
    const Zone zone = s.ZoneAt(source.at, {});
    const PartialCorrection correction(s.model.partial_wells[i], zone, state->thickness);
    const PartialCorrection::Local local = correction.At(distance, elevation);
    state->potential += source.discharge * local.potential;
    if (distance > source.radius) state->discharge += source.discharge * local.radial * offset / distance;
    *vertical += source.discharge * local.vertical;
  }
  state->head = state->potential > 0.0 ? s.ZoneAt(at, {}).Head(state->potential) : kNotSet;
  if (state->potential <= 0.0) state->status = PointStatus::kDry;
}

std::vector<WellResult> TheisResults(const System& s) {
  std::vector<WellResult> results;
  if (s.refused) return results;
  std::map<std::string, std::size_t> known;
  for (const TheisRecord& record : s.model.theis) {
    const auto [entry, added] = known.try_emplace(record.origin.label, results.size());
    if (added) {
      WellResult r;
      r.head = HeadOrNone(s, record.at);
      r.dry = r.head == kNotSet;
      results.push_back(r);
    }
    if (s.time > record.time) results[entry->second].discharge += record.rate;
  }
  return results;
}

std::vector<DiskResult> DiskResults(const System& s) {
  std::vector<DiskResult> results;
  if (s.refused) return results;
  for (const DiskSource& d : s.disks)
    results.push_back({d.rate, d.rate * M_PI * d.radius * d.radius, HeadOrNone(s, d.at)});
  return results;
}

double SegmentDischarge(const System& s, int string, int segment) {
  double sum = 0.0;
  for (int p : s.segment_pieces[string][segment]) sum += 0.5 * s.pieces[p].Length() * s.moments[p][0];
  return sum;
}

namespace {

double CheckParameter(const Piece& piece, double place) {
  return piece.tip ? 0.5 * (1.0 + place) : place;
}

/// What is known at a place of a piece.
struct OnBed {
  Zone zone;
  double potential = 0.0, head = 0.0, given = 0.0;
};

OnBed At(const System& s, int p, const Stage& stage, double parameter) {
  const Piece& piece = s.pieces[p];
  const PieceOwner& o = s.owners[p];
  const double x = PositionOf(piece, parameter);
  const Complex at = piece.Global(x), toward = piece.Direction() * Complex{0.0, 1.0};
  OnBed here;
  here.zone = s.ZoneAt(at, toward);
  here.potential = s.Field(at, toward).omega.real();
  here.head = here.zone.Head(here.potential);
  here.given = stage.At(o.segment, o.start + 0.5 * (1.0 + x) * (o.end - o.start));
  return here;
}

/// Head that would be needed for the calculated inflow, minus the calculated head, between control points.
double BedError(const System& s, int p, const Stage& stage) {
  const Piece& piece = s.pieces[p];
  const LineSinkString& string = s.model.line_sinks[s.owners[p].string];
  double worst = 0.0;
  for (const double place : kCheckPlaces) {
    const double parameter = CheckParameter(piece, place);
    const OnBed here = At(s, p, stage, parameter);
    const double width = EffectiveWidth(string, here.zone.conductivity * here.zone.Thickness(here.potential));
    const double density = Strength(piece, &s.coefficients[p * kMaxBasis], parameter);
    const bool below = string.kind != LineSinkKind::kDrain && here.head < here.given - string.depth;
    const double driving = below ? -string.depth : here.head - here.given;
    worst = std::max(worst, std::abs(driving - density * string.resistance / width));
  }
  return worst;
}

}  // namespace

double PieceHeadError(const System& s, int p, const Stage& stage) {
  double worst = 0.0;
  for (const double place : kCheckPlaces) {
    const OnBed here = At(s, p, stage, CheckParameter(s.pieces[p], place));
    worst = std::max(worst, std::abs(here.head - here.given));
  }
  return worst;
}

namespace {

/// Base flow and overland flow along routed streams, upstream first; for others the segment's own share.
void AddStreamFlows(const System& s, std::vector<StringResult>* results) {
  std::vector<double> base(results->size(), 0.0), overland(results->size(), 0.0);
  for (int k : s.stream_order) {
    const LineSinkString& string = s.model.line_sinks[k];
    double length = 0.0;
    for (const LineSinkSegment& g : string.segments) length += std::abs(g.to - g.from);
    double b = base[k] + string.inflow, o = overland[k];
    for (std::size_t i = 0; i < string.segments.size(); ++i) {
      const LineSinkSegment& g = string.segments[i];
      SegmentResult& r = (*results)[k].segments[i];
      b += r.discharge;
      o += length > 0.0 ? string.overland_flow * std::abs(g.to - g.from) / length : 0.0;
      r.baseflow = b;
      r.overland_flow = o;
    }
    (*results)[k].outflow = b + o;
    if (s.flows_into[k] < 0) continue;
    base[s.flows_into[k]] += b;
    overland[s.flows_into[k]] += o;
  }
}

}  // namespace

std::vector<StringResult> StringResults(const System& s) {
  std::vector<StringResult> results(s.model.line_sinks.size());
  if (s.refused) return results;
  for (std::size_t k = 0; k < results.size(); ++k) {
    const LineSinkString& string = s.model.line_sinks[k];
    const Stage stage(string, s.tolerance);
    results[k].segments.resize(string.segments.size());
    ParallelFor(s.options.threads, string.segments.size(), [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        const LineSinkSegment& g = string.segments[i];
        SegmentResult& r = results[k].segments[i];
        r.discharge = SegmentDischarge(s, int(k), int(i));
        const double length = std::abs(g.to - g.from);
        r.density = length > 0.0 ? r.discharge / length : 0.0;
        r.calculated_head = HeadOrNone(s, 0.5 * (g.from + g.to));
        if (string.kind == LineSinkKind::kDischarge) continue;
        r.specified_head = g.value;
        const int flag = s.flag_of[k][i];
        r.switched_off = flag >= 0 && s.flags[flag] != 0;
        r.width = string.width;
        if (Resists(string)) {
          const PointState state = s.State(0.5 * (g.from + g.to), (g.to - g.from) * Complex{0.0, 1.0});
          r.width = EffectiveWidth(string, state.conductivity * state.thickness);
          int below = 0;
          for (int j = 0; j < 5; ++j) below += Percolates(s, int(k), int(i), 0.1 + 0.2 * j) ? 1 : 0;
          r.percolating = below > 2;
          for (int p : s.segment_pieces[k][i])
            if (!r.switched_off) r.error = std::max(r.error, BedError(s, p, stage));
        } else if (!r.switched_off)
          for (int p : s.segment_pieces[k][i])
            if (!s.owners[p].blind) r.error = std::max(r.error, PieceHeadError(s, p, stage));
      }
    });
    for (const SegmentResult& r : results[k].segments) results[k].discharge += r.discharge;
    results[k].flows_into = s.flows_into[k];
  }
  AddStreamFlows(s, &results);
  return results;
}

namespace {

/// Jump (left minus right of a to b) and head difference at a position of the side.
struct Across {
  double jump = 0.0, head = 0.0, factor = 0.0;
};

Across AcrossAt(const System& s, Complex a, Complex b, double position) {
  Across result;
  const Complex p = a + position * (b - a);
  const int e = s.EdgeAt(p);
  if (e < 0) return result;
  const JumpEdge& edge = s.edges[e];
  const bool along = Dot(edge.to - edge.from, b - a) > 0.0;
  const Complex toward = (edge.to - edge.from) * Complex{0.0, 1.0};
  const double left = s.Field(p, toward).omega.real(), right = s.Field(p, -toward).omega.real();
  const double sign = along ? 1.0 : -1.0;
  result.jump = sign * (left - right);
  result.head = sign * (edge.left.Head(left) - edge.right.Head(right));
  result.factor = sign * (edge.left.conductivity - edge.right.conductivity) /
                  (edge.left.conductivity + edge.right.conductivity);
  return result;
}

}  // namespace

std::vector<DomainResult> DomainResults(const System& s) {
  std::vector<DomainResult> results(s.model.domains.size());
  if (s.refused) return results;
  for (std::size_t d = 0; d < results.size(); ++d) {
    DomainResult& r = results[d];
    const std::vector<LabelledPoint>& ring = s.model.domains[d].ring;
    const double area = SignedArea(s.rings[d]);
    const double inside = area >= 0.0 ? 1.0 : -1.0;  // left of the ring is inside when counter-clockwise
    r.area = std::abs(area);
    r.recharge_sink = s.model.domains[d].recharge_sink;
    const std::size_t n = ring.size();
    double total = 0.0, length = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
      const Complex a = ring[i].at, b = ring[(i + 1) % n].at;
      DomainVertexResult v;
      v.node = a;
      v.centre = 0.5 * (a + b);
      const double near = 1e-3;
      const Across node = AcrossAt(s, a, b, near), end = AcrossAt(s, a, b, 1.0 - near),
                   middle = AcrossAt(s, a, b, 0.5);
      v.jump_node = inside * node.jump;
      v.jump_parabolic = inside * (middle.jump - 0.5 * (node.jump + end.jump));
      v.factor = inside * middle.factor;
      v.delta_node = inside * node.head;
      v.delta_centre = inside * middle.head;
      total += std::abs(b - a) * inside * (node.jump + 4.0 * middle.jump + end.jump) / 6.0;
      length += std::abs(b - a);
      r.vertices.push_back(v);
    }
    r.mean_jump = length > 0.0 ? total / length : 0.0;
    if (n == 0) continue;
    const Complex a = ring[0].at, b = ring[1 % n].at;
    const Zone zone = s.zones.At(0.5 * (a + b) + 1e-5 * inside * (b - a) * Complex{0.0, 1.0});
    r.conductivity = zone.conductivity;
    r.base = zone.base;
    r.porosity = zone.porosity;
  }
  return results;
}

}  // namespace aem::detail
