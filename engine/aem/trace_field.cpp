#include "aem/trace_field.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "aem/solution.h"

namespace aem {
namespace {

template <class Well>
void AddWells(const std::vector<Well>& wells, const std::vector<WellResult>& results,
              std::vector<TraceWell>& out) {
  for (std::size_t i = 0; i < wells.size() && i < results.size(); ++i) {
    out.push_back({wells[i].at, wells[i].radius, results[i].discharge, wells[i].origin.label});
  }
}

std::vector<TraceWell> AllWells(const Solution& solution) {
  const Model& model = solution.GetModel();
  std::vector<TraceWell> wells;
  AddWells(model.wells, solution.Wells(), wells);
  AddWells(model.partial_wells, solution.PartialWells(), wells);
  // Records of one label are one well, at the place of the first.
  const std::vector<WellResult> theis = solution.TheisWells();
  std::set<std::string> seen;
  std::size_t next = 0;
  for (const TheisRecord& record : model.theis) {
    if (next == theis.size() || !seen.insert(record.origin.label).second) continue;
    wells.push_back({record.at, record.radius, theis[next++].discharge, record.origin.label});
  }
  return wells;
}

}  // namespace

WellIndex::WellIndex(std::vector<TraceWell> wells) : wells_(std::move(wells)) {
  if (wells_.empty()) return;
  double left = wells_[0].at.real(), right = left, bottom = wells_[0].at.imag(), top = bottom;
  for (const TraceWell& well : wells_) {
    left = std::min(left, well.at.real()), right = std::max(right, well.at.real());
    bottom = std::min(bottom, well.at.imag()), top = std::max(top, well.at.imag());
    largest_radius_ = std::max(largest_radius_, well.radius);
  }
  const double extent = std::max({right - left, top - bottom, 4.0 * largest_radius_, 1.0});
  size_ = std::max(extent / std::sqrt(static_cast<double>(wells_.size())), 4.0 * largest_radius_);
  for (std::size_t i = 0; i < wells_.size(); ++i) {
    cells_[CellAt(wells_[i].at.real(), wells_[i].at.imag())].push_back(static_cast<int>(i));
  }
}

WellIndex::Cell WellIndex::CellAt(double x, double y) const {
  constexpr double kFar = 1e9;  // cells beyond hold no well: their number need not be exact
  const auto column = static_cast<Cell>(std::clamp(std::floor(x / size_), -kFar, kFar));
  const auto row = static_cast<Cell>(std::clamp(std::floor(y / size_), -kFar, kFar));
  return row * (Cell{1} << 32) + column;
}

SolutionField::SolutionField(const Solution& solution) : solution_(solution), wells_(AllWells(solution)) {
  const std::vector<DiskResult> results = solution.Disks();
  const std::vector<SinkDisk>& disks = solution.GetModel().disks;
  for (std::size_t i = 0; i < disks.size() && i < results.size(); ++i) {
    disks_.push_back({disks[i].at, disks[i].radius, results[i].discharge, disks[i].origin.label});
  }
}

PointState SolutionField::At(Complex point) const {
  return solution_.At(point);
}

PointState SolutionField::AtElevation(Complex point, double elevation, double* vertical) const {
  return solution_.AtElevation(point, elevation, vertical);
}

Crossing SolutionField::FirstCrossing(Complex from, Complex to) const {
  return solution_.FirstCrossing(from, to);
}

SinkHit SolutionField::NearestSink(Complex point, double distance) const {
  return solution_.NearestSink(point, distance);
}

double SolutionField::SinkDensity(int string, int segment, double position) const {
  return solution_.SinkDensity(string, segment, position);
}

const Model& SolutionField::GetModel() const {
  return solution_.GetModel();
}

}  // namespace aem
