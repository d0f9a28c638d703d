// Units of what tables and panels show.
#pragma once

#include <string>

namespace ormel {

struct Ormel;

enum class Quantity {
  kNone,
  kMapLength,    ///< the map's length
  kMapArea,      ///< and its square
  kLength,       ///< the computation's length
  kArea,         ///< its square
  kRate,         ///< length per day: conductivity, recharge
  kSinkDensity,  ///< length squared per day
  kDischarge,    ///< length cubed per day: discharge, discharge potential
  kDays,
  kYears,
  kAngle,
  kPercent,
};

/// "m", "ft^3/day", "days"; empty for kNone.
std::string UnitOf(const Ormel& ormel, Quantity quantity);
/// The caption of a column and its unit in brackets below it.
std::string WithUnit(const Ormel& ormel, const char* caption, Quantity quantity);

}  // namespace ormel
