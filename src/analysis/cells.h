// Cells of tables that may be empty.
#pragma once

#include <optional>

#include "store/value.h"

namespace ormel {

inline Value OrEmpty(const std::optional<double>& number) {
  Value value;
  if (number) value = *number;
  return value;
}

/// The value where `there` holds.
inline Value When(bool there, Value value) {
  if (!there) value = Value();
  return value;
}

}  // namespace ormel
