#include <sqlite3.h>

#include <array>
#include <cmath>

#include "store/connection.h"
#include "store/statement_entry.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {

namespace {

using schema::FieldType;

struct Declaration {
  std::string_view prefix;
  FieldType type;
};

constexpr std::array kDeclarations{
    Declaration{"BOOLEAN", FieldType::kBoolean},  Declaration{"BYTE", FieldType::kByte},
    Declaration{"SMALLINT", FieldType::kInteger}, Declaration{"INTEGER", FieldType::kLong},
    Declaration{"DOUBLE", FieldType::kDouble},    Declaration{"DATETIME", FieldType::kDate}};

Value PlainColumn(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
      return sqlite3_column_double(statement, column);
    default:
      break;
  }
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return std::string(text == nullptr ? "" : text,
                     static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

[[noreturn]] void ThrowWrongType(const ColumnInfo& column, const std::string& why) {
  throw StoreError(StoreErrorCode::kWrongType,
                   "Table " + column.table + ", field " + column.name + ": " + why, column.table,
                   column.name);
}

double NumberFor(const ColumnInfo& column, const Value& value) {
  if (value.IsText() && !IsNumeric(value.AsText())) {
    ThrowWrongType(column, "\"" + value.AsText() + "\" is not a number.");
  }
  if (!value.IsText() && !value.IsNumber()) ThrowWrongType(column, "a date is not a number.");
  const double number = value.AsDouble();
  if (!std::isfinite(number)) ThrowWrongType(column, "the number is infinite or undefined.");
  return number;
}

Value LongFor(const ColumnInfo& column, const Value& value) {
  constexpr double kLimit = 9e15;
  if (std::fabs(NumberFor(column, value)) > kLimit) ThrowWrongType(column, "the number is too large.");
  return value.AsLong();
}

Value BooleanFor(const ColumnInfo& column, const Value& value) {
  if (value.IsText() && (EqualNoCase(value.AsText(), "true") || EqualNoCase(value.AsText(), "false"))) {
    return value.AsBool();
  }
  return NumberFor(column, value) != 0.0;
}

Value TextFor(const ColumnInfo& column, const Value& value) {
  std::string text = value.AsText();
  if (text.find('\0') != std::string::npos) ThrowWrongType(column, "the text holds a zero byte.");
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    // Drawings and decks of other programs break at them; a text of several lines is one.
    if ((code < 0x20 && c != '\t' && c != '\n' && c != '\r') || code == 0x7F)
      ThrowWrongType(column, "the text holds a control character (number " + std::to_string(code) +
                                 "). Type the text again without it.");
  }
  return ToUtf8(text);
}

Value DateFor(const ColumnInfo& column, const Value& value) {
  const std::string text = value.AsText();
  std::array<int, 3> date{};
  if (value.IsNumber() || text.size() != 19 ||
      std::sscanf(text.c_str(), "%4d-%2d-%2d ", &date[0], &date[1], &date[2]) != 3) {
    ThrowWrongType(column, "\"" + text + "\" is not a date of the form 2026-11-24 13:05:00.");
  }
  return DateTime{text};
}

}  // namespace

FieldType TypeFromDeclaration(std::string_view declaration) {
  for (const Declaration& one : kDeclarations) {
    if (StartsWithNoCase(declaration, one.prefix)) return one.type;
  }
  return FieldType::kText;
}

Value ConvertFor(const ColumnInfo& column, const Value& value) {
  if (value.IsNull()) return value;
  switch (column.type) {
    case FieldType::kBoolean:
      return BooleanFor(column, value);
    case FieldType::kByte:
    case FieldType::kInteger:
    case FieldType::kLong:
      return LongFor(column, value);
    case FieldType::kDouble:
      return NumberFor(column, value);
    case FieldType::kDate:
      return DateFor(column, value);
    case FieldType::kText:
      return TextFor(column, value);
  }
  return value;
}

std::string QuoteName(std::string_view name) {
  std::string out = "\"";
  for (const char c : name) out.append(c == '"' ? 2 : 1, c);
  return out + '"';
}

PreparedStatement::PreparedStatement(std::shared_ptr<Connection> connection, std::string_view native_sql)
    : connection_(std::move(connection)), entry_(connection_->Take(native_sql)) {}

PreparedStatement::~PreparedStatement() {
  if (entry_->handle == nullptr) return;
  sqlite3_reset(entry_->handle);
  sqlite3_clear_bindings(entry_->handle);
  connection_->GiveBack(entry_);
}

sqlite3_stmt* PreparedStatement::handle() const {
  if (entry_->handle == nullptr) connection_->handle();  // throws: closed
  return entry_->handle;
}

void PreparedStatement::Bind(int index, const Value& value) {
  sqlite3_stmt* statement = handle();
  const int code = std::visit(
      [&](const auto& content) {
        using T = std::decay_t<decltype(content)>;
        const auto bind_text = [&](const std::string& text) {
          return sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT,
                                     SQLITE_UTF8);
        };
        if constexpr (std::is_same_v<T, std::monostate>) {
          return sqlite3_bind_null(statement, index);
        } else if constexpr (std::is_same_v<T, bool>) {
          return sqlite3_bind_int64(statement, index, content ? -1 : 0);
        } else if constexpr (std::is_same_v<T, std::int64_t>) {
          return sqlite3_bind_int64(statement, index, content);
        } else if constexpr (std::is_same_v<T, double>) {
          return sqlite3_bind_double(statement, index, content);
        } else if constexpr (std::is_same_v<T, std::string>) {
          return bind_text(content);
        } else {
          return bind_text(content.text);
        }
      },
      value.data());
  if (code == SQLITE_RANGE) {
    throw StoreError(StoreErrorCode::kMissingParameter,
                     "The statement has fewer \"?\" than values: " + entry_->sql);
  }
  if (code != SQLITE_OK) connection_->Fail(code, entry_->sql);
}

bool PreparedStatement::Step() {
  connection_->RefuseAfterUndoing();
  const int code = sqlite3_step(handle());
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  sqlite3_reset(entry_->handle);
  connection_->Fail(sqlite3_extended_errcode(connection_->handle()), entry_->sql);
}

void PreparedStatement::Reset() {
  sqlite3_reset(handle());
}

std::int64_t PreparedStatement::Run() {
  const std::int64_t before = sqlite3_total_changes64(connection_->handle());
  while (Step()) {
  }
  Reset();
  return sqlite3_total_changes64(connection_->handle()) - before;
}

int PreparedStatement::ColumnCount() const {
  return sqlite3_column_count(handle());
}

std::string PreparedStatement::ColumnName(int column) const {
  const char* name = sqlite3_column_name(handle(), column);
  return name == nullptr ? "" : name;
}

FieldType PreparedStatement::ColumnType(int column, bool& declared) const {
  const char* type = sqlite3_column_decltype(handle(), column);
  declared = type != nullptr;
  return declared ? TypeFromDeclaration(type) : FieldType::kText;
}

Value PreparedStatement::Column(int column) const {
  return PlainColumn(handle(), column);
}

/// Booleans and dates are told by their declaration; everything else is what the row holds.
Value PreparedStatement::Column(int column, FieldType type) const {
  Value value = PlainColumn(handle(), column);
  if (type == FieldType::kBoolean && value.IsNumber()) return value.AsBool();
  if (type == FieldType::kDouble && value.IsNumber()) return value.AsDouble();
  if (type == FieldType::kDate && value.IsText()) return DateTime{value.AsText()};
  return value;
}

std::int64_t PreparedStatement::ColumnLong(int column) const {
  if (sqlite3_column_type(handle(), column) == SQLITE_INTEGER) return sqlite3_column_int64(handle(), column);
  return PlainColumn(handle(), column).AsLong();
}

double PreparedStatement::ColumnDouble(int column) const {
  if (sqlite3_column_type(handle(), column) == SQLITE_FLOAT) return sqlite3_column_double(handle(), column);
  return PlainColumn(handle(), column).AsDouble();
}

std::string_view PreparedStatement::ColumnText(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(handle(), column));
  if (text == nullptr) return {};
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(handle(), column))};
}

bool PreparedStatement::ColumnIsNull(int column) const {
  return sqlite3_column_type(handle(), column) == SQLITE_NULL;
}

bool PreparedStatement::ReadOnly() const {
  return sqlite3_stmt_readonly(handle()) != 0;
}

}  // namespace ormel
