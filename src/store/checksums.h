// Checksums of a project's tables, kept in it: they tell a change by something else than Ormel.
//
// Each table has the sum of a hash of its rows.  A commit adds to it what its rows have changed, so that the
// cost is that of the change and not of the table.  Whoever writes into the file by other means, or a disk
// that flips a bit in a number, leaves the sum as it was.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;

namespace ormel {

class ChangeLog;
class Connection;
class Database;

/// A table whose rows are not those that Ormel wrote last.
struct ChangedTable {
  std::string table;
  std::int64_t rows_then = 0, rows_now = 0;
};

/// Reads every table.  Empty too for a project that keeps no checksums yet.
std::vector<ChangedTable> ForeignChanges(const Database& database);

/// Takes the tables as they are, and keeps checksums from now on.
void AcceptContents(Database& database);

/// Of one connection; for connection.cpp.
class SumKeeper {
 public:
  explicit SumKeeper(sqlite3* handle);
  ~SumKeeper();
  SumKeeper(const SumKeeper&) = delete;
  SumKeeper& operator=(const SumKeeper&) = delete;

  /// A row is about to change.
  void Touch(int operation, const char* table, std::int64_t row, std::int64_t new_row);
  /// Tables were changed themselves: the next call of Write counts all rows anew.
  void Forget() { stale_ = true; }
  /// Brings the checksums up to the rows; inside the transaction that is to be committed.
  void Write(Connection& connection);
  bool pending() const { return touched_ || stale_; }

 private:
  std::unique_ptr<ChangeLog> log_;
  bool touched_ = false, stale_ = false;
};

}  // namespace ormel
