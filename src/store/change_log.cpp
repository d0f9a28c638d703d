#include "store/change_log.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>

#include "store/connection.h"
#include "store/database.h"
#include "text/strings.h"

namespace ormel {
namespace {

enum class Tag : char { kNull, kWhole, kNumber, kText };

template <class T>
void Append(std::string& bytes, const T& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <class T>
T Read(const std::string& bytes, std::size_t& at) {
  T value{};
  std::memcpy(&value, bytes.data() + at, sizeof value);
  at += sizeof value;
  return value;
}

Value ValueOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    default:
      break;
  }
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return std::string(text == nullptr ? "" : text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

/// A row that was written before its table got a field has no content for it: the field's default counts.
RowImage WithDefaults(const RowImage& image, const TableInfo& table) {
  std::vector<Value> values = image.Values();
  values.resize(table.columns.size());
  RowImage filled;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const Value& otherwise = table.columns[i].default_value;
    if (!values[i].IsNull() || otherwise.IsNull() || !table.columns[i].required) {
      filled.Add(values[i]);
    } else if (table.columns[i].type == schema::FieldType::kBoolean) {
      filled.Add(otherwise.AsLong());
    } else {
      filled.Add(otherwise);
    }
  }
  return filled;
}

std::optional<RowImage> RowNow(Connection& connection, const TableInfo& table, std::int64_t row) {
  PreparedStatement query(connection.shared_from_this(),
                          "select * from " + QuoteName(table.name) + " where rowid=?");
  query.Bind(1, row);
  if (!query.Step()) return std::nullopt;
  RowImage image;
  for (int i = 0; i < query.ColumnCount(); ++i) image.Add(query.Column(i));
  return image;
}

void MustChangeOne(std::int64_t changed, std::string_view table, std::int64_t row) {
  if (changed == 1) return;
  throw StoreError(
      StoreErrorCode::kRowDeleted,
      "Row " + std::to_string(row) + " of table " + std::string(table) + " is not there any more.",
      std::string(table));
}

}  // namespace

void RowImage::Add(const Value& value) {
  if (value.IsNull()) {
    bytes_ += static_cast<char>(Tag::kNull);
  } else if (const auto* number = std::get_if<double>(&value.data())) {
    bytes_ += static_cast<char>(Tag::kNumber);
    Append(bytes_, *number);
  } else if (value.IsNumber()) {
    bytes_ += static_cast<char>(Tag::kWhole);
    Append(bytes_, value.AsLong());
  } else {
    const std::string text = value.AsText();
    bytes_ += static_cast<char>(Tag::kText);
    Append(bytes_, static_cast<std::uint32_t>(text.size()));
    bytes_ += text;
  }
}

std::vector<Value> RowImage::Values() const {
  std::vector<Value> values;
  for (std::size_t at = 0; at < bytes_.size();) {
    switch (static_cast<Tag>(bytes_[at++])) {
      case Tag::kNull:
        values.emplace_back();
        break;
      case Tag::kWhole:
        values.emplace_back(Read<std::int64_t>(bytes_, at));
        break;
      case Tag::kNumber:
        values.emplace_back(Read<double>(bytes_, at));
        break;
      case Tag::kText: {
        const auto size = Read<std::uint32_t>(bytes_, at);
        values.emplace_back(bytes_.substr(at, size));
        at += size;
        break;
      }
    }
  }
  return values;
}

Value RowChange::Field(std::string_view field, bool of_before) const {
  const std::optional<RowImage>& image = of_before ? before : after;
  if (!image || !fields) return {};
  const std::vector<Value> values = image->Values();
  for (std::size_t i = 0; i < fields->size() && i < values.size(); ++i)
    if (EqualNoCase((*fields)[i], field)) return values[i];
  return {};
}

void ChangeLog::Watch(const std::vector<std::string>& tables) {
  tables_.clear();
  touched_.clear();
  for (const std::string& name : tables) tables_.push_back({name, {}});
}

void ChangeLog::Touch(int operation, const char* table, std::int64_t row, std::int64_t new_row) {
  const auto found = std::find_if(tables_.begin(), tables_.end(),
                                  [table](const Watched& watched) { return watched.name == table; });
  if (found == tables_.end()) return;
  const auto index = static_cast<std::size_t>(found - tables_.begin());
  if (operation != SQLITE_INSERT) Keep(index, row, true);
  if (operation == SQLITE_INSERT || new_row != row) Keep(index, new_row, false);
}

void ChangeLog::Keep(std::size_t table, std::int64_t row, bool exists) {
  if (!tables_[table].seen.emplace(row, touched_.size()).second) return;
  touched_.push_back({table, row, std::nullopt});
  if (exists) touched_.back().before = ReadOld();
}

RowImage ChangeLog::ReadOld() const {
  RowImage image;
  const int count = sqlite3_preupdate_count(handle_);
  for (int i = 0; i < count; ++i) {
    sqlite3_value* value = nullptr;
    image.Add(sqlite3_preupdate_old(handle_, i, &value) == SQLITE_OK ? ValueOf(value) : Value());
  }
  return image;
}

std::vector<RowChange> ChangeLog::Take(Connection& connection) {
  std::vector<Touched> touched = std::exchange(touched_, {});
  for (Watched& table : tables_) table.seen.clear();
  std::vector<RowChange> changes;
  std::vector<std::shared_ptr<std::vector<std::string>>> names(tables_.size());
  for (Touched& one : touched) {
    const TableInfo& table = connection.Table(tables_[one.table].name);
    std::optional<RowImage> now = RowNow(connection, table, one.row);
    if (one.before) one.before = WithDefaults(*one.before, table);
    if (now == one.before) continue;
    auto& fields = names[one.table];
    if (!fields) {
      fields = std::make_shared<std::vector<std::string>>();
      for (const ColumnInfo& column : table.columns) fields->push_back(column.name);
    }
    changes.push_back({table.name, one.row, std::move(one.before), std::move(now), fields});
  }
  return changes;
}

void PutRow(Database& database, std::string_view table, std::int64_t row, const RowImage& contents) {
  const TableInfo& info = database.connection()->Table(table);
  std::string names = "rowid", places = "?";
  for (const ColumnInfo& column : info.columns) {
    names += "," + QuoteName(column.name);
    places += ",?";
  }
  PreparedStatement insert(database.connection(),
                           "insert into " + QuoteName(info.name) + "(" + names + ") values(" + places + ")");
  int index = 1;
  insert.Bind(index, row);
  for (const Value& value : contents.Values()) insert.Bind(++index, value);
  MustChangeOne(insert.Run(), info.name, row);
}

void SetFields(Database& database, std::string_view table, std::int64_t row,
               const std::vector<FieldValue>& fields) {
  if (fields.empty()) return;
  std::string sets;
  for (const FieldValue& field : fields) sets += (sets.empty() ? "" : ",") + QuoteName(field.field) + "=?";
  PreparedStatement update(database.connection(),
                           "update " + QuoteName(table) + " set " + sets + " where rowid=?");
  int index = 0;
  for (const FieldValue& field : fields) update.Bind(++index, field.value);
  update.Bind(++index, row);
  MustChangeOne(update.Run(), table, row);
}

void RemoveRow(Database& database, std::string_view table, std::int64_t row) {
  PreparedStatement remove(database.connection(), "delete from " + QuoteName(table) + " where rowid=?");
  remove.Bind(1, row);
  MustChangeOne(remove.Run(), table, row);
}

}  // namespace ormel
