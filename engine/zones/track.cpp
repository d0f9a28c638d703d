#include "zones/track.h"

#include <algorithm>
#include <cmath>

namespace zones {
namespace {

/// Turn of a drawn line at one place [rad].
constexpr double kDrawnTurn = 0.1;
constexpr int kMostPieces = 256;

/// Cubic with values and slopes (per unit of f) at both ends.
template <class Value>
Value Cubic(Value a, Value slope_a, Value b, Value slope_b, double f) {
  const double g = 1.0 - f;
  return a * (g * g * (1.0 + 2.0 * f)) + b * (f * f * (1.0 + 2.0 * g)) + slope_a * (f * g * g) -
         slope_b * (f * f * g);
}

double Turn(const Mark& a, const Mark& b) {
  if (a.direction == Complex{} || b.direction == Complex{}) return 0.0;
  return std::fabs(std::arg(b.direction * std::conj(a.direction)));
}

/// Length of the way between two marks: that of the arc through both with their directions.
double Way(const Mark& a, const Mark& b) {
  const double chord = std::abs(b.at - a.at), half = 0.5 * std::min(Turn(a, b), 3.0);
  return half > 1e-4 ? chord * half / std::sin(half) : chord;
}

/// Slopes of time and place over the way at both ends of a piece.  A time that grows monotonously has none
/// above three times its mean: where a mark has more the water hardly moves, and as little does its direction
/// count.
struct Slopes {
  double time_a = 0.0, time_b = 0.0;
  Complex a, b;
};

Slopes SlopesOf(const Mark& a, const Mark& b, double way) {
  const double most = 3.0 * (b.time - a.time);
  const double at_a = a.slowness * way, at_b = b.slowness * way;
  const double part_a = at_a > most ? most / at_a : 1.0, part_b = at_b > most ? most / at_b : 1.0;
  return {at_a * part_a, at_b * part_b, a.direction * way * part_a, b.direction * way * part_b};
}

Mark Mix(const Mark& a, const Mark& b, double way, double f) {
  Mark m;
  const Slopes slopes = SlopesOf(a, b, way);
  m.at = Cubic(a.at, slopes.a, b.at, slopes.b, f);
  m.time = a.time + f * (b.time - a.time);
  m.storage = a.storage + f * (b.storage - a.storage);
  m.infiltration = a.infiltration + f * (b.infiltration - a.infiltration);
  m.slowness = a.slowness + f * (b.slowness - a.slowness);
  // The cubic's own direction.
  const double g = 1.0 - f;
  m.direction = 6.0 * f * g * (b.at - a.at) + g * (1.0 - 3.0 * f) * slopes.a + f * (3.0 * f - 2.0) * slopes.b;
  const double length = std::abs(m.direction);
  if (length > 0.0) m.direction /= length;
  m.passed = a.passed;
  return m;
}

void PutFlow(const aem::PathFlow& flow, Mark* mark) {
  const double speed = std::abs(flow.velocity);
  if (speed > 0.0) {
    mark->direction = -flow.velocity / speed;
    mark->slowness = 1.0 / speed;
  }
  mark->storage = flow.storage;
  mark->infiltration = -flow.net_recharge;
}

}  // namespace

/// Half the integral of P x dP over the cubic P of the way (own integration of its four base functions).
double BesideChord(const Mark& a, const Mark& b) {
  const auto cross = [](Complex u, Complex v) { return u.real() * v.imag() - u.imag() * v.real(); };
  const double way = Way(a, b);
  const Complex chord = b.at - a.at;
  const Slopes slopes = SlopesOf(a, b, way);
  return 0.1 * cross(chord, slopes.b - slopes.a) - cross(slopes.a, slopes.b) / 60.0;
}

Track::Track(const aem::Path& path, double angle) : angle_(angle), end_(path.end), end_label_(path.label) {
  ended_ = path.end != aem::PathEnd::kTime && path.end != aem::PathEnd::kStagnation;
  double passed = 1.0;
  marks_.reserve(path.points.size());
  for (const aem::PathPoint& point : path.points) {
    Mark mark;
    mark.at = point.at;
    mark.time = std::max(point.time, marks_.empty() ? 0.0 : marks_.back().time);
    mark.passed = passed;
    PutFlow(point.flow, &mark);
    marks_.push_back(mark);
    if (!point.behind) continue;
    mark.passed = passed *= point.passing;
    PutFlow(*point.behind, &mark);
    marks_.push_back(mark);
  }
  for (std::size_t i = 0; i + 1 < marks_.size(); ++i) ways_.push_back(Way(marks_[i], marks_[i + 1]));
}

/// The share of the way at which the time, a cubic of the way, is `time`.
Mark Track::Between(std::size_t i, double time) const {
  const Mark &a = marks_[i], &b = marks_[i + 1];
  const double span = b.time - a.time, goal = time - a.time, way = ways_[i];
  const Slopes slopes = SlopesOf(a, b, way);
  const double first = slopes.time_a, last = slopes.time_b;
  double low = 0.0, high = 1.0, f = goal / span;
  for (int i_step = 0; i_step < 40 && high - low > 1e-9; ++i_step) {
    const double value = Cubic(0.0, first, span, last, f) - goal;
    (value < 0.0 ? low : high) = f;
    const double g = 1.0 - f;
    const double slope = 6.0 * f * g * span + first * g * (1.0 - 3.0 * f) + last * f * (3.0 * f - 2.0);
    const double next = slope > 0.0 ? f - value / slope : -1.0;
    if (std::fabs(next - f) < 1e-10) break;
    f = next > low && next < high ? next : 0.5 * (low + high);
  }
  Mark mark = Mix(a, b, way, f);
  mark.time = time;
  return mark;
}

Mark Track::At(double time, std::size_t* hint) const {
  std::size_t& i = *hint;
  if (i >= marks_.size()) i = 0;
  if (marks_[i].time > time) i = 0;
  while (i + 1 < marks_.size() && marks_[i + 1].time <= time) ++i;
  if (i + 1 >= marks_.size() || !(time > marks_[i].time)) {
    Mark mark = marks_[i];
    mark.time = std::max(time, mark.time);
    return mark;
  }
  return Between(i, time);
}

Mark Track::Before(double time, std::size_t* hint) const {
  const Mark at = At(time, hint);
  std::size_t i = *hint;
  if (marks_[i].time != time) return at;
  while (i > 0 && marks_[i - 1].time == time) --i;
  return marks_[i];
}

std::vector<Complex> Track::Line(double from, double to, double sagitta) const {
  std::size_t hint = 0;
  std::vector<Mark> ends{At(from, &hint)};
  for (std::size_t i = hint + 1; i < marks_.size() && marks_[i].time < to; ++i) ends.push_back(marks_[i]);
  ends.push_back(At(to, &hint));
  std::vector<Complex> line{ends.front().at};
  for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
    const double turn = Turn(ends[i], ends[i + 1]), way = Way(ends[i], ends[i + 1]);
    // An arc in n pieces is off by way turn / (8 n2).
    const double wanted = std::max(turn / kDrawnTurn, std::sqrt(way * turn / (8.0 * sagitta)));
    const int pieces = static_cast<int>(std::clamp(std::ceil(wanted), 1.0, double(kMostPieces)));
    for (int piece = 1; piece < pieces; ++piece)
      line.push_back(Mix(ends[i], ends[i + 1], way, double(piece) / pieces).at);
    if (ends[i + 1].at != line.back()) line.push_back(ends[i + 1].at);
  }
  return line;
}

}  // namespace zones
