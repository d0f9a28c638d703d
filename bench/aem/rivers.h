// Models of many rivers, to measure.
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "aem/model.h"

namespace aem_bench {

/// Rivers that run side by side from south to north, `segments` in all.
inline aem::Model Rivers(int segments) {
  aem::Model m;
  m.aquifer = {0.0, 20.0, 10.0, 0.2, {0.2, 0.1}, true, {60000.0, 60000.0}, 30.0, 0};
  m.layout = {-5000.0, -5000.0, 5000.0, 5000.0, true};
  std::mt19937 random(3);
  std::uniform_real_distribution<double> turn(-0.36, 0.36);
  const int strings = std::max(1, segments / 100);
  for (int k = 0; k < strings; ++k) {
    aem::LineSinkString s;
    s.origin.label = "R" + std::to_string(k);
    aem::Complex at{-4500.0 + 9000.0 * k / strings, -4500.0};
    for (int i = 0; i < segments / strings; ++i) {
      const aem::Complex next = at + std::polar(80.0, 1.57 + turn(random));
      s.segments.push_back({s.origin, at, next, 26.0 + 4.0 * (at.imag() + 4500.0) / 9000.0});
      at = next;
    }
    m.line_sinks.push_back(s);
  }
  return m;
}

}  // namespace aem_bench
