#include "model/wells.h"

#include <gtest/gtest.h>

#include "core/command.h"
#include "core/layers.h"
#include "form_rows.h"
#include "model/digitize.h"
#include "model/inhomogeneities.h"
#include "model/vertices.h"
#include "model/well_form.h"

namespace ormel::test {
namespace {

const char* kBlank = "Well label cannot be blank, or be larger than 32 characters.\nPlease enter a new label";
const char* kNewValue = "\nPlease enter a new value.";

class Wells : public ::testing::Test {
 protected:
  void FillWells(int count) {
    RunCommand(ormel, "fill", [&] {
      for (int i = 0; i < count; ++i)
        StoreWell(ormel, {.Label = "W" + std::to_string(i)}, {static_cast<double>(i), 0});
    });
  }
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Wells, dialog_checks_in_their_order) {
  ormel.db().Execute("update Model set AQBase=-20,AQThickness='50'");  // top at 30
  StoreInhomogeneity(ormel, {.Label = "low", .BottomElevation = -40, .ChangeB = true},
                     std::vector<MapPoint>{{100, 100}, {200, 100}, {200, 200}, {100, 200}});
  StoreWell(ormel, {.Label = "O'Brien"}, {0, 0});
  const std::string local =
      "Starting Elevation must be between the local base and the aquifer top.\nThe local base is ";
  const FormRow kRows[] = {
      {"new well without a label", {}, "Invalid Label", kBlank, "tbLabel"},
      {"32 characters, umlauts are one each", {{"tbLabel", "Brunnen Münster ÄÖÜ 123456789012"}}, "", "", ""},
      {"33 characters", {{"tbLabel", std::string(33, 'w')}}, "Invalid Label", kBlank, "tbLabel"},
      {"label of another, other case",
       {{"tbLabel", "o'brien"}, {"tbData(3)", "-1"}},
       "Duplicate Label",
       "Well Label ('o'brien') already exists!\nPlease enter a new label.",
       "tbLabel"},
      {"blank radius",
       {{"tbLabel", "a"}, {"tbData(3)", ""}},
       "Bad Entry",
       std::string("Radius must be greater than 0.") + kNewValue,
       "tbData(3)"},
      {"radius beyond all wells",
       {{"tbLabel", "a"}, {"tbData(3)", "1e300"}},
       "Out of Range",
       "Radius must be between 0 and 10000000 meters.\nPlease enter a new value.",
       "tbData(3)"},
      {"a field that is not offered is not looked at", {{"tbLabel", "a"}, {"tbData(11)", "x"}}, "", "", ""},
      {"the label of an image",
       {{"tbLabel", "mirror_a"}},
       "Invalid Label",
       "A label that begins with \"Mirror_\" is that of an image well.\nPlease enter a new label",
       "tbLabel"},
      {"setback below 0",
       {{"tbLabel", "a"}, {"tbData(10)", "-0.1"}},
       "Bad Entry",
       std::string("Setback Radius must be positive.") + kNewValue,
       "tbData(10)"},
      {"setback 0", {{"tbLabel", "a"}, {"tbData(10)", "0"}}, "", "", ""},
      {"no particles",
       {{"tbLabel", "a"}, {"chkTrace", "on"}},
       "Bad Entry",
       std::string("Number of Particles must be greater than 0.") + kNewValue,
       "tbData(11)"},
      {"no particles, not traced", {{"tbLabel", "a"}, {"tbData(12)", "-99"}}, "", "", ""},
      {"start at the base",
       {{"tbLabel", "a"}, {"chkTrace", "on"}, {"tbData(11)", "9"}, {"tbData(12)", "-20"}},
       "",
       "",
       ""},
      {"start at the top",
       {{"tbLabel", "a"}, {"chkTrace", "on"}, {"tbData(11)", "9"}, {"tbData(12)", "30"}},
       "",
       "",
       ""},
      {"start above the top",
       {{"tbLabel", "a"}, {"chkTrace", "on"}, {"tbData(11)", "9"}, {"tbData(12)", "30.5"}},
       "Bad Entry",
       local + "-20 and the aquifer top is 30." + kNewValue,
       "tbData(12)"},
      {"start below the base",
       {{"tbLabel", "a"}, {"chkTrace", "on"}, {"tbData(11)", "9"}, {"tbData(12)", "-21"}},
       "Bad Entry",
       local + "-20 and the aquifer top is 30." + kNewValue,
       "tbData(12)"},
      {"start at a lower local base",
       {{"tbLabel", "a"},
        {"tbData(0)", "150"},
        {"tbData(1)", "150"},
        {"chkTrace", "on"},
        {"tbData(11)", "9"},
        {"tbData(12)", "-40"}},
       "",
       "",
       ""},
  };
  for (const FormRow& row : kRows) {
    WellProperties form(ormel);
    CheckRow(test, form, row);
  }
}

TEST_F(Wells, edit_keeps_its_own_label) {
  StoreWell(ormel, {.Label = "North"}, {0, 0});
  StoreWell(ormel, {.Label = "South"}, {1, 0});
  const FormRow kRows[] = {{"own label", {}, "", "", ""},
                           {"label of another",
                            {{"tbLabel", "South"}},
                            "Duplicate Label",
                            "Well Label ('South') already exists!\nPlease enter a new label.",
                            "tbLabel"}};
  for (const FormRow& row : kRows) {
    WellProperties form(ormel);
    form.Fill({.Label = "North"}, {0, 0});
    CheckRow(test, form, row);
  }
}

TEST_F(Wells, fields_are_offered_by_kind) {
  struct Row {
    bool head, pond, trace;
    const char *caption, *unit;
    bool trace_offered, count_offered;
  };
  const Row kRows[] = {{true, false, false, "Head", "meters", true, false},
                       {true, false, true, "Head", "meters", true, true},
                       {true, true, true, "Head", "meters", false, false},
                       {false, false, true, "Discharge", "m^3/day", true, true},
                       {false, true, true, "Discharge", "m/day", false, false}};
  for (const Row& row : kRows) {
    WellProperties form(ormel);
    form.SetChecked("chkTrace", row.trace);
    form.SetChecked("optHeadSpec(0)", row.head);
    form.SetChecked("chkPond", row.pond);
    EXPECT_EQ(form.State("tbData(2)").caption, row.caption);
    EXPECT_EQ(form.State("tbData(2)").unit, row.unit);
    for (const char* name : {"chkTrace", "tbData(10)"})
      EXPECT_EQ(form.State(name).enabled, row.trace_offered) << name;
    for (const char* name : {"tbData(11)", "tbData(12)"})
      EXPECT_EQ(form.State(name).enabled, row.count_offered) << name;
    EXPECT_EQ(form.Checked("chkTrace"), row.trace && !row.pond);
  }
}

TEST_F(Wells, units_follow_the_project) {
  TestProject feet_map(false, true), feet_model(true, false);
  WellProperties in_metres(feet_map.ormel), in_feet(feet_model.ormel);
  EXPECT_EQ(in_metres.State("tbData(0)").unit, "feet");
  EXPECT_EQ(in_metres.State("tbData(3)").unit, "meters");
  EXPECT_EQ(in_feet.State("tbData(0)").unit, "meters");
  EXPECT_EQ(in_feet.State("tbData(3)").unit, "feet");
  EXPECT_EQ(in_feet.State("tbData(2)").unit, "ft^3/day");
}

TEST_F(Wells, dialog_says_what_an_edit_touched) {
  struct Row {
    std::vector<Entry> entries;
    bool changed, retrace;
  };
  const Row kRows[] = {{{{"tbData(10)", "7"}}, false, false},     {{{"tbLabel", "new"}}, false, false},
                       {{{"tbData(11)", "7"}}, false, true},      {{{"tbData(12)", "7"}}, false, true},
                       {{{"chkTrace", "on"}}, false, true},       {{{"tbData(0)", "7"}}, true, false},
                       {{{"optHeadSpec(0)", "on"}}, true, false}, {{{"chkPond", "on"}}, true, false}};
  for (const Row& row : kRows) {
    WellProperties form(ormel);
    Type(form, row.entries);
    EXPECT_EQ(form.FormChanged(), row.changed) << row.entries.front().control;
    EXPECT_EQ(form.NeedRetrace(), row.retrace) << row.entries.front().control;
    EXPECT_FALSE(form.NeedReloadPathlines());
  }
  WellProperties form(ormel);
  form.SetChecked("chkPathlineColor", true);
  test.ui.color = Rgb(1, 2, 3);
  form.Click("comColor");
  EXPECT_TRUE(form.NeedReloadPathlines());
  EXPECT_FALSE(form.FormChanged());
  EXPECT_EQ(form.PathlineColor(), Rgb(1, 2, 3).value);
  form.SetChecked("chkPathlineColor", false);
  EXPECT_EQ(form.PathlineColor(), -99);
}

TEST_F(Wells, particle_count_carries_the_switch_in_its_sign) {
  WellProperties form(ormel);
  form.Fill({.NParticles = -5}, {});
  EXPECT_FALSE(form.Checked("chkTrace"));
  EXPECT_EQ(form.Text("tbData(11)"), "5");
  EXPECT_EQ(form.NParticles(), -5);
  form.SetChecked("chkTrace", true);
  EXPECT_EQ(form.NParticles(), 5);
}

TEST_F(Wells, add_stores_row_and_vertex_and_ends_the_mode) {
  ormel.mouse.LastX = 12.5;
  ormel.mouse.LastY = -3.25;
  ormel.mouse.MouseMode = MouseMode::kPlace;
  ormel.mouse.MouseElement = Element::kWell;
  test.view.menus_on = false;
  test.ui.color = Rgb(9, 9, 9);
  test.ui.OnForm("WellProperties", [](Form& form) {
    EXPECT_EQ(form.Text("tbData(0)"), "12.5");
    EXPECT_EQ(form.Text("tbData(3)"), "1");
    form.SetChecked("chkPathlineColor", true);
    form.Click("comColor");
    Fill({{"tbLabel", "Mill's well"}, {"tbData(2)", "1500"}, {"tbData(3)", "0.3"}, {"tbData(10)", "60"}})(
        form);
  });
  ElemAddWell(ormel);
  EXPECT_EQ(test.Number("select count(*) from Wells"), 1.0);
  EXPECT_EQ(test.Text("select Label from Wells"), "Mill's well");
  EXPECT_EQ(test.Number("select Head from Wells"), 1500.0);
  EXPECT_EQ(test.Number("select Setback from Wells"), 60.0);
  EXPECT_EQ(test.Number("select PathlineColor from Wells"), -99.0) << "a colour is stored by an edit only";
  EXPECT_EQ(test.Number("select X from Vertices,Wells where Vertices.VID=Wells.VID"), 12.5);
  EXPECT_EQ(test.Number("select Seq from Vertices"), 0.0);
  EXPECT_TRUE(ormel.layers.On(Layer::kElements));
  EXPECT_TRUE(test.view.menus_on);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kSelect);
  EXPECT_EQ(ormel.activity, "Select");
  EXPECT_TRUE(test.ui.boxes.empty());
}

TEST_F(Wells, add_cancelled_leaves_nothing) {
  test.view.menus_on = false;
  test.ui.OnForm("WellProperties", Fill({{"tbLabel", "x"}}, "Cancel"));
  ElemAddWell(ormel);
  EXPECT_EQ(test.Number("select count(*) from Wells"), 0.0);
  EXPECT_EQ(test.Number("select count(*) from Vertices"), 0.0);
  EXPECT_EQ(test.view.places.size(), 1U) << "marked while the dialog is open";
  EXPECT_TRUE(test.view.menus_on);
}

TEST_F(Wells, beyond_the_limit_are_refused_and_the_one_above_is_not) {
  FillWells(2000);
  test.ui.OnForm("WellProperties", Fill({{"tbLabel", "one more"}}));
  ElemAddWell(ormel);
  EXPECT_EQ(ormel.db().RowCount("Wells"), 2001);
  test.view.menus_on = false;
  ElemAddWell(ormel);
  EXPECT_EQ(ormel.db().RowCount("Wells"), 2001);
  EXPECT_EQ(test.ui.LastTitle(), "Maximum well limit reached!");
  EXPECT_EQ(test.ui.LastText(),
            "Ormel only allows for up to 2000 wells in a single model.\nYou may not add any more.");
  EXPECT_TRUE(test.view.menus_on);
  EXPECT_EQ(test.ui.shown_forms.size(), 1U);
  EXPECT_FALSE(MirrorWell(ormel, "one more", {0, 0}, {1, 0}, {3, 4}));
  EXPECT_EQ(test.ui.LastText(),
            "Ormel only allows for up to 2000 wells in a single model.\nCannot create the mirrored well");
}

TEST_F(Wells, refused_by_the_store_leave_no_vertex_and_the_failure_is_told) {
  RunEdit(ormel, "ToolsImportWL", [&] { StoreWell(ormel, {.Label = std::string(65, 'x')}, {1, 2}); });
  EXPECT_EQ(test.Number("select count(*) from Vertices"), 0.0);
  EXPECT_EQ(test.ui.LastTitle(), "Unhandled Error -- Contact the ZRB");
  EXPECT_TRUE(test.ui.LastText().starts_with("Unhandled error in ToolsImportWL\n")) << test.ui.LastText();
  EXPECT_NE(test.ui.LastText().find("Table Wells, field Label"), std::string::npos) << test.ui.LastText();
  StoreWell(ormel, {.Label = "next"}, {1, 2});
  EXPECT_EQ(test.Number("select count(*) from Wells"), 1.0);
}

TEST_F(Wells, image_is_the_reflected_opposite_and_there_is_one) {
  StoreWell(ormel,
            {.Label = "O'Brien",
             .Head = 800,
             .Radius = 0.5,
             .Setback = 3,
             .NParticles = 5,
             .StartElev = 2,
             .PathlineColor = 77},
            {3, 4});
  EXPECT_TRUE(MirrorWell(ormel, "O'Brien", {0, 0}, {1, 0}, {3, 4}));
  EXPECT_TRUE(MirrorWell(ormel, "O'Brien", {0, 0}, {0, 1}, {3, 4}));
  EXPECT_EQ(test.Number("select count(*) from Wells"), 2.0);
  EXPECT_EQ(test.Number("select count(*) from Vertices"), 2.0) << "the earlier image's vertex goes with it";
  Recordset image = ormel.db().OpenRecordset("select * from Wells where Label like 'Mirror_*'");
  ASSERT_TRUE(image.HasRow());
  const WellRow row = ReadWell(image);
  EXPECT_EQ(row.Label, "Mirror_O'Brien");
  EXPECT_EQ(row.Head, -800.0);
  EXPECT_EQ(row.Radius, 0.5);
  EXPECT_EQ(row.Setback, 3.0);
  EXPECT_EQ(row.StartElev, 2.0);
  EXPECT_EQ(row.NParticles, -5);
  EXPECT_EQ(row.PathlineColor, -99);
  VertexRow vertex;
  ASSERT_TRUE(FindVertex(ormel, image.Get<Vid>("VID"), vertex));
  EXPECT_EQ(vertex.at, (MapPoint{-3, 4}));
}

TEST_F(Wells, image_of_one_that_traces_not_keeps_the_count) {
  StoreWell(ormel, {.Label = std::string(60, 'n'), .Head = -1, .NParticles = -5}, {3, 4});
  EXPECT_TRUE(MirrorWell(ormel, std::string(60, 'n'), {0, 0}, {1, 0}, {3, 4}));
  EXPECT_EQ(test.Number("select NParticles from Wells where Label='Mirror_" + std::string(57, 'n') + "'"),
            -5.0);
  EXPECT_EQ(test.Number("select Head from Wells where Label='Mirror_" + std::string(57, 'n') + "'"), 1.0);
  EXPECT_FALSE(MirrorWell(ormel, "x", {1, 1}, {1, 1}, {3, 4})) << "no line through one point";
}

}  // namespace
}  // namespace ormel::test
