// What a stopped program, a second program and a full disk leave behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <thread>

#include "new_project.h"
#include "store/view.h"

namespace ormel {
namespace {

using test::FailureOf;
using test::ProjectFixture;
using test::TempDir;

constexpr int kRowsPerCommand = 20;

/// Runs `work` in a process of its own, which ends with the status that it gives.
pid_t Start(const std::function<int()>& work) {
  const pid_t child = fork();
  if (child != 0) return child;
  int status = 99;
  try {
    status = work();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
  _exit(status);
}

int StatusOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void AddCommand(Database& db) {
  Transaction command(db);
  BulkInsert rows(db, "Vertices", {"PID", "Seq"});
  for (int i = 0; i < kRowsPerCommand; ++i) rows.Row(-1, i);
  command.Commit();
}

TEST(Transaction, ScopesNest) {
  ProjectFixture project;
  Recordset vertices = project.db.OpenRecordset("select * from Vertices");
  const auto add = [&] {
    vertices.AddNew();
    vertices["Seq"] = 0;
    vertices.Update();
  };
  {
    Transaction outer(project.db);
    add();
    {
      Transaction inner(project.db);
      add();
      inner.Rollback();
    }
    EXPECT_EQ(vertices.RecordCount(), 1);
    {
      Transaction inner(project.db);
      add();
    }
    EXPECT_TRUE(project.db.InTransaction());
  }
  EXPECT_FALSE(project.db.InTransaction());
  EXPECT_EQ(vertices.RecordCount(), 2);
  try {
    Transaction command(project.db);
    add();
    throw std::runtime_error("a procedure fails");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(vertices.RecordCount(), 3);  // what was written stays
  {
    Transaction command(project.db);
    project.db.Execute("delete * from Vertices");
    command.Rollback();
  }
  EXPECT_EQ(vertices.RecordCount(), 3);
  project.db.Close();
  EXPECT_EQ(Database::Open(project.path).RowCount("Vertices"), 3);
}

TEST(Transaction, AStoppedProgramLeavesFinishedCommands) {
  ProjectFixture project;
  project.db.Close();
  for (int round = 0; round < 12; ++round) {
    int pipe_ends[2];
    ASSERT_EQ(pipe(pipe_ends), 0);
    const pid_t child = Start([&] {
      Database db = Database::Open(project.path);
      for (;;) {
        AddCommand(db);
        if (write(pipe_ends[1], "x", 1) != 1) return 1;
      }
    });
    close(pipe_ends[1]);
    char done = 0;
    ASSERT_EQ(read(pipe_ends[0], &done, 1), 1);
    std::this_thread::sleep_for(std::chrono::microseconds(1700 * round));
    kill(child, SIGKILL);
    EXPECT_EQ(StatusOf(child), -SIGKILL);
    int finished = 1;
    while (read(pipe_ends[0], &done, 1) == 1) ++finished;
    close(pipe_ends[0]);
    Database db = Database::Open(project.path);
    const std::int64_t count = db.RowCount("Vertices");
    EXPECT_EQ(count % kRowsPerCommand, 0) << "half a command";
    EXPECT_GE(count, finished * kRowsPerCommand) << "a finished command is lost";
    EXPECT_LE(count, (finished + 1) * kRowsPerCommand);
    db.Execute("delete from Vertices");
  }
  EXPECT_FALSE(std::filesystem::exists(project.path + "-journal"));
}

/// Leaves the project half changed, with the journal of a command that was cut off.
void StopInTheMiddle(const std::string& path) {
  int pipe_ends[2];
  ASSERT_EQ(pipe(pipe_ends), 0);
  const pid_t child = Start([&] {
    Database db = Database::Open(path);
    const Transaction command(db);
    db.Execute("update Vertices set X=77");
    BulkInsert rows(db, "Vertices", {"PID", "Seq"});
    for (int i = 0; i < 100000; ++i)
      rows.Row(-1, i);  // more than fits into memory: the file itself is half changed
    if (write(pipe_ends[1], "x", 1) != 1) return 1;
    pause();
    return 0;
  });
  char ready = 0;
  ASSERT_EQ(read(pipe_ends[0], &ready, 1), 1);
  kill(child, SIGKILL);
  StatusOf(child);
  close(pipe_ends[0]);
  close(pipe_ends[1]);
  ASSERT_TRUE(std::filesystem::exists(path + "-journal"));
}

TEST(Transaction, AStopInTheMiddleIsUndoneByWhoOpensNext) {
  ProjectFixture project;
  project.AddVertices(10);
  project.db.Close();
  const std::string link = project.folder / "link.orm";
  std::filesystem::create_symlink(project.path, link);
  for (const std::string& path : {project.path, link}) {
    for (const OpenMode mode : {OpenMode::kReadWrite, OpenMode::kReadOnly}) {
      StopInTheMiddle(project.path);
      Database db = Database::Open(path, mode);
      EXPECT_EQ(db.RowCount("Vertices"), 10);
      EXPECT_EQ(db.Scalar("select max(X) from Vertices").AsDouble(), 10.0);
      db.Close();
      EXPECT_FALSE(std::filesystem::exists(project.path + "-journal"));
    }
  }
}

TEST(Transaction, AStopInTheMiddleIsToldWhereNothingMayBeWritten) {
  constexpr uid_t kNobody = 65534;
  ProjectFixture project;
  project.AddVertices(10);
  project.db.Close();
  StopInTheMiddle(project.path);
  chmod(project.path.c_str(), 0666);
  chmod((project.path + "-journal").c_str(), 0666);
  chmod(project.folder.path().c_str(), 0555);
  EXPECT_EQ(StatusOf(Start([&] {
              if (getuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) return 90;
              std::string message;
              const StoreErrorCode code =
                  FailureOf([&] { Database::Open(project.path, OpenMode::kReadOnly); }, &message);
              const bool told = code == StoreErrorCode::kReadOnly &&
                                message.find("when a program was stopped") != std::string::npos &&
                                message.find("-journal") != std::string::npos;
              if (!told) std::fprintf(stderr, "%s\n", message.c_str());
              return told ? 0 : 1;
            })),
            0);
  chmod(project.folder.path().c_str(), 0700);
  EXPECT_EQ(Database::Open(project.path, OpenMode::kReadOnly).RowCount("Vertices"), 10);
}

TEST(Transaction, ASecondProgramIsToldSo) {
  ProjectFixture project;
  for (const OpenMode mode : {OpenMode::kReadWrite, OpenMode::kReadOnly}) {
    const pid_t child = Start([&] {
      std::string message;
      const bool told =
          FailureOf([&] { Database::Open(project.path, mode); }, &message) == StoreErrorCode::kInUse;
      return told && message.find("is open in test_store (process ") != std::string::npos ? 0 : 1;
    });
    EXPECT_EQ(StatusOf(child), 0);
  }
  // The same program is no exception, and its attempt leaves the first one's hold as it was.
  EXPECT_EQ(FailureOf([&] { Database::Open(project.path); }), StoreErrorCode::kInUse);
  EXPECT_EQ(StatusOf(Start([&] {
              return FailureOf([&] { Database::Open(project.path); }) == StoreErrorCode::kInUse ? 0 : 1;
            })),
            0);
  // For viewing, another program gets what has been committed, and its changes reach no file.
  AddCommand(project.db);
  EXPECT_EQ(StatusOf(Start([&] {
              Database view = Database::Open(project.path, OpenMode::kView);
              const std::int64_t before = view.RowCount("Vertices");
              AddCommand(view);
              const std::string copy = project.folder / "copy.orm";
              test::WriteAll(copy, ImageOf(view));
              return before == kRowsPerCommand &&
                             Database::Open(copy).RowCount("Vertices") == 2 * kRowsPerCommand
                         ? 0
                         : 1;
            })),
            0);
  EXPECT_EQ(project.db.RowCount("Vertices"), kRowsPerCommand);
  project.db.Close();
  const Database first = Database::Open(project.path, OpenMode::kReadOnly);
  const Database second = Database::Open(project.path, OpenMode::kReadOnly);
  EXPECT_EQ(second.RowCount("Vertices"), kRowsPerCommand);
}

TEST(Transaction, AFullDiskKeepsWhatWasSaved) {
  ProjectFixture project;
  project.AddVertices(10);
  project.db.Close();
  const std::string before = test::ReadAll(project.path);
  const auto limit = static_cast<rlim_t>(before.size() + 65536);
  const auto fill = [&](bool spill) {
    std::signal(SIGXFSZ, SIG_IGN);
    Database db = Database::Open(project.path);
    const rlimit small{limit, limit};
    setrlimit(RLIMIT_FSIZE, &small);
    std::string message;
    const StoreErrorCode code = FailureOf(
        [&] {
          Transaction command(db);
          BulkInsert rows(db, "Vertices", {"PID", "Seq"});
          for (int i = 0; i < (spill ? 200000 : 5000); ++i) rows.Row(-1, i);
          command.Commit();
        },
        &message);
    if (code != StoreErrorCode::kDiskFull) {
      std::fprintf(stderr, "%d %s\n", static_cast<int>(code), message.c_str());
      return 1;
    }
    if (db.RowCount("Vertices") != 10) return 2;
    db.Execute("update Vertices set Y=5 where VID=1");  // the program goes on
    return 0;
  };
  for (const bool spill : {false, true}) {
    EXPECT_EQ(StatusOf(Start([&] { return fill(spill); })), 0) << spill;
    Database db = Database::Open(project.path);
    EXPECT_EQ(db.RowCount("Vertices"), 10);
    EXPECT_EQ(db.Scalar("select Y from Vertices where VID=1").AsDouble(), 5.0);
  }
  const TempDir folder;
  EXPECT_EQ(StatusOf(Start([&] {
              std::signal(SIGXFSZ, SIG_IGN);
              const rlimit tiny{20000, 20000};
              setrlimit(RLIMIT_FSIZE, &tiny);
              return FailureOf([&] { test::NewProject(folder); }) == StoreErrorCode::kDiskFull ? 0 : 1;
            })),
            0);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

}  // namespace
}  // namespace ormel
