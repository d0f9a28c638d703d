#include "aem/trace_step.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace aem::detail {
namespace {

/// Thicknesses from a partially penetrating well within which flow is taken as three-dimensional: at its end
/// the difference is some 1e-6 of the drawdown, so that no step sees it.
constexpr double kReach = 4.0;

constexpr int kStages = 7;
// Dormand and Prince (1980): rows of the tableau; the last row is the fifth-order solution itself.
constexpr double kA[kStages][kStages - 1] = {
    {},
    {1.0 / 5},
    {3.0 / 40, 9.0 / 40},
    {44.0 / 45, -56.0 / 15, 32.0 / 9},
    {19372.0 / 6561, -25360.0 / 2187, 64448.0 / 6561, -212.0 / 729},
    {9017.0 / 3168, -355.0 / 33, 46732.0 / 5247, 49.0 / 176, -5103.0 / 18656},
    {35.0 / 384, 0.0, 500.0 / 1113, 125.0 / 192, -2187.0 / 6784, 11.0 / 84}};
// Fifth order less embedded fourth order.
constexpr double kError[kStages] = {71.0 / 57600,      0.0,          -71.0 / 16695, 71.0 / 1920,
                                    -17253.0 / 339200, 22.0 / 525.0, -1.0 / 40};

}  // namespace

Mover::Mover(const TraceField& field, bool forward, double slow)
    : field_(field), direction_(forward ? 1.0 : -1.0), slow_(slow) {}

bool Mover::NearPartialWell(Complex at, double thickness) const {
  const auto& wells = field_.GetModel().partial_wells;
  return std::any_of(wells.begin(), wells.end(),
                     [&](const PartialWell& well) { return std::abs(at - well.at) < kReach * thickness; });
}

Motion Mover::At(const Place& place) const {
  Motion motion;
  motion.state = field_.At(place.at);
  if (motion.state.status != PointStatus::kOk) return motion;
  const double b = motion.state.thickness;
  if (!(b > 0.0) || !(motion.state.porosity > 0.0)) {
    motion.state.status = PointStatus::kDry;
    return motion;
  }
  const double storage = b * motion.state.porosity;
  double upward = 0.0;
  if (NearPartialWell(place.at, b)) {
    motion.state =
        field_.AtElevation(place.at, motion.state.base + std::clamp(place.s, 0.0, 1.0) * b, &upward);
    // Near a screen that draws hard the local head can fall below the base while the aquifer is wet: the flow
    // still is the answer.
    if (motion.state.status != PointStatus::kOk) {
      motion.state.status = PointStatus::kOk;
      motion.state.head = motion.state.base;
    }
  }
  const Complex velocity = motion.state.discharge / storage;
  motion.dt = 1.0 / std::hypot(std::abs(velocity), slow_);
  motion.v = direction_ * motion.dt * velocity;
  motion.ds = direction_ * motion.dt * (place.s * motion.state.net_recharge + upward) / storage;
  motion.ok = std::isfinite(motion.v.real()) && std::isfinite(motion.v.imag()) && std::isfinite(motion.ds) &&
              motion.dt > 0.0;
  return motion;
}

Trial Mover::Step(const Place& from, const Motion& first, double way, const Tolerance& tolerance) const {
  Trial trial;
  Motion stage[kStages];
  stage[0] = first;
  for (int i = 1; i < kStages; ++i) {
    Place at = from;
    for (int j = 0; j < i; ++j) at = stage[j].Move(at, way * kA[i][j]);
    stage[i] = At(at);
    if (!stage[i].ok) {
      trial.failed = stage[i].state.status;
      return trial;
    }
    trial.end = at;
  }
  Place error;
  for (int i = 0; i < kStages; ++i) error = stage[i].Move(error, way * kError[i]);
  trial.motion = stage[kStages - 1];
  // An error in time counts by the way that the particle does in it.
  const double speed = std::min(first.Speed(), trial.motion.Speed());
  trial.error =
      std::max({std::abs(error.at) / tolerance.position, std::fabs(error.time) * speed / tolerance.position,
                std::fabs(error.s) / tolerance.height});
  // Where the velocity jumps within the step its weights of both signs can even turn time back.
  if (!(trial.end.time > from.time)) trial.error = std::max(trial.error, 1e6);
  // The middle of the cubic through both ends.
  const Place change = trial.motion.Move(first.Move({}, way / 8.0), -way / 8.0);
  trial.middle = {0.5 * (from.at + trial.end.at) + change.at, 0.5 * (from.s + trial.end.s) + change.s,
                  0.5 * (from.time + trial.end.time) + change.time};
  trial.ok = true;
  return trial;
}

}  // namespace aem::detail
