#include "vadox1/grid_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

namespace vadox1 {

GridShape ShapeGrid(const aem::Window& window, int columns) {
  GridShape shape{window, columns, 0};
  const double side = (window.right - window.left) / (columns - 1);
  const double rows = std::max(2.0, std::round((window.top - window.bottom) / side) + 1.0);
  if (rows * columns <= kMostNodes) shape.rows = static_cast<int>(rows);
  return shape;
}

std::vector<double> GridHeads(const aem::Solution& solution, const GridShape& shape,
                              const std::function<bool(double)>& progress) {
  const aem::Window& window = shape.window;
  const double dx = (window.right - window.left) / (shape.columns - 1);
  const double dy = (window.top - window.bottom) / (shape.rows - 1);
  std::vector<double> heads;
  heads.reserve(shape.nodes());
  // Some thousand points at a time keep the threads busy and let the user interrupt.
  const int rows_at_once = std::max(1, 8192 / shape.columns);
  std::vector<aem::Complex> points;
  std::vector<aem::PointState> states;
  for (int row = 0; row < shape.rows; row += rows_at_once) {
    if (!progress(static_cast<double>(row) / shape.rows)) return {};
    points.clear();
    for (int j = row; j < std::min(shape.rows, row + rows_at_once); ++j) {
      for (int i = 0; i < shape.columns; ++i)
        points.emplace_back(window.left + i * dx, window.bottom + j * dy);
    }
    states.resize(points.size());
    solution.Evaluate(points, states);
    for (const aem::PointState& state : states) {
      heads.push_back(state.status == aem::PointStatus::kOk ? state.head : kBlank);
    }
  }
  return heads;
}

void WriteGrid(const GridShape& shape, const std::vector<double>& heads,
               const std::function<void(std::string_view)>& write) {
  double low = kBlank, high = -kBlank;
  for (const double head : heads) {
    if (head >= kBlank) continue;
    low = std::min(low, head);
    high = std::max(high, head);
  }
  if (low > high) low = high = kBlank;
  const aem::Window& window = shape.window;
  std::string text =
      fmt::format("DSAA\r\n{} {}\r\n{:.10g} {:.10g}\r\n{:.10g} {:.10g}\r\n{:.9g} {:.9g}\r\n", shape.columns,
                  shape.rows, window.left, window.right, window.bottom, window.top, low, high);
  constexpr int kPerLine = 10;
  for (std::size_t node = 0; node < heads.size(); ++node) {
    const int column = static_cast<int>(node % static_cast<std::size_t>(shape.columns));
    if (heads[node] >= kBlank) {
      text += "1.70141E+38";
    } else {
      fmt::format_to(std::back_inserter(text), "{:.9g}", heads[node] + 0.0);
    }
    const bool row_ends = column + 1 == shape.columns;
    text += row_ends ? "\r\n\r\n" : (column % kPerLine == kPerLine - 1 ? "\r\n" : " ");
    if (!row_ends) continue;
    write(text);
    text.clear();
  }
}

}  // namespace vadox1
