#include "text/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "text/masks.h"
#include "text/strings.h"

namespace ormel {

namespace {

constexpr int kSignificant = 15;
constexpr int kSmallestFixedExponent = -5;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsExponentLetter(char c) {
  return c == 'e' || c == 'E' || c == 'd' || c == 'D';
}

/// `digits` (no point, no trailing zeros) with the point behind the first `point` of them; `point` may be 0
/// or less.
std::string FixedNotation(std::string_view digits, int point) {
  std::string out;
  const int count = static_cast<int>(digits.size());
  if (point <= 0) {
    out = "0.";
    out.append(static_cast<std::size_t>(-point), '0');
    return out.append(digits);
  }
  if (count <= point) {
    out = digits;
    return out.append(static_cast<std::size_t>(point - count), '0');
  }
  out = digits.substr(0, static_cast<std::size_t>(point));
  return out.append(".").append(digits.substr(static_cast<std::size_t>(point)));
}

/// The number's characters without blanks, as std::from_chars takes them; false when there is no digit.
bool CollectNumber(std::string_view text, std::string& out, bool& negative) {
  enum class State { kSign, kInteger, kDecimals, kExponentSign, kExponent } state = State::kSign;
  bool digits = false;
  negative = false;
  std::size_t mantissa_end = 0;
  for (const char c : text) {
    if (IsBlank(c)) continue;
    if (state == State::kSign) {
      state = State::kInteger;
      if (c == '-' || c == '+') {
        negative = c == '-';
        continue;
      }
    }
    if (IsDigit(c)) {
      if (state == State::kExponentSign) state = State::kExponent;
      out += c;
      digits = true;
      if (state != State::kExponent) mantissa_end = out.size();
    } else if (c == '.' && state == State::kInteger) {
      state = State::kDecimals;
      out += c;
    } else if (IsExponentLetter(c) && digits && (state == State::kInteger || state == State::kDecimals)) {
      mantissa_end = out.size();
      state = State::kExponentSign;
      out += 'e';
    } else if ((c == '-' || c == '+') && state == State::kExponentSign) {
      state = State::kExponent;
      out += c;
    } else {
      break;
    }
  }
  if (state >= State::kExponentSign && !IsDigit(out.back())) out.resize(mantissa_end);  // "1e" and "1e+"
  return digits;
}

/// Is a number beyond the range of a double a large one (rather than a tiny one)?  `number` has digits only
/// up to a point or an exponent.
bool IsLarge(const std::string& number) {
  const std::size_t e = number.find('e');
  if (e != std::string::npos) return number[e + 1] != '-';
  return number.find_first_not_of("0.") < number.find('.');
}

}  // namespace

std::string NumberText(double value) {
  if (!std::isfinite(value)) {
    throw FormatError(std::isnan(value) ? "A number to be written is not a number."
                                        : "A number to be written is infinite.");
  }
  if (value == 0.0) return "0";
  std::array<char, 40> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value),
                                 std::chars_format::scientific, kSignificant - 1);
  const std::string_view text(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
  const std::size_t e = text.find('e');
  std::string digits(1, text[0]);
  digits += text.substr(2, e - 2);
  digits.resize(digits.find_last_not_of('0') + 1);
  int exponent = 0;
  std::from_chars(text.data() + e + (text[e + 1] == '+' ? 2 : 1), end.ptr, exponent);
  std::string out = value < 0 ? "-" : "";
  if (exponent >= kSmallestFixedExponent && exponent < kSignificant) {
    return out + FixedNotation(digits, exponent + 1);
  }
  out += FixedNotation(digits, 1);
  out += exponent < 0 ? "E-" : "E+";
  if (std::abs(exponent) < 10) out += '0';
  return out + std::to_string(std::abs(exponent));
}

double Rounded(double value, double step) {
  if (!(step > 0.0) || !std::isfinite(value)) return value;
  const double places = std::ceil(2.0 - std::log10(step));
  if (std::abs(places) > 15.0) return value;
  const double power = std::pow(10.0, std::abs(places));  // exact, so that the division below rounds once
  return places < 0.0 ? std::round(value / power) * power : std::round(value * power) / power;
}

std::string RawNumber(double value) {
  std::string text = NumberText(value);
  if (text.front() != '-') text.insert(text.begin(), ' ');
  text += ' ';
  return text;
}

void PrintZoneTab(std::string& line) {
  const std::size_t columns = TextLength(line);
  line.append(kPrintZone - columns % kPrintZone, ' ');
}

double Val(std::string_view text) {
  std::string number;
  bool negative = false;
  if (!CollectNumber(text, number, negative)) return 0.0;
  double value = 0.0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    value = IsLarge(number) ? std::numeric_limits<double>::infinity() : 0.0;
  }
  return negative ? -value : value;
}

bool IsNumeric(std::string_view text) {
  text = Trim(text);
  std::size_t i = 0;
  const auto digits = [&] {
    const std::size_t start = i;
    while (i < text.size() && IsDigit(text[i])) ++i;
    return i - start;
  };
  const auto sign = [&] {
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) ++i;
  };
  sign();
  std::size_t count = digits();
  if (i < text.size() && text[i] == '.') {
    ++i;
    count += digits();
  }
  if (count == 0) return false;
  if (i < text.size() && IsExponentLetter(text[i])) {
    ++i;
    sign();
    if (digits() == 0) return false;
  }
  return i == text.size();
}

}  // namespace ormel
