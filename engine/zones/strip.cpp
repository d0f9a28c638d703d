#include "zones/strip.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zones {
namespace {

constexpr double kForever = std::numeric_limits<double>::infinity();
/// Turn between two levels of a strip [rad].
constexpr double kFinestTurn = 0.15;
/// A strip's last bit may be that many times as large as its volume's error.
constexpr double kTail = 20.0;
/// Ends on one thing may lie this many widths of the strip apart: it is met at a slant.
constexpr double kSlant = 6.0;

double Cross(Complex a, Complex b) {
  return a.real() * b.imag() - a.imag() * b.real();
}

/// Signed area of a quadrangle, counter-clockwise positive.
double Area(Complex a, Complex b, Complex c, Complex d) {
  return 0.5 * Cross(c - a, d - b);
}

double EndOf(const Track& track) {
  return track.ended() ? track.end_time() : kForever;
}

bool BySurfaceWater(aem::PathEnd end) {
  return end == aem::PathEnd::kSurfaceWater || end == aem::PathEnd::kWell;
}

/// The owner of a segment's label: "LS_000012" of "LS_000012_0003".
std::string_view Owner(std::string_view label) {
  return label.substr(0, label.rfind('_') == std::string_view::npos || label.rfind('_') < 4
                             ? label.size()
                             : label.rfind('_'));
}

/// One level after the other up a strip.
class Climb {
 public:
  Climb(const Track& a, const Track& b, double flow, const StripRules& rules, bool thin)
      : a_(a), b_(b), rules_(rules), thin_(thin), flow_(flow), taken_(flow) {
    strip_.flow = flow;
    strip_.ledgers.resize(rules.times.size());
    strip_.volume_errors.assign(rules.times.size(), 0.0);
    const double longest = rules.times.back();
    common_ = std::min({EndOf(a), EndOf(b), longest});
    both_ended_ = a.ended() && b.ended() && std::max(EndOf(a), EndOf(b)) <= longest;
    FillLevels();
  }

  Strip Run();

 private:
  void FillLevels();
  bool Rise(double time);
  void Book(double time);
  void Close();
  bool SameEnd() const;
  void Tail();
  void Spread(double rate, double from, double Ledger::*account);
  void SpreadOnce(double volume, double at, double Ledger::*account);

  const Track &a_, &b_;
  const StripRules& rules_;
  bool thin_;
  Strip strip_;
  double common_ = 0.0;  ///< up to here both tracks go
  bool both_ended_ = false;
  std::vector<double> levels_;

  std::size_t hint_a_ = 0, hint_b_ = 0, middle_a_ = 0, middle_b_ = 0;
  Mark at_a_, at_b_;
  double time_ = 0.0;
  double flow_ = 0.0;      ///< F, of the whole depth
  double taken_ = 0.0;     ///< of it the well's
  double expected_ = 0.0;  ///< integral of F [L3]
  double swept_ = 0.0;     ///< pore volume between the tracks [L3]
  Ledger now_;             ///< pores and areas up to time_
  std::size_t next_time_ = 0;
  bool bad_ = false;
};

void Climb::FillLevels() {
  for (const Track* track : {&a_, &b_}) {
    const std::vector<Mark>& marks = track->marks();
    for (std::size_t i = 0; i < marks.size() && marks[i].time < common_; ++i) {
      levels_.push_back(marks[i].time);
      if (i + 1 == marks.size()) break;
      const double turn = std::fabs(std::arg(marks[i + 1].direction * std::conj(marks[i].direction)));
      const int pieces = std::min(32, static_cast<int>(turn / kFinestTurn));
      const double span = std::min(marks[i + 1].time, common_) - marks[i].time;
      for (int k = 1; k <= pieces; ++k) levels_.push_back(marks[i].time + span * k / (pieces + 1));
    }
  }
  for (const double time : rules_.times)
    if (time < common_) levels_.push_back(time);
  levels_.push_back(common_);
  std::sort(levels_.begin(), levels_.end());
}

/// Up to a level.  False when the strip has to be cut before it.
bool Climb::Rise(double time) {
  const double span = time - time_;
  if (!(span > 0.0)) return true;
  // The way up to here is that of the near side, where a line is passed just here.
  const Mark near_a = a_.Before(time, &hint_a_), near_b = b_.Before(time, &hint_b_);
  const Mark a = a_.At(time, &hint_a_), b = b_.At(time, &hint_b_);
  const Mark half_a = a_.At(0.5 * (time + time_), &middle_a_),
             half_b = b_.At(0.5 * (time + time_), &middle_b_);
  const double area =
      Area(at_a_.at, a.at, b.at, at_b_.at) + BesideChord(at_a_, near_a) - BesideChord(at_b_, near_b);
  const bool holds_well = rules_.holds_well && rules_.holds_well(at_a_.at, a.at, b.at, at_b_.at);
  if (thin_ && (holds_well || std::abs(a.at - b.at) > rules_.widest_parting)) return false;
  bad_ = bad_ || holds_well;
  const double storage = 0.5 * (half_a.storage + half_b.storage);
  const double infiltration = 0.5 * (half_a.infiltration + half_b.infiltration);
  const double before = flow_;
  const double fading = storage > 0.0 ? infiltration / storage * span : 0.0;
  flow_ *= std::exp(-fading);
  const double mean = before * (std::fabs(fading) > 1e-8 ? -std::expm1(-fading) / fading : 1.0);
  const double share = mean > 0.0 ? std::min(1.0, taken_ / mean) : 1.0;
  expected_ += mean * span;
  swept_ += storage * area;
  now_.pores += share * storage * area;
  now_.area += area;
  if (share < 1.0 - 1e-6) now_.shared += area;
  if (taken_ > flow_) {
    // It fell in between the levels: all that flows from here on, and what more flowed up to here.
    const double held = std::min(taken_, mean);
    Spread(taken_ - flow_, time, &Ledger::recharge);
    SpreadOnce((taken_ - held) * span, time, &Ledger::recharge);
    taken_ = flow_;
  }
  const double passed = a.passed + b.passed, passed_before = at_a_.passed + at_b_.passed;
  if (passed != passed_before) {
    flow_ *= passed / passed_before;
    if (taken_ > flow_) {
      Spread(taken_ - flow_, time, &Ledger::surface);
      taken_ = flow_;
    }
  }
  at_a_ = a;
  at_b_ = b;
  time_ = time;
  return true;
}

/// Water that comes in at a rate from a time on.
void Climb::Spread(double rate, double from, double Ledger::*account) {
  for (std::size_t j = 0; j < rules_.times.size(); ++j)
    if (rules_.times[j] > from) strip_.ledgers[j].*account += rate * (rules_.times[j] - from);
}

/// A volume that has come in by a time.
void Climb::SpreadOnce(double volume, double at, double Ledger::*account) {
  for (std::size_t j = 0; j < rules_.times.size(); ++j)
    if (rules_.times[j] >= at) strip_.ledgers[j].*account += volume;
}

/// At a time that is asked for: what was swept so far.
void Climb::Book(double time) {
  for (; next_time_ < rules_.times.size() && rules_.times[next_time_] <= time; ++next_time_) {
    strip_.volume_errors[next_time_] = swept_ - expected_;
    Ledger& ledger = strip_.ledgers[next_time_];
    ledger.pores = now_.pores;
    ledger.area = now_.area;
    ledger.shared = now_.shared;
  }
}

bool Climb::SameEnd() const {
  if (a_.end() != b_.end()) return false;
  const double apart = std::abs(a_.marks().back().at - b_.marks().back().at);
  if (a_.end_label() == b_.end_label() && !a_.end_label().empty()) return true;
  const bool one_string = Owner(a_.end_label()) == Owner(b_.end_label());
  return one_string && apart <= kSlant * std::max(std::abs(at_a_.at - at_b_.at), 1e-9);
}

/// Both ended on one thing, one after the other: the rest of the later one's way closes the strip.
void Climb::Tail() {
  const Track& later = EndOf(a_) > EndOf(b_) ? a_ : b_;
  const double sign = &later == &a_ ? 1.0 : -1.0;
  const Complex fixed = (&later == &a_ ? at_b_ : at_a_).at;
  std::size_t hint = 0, middle = 0;
  Mark last = later.At(time_, &hint);
  double swept = 0.0, previous = time_;
  for (const Mark& mark : later.marks()) {
    if (mark.time <= previous) continue;
    Book(std::nextafter(mark.time, 0.0));
    const double area = sign * 0.5 * Cross(mark.at - last.at, fixed - last.at);
    const double storage = later.At(0.5 * (previous + mark.time), &middle).storage;
    const double share = flow_ > 0.0 ? std::min(1.0, taken_ / flow_) : 1.0;
    now_.pores += share * storage * area;
    now_.area += area;
    swept += storage * area;
    last = mark;
    previous = mark.time;
  }
  Book(later.end_time());
  expected_ += 0.5 * flow_ * (later.end_time() - time_);
  swept_ += swept;
  const double allowed = kTail * rules_.tolerance * rules_.volumes.back();
  if (std::fabs(swept) > allowed) bad_ = bad_ || !thin_;
  strip_.until = later.end_time();
}

/// The strip's last level: what becomes of its water beyond.
void Climb::Close() {
  strip_.until = time_;
  const double longest = rules_.times.back();
  if (time_ >= longest) return;
  const bool whole = time_ >= common_ && both_ended_ && SameEnd();
  // Between the ends of its two tracks a strip's water fades out evenly.
  const double came_from = whole ? 0.5 * (EndOf(a_) + EndOf(b_)) : time_;
  if (whole) {
    Tail();
  } else {
    strip_.parted = true;
    if (!thin_) bad_ = true;
  }
  double Ledger::*account = !whole                     ? &Ledger::left_out
                            : BySurfaceWater(a_.end()) ? &Ledger::surface
                                                       : &Ledger::edge;
  for (std::size_t j = next_time_; j < rules_.times.size(); ++j) {
    Ledger& ledger = strip_.ledgers[j];
    ledger.pores = now_.pores;
    ledger.area = now_.area;
    ledger.shared = now_.shared;
    ledger.*account += taken_ * (rules_.times[j] - came_from);
    strip_.volume_errors[j] = swept_ - expected_;
  }
}

Strip Climb::Run() {
  at_a_ = a_.At(0.0, &hint_a_);
  at_b_ = b_.At(0.0, &hint_b_);
  time_ = std::max(at_a_.time, at_b_.time);
  // What lies between the rim and the well's centre.
  expected_ = swept_ = flow_ * time_;
  now_.pores = swept_;
  for (const double level : levels_) {
    if (!Rise(level)) break;
    Book(level);
  }
  Close();
  strip_.good = !bad_;
  for (std::size_t j = 0; j < rules_.times.size() && !thin_; ++j)
    if (!(std::fabs(strip_.volume_errors[j]) <= rules_.tolerance * rules_.volumes[j])) strip_.good = false;
  return std::move(strip_);
}

}  // namespace

void Ledger::Add(const Ledger& other) {
  for (double Ledger::*part : {&Ledger::pores, &Ledger::recharge, &Ledger::surface, &Ledger::edge,
                               &Ledger::left_out, &Ledger::area, &Ledger::shared})
    this->*part += other.*part;
}

Strip MeasureStrip(const Track& a, const Track& b, double flow, const StripRules& rules, bool thin) {
  return Climb(a, b, flow, rules, thin).Run();
}

}  // namespace zones
