// Rows for people and for programs: an aligned table, or CSV.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace ormel {

class Database;

struct TextTable {
  struct Column {
    std::string name;
    bool number = true;  ///< aligned to the right; all values so far are numbers
  };
  std::vector<Column> columns;
  std::vector<std::vector<std::string>> rows;
};

/// `digits` above 0: numbers with a fraction are rounded to so many significant digits.  Throws StoreError.
TextTable ReadTable(Database& database, std::string_view sql, int digits = 0);

void PrintAligned(std::ostream& out, const TextTable& table);
/// Fields with a comma, a quote or a line end are quoted; lines end with a line feed.
void PrintCsv(std::ostream& out, const TextTable& table);

/// An array with an object a row; numbers as numbers.
void PrintJson(std::ostream& out, const TextTable& table);

}  // namespace ormel
