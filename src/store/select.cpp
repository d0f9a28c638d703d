#include "store/select.h"

#include "store/connection.h"
#include "store/dialect.h"

namespace ormel {

namespace {

void RequireSelect(const std::shared_ptr<Connection>& connection, const std::string& native,
                   std::string_view sql) {
  const PreparedStatement statement(connection, native);
  if (statement.ReadOnly() && statement.ColumnCount() > 0) return;
  throw StoreError(StoreErrorCode::kNotUpdatable, "This is no query that gives rows: " + std::string(sql));
}

}  // namespace

std::string NativeSelect(const std::shared_ptr<Connection>& connection, std::string_view sql) {
  std::string native = dialect::Translate(sql);
  try {
    RequireSelect(connection, native, sql);
    return native;
  } catch (const StoreError& error) {
    if (error.code() != StoreErrorCode::kNoSuchField) throw;
    std::string expanded = dialect::TranslateExpandingAliases(sql);
    if (expanded == native) throw;
    RequireSelect(connection, expanded, sql);
    return expanded;
  }
}

}  // namespace ormel
