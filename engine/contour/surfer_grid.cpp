#include "contour/surfer_grid.h"

#include <fmt/format.h>

#include <optional>

#include "files/numbers.h"
#include "files/text_lines.h"

namespace contour {
namespace {

/// Hands out the items of a text one by one, over line ends.
class Items {
 public:
  Items(std::string_view text, const std::string& name) : lines_(text), name_(name) {}

  [[noreturn]] void Fail(const std::string& what) const {
    throw ContourError(fmt::format("{}, line {}: {}.", name_, lines_.number(), what));
  }

  std::string_view Next(const char* wanted) {
    while (at_ == items_.size()) {
      if (!lines_.Next()) Fail(fmt::format("the grid ends where {} is expected; it is cut short", wanted));
      files::SplitItems(lines_.line(), items_);
      at_ = 0;
    }
    return items_[at_++];
  }

  double Number(const char* wanted) {
    const std::string_view item = Next(wanted);
    const std::optional<double> value = files::ReadNumber(item);
    if (!value) Fail(fmt::format("{} is expected, not \"{}\"", wanted, files::Printable(item, 40)));
    return *value;
  }

  int Count(const char* wanted) {
    const std::string_view item = Next(wanted);
    const std::optional<int> value = files::ReadWholeNumber(item);
    if (!value || *value < 2) {
      Fail(fmt::format("{} must be a whole number above 1, not \"{}\"", wanted, files::Printable(item, 40)));
    }
    return *value;
  }

 private:
  files::LineWalker lines_;
  const std::string& name_;
  std::vector<std::string_view> items_;
  std::size_t at_ = 0;
};

}  // namespace

Grid ReadSurferGrid(std::string_view text, const std::string& name) {
  Items items(text, name);
  if (items.Next("the mark DSAA") != "DSAA")
    items.Fail("this is no Surfer text grid, which begins with DSAA");
  Grid grid;
  grid.columns = items.Count("the number of columns");
  grid.rows = items.Count("the number of rows");
  // A node takes a digit and a separator at least, the last one a digit.
  const std::size_t nodes = static_cast<std::size_t>(grid.columns) * static_cast<std::size_t>(grid.rows);
  if (nodes > text.size() / 2 + 1) {
    items.Fail(
        fmt::format("{} x {} nodes are announced, more than the file can hold", grid.columns, grid.rows));
  }
  grid.left = items.Number("the smallest x");
  grid.right = items.Number("the largest x");
  grid.bottom = items.Number("the smallest y");
  grid.top = items.Number("the largest y");
  if (!(grid.right > grid.left) || !(grid.top > grid.bottom)) {
    items.Fail("the grid has no width or no height");
  }
  items.Number("the smallest value");
  items.Number("the largest value");
  grid.values.reserve(nodes);
  for (std::size_t node = 0; node < nodes; ++node) grid.values.push_back(items.Number("a node's value"));
  return grid;
}

}  // namespace contour
