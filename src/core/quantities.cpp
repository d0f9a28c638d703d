#include "core/quantities.h"

#include "core/ormel.h"

namespace ormel {

std::string UnitOf(const Ormel& ormel, Quantity quantity) {
  std::string map = ormel.project.BasemapMeters ? "m" : "ft";
  std::string length = ormel.project.ComputeMeters ? "m" : "ft";
  switch (quantity) {
    case Quantity::kNone:
      return {};
    case Quantity::kMapLength:
      return map;
    case Quantity::kMapArea:
      return map + "^2";
    case Quantity::kLength:
      return length;
    case Quantity::kArea:
      return length + "^2";
    case Quantity::kRate:
      return length + "/day";
    case Quantity::kSinkDensity:
      return length + "^2/day";
    case Quantity::kDischarge:
      return length + "^3/day";
    case Quantity::kDays:
      return "days";
    case Quantity::kYears:
      return "years";
    case Quantity::kAngle:
      return "degrees";
    case Quantity::kPercent:
      return "%";
  }
  return {};
}

std::string WithUnit(const Ormel& ormel, const char* caption, Quantity quantity) {
  const std::string unit = UnitOf(ormel, quantity);
  return unit.empty() ? std::string(caption) : std::string(caption) + "\n[" + unit + "]";
}

}  // namespace ormel
