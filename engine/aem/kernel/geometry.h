// Plane geometry of points, segments and rings.  A ring is a list of vertices that closes by itself.
#pragma once

#include <complex>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace aem::detail {

using Complex = std::complex<double>;

inline double Cross(Complex a, Complex b) {
  return a.real() * b.imag() - a.imag() * b.real();
}
inline double Dot(Complex a, Complex b) {
  return a.real() * b.real() + a.imag() * b.imag();
}

/// Twice-counted area is halved: positive for a ring that runs counter-clockwise [L2].
double SignedArea(std::span<const Complex> ring);
/// Even-odd rule, half-open: a point on an edge belongs to exactly one of two rings that share it.
bool Contains(std::span<const Complex> ring, Complex p);

struct Nearest {
  double distance = 0.0;
  double position = 0.0;  ///< 0 to 1 along the segment
};
Nearest NearestOnSegment(Complex a, Complex b, Complex p);

/// Where two segments cross properly or touch, as positions along each.  Nothing for parallel ones.
struct Meeting {
  double on_first = 0.0, on_second = 0.0;
};
std::optional<Meeting> Meet(Complex a, Complex b, Complex c, Complex d);

struct Box {
  double left = 1e300, bottom = 1e300, right = -1e300, top = -1e300;
  void Add(Complex p);
  void Grow(double margin);
  bool Has(Complex p) const {
    return p.real() >= left && p.real() <= right && p.imag() >= bottom && p.imag() <= top;
  }
  bool Overlaps(const Box& o) const {
    return left <= o.right && o.left <= right && bottom <= o.top && o.bottom <= top;
  }
  bool Empty() const { return left > right; }
  double Diagonal() const { return Empty() ? 0.0 : std::abs(Complex{right - left, top - bottom}); }
  Complex Middle() const { return {0.5 * (left + right), 0.5 * (bottom + top)}; }
};

/// A uniform grid of cells over segments, to find those near a point or a box.
class SegmentIndex {
 public:
  SegmentIndex() = default;
  explicit SegmentIndex(std::span<const std::pair<Complex, Complex>> segments);
  /// Indices of segments whose cells meet the box, each once, rising.
  void Find(const Box& box, std::vector<int>* found) const;
  /// Indices of all segments that the line from a to b can meet, and some others near by, each once, rising.
  /// Time grows with the line's length, not with the area of the box around it.
  void FindAlong(Complex a, Complex b, std::vector<int>* found) const;
  bool Empty() const { return count_ == 0; }

 private:
  std::int64_t Key(std::int64_t i, std::int64_t j) const { return i * 2000003 + j; }
  std::int64_t Column(double x) const;
  std::int64_t Row(double y) const;

  std::size_t count_ = 0;
  Box box_;
  double cell_ = 1.0;
  std::vector<std::pair<Complex, Complex>> segments_;
  std::unordered_map<std::int64_t, std::vector<int>> cells_;
};

}  // namespace aem::detail
