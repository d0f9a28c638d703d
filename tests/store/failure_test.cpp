// Files that are no project, are damaged or out of reach: told in clear words, and left as they were.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>

#include "new_project.h"

namespace ormel {
namespace {

using test::FailureOf;
using test::ProjectFixture;
using test::ReadAll;
using test::TempDir;
using test::WriteAll;
using testing::AllOf;
using testing::HasSubstr;

void ExpectRefused(const std::string& path, StoreErrorCode code, const char* words) {
  const std::string before = ReadAll(path);
  for (const OpenMode mode : {OpenMode::kReadWrite, OpenMode::kReadOnly}) {
    std::string message;
    EXPECT_EQ(FailureOf([&] { Database::Open(path, mode); }, &message), code) << words;
    EXPECT_THAT(message, AllOf(HasSubstr(path), HasSubstr(words)));
  }
  EXPECT_EQ(ReadAll(path), before);
  EXPECT_FALSE(std::filesystem::exists(path + "-journal"));
}

TEST(Open, TellsWhatIsNoProject) {
  const TempDir folder;
  const std::string path = folder / "x.orm";
  EXPECT_EQ(FailureOf([&] { Database::Open(path); }), StoreErrorCode::kNotFound);
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_EQ(FailureOf([&] { Database::Open(folder.path().string()); }), StoreErrorCode::kNotAProject);
  EXPECT_EQ(FailureOf([&] { Database::Open(""); }), StoreErrorCode::kBadPath);
  WriteAll(path, "");
  ExpectRefused(path, StoreErrorCode::kNotAProject, "is empty");
  WriteAll(path, "some text");
  ExpectRefused(path, StoreErrorCode::kNotAProject, "is not a project");
  WriteAll(path, std::string(5000, '\xff'));
  ExpectRefused(path, StoreErrorCode::kNotAProject, "is not a project");
  ASSERT_EQ(
      std::system(("sqlite3 '" + (folder / "other.db") + "' 'create table Project(a);create table Model(b)'")
                      .c_str()),
      0);
  ExpectRefused(folder / "other.db", StoreErrorCode::kNotAProject, "no project of Ormel");
  Database::Create(folder / "bare.orm").Close();
  ExpectRefused(folder / "bare.orm", StoreErrorCode::kNotAProject, "no tables");
  ASSERT_EQ(std::system(("sqlite3 '" + (folder / "bare.orm") + "' 'pragma user_version=9'").c_str()), 0);
  ExpectRefused(folder / "bare.orm", StoreErrorCode::kNotAProject, "newer version");
}

TEST(Open, RefusesWhatWouldRunInsideAProject) {
  const char* const statements[] = {
      "create trigger helpful after update on Model begin update Project set OrmelBaseName='../x'; end",
      "create view Aquifers as select * from Model",
      "create virtual table Words using fts5(a)",
  };
  for (const char* statement : statements) {
    ProjectFixture project;
    project.db.Close();
    ASSERT_EQ(std::system(("sqlite3 '" + project.path + "' \"" + statement + "\"").c_str()), 0);
    ExpectRefused(project.path, StoreErrorCode::kNotAProject, "which Ormel did not make");
  }
}

TEST(Open, LeavesAProjectAsItIs) {
  ProjectFixture project;
  project.AddVertices(10);
  project.db.Close();
  const std::string before = ReadAll(project.path);
  for (const OpenMode mode : {OpenMode::kReadWrite, OpenMode::kReadOnly}) {
    Database db = Database::Open(project.path, mode);
    EXPECT_EQ(db.OpenRecordset("select * from Vertices").RecordCount(), 10);
    db.Close();
    EXPECT_EQ(ReadAll(project.path), before);
  }
  Database db = Database::Open(project.path, OpenMode::kReadOnly);
  EXPECT_EQ(FailureOf([&] { db.Execute("delete from Vertices"); }), StoreErrorCode::kReadOnly);
  Recordset rows = db.OpenRecordset("select * from Vertices");
  EXPECT_FALSE(rows.Updatable());
  EXPECT_EQ(FailureOf([&] { rows.AddNew(); }), StoreErrorCode::kNotUpdatable);
}

TEST(Open, TellsAFileThatIsCutShort) {
  ProjectFixture project;
  project.AddVertices(3000);
  project.db.Close();
  const std::string whole = ReadAll(project.path);
  const std::string cut = project.folder / "cut.orm";
  std::vector<std::size_t> lengths;
  for (std::size_t length = 1; length <= 120; ++length) lengths.push_back(length);
  for (std::size_t length = 500; length < whole.size(); length += 1999) lengths.push_back(length);
  for (std::size_t length = 4096; length < whole.size(); length += 4096) lengths.push_back(length);
  lengths.push_back(whole.size() - 1);
  for (const std::size_t length : lengths) {
    WriteAll(cut, whole.substr(0, length));
    std::string message;
    const StoreErrorCode code = FailureOf([&] { Database::Open(cut); }, &message);
    EXPECT_TRUE(code == (length < 100 ? StoreErrorCode::kNotAProject : StoreErrorCode::kDamaged))
        << length << message;
    ASSERT_EQ(ReadAll(cut).size(), length);
  }
  EXPECT_EQ(ReadAll(cut), whole.substr(0, whole.size() - 1));
}

/// Reads and writes all over a project that may be damaged; failures must be StoreErrors.
void UseAll(Database& db) {
  for (const schema::Table& table : schema::Tables()) {
    try {
      Recordset rows = db.OpenRecordset("select * from " + std::string(table.name));
      for (; rows.HasRow(); rows.MoveNext()) {
        for (std::size_t i = 0; i < rows.FieldCount(); ++i) static_cast<void>(rows.Get(i).AsText());
      }
      rows.FindFirst("PID=3");
      rows.AddNew();
      rows.Update();
    } catch (
        const StoreError&) {  // NOLINT(bugprone-empty-catch): told; what matters is that nothing else happens
    }
  }
}

TEST(Open, SurvivesDamage) {
  ProjectFixture project;
  project.AddVertices(300);
  project.db.Execute("insert into Polygons (Closed) values (1)");
  project.db.Execute("insert into LinesinkStrings (PID,Label) values (1,'Mill brook')");
  project.db.Close();
  const std::string whole = ReadAll(project.path);
  const std::string path = project.folder / "damaged.orm";
  std::mt19937 random(20261124);
  const auto pick = [&](std::size_t below) {
    return std::uniform_int_distribution<std::size_t>(0, below - 1)(random);
  };
  int refused = 0;
  constexpr int kRounds = 150;
  for (int round = 0; round < kRounds; ++round) {
    std::string damaged = whole;
    const bool header = round % 3 == 0;
    const bool page_heads = round % 3 == 1;
    for (int i = 0; i < 1 + round % 5; ++i) {
      std::size_t at = pick(header ? 100 : whole.size());
      if (page_heads) at = at / 4096 * 4096 + pick(12);
      damaged[at] = static_cast<char>(pick(256));
    }
    if (round % 10 == 9) damaged.replace(pick(whole.size() - 4096), 4096, std::string(4096, '\xa5'));
    WriteAll(path, damaged);
    std::filesystem::remove(path + "-journal");
    try {
      Database db = Database::Open(path);
      UseAll(db);
      db.Close();
    } catch (const StoreError& error) {
      ++refused;
      EXPECT_THAT(error.what(), HasSubstr("damaged.orm"));
    }
  }
  EXPECT_GT(refused, kRounds / 3);
}

/// Runs as a user without rights; root may write everywhere.
int AsNobody(const std::function<int()>& work) {
  constexpr uid_t kNobody = 65534;
  const pid_t child = fork();
  if (child == 0) {
    if (getuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(90);
    _exit(work());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Open, TellsWhatIsReadOnly) {
  ProjectFixture project;
  project.db.Close();
  const std::string before = ReadAll(project.path);
  const auto refused_as = [&](StoreErrorCode code, const char* words) {
    return AsNobody([&] {
      std::string message;
      const bool told = FailureOf([&] { Database::Open(project.path); }, &message) == code &&
                        message.find(words) != std::string::npos;
      if (!told) std::fprintf(stderr, "%s\n", message.c_str());
      return told ? 0 : 1;
    });
  };
  chmod(project.path.c_str(), 0444);
  chmod(project.folder.path().c_str(), 0777);
  EXPECT_EQ(refused_as(StoreErrorCode::kReadOnly, "is read-only"), 0);
  chmod(project.path.c_str(), 0666);
  chmod(project.folder.path().c_str(), 0555);
  EXPECT_EQ(refused_as(StoreErrorCode::kReadOnly, "folder that is read-only"), 0);
  EXPECT_EQ(AsNobody([&] {
              return Database::Open(project.path, OpenMode::kReadOnly).RowCount("Model") == 1 ? 0 : 1;
            }),
            0);
  chmod(project.path.c_str(), 0600);
  if (getuid() == 0) {
    EXPECT_EQ(refused_as(StoreErrorCode::kBadPath, "may not be read"), 0);
  }
  chmod(project.folder.path().c_str(), 0700);
  EXPECT_EQ(ReadAll(project.path), before);
}

}  // namespace
}  // namespace ormel
