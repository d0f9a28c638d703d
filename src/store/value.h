// One field's content.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace ormel {

/// A point in time to the second, as the store keeps it: "YYYY-MM-DD hh:mm:ss", local time.
struct DateTime {
  std::string text;
  static DateTime Now();
  friend bool operator==(const DateTime&, const DateTime&) = default;
};

/// Empty, a Boolean (stored -1 and 0), a whole number, a number, a text or a date.
/// The conversions never throw: an empty value reads as 0, False or ""; a text reads as its leading number
/// (Val).
class Value {
 public:
  Value() = default;
  Value(std::nullptr_t) {}
  Value(bool value) : data_(value) {}
  template <class T>
  requires(std::is_integral_v<T> && !std::is_same_v<T, bool>) Value(T value)
      : data_(static_cast<std::int64_t>(value)) {}
  Value(double value) : data_(value) {}
  Value(std::string value) : data_(std::move(value)) {}
  Value(std::string_view value) : data_(std::string(value)) {}
  Value(const char* value) : data_(std::string(value)) {}
  Value(DateTime value) : data_(std::move(value)) {}

  bool IsNull() const { return std::holds_alternative<std::monostate>(data_); }
  bool IsText() const { return std::holds_alternative<std::string>(data_); }
  bool IsNumber() const;  // Boolean, whole or floating

  /// Any number but 0 is true; a text is true when it reads as such a number or as "true".
  bool AsBool() const;
  /// Rounded half to even; beyond 64 bits the nearest bound.  A Boolean reads as -1 or 0.
  std::int64_t AsLong() const;
  double AsDouble() const;
  /// Numbers in general notation with up to 15 digits, Booleans "True" and "False".
  std::string AsText() const;

  using Data = std::variant<std::monostate, bool, std::int64_t, double, std::string, DateTime>;
  const Data& data() const { return data_; }
  friend bool operator==(const Value&, const Value&) = default;

 private:
  Data data_;
};

}  // namespace ormel
