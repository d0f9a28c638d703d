// Writer of dBASE III tables (.dbf) from columns of text.
#pragma once

#include <string>
#include <vector>

namespace ormel {

/// Types: C character, N numeric, L logical, D date, M memo.
struct DbfColumn {
  std::string name;  ///< its first 11 bytes are kept
  char type = 'C';
  std::vector<std::string> values{};  ///< one a row, UTF-8
  std::size_t least_width = 0;        ///< 1 where readers refuse a column without width
};

/// Day that the file is dated with.
struct DbfDate {
  int year = 1900, month = 1, day = 1;
};

/// Values are filled with blanks up to the longest of their column.  One that is longer than 254 bytes, the
/// most that the format holds, is cut between two characters.  Gives "Export OK", or "Export Failed - " and
/// why; a file that was begun stays then.
std::string WriteDBF(const std::string& path, const std::vector<DbfColumn>& columns, const DbfDate& date);

}  // namespace ormel
