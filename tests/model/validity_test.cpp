#include "model/validity.h"

#include <gtest/gtest.h>

#include "core/layers.h"
#include "model/observations.h"
#include "one_commit.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

class Validity : public ::testing::Test {
 protected:
  void Solved() {
    ormel.solution.ValidSolution = ormel.solution.results_drawn = true;
    for (const Layer layer :
         {Layer::kContours, Layer::kPathlines, Layer::kTestPoints, Layer::kResultsOverlay})
      TurnOnLayer(ormel, layer);
    ormel.note = "CURRENT";
    test.view.zooms.clear();
  }
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Validity, without_a_solution_nothing_is_asked_or_changed) {
  TurnOnLayer(ormel, Layer::kContours);
  InvalidateSolution(ormel, true, true);
  InvalidateContours(ormel);
  EXPECT_TRUE(test.ui.boxes.empty());
  EXPECT_TRUE(test.view.zooms.empty());
  EXPECT_TRUE(ormel.layers.On(Layer::kContours));
}

TEST_F(Validity, kept_by_the_user_leaves_all_as_it_is) {
  Solved();
  test.ui.AnswerTo("Model Changed!", {Answer::kNo});
  InvalidateSolution(ormel, true, true);
  EXPECT_TRUE(ormel.solution.ValidSolution);
  EXPECT_TRUE(ormel.layers.On(Layer::kContours));
  EXPECT_TRUE(ormel.menus.Enabled("RESULTS_TABLE"));
  EXPECT_TRUE(ormel.solution.OfOlderModel);
  EXPECT_EQ(test.view.zooms, std::vector{Zoom::kRedrawInPlace}) << "once more, in pale colours";
  EXPECT_EQ(test.ui.LastText(),
            "This change may make the current solution inconsistent with your\n"
            "current element layout.  Do you want to remove the current solution\n"
            "and results from view and invalidate the solution?  ");
}

TEST_F(Validity, invalid_takes_results_out_of_view_and_reach) {
  for (const bool test_points : {false, true}) {
    if (test_points) StoreTestPoint(ormel, {}, {1, 1});
    Solved();
    InvalidateSolution(ormel, false, test_points);
    EXPECT_FALSE(ormel.solution.ValidSolution);
    EXPECT_FALSE(ormel.solution.results_drawn);
    for (const Layer layer : {Layer::kContours, Layer::kPathlines}) {
      EXPECT_FALSE(ormel.layers.Offered(layer));
      EXPECT_FALSE(ormel.layers.On(layer));
    }
    EXPECT_EQ(ormel.layers.Offered(Layer::kTestPoints), test_points);
    EXPECT_FALSE(ormel.layers.On(Layer::kResultsOverlay));
    for (const char* control :
         {"MODELRUNFILES", "RESULTS_TABLE", "CALIBRATION_STATS", "SolverIntegrityCheck"})
      EXPECT_FALSE(ormel.menus.Enabled(control)) << control;
    EXPECT_FALSE(ormel.menus.Enabled("MODEL_CMDS", 3));
    EXPECT_TRUE(ormel.menus.Enabled("MODEL_CMDS", 2)) << "solving stays possible";
    EXPECT_EQ(ormel.note, "");
    EXPECT_EQ(test.view.zooms.size(), test_points ? 1U : 0U);
  }
}

TEST_F(Validity, contours_are_made_anew_or_hidden) {
  Solved();
  test.ui.AnswerTo("Recompute?", {Answer::kNo, Answer::kYes});
  InvalidateContours(ormel);
  EXPECT_EQ(test.solver.contour_runs, 0);
  EXPECT_FALSE(ormel.layers.On(Layer::kContours));
  InvalidateContours(ormel);
  EXPECT_EQ(test.solver.contour_runs, 1);
  EXPECT_TRUE(ormel.layers.On(Layer::kContours));
  EXPECT_EQ(test.view.zooms.size(), 2U);
  EXPECT_TRUE(ormel.solution.ValidSolution);
}

TEST_F(Validity, default_step_is_a_fraction_of_the_diagonal) {
  ormel.window.SolveWindow = {100, 400, 700, 300};  // 300 by 400
  EXPECT_DOUBLE_EQ(ComputeDefaultStep(ormel), 2.0);
}

}  // namespace
}  // namespace ormel::test
