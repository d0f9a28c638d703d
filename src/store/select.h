// A select in the store's dialect made ready for SQLite; for the store's own files.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace ormel {

class Connection;

/// The statement for SQLite.  Computed columns used again in the same list are put in only when the statement
/// does not run without: a field of the table goes before a computed column of that name.  Throws StoreError
/// when it does not run at all, or is no select.
std::string NativeSelect(const std::shared_ptr<Connection>& connection, std::string_view sql);

}  // namespace ormel
