#include "aem/system/strings.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "aem/kernel/grading.h"
#include "aem/kernel/power_law.h"
#include "aem/system/refine.h"
#include "aem/system/system.h"

namespace aem::detail {

namespace {

const Order& OrderOf(const System& s, int string, int segment) {
  return kOrders[s.orders.of_segment[string][segment]];
}

/// Directions in which head segments without resistance leave each vertex.
class Joints {
 public:
  explicit Joints(double tolerance) : cell_(4.0 * std::max(tolerance, 1e-12)) {}

  void Add(Complex at, Complex outward) { leaving_[KeyOf(at)].push_back(outward / std::abs(outward)); }

  EndShape Shape(Complex at, Complex outward) const {
    const auto found = leaving_.find(KeyOf(at));
    if (found == leaving_.end() || found->second.size() < 2) return {true, 0.0};
    const Complex own = outward / std::abs(outward);
    EndShape shape;
    bool skipped = false;
    for (Complex d : found->second) {
      if (!skipped && std::abs(d - own) < 1e-12) {
        skipped = true;
        continue;
      }
      const double turn = std::abs(std::arg(-d / own));
      shape.turn = std::max(shape.turn, turn);
    }
    return shape;
  }

 private:
  using Key = std::pair<long long, long long>;
  Key KeyOf(Complex p) const { return {std::llround(p.real() / cell_), std::llround(p.imag() / cell_)}; }
  double cell_;
  std::map<Key, std::vector<Complex>> leaving_;
};

void AddControls(System& s, int piece, const LineSinkString& string, const Stage& stage, int points,
                 double weight = 1.0) {
  const Piece& p = s.pieces[piece];
  const PieceOwner& owner = s.owners[piece];
  const GaussRule rule = Gauss(points);
  for (int q = 0; q < rule.size; ++q) {
    Control c;
    c.parameter = p.tip ? 0.5 * (1.0 + rule.x[q]) : rule.x[q];
    c.weight = 0.5 * weight * rule.w[q];
    const double x = PositionOf(p, c.parameter);
    c.at = p.Global(x);
    c.toward = p.Direction() * Complex{0.0, 1.0};
    c.piece = piece;
    c.head = stage.At(owner.segment, owner.start + 0.5 * (1.0 + x) * (owner.end - owner.start));
    c.condition = Resists(string) ? Condition::kResistance : Condition::kHead;
    s.controls.push_back(c);
  }
}

/// The last part before a place where the density goes like r^(p - 1): one unknown for all of it.  Its
/// condition weighs every link alike, since each tells as much of the law as any other.
void AddPowerPart(System& s, const PieceOwner& part, bool at_start, double power, const Stage& stage) {
  constexpr int kPoints = 3;
  const LineSinkString& string = s.model.line_sinks[part.string];
  const LineSinkSegment& segment = string.segments[part.segment];
  const Complex along = segment.to - segment.from;
  const double length = (part.end - part.start) * std::abs(along);
  const std::vector<Link> links = Links(power, SmallestLink(segment.from, segment.to) / length);
  const int unknown = s.NewUnknown();
  for (std::size_t j = 0; j < links.size(); ++j) {
    const Part placed = Placed(links[j], {part.start, part.end, false, false}, at_start);
    Piece piece;
    piece.kind = PieceKind::kSink;
    piece.size = kMaxBasis;
    piece.from = segment.from + placed.start * along;
    piece.to = segment.from + placed.end * along;
    const bool blind = j + kBlindLinks >= links.size();
    const int index =
        s.AddPiece(piece, {part.string, part.segment, placed.start, placed.end, -1, true, blind});
    s.segment_pieces[part.string][part.segment].push_back(index);
    Term t;
    t.unknown = unknown;
    t.coefficient = DensityOn(links[j], power);
    if (!at_start) t.coefficient = Reversed(t.coefficient);
    s.terms[index].push_back(t);
    if (j == 0 || !blind) AddControls(s, index, string, stage, kPoints, links[j].far - links[j].near);
  }
}

void AddHeadSegment(System& s, int k, int i, const Stage& stage) {
  const LineSinkString& string = s.model.line_sinks[k];
  const LineSinkSegment& segment = string.segments[i];
  for (const Part& part : s.segment_parts[k][i]) {
    if (s.Ignored(segment.from + 0.5 * (part.start + part.end) * (segment.to - segment.from))) continue;
    if (const auto power = s.end_power.find({k, i, part.tip_at_start ? 0 : 1});
        (part.tip_at_start || part.tip_at_end) && power != s.end_power.end() &&
        s.segment_parts[k][i].size() > 2) {
      AddPowerPart(s, {k, i, part.start, part.end, -1}, part.tip_at_start, power->second, stage);
      continue;
    }
    Piece piece;
    piece.kind = PieceKind::kSink;
    piece.tip = part.tip_at_start || part.tip_at_end;
    piece.size = piece.tip ? OrderOf(s, k, i).tip_size : OrderOf(s, k, i).sink_size;
    PieceOwner owner{k, i, part.start, part.end, -1};
    if (part.tip_at_start) std::swap(owner.start, owner.end);
    piece.from = segment.from + owner.start * (segment.to - segment.from);
    piece.to = segment.from + owner.end * (segment.to - segment.from);
    const int index = s.AddPiece(piece, owner);
    s.segment_pieces[k][i].push_back(index);
    for (int n = 0; n < piece.size; ++n) {
      Term t;
      t.unknown = s.NewUnknown();
      t.coefficient[n] = 1.0;
      s.terms[index].push_back(t);
    }
    AddControls(s, index, string, stage, OrderOf(s, k, i).points);
  }
}

void AddDischargeSegment(System& s, int k, int i) {
  const LineSinkSegment& segment = s.model.line_sinks[k].segments[i];
  for (const Part& part : s.segment_parts[k][i]) {
    const Complex along = segment.to - segment.from;
    if (s.Ignored(segment.from + 0.5 * (part.start + part.end) * along)) continue;
    const Piece piece{segment.from + part.start * along, segment.from + part.end * along, PieceKind::kSink,
                      false, 1};
    const int index = s.AddPiece(piece, {k, i, part.start, part.end, -1});
    s.coefficients[index * kMaxBasis] = segment.value;
    s.segment_pieces[k][i].push_back(index);
  }
}

bool Usable(const System& s, const LineSinkSegment& segment) {
  return std::abs(segment.to - segment.from) > s.tolerance;
}

}  // namespace

namespace {

void MakeFlags(System& s) {
  s.flag_of.resize(s.model.line_sinks.size());
  for (std::size_t k = 0; k < s.model.line_sinks.size(); ++k) {
    const LineSinkString& string = s.model.line_sinks[k];
    s.flag_of[k].assign(string.segments.size(), -1);
    if (string.kind != LineSinkKind::kDrain && string.kind != LineSinkKind::kStream) continue;
    for (std::size_t i = 0; i < string.segments.size(); ++i) {
      if (!Usable(s, string.segments[i])) continue;
      s.flag_of[k][i] = int(s.flags.size());
      s.flags.push_back(0);
    }
  }
  s.carried.assign(s.flags.size(), 0.0);
  s.carried_given.assign(s.flags.size() + 1, 0.0);
  s.carried_terms.resize(s.flags.size() + 1);
  s.switches.assign(s.flags.size(), 0);
}

/// The routed string that begins where another ends takes its water; a ring of them is refused.
void LinkStreams(System& s) {
  const std::size_t n = s.model.line_sinks.size();
  s.flows_into.assign(n, -1);
  std::map<std::pair<long long, long long>, std::vector<int>> starts;
  const double cell = 4.0 * s.tolerance;
  const auto key = [&](Complex p) {
    return std::pair{std::llround(p.real() / cell), std::llround(p.imag() / cell)};
  };
  const auto routed = [&](std::size_t k) {
    return s.model.line_sinks[k].kind == LineSinkKind::kStream && !s.model.line_sinks[k].segments.empty();
  };
  for (std::size_t k = 0; k < n; ++k)
    if (routed(k)) starts[key(s.model.line_sinks[k].segments.front().from)].push_back(int(k));
  std::vector<int> waiting(n, 0);
  std::size_t streams = 0;
  for (std::size_t k = 0; k < n; ++k) {
    if (!routed(k)) continue;
    ++streams;
    const LineSinkString& string = s.model.line_sinks[k];
    if (string.ends) continue;
    const Complex last = string.segments.back().to;
    const auto [i, j] = key(last);
    for (long long a = i - 1; a <= i + 1 && s.flows_into[k] < 0; ++a)
      for (long long b = j - 1; b <= j + 1 && s.flows_into[k] < 0; ++b) {
        const auto found = starts.find({a, b});
        if (found == starts.end()) continue;
        for (int other : found->second)
          if (other != int(k) && std::abs(s.model.line_sinks[other].segments.front().from - last) <= cell) {
            s.flows_into[k] = other;
            ++waiting[other];
            break;
          }
      }
  }
  for (std::size_t k = 0; k < n; ++k)
    if (routed(k) && waiting[k] == 0) s.stream_order.push_back(int(k));
  for (std::size_t i = 0; i < s.stream_order.size(); ++i) {
    const int next = s.flows_into[s.stream_order[i]];
    if (next >= 0 && --waiting[next] == 0) s.stream_order.push_back(next);
  }
  if (s.stream_order.size() == streams) return;
  for (std::size_t k = 0; k < n; ++k)
    if (routed(k) && waiting[k] > 0) {
      s.Add(Severity::kFatal, s.model.line_sinks[k].origin,
            "Routed streams flow into one another in a ring: end one of them or turn it round.");
      return;
    }
}

}  // namespace

Stage::Stage(const LineSinkString& string, double tolerance) : string_(string) {
  const std::size_t n = string.segments.size();
  start_.resize(n);
  first_.resize(n);
  last_.resize(n);
  double s = 0.0;
  for (std::size_t i = 0, run = 0; i < n; ++i) {
    if (i > 0 && std::abs(string.segments[i].from - string.segments[i - 1].to) > 4.0 * tolerance) {
      run = i;
      s = 0.0;
    }
    start_[i] = s;
    s += Length(i);
    first_[i] = run;
  }
  for (std::size_t i = n; i-- > 0;) last_[i] = i + 1 < n && first_[i + 1] == first_[i] ? last_[i + 1] : i;
}

double Stage::At(int segment, double position) const {
  const std::size_t i = std::size_t(segment);
  const double s = start_[i] + position * Length(i);
  const bool before = i > first_[i], after = i < last_[i];
  std::size_t a = i, b = i;
  if ((position < 0.5 && before) || !after)
    a = before ? i - 1 : i;
  else
    b = i + 1;
  const double va = string_.segments[a].value, vb = string_.segments[b].value;
  if (a == b || va == vb) return va;
  const double sa = start_[a] + 0.5 * Length(a), sb = start_[b] + 0.5 * Length(b);
  return sb > sa ? va + (vb - va) * (s - sa) / (sb - sa) : va;
}

void PlanStrings(System& s) {
  Joints joints(s.tolerance);
  for (const LineSinkString& string : s.model.line_sinks) {
    if (string.kind == LineSinkKind::kDischarge || Resists(string)) continue;
    for (const LineSinkSegment& segment : string.segments) {
      if (!Usable(s, segment)) continue;
      joints.Add(segment.from, segment.to - segment.from);
      joints.Add(segment.to, segment.from - segment.to);
    }
  }
  MakeFlags(s);
  LinkStreams(s);
  const std::size_t n = s.model.line_sinks.size();
  s.segment_parts.resize(n);
  std::vector<std::pair<Complex, Complex>> lines;
  for (std::size_t k = 0; k < n; ++k) {
    const LineSinkString& string = s.model.line_sinks[k];
    s.segment_parts[k].resize(string.segments.size());
    for (std::size_t i = 0; i < string.segments.size(); ++i) {
      const LineSinkSegment& segment = string.segments[i];
      lines.emplace_back(segment.from, segment.to);
      s.segment_of.emplace_back(int(k), int(i));
      if (!Usable(s, segment)) continue;
      std::vector<Part> parts{{0.0, 1.0, false, false}};
      const bool by_head = string.kind != LineSinkKind::kDischarge;
      if (by_head && !Resists(string)) {
        const Complex along = segment.to - segment.from;
        EndShape shapes[2] = {joints.Shape(segment.from, along), joints.Shape(segment.to, -along)};
        for (int end = 0; end < 2; ++end)
          if (const auto power = s.end_power.find({int(k), int(i), end}); power != s.end_power.end())
            shapes[end].power = power->second;
        parts = Divide(shapes[0], shapes[1], OrderOf(s, int(k), int(i)), s.tolerance / std::abs(along));
      }
      parts = CutAt(parts, s.segment_cuts[k][i]);
      if (by_head) parts = s.features.Divide(segment.from, segment.to, parts);
      if (by_head) parts = NearWells(s, segment.from, segment.to, parts);
      s.segment_parts[k][i] = std::move(parts);
    }
  }
  s.segment_index = SegmentIndex(lines);
}

void BuildStrings(System& s) {
  s.segment_pieces.resize(s.model.line_sinks.size());
  for (std::size_t k = 0; k < s.model.line_sinks.size(); ++k) {
    const LineSinkString& string = s.model.line_sinks[k];
    const Stage stage(string, s.tolerance);
    s.segment_pieces[k].resize(string.segments.size());
    for (std::size_t i = 0; i < string.segments.size(); ++i) {
      if (string.kind == LineSinkKind::kDischarge)
        AddDischargeSegment(s, int(k), int(i));
      else
        AddHeadSegment(s, int(k), int(i), stage);
    }
  }
}

}  // namespace aem::detail
