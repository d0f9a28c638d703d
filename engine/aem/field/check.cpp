// Errors between control points, and the water balance.
#include <algorithm>
#include <cmath>

#include "aem/field/answers.h"
#include "aem/system/strings.h"

namespace aem::detail {

namespace {

void Worse(WorstError* worst, double value, const std::string& label, Complex at) {
  if (value <= worst->value) return;
  *worst = {value, label, at};
}

/// Of one segment or edge.
struct OwnError {
  double largest = 0.0, sum = 0.0, length = 0.0;
  Complex at{};

  void Add(double error, Complex where, double weight) {
    if (error > largest || length == 0.0) at = where;
    largest = std::max(largest, error);
    sum += weight * error;
    length += weight;
  }
  double Mean() const { return length > 0.0 ? sum / length : 0.0; }
};

void CheckStringHeads(const System& s, Checks* checks) {
  for (std::size_t k = 0; k < s.model.line_sinks.size(); ++k) {
    const LineSinkString& string = s.model.line_sinks[k];
    if (string.kind == LineSinkKind::kDischarge || Resists(string)) continue;
    const Stage stage(string, s.tolerance);
    std::vector<OwnError> errors(string.segments.size());
    ParallelFor(s.options.threads, errors.size(), [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i)
        if (const int flag = s.flag_of[k][i]; flag < 0 || s.flags[flag] == 0)
          for (int p : s.segment_pieces[k][i])
            if (!s.owners[p].blind)
              errors[i].Add(PieceHeadError(s, p, stage), s.pieces[p].Middle(), s.pieces[p].Length());
    });
    for (std::size_t i = 0; i < errors.size(); ++i) {
      const std::string& label = string.segments[i].origin.label;
      Worse(&checks->line_sink_head, errors[i].largest, label, errors[i].at);
      Worse(&checks->line_sink_mean, errors[i].Mean(), label, errors[i].at);
    }
  }
}

void CheckEdges(const System& s, Checks* checks) {
  std::vector<OwnError> errors(s.edges.size());
  ParallelFor(s.options.threads, errors.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t e = begin; e < end; ++e) {
      const JumpEdge& edge = s.edges[e];
      if (edge.wall >= 0) continue;
      const Complex toward = (edge.to - edge.from) * Complex{0.0, 1.0};
      for (int p : edge.pieces) {
        if (s.owners[p].blind) continue;
        for (const double place : kCheckPlaces) {
          const Complex at = s.pieces[p].Global(place);
          // A dry side has no head that could differ.
          const double left = std::max(edge.left.Head(s.Field(at, toward).omega.real()), edge.left.base);
          const double right = std::max(edge.right.Head(s.Field(at, -toward).omega.real()), edge.right.base);
          const double dry = std::max(edge.left.base, edge.right.base);
          errors[e].Add(std::abs(std::max(left, dry) - std::max(right, dry)), at, s.pieces[p].Length());
        }
      }
    }
  });
  for (std::size_t e = 0; e < errors.size(); ++e) {
    if (s.edges[e].domain < 0) continue;
    const std::string& label = s.model.domains[s.edges[e].domain].origin.label;
    Worse(&checks->domain_head_jump, errors[e].largest, label, errors[e].at);
    Worse(&checks->domain_mean, errors[e].Mean(), label, errors[e].at);
  }
}

/// Flow per length at a point as if there were neither walls nor domains.
double FlowWithoutJumps(const System& s, Complex at) {
  Flow flow = s.Around(at);
  for (std::size_t p = 0; p < s.pieces.size(); ++p)
    if (s.pieces[p].kind == PieceKind::kSink)
      flow.w += Evaluate(s.pieces[p], &s.coefficients[p * kMaxBasis], s.moments[p], at, Side::kMean).w;
  return std::abs(flow.w);
}

/// Flow across each half of a wall's edges beyond what it lets through, beside the mean flow along the whole
/// wall that there would be without it.  Means over lengths: at a tip or a corner the velocity is infinite
/// and a flow per length at a point says nothing.
void CheckWalls(const System& s, Checks* checks) {
  struct Halves {
    double first = 0.0, second = 0.0, flow = 0.0, length = 0.0;  ///< flows through [L3/d], along [L2/d]
  };
  std::vector<Halves> edges(s.edges.size());
  ParallelFor(s.options.threads, edges.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t e = begin; e < end; ++e) {
      const JumpEdge& edge = s.edges[e];
      if (edge.wall < 0) continue;
      const Complex middle = 0.5 * (edge.from + edge.to);
      Halves& h = edges[e];
      h.length = std::abs(edge.to - edge.from);
      h.flow = FlowWithoutJumps(s, middle);
      h.first = 0.5 * h.length * std::abs(ExcessLeakage(s, {int(e)}, edge.from, middle));
      h.second = 0.5 * h.length * std::abs(ExcessLeakage(s, {int(e)}, middle, edge.to));
    }
  });
  std::vector<double> flow(s.model.walls.size(), 0.0), length(flow), through(flow), worst(flow);
  std::vector<Complex> at(flow.size());
  for (std::size_t e = 0; e < edges.size(); ++e) {
    const int w = s.edges[e].wall;
    if (w < 0) continue;
    flow[w] += edges[e].length * edges[e].flow;
    length[w] += edges[e].length;
    through[w] += edges[e].first + edges[e].second;
  }
  double largest = 0.0, ratio = 0.0;
  for (std::size_t e = 0; e < edges.size(); ++e) {
    const int w = s.edges[e].wall;
    if (w < 0) continue;
    // What passes a sliver is told by a hundredth of the wall at least: by its own length it would be
    // rounding.
    const double half = std::max(0.5 * edges[e].length, 0.01 * length[w]);
    const double own = std::max(edges[e].first, edges[e].second) / half;
    if (own <= worst[w]) continue;
    worst[w] = own;
    at[w] = 0.5 * (s.edges[e].from + s.edges[e].to);
  }
  for (std::size_t w = 0; w < worst.size(); ++w) {
    flow[w] /= std::max(length[w], 1e-300);
    largest = std::max(largest, flow[w]);
  }
  for (std::size_t w = 0; w < worst.size(); ++w) {
    // A wall in still water is measured by a hundredth of the flow at the others.
    const double measure = std::max(flow[w], 0.01 * largest);
    const std::string& label = s.model.walls[w].origin.label;
    if (measure > 0.0) Worse(&checks->wall_mean, through[w] / (length[w] * measure), label, at[w]);
    if (worst[w] <= ratio * measure) continue;
    ratio = worst[w] / measure;
    checks->undisturbed_flow = measure;
    checks->wall_leakage = {worst[w], label, at[w]};
  }
  if (checks->wall_leakage.label.empty()) checks->undisturbed_flow = largest;
}

}  // namespace

Checks Check(const System& s) {
  Checks checks;
  if (s.refused) return checks;
  checks.head_range = HeadRange(s);
  CheckStringHeads(s, &checks);
  CheckEdges(s, &checks);
  CheckWalls(s, &checks);
  return checks;
}

Balance WaterBalance(const System& s) {
  Balance b;
  if (s.refused) return b;
  double entering = 0.0;
  const auto count = [&](double discharge, double* group) {
    *group += discharge;
    entering += std::max(0.0, -discharge);
  };
  for (const WellSource& w : s.wells) count(w.discharge, &b.wells);
  for (const WellSource& w : s.partial_wells) count(w.discharge, &b.partial_wells);
  for (const DiskSource& d : s.disks) count(d.rate * M_PI * d.radius * d.radius, &b.disks);
  for (const AreaSource& a : s.areas) count(a.Rate() * a.Area(), &b.recharge);
  for (std::size_t k = 0; k < s.model.line_sinks.size(); ++k) {
    double* const groups[] = {&b.line_sinks_discharge, &b.line_sinks_head, &b.drains, &b.streams};
    for (std::size_t i = 0; i < s.model.line_sinks[k].segments.size(); ++i)
      count(SegmentDischarge(s, int(k), int(i)), groups[int(s.model.line_sinks[k].kind)]);
  }
  // Outside a circle around everything the flow is analytic: the trapezoidal rule converges geometrically.
  Box box = s.extent;
  const Complex centre = box.Middle();
  const double radius = std::max(1.0, 2.0 * box.Diagonal());
  constexpr int kPoints = 128;
  std::vector<double> outward(kPoints);
  ParallelFor(s.options.threads, kPoints, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      const Complex ray = std::polar(1.0, 2.0 * M_PI * double(i) / kPoints);
      outward[i] = Dot(std::conj(s.SteadyField(centre + radius * ray, {}).w), ray);
    }
  });
  double passing = 0.0;
  for (double q : outward) {
    b.infinity += q * 2.0 * M_PI * radius / kPoints;
    passing += std::abs(q) * 2.0 * M_PI * radius / kPoints;
  }
  // What uniform flow brings and takes cancels but for rounding, which is no flow.
  if (std::abs(b.infinity) < 1e-13 * passing) b.infinity = 0.0;
  if (b.infinity < 0.0) entering -= b.infinity;
  for (const auto& [record, conductivity] : s.theis)
    if (s.time > record.time) b.theis_wells += record.rate;
  b.throughflow = entering;
  b.error = b.wells + b.partial_wells + b.disks + b.line_sinks_discharge + b.line_sinks_head + b.drains +
            b.streams + b.recharge + b.infinity;
  return b;
}

}  // namespace aem::detail
