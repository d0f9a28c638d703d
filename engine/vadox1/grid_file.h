// Heads on a rectangular grid as a Surfer text grid (.GRD).
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

#include "aem/solution.h"

namespace vadox1 {

/// What a node without a head holds.
inline constexpr double kBlank = 1.70141e38;

/// More nodes than this are refused: no map shows them, and they would fill the memory.
inline constexpr double kMostNodes = 1e8;

struct GridShape {
  aem::Window window;
  int columns = 0, rows = 0;
  std::size_t nodes() const { return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows); }
};

/// Rows such that cells are as near to square as whole numbers allow; columns and rows are 2 at least. `rows`
/// is 0 when the grid would have more than kMostNodes.
GridShape ShapeGrid(const aem::Window& window, int columns);

/// Heads of all nodes, the southern row first; kBlank where there is none.  `progress` receives the share
/// done and returns false to stop: the result is then empty.
std::vector<double> GridHeads(const aem::Solution& solution, const GridShape& shape,
                              const std::function<bool(double)>& progress);

/// DSAA; columns and rows; ranges of x, of y and of the heads; then the heads, ten a line, a blank line
/// behind each row.  Nine significant digits.
/// The text comes in pieces.
void WriteGrid(const GridShape& shape, const std::vector<double>& heads,
               const std::function<void(std::string_view)>& write);

}  // namespace vadox1
