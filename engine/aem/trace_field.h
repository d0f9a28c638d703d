// What the particle tracer must know of a solved model.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "aem/model.h"
#include "aem/results.h"

namespace aem {

class Solution;

/// A vertical well of any kind, or a sink disk, as the tracer sees it.
struct TraceWell {
  Complex at;
  double radius = 0.0;
  double discharge = 0.0;  ///< in force; positive when it takes water [L3/d]
  std::string label;
};

/// Wells found by place.  Time per question does not grow with the number of wells.
class WellIndex {
 public:
  WellIndex() = default;
  explicit WellIndex(std::vector<TraceWell> wells);
  const std::vector<TraceWell>& wells() const { return wells_; }
  /// Calls `visit(well)` for every well whose rim reaches into the box around the two points; some others
  /// too.
  template <class Visit>
  void ForEachNear(Complex a, Complex b, Visit visit) const;

 private:
  using Cell = std::int64_t;
  Cell CellAt(double x, double y) const;
  std::vector<TraceWell> wells_;
  double size_ = 1.0;          ///< of a cell [L]
  double largest_radius_ = 0;  ///< [L]
  std::unordered_map<Cell, std::vector<int>> cells_;
};

/// The flow field and the things in it.
class TraceField {
 public:
  virtual ~TraceField() = default;
  virtual PointState At(Complex point) const = 0;
  /// At an elevation, with the upward specific discharge that partially penetrating wells add [L/d].
  virtual PointState AtElevation(Complex point, double elevation, double* vertical) const = 0;
  virtual Crossing FirstCrossing(Complex from, Complex to) const = 0;
  virtual SinkHit NearestSink(Complex point, double distance) const = 0;
  virtual double SinkDensity(int string, int segment, double position) const = 0;
  virtual const Model& GetModel() const = 0;
  virtual const WellIndex& Wells() const = 0;
  /// Sink disks: ponds that take water through their area, or give it.
  virtual const std::vector<TraceWell>& Disks() const = 0;
};

/// The field of a Solution, which must outlive it and must not change meanwhile.
class SolutionField final : public TraceField {
 public:
  explicit SolutionField(const Solution& solution);
  PointState At(Complex point) const override;
  PointState AtElevation(Complex point, double elevation, double* vertical) const override;
  Crossing FirstCrossing(Complex from, Complex to) const override;
  SinkHit NearestSink(Complex point, double distance) const override;
  double SinkDensity(int string, int segment, double position) const override;
  const Model& GetModel() const override;
  const WellIndex& Wells() const override { return wells_; }
  const std::vector<TraceWell>& Disks() const override { return disks_; }

 private:
  const Solution& solution_;
  WellIndex wells_;
  std::vector<TraceWell> disks_;
};

template <class Visit>
void WellIndex::ForEachNear(Complex a, Complex b, Visit visit) const {
  if (wells_.empty()) return;
  const double left = std::min(a.real(), b.real()) - largest_radius_;
  const double right = std::max(a.real(), b.real()) + largest_radius_;
  const double bottom = std::min(a.imag(), b.imag()) - largest_radius_;
  const double top = std::max(a.imag(), b.imag()) + largest_radius_;
  // A step much longer than a cell would ask more cells than there are wells.
  const double cells = ((right - left) / size_ + 2.0) * ((top - bottom) / size_ + 2.0);
  if (!(cells < static_cast<double>(wells_.size()) + 8.0)) {
    for (const TraceWell& well : wells_) visit(well);
    return;
  }
  const auto columns = static_cast<int>((right - left) / size_) + 1;
  const auto rows = static_cast<int>((top - bottom) / size_) + 1;
  for (int j = 0; j <= rows; ++j) {
    for (int i = 0; i <= columns; ++i) {
      const auto found = cells_.find(CellAt(left + i * size_, bottom + j * size_));
      if (found == cells_.end()) continue;
      for (const int index : found->second) visit(wells_[static_cast<std::size_t>(index)]);
    }
  }
}

}  // namespace aem
