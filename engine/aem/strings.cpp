#include "aem/strings.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "aem/grading.h"
#include "aem/system.h"

namespace aem::detail {

namespace {

constexpr int kSinkSize = 4;    ///< coefficients of a head piece
constexpr int kTipSize = 5;     ///< of one with a free end
constexpr int kSinkPoints = 8;  ///< control points of a head piece

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

void AddControls(System& s, int piece, const LineSinkString& string, const Stage& stage) {
  const Piece& p = s.pieces[piece];
  const PieceOwner& owner = s.owners[piece];
  const GaussRule rule = Gauss(kSinkPoints);
  for (int q = 0; q < rule.size; ++q) {
    Control c;
    c.parameter = p.tip ? 0.5 * (1.0 + rule.x[q]) : rule.x[q];
    c.weight = 0.5 * rule.w[q];
    const double x = PositionOf(p, c.parameter);
    c.at = p.Global(x);
    c.toward = p.Direction() * Complex{0.0, 1.0};
    c.piece = piece;
    c.head = stage.At(owner.segment, owner.start + 0.5 * (1.0 + x) * (owner.end - owner.start));
    c.condition = Resists(string) ? Condition::kResistance : Condition::kHead;
    s.controls.push_back(c);
  }
}

void AddHeadSegment(System& s, int k, int i, const std::vector<Part>& parts, const Stage& stage) {
  const LineSinkString& string = s.model.line_sinks[k];
  const LineSinkSegment& segment = string.segments[i];
  for (const Part& part : parts) {
    Piece piece;
    piece.kind = PieceKind::kSink;
    piece.tip = part.tip_at_start || part.tip_at_end;
    piece.size = piece.tip ? kTipSize : kSinkSize;
    PieceOwner owner{k, i, part.start, part.end, -1};
    if (part.tip_at_start) std::swap(owner.start, owner.end);
    piece.from = segment.from + owner.start * (segment.to - segment.from);
    piece.to = segment.from + owner.end * (segment.to - segment.from);
    const int index = s.AddPiece(piece, owner);
    for (int n = 0; n < piece.size; ++n) {
      Term t;
      t.unknown = s.NewUnknown();
      t.coefficient[n] = 1.0;
      s.terms[index].push_back(t);
    }
    s.segment_pieces[k][i].push_back(index);
    AddControls(s, index, string, stage);
  }
}

void AddDischargeSegment(System& s, int k, int i) {
  const LineSinkSegment& segment = s.model.line_sinks[k].segments[i];
  const int index = s.AddPiece({segment.from, segment.to, PieceKind::kSink, false, 1}, {k, i, 0.0, 1.0, -1});
  s.coefficients[index * kMaxBasis] = segment.value;
  s.segment_pieces[k][i].push_back(index);
}

bool Usable(const System& s, const LineSinkSegment& segment) {
  return std::abs(segment.to - segment.from) > s.tolerance;
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

void BuildStrings(System& s) {
  Joints joints(s.tolerance);
  for (const LineSinkString& string : s.model.line_sinks) {
    if (string.kind == LineSinkKind::kDischarge || Resists(string)) continue;
    for (const LineSinkSegment& segment : string.segments) {
      if (!Usable(s, segment)) continue;
      joints.Add(segment.from, segment.to - segment.from);
      joints.Add(segment.to, segment.from - segment.to);
    }
  }
  s.segment_pieces.resize(s.model.line_sinks.size());
  std::vector<std::pair<Complex, Complex>> lines;
  for (std::size_t k = 0; k < s.model.line_sinks.size(); ++k) {
    const LineSinkString& string = s.model.line_sinks[k];
    const Stage stage(string, s.tolerance);
    s.segment_pieces[k].resize(string.segments.size());
    for (std::size_t i = 0; i < string.segments.size(); ++i) {
      const LineSinkSegment& segment = string.segments[i];
      lines.emplace_back(segment.from, segment.to);
      s.segment_of.emplace_back(int(k), int(i));
      if (!Usable(s, segment)) continue;
      if (string.kind == LineSinkKind::kDischarge) {
        AddDischargeSegment(s, int(k), int(i));
        continue;
      }
      std::vector<Part> parts{{0.0, 1.0, false, false}};
      if (!Resists(string)) {
        const Complex along = segment.to - segment.from;
        parts = Divide(joints.Shape(segment.from, along), joints.Shape(segment.to, -along));
      }
      AddHeadSegment(s, int(k), int(i), parts, stage);
    }
  }
  s.segment_index = SegmentIndex(lines);
}

}  // namespace aem::detail
