#include "store/connection.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

#include "store/errors.h"
#include "store/sql_functions.h"
#include "store/statement_entry.h"
#include "text/strings.h"

namespace ormel {

namespace {

constexpr std::size_t kCacheSize = 200;

}  // namespace

Connection::Connection(sqlite3* handle, std::string path, bool read_only)
    : handle_(handle), path_(std::move(path)), read_only_(read_only) {
  Install();
}

Connection::~Connection() {
  try {
    Close();
  } catch (const StoreError&) {  // NOLINT(bugprone-empty-catch): Close() tells it, a destructor cannot
  }
}

void Connection::Install() {
  InstallSqlFunctions(handle_);
  sqlite3_update_hook(
      handle_,
      [](void* self, int operation, const char*, const char* table, sqlite3_int64 row) {
        static_cast<Connection*>(self)->RowChanged(operation, table, row);
      },
      this);
  // Installed before any statement is prepared: without it a deletion of all rows goes unseen.
  log_ = std::make_unique<ChangeLog>(handle_);
  sums_ = std::make_unique<SumKeeper>(handle_);
  sqlite3_preupdate_hook(
      handle_,
      [](void* self, sqlite3*, int operation, const char*, const char* table, sqlite3_int64 row,
         sqlite3_int64 new_row) {
        const auto* connection = static_cast<Connection*>(self);
        connection->log_->Touch(operation, table, row, new_row);
        connection->sums_->Touch(operation, table, row, new_row);
      },
      this);
  sqlite3_rollback_hook(
      handle_, [](void* self) { static_cast<Connection*>(self)->ForgetCounts(); }, this);
}

sqlite3* Connection::handle() const {
  if (handle_ == nullptr) {
    throw StoreError(StoreErrorCode::kClosed,
                     "The project \"" + path_ + "\" has been closed. Open it again.");
  }
  return handle_;
}

std::string Connection::Image() const {
  sqlite3_int64 size = 0;
  unsigned char* bytes = sqlite3_serialize(handle(), "main", &size, 0);
  if (bytes == nullptr) throw MakeStoreError(handle_, SQLITE_NOMEM, path_, "");
  std::string image(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
  sqlite3_free(bytes);
  return image;
}

void Connection::Close() {
  if (handle_ == nullptr) return;
  int code = SQLITE_OK;
  const bool open = sqlite3_get_autocommit(handle_) == 0;
  if (open || (!read_only_ && sums_->pending())) {
    if (!open) code = sqlite3_exec(handle_, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    try {
      // Let go without Close: nothing can be read any more, and no checksums are better than wrong ones.
      if (!weak_from_this().expired())
        WriteSums();
      else if (sums_->pending())
        sqlite3_exec(handle_, "DROP TABLE IF EXISTS Checksums", nullptr, nullptr, nullptr);
    } catch (const StoreError&) {  // NOLINT(bugprone-empty-catch): the commit fails for the same reason
    }
    if (code == SQLITE_OK) code = sqlite3_exec(handle_, "COMMIT", nullptr, nullptr, nullptr);
  }
  std::string message;
  StoreErrorCode store_code = StoreErrorCode::kOther;
  if (code != SQLITE_OK) {
    const StoreError error = MakeStoreError(handle_, code, path_, "");
    message = error.what();
    store_code = error.code();
  }
  depth_ = 0;
  for (PreparedStatement::Entry* entry : live_) entry->Finalize();
  live_.clear();
  cache_.clear();
  sqlite3_close_v2(std::exchange(handle_, nullptr));
  if (!message.empty()) throw StoreError(store_code, message);
}

void Connection::Exec(const char* native_sql) {
  const int code = sqlite3_exec(handle(), native_sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Fail(code, native_sql);
}

std::int64_t Connection::Run(std::string_view native_sql) {
  return PreparedStatement(shared_from_this(), native_sql).Run();
}

std::int64_t Connection::LastRow() const {
  return sqlite3_last_insert_rowid(handle());
}

void Connection::Fail(int code, std::string_view sql) {
  throw MakeStoreError(handle_, code, path_, sql);
}

// --- statements ---

std::shared_ptr<PreparedStatement::Entry> Connection::Take(std::string_view native_sql) {
  std::string key(native_sql);
  const auto found = cache_.find(key);
  if (found != cache_.end() && !found->second->in_use) {
    found->second->in_use = true;
    return found->second;
  }
  sqlite3_stmt* statement = nullptr;
  const char* rest = nullptr;
  const int code = sqlite3_prepare_v3(handle(), native_sql.data(), static_cast<int>(native_sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, &rest);
  if (code != SQLITE_OK) Fail(code, native_sql);
  auto entry = std::make_shared<PreparedStatement::Entry>(*this, std::move(key), statement);
  live_.insert(entry.get());
  const std::string_view behind(rest, static_cast<std::size_t>(native_sql.data() + native_sql.size() - rest));
  if (statement == nullptr || behind.find_first_not_of(" \t\r\n;") != std::string_view::npos) {
    throw StoreError(StoreErrorCode::kSyntax, "One statement at a time, please: " + std::string(native_sql));
  }
  entry->in_use = true;
  if (found == cache_.end()) {
    if (cache_.size() >= kCacheSize) Evict();
    cache_.emplace(entry->sql, entry);
  }
  return entry;
}

void Connection::GiveBack(const std::shared_ptr<PreparedStatement::Entry>& entry) {
  entry->in_use = false;
  entry->last_use = ++clock_;
}

void Connection::Evict() {
  auto oldest = cache_.end();
  for (auto i = cache_.begin(); i != cache_.end(); ++i) {
    if (!i->second->in_use && (oldest == cache_.end() || i->second->last_use < oldest->second->last_use))
      oldest = i;
  }
  if (oldest != cache_.end()) cache_.erase(oldest);
}

// --- tables ---

int TableInfo::Find(std::string_view field) const {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (EqualNoCase(columns[i].name, field)) return static_cast<int>(i);
  }
  return -1;
}

int TableInfo::Index(std::string_view field) const {
  const int index = Find(field);
  if (index >= 0) return index;
  throw StoreError(StoreErrorCode::kNoSuchField,
                   "The table " + name + " has no field " + std::string(field) +
                       ". The project may be of an older version; let it be updated.",
                   name, std::string(field));
}

bool Connection::HasTable(std::string_view name) {
  if (tables_.count(FoldCase(name)) > 0) return true;
  PreparedStatement query(shared_from_this(),
                          "select 1 from sqlite_master where type='table' and name=? collate nocase");
  query.Bind(1, Value(name));
  return query.Step();
}

const TableInfo& Connection::Table(std::string_view name) {
  const std::string key = FoldCase(name);
  const auto found = tables_.find(key);
  if (found != tables_.end()) return *found->second;
  auto info = std::make_unique<TableInfo>();
  {
    PreparedStatement query(shared_from_this(),
                            "select name, sql like '*autoincrement*' from sqlite_master "
                            "where type='table' and name=? collate nocase");
    query.Bind(1, Value(name));
    if (!query.Step()) {
      throw StoreError(StoreErrorCode::kNoSuchTable, "The project has no table " + std::string(name) + ".",
                       std::string(name));
    }
    info->name = query.ColumnText(0);
    info->automatic = query.ColumnLong(1) != 0 ? 0 : -1;
  }
  std::string defaults;
  int key_column = -1;
  PreparedStatement query(shared_from_this(),
                          "select name, type, dflt_value, pk, \"notnull\" from pragma_table_info(?)");
  for (query.Bind(1, Value(info->name)); query.Step();) {
    if (query.ColumnLong(3) == 1) key_column = static_cast<int>(info->columns.size());
    defaults += (defaults.empty() ? "select " : ",");
    defaults += query.ColumnIsNull(2) ? "null" : "(" + std::string(query.ColumnText(2)) + ")";
    info->columns.push_back({info->name, std::string(query.ColumnText(0)),
                             TypeFromDeclaration(query.ColumnText(1)), Value(), query.ColumnLong(4) != 0});
  }
  if (info->automatic == 0) info->automatic = key_column;
  PreparedStatement values(shared_from_this(), defaults);
  if (values.Step()) {
    for (std::size_t i = 0; i < info->columns.size(); ++i) {
      info->columns[i].default_value = values.Column(static_cast<int>(i), info->columns[i].type);
    }
  }
  return *tables_.emplace(key, std::move(info)).first->second;
}

Connection::TableState& Connection::State(std::string_view table) {
  return states_[std::string(table)];
}

void Connection::RowChanged(int operation, const char* table, std::int64_t row) {
  ++change_count_;
  if (operation == SQLITE_UPDATE) return;
  const auto found = states_.find(table);
  if (found == states_.end()) return;
  TableState& state = found->second;
  if (state.count >= 0) state.count += operation == SQLITE_INSERT ? 1 : -1;
  if (operation == SQLITE_INSERT && state.next_number > 0)
    state.next_number = std::max(state.next_number, row + 1);
}

std::int64_t Connection::RowCount(const TableInfo& table) {
  TableState& state = State(table.name);
  if (state.count < 0) {
    PreparedStatement query(shared_from_this(), "select count(*) from " + QuoteName(table.name));
    state.count = query.Step() ? query.ColumnLong(0) : 0;
  }
  return state.count;
}

std::int64_t Connection::NextNumber(const TableInfo& table) {
  TableState& state = State(table.name);
  if (state.next_number == 0) {
    PreparedStatement query(shared_from_this(),
                            "select max(coalesce((select max(seq) from sqlite_sequence where name=?),0),"
                            "coalesce((select max(rowid) from " +
                                QuoteName(table.name) + "),0))");
    query.Bind(1, Value(table.name));
    state.next_number = 1 + (query.Step() ? query.ColumnLong(0) : 0);
  }
  return state.next_number++;
}

void Connection::ForgetCounts() {
  ++change_count_;
  for (auto& [name, state] : states_) state.count = -1;
}

void Connection::WriteSums() {
  if (!read_only_) sums_->Write(*this);
}

void Connection::ForgetTables() {
  sums_->Forget();
  ForgetCounts();
  tables_.clear();
}

// --- transactions ---

void Connection::Begin() {
  if (depth_ == 0) {
    Run(read_only_ ? "BEGIN" : "BEGIN IMMEDIATE");
  } else {
    Run("SAVEPOINT s" + std::to_string(depth_));
  }
  ++depth_;
}

// SQLite may undo a whole transaction when the disk fails under it.  What would follow must not reach the
// file as pieces of a command whose beginning is gone.
void Connection::RefuseAfterUndoing() {
  if (depth_ == 0 || sqlite3_get_autocommit(handle()) == 0) return;
  throw StoreError(StoreErrorCode::kDiskFull,
                   "The project \"" + path_ +
                       "\" could not be written, and this command's changes were undone. "
                       "Free some space on the disk and do it again.");
}

void Connection::Commit() {
  if (depth_ == 0 || handle_ == nullptr) return;  // closed
  const int outer = depth_ - 1;
  try {
    RefuseAfterUndoing();
    if (outer == 0) WriteSums();
    depth_ = outer;
    Run(outer > 0 ? "RELEASE s" + std::to_string(outer) : "COMMIT");
  } catch (const StoreError&) {
    depth_ = outer;
    if (outer > 0) throw;
    if (sqlite3_get_autocommit(handle_) == 0) sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
    ForgetCounts();
    throw;
  }
}

void Connection::Rollback() {
  if (depth_ == 0 || handle_ == nullptr) return;
  --depth_;
  ForgetCounts();
  if (sqlite3_get_autocommit(handle_) != 0)
    return;  // SQLite undid it already; outer scopes are told at their next step
  if (depth_ == 0) {
    Run("ROLLBACK");
    return;
  }
  const std::string name = "s" + std::to_string(depth_);
  Run("ROLLBACK TO " + name);
  Run("RELEASE " + name);
}

}  // namespace ormel
