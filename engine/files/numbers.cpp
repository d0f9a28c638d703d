#include "files/numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace files {
namespace {

char Lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::optional<double> ReadNumber(std::string_view text) {
  constexpr std::size_t kLongest = 64;  // more digits than any program writes for one number
  if (text.empty() || text.size() > kLongest) return std::nullopt;
  char buffer[kLongest] = {};
  std::size_t length = 0;
  for (const char c : text) {
    const char lower = Lower(c);
    const bool known =
        (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || lower == 'e' || lower == 'd';
    if (!known) return std::nullopt;
    buffer[length++] = lower == 'd' ? 'e' : lower;
  }
  const char* begin = buffer;
  const char* const end = buffer + length;
  if (*begin == '+') {
    ++begin;
    if (begin == end || *begin == '-') return std::nullopt;
  }
  double value = 0.0;
  const auto [stop, error] = std::from_chars(begin, end, value);
  if (stop != end) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    // Both ends of the range report the same error: a number too small is zero, one too large is no number.
    const bool too_small =
        std::string_view(begin, static_cast<std::size_t>(end - begin)).find("e-") != std::string_view::npos;
    return too_small ? std::optional<double>(0.0) : std::nullopt;
  }
  if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<int> ReadWholeNumber(std::string_view text) {
  const std::optional<double> value = ReadNumber(text);
  if (!value || *value != std::floor(*value) ||
      std::fabs(*value) > std::numeric_limits<std::int32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<int>(*value);
}

std::string FixedToFit(double value, int width, int most_decimals, bool sign_always) {
  if (!std::isfinite(value) || std::fabs(value) > 1e30) return {};
  for (int decimals = most_decimals; decimals >= 0; --decimals) {
    std::string text = fmt::format("{:.{}f}", std::fabs(value), decimals);
    const bool zero = text.find_first_not_of("0.") == std::string::npos;
    if (std::signbit(value) && !zero) {
      text.insert(text.begin(), '-');
    } else if (sign_always) {
      text.insert(text.begin(), '+');
    }
    if (text.size() <= static_cast<std::size_t>(width)) return text;
  }
  return {};
}

bool SameWord(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string WithExtension(std::string_view name, std::string_view extension) {
  std::string full(name);
  if (name.size() <= extension.size() || !SameWord(name.substr(name.size() - extension.size()), extension)) {
    full += extension;
  }
  return full;
}

}  // namespace files
