// What can be asked of the rings of a capture zone as geometry.
#pragma once

#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

using Ring = std::vector<ModelPoint>;

/// Diagonal of the ring's bounding box.
double RingDiagonal(const Ring& ring);

/// Ground within a ring less its holes, made ready for the questions below.
class Ground {
 public:
  /// The first ring is the outline, the others are holes.
  explicit Ground(const std::vector<Ring>& rings);
  ~Ground();
  Ground(Ground&&) noexcept;
  Ground& operator=(Ground&&) noexcept;

  /// No ring crosses or touches itself or another one.
  bool Simple() const;
  /// Where and how it is not, in the library's words; for messages.
  std::string WhyNotSimple() const;
  bool Holds(ModelPoint point) const;
  double Area() const;
  double AreaOutside(const Ground& other) const;
  double AreaCommon(const Ground& other) const;

 private:
  struct Shape;
  Shape* shape_ = nullptr;
};

}  // namespace ormel
