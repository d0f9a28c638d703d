// Per-user settings and the clock.
#pragma once

#include <string>
#include <string_view>

namespace ormel {

/// Text values by key, in the section `Startup` of the application's store.
class Settings {
 public:
  virtual ~Settings() = default;
  virtual std::string GetSetting(std::string_view key, std::string_view default_value) const = 0;
  virtual void SaveSetting(std::string_view key, std::string_view value) = 0;
};

/// Local date and time.
struct ClockTime {
  int year = 2000, month = 1, day = 1, hour = 0, minute = 0, second = 0;
};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual ClockTime Now() const = 0;
};

}  // namespace ormel
