#include "store/bulk.h"

#include "store/connection.h"
#include "store/select.h"
#include "text/strings.h"

namespace ormel {

namespace {

std::unique_ptr<PreparedStatement> Prepare(Database& database, const std::string& sql,
                                           std::vector<ColumnInfo> columns) {
  auto statement = std::make_unique<PreparedStatement>(database.connection(), sql);
  statement->columns = std::move(columns);
  return statement;
}

Connection& Opened(Database& database) {
  if (!database.IsOpen()) throw StoreError(StoreErrorCode::kClosed, "No project is open. Open one first.");
  return *database.connection();
}

std::vector<ColumnInfo> FindColumns(const TableInfo& table, std::initializer_list<std::string_view> fields) {
  std::vector<ColumnInfo> columns;
  for (const std::string_view field : fields)
    columns.push_back(table.columns[static_cast<std::size_t>(table.Index(field))]);
  return columns;
}

void CheckCount(std::size_t given, std::size_t wanted) {
  if (given == wanted) return;
  throw StoreError(
      StoreErrorCode::kMissingParameter,
      "A row of " + std::to_string(given) + " values was given for " + std::to_string(wanted) + " fields.");
}

void BindField(PreparedStatement& statement, std::size_t index, const Value& value) {
  statement.Bind(static_cast<int>(index) + 1, ConvertFor(statement.columns[index], value));
}

}  // namespace

BulkInsert::BulkInsert(Database& database, std::string_view table,
                       std::initializer_list<std::string_view> fields) {
  const TableInfo& info = Opened(database).Table(table);
  std::string names;
  std::string places;
  for (const ColumnInfo& column : FindColumns(info, fields)) {
    names += (names.empty() ? "" : ",") + QuoteName(column.name);
    places += places.empty() ? "?" : ",?";
  }
  statement_ =
      Prepare(database, "insert into " + QuoteName(info.name) + "(" + names + ") values(" + places + ")",
              FindColumns(info, fields));
}
BulkInsert::~BulkInsert() = default;

std::int64_t BulkInsert::LastNumber() const {
  return statement_->connection().LastRow();
}

void BulkInsert::Start(std::size_t count) {
  CheckCount(count, statement_->columns.size());
}

void BulkInsert::Bind(std::size_t index, const Value& value) {
  BindField(*statement_, index, value);
}

void BulkInsert::Step() {
  statement_->Step();
  statement_->Reset();
}

BulkUpdate::BulkUpdate(Database& database, std::string_view table, std::string_view key,
                       std::initializer_list<std::string_view> fields) {
  const TableInfo& info = Opened(database).Table(table);
  std::string sets;
  for (const ColumnInfo& column : FindColumns(info, fields)) {
    sets += (sets.empty() ? "" : ",") + QuoteName(column.name) + "=?";
  }
  const std::string& key_name = info.columns[static_cast<std::size_t>(info.Index(key))].name;
  statement_ = Prepare(
      database, "update " + QuoteName(info.name) + " set " + sets + " where " + QuoteName(key_name) + "=?",
      FindColumns(info, fields));
}
BulkUpdate::~BulkUpdate() = default;

void BulkUpdate::Start(std::size_t count) {
  CheckCount(count, statement_->columns.size());
}

void BulkUpdate::Bind(std::size_t index, const Value& value) {
  BindField(*statement_, index, value);
}

void BulkUpdate::BindKey(const Value& value) {
  statement_->Bind(static_cast<int>(statement_->columns.size()) + 1, value);
}

std::int64_t BulkUpdate::Step() {
  return statement_->Run();
}

RowReader::RowReader(Database& database, std::string_view sql, std::initializer_list<Value> parameters) {
  Opened(database);
  statement_ =
      std::make_unique<PreparedStatement>(database.connection(), NativeSelect(database.connection(), sql));
  BindAll(parameters);
}
RowReader::~RowReader() = default;
RowReader::RowReader(RowReader&&) noexcept = default;

void RowReader::BindAll(std::initializer_list<Value> parameters) {
  int index = 0;
  for (const Value& value : parameters) statement_->Bind(++index, value);
}

bool RowReader::Next() {
  done_ = done_ || !statement_->Step();
  return !done_;
}

void RowReader::Restart(std::initializer_list<Value> parameters) {
  statement_->Reset();
  done_ = false;
  BindAll(parameters);
}

bool RowReader::IsNull(int column) const {
  return statement_->ColumnIsNull(column);
}
bool RowReader::Bool(int column) const {
  return statement_->Column(column).AsBool();
}
std::int64_t RowReader::Long(int column) const {
  return statement_->ColumnLong(column);
}
double RowReader::Double(int column) const {
  return statement_->ColumnDouble(column);
}
std::string_view RowReader::Text(int column) const {
  return statement_->ColumnText(column);
}
Value RowReader::Get(int column) const {
  bool declared = false;
  const schema::FieldType type = statement_->ColumnType(column, declared);
  return declared ? statement_->Column(column, type) : statement_->Column(column);
}
int RowReader::ColumnCount() const {
  return statement_->ColumnCount();
}
std::string RowReader::ColumnName(int column) const {
  return statement_->ColumnName(column);
}
int RowReader::Column(std::string_view name) const {
  const int count = ColumnCount();
  for (int i = 0; i < count; ++i) {
    if (EqualNoCase(ColumnName(i), name)) return i;
  }
  return -1;
}

}  // namespace ormel
