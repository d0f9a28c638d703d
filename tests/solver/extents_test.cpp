#include "solver/extents.h"

#include <gtest/gtest.h>

#include "core/layers.h"
#include "solver/fixture_project.h"

namespace ormel::test {
namespace {

void AddVertex(TestProject& p, double x, double y, int pid = -1) {
  p.ormel.db().Execute("insert into Vertices(PID,Seq,X,Y) values(?,1,?,?)", {pid, x, y});
}

TEST(Extents, AreTheVerticesAndTheMapOnlyGrows) {
  FixtureProject p;
  p.ormel.window.full = {1500, 5000, 0, 2500};
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_EQ(p.ormel.window.model, (Extents{1000, 2000, 2000, 2750}));
  EXPECT_EQ(p.ormel.window.full, (Extents{1000, 5000, 0, 2750}));
  EXPECT_EQ(p.Number("select SOLVERX0 from Model"), 1000);
  EXPECT_EQ(p.Number("select SOLVERY0 from Model"), 2000);
  // Half the mean of both ends of the six head-specified strings.
  EXPECT_DOUBLE_EQ(p.ormel.window.ReferenceHead, 18.875);
  ModelCheckExtents(p.ormel, true, true);
  EXPECT_EQ(p.ormel.window.full, p.ormel.window.model);

  p.ormel.window.model = {};
  ModelRestoreModelOrigin(p.ormel);
  EXPECT_EQ(p.ormel.window.model.x_min, 1000);
  EXPECT_EQ(p.ormel.window.model.y_min, 2000);
}

TEST(Extents, AreTheDisplayWindowWithUniformFlowAndWithOneVertex) {
  for (const bool uniform : {false, true}) {
    TestProject p;
    p.ormel.window.SolveWindow = {5, 205, 130, 30};
    AddVertex(p, 1, 1);
    if (uniform) {
      AddVertex(p, 2000, 3000);
      p.ormel.db().Execute("update Model set UNIFLOWCompute=-1");
    }
    ModelCheckExtents(p.ormel, false, false);
    EXPECT_EQ(p.ormel.window.model, (Extents{5, 205, 30, 130})) << uniform;
    EXPECT_EQ(p.Number("select SOLVERX0 from Model"), 5);
    EXPECT_TRUE(p.ui.boxes.empty());
  }
}

TEST(Extents, KeepTheOriginThatAValidSolutionStandsOn) {
  TestProject p;
  p.ormel.db().Execute("update Model set UNIFLOWCompute=1");
  p.ormel.window.SolveWindow = {5, 205, 130, 30};
  AddVertex(p, 1, 1);
  AddVertex(p, 2, 2);
  ModelCheckExtents(p.ormel, false, false);
  p.ormel.solution.ValidSolution = true;
  p.ormel.window.SolveWindow = {900, 1100, 1000, 800};  // the user looks elsewhere
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_EQ(p.ormel.window.model.x_min, 900);
  ModelRestoreModelOrigin(p.ormel);
  EXPECT_EQ(p.ormel.window.model.x_min, 5) << "the saved solution's coordinates start here";
  EXPECT_EQ(p.ormel.window.model.y_min, 30);
}

TEST(Extents, HeadAtTheReferencePoint) {
  TestProject p;
  AddVertex(p, 0, 0);
  AddVertex(p, 300, 400);
  p.ormel.db().Execute("update Model set AQBase=5, AQThickness='20'");
  p.ormel.project.ProjectOpen = false;
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_TRUE(p.ui.boxes.empty()) << "not while the project is being opened";
  p.ormel.project.ProjectOpen = true;
  p.ui.AnswerTo("Error", {ormel::Answer::kCancel});
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_EQ(p.ormel.window.ReferenceHead, 25);
  EXPECT_EQ(p.ui.LastText(),
            "No head-specified conditions exist.  Reference head will be set to aquifer top.");
  ModelCheckExtents(p.ormel, false, false);
  p.ormel.db().Execute("update Model set AQBase=6");
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_EQ(p.ui.boxes.size(), 1U) << "told once only, also of another top";
  EXPECT_EQ(p.ormel.window.ReferenceHead, 26);

  p.ormel.db().Execute("insert into Wells(VID,Head,HeadSpecified) values(1,30,1)");
  p.ormel.db().Execute("insert into Wells(VID,Head,HeadSpecified) values(2,50,1)");
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_EQ(p.ormel.window.ReferenceHead, 20);
}

TEST(Extents, SmallModelTakesTheDisplayWindow) {
  TestProject p;
  p.ormel.window.SolveWindow = {0, 300, 400, 0};  // threshold 0.0005 x 500 x 500 = 125
  p.ormel.db().Execute("insert into Wells(VID,Head,HeadSpecified) values(1,30,1)");
  AddVertex(p, 7, 7);
  AddVertex(p, 18, 8);  // 122
  p.ui.AnswerTo("Small Window", {ormel::Answer::kOk});
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_EQ(p.ormel.window.model, (Extents{0, 300, 0, 400}));
  AddVertex(p, 18.2, 8);  // 126.44
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_EQ(p.ormel.window.model, (Extents{7, 18.2, 7, 8}));
}

TEST(Extents, ProtectionAreasKeepAMarginWhileShown) {
  FixtureProject p;
  p.Run("insert into WHPAs(Well,Radius,TimeOfTravel,Porosity) values('Head O''Brien',350,0,0)");
  p.Run("insert into WHPAs(Well,Radius,TimeOfTravel,Porosity) values('gone',9000,0,0)");
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_EQ(p.ormel.window.model, (Extents{1000, 2000, 2000, 2750}));
  p.ormel.layers.Switch(Layer::kWhpas, true);
  ModelCheckExtents(p.ormel, false, false);
  EXPECT_EQ(p.ormel.window.model, (Extents{600, 2000, 2000, 2750}))
      << "350 around (1300, 2400): left by twice";
}

TEST(ModelSize, CountsAndTellsLimits) {
  FixtureProject p;
  const ModelSize size = CountModel(p.ormel);
  EXPECT_EQ(size.wells, 5);  // plain, head, pond, lake, image
  EXPECT_EQ(size.partially_penetrating_wells, 2);
  EXPECT_EQ(size.transient_wells, 3);
  EXPECT_EQ(size.well_equations, 1 + 2 + 3 + 1);
  EXPECT_EQ(size.linesinks, 2 + 2 + 1 + 1 + 0 + 2 + 1);
  EXPECT_EQ(size.barrier_elements, 1 + 3 + 3 + 3 + 2 + 0);
  EXPECT_EQ(size.inhomogeneity_elements, 3 + 3 + 2 + 1);
  EXPECT_EQ(size.equation_elements, 3 + 2 + 1);
  EXPECT_EQ(size.SizeNumber(), 2 * 12 + 9 + 2 * 6 + 1 + 7 + 25);
  EXPECT_EQ(ModelGetSize(p.ormel, true), 78);
  EXPECT_EQ(p.ui.LastTitle(), "Model Size");
  EXPECT_NE(
      p.ui.LastText().find("Number of inhomogeneity elements (line doublets): 9\nNumber of barriers: 6\n"),
      std::string::npos);
  EXPECT_TRUE(p.ui.LastText().ends_with("Estimated number of equations is less than: 78"));

  TestProject empty;
  EXPECT_EQ(ModelGetSize(empty.ormel, false), 61);
  EXPECT_TRUE(empty.ui.boxes.empty());
}

}  // namespace
}  // namespace ormel::test
