// The flow in plan that outlines of capture zones follow: the depth-averaged discharge of the solved model.
//
// Three things differ from what a single path follows:
//  - A partially penetrating well counts by its depth-averaged flow, which is that of a well of full depth.
//  - Inside its rim a well stays the point sink that it is, so that water is conserved to its centre also
//    where the rim is wide against the ground that the well commands.
//  - A transient well releases water from storage where it draws heads down: that counts as recharge, since
//    it adds to the flow as recharge does (Theis 1935).
#pragma once

#include <vector>

#include "aem/trace_field.h"

namespace zones {

using aem::Complex;

class PlanField final : public aem::TraceField {
 public:
  /// `field` must outlive this.  `time` is that of the solution: transient wells stand as at it [d].
  PlanField(const aem::TraceField& field, double time);
  aem::PointState At(Complex point) const override;
  aem::PointState AtElevation(Complex point, double, double* vertical) const override {
    *vertical = 0.0;
    return At(point);
  }
  aem::Crossing FirstCrossing(Complex from, Complex to) const override {
    return field_.FirstCrossing(from, to);
  }
  aem::SinkHit NearestSink(Complex point, double distance) const override {
    return field_.NearestSink(point, distance);
  }
  double SinkDensity(int string, int segment, double position) const override {
    return field_.SinkDensity(string, segment, position);
  }
  const aem::Model& GetModel() const override { return field_.GetModel(); }
  /// Wells that take water have a tiny rim here: paths begin within the real one.
  const aem::WellIndex& Wells() const override { return wells_; }
  const std::vector<aem::TraceWell>& Disks() const override { return field_.Disks(); }
  /// Whether wells in it live on storage.
  bool HasTransients() const { return !transients_.empty(); }
  /// With their own rims.
  const aem::WellIndex& RealWells() const { return field_.Wells(); }

 private:
  double ReleasedFromStorage(Complex point) const;

  struct Transient {
    Complex at;
    double radius = 0.0, rate = 0.0;
    double decay = 0.0;  ///< S/(4 T t) [1/L2]
  };
  const aem::TraceField& field_;
  aem::WellIndex wells_;
  std::vector<Transient> transients_;
};

}  // namespace zones
