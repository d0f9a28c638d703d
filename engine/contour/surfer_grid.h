// The Surfer text grid: heads at the nodes of a rectangular grid, rows from the south.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace contour {

/// Nodes that hold this or more have no value.
inline constexpr double kBlank = 1.70141e38;

struct Grid {
  int columns = 0, rows = 0;
  double left = 0.0, right = 0.0, bottom = 0.0, top = 0.0;
  std::vector<double> values;  ///< rows x columns, the southern row first, each from west to east

  bool Blanked(std::size_t node) const { return values[node] >= kBlank || values[node] <= -kBlank; }
};

/// What is wrong with a grid or with the levels asked for, in a sentence.
class ContourError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads a grid that begins with "DSAA".  `name` is for messages.  Throws ContourError with the line's number
/// when the text is no grid, is cut, or claims more nodes than it can hold; nothing is allocated before that
/// is known.
Grid ReadSurferGrid(std::string_view text, const std::string& name);

}  // namespace contour
