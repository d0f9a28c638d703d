#include "model/uniform_flow.h"

#include <gtest/gtest.h>

#include "form_rows.h"

namespace ormel::test {
namespace {

class Uniform : public ::testing::Test {
 protected:
  Uniform() { ormel.db().Execute("update Model set AQBase=-10"); }
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Uniform, dialog_checks_in_their_order) {
  const char* orientation =
      "Orientation must be between -180 and 180 degrees.\nPress Ok to re-enter Orientation.";
  const FormRow kRows[] = {
      {"head below the base",
       {{"tbdata(0)", "-10.5"}, {"tbdata(1)", "-1"}},
       "Bad Entry",
       "Specified Reference Head is below aquifer base of -10.\nPress Ok to re-enter Reference Head.",
       "tbdata(0)"},
      {"head at the base", {{"tbdata(0)", "-10"}}, "", "", ""},
      {"negative gradient",
       {{"tbdata(1)", "-0.001"}},
       "Bad Entry",
       "Specified gradient is negative. Gradient must be positive.\nPress Ok to re-enter Gradient.",
       "tbdata(1)"},
      {"gradient 0", {{"tbdata(1)", "0"}}, "", "", ""},
      {"180", {{"tbdata(2)", "180"}}, "", "", ""},
      {"-180", {{"tbdata(2)", "-180"}}, "", "", ""},
      {"above", {{"tbdata(2)", "180.1"}}, "Bad Entry", orientation, "tbdata(2)"},
      {"below", {{"tbdata(2)", "-180.1"}}, "Bad Entry", orientation, "tbdata(2)"}};
  for (const FormRow& row : kRows) {
    UniformFlow form(ormel);
    CheckRow(test, form, row);
  }
}

TEST_F(Uniform, is_placed_edited_replaced_and_removed) {
  together.Settle();
  ormel.solution.ValidSolution = true;
  test.ui.AnswerTo("Warning - Uniform Flow", {Answer::kYes});
  ElemUniformFlow(ormel);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kPlace);
  EXPECT_EQ(ormel.mouse.MouseElement, Element::kUniformFlow);
  EXPECT_EQ(ormel.activity, "Uniform Flow");
  EXPECT_EQ(ormel.feedback, "Place mouse at the point of known head and click the button");

  ormel.mouse.LastX = 5;
  ormel.mouse.LastY = 6;
  test.ui.AnswerTo("Model Changed!", {Answer::kYes});
  test.ui.OnForm("UniformFlow", Fill({{"tbdata(0)", "20"}, {"tbdata(1)", "0.002"}, {"tbdata(2)", "-45"}}));
  ElemAddUniformFlow(ormel, false);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kSelect);
  EXPECT_FALSE(ormel.solution.ValidSolution);
  EXPECT_TRUE(test.view.menus_on);
  ModelValues model = ReadModel(ormel);
  EXPECT_EQ(model.UNIFLOWCompute, 1);
  EXPECT_EQ(model.UNIFLOWRefX, 5.0);
  EXPECT_EQ(model.UNIFLOWRefY, 6.0);
  EXPECT_EQ(model.UNIFLOWRefHead, 20.0);
  EXPECT_EQ(model.UNIFLOWOrientation, -45.0);
  const double vid = test.Number("select VID from Vertices where PID=-10");

  ormel.mouse.LastX = 99;
  test.ui.OnForm("UniformFlow", Fill({{"tbdata(1)", "0.003"}}));
  ElemAddUniformFlow(ormel, true);
  model = ReadModel(ormel);
  EXPECT_EQ(model.UNIFLOWGradient, 0.003);
  EXPECT_EQ(model.UNIFLOWRefX, 5.0) << "an edit does not move it";
  EXPECT_EQ(test.Number("select VID from Vertices where PID=-10"), vid);

  test.ui.OnForm("UniformFlow", Fill({}));
  ElemAddUniformFlow(ormel, false);
  EXPECT_EQ(test.Number("select count(*) from Vertices where PID=-10"), 1.0) << "one flow, one point";
  EXPECT_EQ(test.Number("select X from Vertices where PID=-10"), 99.0);

  test.ui.AnswerTo("Warning - Uniform Flow", {Answer::kNo, Answer::kNo, Answer::kNo});
  test.ui.AnswerTo("Remove function", {Answer::kNo, Answer::kYes});
  ElemUniformFlow(ormel);
  EXPECT_EQ(test.ui.LastTitle(), "Operation canceled");
  EXPECT_EQ(test.ui.LastText(), "Uniform flow is still in use");
  EXPECT_EQ(ReadModel(ormel).UNIFLOWCompute, 1);
  ElemUniformFlow(ormel);
  model = ReadModel(ormel);
  EXPECT_EQ(model.UNIFLOWCompute, 0);
  EXPECT_EQ(model.UNIFLOWRefX, 0.0);
  EXPECT_EQ(model.UNIFLOWGradient, 0.0);
  EXPECT_EQ(ormel.db().RowCount("Vertices"), 0);
  const std::size_t boxes = test.ui.boxes.size();
  ElemUniformFlow(ormel);
  EXPECT_EQ(test.ui.boxes.size(), boxes + 1) << "without a flow No asks nothing more";
}

TEST_F(Uniform, cancel_says_that_nothing_changed) {
  ElemAddUniformFlow(ormel, false);
  EXPECT_EQ(test.ui.LastText(), "Uniform Flow settings have not been changed.");
  EXPECT_EQ(ReadModel(ormel).UNIFLOWCompute, 0);
  EXPECT_EQ(ormel.db().RowCount("Vertices"), 0);
}

}  // namespace
}  // namespace ormel::test
