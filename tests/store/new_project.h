// A fresh project in a folder of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "support/temp_dir.h"

namespace ormel::test {

inline std::string NewProject(const TempDir& folder, const std::string& name = "Modell \u00fc.orm") {
  const std::string path = folder / name;
  NewDatabaseOptions options;
  options.file_title = name;
  options.working_directory = folder.path().string();
  DBNewDatabase(path, options);
  return path;
}

/// An open project with `count` single vertices at (i, -i), i from 1.
class ProjectFixture {
 public:
  ProjectFixture() : path(NewProject(folder)), db(Database::Open(path)) {}

  void AddVertices(int count, int pid = -1) {
    Transaction command(db);
    BulkInsert rows(db, "Vertices", {"PID", "Seq", "X", "Y"});
    for (int i = 1; i <= count; ++i) rows.Row(pid, i, static_cast<double>(i), static_cast<double>(-i));
  }

  TempDir folder;
  std::string path;
  Database db;
};

/// The code that `action` fails with; kOther and a test failure when it does not fail.
template <class Action>
StoreErrorCode FailureOf(Action action, std::string* message = nullptr) {
  try {
    action();
  } catch (const StoreError& error) {
    if (message != nullptr) *message = error.what();
    return error.code();
  }
  ADD_FAILURE() << "no failure";
  return StoreErrorCode::kOther;
}

}  // namespace ormel::test
