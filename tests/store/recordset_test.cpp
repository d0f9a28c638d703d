#include "store/recordset.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "new_project.h"

namespace ormel {
namespace {

using test::FailureOf;
using test::ProjectFixture;
using testing::ElementsAre;

std::vector<std::int64_t> Walk(Recordset& rows, std::string_view field) {
  std::vector<std::int64_t> out;
  for (rows.MoveFirst(); rows.HasRow(); rows.MoveNext()) out.push_back(rows.Get<std::int64_t>(field));
  return out;
}

// The same walk over each kind of row set.
class KindsTest : public testing::TestWithParam<const char*> {};

TEST_P(KindsTest, MovesAndMarks) {
  ProjectFixture project;
  project.AddVertices(3);
  Recordset rows = project.db.OpenRecordset(GetParam());
  EXPECT_EQ(rows.RecordCount(), 3);
  EXPECT_TRUE(rows.HasRow());
  EXPECT_THAT(Walk(rows, "vid"), ElementsAre(1, 2, 3));
  EXPECT_TRUE(rows.IsEOF());
  EXPECT_FALSE(rows.IsBOF());
  EXPECT_EQ(FailureOf([&] { rows.MoveNext(); }), StoreErrorCode::kNoCurrentRow);
  EXPECT_EQ(FailureOf([&] { rows.Get(0); }), StoreErrorCode::kNoCurrentRow);
  rows.MovePrevious();
  EXPECT_EQ(rows.Get<int>("VID"), 3);
  const Bookmark third = rows.GetBookmark();
  rows.MoveFirst();
  rows.MovePrevious();
  EXPECT_TRUE(rows.IsBOF());
  rows.MoveNext();
  EXPECT_EQ(rows.Get<int>("VID"), 1);
  rows.SetBookmark(third);
  EXPECT_EQ(rows.Get<int>("VID"), 3);
  EXPECT_TRUE(rows.FindFirst("VID=2"));
  EXPECT_EQ(rows.Get<double>("y"), -2.0);
  EXPECT_FALSE(rows.FindFirst("VID=9"));
  EXPECT_TRUE(rows.NoMatch());
  EXPECT_EQ(rows.Get<int>("VID"), 2);
  EXPECT_TRUE(rows.FindFirst("X > 2 and Y < 0"));
  EXPECT_EQ(rows.Get<int>("VID"), 3);
  EXPECT_TRUE(rows.FindKey("X", 1));
  EXPECT_EQ(rows.Get<int>("VID"), 1);
}

TEST_P(KindsTest, AreEmptyAtBothEnds) {
  ProjectFixture project;
  Recordset rows = project.db.OpenRecordset(GetParam());
  rows.MoveFirst();
  rows.MoveLast();
  EXPECT_TRUE(rows.IsBOF());
  EXPECT_TRUE(rows.IsEOF());
  EXPECT_EQ(rows.RecordCount(), 0);
  EXPECT_FALSE(rows.FindFirst("VID=1"));
  EXPECT_EQ(FailureOf([&] { rows.Get("VID"); }), StoreErrorCode::kNoCurrentRow);
  EXPECT_EQ(FailureOf([&] { rows.Get("Nothing"); }), StoreErrorCode::kNoSuchField);
}

INSTANTIATE_TEST_SUITE_P(Recordset, KindsTest,
                         testing::Values("select * from Vertices",
                                         "select * from vertices where PID=-1 order by Seq",
                                         "select VID,X,Y from Vertices order by vid;",
                                         "select VID+0 as VID,X,Y from Vertices order by 1"));

// Changing rows, over the kinds that can.
class EditableTest : public testing::TestWithParam<const char*> {};

TEST_P(EditableTest, AddsEditsDeletes) {
  ProjectFixture project;
  project.AddVertices(2);
  Recordset rows = project.db.OpenRecordset(GetParam());
  Recordset other = project.db.OpenRecordset("select * from Vertices");
  rows.AddNew();
  EXPECT_EQ(rows["VID"].AsLong(), 3);  // readable before Update
  EXPECT_EQ(rows["PID"].AsLong(), -1);
  rows["Seq"] = 5;
  rows["X"] = 7.5;
  rows.Update();
  EXPECT_EQ(rows["VID"].AsLong(), 3);
  EXPECT_EQ(rows.RecordCount(), 3);
  EXPECT_TRUE(other.FindFirst("X=7.5"));
  rows.Edit();
  rows["Y"] = 4;
  EXPECT_EQ(other["Y"].AsDouble(), 0.0);
  rows.Update();
  EXPECT_EQ(other["Y"].AsDouble(), 4.0);  // seen at once
  rows.MoveFirst();
  rows.MoveNext();
  rows.Delete();
  EXPECT_EQ(FailureOf([&] { rows.Get("X"); }), StoreErrorCode::kRowDeleted);
  EXPECT_EQ(FailureOf([&] { rows.Delete(); }), StoreErrorCode::kRowDeleted);
  rows.MoveNext();
  EXPECT_EQ(rows["VID"].AsLong(), 3);
  EXPECT_THAT(Walk(rows, "VID"), ElementsAre(1, 3));
  rows.MoveLast();
  rows.Delete();
  rows.MoveNext();
  EXPECT_TRUE(rows.IsEOF());
  rows.AddNew();
  rows["Seq"] = 6;
  rows.Update();
  EXPECT_EQ(rows["VID"].AsLong(), 4);  // 3 is never given again
  EXPECT_EQ(rows.RecordCount(), 2);
}

TEST_P(EditableTest, AFailedUpdateLeavesTheRow) {
  ProjectFixture project;
  project.AddVertices(1);
  Recordset rows = project.db.OpenRecordset(GetParam());
  rows.Edit();
  rows["X"] = 99.0;
  rows["Seq"] = nullptr;
  std::string message;
  EXPECT_EQ(FailureOf([&] { rows.Update(); }, &message), StoreErrorCode::kRequired);
  EXPECT_THAT(message, testing::AllOf(testing::HasSubstr("Vertices"), testing::HasSubstr("Seq")));
  EXPECT_EQ(project.db.Scalar("select X from Vertices").AsDouble(), 1.0);
  EXPECT_EQ(rows["X"].AsDouble(), 99.0);  // the edit goes on
  rows.CancelUpdate();
  EXPECT_EQ(rows["X"].AsDouble(), 1.0);
  EXPECT_EQ(FailureOf([&] { rows["X"] = 1; }), StoreErrorCode::kUpdateWithoutEdit);
  EXPECT_EQ(FailureOf([&] { rows.Update(); }), StoreErrorCode::kUpdateWithoutEdit);
}

TEST_P(EditableTest, PassesOverRowsThatOthersDeleted) {
  ProjectFixture project;
  project.AddVertices(4);
  Recordset rows = project.db.OpenRecordset(GetParam());
  project.db.Execute("delete from Vertices where VID in (1,3)");
  EXPECT_EQ(FailureOf([&] { rows.Get("X"); }), StoreErrorCode::kRowDeleted);
  EXPECT_EQ(rows.RecordCount(), 2);
  rows.MoveNext();
  EXPECT_EQ(rows["VID"].AsLong(), 2);
  rows.MoveNext();
  EXPECT_EQ(rows["VID"].AsLong(), 4);
  project.db.Execute("delete * from Vertices");
  EXPECT_EQ(rows.RecordCount(), 0);
  rows.MoveFirst();
  EXPECT_TRUE(rows.IsBOF() && rows.IsEOF());
}

INSTANTIATE_TEST_SUITE_P(Recordset, EditableTest,
                         testing::Values("select * from Vertices",
                                         "select * from vertices where PID=-1 order by Seq",
                                         "select VID,PID,Seq,X,Y from Vertices order by vid;"));

TEST(Recordset, TellsWhyItCannotChangeAQuery) {
  ProjectFixture project;
  project.AddVertices(1);
  Recordset rows = project.db.OpenRecordset("select max(X) as MaxX from Vertices");
  EXPECT_FALSE(rows.Updatable());
  EXPECT_EQ(FailureOf([&] { rows.Edit(); }), StoreErrorCode::kNotUpdatable);
  EXPECT_EQ(FailureOf([&] { rows.AddNew(); }), StoreErrorCode::kNotUpdatable);
  EXPECT_EQ(FailureOf([&] { rows.Delete(); }), StoreErrorCode::kNotUpdatable);
  EXPECT_EQ(FailureOf([&] { project.db.OpenRecordset("delete from Vertices"); }),
            StoreErrorCode::kNotUpdatable);
  EXPECT_EQ(project.db.RowCount("Vertices"), 1);
}

TEST(Recordset, SingleFieldsCanBeEdited) {
  ProjectFixture project;
  Recordset rows = project.db.OpenRecordset("select UNIFLOWCompute from Model");
  rows.Edit();
  rows[0] = true;  // a whole-number field takes True as -1
  rows.Update();
  EXPECT_EQ(rows[0].AsLong(), -1);
}

TEST(Recordset, ComparesTextsWithoutCase) {
  ProjectFixture project;
  Recordset wells = project.db.OpenRecordset("select * from Wells");
  int vid = 0;
  for (const char* label : {"Brunnen S\u00fcd", "O'Neill", "Mirror_O'Neill", "zebra", "\u00c4pfel"}) {
    wells.AddNew();
    wells["VID"] = ++vid;
    wells["Label"] = label;
    wells.Update();
  }
  EXPECT_TRUE(wells.FindFirst("Label='BRUNNEN S\u00dcD'"));
  EXPECT_TRUE(wells.FindFirst("LABEL='o''neill'"));
  EXPECT_EQ(wells["VID"].AsLong(), 2);
  EXPECT_TRUE(wells.FindFirst("Label='o''neill' and vid>0"));
  EXPECT_TRUE(wells.FindFirst("Label like \"MIRROR_*\""));
  EXPECT_EQ(wells["VID"].AsLong(), 3);
  Recordset list = project.db.OpenRecordset("select Label,VID*1 as V from Wells");
  EXPECT_TRUE(list.FindFirst("Label='BRUNNEN S\u00dcD'"));
  EXPECT_TRUE(list.FindFirst("Label='\u00e4PFEL' and V=5"));
  EXPECT_EQ(project.db.OpenRecordset("select * from Wells where Label='ZEBRA'").RecordCount(), 1);
  Recordset sorted = project.db.OpenRecordset("select * from Wells order by Label");
  EXPECT_EQ(sorted["VID"].AsLong(), 1);
}

TEST(Recordset, ConvertsToTheFieldsTypes) {
  ProjectFixture project;
  Recordset model = project.db.OpenRecordset("select * from model;");
  EXPECT_EQ(model.Get<double>("AQThickness"), 1.0);
  EXPECT_TRUE(model["AQThickness"].value().IsText());
  model.Edit();
  model["AQThickness"] = 22.5;
  model["EDITGRIDSnap"] = 1;
  model["SOLVERIterations"] = 2.5;
  model["AQBase"] = " -3.5 ";
  model.Update();
  EXPECT_EQ(model.Get<std::string>("AQThickness"), "22.5");
  EXPECT_TRUE(model.Get<bool>("EDITGRIDSnap"));
  EXPECT_EQ(project.db.Scalar("select EDITGRIDSnap+0 from Model").AsLong(), -1);
  EXPECT_EQ(model.Get<int>("solveriterations"), 2);
  EXPECT_EQ(model.Get<double>("AQBASE"), -3.5);
  model.Edit();
  EXPECT_EQ(FailureOf([&] { model["AQBase"] = "12abc"; }), StoreErrorCode::kWrongType);
  EXPECT_EQ(FailureOf([&] { model["AQBase"] = std::numeric_limits<double>::infinity(); }),
            StoreErrorCode::kWrongType);
  EXPECT_EQ(FailureOf([&] { model["AQBase"] = std::numeric_limits<double>::quiet_NaN(); }),
            StoreErrorCode::kWrongType);
  model["SOLVERIterations"] = 40000;
  EXPECT_EQ(FailureOf([&] { model.Update(); }), StoreErrorCode::kWrongType);
}

TEST(Recordset, NumbersOfAnUndoneCommandAreNotSeen) {
  ProjectFixture project;
  Recordset polygons = project.db.OpenRecordset("select * from Polygons;");
  polygons.AddNew();
  const std::int64_t dropped = polygons["PID"].AsLong();
  polygons.CancelUpdate();
  polygons.AddNew();
  EXPECT_GT(polygons["PID"].AsLong(), dropped);
  polygons.Update();
  project.db.Execute("delete from Polygons");
  project.db.Close();
  Database again = Database::Open(project.path);
  Recordset rows = again.OpenRecordset("select * from Polygons;");
  rows.AddNew();
  EXPECT_EQ(rows["PID"].AsLong(), dropped + 2);
  EXPECT_EQ(FailureOf([&] { polygons.MoveFirst(); }), StoreErrorCode::kClosed);
}

TEST(Recordset, ABoundSetGrowsWithItsTable) {
  ProjectFixture project;
  Transaction command(project.db);
  Recordset bound = project.db.OpenRecordset("select * from Vertices;");
  constexpr int kCount = 20000;  // seconds when any of these calls walked the table
  for (int i = 1; i <= kCount; ++i) {
    if (bound.RecordCount() > 0) bound.MoveLast();
    bound.AddNew();
    const std::int64_t vid = bound["VID"].AsLong();
    bound["VID"] = vid;
    bound["PID"] = i % 7;
    bound["Seq"] = i;
    bound["X"] = i;
    bound.Update();
    bound.Requery();
    ASSERT_TRUE(bound.FindFirst("VID=" + std::to_string(vid)));
    ASSERT_EQ(bound.RecordCount(), i);
  }
}

}  // namespace
}  // namespace ormel
