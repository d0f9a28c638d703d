// What keeps a project in order: checksums, rows out of damaged files, updates that fail.
#include <gtest/gtest.h>

#include <fstream>

#include "store/checksums.h"
#include "store/connection.h"
#include "store/new_project.h"
#include "store/salvage.h"
#include "store/update.h"

namespace ormel::test {
namespace {

std::string Read(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}
void Write(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

TEST(Checksums, FollowEveryWayOfChangingAndUndoing) {
  ProjectFixture project;
  Database& db = project.db;
  EXPECT_TRUE(ForeignChanges(db).empty()) << "a new project";
  project.AddVertices(300);
  db.Execute("update Vertices set X=X+1 where VID<20");
  db.Execute("delete from Vertices where VID>290");
  {
    Recordset rows = db.OpenRecordset("select * from Vertices where VID=5");
    rows.Edit();
    rows.Set("Y", Value(7.5));
    rows.Update();
  }
  {
    Transaction outer(db);
    db.Execute("update Vertices set Y=0 where VID=1");
    Transaction inner(db);
    db.Execute("update Vertices set Y=0");
    inner.Rollback();
    outer.Commit();
  }
  {
    Transaction undone(db);
    db.Execute("delete from Vertices");
    undone.Rollback();
  }
  db.Execute("insert into Wells (VID,Label) values (1,'a')");
  EXPECT_TRUE(ForeignChanges(db).empty());
  db.Close();
  db = Database::Open(project.path);
  EXPECT_TRUE(ForeignChanges(db).empty());
}

TEST(Checksums, TellAChangedNumberAndTakeItOnRequest) {
  ProjectFixture project;
  project.AddVertices(3);
  project.db.Execute("update Vertices set X=1234.5678 where VID=2");
  project.db.Close();
  std::string bytes = Read(project.path);
  const std::string number("\x40\x93\x4A\x45\x6D\x5C\xFA\xAD", 8);  // 1234.5678
  const std::size_t at = bytes.find(number);
  ASSERT_NE(at, std::string::npos);
  bytes[at + 6] ^= 1;
  Write(project.path, bytes);
  project.db = Database::Open(project.path);
  const std::vector<ChangedTable> changed = ForeignChanges(project.db);
  ASSERT_EQ(changed.size(), 1U);
  EXPECT_EQ(changed[0].table, "Vertices");
  AcceptContents(project.db);
  EXPECT_TRUE(ForeignChanges(project.db).empty());
}

TEST(Salvage, ReadsWhatIsLeftAndKeepsTheDamagedFile) {
  ProjectFixture project;
  project.AddVertices(2000);
  project.db.Execute("insert into Wells (VID,Label) values (1,'Brunnen \u00fc')");
  project.db.Close();
  const std::string whole = Read(project.path);
  const std::size_t pages = whole.size() / 4096;
  std::int64_t lost = 0;
  for (std::size_t page = 0; page < pages; ++page) {
    std::string bytes = whole;
    bytes.replace(page * 4096, 4096, 4096, '\0');
    Write(project.path, bytes);
    SalvageReport report;
    try {
      report = SalvageProject(project.path);
    } catch (const StoreError&) {
      EXPECT_EQ(Read(project.path), bytes) << page;
      continue;
    }
    EXPECT_EQ(Read(report.copy), bytes) << page;
    Database db = Database::Open(project.path);
    EXPECT_EQ(db.RowCount("Model"), 1);
    const std::int64_t there = db.RowCount("Vertices");
    EXPECT_GE(there, 1700) << page;
    if (there < 2000) {
      EXPECT_NE(report.Losses().find("Vertices"), std::string::npos) << page;
    }
    lost += 2000 - there;
  }
  EXPECT_LE(lost, 2200) << "each row is on one page";
}

TEST(Update, RefusesAVersionThatNeverWas) {
  ProjectFixture project;
  project.db.Execute("update Project set ProjectVersion=150");
  project.db.Close();
  const std::string bytes = Read(project.path);
  std::string message;
  FailureOf([&] { UpdateProject(project.path, "/"); }, &message);
  EXPECT_NE(message.find("150"), std::string::npos);
  EXPECT_EQ(Read(project.path), bytes);
}

}  // namespace
}  // namespace ormel::test
