#include "aem/system/features.h"

#include <algorithm>
#include <cmath>

namespace aem::detail {

namespace {

constexpr double kLongest = 2.0;  ///< part by its distance to a place
constexpr int kDeepest = 26;

}  // namespace

Features::Features(std::vector<Feature> places, std::span<const std::pair<Complex, Complex>> lines,
                   double tolerance)
    : tolerance_(tolerance), places_(std::move(places)) {
  const SegmentIndex by_line(lines);
  std::vector<int> found;
  std::vector<std::pair<Complex, Complex>> points;
  for (Feature& f : places_) {
    Box box;
    box.Add(f.at);
    box.Grow(f.reach);
    by_line.Find(box, &found);
    for (int k : found) {
      const double distance = NearestOnSegment(lines[k].first, lines[k].second, f.at).distance;
      if (distance > tolerance_) f.scale = std::min(f.scale, distance);
    }
    points.emplace_back(f.at, f.at);
  }
  index_ = SegmentIndex(points);
}

std::vector<Features::Near> Features::NearTo(Complex from, Complex to) const {
  std::vector<Near> near;
  if (places_.empty()) return near;
  const double length = std::abs(to - from);
  Box box;
  box.Add(from);
  box.Add(to);
  box.Grow(length / kLongest);
  std::vector<int> found;
  index_.Find(box, &found);
  for (int k : found) {
    const Feature& f = places_[k];
    const double distance = NearestOnSegment(from, to, f.at).distance;
    const double least = distance <= tolerance_ ? std::max(f.scale, tolerance_) : distance;
    if (kLongest * least < length) near.push_back({f.at, least});
  }
  return near;
}

std::vector<Part> Features::Divide(Complex from, Complex to, const std::vector<Part>& parts) const {
  const std::vector<Near> near = NearTo(from, to);
  if (near.empty()) return parts;
  const double length = std::abs(to - from);
  const auto too_long = [&](const Part& part) {
    const Complex a = from + part.start * (to - from), b = from + part.end * (to - from);
    const double longest = (part.end - part.start) * length;
    return std::any_of(near.begin(), near.end(), [&](const Near& n) {
      return longest > kLongest * std::max(n.least, NearestOnSegment(a, b, n.at).distance);
    });
  };
  std::vector<Part> done, open(parts.rbegin(), parts.rend());
  while (!open.empty()) {
    const Part part = open.back();
    open.pop_back();
    if (part.end - part.start < std::ldexp(1.0, -kDeepest) || !too_long(part)) {
      done.push_back(part);
      continue;
    }
    const double middle = 0.5 * (part.start + part.end);
    open.push_back({middle, part.end, false, part.tip_at_end});
    open.push_back({part.start, middle, part.tip_at_start, false});
  }
  return done;
}

}  // namespace aem::detail
