#include "model/inhomogeneities.h"

#include <gtest/gtest.h>

#include "form_rows.h"
#include "model/barriers.h"
#include "model/vertices.h"

namespace ormel::test {
namespace {

using Points = std::vector<MapPoint>;

class Inhomogeneities : public ::testing::Test {
 protected:
  Inhomogeneities() {
    ormel.db().Execute(
        "update Model set AQBase=-20,AQThickness='50.5',AQHydCond=12,AQRecharge=0.001,AQPorosity=0.25");
  }
  void ClickAt(double x, double y, bool first) {
    ormel.mouse.LastX = x;
    ormel.mouse.LastY = y;
    ElemAddInhoVertex(ormel, first);
  }
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Inhomogeneities, dialog_checks_in_their_order) {
  StoreInhomogeneity(ormel, {.Label = "King's marsh"}, {});
  const std::string porosity =
      "Porosity must be greater than 0 and no larger than 1.\nPlease enter a new value.";
  const auto with_porosity = [](const char* value) {
    return std::vector<Entry>{{"tbLabel", "a"}, {"chkChangeP", "on"}, {"tbData(2)", value}};
  };
  const FormRow kRows[] = {
      {"no label",
       {{"chkChangeK", "on"}, {"tbData(0)", "-1"}},
       "Data Missing",
       "Label must be specified. ",
       "tbLabel"},
      {"label of another",
       {{"tbLabel", "King's marsh"}},
       "Duplicate Label",
       "Inhomogeneity Label ('King's marsh') already exists!\nPlease enter a new label.",
       "tbLabel"},
      {"negative conductivity",
       {{"tbLabel", "a"}, {"chkChangeK", "on"}, {"tbData(0)", "-0.1"}},
       "Bad Entry",
       "Hydraulic Conductivity cannot be negative.\nPlease enter a positive value.",
       "tbData(0)"},
      {"empty conductivity is 0",
       {{"tbLabel", "a"}, {"chkChangeK", "on"}, {"tbData(0)", ""}},
       "No Conductivity",
       "A domain without conductivity lets no water pass, and a model that holds one cannot be "
       "solved.\nKeep a conductivity of 0?",
       "tbData(0)"},
      {"porosity 1", with_porosity("1"), "", "", ""},
      {"porosity 0", with_porosity("0"), "Bad Entry", porosity, "tbData(2)"},
      {"porosity 1.5", with_porosity("1.5"), "Bad Entry", porosity, "tbData(2)"},
      {"porosity -0.5", with_porosity("-0.5"), "Bad Entry", porosity, "tbData(2)"},
  };
  test.ui.AnswerTo("No Conductivity", {Answer::kNo});
  for (const FormRow& row : kRows) {
    Inhomogeneity form(ormel);
    CheckRow(test, form, row);
  }
  ormel.db().Execute("update Model set AQPorosity=0");
  Inhomogeneity form(ormel);
  CheckRow(test, form,
           {"the model's porosity counts too", {{"tbLabel", "a"}}, "Bad Entry", porosity, "tbData(2)"});
}

TEST_F(Inhomogeneities, switch_that_is_clear_shows_what_applies) {
  struct Row {
    const char *check, *field, *value;
  };
  const Row kRows[] = {{"chkChangeK", "tbData(0)", "12"},
                       {"chkChangeR", "tbData(1)", "0.001"},
                       {"chkChangeP", "tbData(2)", "0.25"},
                       {"chkChangeB", "tbData(3)", "-20"},
                       {"chkChangeA", "tbData(4)", "30.5"}};
  for (const Row& row : kRows) {
    Inhomogeneity form(ormel);
    form.Fill({.HydCond = 3, .ChangeB = true});
    EXPECT_FALSE(form.Invalidate());
    if (std::string(row.check) != "chkChangeB") {
      EXPECT_EQ(form.Text(row.field), row.value);
      EXPECT_FALSE(form.State(row.field).enabled);
    }
    form.SetChecked(row.check, true);
    form.SetText(row.field, "7");
    EXPECT_TRUE(form.State(row.field).enabled);
    form.SetChecked(row.check, false);
    EXPECT_EQ(form.Text(row.field), row.value);
    EXPECT_FALSE(form.State(row.field).enabled);
    EXPECT_TRUE(form.Invalidate());
  }
}

TEST_F(Inhomogeneities, average_head_at_the_top_says_nothing) {
  const Pid top = StoreInhomogeneity(ormel, {.Label = "a", .AverageHead = 30.5}, {});
  const Pid other = StoreInhomogeneity(ormel, {.Label = "b", .AverageHead = 30.4}, {});
  DropTrivialAverageHead(ormel, top);
  DropTrivialAverageHead(ormel, other);
  InhomogeneityRow row;
  ASSERT_TRUE(FindInhomogeneity(ormel, top, row));
  EXPECT_EQ(row.AverageHead, -9999.0);
  ASSERT_TRUE(FindInhomogeneity(ormel, other, row));
  EXPECT_EQ(row.AverageHead, 30.4);
}

TEST_F(Inhomogeneities, share_the_corners_of_other_domains_exactly) {
  StoreInhomogeneity(ormel, {.Label = "first"}, Points{{0, 0}, {10, 0}, {10, 10.125}});
  StoreBarrier(ormel, {.Label = "wall"}, Points{{50, 50}, {60, 60}});
  ormel.selection.radius_squared = 1.0;
  test.ui.OnForm("Inhomogeneity", Fill({{"tbLabel", "second"}, {"chkChangeK", "on"}, {"tbData(0)", "99"}}));
  ElemAddInhomogeneity(ormel);
  EXPECT_EQ(ormel.activity, "Add Inhomogeneity");
  const Pid pid = ormel.mouse.CurrentPID;
  ClickAt(0.1, 0.1, true);     // the first vertex never snaps
  ClickAt(10.2, 10.2, false);  // a corner of another domain
  ClickAt(50.1, 50, false);    // a corner of a barrier
  ClickAt(50.2, 50.1, false);  // a corner of the domain itself
  ClickAt(30, 5, false);
  ElemEndInhomogeneity(ormel);
  EXPECT_EQ(PointsOf(ormel, pid), (Points{{0.1, 0.1}, {10, 10.125}, {50.1, 50}, {50.2, 50.1}, {30, 5}}));
  InhomogeneityRow row;
  ASSERT_TRUE(FindInhomogeneity(ormel, pid, row));
  EXPECT_EQ(row.HydCond, 99.0);
  EXPECT_TRUE(row.ChangeK);
  EXPECT_FALSE(row.ChangeR);
  EXPECT_EQ(row.Porosity, 0.25) << "the field holds the model's value";
  EXPECT_EQ(test.Number("select ChangeK from Inhomogeneities where Label='second'"), -1.0);
  EXPECT_EQ(ormel.mouse.CurrentPID, kNoPolygon);
  EXPECT_TRUE(test.view.menus_on);
}

}  // namespace
}  // namespace ormel::test
