// Many rows at once: one prepared statement, no recordset.  Run inside a Transaction.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "store/database.h"

namespace ormel {

class PreparedStatement;

/// Adds rows to a table; fields that are not named get their defaults.
///   BulkInsert rows(database, "TPResults", {"Label", "VID", "ObsHead"});
///   rows.Row(label, vid, head);
class BulkInsert {
 public:
  BulkInsert(Database& database, std::string_view table, std::initializer_list<std::string_view> fields);
  ~BulkInsert();

  template <class... T>
  void Row(const T&... values) {
    Start(sizeof...(values));
    std::size_t index = 0;
    (Bind(index++, Value(values)), ...);
    Step();
  }
  /// The automatic number of the row added last.
  std::int64_t LastNumber() const;

 private:
  void Start(std::size_t count);
  void Bind(std::size_t index, const Value& value);
  void Step();
  std::unique_ptr<PreparedStatement> statement_;
};

/// Changes the rows of a table whose `key` field has a given value.  Wants an index on `key`.
///   BulkUpdate rows(database, "WLResults", "VadoxLabel", {"X", "Y"});
///   if (rows.Row(label, x, y) == 0) ...   // no such row
class BulkUpdate {
 public:
  BulkUpdate(Database& database, std::string_view table, std::string_view key,
             std::initializer_list<std::string_view> fields);
  ~BulkUpdate();

  /// Gives the number of rows changed.
  template <class K, class... T>
  std::int64_t Row(const K& key, const T&... values) {
    Start(sizeof...(values));
    std::size_t index = 0;
    (Bind(index++, Value(values)), ...);
    BindKey(Value(key));
    return Step();
  }

 private:
  void Start(std::size_t count);
  void Bind(std::size_t index, const Value& value);
  void BindKey(const Value& value);
  std::int64_t Step();
  std::unique_ptr<PreparedStatement> statement_;
};

/// Reads the rows of any select once, front to back, without keeping them.  Do not change the rows being
/// read.
///   RowReader rows(database, "select VID,X,Y from Vertices where PID=? order by Seq", {pid});
///   while (rows.Next()) use(rows.Double(1), rows.Double(2));
class RowReader {
 public:
  RowReader(Database& database, std::string_view sql, std::initializer_list<Value> parameters = {});
  ~RowReader();
  RowReader(RowReader&&) noexcept;
  RowReader& operator=(RowReader&&) = delete;

  bool Next();
  /// Starts again with other parameters; the statement stays prepared.
  void Restart(std::initializer_list<Value> parameters);

  // By position from 0.  An empty field reads as 0, False or "".
  bool IsNull(int column) const;
  bool Bool(int column) const;
  std::int64_t Long(int column) const;
  double Double(int column) const;
  std::string_view Text(int column) const;  // valid until the next call of Next
  Value Get(int column) const;

  int ColumnCount() const;
  std::string ColumnName(int column) const;
  /// Position of a column by name without regard to case, -1 when there is none.
  int Column(std::string_view name) const;

 private:
  void BindAll(std::initializer_list<Value> parameters);
  std::unique_ptr<PreparedStatement> statement_;
  bool done_ = false;
};

}  // namespace ormel
