#include "model/linesinks.h"

#include <gtest/gtest.h>

#include "form_rows.h"
#include "model/vertices.h"

namespace ormel::test {
namespace {

using Points = std::vector<MapPoint>;

class Linesinks : public ::testing::Test {
 protected:
  void Digitize(const Points& points) {
    for (const MapPoint at : points) {
      ormel.mouse.LastX = at.x;
      ormel.mouse.LastY = at.y;
      ElemAddLinesinkVertex(ormel, !ormel.mouse.LineInProgress);
    }
  }
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Linesinks, dialog_checks_in_their_order) {
  StoreLinesink(ormel, {.Label = "L'Orge"}, {});
  const auto bed = [](const char* name, const char* value) {
    return std::vector<Entry>{{"tbLabel", "a"}, {name, value}};
  };
  const std::string positive = "\nPlease enter a positive value.";
  const FormRow kRows[] = {
      {"no label", {{"tbData(2)", "-1"}}, "Data Missing", "A unique Label must be specified.", "tbLabel"},
      {"label of another",
       {{"tbLabel", "l'orge"}},
       "Duplicate Label",
       "Linesink Label ('l'orge') already exists!\nPlease enter a new label.",
       "tbLabel"},
      {"resistance", bed("tbData(2)", "-1"), "Bad Entry", "Resistance cannot be negative." + positive,
       "tbData(2)"},
      {"width", bed("tbData(3)", "-1"), "Bad Entry", "Width cannot be negative." + positive, "tbData(3)"},
      {"depth", bed("tbData(4)", "-1"), "Bad Entry", "Depth cannot be negative." + positive, "tbData(4)"},
      {"zero bed", bed("tbData(4)", "0"), "", "", ""},
      {"drain without resistance", bed("chkDrain", "on"), "Error",
       "Linesinks specified as drains must have resistance", "tbData(2)"},
      {"drain", {{"tbLabel", "a"}, {"chkDrain", "on"}, {"tbData(2)", "0.5"}}, "", "", ""},
      {"empty heads", {{"tbLabel", "a"}, {"tbData(0)", ""}, {"tbData(1)", ""}}, "", "", ""},
      {"upgradient densities", {{"tbLabel", "a"}, {"optHeadSpec(1)", "on"}, {"tbData(1)", "5"}}, "", "", ""},
  };
  for (const FormRow& row : kRows) {
    LinesinkString form(ormel);
    CheckRow(test, form, row);
  }
}

TEST_F(Linesinks, upgradient_heads_are_kept_when_the_user_says_so) {
  for (const Answer answer : {Answer::kNo, Answer::kYes}) {
    test.ui.AnswerTo("Ormel", {answer});
    LinesinkString form(ormel);
    form.MarkShown();
    Fill({{"tbLabel", "a"}, {"tbData(0)", "1"}, {"tbData(1)", "2"}})(form);
    EXPECT_EQ(form.Hidden(), answer == Answer::kNo);
    EXPECT_TRUE(test.ui.LastText().starts_with(
        "Warning: Starting head is lower than ending head.\n               Entering a line sink"));
    EXPECT_EQ(form.Row().StartingHead, 1.0);
  }
}

TEST_F(Linesinks, fields_are_offered_by_kind) {
  struct Row {
    bool head, farfield;
    const char *caption, *unit;
    bool bed, farfield_offered;
  };
  const Row kRows[] = {{true, false, "Starting Head", "meters", true, true},
                       {true, true, "Starting Head", "meters", false, true},
                       {false, false, "Starting Sink Density", "m^2/day", false, false},
                       {false, true, "Starting Sink Density", "m^2/day", false, false}};
  for (const Row& row : kRows) {
    LinesinkString form(ormel);
    form.SetChecked("chkFarField", row.farfield);
    form.SetChecked(row.head ? "optHeadSpec(0)" : "optHeadSpec(1)", true);
    EXPECT_EQ(form.State("tbData(0)").caption, row.caption);
    EXPECT_EQ(form.State("tbData(1)").unit, row.unit);
    for (const char* name : {"tbData(2)", "tbData(3)", "tbData(4)"})
      EXPECT_EQ(form.State(name).enabled, row.bed) << name;
    EXPECT_EQ(form.State("chkFarField").enabled, row.farfield_offered);
  }
}

TEST_F(Linesinks, second_dialog_stores_values_but_neither_type_nor_drain) {
  ormel.solution.ValidSolution = true;
  test.ui.AnswerTo("Model Changed!", {Answer::kYes});
  test.ui.OnForm("LinesinkString", Fill({{"tbLabel", "Orge"},
                                         {"tbData(0)", "9"},
                                         {"tbData(1)", "8"},
                                         {"tbData(2)", "2"},
                                         {"chkDrain", "on"},
                                         {"Auto(1)", "on"}}));
  ElemAddLinesinkString(ormel);
  EXPECT_EQ(ormel.activity, "Add Linesinks");
  EXPECT_EQ(test.Number("select AutoSWIZC from LinesinkStrings"), 0.0);
  const Pid pid = ormel.mouse.CurrentPID;
  Digitize({{0, 0}, {10, 0}, {20, 5}});
  test.ui.OnForm("LinesinkString", [](Form& form) {
    EXPECT_EQ(form.Text("tbData(0)"), "9") << "the values of the first time";
    EXPECT_TRUE(form.Checked("Auto(1)"));
    EXPECT_EQ(form.FocusedControl(), "tbLabel");
    Fill({{"tbData(0)", "12"}, {"tbData(3)", "4"}, {"chkFarField", "on"}, {"chkDrain", "off"}})(form);
  });
  ElemEndLinesinkString(ormel);

  LinesinkRow row;
  ASSERT_TRUE(FindLinesink(ormel, pid, row));
  EXPECT_EQ(row.StartingHead, 12.0);
  EXPECT_EQ(row.EndingHead, 8.0);
  EXPECT_EQ(row.Resistance, 2.0);
  EXPECT_EQ(row.Width, 4.0);
  EXPECT_EQ(row.AutoSWIZC, LinesinkLocation::kCentreline);
  EXPECT_TRUE(row.Farfield);
  EXPECT_TRUE(row.Drain);
  EXPECT_EQ(VerticesOf(ormel, pid).size(), 3U);
  EXPECT_FALSE(ormel.solution.ValidSolution);
  EXPECT_TRUE(test.view.menus_on);

  test.ui.OnForm("LinesinkString", [](Form& form) {
    EXPECT_EQ(form.Text("tbLabel"), "Orge") << "the dialog keeps what it held last";
    EXPECT_EQ(form.Text("tbData(1)"), "8");
    EXPECT_EQ(form.Text("tbData(2)"), "0") << "the bed starts anew";
    form.Click("ShiftHead");
    EXPECT_EQ(form.Text("tbData(0)"), "8");
    form.Click("OK");
    EXPECT_FALSE(form.Hidden()) << "the label is taken by now";
  });
  ElemAddLinesinkString(ormel);
  EXPECT_EQ(ormel.db().RowCount("LinesinkStrings"), 1);
}

TEST_F(Linesinks, second_dialog_cancelled_keeps_the_string_and_spoils_the_solution) {
  ormel.solution.ValidSolution = true;
  test.ui.AnswerTo("Model Changed!", {Answer::kYes});
  test.ui.OnForm("LinesinkString", Fill({{"tbLabel", "Orge"}, {"tbData(0)", "9"}}));
  ElemAddLinesinkString(ormel);
  Digitize({{0, 0}, {10, 0}});
  test.ui.OnForm("LinesinkString", Fill({{"tbData(0)", "77"}}, "Cancel"));
  ElemEndLinesinkString(ormel);
  EXPECT_EQ(test.Number("select StartingHead from LinesinkStrings"), 9.0);
  EXPECT_FALSE(ormel.solution.ValidSolution);
}

TEST_F(Linesinks, of_one_point_end_without_a_second_dialog) {
  test.ui.OnForm("LinesinkString", Fill({{"tbLabel", "dot"}}));
  ElemAddLinesinkString(ormel);
  Digitize({{0, 0}});
  ElemEndLinesinkString(ormel);
  EXPECT_EQ(test.ui.shown_forms.size(), 1U);
  for (const char* table : {"LinesinkStrings", "Polygons", "Vertices"})
    EXPECT_EQ(ormel.db().RowCount(table), 0) << table;
  EXPECT_TRUE(test.view.menus_on);
}

TEST_F(Linesinks, discharge_specified_never_writes_far_field) {
  const Pid pid = StoreLinesink(ormel, {.Label = "a", .Farfield = true}, {});
  ormel.db().Execute("update LinesinkStrings set Routing=1");
  ChangeLinesink(ormel, pid, {.Label = "a", .HeadSpecified = false, .Farfield = false, .Routing = true});
  EXPECT_EQ(test.Number("select Farfield from LinesinkStrings"), 1.0);
  EXPECT_EQ(test.Number("select Routing from LinesinkStrings"), 1.0);
  ChangeLinesink(ormel, pid, {.Label = "a", .Farfield = true, .Routing = true});
  EXPECT_EQ(test.Number("select Routing from LinesinkStrings"), 0.0) << "far-field is not routed";
}

}  // namespace
}  // namespace ormel::test
