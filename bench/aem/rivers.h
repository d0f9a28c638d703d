// Models of many rivers, to measure.
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "aem/model.h"

namespace aem_bench {

/// From west to east: a model of more than 4,000 segments is wider, so that rivers keep their distance.
inline double Width(int segments) {
  return 9000.0 * std::max(1.0, segments / 4000.0);
}

/// Rivers of 100 segments that wind side by side from south to north, `segments` in all.
inline aem::Model Rivers(int segments) {
  const double width = Width(segments);
  aem::Model m;
  m.aquifer = {0.0, 20.0, 10.0, 0.2, {0.2, 0.1}, true, {60000.0 + width, 60000.0}, 30.0, 0};
  m.layout = {-500.0 - 0.5 * width, -5000.0, 500.0 + 0.5 * width, 5000.0, true};
  std::mt19937 random(3);
  std::uniform_real_distribution<double> turn(0.0, 0.36);
  const int strings = std::max(1, segments / 100);
  for (int k = 0; k < strings; ++k) {
    aem::LineSinkString s;
    s.origin.label = "R" + std::to_string(k);
    const double axis = -0.5 * width + width * k / strings;
    aem::Complex at{axis, -4500.0};
    double side = 1.0;
    for (int i = 0; i < segments / strings; ++i) {
      if (std::abs(at.real() - axis) > 40.0) side = at.real() > axis ? 1.0 : -1.0;
      const aem::Complex next = at + std::polar(80.0, 1.57 + side * turn(random));
      s.segments.push_back({s.origin, at, next, 26.0 + 4.0 * (at.imag() + 4500.0) / 9000.0});
      at = next;
      if (random() % 2 == 0) side = -side;
    }
    m.line_sinks.push_back(s);
  }
  return m;
}

/// Wells between the rivers, in rows from west to east.
inline void AddWells(aem::Model* m, int wells) {
  const double left = m->layout.left + 500.0, width = m->layout.right - 500.0 - left;
  const double between = 0.5 * width / double(m->line_sinks.size());
  for (int i = 0; i < wells; ++i) {
    const std::size_t river = std::size_t(i) * m->line_sinks.size() / std::size_t(wells);
    const aem::Complex at{left + width * double(river) / double(m->line_sinks.size()) + between,
                          -3000.0 + 1200.0 * (i % 6)};
    m->wells.push_back({{"W" + std::to_string(i), 0}, at, 0.3, false, 600.0});
  }
}

}  // namespace aem_bench
