#include "store/database.h"

#include <algorithm>
#include <array>
#include <exception>
#include <optional>
#include <utility>

#include "store/connection.h"
#include "store/dialect.h"
#include "store/select.h"
#include "store/view.h"

namespace ormel {

namespace {

Connection& Opened(const std::shared_ptr<Connection>& connection) {
  if (!connection) throw StoreError(StoreErrorCode::kClosed, "No project is open. Open one first.");
  connection->handle();  // throws when closed
  return *connection;
}

void BindAll(PreparedStatement& statement, std::initializer_list<Value> parameters) {
  int index = 0;
  for (const Value& value : parameters) statement.Bind(++index, value);
}

bool Changes(const std::vector<dialect::Token>& statement) {
  constexpr std::array kWords{"insert", "update", "delete", "replace", "create", "alter", "drop"};
  return !statement.empty() && std::any_of(kWords.begin(), kWords.end(), [&statement](const char* word) {
    return statement[0].IsWord(word);
  });
}

/// What a statement does, by its first word: rows one by one, many rows unseen, or the tables themselves.
void NoteEffect(Connection& connection, const std::vector<dialect::Token>& statement) {
  if (statement.empty() || statement[0].IsWord("insert") || statement[0].IsWord("update") ||
      statement[0].IsWord("select"))
    return;
  if (statement[0].IsWord("delete")) {
    connection.ForgetCounts();
  } else {
    connection.ForgetTables();
  }
}

}  // namespace

Database::Database(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {}

Database Database::Open(const std::string& path, OpenMode mode) {
  if (mode == OpenMode::kView) return Database(OpenProjectView(path));
  return Database(OpenProjectFile(path, mode == OpenMode::kReadOnly));
}

Database Database::Create(const std::string& path) {
  return Database(CreateProjectFile(path));
}

bool Database::IsOpen() const {
  return connection_ && connection_->open();
}

void Database::Close() {
  if (connection_) connection_->Close();
}

bool IsView(const Database& database) {
  return database.connection() && database.connection()->viewing();
}

std::string ImageOf(const Database& database) {
  return Opened(database.connection()).Image();
}

const std::string& Database::path() const {
  static const std::string none;
  return connection_ ? connection_->path() : none;
}

bool Database::read_only() const {
  return connection_ && connection_->read_only();
}

std::int64_t Database::Execute(std::string_view sql, std::initializer_list<Value> parameters) {
  Connection& connection = Opened(connection_);
  const std::string native = dialect::Translate(sql);
  const std::vector<dialect::Token> tokens = dialect::Tokenize(native);
  std::int64_t changed = 0;
  // With the checksums of what it changes.
  std::optional<Transaction> alone;
  if (connection.depth() == 0 && !connection.read_only() && Changes(tokens)) alone.emplace(*this);
  try {
    PreparedStatement statement(connection_, native);
    BindAll(statement, parameters);
    changed = statement.Run();
  } catch (...) {
    if (alone) alone->Rollback();
    throw;
  }
  NoteEffect(connection, tokens);
  if (alone) alone->Commit();
  return changed;
}

Recordset Database::OpenRecordset(std::string_view sql, std::initializer_list<Value> parameters) {
  Opened(connection_);
  return Recordset(connection_, sql, parameters);
}

Value Database::Scalar(std::string_view sql, std::initializer_list<Value> parameters) {
  Opened(connection_);
  PreparedStatement statement(connection_, NativeSelect(connection_, sql));
  BindAll(statement, parameters);
  if (!statement.Step()) return {};
  bool declared = false;
  const schema::FieldType type = statement.ColumnType(0, declared);
  return declared ? statement.Column(0, type) : statement.Column(0);
}

bool Database::HasTable(std::string_view table) const {
  return Opened(connection_).HasTable(table);
}

bool Database::HasField(std::string_view table, std::string_view field) const {
  return HasTable(table) && connection_->Table(table).Find(field) >= 0;
}

std::vector<std::string> Database::TableNames() const {
  Opened(connection_);
  std::vector<std::string> names;
  PreparedStatement query(
      connection_,
      "select name from sqlite_master where type='table' and substr(name,1,7)<>'sqlite_' order by rowid");
  while (query.Step()) names.emplace_back(query.ColumnText(0));
  return names;
}

std::int64_t Database::RowCount(std::string_view table) const {
  Connection& connection = Opened(connection_);
  return connection.RowCount(connection.Table(table));
}

std::uint64_t Database::change_count() const {
  return connection_ ? connection_->change_count() : 0;
}

bool Database::InTransaction() const {
  return connection_ && connection_->depth() > 0;
}

void Database::WatchChanges(const std::vector<std::string>& tables) {
  Opened(connection_).changes().Watch(tables);
}

std::vector<RowChange> Database::TakeChanges() {
  Connection& connection = Opened(connection_);
  return connection.changes().Take(connection);
}

Transaction::Transaction(Database& database)
    : connection_(database.connection()), exceptions_(std::uncaught_exceptions()) {
  Opened(connection_).Begin();
}

// A commit that fails must be told: silence here would be lost work.  It is told only when no other exception
// is on its way, as the language asks.
Transaction::~Transaction() noexcept(false) {
  if (done_) return;
  const bool unwinding = std::uncaught_exceptions() > exceptions_;
  try {
    Commit();
  } catch (const StoreError&) {
    if (!unwinding) throw;
  }
}

void Transaction::Commit() {
  if (std::exchange(done_, true)) return;
  connection_->Commit();
}

void Transaction::Rollback() {
  if (std::exchange(done_, true)) return;
  connection_->Rollback();
}

}  // namespace ormel
