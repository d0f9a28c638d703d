// The sheet of properties: what it shows is what the dialogs show, and what it sets they have checked.
#include "tools/property_sheet.h"

#include <gtest/gtest.h>

#include "core/command.h"
#include "document/document.h"
#include "model/barriers.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/observations.h"
#include "model/selection.h"
#include "model/wells.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

using Points = std::vector<MapPoint>;

struct SheetTest : testing::Test, TestProject {
  Document document{ormel};
  PropertySheet sheet{ormel};

  void Choose(std::vector<ElementId> ids) {
    SelectItems(ormel, std::move(ids));
    sheet.Read();
  }
  const SheetRow& Row(std::string_view name) {
    for (const SheetRow& row : sheet.rows())
      if (row.property.name == name) return row;
    throw std::out_of_range(std::string(name));
  }
  bool Set(std::string_view name, const std::string& text) {
    for (std::size_t i = 0; i < sheet.rows().size(); ++i)
      if (sheet.rows()[i].property.name == name) return sheet.Set(i, text);
    throw std::out_of_range(std::string(name));
  }
  ElementId Well(const std::string& label, double head) {
    Vid vid = -1;
    RunCommand(ormel, "test", [&] {
      vid = StoreWell(ormel, {.Label = label, .Head = head, .Radius = 0.3}, {10, 20});
    });
    return {Element::kWell, vid};
  }
};

TEST_F(SheetTest, shows_the_captions_units_and_states_of_the_dialog) {
  Choose({Well("a", 1200)});
  EXPECT_EQ(sheet.title(), "Well");
  EXPECT_EQ(Row("Head").caption, "Discharge");
  EXPECT_EQ(Row("Head").unit, "m^3/day");
  EXPECT_EQ(Row("Head").text, "1200");
  EXPECT_EQ(Row("HeadSpecified").text, "Discharge-Specified");
  ASSERT_TRUE(Set("HeadSpecified", "Head-Specified"));
  EXPECT_EQ(Row("Head").caption, "Head");
  EXPECT_EQ(Row("Head").unit, "meters");
  ASSERT_TRUE(Set("Pond", "yes"));
  EXPECT_FALSE(Row("Setback").enabled) << "a pond has none";
  EXPECT_FALSE(Set("Setback", "5"));
  EXPECT_EQ(Number("select Setback from Wells"), 0.0);
  EXPECT_EQ(Number("select Pond from Wells"), 1.0);
}

TEST_F(SheetTest, a_value_that_the_dialog_refuses_changes_nothing_and_says_why) {
  const ElementId a = Well("a", 1), b = Well("b", 2);
  Choose({a});
  EXPECT_FALSE(Set("Radius", "0"));
  EXPECT_EQ(ui.LastText(), "Radius must be greater than 0.\nPlease enter a new value.");
  EXPECT_EQ(Row("Radius").text, "0.3");
  EXPECT_FALSE(Set("Label", "B"));
  EXPECT_EQ(ui.LastTitle(), "Duplicate Label");
  EXPECT_EQ(SelectedElements(ormel), std::vector{a}) << "it stays selected";
  // One of several refuses: none is changed.
  ormel.db().Execute("update Wells set Radius=0 where Label='b'");
  Choose({a, b});
  EXPECT_FALSE(Set("Head", "77"));
  EXPECT_EQ(Number("select count(*) from Wells where Head=77"), 0.0);
}

TEST_F(SheetTest, several_of_a_kind_are_set_in_one_step_and_asked_about_once) {
  const ElementId a = Well("a", 1), b = Well("b", 2);
  Choose({a, b});
  EXPECT_EQ(sheet.title(), "2 Wells");
  EXPECT_TRUE(Row("Head").mixed);
  EXPECT_EQ(Row("Head").text, "");
  EXPECT_FALSE(Row("Radius").mixed);
  for (const char* own : {"Label", "X", "Y"}) EXPECT_FALSE(Row(own).enabled) << own;
  ormel.solution.ValidSolution = true;
  ui.AnswerTo("Model Changed!", {Answer::kYes});
  ASSERT_TRUE(Set("Head", "500"));
  EXPECT_EQ(Number("select count(*) from Wells where Head=500"), 2.0);
  EXPECT_FALSE(ormel.solution.ValidSolution);
  EXPECT_EQ(SelectedElements(ormel).size(), 2U);
  RunCommand(ormel, "test", [&] { document.Undo(); });
  sheet.Read();
  EXPECT_EQ(Number("select sum(Head) from Wells"), 3.0);
  // A field behind a switch turns it on; the switch has a row of its own.
  ASSERT_TRUE(Set("NParticles", "8"));
  EXPECT_EQ(Number("select min(NParticles) from Wells"), 8.0);
  ASSERT_TRUE(Set("chkTrace", "no"));
  EXPECT_EQ(Number("select max(NParticles) from Wells"), -8.0);
}

TEST_F(SheetTest, elements_of_several_kinds_and_image_wells_have_no_sheet) {
  const ElementId a = Well("a", 1), image = Well("Mirror_a", -1);
  const ElementId point{Element::kTestPoint, StoreTestPoint(ormel, {.Label = "TP"}, {0, 0})};
  Choose({a, point});
  EXPECT_TRUE(sheet.rows().empty());
  EXPECT_NE(sheet.title().find("several kinds"), std::string::npos);
  Choose({image});
  EXPECT_TRUE(sheet.rows().empty());
  EXPECT_EQ(sheet.title(), "An image well follows its source.");
  Choose({});
  EXPECT_TRUE(sheet.rows().empty());
}

/// A column of the table of properties that names no control would be a row that cannot be set.
TEST_F(SheetTest, every_property_of_every_kind_has_its_control) {
  const std::vector<ElementId> all{
      Well("a", 1),
      {Element::kLinesink, StoreLinesink(ormel, {.Label = "s"}, Points{{20, 0}, {25, 0}})},
      {Element::kBarrier, StoreBarrier(ormel, {.Label = "wall"}, Points{{40, 0}, {45, 0}})},
      {Element::kInhomogeneity, StoreInhomogeneity(ormel, {.Label = "m"}, Points{{50, 0}, {55, 0}, {55, 5}})},
      {Element::kTestPoint, StoreTestPoint(ormel, {.Label = "TP"}, {80, 0})},
      {Element::kParticle, StoreParticle(ormel, {}, {90, 0})},
      {Element::kFluxLine, StoreFluxLine(ormel, "f", Points{{60, 0}, {65, 0}})},
      {Element::kCapzone, StoreCapzone(ormel, "z", Points{{70, 0}, {75, 0}, {70, 5}})}};
  for (const ElementId& id : all) {
    Choose({id});
    const KindRow* kind = FindKindRow(id.element);
    ASSERT_NE(kind, nullptr);
    EXPECT_GE(sheet.rows().size(), kind->properties.size()) << kind->name;
    for (const SheetRow& row : sheet.rows())
      EXPECT_FALSE(row.caption.empty()) << kind->name << ' ' << row.property.name;
    if (kind->label.empty()) continue;
    EXPECT_TRUE(Set(kind->label, "renamed")) << kind->name;
    EXPECT_EQ(Row(kind->label).text, "renamed") << kind->name;
  }
}

}  // namespace
}  // namespace ormel::test
