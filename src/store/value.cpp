#include "store/value.h"

#include <array>
#include <cmath>
#include <ctime>
#include <limits>

#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {

namespace {

std::int64_t RoundToLong(double number) {
  constexpr double kBound = 9223372036854775808.0;  // 2^63
  if (std::isnan(number)) return 0;
  if (number >= kBound) return std::numeric_limits<std::int64_t>::max();
  if (number < -kBound) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(std::nearbyint(number));  // the default mode rounds half to even
}

std::string DoubleText(double number) {
  if (std::isfinite(number)) return NumberText(number);
  return std::isnan(number) ? "nan" : number > 0 ? "inf" : "-inf";
}

}  // namespace

DateTime DateTime::Now() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts);
  return {text.data()};
}

bool Value::IsNumber() const {
  return std::holds_alternative<bool>(data_) || std::holds_alternative<std::int64_t>(data_) ||
         std::holds_alternative<double>(data_);
}

bool Value::AsBool() const {
  if (const auto* text = std::get_if<std::string>(&data_))
    return EqualNoCase(Trim(*text), "true") || Val(*text) != 0.0;
  return AsDouble() != 0.0;
}

std::int64_t Value::AsLong() const {
  if (const auto* number = std::get_if<std::int64_t>(&data_)) return *number;
  return RoundToLong(AsDouble());
}

double Value::AsDouble() const {
  if (const auto* number = std::get_if<double>(&data_)) return *number;
  if (const auto* number = std::get_if<std::int64_t>(&data_)) return static_cast<double>(*number);
  if (const auto* flag = std::get_if<bool>(&data_)) return *flag ? -1.0 : 0.0;
  if (const auto* text = std::get_if<std::string>(&data_)) return Val(*text);
  return 0.0;
}

std::string Value::AsText() const {
  if (const auto* text = std::get_if<std::string>(&data_)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&data_)) return std::to_string(*number);
  if (const auto* number = std::get_if<double>(&data_)) return DoubleText(*number);
  if (const auto* flag = std::get_if<bool>(&data_)) return *flag ? "True" : "False";
  if (const auto* date = std::get_if<DateTime>(&data_)) return date->text;
  return {};
}

}  // namespace ormel
