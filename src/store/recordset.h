// A set of rows with a current row, over any select.
//
// Kinds, chosen by the statement:
//   table   "select * from T": the whole table by row number.  Opening, Requery, RecordCount and moves cost
//   the same
//           however long the table is; rows that others add or change are seen at once.
//   keyset  one table, plain fields, with "where" or "order by": the rows are fixed at opening, their
//   contents are read
//           as they are now; rows that others delete are passed over.
//   list    everything else (joins, sums, computed columns): read whole at opening, not updatable.
// Opening stands on the first row.  Field names ignore case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "store/value.h"

namespace ormel {

class Connection;
class Recordset;

/// One field of the current row (or of the row being added or edited).  Short-lived: do not keep.
class FieldRef {
 public:
  FieldRef(Recordset& recordset, std::size_t index) : recordset_(recordset), index_(index) {}

  template <class T>
  requires(!std::is_same_v<std::remove_cvref_t<T>, FieldRef>) const FieldRef& operator=(
      T&& value) const {  // NOLINT(misc-unconventional-assign-operator): a reference to a field
    Set(Value(std::forward<T>(value)));
    return *this;
  }
  const FieldRef& operator=(const FieldRef& other) const {  // NOLINT: copies the field's content
    Set(other.value());
    return *this;
  }
  FieldRef(const FieldRef&) = default;

  const Value& value() const;
  bool IsNull() const { return value().IsNull(); }
  bool AsBool() const { return value().AsBool(); }
  std::int64_t AsLong() const { return value().AsLong(); }
  double AsDouble() const { return value().AsDouble(); }
  std::string AsText() const { return value().AsText(); }
  void Set(const Value& value) const;

 private:
  Recordset& recordset_;
  std::size_t index_;
};

/// Names a row of the recordset that gave it.
struct Bookmark {
  std::int64_t row = 0;
  friend bool operator==(const Bookmark&, const Bookmark&) = default;
};

class Recordset {
 public:
  Recordset();  // open on nothing
  Recordset(const std::shared_ptr<Connection>& connection, std::string_view sql,
            std::vector<Value> parameters);
  ~Recordset();
  Recordset(Recordset&&) noexcept;
  Recordset& operator=(Recordset&&) noexcept;

  bool IsOpen() const { return rows_ != nullptr; }
  void Close();
  bool Updatable() const;

  // Moving.  With no rows IsBOF and IsEOF are both true; MoveFirst and MoveLast then do nothing.  MoveNext at
  // EOF and MovePrevious at BOF throw.
  bool IsBOF() const;
  bool IsEOF() const;
  /// True while there is a current row: `while (rs.HasRow()) { ...; rs.MoveNext(); }`.
  bool HasRow() const;
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();
  std::int64_t RecordCount() const;
  /// Runs the statement anew and stands on the first row.
  void Requery();

  /// First row, in the recordset's order, that meets a condition such as "VID=5" or "Label='North'".  When
  /// there is none NoMatch() is true and the current row stays.  Fast where the field has an index, and on
  /// lists.
  bool FindFirst(std::string_view criteria);
  /// The same for field = value, without making a text of it.
  bool FindKey(std::string_view field, const Value& value);
  bool NoMatch() const { return no_match_; }

  Bookmark GetBookmark() const;
  void SetBookmark(Bookmark bookmark);

  // Changing rows.  AddNew gives a row with the fields' defaults and its automatic number; Edit a copy of the
  // current row.  Update writes it and stands on it; when that fails the stored row is as it was and the edit
  // goes on, until Update succeeds or CancelUpdate or a move drops it.  An automatic number once given is
  // never given again.
  void AddNew();
  void Edit();
  void Update();
  void CancelUpdate();
  /// Deletes the current row; there is none then until the next move: MoveNext goes to the row behind it.
  void Delete();

  // Fields.  A name that the rows do not have throws StoreError, so ask HasField for fields that older files
  // lack.
  FieldRef operator[](std::string_view field);
  FieldRef operator[](const char* field) { return (*this)[std::string_view(field)]; }
  FieldRef operator[](std::size_t index);
  FieldRef operator[](int index) { return (*this)[static_cast<std::size_t>(index)]; }
  const Value& Get(std::string_view field) const;
  const Value& Get(std::size_t index) const;
  template <class T>
  T Get(std::string_view field) const;  // double, std::int64_t, int, bool, std::string
  template <class T>
  T Get(std::size_t index) const;
  void Set(std::string_view field, const Value& value);
  void Set(std::size_t index, const Value& value);
  bool HasField(std::string_view field) const;
  std::size_t FieldCount() const;
  const std::string& FieldName(std::size_t index) const;
  std::size_t FieldIndex(std::string_view field) const;

  class Rows;  // the three kinds; see recordset_rows.h

 private:
  enum class Editing { kNo, kAdd, kEdit };
  Rows& rows();
  const Rows& rows() const;
  void EndEdit();

  std::unique_ptr<Rows> rows_;
  Editing editing_ = Editing::kNo;
  std::vector<Value> buffer_;
  std::vector<bool> changed_;
  bool no_match_ = false;
};

namespace detail {
template <class T>
T As(const Value& value) {
  if constexpr (std::is_same_v<T, bool>) {
    return value.AsBool();
  } else if constexpr (std::is_integral_v<T>) {
    return static_cast<T>(value.AsLong());
  } else if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(value.AsDouble());
  } else {
    return T(value.AsText());
  }
}
}  // namespace detail

template <class T>
T Recordset::Get(std::string_view field) const {
  return detail::As<T>(Get(field));
}
template <class T>
T Recordset::Get(std::size_t index) const {
  return detail::As<T>(Get(index));
}

}  // namespace ormel
