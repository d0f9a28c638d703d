#include "solver/inspection_check.h"

#include <algorithm>

#include "model/model_values.h"

namespace ormel {
namespace {

using Star = std::array<PointRecord, kStarPoints>;
using Field = double PointRecord::*;

/// Two opposite points of the star and the coordinate in which they differ.
struct Axis {
  StarPoint plus, minus;
  Field along;
};
constexpr Axis kX{kEast, kWest, &PointRecord::x};
constexpr Axis kY{kNorth, kSouth, &PointRecord::y};
constexpr Axis kZ{kUp, kDown, &PointRecord::z};

bool Computed(const PointRecord& point) {
  return point.head != kNoHead;
}

/// Difference quotient of a quantity of the points along an axis.
template <class Quantity>
std::optional<double> Slope(const Star& star, const Axis& axis, Quantity quantity) {
  const PointRecord& a = star[axis.plus];
  const PointRecord& b = star[axis.minus];
  const double distance = a.*axis.along - b.*axis.along;
  if (!Computed(a) || !Computed(b) || !(distance > 0.0)) return std::nullopt;
  return (quantity(a) - quantity(b)) / distance;
}

std::optional<double> Sum(std::initializer_list<std::optional<double>> terms) {
  double sum = 0.0;
  for (const std::optional<double>& term : terms) {
    if (!term) return std::nullopt;
    sum += *term;
  }
  return sum;
}

/// Velocity by Darcy's law with the properties of the centre.
std::optional<double> DarcyVelocity(const Star& star, const Axis& axis) {
  const PointRecord& centre = star[kCentre];
  const auto slope = Slope(star, axis, [](const PointRecord& p) { return p.head; });
  if (!slope || !(centre.porosity > 0.0)) return std::nullopt;
  return -centre.conductivity / centre.porosity * *slope;
}

}  // namespace

IntegrityValues CheckIntegrity(const Star& star, const ModelValues& model) {
  IntegrityValues values;
  const PointRecord& centre = star[kCentre];
  if (!Computed(centre)) return values;
  const auto specific = [](Field velocity) {
    return [velocity](const PointRecord& p) { return p.porosity * p.*velocity; };
  };
  const double top = model.AquiferTop();
  const auto discharge = [top](Field velocity) {
    return [top, velocity](const PointRecord& p) {
      return p.porosity * p.*velocity * (std::min(top, p.head) - p.base);
    };
  };
  values.VxAnyl = centre.velocity_x;
  values.VyAnyl = centre.velocity_y;
  values.VzAnyl = centre.velocity_z;
  values.VxNum = DarcyVelocity(star, kX);
  values.VyNum = DarcyVelocity(star, kY);
  values.VzNum = DarcyVelocity(star, kZ);
  values.divqAnyl = 0.0;
  values.divqNum = Sum({Slope(star, kX, specific(&PointRecord::velocity_x)),
                        Slope(star, kY, specific(&PointRecord::velocity_y)),
                        Slope(star, kZ, specific(&PointRecord::velocity_z))});
  values.divCapQAnyl = -centre.net_recharge;
  values.divCapQNum = Sum({Slope(star, kX, discharge(&PointRecord::velocity_x)),
                           Slope(star, kY, discharge(&PointRecord::velocity_y))});
  return values;
}

}  // namespace ormel
