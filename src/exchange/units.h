// Units in which numbers of other programs can come.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/quantities.h"

namespace ormel {

struct Ormel;

/// Names of the units of a quantity, "m^3/day" first; none for one that has no choice.
std::vector<std::string> UnitsOf(Quantity quantity);
/// What a number in that unit is multiplied by to be in the project's computation unit; an empty name stands
/// for the project's own.  Nothing for a unit that is not known.
std::optional<double> UnitFactor(const Ormel& ormel, Quantity quantity, const std::string& unit);

}  // namespace ormel
