#include "text/masks.h"

#include <array>
#include <charconv>
#include <cmath>

namespace ormel {

namespace {

constexpr int kMaxPlaces = 60;
// The longest fixed notation of a double: 309 digits, a point and the decimals.
using Buffer = std::array<char, 400>;

bool IsPlace(char c) {
  return c == '0' || c == '#';
}

std::string_view Digits(Buffer& buffer, double magnitude, std::chars_format format, int precision) {
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, format, precision);
  return {buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())};
}

void AppendGrouped(std::string& out, std::string_view digits) {
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
    out += digits[i];
  }
}

}  // namespace

NumberMask::NumberMask(std::string_view mask) : mask_(mask) {
  std::size_t i = 0;
  const auto at = [&](std::size_t k) { return k < mask.size() ? mask[k] : '\0'; };
  while (i < mask.size() && !IsPlace(mask[i]) && !(mask[i] == '.' && IsPlace(at(i + 1)))) ++i;
  if (i == mask.size()) throw FormatError("The number mask \"" + mask_ + "\" has no digit place.");
  prefix_ = mask.substr(0, i);
  for (; IsPlace(at(i)) || (at(i) == ',' && IsPlace(at(i + 1))); ++i) {
    if (mask[i] == ',') {
      grouping_ = true;
      continue;
    }
    ++integer_places_;
    if (mask[i] == '0' || integer_zeros_ > 0) ++integer_zeros_;
  }
  if (at(i) == '.') {
    point_ = true;
    for (++i; IsPlace(at(i)); ++i) {
      ++decimals_;
      if (mask[i] == '0') decimal_zeros_ = decimals_;
    }
  }
  if ((at(i) == 'E' || at(i) == 'e') && at(i + 1) == '+' && at(i + 2) == '0') {
    for (i += 2; at(i) == '0'; ++i) ++exponent_digits_;
  }
  suffix_ = mask.substr(i);
  if (integer_places_ > kMaxPlaces || decimals_ > kMaxPlaces || exponent_digits_ > kMaxPlaces) {
    throw FormatError("The number mask \"" + mask_ + "\" has too many digit places.");
  }
  if (exponent_digits_ > 0 && integer_places_ == 0) {
    throw FormatError("The number mask \"" + mask_ + "\" has an exponent but no digit before the point.");
  }
}

std::string NumberMask::Format(double value) const {
  std::string out;
  AppendTo(out, value);
  return out;
}

void NumberMask::AppendTo(std::string& out, double value) const {
  if (!std::isfinite(value)) {
    throw FormatError(std::string("A number to be written by the mask \"") + mask_ + "\" is " +
                      (std::isnan(value) ? "not a number" : "infinite") + ".");
  }
  out += prefix_;
  if (exponent_digits_ > 0) {
    AppendScientific(out, value);
  } else {
    AppendFixed(out, value);
  }
  out += suffix_;
}

void NumberMask::AppendFixed(std::string& out, double value) const {
  Buffer buffer;
  const std::string_view text = Digits(buffer, std::fabs(value), std::chars_format::fixed, decimals_);
  const bool zero = text.find_first_not_of("0.") == std::string_view::npos;
  const std::size_t point = text.find('.');
  std::string_view integer = text.substr(0, point);
  if (integer == "0") integer = {};
  AppendNumber(out, std::signbit(value) && !zero, integer,
               point == std::string_view::npos ? std::string_view() : text.substr(point + 1));
}

void NumberMask::AppendScientific(std::string& out, double value) const {
  std::string digits;
  int exponent = 0;
  if (value == 0.0) {
    digits.assign(static_cast<std::size_t>(decimals_), '0');
    AppendNumber(out, false, {}, digits);
  } else {
    Buffer buffer;
    const auto places = static_cast<std::size_t>(integer_places_);
    const std::string_view text =
        Digits(buffer, std::fabs(value), std::chars_format::scientific, integer_places_ + decimals_ - 1);
    const std::size_t e = text.find('e');
    for (const char c : text.substr(0, e)) {
      if (c != '.') digits += c;
    }
    const char* first = text.data() + e + (text[e + 1] == '+' ? 2 : 1);
    std::from_chars(first, text.data() + text.size(), exponent);
    exponent -= integer_places_ - 1;
    AppendNumber(out, value < 0, std::string_view(digits).substr(0, places),
                 std::string_view(digits).substr(places));
  }
  const std::string number = std::to_string(std::abs(exponent));
  out += exponent < 0 ? "E-" : "E+";
  if (number.size() < static_cast<std::size_t>(exponent_digits_)) {
    out.append(static_cast<std::size_t>(exponent_digits_) - number.size(), '0');
  }
  out += number;
}

void NumberMask::AppendNumber(std::string& out, bool negative, std::string_view integer,
                              std::string_view decimals) const {
  if (negative) out += '-';
  std::string padded;
  const auto zeros = static_cast<std::size_t>(integer_zeros_);
  if (integer.size() < zeros) {
    padded.assign(zeros - integer.size(), '0');
    padded += integer;
    integer = padded;
  }
  if (grouping_) {
    AppendGrouped(out, integer);
  } else {
    out += integer;
  }
  if (!point_) return;
  out += '.';
  while (decimals.size() > static_cast<std::size_t>(decimal_zeros_) && decimals.back() == '0') {
    decimals.remove_suffix(1);
  }
  out += decimals;
}

std::string FormatMask(double value, std::string_view mask) {
  return NumberMask(mask).Format(value);
}

}  // namespace ormel
