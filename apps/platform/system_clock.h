// The clock of the computer.
#pragma once

#include "core/settings.h"

namespace ormel {

class SystemClock : public Clock {
 public:
  ClockTime Now() const override;
};

}  // namespace ormel
