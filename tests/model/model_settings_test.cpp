#include "model/model_settings.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/command.h"
#include "form_rows.h"
#include "model/geometry.h"
#include "model/inhomogeneities.h"
#include "model/vertices.h"

namespace ormel::test {
namespace {

class Settings : public ::testing::Test {
 protected:
  void Run(std::vector<Entry> entries, const std::string& button = "OK") {
    test.ui.OnForm("ModelSettings", Fill(std::move(entries), button));
    ModelEditSettings(ormel);
  }
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Settings, checks_in_their_order) {
  const auto refuse = [](const char* control, const char* value, const char* first, const char* second) {
    return FormRow{std::string(control) + " " + value,
                   {{control, value}},
                   "Bad Entry",
                   std::string(first) + "\n" + second,
                   control};
  };
  const auto accept = [](const char* control, const char* value) {
    return FormRow{std::string(control) + " " + value, {{control, value}}, "", "", ""};
  };
  const char* porosity = "Porosity must be greater than 0 and less than or equal to 1.";
  const char *resolution = "Invalid Grid Resolution.",
             *resolution2 = "Please enter a Grid Resolution between 0 and 200.";
  const FormRow kRows[] = {
      refuse("tbThickness", "0", "Thickness must be greater than 0.", "Please enter a new value."),
      refuse("tbThickness", "", "Thickness must be greater than 0.", "Please enter a new value."),
      refuse("tbHydCond", "0", "Hydraulic Conductivity must be greater than 0.",
             "Please enter a positive value."),
      refuse("tbPorosity", "0", porosity, "Please enter a new value."),
      refuse("tbPorosity", "1.01", porosity, "Please enter a new value."),
      accept("tbPorosity", "1"),
      refuse("tbContourLevel", "200.5", resolution, resolution2),
      refuse("tbContourLevel", "-1", resolution, resolution2),
      accept("tbContourLevel", "0"),
      accept("tbContourLevel", "200"),
      refuse("tbContourMax", "0", "Maximum Contour must be greater than Minimum Contour.",
             "Please enter a new Maximum Contour."),
      refuse("tbContourInt", "0", "Contour Interval must be greater than zero.",
             "Please enter a new Contour Interval."),
      refuse("tbMaxTime", "-1", "Maximum Travel Time must be positive.",
             "Please enter a new Maximum Travel Time."),
      accept("tbMaxTime", "0"),
      refuse("tbStepSize", "-1", "Tracing Step Size must be positive.",
             "Please enter a new Tracing Step Size."),
      accept("tbStepSize", "0"),
      refuse("tbIterations", "0", "Number of Iterations must be positive.",
             "Please enter a new value for the Number of Iterations."),
      {"the first failure speaks",
       {{"tbIterations", "0"}, {"tbThickness", "-3"}},
       "Bad Entry",
       "Thickness must be greater than 0.\nPlease enter a new value.",
       "tbThickness"},
  };
  for (const FormRow& row : kRows) {
    ModelSettings form(ormel);
    form.Load();
    CheckRow(test, form, row);
  }
}

TEST_F(Settings, round_trip_through_the_store) {
  test.ui.AnswerTo("Recharge Rate", {Answer::kNo});
  Run({{"tbBase", "-20.5"},
       {"tbThickness", "35"},
       {"tbHydCond", "12.5"},
       {"tbRecharge", "0.001"},
       {"tbPorosity", "0.3"},
       {"chkContour", "on"},
       {"tbContourMin", "5"},
       {"tbContourMax", "50"},
       {"tbContourInt", "2.5"},
       {"ContourDetail(1)", "on"},
       {"chkComputePaths", "off"},
       {"tbStepSize", "4"},
       {"tbMaxTime", "1825"},
       {"tbIterations", "7"},
       {"chkViewError", "off"},
       {"chkViewMessage", "off"}});
  const ModelValues model = ReadModel(ormel);
  EXPECT_EQ(model.AQBase, -20.5);
  EXPECT_EQ(test.Text("select AQThickness from Model"), "35");
  EXPECT_EQ(model.AquiferTop(), 14.5);
  EXPECT_EQ(model.AQHydCond, 12.5);
  EXPECT_EQ(model.AQRecharge, 0.001);
  EXPECT_EQ(model.AQPorosity, 0.3);
  EXPECT_EQ(model.CONTOURShow, 1);
  EXPECT_EQ(model.CONTOURMinimum, 5.0);
  EXPECT_EQ(model.CONTOURMaximum, 50.0);
  EXPECT_EQ(model.CONTOURInterval, 2.5);
  EXPECT_EQ(model.CONTOURLevel, 80);
  EXPECT_EQ(model.TRACECompute, 0);
  EXPECT_EQ(model.TRACEStep, 4.0);
  EXPECT_EQ(model.TRACEMaxTime, 1825.0);
  EXPECT_EQ(model.SOLVERIterations, 7);
  EXPECT_EQ(model.ViewErrorLog, 0);
  EXPECT_EQ(model.ViewMessageLog, 0);
  EXPECT_EQ(test.Number("select WINDOWX2 from Model"), -100.0) << "what the dialog does not know stays";

  ModelSettings again(ormel);
  again.Load();
  EXPECT_TRUE(again.Checked("ContourDetail(1)"));
  EXPECT_EQ(again.Text("tbBase"), "-20.5");
  EXPECT_FALSE(again.Checked("chkViewError"));
}

TEST_F(Settings, contour_detail_by_level) {
  struct Row {
    int level;
    const char* option;
    bool offered;
  };
  for (const Row& row : {Row{40, "ContourDetail(0)", false}, Row{80, "ContourDetail(1)", false},
                         Row{50, "ContourDetail(2)", true}}) {
    ormel.db().Execute("update Model set CONTOURShow=1,CONTOURLevel=?", {row.level});
    ModelSettings form(ormel);
    form.Load();
    EXPECT_TRUE(form.Checked(row.option));
    EXPECT_EQ(form.State("tbContourLevel").enabled, row.offered);
    EXPECT_EQ(form.DetailedContours(), row.level);
    form.SetChecked("chkContour", false);
    EXPECT_FALSE(form.State("tbContourMin").enabled);
    form.SetChecked("chkContour", true);
    EXPECT_TRUE(form.State("tbContourMin").enabled);
    EXPECT_TRUE(form.contours_switched_on());
  }
}

TEST_F(Settings, each_field_raises_its_own_flag) {
  struct Row {
    Entry entry;
    bool solution, contours, paths;
  };
  const Row kRows[] = {
      {{"tbBase", "7"}, true, false, false},        {{"tbPorosity", "0.7"}, true, false, false},
      {{"tbContourMin", "7"}, false, true, false},  {{"chkContour", "on"}, false, true, false},
      {{"tbStepSize", "7"}, false, false, true},    {{"chkDefaultStep", "off"}, false, false, true},
      {{"tbIterations", "7"}, false, false, false}, {{"ContourDetail(1)", "on"}, false, false, false}};
  for (const Row& row : kRows) {
    ModelSettings form(ormel);
    form.Load();
    EXPECT_FALSE(form.solution_changed() || form.contours_changed() || form.paths_changed());
    Type(form, {row.entry});
    EXPECT_EQ(form.solution_changed(), row.solution) << row.entry.control;
    EXPECT_EQ(form.contours_changed(), row.contours) << row.entry.control;
    EXPECT_EQ(form.paths_changed(), row.paths) << row.entry.control;
    form.Click("Cancel");
    EXPECT_FALSE(form.solution_changed() || form.contours_changed() || form.paths_changed());
  }
}

TEST_F(Settings, default_step_is_copied_while_it_is_on) {
  ormel.solution.default_step = 2.5;
  ModelSettings form(ormel);
  form.Load();
  EXPECT_EQ(form.Text("tbStepSize"), "2.5");
  form.SetChecked("chkDefaultStep", false);
  form.SetDefaultStepSize(9);
  EXPECT_EQ(form.Text("tbStepSize"), "2.5");
  EXPECT_EQ(form.Text("tbDefaultStepSize"), "9");
  form.SetIterations(0);
  EXPECT_EQ(form.Text("tbIterations"), "1");
  form.SetIterations(12);
  EXPECT_EQ(form.Text("tbIterations"), "12");
  // A step of 2.5 feet on the map is shown in metres of the computation.
  ormel.project.BasemapMeters = false;
  ModelSettings feet(ormel);
  feet.Load();
  EXPECT_EQ(feet.Text("tbDefaultStepSize"), "0.762");
}

TEST_F(Settings, outdated_results_go_only_with_a_solution_and_their_switch) {
  struct Row {
    const char* what;
    bool valid, contours;
    std::vector<Entry> entries;
    bool grid_stays, paths_stay;
  };
  const Row kRows[] = {
      {"contours on", true, true, {{"tbContourMin", "-1"}}, false, true},
      {"contours off", true, false, {{"tbContourMin", "-1"}}, true, true},
      {"paths", true, true, {{"tbMaxTime", "5"}}, true, false},
      {"paths, tracing off", true, true, {{"chkComputePaths", "off"}}, true, true},
      {"no solution", false, true, {{"tbContourMin", "-1"}, {"tbMaxTime", "5"}}, true, true},
  };
  for (const Row& row : kRows) {
    ormel.db().Execute("update Model set CONTOURMinimum=0,CONTOURShow=?,TRACECompute=1,TRACEMaxTime=1",
                       {row.contours ? 1 : 0});
    for (const char* extension : {".GRD", ".CTR", ".PTH"})
      WriteAll(test.dir / ("town" + std::string(extension)), "x");
    SolutionState& solution = ormel.solution;
    solution.ValidSolution = row.valid;
    solution.GridValid = solution.ContoursValid = solution.PathlinesValid = true;
    test.ui.AnswerTo("Regrid/Retrace?", {Answer::kNo, Answer::kNo, Answer::kNo, Answer::kNo, Answer::kNo});
    Run(row.entries);
    EXPECT_EQ(solution.GridValid, row.grid_stays) << row.what;
    EXPECT_EQ(solution.ContoursValid, row.grid_stays) << row.what;
    EXPECT_EQ(solution.PathlinesValid, row.paths_stay) << row.what;
    for (const char* extension : {".GRD", ".CTR", ".PTH"})  // the next run replaces them
      EXPECT_TRUE(std::filesystem::exists(test.dir / ("town" + std::string(extension)))) << row.what;
  }
  EXPECT_TRUE(test.solver.runs.empty());
}

TEST_F(Settings, ok_makes_the_solution_invalid_or_offers_grid_and_paths_or_redraws) {
  ormel.solution.ValidSolution = true;
  test.ui.AnswerTo("Regrid/Retrace?", {Answer::kYes});
  Run({{"tbMaxTime", "5"}});
  ASSERT_EQ(test.solver.runs.size(), 1U);
  const SolveRequest& run = test.solver.runs.front();
  EXPECT_FALSE(run.KeepSolution || run.ContinueSolve || run.AskFirst || run.ZoomAfter || run.ViewLogs);
  EXPECT_TRUE(ormel.solution.ValidSolution);
  EXPECT_EQ(ReadModel(ormel).TRACEMaxTime, 5.0);

  test.view.zooms.clear();
  Run({{"tbIterations", "5"}});
  EXPECT_EQ(test.view.zooms, std::vector{Zoom::kRedrawInPlace});
  EXPECT_TRUE(ormel.solution.ValidSolution);

  test.ui.boxes.clear();
  Run({{"tbHydCond", "5"}, {"tbMaxTime", "6"}});
  EXPECT_FALSE(ormel.solution.ValidSolution);
  EXPECT_TRUE(test.ui.boxes.empty()) << "an aquifer that changed asks nothing";
  EXPECT_EQ(test.solver.runs.size(), 1U);
}

TEST_F(Settings, a_recharge_of_the_aquifer_is_told_and_becomes_a_domain_on_request) {
  const std::vector<MapPoint> ring{{100, 100}, {300, 100}, {300, 200}};
  RunCommand(ormel, "setup", [&] {
    ormel.db().Execute("update Model set AQRecharge=0.001");
    StoreInhomogeneity(ormel, {.Label = "recharge", .Recharge = 0.001}, ring);
    StoreInhomogeneity(ormel, {.Label = "own", .Recharge = 0.002, .ChangeR = true}, ring);
  });
  ormel.solution.ValidSolution = true;
  test.ui.AnswerTo("Recharge Rate", {Answer::kNo, Answer::kYes});
  Run({});
  EXPECT_TRUE(test.ui.LastText().starts_with("The recharge rate of the aquifer is 0.001 m/day, but"));
  EXPECT_EQ(ReadModel(ormel).AQRecharge, 0.001);
  EXPECT_TRUE(ormel.solution.ValidSolution);

  Run({});
  EXPECT_EQ(ReadModel(ormel).AQRecharge, 0.0);
  EXPECT_FALSE(ormel.solution.ValidSolution);
  EXPECT_EQ(test.Text("select group_concat(Label||'='||Recharge) from Inhomogeneities"),
            "recharge=0.0,own=0.002,Recharge (2)=0.001");
  const Pid made = test.ormel.db().Scalar("select max(PID) from Inhomogeneities").AsLong();
  for (const MapPoint corner : ring) EXPECT_TRUE(IsInDomain(ormel, made, corner));
  EXPECT_EQ(PointsOf(ormel, made).size(), 4U);
  Run({});  // asks no more
}

TEST_F(Settings, cancel_writes_nothing) {
  Run({{"tbHydCond", "5"}}, "Cancel");
  EXPECT_EQ(ReadModel(ormel).AQHydCond, 1.0);
}

TEST_F(Settings, damaged_project_is_told_and_no_dialog_opens) {
  ormel.db().Execute("delete * from Model");
  ModelEditSettings(ormel);
  EXPECT_TRUE(test.ui.shown_forms.empty());
  EXPECT_EQ(test.ui.LastTitle(), "Unhandled Error -- Contact the ZRB");
  EXPECT_TRUE(
      test.ui.LastText().starts_with("Unhandled error in ModelSettings.FormLoad\nPlease restart Ormel\n"));
}

TEST_F(Settings, units_follow_the_computation) {
  TestProject feet(true, false);
  ModelSettings form(feet.ormel);
  form.Load();
  for (const char* name : {"tbBase", "tbThickness", "tbContourMin", "tbStepSize"})
    EXPECT_EQ(form.State(name).unit, "feet") << name;
  for (const char* name : {"tbHydCond", "tbRecharge"}) EXPECT_EQ(form.State(name).unit, "feet/day") << name;
}

TEST_F(Settings, solve_prompt_returns_its_button) {
  struct Row {
    const char* button;
    SolveChoice choice;
  };
  for (const Row& row :
       {Row{"SolveOption(0)", SolveChoice::kNew}, Row{"SolveOption(1)", SolveChoice::kReload},
        Row{"SolveOption(2)", SolveChoice::kCancel}}) {
    SolvePrompt form(ormel);
    EXPECT_EQ(form.Choice(), SolveChoice::kCancel);
    form.MarkShown();
    form.Click(row.button);
    EXPECT_TRUE(form.Hidden());
    EXPECT_EQ(form.Choice(), row.choice);
  }
}

}  // namespace
}  // namespace ormel::test
