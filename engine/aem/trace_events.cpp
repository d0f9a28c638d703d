#include "aem/trace_events.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "aem/kernel/geometry.h"

namespace aem::detail {
namespace {

void Keep(Event& first, EventKind kind, double fraction) {
  if (first.kind != EventKind::kNone && fraction >= first.fraction) return;
  first = {};
  first.kind = kind;
  first.fraction = std::clamp(fraction, 0.0, 1.0);
}

/// One side of the window: `inside` is positive within.
void MeetSide(Event& first, double inside_from, double inside_to) {
  if (inside_to >= 0.0) return;
  Keep(first, EventKind::kWindow, inside_from <= 0.0 ? 0.0 : inside_from / (inside_from - inside_to));
}

void MeetBoundary(Event& first, const EndlessLine& line, Complex from, Complex to) {
  const Complex along = line.and_through - line.through;
  const double a = Cross(along, from - line.through), b = Cross(along, to - line.through);
  if (a == 0.0) {
    Keep(first, EventKind::kBoundary, 0.0);
  } else if ((a > 0.0) != (b > 0.0) || b == 0.0) {
    Keep(first, EventKind::kBoundary, a / (a - b));
  }
}

void MeetWell(Event& first, const TraceWell& well, Complex from, Complex to) {
  const Complex step = to - from, off = from - well.at;
  const double outside = std::norm(off) - well.radius * well.radius;
  double fraction = 0.0;
  if (outside > 0.0) {
    // |off + f step| = radius, the smaller root.
    const double a = std::norm(step), half_b = Dot(off, step);
    const double under = half_b * half_b - a * outside;
    if (!(half_b < 0.0) || under < 0.0) return;
    fraction = outside / (-half_b + std::sqrt(under));
    if (fraction > 1.0) return;
  }
  if (first.kind != EventKind::kNone && fraction >= first.fraction) return;
  Keep(first, EventKind::kWell, fraction);
  first.well = &well;
}

/// The rim of a disk, where recharge changes, on the way in or out.
void MeetRim(Event& first, const TraceWell& disk, Complex from, Complex to) {
  const Complex step = to - from, off = from - disk.at;
  const double a = std::norm(step), half_b = Dot(off, step);
  const double outside = std::norm(off) - disk.radius * disk.radius;
  const double under = half_b * half_b - a * outside;
  if (a == 0.0 || under < 0.0) return;
  // Roots of |off + f step| = radius; from outside the nearer, from inside the farther.
  const double root = std::sqrt(under);
  const double fraction = outside > 0.0 ? (-half_b - root) / a : (-half_b + root) / a;
  // One that has just been crossed, or is begun on, is behind.
  if (!(fraction * std::sqrt(a) > 1e-12 * disk.radius) || fraction > 1.0) return;
  if (first.kind != EventKind::kNone && fraction >= first.fraction) return;
  Keep(first, EventKind::kRim, fraction);
  first.well = &disk;
}

}  // namespace

bool Outside(const Window& window, Complex at) {
  return window.set && (at.real() < window.left || at.real() > window.right || at.imag() < window.bottom ||
                        at.imag() > window.top);
}

Event FirstEvent(const TraceField& field, const TraceOptions& options, const Ahead& ahead, const Place& from,
                 const Place& to) {
  Event first;
  if (const Window& window = options.window; window.set) {
    MeetSide(first, from.at.real() - window.left, to.at.real() - window.left);
    MeetSide(first, window.right - from.at.real(), window.right - to.at.real());
    MeetSide(first, from.at.imag() - window.bottom, to.at.imag() - window.bottom);
    MeetSide(first, window.top - from.at.imag(), window.top - to.at.imag());
  }
  for (const EndlessLine& line : options.boundaries) MeetBoundary(first, line, from.at, to.at);
  field.Wells().ForEachNear(from.at, to.at, [&](const TraceWell& well) {
    if (well.discharge * ahead.direction > 0.0) MeetWell(first, well, from.at, to.at);
  });
  if (ahead.top_open && to.s > 1.0 && to.s > from.s) {
    Keep(first, EventKind::kWaterTable, (1.0 - from.s) / (to.s - from.s));
  }
  for (const TraceWell& disk : field.Disks()) MeetRim(first, disk, from.at, to.at);
  const Crossing crossing = field.FirstCrossing(from.at, to.at);
  if (crossing.type != CrossingType::kNone &&
      (first.kind == EventKind::kNone || crossing.fraction < first.fraction)) {
    Keep(first, EventKind::kCrossing, crossing.fraction);
    first.crossing = crossing;
  }
  return first;
}

Segment CrossedSegment(const Model& model, const Crossing& crossing) {
  const auto index = static_cast<std::size_t>(crossing.index);
  const auto segment = static_cast<std::size_t>(crossing.segment);
  if (crossing.type == CrossingType::kLineSink) {
    const LineSinkSegment& piece = model.line_sinks[index].segments[segment];
    return {piece.from, piece.to};
  }
  const auto& points =
      crossing.type == CrossingType::kWall ? model.walls[index].points : model.domains[index].ring;
  return {points[segment].at, points[(segment + 1) % points.size()].at};
}

}  // namespace aem::detail
