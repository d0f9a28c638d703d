// The silent check at each open and the repair of stray points.
#include "shell/integrity.h"

#include <gmock/gmock.h>

#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/wells.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

struct IntegrityTest : ::testing::Test, TestProject {
  /// Gives the identity of a new vertex.
  std::int64_t Vertex(int pid, double x, double y) {
    ormel.db().Execute("insert into Vertices (PID,Seq,X,Y) values (?,0,?,?)", {pid, x, y});
    return ormel.db().Scalar("select max(VID) from Vertices").AsLong();
  }
  void TestPoint(std::int64_t vid) {
    ormel.db().Execute("insert into TestPoints (VID,ObsHead,Label) values (?,1,'T')", {vid});
  }
  double Count(const std::string& table) { return Number("select count(*) from " + table); }
};

TEST_F(IntegrityTest, CleanProjectIsNotChanged) {
  StoreWell(ormel, {.Label = "W"}, {1, 1});
  DBIntegrity(ormel);
  EXPECT_EQ(Count("Vertices"), 1);
  EXPECT_EQ(Count("Wells"), 1);
  EXPECT_TRUE(ui.boxes.empty());
  EXPECT_EQ(ui.wait_texts, std::vector<std::string>{"Inspecting Database Integrity..."});
  EXPECT_EQ(ui.wait_depth, 0);
}

TEST_F(IntegrityTest, UnclaimedVerticesGo) {
  StoreWell(ormel, {.Label = "W"}, {1, 1});
  TestPoint(Vertex(-1, 2, 2));
  const auto particle = Vertex(-1, 3, 3);
  ormel.db().Execute("insert into Particles (VID) values (?)", {particle});
  const auto boundary = Vertex(-1, 7, 7);
  ormel.db().Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,VID1,VID2) values ('W',1,1,0.2,?,0)", {boundary});
  Vertex(-1, 4, 4);
  Vertex(5, 6, 6);  // of a string
  ormel.db().Execute("update Model set UNIFLOWCompute=-1, UNIFLOWRefX=10, UNIFLOWRefY=20");
  Vertex(-10, 11, 21);
  Vertex(-10, 10, 21);
  Vertex(-10, 11, 20);
  DBIntegrity(ormel);
  EXPECT_EQ(Count("Vertices"), 7);
  EXPECT_EQ(Number("select count(*) from Vertices where X=4 or (X=11 and Y=21)"), 0);
  EXPECT_EQ(Number("select UNIFLOWCompute from Model"), 1);
  EXPECT_TRUE(ui.boxes.empty());
}

TEST_F(IntegrityTest, PointsOfAStreamBoundaryStay) {
  StoreWell(ormel, {.Label = "W"}, {1, 1});
  const auto first = Vertex(-1, 5, 5), second = Vertex(-1, 500, 500);
  const auto stray = Vertex(-1, 7, 7);
  ormel.db().Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,WHPAText,Type,VID1,VID2) values "
      "('W',0,0,0.2,'NONE',3,?,?)",
      {first, second});
  ormel.db().Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,WHPAText) values ('W',9,0,0,'NONE')");
  DBIntegrity(ormel);
  EXPECT_EQ(Count("Vertices"), 3);
  EXPECT_EQ(Number("select count(*) from Vertices where VID=" + std::to_string(stray)), 0);
  ormel.window.SolveWindow = {0, 100, 50, 0};
  ui.AnswerTo("Database Repair", {Answer::kOk});
  DBRepair(ormel);  // the second point lies outside the window, but it belongs to the area
  EXPECT_EQ(Count("Vertices"), 3);
}

TEST_F(IntegrityTest, RepairRemovesWhatLiesOutsideTheWindow) {
  ormel.window.SolveWindow = {0, 100, 50, 0};
  StoreWell(ormel, {.Label = "in"}, {100, 50});  // on a corner: inside
  StoreWell(ormel, {.Label = "out"}, {100.5, 50});
  ormel.db().Execute("insert into Wells (VID,Label) values (999,'no vertex')");
  TestPoint(Vertex(-1, 50, 25));
  TestPoint(Vertex(-1, 50, -1));
  TestPoint(888);  // no vertex
  ormel.db().Execute("insert into TextLabels (Text,X,Y) values ('a',-1,10)");
  ormel.db().Execute("insert into TextLabels (Text,X,Y) values ('b',1,10)");
  ui.AnswerTo("Database Repair", {Answer::kOk});
  DBRepair(ormel);
  EXPECT_EQ(Count("Wells"), 2);
  EXPECT_EQ(Count("TestPoints"), 1);
  EXPECT_EQ(Count("TextLabels"), 1);
  EXPECT_EQ(Count("Vertices"), 2);
  std::vector<std::string> texts;
  for (const Box& box : ui.boxes) texts.push_back(box.text);
  EXPECT_THAT(texts, ::testing::Contains("Found Test Point without vertex!\nTest Point has been deleted."));
  EXPECT_THAT(texts, ::testing::Contains("Deleted 1 Test Points\nwhich occured outside the current Window."));
  EXPECT_THAT(texts, ::testing::Contains("Deleted 1 Wells\nwhich occured outside the current Window."));
  EXPECT_EQ(ui.LastText(), "Database Repair completed.");
}

TEST_F(IntegrityTest, WhatADrawingCutShortHasLeftGoes) {
  const MapPoint course[] = {{0, 0}, {10, 0}};
  StoreLinesink(ormel, {.Label = "River"}, course);
  StoreLinesink(ormel, {.Label = "lost"}, {});
  StoreInhomogeneity(ormel, {.Label = "lost"}, {});
  ormel.db().Execute("insert into Capzones (Label,PID) values ('lost',77)");
  DBIntegrity(ormel);
  EXPECT_EQ(Text("select group_concat(Label) from LinesinkStrings"), "River");
  EXPECT_EQ(Count("Inhomogeneities") + Count("Capzones"), 0);
  EXPECT_EQ(Count("Polygons"), 1);
  EXPECT_TRUE(ui.boxes.empty());
  EXPECT_EQ(StoreLinesink(ormel, {.Label = "lost"}, course) > 0, true) << "recordsets stand on the rows left";
}

TEST_F(IntegrityTest, RepairTellsWhatItWouldDeleteAndTakesAreasAlong) {
  ormel.window.SolveWindow = {0, 100, 50, 0};
  StoreWell(ormel, {.Label = "in"}, {10, 10});
  StoreWell(ormel, {.Label = "far"}, {500, 10});
  for (int i = 0; i < 14; ++i) TestPoint(Vertex(-1, 200 + i, 0));
  ormel.db().Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,WHPAText,Type) values ('far',9,0,0,'NONE',1)");
  ui.AnswerTo("Database Repair", {Answer::kOk});
  ui.AnswerTo("Confirm", {Answer::kCancel});
  DBRepair(ormel);
  const std::string text = ui.boxes.front().text;
  EXPECT_TRUE(ui.boxes.front().safe_default) << "Enter deletes nothing";
  EXPECT_NE(text.find("These would go:\n14 Test Points: T, T"), std::string::npos) << text;
  EXPECT_NE(text.find(" and 2 more\n1 Wells: far"), std::string::npos) << text;
  EXPECT_EQ(Count("Wells") + Count("WHPAs") + Count("TestPoints"), 17) << "Cancel of the areas keeps all";

  ui.AnswerTo("Database Repair", {Answer::kOk});
  ui.AnswerTo("Confirm", {Answer::kOk});
  DBRepair(ormel);
  EXPECT_EQ(Count("Wells"), 1);
  EXPECT_EQ(Count("WHPAs"), 0);
}

TEST_F(IntegrityTest, RepairCancelledOrWithNothingToDo) {
  ui.AnswerTo("Database Repair", {Answer::kCancel});
  DBRepair(ormel);
  EXPECT_EQ(ui.boxes.size(), 1U);
  RemoveStrayWells(ormel);
  EXPECT_EQ(ui.LastText(), "Found no Wells outside the current Window.");
}

}  // namespace
}  // namespace ormel::test
