#include "solver/grid_file.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

#include "solver/guarded_read.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kBlanks = " \t";

/// Numbers separated by blanks, across lines.
class NumberStream {
 public:
  explicit NumberStream(LineReader& lines) : lines_(lines) {}

  /// The next number.  False at the end of the file and at a text that is no number; `AtText` tells which.
  bool Next(double& value) {
    std::size_t first = 0;
    while ((first = line_.find_first_not_of(kBlanks, at_)) == std::string::npos) {
      if (!lines_.Next(line_)) return false;
      at_ = 0;
    }
    at_ = first;
    if (line_[first] == '+') ++first;
    const char* const begin = line_.data() + first;
    const char* const end = line_.data() + line_.size();
    const auto result = std::from_chars(begin, end, value);
    const bool whole = result.ptr == end || *result.ptr == ' ' || *result.ptr == '\t';
    if (result.ec != std::errc() || !whole || !std::isfinite(value)) {
      bad_ = true;
      return false;
    }
    at_ = static_cast<std::size_t>(result.ptr - line_.data());
    return true;
  }
  bool AtText() const { return bad_; }

 private:
  LineReader& lines_;
  std::string line_;
  std::size_t at_ = 0;
  bool bad_ = false;
};

std::string WhyEnded(const NumberStream& numbers, std::string_view what) {
  return std::string(numbers.AtText() ? "not a number where " : "the file ends where ") + std::string(what) +
         " should stand";
}

/// A whole number of nodes within reason.
std::optional<std::size_t> Side(double value) {
  if (value < 1.0 || value > static_cast<double>(kMaxGridSide) || value != std::floor(value))
    return std::nullopt;
  return static_cast<std::size_t>(value);
}

ReadOutcome ReadHeader(LineReader& lines, NumberStream& numbers, GridHeader& header) {
  std::string line;
  if (!lines.Next(line) || Trim(line) != "DSAA")
    return DamageAt(lines, "this is no text grid: its first line is not DSAA");
  double columns = 0.0;
  double rows = 0.0;
  double* const items[] = {&columns,      &rows,         &header.x_min, &header.x_max,
                           &header.y_min, &header.y_max, &header.z_min, &header.z_max};
  for (double* item : items)
    if (!numbers.Next(*item)) return DamageAt(lines, WhyEnded(numbers, "the size and ranges of the grid"));
  const auto column_count = Side(columns);
  const auto row_count = Side(rows);
  if (!column_count || !row_count)
    return DamageAt(lines, "a grid has 1 to " + std::to_string(kMaxGridSide) + " columns and rows");
  header.columns = *column_count;
  header.rows = *row_count;
  return std::nullopt;
}

ReadOutcome ReadGrid(LineReader& lines, const std::function<void(const GridHeader&)>& deliver_header,
                     const std::function<void(std::size_t, std::span<const double>)>& deliver_row) {
  NumberStream numbers(lines);
  GridHeader header;
  if (auto damage = ReadHeader(lines, numbers, header)) return damage;
  deliver_header(header);
  std::vector<double> row(header.columns);
  for (std::size_t j = 0; j < header.rows; ++j) {
    for (double& value : row)
      if (!numbers.Next(value)) return DamageAt(lines, WhyEnded(numbers, "a value of the grid"));
    deliver_row(j, row);
  }
  double surplus = 0.0;
  if (numbers.Next(surplus) || numbers.AtText())
    return DamageAt(lines, "the file goes on behind the last value of the grid");
  return std::nullopt;
}

}  // namespace

ReadOutcome ReadGridFile(const std::string& path, const std::function<void(const GridHeader&)>& header,
                         const std::function<void(std::size_t, std::span<const double>)>& row) {
  return ReadGuarded(path, [&](LineReader& lines) { return ReadGrid(lines, header, row); });
}

}  // namespace ormel
