// Ends, corners and crossings of lines: strengths are singular there, and lines that pass near by have to be
// divided as finely as they are far from them.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include "aem/kernel/geometry.h"
#include "aem/kernel/grading.h"

namespace aem::detail {

/// A place, and how far from it its own lines are disturbed by others that do not touch it.
struct Feature {
  Complex at;
  double reach = 0.0;    ///< distance within which other lines matter [L]
  double scale = 1e300;  ///< distance to the nearest of them [L]
};

class Features {
 public:
  Features() = default;
  /// Looks for the lines near each place; those within the tolerance touch it.
  Features(std::vector<Feature> places, std::span<const std::pair<Complex, Complex>> lines, double tolerance);

  /// Halves parts of a line until none is longer than twice its distance to any place, or, at a place of its
  /// own, twice that place's scale.
  std::vector<Part> Divide(Complex from, Complex to, const std::vector<Part>& parts) const;

 private:
  struct Near {
    Complex at;
    double least = 0.0;  ///< distance that counts at least
  };
  std::vector<Near> NearTo(Complex from, Complex to) const;

  double tolerance_ = 0.0;
  std::vector<Feature> places_;
  SegmentIndex index_;
};

}  // namespace aem::detail
