// Numbers of a report: how many digits, and which unit.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/quantities.h"
#include "text/masks.h"

namespace ormel {

/// A way to write numbers: "given" (as entered, up to 15 digits), "s4" (significant digits, never cutting
/// those before the point), or a mask such as "0.00".
class NumberFormat {
 public:
  NumberFormat() = default;
  /// Nothing for a text that is no format.
  static std::optional<NumberFormat> Parse(std::string_view text);
  /// What suits results of a quantity: heads to a hundredth, discharges to five digits ...
  static NumberFormat UsualFor(Quantity quantity);

  std::string Text(double value) const;

 private:
  int significant_ = 0;  ///< 0: by the mask, or as given without one
  std::optional<NumberMask> mask_;
};

/// A quantity by its word in a report's description: "length", "map area", "discharge", "none" ...
std::optional<Quantity> QuantityByName(std::string_view name);
/// All the words, for a message.
std::string QuantityNames();

/// "m^3/day" as HTML with its exponent raised.
std::string UnitHtml(std::string_view unit);
/// The shortest digits that give back the same number.
std::string AllDigits(double value);

}  // namespace ormel
