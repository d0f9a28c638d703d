// Everything that an undo is to put back, as text.
#pragma once

#include <string>

#include "core/ormel.h"
#include "document/fields.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel::test {

inline std::string DumpModel(Database& db) {
  std::string dump;
  for (const std::string& table : UndoneTables()) {
    RowReader rows(db, "select rowid as RowNumber,* from " + table + " order by rowid");
    dump += "[" + table + "]\n";
    while (rows.Next()) {
      for (int column = 0; column < rows.ColumnCount(); ++column) {
        if (column > 0 && !RoleOf(table, rows.ColumnName(column)).Undone()) continue;
        dump += rows.IsNull(column) ? std::string("null") : rows.Get(column).AsText();
        dump += '|';
      }
      dump += '\n';
    }
  }
  return dump;
}

/// The first line in which two dumps differ, for messages.
inline std::string FirstDifference(const std::string& a, const std::string& b) {
  std::size_t i = 0;
  while (i < a.size() && i < b.size() && a[i] == b[i]) ++i;
  if (i == a.size() && i == b.size()) return {};
  const auto line = [i](const std::string& text) {
    const std::size_t from = i == 0 ? 0 : text.rfind('\n', i - 1) + 1;
    return text.substr(from, text.find('\n', i) - from);
  };
  const std::size_t table = a.rfind('[', i);
  return a.substr(table, a.find(']', table) - table + 1) + "\n  " + line(a) + "\n  " + line(b);
}

}  // namespace ormel::test
