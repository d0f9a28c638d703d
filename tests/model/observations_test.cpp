#include "model/observations.h"

#include <gtest/gtest.h>

#include "core/layers.h"
#include "form_rows.h"
#include "model/observation_forms.h"
#include "model/vertices.h"

namespace ormel::test {
namespace {

class Observations : public ::testing::Test {
 protected:
  void ClickAt(double x, double y) {
    ormel.mouse.LastX = x;
    ormel.mouse.LastY = y;
  }
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Observations, test_point_dialog_checks) {
  StoreTestPoint(ormel, {.Label = "MW-1"}, {0, 0});
  const std::string label =
      "Test Point label cannot be blank, or be larger than 20 characters.\nPlease enter a new label";
  const std::string number = "Invalid data value.  Please re-enter";
  const FormRow kRows[] = {
      {"no label", {{"tbLabel", ""}}, "Invalid Label", label, "tbLabel"},
      {"20 characters", {{"tbLabel", "12345678901234567890"}}, "", "", ""},
      {"21 characters", {{"tbLabel", "123456789012345678901"}}, "Invalid Label", label, "tbLabel"},
      {"a repeated label", {{"tbLabel", "MW-1"}}, "", "", ""},
      {"head", {{"tbObsHead", "12abc"}}, "Invalid Entry", number, "tbObsHead"},
      {"x", {{"tbX", ""}}, "Invalid Entry", number, "tbX"},
      {"y", {{"tbY", "here"}}, "Invalid Entry", number, "tbY"}};
  for (const FormRow& row : kRows) {
    TestPointProperties form(ormel);
    form.Fill({}, {3, 4});
    CheckRow(test, form, row);
  }
}

TEST_F(Observations, test_point_is_stored_where_the_dialog_says) {
  ormel.solution.ValidSolution = true;
  BeginTestPoint(ormel);
  EXPECT_EQ(ormel.activity, "Add Test Point");
  EXPECT_EQ(ormel.feedback, "Click mouse at location for new test point");
  ClickAt(3, 4);
  test.ui.OnForm("TestPointProperties", Fill({{"tbX", "3.5"}, {"tbObsHead", "12.25"}}));
  ModelAddTestPoint(ormel);
  EXPECT_EQ(test.Text("select Label from TestPoints"), "TP");
  EXPECT_EQ(test.Number("select ObsHead from TestPoints"), 12.25);
  EXPECT_EQ(test.Number("select X from Vertices,TestPoints where Vertices.VID=TestPoints.VID"), 3.5);
  EXPECT_TRUE(ormel.solution.ValidSolution);
  EXPECT_TRUE(test.view.menus_on);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kSelect);
  ModelAddTestPoint(ormel);  // cancelled
  EXPECT_EQ(ormel.db().RowCount("TestPoints"), 1);
  EXPECT_EQ(ormel.db().RowCount("Vertices"), 1);
  EXPECT_EQ(test.view.places.back(), std::pair(Element::kTestPoint, MapPoint{3, 4}))
      << "while the dialog is open";
}

TEST_F(Observations, particle_outdates_the_traces_but_not_the_solution) {
  ormel.solution.ValidSolution = ormel.solution.PathlinesValid = true;
  ClickAt(1, 2);
  test.ui.OnForm("ParticleProperties", [](Form& form) {
    EXPECT_TRUE(form.Checked("chkDirection(1)"));
    EXPECT_FALSE(form.State("tbElevation").enabled);
    Fill({{"chkDirection(0)", "on"}, {"chkSatdThick", "off"}, {"tbElevation", "x"}})(form);
    EXPECT_FALSE(form.Hidden());
    EXPECT_TRUE(form.State("tbElevation").enabled);
    Fill({{"tbElevation", "-3.5"}})(form);
  });
  ModelAddParticle(ormel);
  EXPECT_EQ(test.ui.LastTitle(), "Invalid Entry");
  EXPECT_EQ(test.Number("select Elevation from Particles"), -3.5);
  EXPECT_EQ(test.Number("select SatdThick from Particles"), 0.0);
  EXPECT_EQ(test.Number("select Forward from Particles"), 0.0);
  EXPECT_TRUE(ormel.solution.ValidSolution);
  EXPECT_FALSE(ormel.solution.PathlinesValid);
}

TEST_F(Observations, text_label_keeps_font_place_and_scale) {
  ormel.db().Execute("update Model set DefaultFont='Courier',DefaultFontSize=14,DefaultFontBold=True");
  ormel.window.SolveWindow = {0, 250, 100, 0};
  ClickAt(7, 8);
  test.ui.OnForm("TextLabelDialog", Fill({{"tbText", "St. John's"}}));
  ModelAddText(ormel);
  EXPECT_EQ(test.Text("select Text from TextLabels"), "St. John's");
  EXPECT_EQ(test.Text("select FontName from TextLabels"), "Courier");
  EXPECT_EQ(test.Number("select FontSize from TextLabels"), 14.0);
  EXPECT_EQ(test.Number("select FontBold from TextLabels"), -1.0);
  EXPECT_EQ(test.Number("select ScalerX from TextLabels"), 250.0);
  EXPECT_EQ((MapPoint{test.Number("select X from TextLabels where Y in (7,8)"),
                      test.Number("select Y from TextLabels where Y in (7,8)")}),
            (MapPoint{7, 8}));
  EXPECT_TRUE(test.view.zooms.empty());

  test.ui.font = FontChoice{"Times", 8, false, true};
  test.ui.OnForm("TextLabelDialog", [](Form& form) {
    form.Click("btnFont");
    Fill({{"tbText", "Orge"}, {"chkLabelType(1)", "on"}})(form);
  });
  ModelAddText(ormel);  // a second label at the same X
  EXPECT_EQ(test.Text("select FontName from TextLabels where Text='Orge'"), "Times");
  EXPECT_EQ(test.Number("select LabelType from TextLabels where Text='Orge'"), 1.0);
  EXPECT_TRUE(ormel.layers.On(Layer::kHydrographyLabels));
}

TEST_F(Observations, text_label_without_text_is_asked_about) {
  test.ui.AnswerTo("Error in Input", {Answer::kOk, Answer::kCancel});
  test.ui.OnForm("TextLabelDialog", Fill({}));
  ModelAddText(ormel);
  EXPECT_EQ(test.ui.LastText(), "No text has been entered.  Cancel text entry?");
  EXPECT_EQ(ormel.db().RowCount("TextLabels"), 0);
  test.ui.OnForm("TextLabelDialog", Fill({}));
  ModelAddText(ormel);
  EXPECT_EQ(ormel.db().RowCount("TextLabels"), 1) << "Cancel keeps the empty label";
}

TEST_F(Observations, lines_are_drawn_from_dialog_to_right_click) {
  struct Row {
    void (*add)(Ormel&);
    void (*vertex)(Ormel&, bool);
    void (*end)(Ormel&);
    const char *table, *title, *activity, *note;
  };
  const Row kRows[] = {{ModelAddFluxInspect, ModelAddFluxVertex, ModelEndFluxInspect, "FluxInspect",
                        "Flux Inspection Line Properties", "Add Flux",
                        "To inspect results for the new inspection line, you must re-run the model"},
                       {ModelAddCapzone, ModelAddCZVertex, ModelEndCapzone, "Capzones", "Capzone Properties",
                        "Add Capture Zone", ""}};
  for (const Row& row : kRows) {
    test.ui.boxes.clear();
    test.view.zooms.clear();
    test.ui.OnForm("FluxInspectDialog", [&](Form& form) {
      EXPECT_EQ(form.Title(), row.title);
      form.Click("OK");
      EXPECT_EQ(test.ui.LastText(), "Label must be specified. ");
      test.ui.boxes.clear();
      Fill({{"tbLabel", "across"}})(form);
    });
    row.add(ormel);
    EXPECT_EQ(ormel.activity, row.activity);
    EXPECT_FALSE(test.view.menus_on);
    const Pid pid = ormel.mouse.CurrentPID;
    for (const double x : {1.0, 2.0}) {
      ClickAt(x, 5);
      row.vertex(ormel, x == 1.0);
    }
    row.end(ormel);
    EXPECT_EQ(PointsOf(ormel, pid), (std::vector<MapPoint>{{1, 5}, {2, 5}}));
    EXPECT_EQ(test.Number("select PID from " + std::string(row.table)), static_cast<double>(pid));
    EXPECT_EQ(test.ui.LastText(), row.note);
    EXPECT_TRUE(test.view.menus_on);
  }
}

}  // namespace
}  // namespace ormel::test
