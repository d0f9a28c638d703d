#include <gtest/gtest.h>

#include "store/bulk.h"
#include "store/database.h"
#include "store/new_project.h"

namespace ormel::test {
namespace {

struct ChangeLogTest : testing::Test {
  ProjectFixture project;
  Database& db = project.db;
  void SetUp() override {
    db.WatchChanges({"Vertices", "TextLabels", "Model"});
    BulkInsert rows(db, "Vertices", {"PID", "Seq", "X", "Y"});
    for (int i = 1; i <= 3; ++i) rows.Row(7, i, 1.0 * i, 0.5);
    db.TakeChanges();
  }
};

TEST_F(ChangeLogTest, a_row_is_told_once_from_before_the_first_change_to_what_it_is) {
  db.Execute("update Vertices set X=10 where VID=2");
  db.Execute("update Vertices set X=11 where VID=2");
  db.Execute("delete from Vertices where VID=3");
  db.Execute("insert into Vertices (PID,Seq,X,Y) values (8,1,4,4)");
  db.Execute("insert into Polygons (Closed) values (0)");  // not watched
  const std::vector<RowChange> changes = db.TakeChanges();
  ASSERT_EQ(changes.size(), 3U);
  EXPECT_EQ(changes[0].row, 2);
  EXPECT_EQ(changes[0].Field("x", true).AsDouble(), 2.0);
  EXPECT_EQ(changes[0].Field("X", false).AsDouble(), 11.0);
  EXPECT_EQ(changes[0].Field("VID", true).AsLong(), 2);
  EXPECT_FALSE(changes[1].after.has_value());
  EXPECT_FALSE(changes[2].before.has_value());
  EXPECT_EQ(changes[2].Field("PID", false).AsLong(), 8);
  EXPECT_TRUE(db.TakeChanges().empty());
}

TEST_F(ChangeLogTest, what_was_undone_or_came_to_nothing_leaves_no_trace) {
  {
    Transaction all(db);
    db.Execute("update Vertices set X=10");
    {
      Transaction inner(db);
      db.Execute("delete from Vertices");
      inner.Rollback();
    }
    db.Execute("update Vertices set X=VID");  // as it was
    db.Execute("insert into TextLabels (Text,X) values ('a',1)");
    db.Execute("delete from TextLabels");
    // The last row breaks a rule: the statement's other rows go back too.
    EXPECT_THROW(db.Execute("update Vertices set Seq=case when VID=3 then 1e30 else 10 end"), StoreError);
  }
  EXPECT_TRUE(db.TakeChanges().empty());
  {
    Transaction all(db);
    db.Execute("delete from Vertices");
    all.Rollback();
  }
  EXPECT_TRUE(db.TakeChanges().empty());
}

TEST_F(ChangeLogTest, a_row_that_gets_another_number_is_two_rows) {
  db.Execute("update Vertices set VID=30 where VID=3");
  const std::vector<RowChange> changes = db.TakeChanges();
  ASSERT_EQ(changes.size(), 2U);
  EXPECT_FALSE(changes[0].after.has_value());
  EXPECT_EQ(changes[1].row, 30);
  EXPECT_FALSE(changes[1].before.has_value());
}

TEST_F(ChangeLogTest, all_rows_at_once_are_seen_and_can_be_put_back_with_every_type) {
  db.Execute(
      "insert into TextLabels (Text,X,Y,FontName,FontBold,FontSize) values ('it''s "
      "\u00e4',1,2.5,'Arial',True,12)");
  db.Execute("insert into TextLabels (Text,X,Y) values (null,3,null)");
  db.TakeChanges();
  const auto dump = [&] {
    std::string text;
    RowReader rows(db, "select *,typeof(FontBold),typeof(X) from TextLabels");
    while (rows.Next())
      for (int i = 0; i < rows.ColumnCount(); ++i)
        text += (rows.IsNull(i) ? "null" : rows.Get(i).AsText()) + "|";
    return text;
  };
  const std::string before = dump();
  db.Execute("delete from TextLabels");
  const std::vector<RowChange> changes = db.TakeChanges();
  ASSERT_EQ(changes.size(), 2U);
  for (const RowChange& change : changes) PutRow(db, change.table, change.row, *change.before);
  EXPECT_EQ(dump(), before);
  SetFields(db, "TextLabels", changes[0].row, {{"Text", "b"}, {"X", 9.0}});
  EXPECT_EQ(db.Scalar("select Text from TextLabels where X=9").AsText(), "b");
  RemoveRow(db, "TextLabels", changes[0].row);
  EXPECT_THROW(RemoveRow(db, "TextLabels", changes[0].row), StoreError);
  EXPECT_THROW(SetFields(db, "TextLabels", changes[0].row, {{"Text", "b"}}), StoreError);
}

TEST(ChangeLogOfAnOldFile, a_field_that_came_later_is_kept_with_its_default) {
  ProjectFixture project;
  Database& db = project.db;
  db.Execute("create table Old (A INTEGER)");
  db.Execute("insert into Old values (1)");
  db.Execute("alter table Old add column B DOUBLE not null default 2.5");
  db.WatchChanges({"Old"});
  db.Execute("update Old set A=2");
  const std::vector<RowChange> changes = db.TakeChanges();
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes[0].Field("B", true).AsDouble(), 2.5);
}

}  // namespace
}  // namespace ormel::test
