#include "store/recordset.h"

#include <utility>

#include "store/dialect.h"
#include "store/recordset_rows.h"
#include "store/select.h"
#include "text/strings.h"

namespace ormel {

namespace {

std::unique_ptr<Recordset::Rows> MakeRows(const std::shared_ptr<Connection>& connection, std::string_view sql,
                                          std::vector<Value> parameters) {
  const dialect::SelectInfo info = dialect::AnalyzeSelect(sql);
  if (!info.single_table || !connection->HasTable(info.table)) {
    return std::make_unique<ListRows>(connection, NativeSelect(connection, sql), std::move(parameters));
  }
  if (info.tail.empty() && info.order.empty()) return std::make_unique<TableRows>(connection, info);
  return std::make_unique<KeysetRows>(connection, info, std::move(parameters));
}

}  // namespace

// --- Rows: what all kinds share ---

int Recordset::Rows::FindColumn(std::string_view field) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (EqualNoCase(columns_[i].name, field)) return static_cast<int>(i);
  }
  const std::size_t point = field.rfind('.');
  return point == std::string_view::npos ? -1 : FindColumn(field.substr(point + 1));
}

void Recordset::Rows::ThrowNoRow() const {
  if (place_ == Place::kDeleted) {
    throw StoreError(StoreErrorCode::kRowDeleted, "The row has been deleted. Move to another one.");
  }
  throw StoreError(StoreErrorCode::kNoCurrentRow, "There is no current row.");
}

void Recordset::Rows::ThrowNotUpdatable() const {
  throw StoreError(StoreErrorCode::kNotUpdatable, connection_->read_only()
                                                      ? "The project is open for reading only."
                                                      : "The rows of this query cannot be changed.");
}

std::vector<Value> Recordset::Rows::NewRow() {
  ThrowNotUpdatable();
}
void Recordset::Rows::Insert(const std::vector<Value>&, const std::vector<bool>&) {
  ThrowNotUpdatable();
}
void Recordset::Rows::Change(const std::vector<Value>&, const std::vector<bool>&) {
  ThrowNotUpdatable();
}
void Recordset::Rows::Remove() {
  ThrowNotUpdatable();
}

// --- FieldRef ---

const Value& FieldRef::value() const {
  return std::as_const(recordset_).Get(index_);
}

void FieldRef::Set(const Value& value) const {
  recordset_.Set(index_, value);
}

// --- Recordset ---

Recordset::Recordset() = default;
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

Recordset::Recordset(const std::shared_ptr<Connection>& connection, std::string_view sql,
                     std::vector<Value> parameters)
    : rows_(MakeRows(connection, sql, std::move(parameters))) {
  rows_->Open();
}

void Recordset::Close() {
  rows_.reset();
  EndEdit();
}

Recordset::Rows& Recordset::rows() {
  if (!rows_) throw StoreError(StoreErrorCode::kClosed, "The recordset is not open.");
  rows_->connection().handle();  // throws when the project has been closed
  return *rows_;
}

const Recordset::Rows& Recordset::rows() const {
  return const_cast<Recordset*>(this)->rows();
}

bool Recordset::Updatable() const {
  return rows().Updatable();
}

bool Recordset::IsBOF() const {
  auto& rows = const_cast<Recordset*>(this)->rows();
  return rows.place() == Rows::Place::kBefore || (rows.place() != Rows::Place::kOn && rows.Empty());
}

bool Recordset::IsEOF() const {
  auto& rows = const_cast<Recordset*>(this)->rows();
  return rows.place() == Rows::Place::kBehind || (rows.place() != Rows::Place::kOn && rows.Empty());
}

bool Recordset::HasRow() const {
  return rows().place() == Rows::Place::kOn;
}

void Recordset::MoveFirst() {
  EndEdit();
  rows().First();
}

void Recordset::MoveLast() {
  EndEdit();
  rows().Last();
}

void Recordset::MoveNext() {
  EndEdit();
  if (rows().place() == Rows::Place::kBehind) {
    throw StoreError(StoreErrorCode::kNoCurrentRow, "There is no row behind the last one.");
  }
  rows().Next();
}

void Recordset::MovePrevious() {
  EndEdit();
  if (rows().place() == Rows::Place::kBefore) {
    throw StoreError(StoreErrorCode::kNoCurrentRow, "There is no row before the first one.");
  }
  rows().Previous();
}

std::int64_t Recordset::RecordCount() const {
  return const_cast<Recordset*>(this)->rows().Count();
}

void Recordset::Requery() {
  EndEdit();
  rows().Open();
}

bool Recordset::FindFirst(std::string_view criteria) {
  EndEdit();
  dialect::KeyCondition key;
  if (dialect::ParseKeyCondition(criteria, key)) {
    const int column = rows().FindColumn(key.field);
    if (column >= 0) {
      no_match_ = !rows().FindKey(static_cast<std::size_t>(column), key.value);
      return !no_match_;
    }
  }
  no_match_ = !rows().Find(dialect::Translate(criteria));
  return !no_match_;
}

bool Recordset::FindKey(std::string_view field, const Value& value) {
  EndEdit();
  no_match_ = !rows().FindKey(FieldIndex(field), value);
  return !no_match_;
}

Bookmark Recordset::GetBookmark() const {
  return const_cast<Recordset*>(this)->rows().Mark();
}

void Recordset::SetBookmark(Bookmark bookmark) {
  EndEdit();
  rows().GoTo(bookmark);
}

void Recordset::EndEdit() {
  editing_ = Editing::kNo;
}

void Recordset::AddNew() {
  EndEdit();
  buffer_ = rows().NewRow();
  changed_.assign(buffer_.size(), false);
  editing_ = Editing::kAdd;
}

void Recordset::Edit() {
  EndEdit();
  if (!rows().Updatable()) rows().Change({}, {});  // throws
  buffer_ = rows().Row();
  changed_.assign(buffer_.size(), false);
  editing_ = Editing::kEdit;
}

void Recordset::Update() {
  if (editing_ == Editing::kNo) {
    throw StoreError(StoreErrorCode::kUpdateWithoutEdit, "Update without AddNew or Edit before it.");
  }
  if (editing_ == Editing::kAdd) {
    rows().Insert(buffer_, changed_);
  } else {
    rows().Change(buffer_, changed_);
  }
  EndEdit();
}

void Recordset::CancelUpdate() {
  EndEdit();
}

void Recordset::Delete() {
  EndEdit();
  rows().Remove();
}

std::size_t Recordset::FieldCount() const {
  return rows().columns().size();
}

const std::string& Recordset::FieldName(std::size_t index) const {
  return rows().columns().at(index).name;
}

bool Recordset::HasField(std::string_view field) const {
  return rows().FindColumn(field) >= 0;
}

std::size_t Recordset::FieldIndex(std::string_view field) const {
  const int index = rows().FindColumn(field);
  if (index >= 0) return static_cast<std::size_t>(index);
  const auto& columns = rows().columns();
  const std::string table = columns.empty() ? "" : columns.front().table;
  throw StoreError(StoreErrorCode::kNoSuchField,
                   "The rows" + (table.empty() ? "" : " of table " + table) + " have no field " +
                       std::string(field) + ". The project may be of an older version; let it be updated.",
                   table, std::string(field));
}

FieldRef Recordset::operator[](std::string_view field) {
  return {*this, FieldIndex(field)};
}

FieldRef Recordset::operator[](std::size_t index) {
  return {*this, index};
}

const Value& Recordset::Get(std::string_view field) const {
  return Get(FieldIndex(field));
}

const Value& Recordset::Get(std::size_t index) const {
  const std::vector<Value>& row =
      editing_ == Editing::kNo ? const_cast<Recordset*>(this)->rows().Row() : buffer_;
  if (index < row.size()) return row[index];
  throw StoreError(StoreErrorCode::kNoSuchField,
                   "The rows have no field at position " + std::to_string(index) + ".");
}

void Recordset::Set(std::string_view field, const Value& value) {
  Set(FieldIndex(field), value);
}

void Recordset::Set(std::size_t index, const Value& value) {
  if (editing_ == Editing::kNo) {
    throw StoreError(StoreErrorCode::kUpdateWithoutEdit,
                     "A field is to be changed without AddNew or Edit before it.");
  }
  buffer_.at(index) = ConvertFor(rows().columns()[index], value);
  changed_[index] = true;
}

}  // namespace ormel
