#include "analysis/report_numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

struct QuantityWord {
  std::string_view word;
  Quantity quantity;
  std::string_view format;  ///< usual
};
constexpr std::array kWords{QuantityWord{"none", Quantity::kNone, "given"},
                            QuantityWord{"map length", Quantity::kMapLength, "0.##"},
                            QuantityWord{"map area", Quantity::kMapArea, "s5"},
                            QuantityWord{"length", Quantity::kLength, "0.00"},
                            QuantityWord{"area", Quantity::kArea, "s5"},
                            QuantityWord{"rate", Quantity::kRate, "s4"},
                            QuantityWord{"sink density", Quantity::kSinkDensity, "s4"},
                            QuantityWord{"discharge", Quantity::kDischarge, "s5"},
                            QuantityWord{"days", Quantity::kDays, "0.#"},
                            QuantityWord{"years", Quantity::kYears, "given"},
                            QuantityWord{"degrees", Quantity::kAngle, "0.#"},
                            QuantityWord{"percent", Quantity::kPercent, "0.0"}};

/// Rounded to `digits` significant ones, but at least to the unit.
std::string Significant(double value, int digits) {
  constexpr double kLargest = 1e12, kSmallest = 1e-5;
  const double size = std::abs(value);
  if (size == 0.0) return "0";
  if (size >= kLargest || size < kSmallest)
    return FormatMask(value,
                      "0." + std::string(static_cast<std::size_t>(std::max(1, digits - 1)), '0') + "E+00");
  const int before = static_cast<int>(std::floor(std::log10(size))) + 1;
  const int decimals = std::max(0, digits - before);
  return FormatMask(value, decimals == 0 ? "0" : "0." + std::string(static_cast<std::size_t>(decimals), '0'));
}

}  // namespace

std::optional<NumberFormat> NumberFormat::Parse(std::string_view text) {
  NumberFormat format;
  if (text == "given") return format;
  if (text.size() >= 2 && text.front() == 's' && IsNumeric(text.substr(1))) {
    format.significant_ = static_cast<int>(Val(text.substr(1)));
    if (format.significant_ < 1 || format.significant_ > 15) return std::nullopt;
    return format;
  }
  try {
    format.mask_.emplace(text);
  } catch (const FormatError&) {
    return std::nullopt;
  }
  return format;
}

NumberFormat NumberFormat::UsualFor(Quantity quantity) {
  for (const QuantityWord& word : kWords)
    if (word.quantity == quantity) return *Parse(word.format);
  return {};
}

std::string NumberFormat::Text(double value) const {
  if (!std::isfinite(value)) return "not a number";
  if (significant_ > 0) return Significant(value, significant_);
  if (!mask_) return NumberText(value);
  std::string text = mask_->Format(value);
  if (text.ends_with('.')) text.pop_back();  // of "0.##" with nothing behind the point
  return text;
}

std::optional<Quantity> QuantityByName(std::string_view name) {
  if (name.empty()) return Quantity::kNone;
  for (const QuantityWord& word : kWords)
    if (EqualNoCase(word.word, name)) return word.quantity;
  return std::nullopt;
}

std::string QuantityNames() {
  std::string names;
  for (const QuantityWord& word : kWords) names += (names.empty() ? "" : ", ") + std::string(word.word);
  return names;
}

std::string UnitHtml(std::string_view unit) {
  std::string html;
  for (std::size_t i = 0; i < unit.size(); ++i) {
    if (unit[i] == '^' && i + 1 < unit.size()) {
      html += "<sup>" + std::string(1, unit[++i]) + "</sup>";
    } else {
      html += unit[i];
    }
  }
  return html;
}

std::string AllDigits(double value) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end.ptr};
}

}  // namespace ormel
