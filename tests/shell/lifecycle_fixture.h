// A controller with a scripted user and projects in a folder of its own.
#pragma once

#include "shell/lifecycle.h"
#include "store/database.h"
#include "store/schema.h"
#include "support/fakes.h"
#include "support/temp_dir.h"

namespace ormel::test {

struct LifecycleTest : ::testing::Test, TestController {
  TempDir dir;

  LifecycleTest() {
    processes.program_folder = dir.path().string();
    processes.current_directory = dir.path().string();
  }
  ~LifecycleTest() override { FileCloseProject(ormel); }

  /// A closed project of that name; the path.
  std::string Make(const std::string& name) {
    NewDatabaseOptions options;
    options.file_title = name;
    options.working_directory = dir.path().string();
    DBNewDatabase(dir / name, options);
    return dir / name;
  }
  static void Run(const std::string& path, const std::string& sql) {
    Database db = Database::Open(path);
    db.Execute(sql);
    db.Close();
  }
  static std::string Ask(const std::string& path, const std::string& sql) {
    return Database::Open(path, OpenMode::kReadOnly).Scalar(sql).AsText();
  }
  bool IsOpen() const { return ormel.project.ProjectOpen; }
};

}  // namespace ormel::test
