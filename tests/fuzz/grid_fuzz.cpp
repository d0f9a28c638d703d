// Any bytes are a grid or a message; the contours of any grid can be traced and written.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "contour/contour_run.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const contour::Grid grid =
        contour::ReadSurferGrid({reinterpret_cast<const char*>(data), size}, "fuzz.GRD");
    double low = 1e300, high = -1e300;
    for (std::size_t node = 0; node < grid.values.size(); ++node) {
      if (grid.Blanked(node)) continue;
      low = std::fmin(low, grid.values[node]);
      high = std::fmax(high, grid.values[node]);
    }
    if (!(high > low)) return 0;
    const contour::Levels levels{low, (high - low) / 7.0, high};
    if (!(levels.interval > 0.0)) return 0;
    std::string text;
    contour::TraceContours(grid, levels, [&](double level, const contour::Polyline& line) {
      if (line.size() < 2) std::abort();
      contour::AppendContour(text, level, line);
    });
  } catch (const contour::ContourError&) {
  }
  return 0;
}
