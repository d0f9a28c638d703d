// A project database: one file, one connection.
//
// The program opens a project once and passes the Database along; procedures open recordsets on it and let
// them go. While a project is open for writing, no other program can open it.  Statements are in the store's
// SQL dialect (see store/dialect.h).  All failures throw StoreError.  Used from one thread.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "store/change_log.h"
#include "store/recordset.h"
#include "store/store_error.h"
#include "store/value.h"

namespace ormel {

class Connection;
struct TableInfo;

enum class OpenMode {
  kReadWrite,
  kReadOnly,
  kView,  ///< a copy in memory (store/view.h)
};

class Database {
 public:
  Database() = default;  // not open

  /// Opens a project.  A file that is none, is cut short or damaged, in use by another program, read-only or
  /// out of reach is refused with a message that says which, and stays as it was, byte for byte.  A command
  /// that a crash cut off is undone first.  Read-only: for programs that look only; shares the file with
  /// other readers.
  static Database Open(const std::string& path, OpenMode mode = OpenMode::kReadWrite);
  /// An empty database file without tables.  Refuses a path that exists.  For new projects see DBNewDatabase.
  static Database Create(const std::string& path);

  bool IsOpen() const;
  /// Commits what is open and lets the file go.  Recordsets that still refer to it refuse further use.
  void Close();
  const std::string& path() const;
  bool read_only() const;

  /// Runs a statement; gives the number of rows that it changed.  `parameters` fill "?" places in order.
  std::int64_t Execute(std::string_view sql, std::initializer_list<Value> parameters = {});
  Recordset OpenRecordset(std::string_view sql, std::initializer_list<Value> parameters = {});
  /// First field of the first row; empty when there is no row.
  Value Scalar(std::string_view sql, std::initializer_list<Value> parameters = {});

  bool HasTable(std::string_view table) const;
  bool HasField(std::string_view table, std::string_view field) const;
  /// In the order of their making.
  std::vector<std::string> TableNames() const;
  std::int64_t RowCount(std::string_view table) const;  // kept up to date, not counted anew
  /// Goes up with every change of a row, from wherever it came.
  std::uint64_t change_count() const;

  bool InTransaction() const;

  /// From now on the changes of these tables' rows are kept for TakeChanges.
  void WatchChanges(const std::vector<std::string>& tables);
  /// The rows that are not as they were at the last call.
  std::vector<RowChange> TakeChanges();

  /// For the other files of the store.
  const std::shared_ptr<Connection>& connection() const { return connection_; }

 private:
  explicit Database(std::shared_ptr<Connection> connection);
  std::shared_ptr<Connection> connection_;
};

/// One command's changes: all of them reach the file, or none.  Scopes nest; only the outermost commits.
/// Leaving the scope commits, also when an exception leaves it (what was written stays), unless Rollback()
/// was called. When the commit itself fails nothing of the command is kept; Commit(), or the destructor when
/// no other exception is under way, throws StoreError.
class Transaction {
 public:
  explicit Transaction(Database& database);
  ~Transaction() noexcept(false);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void Commit();    // at most once; the scope is over then
  void Rollback();  // undoes this scope's changes; the scope is over then

 private:
  std::shared_ptr<Connection> connection_;
  int exceptions_;
  bool done_ = false;
};

}  // namespace ormel
