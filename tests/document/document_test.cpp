#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <set>

#include "core/command.h"
#include "document/document.h"
#include "document/fields.h"
#include "document/fingerprint.h"
#include "document/kinds.h"
#include "document/record.h"
#include "store/schema.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

struct DocumentTest : testing::Test, TestProject {
  Document document{ormel};

  Vid AddVertex(MapPoint at, Pid pid = kSinglePoint, Seq seq = 0) {
    BulkInsert rows(ormel.db(), "Vertices", {"PID", "Seq", "X", "Y"});
    rows.Row(pid, seq, at.x, at.y);
    return rows.LastNumber();
  }
  void Do(const std::string& sql) {
    RunCommand(ormel, "test", [&] { ormel.db().Execute(sql); });
  }
};

TEST_F(DocumentTest, the_nearest_vertex_is_none_that_a_command_took_back) {
  RunCommand(ormel, "test", [&] { AddVertex({0, 0}); });
  const Vid first = document.NearestVertex({9, 9}).vid;
  RunCommand(ormel, "test", [&] {
    Transaction attempt(ormel.db());
    const Vid second = AddVertex({10, 10});
    EXPECT_EQ(document.NearestVertex({9, 9}).vid, second);
    attempt.Rollback();
    EXPECT_EQ(document.NearestVertex({9, 9}).vid, first) << "within the command";
  });
  EXPECT_EQ(document.NearestVertex({9, 9}).vid, first) << "and behind it";
}

TEST(Fields, every_table_of_a_kind_is_undone_and_no_result_is) {
  for (const ElementKind& kind : ElementKinds()) {
    if (kind.table.empty()) continue;
    ASSERT_NE(schema::FindTable(kind.table), nullptr) << kind.table;
    EXPECT_TRUE(kind.key.empty() || RoleOf(kind.table, kind.key).Undone()) << kind.table;
  }
  const std::set<std::string> undone(UndoneTables().begin(), UndoneTables().end());
  for (const schema::Table& table : schema::Tables()) {
    const bool result = table.name.ends_with("Results");
    EXPECT_TRUE(!result || undone.count(std::string(table.name)) == 0) << table.name;
  }
  EXPECT_EQ(RoleOf("testpoints", "MODELHEAD").role, Role::kResult);
  EXPECT_EQ(RoleOf("Model", "WINDOWX1").role, Role::kView);
}

TEST_F(DocumentTest, the_nearest_vertex_is_that_of_a_look_at_all_after_every_change) {
  std::mt19937 random(7);
  const auto below_40 = [&] { return static_cast<double>(random() % 40); };
  const auto place = [&] { return MapPoint{below_40(), below_40()}; };
  const auto nearest_of_all = [&](MapPoint at) {
    RowReader rows(ormel.db(), "select VID,X,Y from Vertices order by VID");
    double best = std::numeric_limits<double>::infinity();
    Vid found = -1;
    while (rows.Next()) {
      const double dx = at.x - rows.Double(1), dy = at.y - rows.Double(2);
      if (dx * dx + dy * dy >= best) continue;
      best = dx * dx + dy * dy;
      found = rows.Long(0);
    }
    return found;
  };
  EXPECT_EQ(document.NearestVertex({0, 0}).vid, -1);
  for (int round = 0; round < 300; ++round) {
    RunCommand(ormel, "test", [&] {
      const std::string any = std::to_string(1 + random() % 150);
      switch (random() % 4) {
        case 0:
        case 1:
          AddVertex(place());
          break;
        case 2:
          ormel.db().Execute("update Vertices set X=?,Y=? where VID=" + any, {place().x, place().y});
          break;
        default:
          ormel.db().Execute("delete from Vertices where VID=" + any);
      }
    });
    const MapPoint at = place();
    ASSERT_EQ(document.NearestVertex(at).vid, nearest_of_all(at)) << round;
  }
  while (document.CanUndo()) RunCommand(ormel, "undo", [&] { document.Undo(); });
  EXPECT_EQ(document.NearestVertex({0, 0}).vid, -1);
  AddVertex({3, 4});  // outside any command
  EXPECT_EQ(document.NearestVertex({0, 0}).distance_squared, 25.0);
}

TEST_F(DocumentTest, fingerprints_follow_what_a_change_spoils) {
  const Vid well = AddVertex({1, 1});
  const Vid label = AddVertex({2, 2}, 7, 1);
  AddVertex({9, 2}, 7, 101);
  AddVertex({5, 5}, 8, 1);
  const Vid particle = AddVertex({6, 6});
  ormel.db().Execute("insert into Wells (VID,Label) values (?,'W')", {well});
  ormel.db().Execute("insert into LinesinkStrings (PID,Label) values (7,'L')");
  ormel.db().Execute("insert into Capzones (PID,Label) values (8,'C')");
  ormel.db().Execute("insert into Particles (VID) values (?)", {particle});
  struct Row {
    const char* sql;
    bool solution, contours, paths, rerun;
  };
  const Row kRows[] = {
      {"update Wells set Head=5", true, false, false, false},
      {"update Wells set NParticles=9", false, false, true, false},
      {"update Wells set Setback=9", false, false, false, false},
      {"update Vertices set X=X+1 where PID=7 and Seq=1", true, false, false, false},
      {"update Vertices set Seq=Seq*2 where PID=7", false, false, false, false},
      {"update Vertices set Seq=1000-Seq where PID=7", true, false, false, false},
      {"update Vertices set X=X+1 where PID=8", false, false, false, false},
      {"update Vertices set X=X+1 where X=6", false, false, true, false},
      {"update Model set CONTOURInterval=3", false, true, false, false},
      {"update Model set TRACEStep=3", false, false, true, false},
      {"update Model set SOLVERIterations=7", false, false, false, true},
      {"update Model set AQPorosity=0.3", true, false, false, false},
      {"update Model set WINDOWX1=3,SOLVERX0=9,MARGINLeft=2", false, false, false, false},
  };
  ASSERT_GT(label, 0);
  for (const Row& row : kRows) {
    const Fingerprint before = FingerprintOf(ormel);
    ormel.db().Execute(row.sql);
    const Fingerprint after = FingerprintOf(ormel);
    EXPECT_EQ(before.solution != after.solution, row.solution) << row.sql;
    EXPECT_EQ(before.contours != after.contours, row.contours) << row.sql;
    EXPECT_EQ(before.paths != after.paths, row.paths) << row.sql;
    EXPECT_EQ(before.rerun != after.rerun, row.rerun) << row.sql;
  }
}

TEST_F(DocumentTest, a_record_tells_kinds_identities_and_roles) {
  struct Listener : ChangeListener {
    void CommandEnded(const ChangeRecord& record) override { records.push_back(record); }
    std::vector<ChangeRecord> records;
  } listener;
  ormel.changes.Subscribe(listener);
  Do("insert into LinesinkStrings (PID,Label) values (12,'L')");
  Do("update Model set TRACEStep=2,WINDOWX1=4");
  Do("select 1");
  Do("delete from LinesinkStrings");
  ormel.changes.Unsubscribe(listener);
  ASSERT_EQ(listener.records.size(), 4U);
  const auto added = TouchedBy(listener.records[0].rows);
  ASSERT_EQ(added.size(), 1U);
  EXPECT_TRUE(added[0].added);
  EXPECT_EQ(added[0].row, 12);
  EXPECT_TRUE(listener.records[0].Touches("linesinkstrings"));
  const auto changed = TouchedBy(listener.records[1].rows);
  EXPECT_EQ(changed.at(0).fields, (std::vector<std::string>{"TRACEStep", "WINDOWX1"}));
  EXPECT_TRUE(changed[0].Has(Role::kRun));
  EXPECT_TRUE(changed[0].Has(Role::kView));
  EXPECT_TRUE(listener.records[2].rows.empty());
  EXPECT_TRUE(TouchedBy(listener.records[3].rows).at(0).removed);
  EXPECT_EQ(document.UndoName(), "Delete Linesink");
}

TEST_F(DocumentTest, another_project_begins_a_new_history) {
  Do("insert into Polygons (Closed) values (0)");
  EXPECT_TRUE(document.CanUndo());
  RunCommand(ormel, "reopen", [&] {
    DetachProject(ormel);
    AttachProject(ormel, dir / "town.orm");
    LoadDataControls(ormel);
    ormel.db().Execute("insert into Polygons (Closed) values (1)");
  });
  EXPECT_FALSE(document.CanUndo());
  Do("insert into Polygons (Closed) values (1)");
  RunCommand(ormel, "undo", [&] { document.Undo(); });
  EXPECT_EQ(Number("select count(*) from Polygons"), 2);
}

}  // namespace
}  // namespace ormel::test
