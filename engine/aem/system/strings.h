// Line-sink strings as pieces and control points.
#pragma once

#include <vector>

#include "aem/model.h"

namespace aem::detail {

struct System;

/// Decides how every segment is divided: fills segment_parts, flags and the links of streams.  Pre: wells.
void PlanStrings(System& system);

/// Pieces of all line-sink strings.  Pre: PlanStrings.  A segment of a head string without resistance is
/// divided towards free ends, where the density grows like one over the root of the distance, and towards
/// corners.
void BuildStrings(System& system);

/// Whether the string's bed resists the flow: a resistance and a width.
inline bool Resists(const LineSinkString& s) {
  return s.resistance > 0.0 && s.width > 0.0;
}

/// Stage along a string: through the given heads at the middles of its segments, linear in between by length,
/// with the slope of the nearest pair beyond the first and last middle.  Runs of connected segments are
/// treated one by one.  Keeps a reference to the string.
class Stage {
 public:
  Stage(const LineSinkString& string, double tolerance);
  double At(int segment, double position) const;

 private:
  double Length(std::size_t i) const { return std::abs(string_.segments[i].to - string_.segments[i].from); }
  const LineSinkString& string_;
  std::vector<double> start_;
  std::vector<std::size_t> first_, last_;
};

}  // namespace aem::detail
