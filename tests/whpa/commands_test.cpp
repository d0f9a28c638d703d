#include "whpa/commands.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/layers.h"
#include "model/area_runs.h"
#include "model/wells.h"
#include "support/test_project.h"
#include "whpa/delineation.h"
#include "whpa/rows.h"

namespace ormel {
namespace {

using test::TestProject;

Vid AddWell(TestProject& program, const std::string& label, double discharge, MapPoint at) {
  WellRow row;
  row.Label = label;
  row.Head = discharge;
  row.Radius = 0.3;
  return StoreWell(program.ormel, row, at);
}

void FillCalculated(Form& form, double time, double ambient) {
  form.Select("cmbWell", {0});
  form.SetText("DataTime", std::to_string(time));
  form.SetText("DataPorosity", "0.2");
  form.SetText("DataThickness", "20");
  form.SetText("DataAmbient", std::to_string(ambient));
  form.Click("ContinueCancel(0)");
}

void DrawWithoutBoundary(Form& form) {
  form.Click("DrawBack(0)");
}

void DrawWithBoundary(Form& form) {
  form.SetChecked("optYesNo(0)", true);
  form.SetText("DataHead", "40");
  form.SetText("DataConductivity", "15");
  form.Click("DrawBack(0)");
}

/// Answers a calculated area beyond T = 1; `stream` acts on the stream boundary dialog.
void ScriptPathlines(TestProject& program, void (*stream)(Form&)) {
  program.ui.OnForm("WHPACalculated", [](Form& form) { FillCalculated(form, 1825, 0.6); });
  program.ui.OnForm("WHPAUniform", [](Form& form) {
    form.SetText("DataDirectionFlow", "30");
    form.Click("ContinueBack(0)");
  });
  program.ui.OnForm("WHPAStream", stream);
}

TEST(Whpa, OffersOnlySteadyPlainWellsThatAreNoImages) {
  TestProject program;
  AddWell(program, "North", 800, {0, 0});
  AddWell(program, "Mirror_North", -800, {1, 0});
  program.ormel.db().Execute("insert into Wells (VID,Label,Pond) values (70,'Pond',1)");
  program.ormel.db().Execute("insert into Wells (VID,Label,HeadSpecified) values (71,'Head',1)");
  AddWell(program, "East's", 500, {5, 0});
  const std::vector<WhpaWell> wells = EligibleWells(program.ormel);
  ASSERT_EQ(wells.size(), 2U);
  EXPECT_EQ(wells[0].label, "East's");
  EXPECT_EQ(wells[1].label, "North");
}

TEST(Whpa, ArbitraryRadiusReplacesTheCirclesAndTellsOfMissingWells) {
  TestProject program(/*basemap_meters=*/false, /*compute_meters=*/true);
  AddWell(program, "North", 800, {0, 0});
  AddWell(program, "O'Hara", 500, {900, 0});
  program.ormel.db().Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,Type,WHPAText) values ('Gone',10,0,0,1,'NONE')");
  program.ui.OnForm("WHPAArbitrary", [&](Form& form) {
    form.Click("DrawCancel(0)");
    EXPECT_EQ(program.ui.LastTitle(), "No Wells Selected");
    EXPECT_FALSE(form.Hidden());
    form.Select("listWell", {0, 1});
    form.SetText("DataRadius", "100");
    EXPECT_NEAR(form.Number("DataRadius2"), 328.083989501, 1e-8);
    form.Click("DrawCancel(0)");
  });
  WHPA(program.ormel, 0);
  EXPECT_EQ(program.ui.boxes.front().title, "Reference to missing well");
  EXPECT_EQ(
      program.ui.boxes.front().text,
      "Could not find the well, 'Gone'.\nThe arbitrary radius WHPA with reference to this well has been "
      "removed.");
  EXPECT_EQ(program.Number("select count(*) from WHPAs"), 2);
  EXPECT_NEAR(program.Number("select Radius from WHPAs where Well='O''Hara'"), 328.083989501, 1e-8);
  EXPECT_EQ(program.Text("select WHPAText from WHPAs"), StemFromClock(program.clock.now));
  EXPECT_EQ(program.solver.whpa_runs, 0);
}

struct UnitCase {
  bool basemap_meters, compute_meters;
  double factor;
};

class WhpaUnits : public testing::TestWithParam<UnitCase> {};

TEST_P(WhpaUnits, StoresTheRadiusInMapUnits) {
  const UnitCase& unit = GetParam();
  TestProject program(unit.basemap_meters, unit.compute_meters);
  AddWell(program, "North", 800, {0, 0});
  for (const double ambient : {0.0, 0.4}) {
    program.ui.OnForm("WHPACalculated", [&](Form& form) { FillCalculated(form, 1825, ambient); });
    program.ui.OnForm("WHPACentric", [](Form& form) { form.Click("DrawBack(0)"); });
    program.ui.OnForm("WHPAEccentric", [](Form& form) {
      form.SetText("DataDirectionFlow", "90");
      form.Click("DrawBack(0)");
    });
    WHPA(program.ormel, 1);
    ASSERT_EQ(program.Number("select count(*) from WHPAs where Type=2"), 1);
    const double radius = ambient == 0.0 ? 393.450582 : 357.669482;
    EXPECT_NEAR(program.Number("select Radius from WHPAs"), radius * unit.factor, 1e-4);
    EXPECT_EQ(program.Number("select Direction from WHPAs"), ambient == 0.0 ? 0.0 : 90.0);
    EXPECT_EQ(program.Number("select Shift from WHPAs"), 0.0);
  }
}

INSTANTIATE_TEST_SUITE_P(Units, WhpaUnits,
                         testing::Values(UnitCase{true, true, 1.0}, UnitCase{false, false, 1.0},
                                         UnitCase{false, true, 3.28083989501},
                                         UnitCase{true, false, 1 / 3.28083989501}));

TEST(Whpa, CalculatedChecksInOrderAndGoesBack) {
  TestProject program;
  AddWell(program, "Dry", 0, {0, 0});
  AddWell(program, "North", 800, {10, 0});
  struct Row {
    const char *control, *text, *title;
  };
  program.ui.OnForm("WHPACalculated", [&](Form& form) {
    form.Click("ContinueCancel(0)");
    EXPECT_EQ(program.ui.LastTitle(), "No Well Selected");
    form.Select("cmbWell", {0});
    for (const Row& row :
         {Row{"DataPorosity", "0", "Invalid Porosity"}, Row{"DataPorosity", "1.5", "Out of Range"},
          Row{"DataPorosity", "0.2", "Invalid Thickness"},
          Row{"DataThickness", "20", "Choose Another Well"}}) {
      form.SetText(row.control, row.text);
      form.Click("ContinueCancel(0)");
      EXPECT_EQ(program.ui.LastTitle(), row.title);
      EXPECT_FALSE(form.Hidden());
    }
    form.Select("cmbWell", {1});
    form.Click("ContinueCancel(0)");  // centric, left by Back
    EXPECT_FALSE(form.Hidden());
    form.Click("ContinueCancel(1)");
  });
  WHPA(program.ormel, 1);
  EXPECT_EQ(program.Number("select count(*) from WHPAs"), 0);
}

TEST(Whpa, AnInjectingWellEndsInTheFailureBox) {
  TestProject program;
  AddWell(program, "In", -800, {0, 0});
  program.ui.OnForm("WHPACalculated", [](Form& form) { FillCalculated(form, 100, 0.0); });
  WHPA(program.ormel, 1);
  EXPECT_EQ(program.ui.LastTitle(), "Unhandled Error -- Contact the ZRB");
  EXPECT_EQ(program.Number("select count(*) from WHPAs"), 0);
}

TEST(Whpa, PathlinesRunAtOnceWithoutABoundaryAndAfterTwoClicksWithOne) {
  TestProject program;
  AddWell(program, "North", 800, {0, 0});
  ScriptPathlines(program, DrawWithoutBoundary);
  WHPA(program.ormel, 1);
  EXPECT_EQ(program.solver.whpa_runs, 1);
  EXPECT_EQ(program.Number("select Radius from WHPAs"), 0.0);
  EXPECT_EQ(program.Number("select Direction from WHPAs"), 30.0);

  ScriptPathlines(program, DrawWithBoundary);
  WHPA(program.ormel, 1);
  EXPECT_EQ(program.solver.whpa_runs, 1) << "the run waits for the boundary";
  EXPECT_EQ(program.ormel.mouse.MouseMode, MouseMode::kDigitize);
  EXPECT_EQ(program.ormel.mouse.MouseElement, Element::kStreamBoundary);
  EXPECT_EQ(program.ormel.feedback, "Click mouse at two points to draw stream boundary");

  program.ormel.mouse.LastX = 100;
  program.ormel.mouse.LastY = -50;
  ElemAddStreamBoundaryVertex(program.ormel, 1);
  ElemAddStreamBoundaryVertex(program.ormel, 2);  // the same place is no line
  EXPECT_EQ(program.ui.LastTitle(), "Stream Boundary");
  EXPECT_EQ(program.solver.whpa_runs, 1);
  program.ormel.mouse.LastY = 50;
  ElemAddStreamBoundaryVertex(program.ormel, 2);
  EXPECT_EQ(program.solver.whpa_runs, 2);
  EXPECT_EQ(program.Number("select FirstHead from WHPAs"), 40.0);
  EXPECT_EQ(program.Number("select Head from Wells where Label='Mirror_North'"), -800.0);
  EXPECT_NEAR(program.Number("select X from Vertices where VID=(select VID from Wells where "
                             "Label='Mirror_North')"),
              200.0, 1e-9);

  // A new calculation takes the image away.
  ScriptPathlines(program, DrawWithoutBoundary);
  WHPA(program.ormel, 1);
  EXPECT_EQ(program.Number("select count(*) from Wells where Label='Mirror_North'"), 0);
}

TEST(Whpa, MultipleAndCalculatedPathlinesExcludeOneAnother) {
  TestProject program;
  AddWell(program, "A", 800, {0, 0});
  AddWell(program, "B", 600, {300, 0});
  ScriptPathlines(program, DrawWithoutBoundary);
  WHPA(program.ormel, 1);

  program.ui.AnswerTo("Warning", {Answer::kCancel});
  WHPA(program.ormel, 2);
  EXPECT_EQ(program.Number("select count(*) from WHPAs where Type=2"), 1) << "Cancel keeps it";

  program.ui.AnswerTo("Warning", {Answer::kOk});
  program.ui.OnForm("WHPAMultiple", [&](Form& form) {
    form.Select("listWell", {0, 1});
    form.SetText("DataPorosity", "1.2");
    form.Click("ContinueCancel(0)");
    EXPECT_EQ(program.ui.LastText(), "Porosity must between 0 and 1");
    form.SetText("DataPorosity", "0.25");
    form.Click("ContinueCancel(0)");
  });
  program.ui.OnForm("WHPAStream", DrawWithoutBoundary);
  WHPA(program.ormel, 2);
  EXPECT_EQ(program.Number("select count(*) from WHPAs where Type=3"), 2);
  EXPECT_EQ(program.Number("select count(*) from WHPAs where Type=2"), 0);

  program.ui.AnswerTo("Warning", {Answer::kOk});
  ScriptPathlines(program, DrawWithoutBoundary);
  WHPA(program.ormel, 1);
  EXPECT_EQ(program.Number("select count(*) from WHPAs where Type=3"), 0);
  EXPECT_EQ(program.Number("select count(*) from WHPAs where Type=2"), 1);
}

TEST(Whpa, ABoundaryGivenUpAfterItsFirstClickLeavesNoHalfOfIt) {
  TestProject program;
  AddWell(program, "North", 800, {100, 0});
  ScriptPathlines(program, DrawWithBoundary);
  WHPA(program.ormel, 1);
  const std::string stem = program.Text("select WHPAText from WHPAs");
  program.ormel.mouse.LastX = 7;
  program.ormel.mouse.LastY = 9;
  ElemAddStreamBoundaryVertex(program.ormel, 1);
  EXPECT_EQ(program.Number("select count(*) from Vertices"), 2);
  CancelStreamBoundary(program.ormel);
  EXPECT_EQ(program.Number("select count(*) from Vertices"), 1);
  EXPECT_EQ(program.Number("select count(*) from WHPAs where Point1X=0 and Point1Y=0 and VID1=0"), 1);
  EXPECT_EQ(program.solver.whpa_runs, 0);
  EXPECT_FALSE(program.ormel.mouse.LineInProgress);

  // The same kind again keeps the name of its files, and what is stored is shown and can be deleted.
  program.clock.now.month += 1;
  program.ormel.layers.Switch(Layer::kWhpas, false);
  ScriptPathlines(program, DrawWithoutBoundary);
  WHPA(program.ormel, 1);
  EXPECT_EQ(program.Text("select WHPAText from WHPAs"), stem);
  EXPECT_TRUE(program.ormel.layers.On(Layer::kWhpas));
  EXPECT_TRUE(program.ormel.menus.Enabled("DeleteWHPA", 2));
  EXPECT_FALSE(program.ormel.menus.Enabled("DeleteWHPA", 3));
}

TEST(Whpa, TheSecondPointIsComparedWithTheFirstOfTheSameArea) {
  TestProject program;
  AddWell(program, "North", 800, {100, 0});
  for (const char* type : {"2", "3"})
    program.ormel.db().Execute(
        std::string("insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,Type,Point1X,"
                    "Point1Y) values ('North',0,0,0.2,") +
        type + ",5,5)");
  program.ormel.StreamWell = kMultipleWells;
  program.ormel.mouse.LastX = program.ormel.mouse.LastY = 10;
  ElemAddStreamBoundaryVertex(program.ormel, 1);
  ElemAddStreamBoundaryVertex(program.ormel, 2);
  EXPECT_EQ(program.ui.LastTitle(), "Stream Boundary");
  EXPECT_EQ(program.solver.whpa_runs, 0);
  program.ormel.mouse.LastX = program.ormel.mouse.LastY = 5;  // where the calculated area's boundary begins
  ElemAddStreamBoundaryVertex(program.ormel, 2);
  EXPECT_EQ(program.solver.whpa_runs, 1);
}

}  // namespace
}  // namespace ormel
