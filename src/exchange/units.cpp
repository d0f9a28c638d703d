#include "exchange/units.h"

#include <array>
#include <cmath>

#include "core/ormel.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr double kFoot = 0.3048, kGallon = 3.785411784e-3, kYear = 365.0;

struct UnitRow {
  Quantity quantity;
  const char* name;
  double factor;  ///< to metres and days
};
constexpr std::array kUnits{
    UnitRow{Quantity::kLength, "m", 1.0},
    UnitRow{Quantity::kLength, "ft", kFoot},
    UnitRow{Quantity::kLength, "cm", 0.01},
    UnitRow{Quantity::kDischarge, "m^3/day", 1.0},
    UnitRow{Quantity::kDischarge, "ft^3/day", kFoot* kFoot* kFoot},
    UnitRow{Quantity::kDischarge, "m^3/h", 24.0},
    UnitRow{Quantity::kDischarge, "m^3/s", 86400.0},
    UnitRow{Quantity::kDischarge, "m^3/year", 1.0 / kYear},
    UnitRow{Quantity::kDischarge, "l/s", 86.4},
    UnitRow{Quantity::kDischarge, "gal/min", kGallon * 1440.0},
    UnitRow{Quantity::kRate, "m/day", 1.0},
    UnitRow{Quantity::kRate, "ft/day", kFoot},
    UnitRow{Quantity::kRate, "m/s", 86400.0},
    UnitRow{Quantity::kRate, "mm/year", 1e-3 / kYear},
    UnitRow{Quantity::kRate, "in/year", 0.0254 / kYear},
    UnitRow{Quantity::kSinkDensity, "m^2/day", 1.0},
    UnitRow{Quantity::kSinkDensity, "ft^2/day", kFoot* kFoot},
    UnitRow{Quantity::kDays, "days", 1.0},
    UnitRow{Quantity::kDays, "years", kYear},
};

}  // namespace

std::vector<std::string> UnitsOf(Quantity quantity) {
  std::vector<std::string> names;
  for (const UnitRow& row : kUnits)
    if (row.quantity == quantity) names.emplace_back(row.name);
  return names;
}

std::optional<double> UnitFactor(const Ormel& ormel, Quantity quantity, const std::string& unit) {
  if (unit.empty() || EqualNoCase(unit, UnitOf(ormel, quantity))) return 1.0;
  const std::string own = UnitOf(ormel, quantity);
  std::optional<double> from, to;
  for (const UnitRow& row : kUnits) {
    if (row.quantity != quantity) continue;
    if (EqualNoCase(row.name, unit)) from = row.factor;
    if (own == row.name) to = row.factor;
  }
  if (!from || !to) return std::nullopt;
  return *from / *to;
}

}  // namespace ormel
