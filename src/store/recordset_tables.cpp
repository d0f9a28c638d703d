// Row sets over one table: the whole table, and a fixed set of its rows.
#include <algorithm>
#include <utility>

#include "store/recordset_rows.h"
#include "text/strings.h"

namespace ormel {

namespace {

constexpr std::int64_t kGone = INT64_MIN;  // in place of a row number: the row has been deleted

}  // namespace

// --- both kinds ---

TableBackedRows::TableBackedRows(std::shared_ptr<Connection> connection, const dialect::SelectInfo& info)
    : Rows(std::move(connection)),
      table_(connection_->Table(info.table)),
      table_sql_(QuoteName(table_.name)) {
  if (info.fields.empty()) {
    columns_ = table_.columns;
  } else {
    for (const std::string& field : info.fields) {
      columns_.push_back(table_.columns[static_cast<std::size_t>(table_.Index(field))]);
    }
  }
  for (const ColumnInfo& column : columns_) fields_sql_ += "," + QuoteName(column.name);
  row_sql_ = Select("where rowid=?");
}

std::string TableBackedRows::Select(std::string_view tail) const {
  return "select rowid" + fields_sql_ + " from " + table_sql_ + " " + std::string(tail);
}

bool TableBackedRows::Load(const std::string& sql, std::initializer_list<Value> parameters) {
  PreparedStatement statement(connection_, sql);
  int index = 0;
  for (const Value& value : parameters) statement.Bind(++index, value);
  if (!statement.Step()) return false;
  number_ = statement.ColumnLong(0);
  row_.resize(columns_.size());
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    row_[i] = statement.Column(static_cast<int>(i) + 1, columns_[i].type);
  }
  loaded_at_ = connection_->change_count();
  place_ = Place::kOn;
  return true;
}

bool TableBackedRows::LoadRow(std::int64_t number) {
  return Load(row_sql_, {number});
}

const std::vector<Value>& TableBackedRows::Row() {
  if (place_ != Place::kOn) ThrowNoRow();
  if (loaded_at_ != connection_->change_count() && !LoadRow(number_)) {
    place_ = Place::kDeleted;
    ThrowNoRow();
  }
  return row_;
}

Bookmark TableBackedRows::Mark() {
  if (place_ != Place::kOn) ThrowNoRow();
  return {number_};
}

std::vector<Value> TableBackedRows::NewRow() {
  if (!Updatable()) ThrowNotUpdatable();
  std::vector<Value> values;
  values.reserve(columns_.size());
  for (const ColumnInfo& column : columns_) values.push_back(column.default_value);
  if (table_.automatic >= 0) {
    const int column = FindColumn(table_.columns[static_cast<std::size_t>(table_.automatic)].name);
    if (column >= 0) values[static_cast<std::size_t>(column)] = connection_->NextNumber(table_);
  }
  return values;
}

void TableBackedRows::Insert(const std::vector<Value>& values, const std::vector<bool>&) {
  std::string names;
  std::string places;
  for (const ColumnInfo& column : columns_) {
    names += (names.empty() ? "" : ",") + QuoteName(column.name);
    places += places.empty() ? "?" : ",?";
  }
  const bool hidden_number = table_.automatic >= 0 &&
                             FindColumn(table_.columns[static_cast<std::size_t>(table_.automatic)].name) < 0;
  if (hidden_number) {
    names += "," + QuoteName(table_.columns[static_cast<std::size_t>(table_.automatic)].name);
    places += ",?";
  }
  {
    PreparedStatement statement(connection_,
                                "insert into " + table_sql_ + "(" + names + ") values(" + places + ")");
    int index = 0;
    for (const Value& value : values) statement.Bind(++index, value);
    if (hidden_number) statement.Bind(++index, connection_->NextNumber(table_));
    statement.Step();
  }
  const std::int64_t number = connection_->LastRow();
  Added(number);
  LoadRow(number);
}

void TableBackedRows::Change(const std::vector<Value>& values, const std::vector<bool>& changed) {
  if (!Updatable()) ThrowNotUpdatable();
  Row();  // throws when another has deleted it
  std::string sets;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (changed[i]) sets += (sets.empty() ? "" : ",") + QuoteName(columns_[i].name) + "=?";
  }
  if (sets.empty()) return;
  {
    PreparedStatement statement(connection_, "update " + table_sql_ + " set " + sets + " where rowid=?");
    int index = 0;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (changed[i]) statement.Bind(++index, values[i]);
    }
    statement.Bind(++index, number_);
    statement.Step();
  }
  if (table_.automatic < 0) return;
  const int key = FindColumn(table_.columns[static_cast<std::size_t>(table_.automatic)].name);
  if (key >= 0 && changed[static_cast<std::size_t>(key)])
    number_ = values[static_cast<std::size_t>(key)].AsLong();
}

void TableBackedRows::Remove() {
  if (!Updatable()) ThrowNotUpdatable();
  Row();
  {
    PreparedStatement statement(connection_, "delete from " + table_sql_ + " where rowid=?");
    statement.Bind(1, number_);
    statement.Step();
  }
  place_ = Place::kDeleted;
  Removed();
}

// --- the whole table ---

TableRows::TableRows(std::shared_ptr<Connection> connection, const dialect::SelectInfo& info)
    : TableBackedRows(std::move(connection), info),
      first_sql_(Select("order by rowid limit 1")),
      last_sql_(Select("order by rowid desc limit 1")),
      next_sql_(Select("where rowid>? order by rowid limit 1")),
      previous_sql_(Select("where rowid<? order by rowid desc limit 1")) {}

void TableRows::First() {
  if (!Load(first_sql_, {})) place_ = Place::kBefore;
}

void TableRows::Last() {
  if (!Load(last_sql_, {})) place_ = Place::kBehind;
}

void TableRows::Next() {
  if (place_ == Place::kBefore) return First();
  if (!Load(next_sql_, {number_})) place_ = Place::kBehind;
}

void TableRows::Previous() {
  if (place_ == Place::kBehind) return Last();
  if (!Load(previous_sql_, {number_})) place_ = Place::kBefore;
}

bool TableRows::FindKey(std::size_t column, const Value& value) {
  return Load(Select("where " + QuoteName(columns_[column].name) + "=? order by rowid limit 1"), {value});
}

bool TableRows::Find(std::string_view native_criteria) {
  return Load(Select("where (" + std::string(native_criteria) + ") order by rowid limit 1"), {});
}

void TableRows::GoTo(Bookmark mark) {
  if (LoadRow(mark.row)) return;
  throw StoreError(StoreErrorCode::kRowDeleted,
                   "The marked row of table " + table_.name + " has been deleted.", table_.name);
}

void TableRows::Added(std::int64_t number) {
  number_ = number;
}

// --- a fixed set ---

KeysetRows::KeysetRows(std::shared_ptr<Connection> connection, const dialect::SelectInfo& info,
                       std::vector<Value> parameters)
    : TableBackedRows(std::move(connection), info), parameters_(std::move(parameters)) {
  // Rows that the order leaves equal come in the table's order.
  keys_sql_ = "select rowid from " + table_sql_ + " " + info.tail + " order by " +
              (info.order.empty() ? "rowid" : info.order + ",rowid");
}

void KeysetRows::Open() {
  keys_.clear();
  positions_.clear();
  {
    PreparedStatement statement(connection_, keys_sql_);
    int index = 0;
    for (const Value& value : parameters_) statement.Bind(++index, value);
    while (statement.Step()) keys_.push_back(statement.ColumnLong(0));
  }
  counted_at_ = connection_->change_count();
  First();
}

std::int64_t KeysetRows::Count() {
  if (counted_at_ != connection_->change_count()) {
    PreparedStatement statement(connection_, "select 1 from " + table_sql_ + " where rowid=?");
    for (std::int64_t& key : keys_) {
      if (key == kGone) continue;
      statement.Bind(1, key);
      if (!statement.Step()) key = kGone;
      statement.Reset();
    }
    counted_at_ = connection_->change_count();
  }
  return static_cast<std::int64_t>(keys_.size()) - std::count(keys_.begin(), keys_.end(), kGone);
}

/// To the nearest row that is still there, from `from` on in steps of `step`.
void KeysetRows::Move(std::ptrdiff_t from, int step) {
  const auto size = static_cast<std::ptrdiff_t>(keys_.size());
  for (position_ = from; position_ >= 0 && position_ < size; position_ += step) {
    std::int64_t& key = keys_[static_cast<std::size_t>(position_)];
    if (key != kGone && LoadRow(key)) return;
    key = kGone;
  }
  position_ = std::clamp<std::ptrdiff_t>(position_, -1, size);
  place_ = position_ < 0 ? Place::kBefore : Place::kBehind;
}

void KeysetRows::First() {
  Move(0, 1);
  if (place_ == Place::kBehind) {
    place_ = Place::kBefore;
    position_ = -1;
  }
}

void KeysetRows::Last() {
  const auto size = static_cast<std::ptrdiff_t>(keys_.size());
  Move(size - 1, -1);
  if (place_ == Place::kBefore) {
    place_ = Place::kBehind;
    position_ = size;
  }
}

void KeysetRows::Next() {
  Move(position_ + 1, 1);
}

void KeysetRows::Previous() {
  Move(position_ - 1, -1);
}

void KeysetRows::BuildPositions() {
  if (!positions_.empty() || keys_.empty()) return;
  positions_.reserve(keys_.size());
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    if (keys_[i] != kGone) positions_.emplace(keys_[i], i);
  }
}

/// Goes to the first row of this set among the row numbers that the statement gives.
bool KeysetRows::FindFirstOf(PreparedStatement& numbers) {
  BuildPositions();
  std::size_t best = keys_.size();
  while (numbers.Step()) {
    const auto found = positions_.find(numbers.ColumnLong(0));
    if (found != positions_.end()) best = std::min(best, found->second);
  }
  if (best == keys_.size() || !LoadRow(keys_[best])) return false;
  position_ = static_cast<std::ptrdiff_t>(best);
  return true;
}

bool KeysetRows::FindKey(std::size_t column, const Value& value) {
  PreparedStatement numbers(
      connection_, "select rowid from " + table_sql_ + " where " + QuoteName(columns_[column].name) + "=?");
  numbers.Bind(1, value);
  return FindFirstOf(numbers);
}

bool KeysetRows::Find(std::string_view native_criteria) {
  PreparedStatement numbers(connection_,
                            "select rowid from " + table_sql_ + " where " + std::string(native_criteria));
  return FindFirstOf(numbers);
}

void KeysetRows::GoTo(Bookmark mark) {
  BuildPositions();
  const auto found = positions_.find(mark.row);
  if (found == positions_.end() || !LoadRow(mark.row)) {
    throw StoreError(StoreErrorCode::kRowDeleted,
                     "The marked row of table " + table_.name + " has been deleted.", table_.name);
  }
  position_ = static_cast<std::ptrdiff_t>(found->second);
}

void KeysetRows::Added(std::int64_t number) {
  position_ = static_cast<std::ptrdiff_t>(keys_.size());
  if (!positions_.empty()) positions_.emplace(number, keys_.size());
  keys_.push_back(number);
}

void KeysetRows::Removed() {
  positions_.erase(keys_[static_cast<std::size_t>(position_)]);
  keys_[static_cast<std::size_t>(position_)] = kGone;
}

}  // namespace ormel
