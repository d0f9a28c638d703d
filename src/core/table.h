// Rows and columns to look at, to sort, to copy and to save: what a form's table control shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "store/value.h"
#include "text/masks.h"

namespace ormel {

struct TableColumn {
  std::string name;     ///< heading of a saved file
  std::string caption;  ///< heading on the screen; a line break before its unit
  std::string mask{};   ///< of its numbers; empty: up to 15 digits
  bool number = true;   ///< aligned to the right
  /// A number that stands for something else, and what is shown in its place.
  std::optional<double> special{};
  std::string special_text{};
};

/// Kept whole in memory, so that it is a picture of one moment: what changes the store later does not change
/// it.  Rows are counted from 0 in their present order.
class Table {
 public:
  explicit Table(std::vector<TableColumn> columns);

  /// Adds a row; fewer values than columns leave the rest empty, more are an error of the program.
  void AddRow(std::vector<Value> values);
  void Reserve(std::size_t rows);

  const std::vector<TableColumn>& columns() const { return columns_; }
  std::size_t Rows() const { return order_.size(); }
  const Value& At(std::size_t row, std::size_t column) const;
  /// The number of the row by which AddRow made it.
  std::size_t Source(std::size_t row) const { return order_[row]; }
  /// As the screen shows it.
  std::string Text(std::size_t row, std::size_t column) const;
  /// Aligns a column as texts, or as numbers.
  void AlignLeft(std::size_t column, bool on) { columns_[column].number = !on; }
  void Change(std::size_t row, std::size_t column, Value value);

  /// Numbers by value, texts without regard to case; empty cells come first.  Equal rows keep their order.
  void Sort(std::size_t column, bool descending);
  /// Column and direction of the last Sort.
  std::optional<std::size_t> sorted_by() const { return sorted_by_; }
  bool descending() const { return descending_; }

  /// Lines of cells separated by tabs, as spreadsheets take them, numbers with all their digits: headings,
  /// then these rows; all rows when the list is empty.
  std::string Tabbed(std::span<const int> rows) const;
  /// The headings and one row of a file of comma-separated values (RFC 4180), without line ends.
  std::string CsvHeadings() const;
  std::string CsvRow(std::size_t row) const;

  /// Grows with each change and each sorting.
  long revision() const { return revision_; }

 private:
  template <class Quote>
  std::string Join(std::size_t row, char separator, Quote quote) const;

  std::vector<TableColumn> columns_;
  std::vector<std::optional<NumberMask>> masks_;
  std::vector<Value> cells_;
  std::vector<std::uint32_t> order_;
  std::optional<std::size_t> sorted_by_;
  bool descending_ = false;
  long revision_ = 0;
};

}  // namespace ormel
