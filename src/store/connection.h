// The open file behind a Database: statements, tables as they are in the file, counts, automatic numbers.
// For the store's own files; other folders use database.h, recordset.h and bulk.h.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "store/change_log.h"
#include "store/checksums.h"
#include "store/schema.h"
#include "store/store_error.h"
#include "store/value.h"

struct sqlite3;
struct sqlite3_stmt;

namespace ormel {

class Connection;

/// A table's field as the file declares it.
struct ColumnInfo {
  std::string table;
  std::string name;
  schema::FieldType type = schema::FieldType::kText;
  Value default_value;
  bool required = false;
};

struct TableInfo {
  std::string name;  // as written in the file
  std::vector<ColumnInfo> columns;
  int automatic = -1;  // position of the automatic number's field

  /// -1 when there is no such field.
  int Find(std::string_view field) const;
  /// Throws StoreError (kNoSuchField).
  int Index(std::string_view field) const;
};

/// `value` in the field's own type.  Throws StoreError (kWrongType) when it has none: "abc" for a number, an
/// infinity.
Value ConvertFor(const ColumnInfo& column, const Value& value);

/// "Name" for use in a statement.
std::string QuoteName(std::string_view name);
schema::FieldType TypeFromDeclaration(std::string_view declaration);

/// A statement being used; goes back to its connection's cache at its end.
class PreparedStatement {
 public:
  PreparedStatement(std::shared_ptr<Connection> connection, std::string_view native_sql);
  ~PreparedStatement();
  PreparedStatement(const PreparedStatement&) = delete;
  PreparedStatement& operator=(const PreparedStatement&) = delete;

  void Bind(int index_from_1, const Value& value);
  /// True: a row.  False: done.
  bool Step();
  void Reset();
  /// Bind-and-run for statements without rows; gives the number of rows changed.
  std::int64_t Run();

  int ColumnCount() const;
  std::string ColumnName(int column) const;
  schema::FieldType ColumnType(int column, bool& declared) const;
  Value Column(int column) const;
  Value Column(int column, schema::FieldType type) const;
  std::int64_t ColumnLong(int column) const;
  double ColumnDouble(int column) const;
  std::string_view ColumnText(int column) const;
  bool ColumnIsNull(int column) const;
  bool ReadOnly() const;
  Connection& connection() const { return *connection_; }

  // For bulk.cpp, which keeps what it knows of its fields beside its statement.
  std::vector<ColumnInfo> columns;

 private:
  friend class Connection;
  struct Entry;
  sqlite3_stmt* handle() const;
  std::shared_ptr<Connection> connection_;
  std::shared_ptr<Entry> entry_;
};

class Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(sqlite3* handle, std::string path, bool read_only);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Throws StoreError (kClosed) after Close.
  sqlite3* handle() const;
  bool open() const { return handle_ != nullptr; }
  void Close();
  const std::string& path() const { return path_; }
  bool read_only() const { return read_only_; }
  /// A copy in memory; see OpenMode::kView.
  bool viewing() const { return viewing_; }
  void SetViewing() { viewing_ = true; }
  std::string Image() const;

  /// Statements in SQLite's own dialect, without rows.
  std::int64_t Run(std::string_view native_sql);
  void Exec(const char* native_sql);
  std::int64_t LastRow() const;

  /// Valid until ForgetTables.
  const TableInfo& Table(std::string_view name);
  bool HasTable(std::string_view name);
  std::int64_t RowCount(const TableInfo& table);
  /// Reserves an automatic number.
  std::int64_t NextNumber(const TableInfo& table);
  std::uint64_t change_count() const { return change_count_; }
  ChangeLog& changes() { return *log_; }
  /// After statements whose effect on whole tables is not seen row by row.
  void ForgetCounts();
  /// After statements that changed the tables themselves.
  void ForgetTables();

  // Transactions; see Transaction in database.h.
  void Begin();
  void Commit();
  void Rollback();
  int depth() const { return depth_; }

  [[noreturn]] void Fail(int code, std::string_view sql);

 private:
  friend class PreparedStatement;
  struct TableState {
    std::int64_t count = -1;       // -1: not counted
    std::int64_t next_number = 0;  // 0: not known
  };
  std::shared_ptr<PreparedStatement::Entry> Take(std::string_view native_sql);
  void GiveBack(const std::shared_ptr<PreparedStatement::Entry>& entry);
  void Evict();
  void Install();
  void RowChanged(int operation, const char* table, std::int64_t row);
  TableState& State(std::string_view table);
  void RefuseAfterUndoing();
  void WriteSums();

  sqlite3* handle_;
  std::string path_;
  bool read_only_;
  bool viewing_ = false;
  int depth_ = 0;
  std::uint64_t change_count_ = 0;
  std::uint64_t clock_ = 0;
  std::unique_ptr<ChangeLog> log_;
  std::unique_ptr<SumKeeper> sums_;
  std::unordered_map<std::string, std::shared_ptr<PreparedStatement::Entry>> cache_;
  std::unordered_set<PreparedStatement::Entry*> live_;
  std::unordered_map<std::string, std::unique_ptr<TableInfo>> tables_;  // by folded name
  std::unordered_map<std::string, TableState> states_;                  // by name as in the file
};

/// Opens a project file after looking at it; see Database::Open.
std::shared_ptr<Connection> OpenProjectFile(const std::string& path, bool read_only);
std::shared_ptr<Connection> OpenProjectView(const std::string& path);
std::shared_ptr<Connection> CreateProjectFile(const std::string& path);

}  // namespace ormel
