#include "store/errors.h"

#include <sqlite3.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "text/strings.h"

namespace ormel {

namespace {

struct Case {
  int code;  // primary result code
  StoreErrorCode store_code;
  const char* text;
};

constexpr std::array kCases{
    Case{SQLITE_READONLY, StoreErrorCode::kReadOnly,
         "is read-only. Make the file and its folder writable, or copy the project to a folder of your own."},
    Case{SQLITE_FULL, StoreErrorCode::kDiskFull,
         "could not be written because the disk is full or takes no more. Free some space and try again; "
         "what was saved "
         "before is kept."},
    Case{SQLITE_BUSY, StoreErrorCode::kInUse, "is open in another program. Close it there and try again."},
    Case{SQLITE_LOCKED, StoreErrorCode::kInUse, "is being read while it should be changed. Try again."},
    Case{SQLITE_CORRUPT, StoreErrorCode::kDamaged,
         "is damaged. Keep the file, and go on with a copy of it from before the damage."},
    Case{SQLITE_NOTADB, StoreErrorCode::kNotAProject, "is not a project database."},
    Case{SQLITE_CANTOPEN, StoreErrorCode::kBadPath,
         "could not be opened, or its journal not be made. Check the path, the rights to its folder, and "
         "that the disk has room."},
    Case{SQLITE_NOMEM, StoreErrorCode::kOther, "could not be read because memory ran out."},
};

std::string Quoted(const std::string& path) {
  return "The project \"" + path + "\" ";
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (text.substr(0, prefix.size()) != prefix) return false;
  text.remove_prefix(prefix.size());
  return true;
}

/// "Table.Field" taken apart.
void SplitName(std::string_view name, std::string& table, std::string& field) {
  const std::size_t point = name.find('.');
  table = name.substr(0, point);
  if (point != std::string_view::npos) field = name.substr(point + 1, name.find(',') - point - 1);
}

StoreError StatementError(std::string_view message, std::string_view sql) {
  const std::string statement = sql.empty() ? "" : " The statement: " + std::string(sql);
  std::string_view rest = message;
  if (TakePrefix(rest, "no such table: ")) {
    return {StoreErrorCode::kNoSuchTable, "The project has no table " + std::string(rest) + "." + statement,
            std::string(rest)};
  }
  if (TakePrefix(rest, "no such column: ")) {
    return {StoreErrorCode::kNoSuchField, "The project has no field " + std::string(rest) + "." + statement,
            "", std::string(rest)};
  }
  return {StoreErrorCode::kSyntax, "The statement cannot be run: " + std::string(message) + "." + statement};
}

int SystemError(sqlite3* handle) {
  return handle == nullptr ? 0 : sqlite3_system_errno(handle);
}

bool OutOfRoom(int error) {
  return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

StoreError InputOutputError(sqlite3* handle, int code, const std::string& path) {
  const int error = SystemError(handle);
  // The last steps of a commit: the rows are written, and only the disk's word for it is missing.
  if (code == SQLITE_IOERR_FSYNC || code == SQLITE_IOERR_DIR_FSYNC || code == SQLITE_IOERR_DELETE ||
      code == SQLITE_IOERR_TRUNCATE || code == SQLITE_IOERR_CLOSE) {
    return {
        StoreErrorCode::kDisk,
        Quoted(path) +
            "may or may not have kept the last change: the disk did not confirm it. Check the disk, close "
            "the project, open it again and look; what was saved before is kept."};
  }
  // A write that fails means, nearly always, that a disk, a quota or a size limit is used up; by the time we
  // are told, the system's own reason may have been replaced by that of a later call.
  if (code == SQLITE_IOERR_WRITE || OutOfRoom(error)) {
    return {StoreErrorCode::kDiskFull, Quoted(path) + kCases[1].text};
  }
  const std::string reason = error == 0 ? "" : " (" + std::generic_category().message(error) + ")";
  return {StoreErrorCode::kDisk, Quoted(path) + "could not be read or written" + reason +
                                     ". Check the disk; what was saved before is kept."};
}

}  // namespace

StoreError ConstraintError(std::string_view message) {
  std::string table;
  std::string field;
  if (TakePrefix(message, "NOT NULL constraint failed: ")) {
    SplitName(message, table, field);
    return {StoreErrorCode::kRequired,
            "Table " + table + ", field " + field + ": it may not be empty. Give it a value.", table, field};
  }
  if (TakePrefix(message, "UNIQUE constraint failed: ")) {
    SplitName(message, table, field);
    return {
        StoreErrorCode::kDuplicateKey,
        "Table " + table + ", field " + field + ": another row has this value already. Choose another one.",
        table, field};
  }
  if (TakePrefix(message, "CHECK constraint failed: ")) {
    const std::size_t colon = message.find(": ");
    if (colon == std::string_view::npos)
      return {StoreErrorCode::kWrongType, "A check failed: " + std::string(message)};
    SplitName(message.substr(0, colon), table, field);
    const std::string rule(message.substr(colon + 2));
    const bool length = rule.find("characters") != std::string::npos;
    return {length ? StoreErrorCode::kTooLong : StoreErrorCode::kWrongType,
            "Table " + table + ", field " + field + ": " + rule + ".", table, field};
  }
  return {StoreErrorCode::kWrongType, "The row cannot be saved: " + std::string(message) + "."};
}

StoreError MakeStoreError(sqlite3* handle, int code, const std::string& path, std::string_view sql) {
  const std::string message = handle == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(handle);
  const int primary = code & 0xFF;
  if (primary == SQLITE_CONSTRAINT) return ConstraintError(message);
  // A journal that finds no room cannot be opened.
  if (primary == SQLITE_IOERR || (primary == SQLITE_CANTOPEN && OutOfRoom(SystemError(handle))))
    return InputOutputError(handle, code, path);
  if (primary == SQLITE_MISMATCH) {
    return {StoreErrorCode::kWrongType, "A value has the wrong type for its field: " + std::string(sql)};
  }
  for (const Case& one : kCases) {
    if (one.code == primary) return {one.store_code, Quoted(path) + one.text};
  }
  return StatementError(message, sql);
}

}  // namespace ormel
