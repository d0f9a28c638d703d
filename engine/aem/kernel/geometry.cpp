#include "aem/kernel/geometry.h"

#include <algorithm>
#include <cmath>

namespace aem::detail {

double SignedArea(std::span<const Complex> ring) {
  double twice = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i)
    twice += Cross(ring[i] - ring[0], ring[(i + 1) % ring.size()] - ring[0]);
  return 0.5 * twice;
}

bool Contains(std::span<const Complex> ring, Complex p) {
  bool inside = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    // The edge is always taken from its lower end, so that rings sharing it decide alike.
    Complex a = ring[i], b = ring[j];
    if (a.imag() > b.imag()) std::swap(a, b);
    if (p.imag() < a.imag() || p.imag() >= b.imag()) continue;
    if (Cross(b - a, p - a) > 0.0) inside = !inside;
  }
  return inside;
}

Nearest NearestOnSegment(Complex a, Complex b, Complex p) {
  const double length2 = std::norm(b - a);
  const double t = length2 > 0.0 ? std::clamp(Dot(p - a, b - a) / length2, 0.0, 1.0) : 0.0;
  return {std::abs(p - (a + t * (b - a))), t};
}

std::optional<Meeting> Meet(Complex a, Complex b, Complex c, Complex d) {
  const Complex r = b - a, s = d - c;
  const double area = Cross(r, s);
  if (std::abs(area) <= 1e-12 * std::abs(r) * std::abs(s)) return std::nullopt;
  const double t = Cross(c - a, s) / area, u = Cross(c - a, r) / area;
  if (t < 0.0 || t > 1.0 || u < 0.0 || u > 1.0) return std::nullopt;
  return Meeting{t, u};
}

void Box::Add(Complex p) {
  left = std::min(left, p.real());
  right = std::max(right, p.real());
  bottom = std::min(bottom, p.imag());
  top = std::max(top, p.imag());
}

void Box::Grow(double margin) {
  left -= margin;
  right += margin;
  bottom -= margin;
  top += margin;
}

SegmentIndex::SegmentIndex(std::span<const std::pair<Complex, Complex>> segments)
    : count_(segments.size()), segments_(segments.begin(), segments.end()) {
  if (count_ == 0) return;
  double total = 0.0;
  for (const auto& [a, b] : segments_) {
    box_.Add(a);
    box_.Add(b);
    total += std::abs(b - a);
  }
  // About as many cells along the diagonal as keep the cells passed by all segments linear in their number.
  const double n = double(count_);
  cell_ = std::max({total / n, box_.Diagonal() / std::sqrt(4.0 * n + 1.0) / 2.0, box_.Diagonal() / 3000.0});
  if (!(cell_ > 0.0)) cell_ = 1.0;
  for (std::size_t k = 0; k < count_; ++k) {
    const auto [a, b] = segments_[k];
    // March along the segment so that a long slanted one fills its own cells only, with one cell of margin.
    const int steps = std::max(1, int(std::ceil(std::abs(b - a) / cell_)));
    std::int64_t last_i = INT64_MIN, last_j = INT64_MIN;
    for (int m = 0; m <= steps; ++m) {
      const Complex p = a + (b - a) * (double(m) / steps);
      const std::int64_t i = Column(p.real()), j = Row(p.imag());
      if (i == last_i && j == last_j) continue;
      last_i = i;
      last_j = j;
      for (std::int64_t di = -1; di <= 1; ++di)
        for (std::int64_t dj = -1; dj <= 1; ++dj) {
          std::vector<int>& cell = cells_[Key(i + di, j + dj)];
          if (cell.empty() || cell.back() != int(k)) cell.push_back(int(k));
        }
    }
  }
}

std::int64_t SegmentIndex::Column(double x) const {
  return std::int64_t(std::floor(std::clamp((x - box_.left) / cell_, -1e6, 1e6)));
}
std::int64_t SegmentIndex::Row(double y) const {
  return std::int64_t(std::floor(std::clamp((y - box_.bottom) / cell_, -1e6, 1e6)));
}

void SegmentIndex::Find(const Box& box, std::vector<int>* found) const {
  found->clear();
  if (count_ == 0) return;
  Box all = box_;
  all.Grow(2.0 * cell_);
  if (!all.Overlaps(box)) return;
  const std::int64_t i0 = Column(std::max(box.left, all.left)), i1 = Column(std::min(box.right, all.right));
  const std::int64_t j0 = Row(std::max(box.bottom, all.bottom)), j1 = Row(std::min(box.top, all.top));
  for (std::int64_t i = i0; i <= i1; ++i)
    for (std::int64_t j = j0; j <= j1; ++j) {
      const auto cell = cells_.find(Key(i, j));
      if (cell != cells_.end()) found->insert(found->end(), cell->second.begin(), cell->second.end());
    }
  std::sort(found->begin(), found->end());
  found->erase(std::unique(found->begin(), found->end()), found->end());
}

void SegmentIndex::FindAlong(Complex a, Complex b, std::vector<int>* found) const {
  found->clear();
  if (count_ == 0) return;
  Box all = box_, own;
  all.Grow(2.0 * cell_);
  own.Add(a);
  own.Add(b);
  if (!all.Overlaps(own)) return;
  // Segments fill their cells and those around, marched in steps of a cell: so do single cells on this line.
  const double cells = std::ceil(std::abs(b - a) / cell_);
  if (!(cells < double(count_) + 16.0)) {
    for (std::size_t k = 0; k < count_; ++k) found->push_back(int(k));
    return;
  }
  const int steps = std::max(1, int(cells));
  std::int64_t last_i = INT64_MIN, last_j = INT64_MIN;
  for (int m = 0; m <= steps; ++m) {
    const Complex p = a + (b - a) * (double(m) / steps);
    if (!all.Has(p)) continue;
    const std::int64_t i = Column(p.real()), j = Row(p.imag());
    if (i == last_i && j == last_j) continue;
    last_i = i;
    last_j = j;
    const auto cell = cells_.find(Key(i, j));
    if (cell != cells_.end()) found->insert(found->end(), cell->second.begin(), cell->second.end());
  }
  std::sort(found->begin(), found->end());
  found->erase(std::unique(found->begin(), found->end()), found->end());
}

}  // namespace aem::detail
