// The solver against itself: its velocities and discharges at a point beside central differences over a star
// of six points around it.
#pragma once

#include <array>
#include <optional>

#include "solver/inspection_deck.h"

namespace ormel {

struct ModelValues;

/// Five rows, each a value of the solver ("Anyl") and the same from differences ("Num").  Nothing stands
/// where a point of the star lies where nothing is computed, or where both ends of a difference are one
/// place.
///
///   V    velocity [L/d]; from differences: -k/n dh/dx, by Darcy's law
///   divq divergence of the specific discharge n v [1/d]: 0 by continuity
///   divCapQ  divergence of the discharge [L/d]: minus the net recharge; from differences of n v b with the
///        saturated thickness b = min(top, head) - base of each point
///
/// A difference is divided by the distance between the places that the solver answered for, which are those
/// asked for but where it keeps an elevation within the aquifer.  Under the Dupuit approximation heads do not
/// change with depth: `VzNum` is 0 then, while `VzAnyl` follows from continuity.  Own derivation.
struct IntegrityValues {
  std::optional<double> VxAnyl, VxNum, VyAnyl, VyNum, VzAnyl, VzNum;
  std::optional<double> divqAnyl, divqNum, divCapQAnyl, divCapQNum;
};

IntegrityValues CheckIntegrity(const std::array<PointRecord, kStarPoints>& star, const ModelValues& model);

}  // namespace ormel
