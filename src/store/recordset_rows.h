// The three kinds of row sets behind a Recordset; see recordset.h.  For the store's own files.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/connection.h"
#include "store/dialect.h"
#include "store/recordset.h"

namespace ormel {

/// A set of rows and a place in it.
class Recordset::Rows {
 public:
  explicit Rows(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {}
  virtual ~Rows() = default;
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  enum class Place { kBefore, kOn, kDeleted, kBehind };
  Place place() const { return place_; }
  Connection& connection() const { return *connection_; }
  const std::vector<ColumnInfo>& columns() const { return columns_; }
  /// -1 when there is no such field.  "Table.Field" finds Field.
  int FindColumn(std::string_view field) const;

  virtual bool Updatable() const = 0;
  virtual bool Empty() = 0;
  virtual std::int64_t Count() = 0;
  virtual void Open() = 0;  // also Requery: reads the rows and stands on the first
  virtual void First() = 0;
  virtual void Last() = 0;
  virtual void Next() = 0;
  virtual void Previous() = 0;
  /// The current row's fields as they are now; throws when there is no current row.
  virtual const std::vector<Value>& Row() = 0;
  virtual bool FindKey(std::size_t column, const Value& value) = 0;
  virtual bool Find(std::string_view native_criteria) = 0;
  virtual Bookmark Mark() = 0;
  virtual void GoTo(Bookmark mark) = 0;
  // For updatable rows.  Values come in the fields' types.
  virtual std::vector<Value> NewRow();
  virtual void Insert(const std::vector<Value>& values, const std::vector<bool>& given);
  virtual void Change(const std::vector<Value>& values, const std::vector<bool>& changed);
  virtual void Remove();

 protected:
  [[noreturn]] void ThrowNoRow() const;
  [[noreturn]] void ThrowNotUpdatable() const;

  std::shared_ptr<Connection> connection_;
  std::vector<ColumnInfo> columns_;
  Place place_ = Place::kBefore;
};

/// Rows of one table, told by their row numbers.
class TableBackedRows : public Recordset::Rows {
 public:
  TableBackedRows(std::shared_ptr<Connection> connection, const dialect::SelectInfo& info);

  bool Updatable() const override { return !connection_->read_only(); }
  const std::vector<Value>& Row() override;
  Bookmark Mark() override;
  std::vector<Value> NewRow() override;
  void Insert(const std::vector<Value>& values, const std::vector<bool>& given) override;
  void Change(const std::vector<Value>& values, const std::vector<bool>& changed) override;
  void Remove() override;

 protected:
  /// Reads a row through `sql`, which gives row number and fields; false when there is none.
  bool Load(const std::string& sql, std::initializer_list<Value> parameters);
  bool LoadRow(std::int64_t number);
  std::string Select(std::string_view tail) const;
  virtual void Added(std::int64_t number) = 0;
  virtual void Removed() = 0;

  TableInfo table_;
  std::string table_sql_;
  std::string fields_sql_;
  std::int64_t number_ = 0;  // of the current row

 private:
  std::string row_sql_;
  std::vector<Value> row_;
  std::uint64_t loaded_at_ = 0;  // the connection's change count
};

/// "select * from T".
class TableRows final : public TableBackedRows {
 public:
  TableRows(std::shared_ptr<Connection> connection, const dialect::SelectInfo& info);
  bool Empty() override { return Count() == 0; }
  std::int64_t Count() override { return connection_->RowCount(table_); }
  void Open() override { First(); }
  void First() override;
  void Last() override;
  void Next() override;
  void Previous() override;
  bool FindKey(std::size_t column, const Value& value) override;
  bool Find(std::string_view native_criteria) override;
  void GoTo(Bookmark mark) override;

 private:
  void Added(std::int64_t number) override;
  void Removed() override {}
  std::string first_sql_, last_sql_, next_sql_, previous_sql_;
};

/// One table with "where" or "order by".
class KeysetRows final : public TableBackedRows {
 public:
  KeysetRows(std::shared_ptr<Connection> connection, const dialect::SelectInfo& info,
             std::vector<Value> parameters);
  bool Empty() override { return Count() == 0; }
  std::int64_t Count() override;
  void Open() override;
  void First() override;
  void Last() override;
  void Next() override;
  void Previous() override;
  bool FindKey(std::size_t column, const Value& value) override;
  bool Find(std::string_view native_criteria) override;
  void GoTo(Bookmark mark) override;

 private:
  void Added(std::int64_t number) override;
  void Removed() override;
  void Move(std::ptrdiff_t from, int step);
  bool FindFirstOf(PreparedStatement& numbers);
  void BuildPositions();

  std::string keys_sql_;
  std::vector<Value> parameters_;
  std::vector<std::int64_t> keys_;
  std::ptrdiff_t position_ = -1;
  std::unordered_map<std::int64_t, std::size_t> positions_;  // of the row numbers; built at the first search
  std::uint64_t counted_at_ = 0;
};

/// Any select, read whole.
class ListRows final : public Recordset::Rows {
 public:
  ListRows(std::shared_ptr<Connection> connection, std::string native_sql, std::vector<Value> parameters);
  bool Updatable() const override { return false; }
  bool Empty() override { return rows_.empty(); }
  std::int64_t Count() override { return static_cast<std::int64_t>(rows_.size()); }
  void Open() override;
  void First() override;
  void Last() override;
  void Next() override;
  void Previous() override;
  const std::vector<Value>& Row() override;
  bool FindKey(std::size_t column, const Value& value) override;
  bool Find(std::string_view native_criteria) override;
  Bookmark Mark() override;
  void GoTo(Bookmark mark) override;

 private:
  void Settle();
  using Positions = std::unordered_map<std::string, std::size_t>;

  std::string sql_;
  std::vector<Value> parameters_;
  std::vector<std::vector<Value>> rows_;
  std::ptrdiff_t position_ = -1;
  std::vector<std::unique_ptr<Positions>> positions_;  // by column: first row of each content
};

}  // namespace ormel
