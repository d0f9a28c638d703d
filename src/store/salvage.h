// What can still be read of a project whose file is damaged.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ormel {

struct SalvagedTable {
  std::string name;
  std::int64_t rows = 0;    ///< kept
  std::int64_t spoilt = 0;  ///< rows that were there and could not be read, or whose contents did not fit
  bool pages_lost =
      false;  ///< part of the table could not be reached: rows are missing, their number is unknown
};

struct SalvageReport {
  std::string copy;  ///< the damaged file, kept beside
  std::vector<SalvagedTable> tables;
  /// In words, one line a table that lost something; empty when every row was read.
  std::string Losses() const;
};

/// Puts a project made of every row that can still be read in the place of a damaged file, which is kept as
/// "<name>.damaged.orm" first.  The pages are read one by one, without the store's library: neither the list
/// of tables nor the inner pages have to be whole.  Nothing is believed: sizes and places are held against
/// the file.  Throws StoreError when nothing of a project is found; the file is then as it was.
SalvageReport SalvageProject(const std::string& path);

}  // namespace ormel
