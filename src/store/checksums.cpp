#include "store/checksums.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>

#include "store/change_log.h"
#include "store/connection.h"
#include "store/database.h"
#include "store/schema.h"

namespace ormel {
namespace {

constexpr const char* kTable = "Checksums";

std::uint64_t Mix(std::uint64_t hash, std::uint64_t value) {  // splitmix64 (Vigna, 2015)
  std::uint64_t z = hash + 0x9E3779B97F4A7C15ULL + value;
  z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27U)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31U);
}

std::uint64_t Mix(std::uint64_t hash, std::string_view text) {
  hash = Mix(hash, text.size());
  while (!text.empty()) {
    std::uint64_t eight = 0;
    const std::size_t count = std::min<std::size_t>(text.size(), 8);
    std::memcpy(&eight, text.data(), count);
    hash = Mix(hash, eight);
    text.remove_prefix(count);
  }
  return hash;
}

std::uint64_t Mix(std::uint64_t hash, const Value& value) {
  if (value.IsNull()) return Mix(hash, std::uint64_t{1});
  if (const auto* number = std::get_if<double>(&value.data())) {
    // A whole number may come back from the file as one or the other.
    const double plain = *number == 0.0 ? 0.0 : *number;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &plain, sizeof bits);
    return Mix(Mix(hash, std::uint64_t{2}), bits);
  }
  if (value.IsNumber()) return Mix(Mix(hash, std::uint64_t{3}), static_cast<std::uint64_t>(value.AsLong()));
  const std::string text = value.AsText();
  return Mix(Mix(hash, std::uint64_t{4}), std::string_view(text));
}

std::uint64_t HashOf(std::int64_t row, const std::vector<Value>& values) {
  std::uint64_t hash = Mix(0, static_cast<std::uint64_t>(row));
  for (const Value& value : values) hash = Mix(hash, value);
  return hash;
}

struct Sum {
  std::int64_t rows = 0;
  std::uint64_t hash = 0;
};

Sum SumOf(const std::shared_ptr<Connection>& connection, std::string_view table) {
  Sum sum;
  PreparedStatement query(connection, "select rowid,* from " + QuoteName(table));
  std::vector<Value> values;
  while (query.Step()) {
    values.clear();
    for (int i = 1; i < query.ColumnCount(); ++i) values.push_back(query.Column(i));
    sum.hash += HashOf(query.ColumnLong(0), values);
    ++sum.rows;
  }
  return sum;
}

// As text: the numbers of the store have no 64 bits without a sign.
std::string Hex(std::uint64_t number) {
  std::string text;
  for (int shift = 60; shift >= 0; shift -= 4)
    text += "0123456789abcdef"[(number >> static_cast<unsigned>(shift)) & 15U];
  return text;
}

std::uint64_t FromHex(std::string_view text) {
  std::uint64_t number = 0;
  for (const char c : text)
    number = number * 16 + static_cast<std::uint64_t>(c <= '9' ? c - '0' : c - 'a' + 10);
  return number;
}

void Store(const std::shared_ptr<Connection>& connection, std::string_view table, const Sum& sum) {
  PreparedStatement put(connection, "insert or replace into Checksums(TableName,Rows,Sum) values(?,?,?)");
  put.Bind(1, Value(std::string(table)));
  put.Bind(2, sum.rows);
  put.Bind(3, Value(Hex(sum.hash)));
  put.Run();
}

std::optional<Sum> Stored(const std::shared_ptr<Connection>& connection, std::string_view table) {
  PreparedStatement get(connection, "select Rows,Sum from Checksums where TableName=?");
  get.Bind(1, Value(std::string(table)));
  if (!get.Step()) return std::nullopt;
  return Sum{get.ColumnLong(0), FromHex(get.ColumnText(1))};
}

/// From an empty log on.
void Watch(ChangeLog& log) {
  std::vector<std::string> tables;
  for (const schema::Table& table : schema::Tables()) tables.emplace_back(table.name);
  log.Watch(tables);
}

void StoreAll(const std::shared_ptr<Connection>& connection) {
  for (const schema::Table& table : schema::Tables())
    if (connection->HasTable(table.name)) Store(connection, table.name, SumOf(connection, table.name));
}

}  // namespace

std::vector<ChangedTable> ForeignChanges(const Database& database) {
  std::vector<ChangedTable> changed;
  const std::shared_ptr<Connection>& connection = database.connection();
  if (!connection->HasTable(kTable)) return changed;
  for (const schema::Table& table : schema::Tables()) {
    const std::optional<Sum> then = Stored(connection, table.name);
    if (!then && !connection->HasTable(table.name)) continue;
    const Sum now = connection->HasTable(table.name) ? SumOf(connection, table.name) : Sum{};
    if (!then || then->hash != now.hash || then->rows != now.rows)
      changed.push_back({std::string(table.name), then ? then->rows : 0, now.rows});
  }
  return changed;
}

void AcceptContents(Database& database) {
  Transaction all(database);
  const std::shared_ptr<Connection>& connection = database.connection();
  connection->Exec(
      "create table if not exists Checksums (TableName VARCHAR(64) PRIMARY KEY COLLATE NOCASE,"
      " Rows INTEGER, Sum VARCHAR(16))");
  connection->ForgetTables();
  StoreAll(connection);
}

SumKeeper::SumKeeper(sqlite3* handle) : log_(std::make_unique<ChangeLog>(handle)) {
  Watch(*log_);
}

SumKeeper::~SumKeeper() = default;

void SumKeeper::Touch(int operation, const char* table, std::int64_t row, std::int64_t new_row) {
  touched_ = true;
  log_->Touch(operation, table, row, new_row);
}

void SumKeeper::Write(Connection& connection) {
  if (!pending()) return;
  const bool all = stale_;
  touched_ = stale_ = false;
  const std::shared_ptr<Connection> shared = connection.shared_from_this();
  const bool kept = connection.HasTable(kTable);
  std::map<std::string, Sum> deltas;
  // Of a table that was dropped meanwhile no row can be read.
  if (!all)
    for (const RowChange& change : log_->Take(connection)) {
      Sum& delta = deltas[change.table];
      if (change.after) {
        delta.hash += HashOf(change.row, change.after->Values());
        ++delta.rows;
      }
      if (change.before) {
        delta.hash -= HashOf(change.row, change.before->Values());
        --delta.rows;
      }
    }
  if (all) Watch(*log_);
  if (kept && all) StoreAll(shared);
  if (kept && !all)
    for (const auto& [table, delta] : deltas) {
      Sum sum = Stored(shared, table).value_or(Sum{});
      sum.rows += delta.rows;
      sum.hash += delta.hash;
      Store(shared, table, sum);
    }
  touched_ = stale_ = false;
}

}  // namespace ormel
