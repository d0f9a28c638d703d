// What a command does to the rows of a project: each row that was touched as it was before and as it is now.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "store/value.h"

struct sqlite3;

namespace ormel {

class Connection;
class Database;

/// The contents of a row, in the order of its table's fields and as the file holds them: Booleans are whole
/// numbers, dates are texts.  Packed, because a long import is kept whole.
class RowImage {
 public:
  void Add(const Value& value);
  std::vector<Value> Values() const;
  friend bool operator==(const RowImage&, const RowImage&) = default;

 private:
  std::string bytes_;
};

struct RowChange {
  std::string table;     ///< as the file writes it
  std::int64_t row = 0;  ///< number of the row within its table
  /// Nothing: the row was not there, or is no more.
  std::optional<RowImage> before, after;
  /// Names of the contents, in their order.
  std::shared_ptr<const std::vector<std::string>> fields;

  /// A field's content before or after; empty where there was no row or is no such field.
  Value Field(std::string_view field, bool of_before) const;
};

/// Of one connection.  It keeps a row's contents from before its first change and reads what it has become
/// only when it is asked, so that statements and transactions that were undone on the way leave no trace.
class ChangeLog {
 public:
  explicit ChangeLog(sqlite3* handle) : handle_(handle) {}
  ChangeLog(const ChangeLog&) = delete;
  ChangeLog& operator=(const ChangeLog&) = delete;

  /// Only rows of these tables are kept.
  void Watch(const std::vector<std::string>& tables);
  /// A row is about to change; called by SQLite's pre-update hook.
  void Touch(int operation, const char* table, std::int64_t row, std::int64_t new_row);
  /// The rows that are not as they were at the last call, in the order of their first change.
  std::vector<RowChange> Take(Connection& connection);

 private:
  struct Watched {
    std::string name;
    std::unordered_map<std::int64_t, std::size_t> seen;  ///< place in `touched_` by the row's number
  };
  struct Touched {
    std::size_t table;
    std::int64_t row;
    std::optional<RowImage> before;
  };
  void Keep(std::size_t table, std::int64_t row, bool exists);
  RowImage ReadOld() const;

  sqlite3* handle_;
  std::vector<Watched> tables_;
  std::vector<Touched> touched_;
};

/// One field of a row that is to be put back.
struct FieldValue {
  std::string field;
  Value value;
};

/// Puts rows back, by their number.  Each throws StoreError when the row is not as the caller believes.
void PutRow(Database& database, std::string_view table, std::int64_t row, const RowImage& contents);
void SetFields(Database& database, std::string_view table, std::int64_t row,
               const std::vector<FieldValue>& fields);
void RemoveRow(Database& database, std::string_view table, std::int64_t row);

}  // namespace ormel
