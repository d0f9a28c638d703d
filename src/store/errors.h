// SQLite's failures as the store's.
#pragma once

#include <string>
#include <string_view>

#include "store/store_error.h"

struct sqlite3;

namespace ormel {

/// What the user is told about `code`.  `sql` is the statement at fault, "" when there is none.
StoreError MakeStoreError(sqlite3* handle, int code, const std::string& path, std::string_view sql);

/// The text of a constraint's name, "Table.Field: what holds", as the message of its failure.
StoreError ConstraintError(std::string_view sqlite_message);

}  // namespace ormel
