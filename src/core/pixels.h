// Pictures in memory.
#pragma once

#include <cstdint>
#include <vector>

namespace ormel {

/// A picture to be placed: red, green, blue, alpha of each pixel, rows from the top.
struct Pixels {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgba;
};

}  // namespace ormel
