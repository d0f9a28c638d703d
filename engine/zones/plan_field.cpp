#include "zones/plan_field.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace zones {
namespace {

/// Of the rim of a well that takes water, in parts of the real one: no path that leads away from the well
/// notices it.
constexpr double kTinyRim = 1e-6;

}  // namespace

PlanField::PlanField(const aem::TraceField& field, double time) : field_(field) {
  std::vector<aem::TraceWell> wells = field.Wells().wells();
  for (aem::TraceWell& well : wells)
    if (well.discharge > 0.0) well.radius *= kTinyRim;
  wells_ = aem::WellIndex(std::move(wells));
  for (const aem::TheisRecord& record : GetModel().theis) {
    const double since = time - record.time;
    if (!(since > 0.0)) continue;
    const double conductivity = field.At(record.at).conductivity;
    if (conductivity > 0.0)
      transients_.push_back(
          {record.at, record.radius, record.rate, record.storage / (4.0 * conductivity * since)});
  }
}

/// Divergence of the flow to a transient well, rate/(2 pi r) e^-u with u = r2 S/(4 T t), as an infiltration
/// [L/d].
double PlanField::ReleasedFromStorage(Complex point) const {
  double released = 0.0;
  for (const Transient& well : transients_) {
    const double r2 = std::norm(point - well.at);
    if (r2 >= well.radius * well.radius)
      released += well.rate / std::numbers::pi * well.decay * std::exp(-r2 * well.decay);
  }
  return released;
}

aem::PointState PlanField::At(Complex point) const {
  aem::PointState state = field_.At(point);
  if (state.status != aem::PointStatus::kOk) return state;
  field_.Wells().ForEachNear(point, point, [&](const aem::TraceWell& well) {
    const Complex off = point - well.at;
    const double distance = std::abs(off);
    if (well.discharge > 0.0 && distance < well.radius && distance > 0.0)
      state.discharge -= well.discharge / (2.0 * std::numbers::pi) * off / (distance * distance);
  });
  if (!transients_.empty()) state.net_recharge -= ReleasedFromStorage(point);
  return state;
}

}  // namespace zones
