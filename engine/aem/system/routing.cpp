// Drains that take water only, and routed streams that cannot lose more than they carry.
#include <algorithm>
#include <cmath>

#include "aem/field/answers.h"
#include "aem/system/equations.h"
#include "aem/system/strings.h"

namespace aem::detail {

namespace {

/// Flow along a stream: what is given, what unknowns give, and its present value.
struct Carried {
  double given = 0.0, value = 0.0;
  std::vector<std::pair<int, double>> terms;

  void AddSegment(const System& s, int string, int segment) {
    for (int p : s.segment_pieces[string][segment]) {
      // The first coefficient alone has a net discharge: the length's worth of it.
      for (const Term& t : s.terms[p])
        if (t.coefficient[0] != 0.0) terms.emplace_back(t.unknown, t.coefficient[0] * s.pieces[p].Length());
    }
    value += SegmentDischarge(s, string, segment);
  }
  void Clear() { *this = {}; }
};

}  // namespace

void System::Route() {
  std::vector<Carried> inflow(model.line_sinks.size());
  for (int k : stream_order) {
    const LineSinkString& string = model.line_sinks[k];
    double total = 0.0;
    for (const LineSinkSegment& g : string.segments) total += std::abs(g.to - g.from);
    Carried flow = std::move(inflow[k]);
    flow.given += string.inflow;
    flow.value += string.inflow;
    for (std::size_t i = 0; i < string.segments.size(); ++i) {
      const int flag = flag_of[k][i];
      if (flag < 0) continue;
      const LineSinkSegment& g = string.segments[i];
      const double overland = total > 0.0 ? string.overland_flow * std::abs(g.to - g.from) / total : 0.0;
      flow.given += overland;
      flow.value += overland;
      carried[flag] = std::max(flow.value, 0.0);
      carried_terms[flag].clear();
      carried_given[flag] = flow.value > 0.0 ? flow.given : 0.0;
      if (flags[flag] == 0) {
        flow.AddSegment(*this, k, int(i));
        continue;
      }
      if (flow.value > 0.0) carried_terms[flag] = flow.terms;
      flow.Clear();  // a limited reach takes all that there is
    }
    if (flows_into[k] < 0) continue;
    Carried& next = inflow[flows_into[k]];
    next.given += flow.given;
    next.value += flow.value;
    next.terms.insert(next.terms.end(), flow.terms.begin(), flow.terms.end());
  }
}

namespace {

/// Mean head and stage along a segment's control points, and what its bed would give at these heads.
struct SegmentState {
  double head = 0.0, stage = 0.0, weight = 0.0;
  double potential_gain = 0.0;  ///< per length, positive into the stream
};

void AddPoint(const LineSinkString& string, const Control& c, double field, SegmentState* state) {
  const double head = c.zone.Head(field);
  state->head += c.weight * head;
  state->stage += c.weight * c.head;
  state->weight += c.weight;
  if (c.condition != Condition::kResistance) return;
  const double width = EffectiveWidth(string, c.zone.conductivity * c.zone.Thickness(field));
  const double difference = std::max(head - c.head, -string.depth);
  state->potential_gain += c.weight * width * difference / string.resistance;
}

}  // namespace

int System::SwitchStates(const std::vector<double>& field, bool only_off) {
  std::vector<SegmentState> states(flags.size());
  for (std::size_t q = 0; q < controls.size(); ++q) {
    const Control& c = controls[q];
    if (c.piece < 0 || owners[c.piece].string < 0) continue;
    const PieceOwner& o = owners[c.piece];
    const int flag = flag_of[o.string][o.segment];
    if (flag >= 0) AddPoint(model.line_sinks[o.string], c, field[q], &states[flag]);
  }
  Route();
  int changed = 0;
  for (std::size_t k = 0; k < flag_of.size(); ++k) {
    const LineSinkString& string = model.line_sinks[k];
    for (std::size_t i = 0; i < flag_of[k].size(); ++i) {
      const int flag = flag_of[k][i];
      if (flag < 0 || states[flag].weight == 0.0) continue;
      const double length = std::abs(string.segments[i].to - string.segments[i].from);
      const double discharge = SegmentDischarge(*this, int(k), int(i));
      const SegmentState& state = states[flag];
      const double above = (state.head - state.stage) / state.weight;
      const double limit = string.kind == LineSinkKind::kDrain ? 0.0 : carried[flag];
      bool off = flags[flag] != 0;
      if (!off)
        off = discharge < -limit - 1e-12 * std::abs(discharge);
      else if (Resists(string))
        off = state.potential_gain / state.weight * length < -limit * (1.0 + 1e-12);
      else
        off = above <= 0.0;
      if (off == (flags[flag] != 0) || (!off && (only_off || switches[flag] > 8))) continue;
      flags[flag] = off ? 1 : 0;
      ++switches[flag];
      ++changed;
    }
  }
  Route();
  return changed;
}

}  // namespace aem::detail
