#include "core/table.h"

#include <algorithm>
#include <cmath>
#include <compare>
#include <numeric>
#include <stdexcept>

#include "text/csv.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// All digits of a number, the text of anything else.
std::string FullText(const Value& value) {
  if (!value.IsNumber()) return value.AsText();
  const double number = value.AsDouble();
  return std::isfinite(number) ? value.AsText() : std::string(number < 0.0 ? "-inf" : "inf");
}

/// A tab or a line end inside a cell would break the lines of the others.
std::string OneCell(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
  return text;
}

int Compare(const Value& a, const Value& b) {
  if (a.IsNull() || b.IsNull()) return static_cast<int>(b.IsNull()) - static_cast<int>(a.IsNull());
  if (a.IsText() || b.IsText()) return CompareNoCase(a.AsText(), b.AsText());
  if (!a.IsNumber() || !b.IsNumber()) return a.AsText().compare(b.AsText());  // dates
  const double x = a.AsDouble(), y = b.AsDouble();
  return static_cast<int>(x > y) - static_cast<int>(x < y);
}

}  // namespace

Table::Table(std::vector<TableColumn> columns) : columns_(std::move(columns)) {
  masks_.reserve(columns_.size());
  for (const TableColumn& column : columns_)
    masks_.push_back(column.mask.empty() ? std::nullopt : std::optional<NumberMask>(column.mask));
}

void Table::Reserve(std::size_t rows) {
  cells_.reserve(rows * columns_.size());
  order_.reserve(rows);
}

void Table::AddRow(std::vector<Value> values) {
  if (values.size() > columns_.size()) throw std::logic_error("a table's row has more cells than columns");
  values.resize(columns_.size());
  order_.push_back(static_cast<std::uint32_t>(cells_.size() / std::max<std::size_t>(1, columns_.size())));
  std::move(values.begin(), values.end(), std::back_inserter(cells_));
  ++revision_;
}

const Value& Table::At(std::size_t row, std::size_t column) const {
  return cells_.at(order_.at(row) * columns_.size() + column);
}

void Table::Change(std::size_t row, std::size_t column, Value value) {
  cells_.at(order_.at(row) * columns_.size() + column) = std::move(value);
  ++revision_;
}

std::string Table::Text(std::size_t row, std::size_t column) const {
  const Value& value = At(row, column);
  if (!value.IsNumber()) return value.AsText();
  const double number = value.AsDouble();
  const TableColumn& how = columns_[column];
  if (how.special && number == *how.special) return how.special_text;
  if (!masks_[column] || !std::isfinite(number)) return FullText(value);
  return std::string(Trim(masks_[column]->Format(number)));
}

void Table::Sort(std::size_t column, bool descending) {
  if (column >= columns_.size()) return;
  const auto cell = [&](std::uint32_t source) -> const Value& {
    return cells_[source * columns_.size() + column];
  };
  std::stable_sort(order_.begin(), order_.end(), [&](std::uint32_t a, std::uint32_t b) {
    return descending ? Compare(cell(b), cell(a)) < 0 : Compare(cell(a), cell(b)) < 0;
  });
  sorted_by_ = column;
  descending_ = descending;
  ++revision_;
}

template <class Quote>
std::string Table::Join(std::size_t row, char separator, Quote quote) const {
  std::string line;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (i > 0) line += separator;
    line += quote(FullText(At(row, i)));
  }
  return line;
}

std::string Table::Tabbed(std::span<const int> rows) const {
  std::vector<int> all;
  if (rows.empty()) {
    all.resize(Rows());
    std::iota(all.begin(), all.end(), 0);
    rows = all;
  }
  std::string text;
  for (const TableColumn& column : columns_) text += (text.empty() ? "" : "\t") + OneCell(column.name);
  text += '\n';
  for (const int row : rows) text += Join(static_cast<std::size_t>(row), '\t', OneCell) + '\n';
  return text;
}

std::string Table::CsvHeadings() const {
  std::string line;
  for (std::size_t i = 0; i < columns_.size(); ++i) line += (i == 0 ? "" : ",") + CsvField(columns_[i].name);
  return line;
}

std::string Table::CsvRow(std::size_t row) const {
  return Join(row, ',', CsvField);
}

}  // namespace ormel
