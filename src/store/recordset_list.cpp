// Row sets over any select, read whole.
#include <array>
#include <cstring>
#include <utility>

#include "store/recordset_rows.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {

namespace {

/// The same for contents that a comparison takes as equal.
std::string HashKey(const Value& value) {
  if (!value.IsNumber()) return "t" + FoldCase(value.AsText());
  double number = value.AsDouble();
  if (number == 0.0) number = 0.0;  // not -0
  std::string key(1 + sizeof number, 'n');
  std::memcpy(key.data() + 1, &number, sizeof number);
  return key;
}

}  // namespace

ListRows::ListRows(std::shared_ptr<Connection> connection, std::string native_sql,
                   std::vector<Value> parameters)
    : Rows(std::move(connection)), sql_(std::move(native_sql)), parameters_(std::move(parameters)) {}

void ListRows::Open() {
  PreparedStatement statement(connection_, sql_);
  int index = 0;
  for (const Value& value : parameters_) statement.Bind(++index, value);
  const int count = statement.ColumnCount();
  columns_.clear();
  std::vector<bool> declared(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    bool known = false;
    const schema::FieldType type = statement.ColumnType(i, known);
    columns_.push_back({"", statement.ColumnName(i), type, Value()});
    declared[static_cast<std::size_t>(i)] = known;
  }
  rows_.clear();
  positions_.clear();
  positions_.resize(columns_.size());
  while (statement.Step()) {
    std::vector<Value>& row = rows_.emplace_back();
    row.reserve(columns_.size());
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const int column = static_cast<int>(i);
      row.push_back(declared[i] ? statement.Column(column, columns_[i].type) : statement.Column(column));
    }
  }
  First();
}

void ListRows::Settle() {
  const auto size = static_cast<std::ptrdiff_t>(rows_.size());
  place_ = position_ < 0 ? Place::kBefore : position_ >= size ? Place::kBehind : Place::kOn;
}

void ListRows::First() {
  position_ = rows_.empty() ? -1 : 0;
  Settle();
}

void ListRows::Last() {
  position_ = static_cast<std::ptrdiff_t>(rows_.size()) - 1;
  Settle();
}

void ListRows::Next() {
  ++position_;
  Settle();
}

void ListRows::Previous() {
  --position_;
  Settle();
}

const std::vector<Value>& ListRows::Row() {
  if (place_ != Place::kOn) ThrowNoRow();
  return rows_[static_cast<std::size_t>(position_)];
}

bool ListRows::FindKey(std::size_t column, const Value& value) {
  std::unique_ptr<Positions>& positions = positions_[column];
  if (!positions) {
    positions = std::make_unique<Positions>();
    positions->reserve(rows_.size());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      if (!rows_[i][column].IsNull()) positions->emplace(HashKey(rows_[i][column]), i);
    }
  }
  const auto found = positions->find(HashKey(value));
  if (value.IsNull() || found == positions->end()) return false;
  position_ = static_cast<std::ptrdiff_t>(found->second);
  Settle();
  return true;
}

bool ListRows::Find(std::string_view native_criteria) {
  std::string fields;
  for (const ColumnInfo& column : columns_) {
    fields += (fields.empty() ? "? collate nocase as " : ",? collate nocase as ") + QuoteName(column.name);
  }
  PreparedStatement test(connection_,
                         "select 1 from (select " + fields + ") where " + std::string(native_criteria));
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    for (std::size_t i = 0; i < columns_.size(); ++i) test.Bind(static_cast<int>(i) + 1, rows_[row][i]);
    if (test.Step()) {
      position_ = static_cast<std::ptrdiff_t>(row);
      Settle();
      return true;
    }
    test.Reset();
  }
  return false;
}

Bookmark ListRows::Mark() {
  if (place_ != Place::kOn) ThrowNoRow();
  return {position_};
}

void ListRows::GoTo(Bookmark mark) {
  if (mark.row < 0 || mark.row >= Count()) ThrowNoRow();
  position_ = mark.row;
  Settle();
}

}  // namespace ormel
