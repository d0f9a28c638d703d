#include "model/barriers.h"

#include <gtest/gtest.h>

#include "form_rows.h"
#include "model/digitize.h"
#include "model/vertices.h"

namespace ormel::test {
namespace {

class Barriers : public ::testing::Test {
 protected:
  void ClickAt(double x, double y, bool first) {
    ormel.mouse.LastX = x;
    ormel.mouse.LastY = y;
    ElemAddNoFlowVertex(ormel, first);
  }
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Barriers, dialog_checks_label_and_excludes_regions) {
  StoreBarrier(ormel, {.Label = "Fault d'Or"}, {});
  const FormRow kRows[] = {{"no label", {}, "Data Missing", "Label must be specified. ", "tbLabel"},
                           {"label of another",
                            {{"tbLabel", "FAULT D'OR"}},
                            "Duplicate Label",
                            "Barrier Label ('FAULT D'OR') already exists!\nPlease enter a new label.",
                            "tbLabel"},
                           {"new label", {{"tbLabel", "East"}}, "", "", ""}};
  for (const FormRow& row : kRows) {
    NoFlowString form(ormel);
    CheckRow(test, form, row);
  }
}

TEST_F(Barriers, closed_code_comes_from_three_switches_and_goes_back_to_them) {
  struct Row {
    std::vector<Entry> entries;
    BarrierClosed closed;
  };
  const Row kRows[] = {
      {{}, BarrierClosed::kOpen},
      {{{"ClosedDomain", "on"}}, BarrierClosed::kClosed},
      {{{"ClosedDomain", "on"}, {"IgnoreInside", "on"}}, BarrierClosed::kIgnoreInside},
      {{{"ClosedDomain", "on"}, {"IgnoreInside", "on"}, {"IgnoreOutside", "on"}},
       BarrierClosed::kIgnoreOutside},
      {{{"ClosedDomain", "on"}, {"IgnoreInside", "on"}, {"ClosedDomain", "off"}}, BarrierClosed::kOpen}};
  for (const Row& row : kRows) {
    NoFlowString form(ormel), again(ormel);
    Type(form, row.entries);
    EXPECT_EQ(form.Row().Closed, row.closed);
    EXPECT_EQ(form.State("IgnoreInside").enabled, row.closed != BarrierClosed::kOpen);
    again.Fill(form.Row());
    EXPECT_EQ(again.Row().Closed, row.closed);
  }
}

TEST_F(Barriers, are_drawn_from_dialog_to_right_click) {
  ormel.solution.ValidSolution = true;
  test.ui.AnswerTo("Model Changed!", {Answer::kYes});
  test.ui.color = Rgb(10, 20, 30);
  test.ui.OnForm("NoFlowString", [](Form& form) {
    form.Click("CmdBarrierColor");
    Fill({{"tbLabel", "wall"}, {"ClosedDomain", "on"}, {"IgnoreInside", "on"}})(form);
  });
  ElemAddNoFlowString(ormel);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kDigitize);
  EXPECT_EQ(ormel.mouse.MouseElement, Element::kBarrier);
  EXPECT_EQ(ormel.activity, "Add No-flow");
  EXPECT_EQ(ormel.feedback, "Click mouse at vertices -- right-click to end");
  EXPECT_FALSE(test.view.menus_on);
  const Pid pid = ormel.mouse.CurrentPID;
  ClickAt(0, 0, true);
  EXPECT_TRUE(ormel.mouse.LineInProgress);
  ClickAt(10, 0, false);
  ClickAt(10, 10, false);
  ElemEndNoFlowString(ormel);

  EXPECT_EQ(PointsOf(ormel, pid), (std::vector<MapPoint>{{0, 0}, {10, 0}, {10, 10}}));
  Recordset row = ormel.db().OpenRecordset("select * from NoFlowStrings");
  EXPECT_EQ(row.Get<Pid>("PID"), pid);
  EXPECT_EQ(row.Get<int>("Closed"), 2);
  EXPECT_EQ(row.Get<int>("Color"), Rgb(10, 20, 30).value);
  EXPECT_EQ(row.Get<double>("HydCond"), 0.0);
  EXPECT_EQ(row.Get<double>("Thickness"), 1.0);
  EXPECT_EQ(row.Get<double>("Porosity"), 0.2);
  EXPECT_EQ(row.Get<double>("BottomElevation"), -9999.0);
  EXPECT_FALSE(ormel.solution.ValidSolution);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kSelect);
  EXPECT_FALSE(ormel.mouse.LineInProgress);
  EXPECT_TRUE(test.view.menus_on);
}

TEST_F(Barriers, edit_restores_the_fixed_values) {
  const Pid pid = StoreBarrier(ormel, {.Label = "a"}, {});
  ormel.db().Execute("update NoFlowStrings set HydCond=5,Thickness=9,Porosity=0.9,BottomElevation=3");
  ChangeBarrier(ormel, pid, {.Label = "b", .Closed = BarrierClosed::kClosed});
  EXPECT_EQ(test.Number("select HydCond from NoFlowStrings"), 0.0);
  EXPECT_EQ(test.Number("select Thickness from NoFlowStrings"), 1.0);
  EXPECT_EQ(test.Number("select Porosity from NoFlowStrings"), 0.2);
  EXPECT_EQ(test.Number("select BottomElevation from NoFlowStrings"), -9999.0);
  EXPECT_EQ(test.Text("select Label from NoFlowStrings"), "b");
}

TEST_F(Barriers, of_one_point_go_without_a_trace_and_without_a_question) {
  ormel.solution.ValidSolution = true;
  test.ui.OnForm("NoFlowString", Fill({{"tbLabel", "dot"}}));
  ElemAddNoFlowString(ormel);
  ClickAt(0, 0, true);
  ElemEndNoFlowString(ormel);
  ASSERT_EQ(test.ui.boxes.size(), 1U);
  EXPECT_EQ(test.ui.LastText(),
            "The currently selected no-flow boundary has only one point.  The string will be deleted.");
  for (const char* table : {"NoFlowStrings", "Polygons", "Vertices"})
    EXPECT_EQ(ormel.db().RowCount(table), 0) << table;
  EXPECT_FALSE(ormel.solution.ValidSolution);
  EXPECT_TRUE(test.view.menus_on);
}

TEST_F(Barriers, left_before_the_first_click_leave_nothing) {
  test.ui.OnForm("NoFlowString", Fill({{"tbLabel", "nothing"}}));
  ElemAddNoFlowString(ormel);
  AbandonDigitizing(ormel);
  for (const char* table : {"NoFlowStrings", "Polygons"}) EXPECT_EQ(ormel.db().RowCount(table), 0) << table;
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kSelect);
  EXPECT_TRUE(test.view.menus_on);
}

TEST_F(Barriers, cancelled_dialog_starts_nothing) {
  test.ui.OnForm("NoFlowString", Fill({{"tbLabel", "x"}}, "Cancel"));
  ElemAddNoFlowString(ormel);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kSelect);
  EXPECT_EQ(ormel.db().RowCount("Polygons"), 0);
}

}  // namespace
}  // namespace ormel::test
