// A prepared statement in its connection's cache; for connection.cpp and statement.cpp.
#pragma once

#include <sqlite3.h>

#include <string>
#include <utility>

#include "store/connection.h"

namespace ormel {

struct PreparedStatement::Entry {
  Entry(Connection& owner, std::string text, sqlite3_stmt* statement)
      : connection(&owner), sql(std::move(text)), handle(statement) {}
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  ~Entry() {
    if (connection != nullptr) connection->live_.erase(this);
    sqlite3_finalize(handle);
  }
  /// The connection closes: the statement goes, the entry may live on in a holder's hands.
  void Finalize() {
    sqlite3_finalize(std::exchange(handle, nullptr));
    connection = nullptr;
  }

  Connection* connection;
  std::string sql;
  sqlite3_stmt* handle;
  bool in_use = false;
  std::uint64_t last_use = 0;
};

}  // namespace ormel
