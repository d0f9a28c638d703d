// The list of all elements: what it says of each kind, how it searches and sorts, and that it follows the
// change records alone.
#include "document/element_list.h"

#include <gtest/gtest.h>

#include "core/command.h"
#include "document/document.h"
#include "document/elements_near.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

struct ElementListTest : testing::Test, TestProject {
  Document document{ormel};
  ElementList list{ormel};

  void Do(const std::string& sql) {
    EXPECT_TRUE(RunCommand(ormel, "test", [&] { ormel.db().Execute(sql); })) << sql << ui.LastText();
  }
  void AddWell(int vid, const std::string& label, double head, bool specified = false, bool pond = false) {
    Do("insert into Wells(VID,Label,Head,Radius,HeadSpecified,Pond) values(" + std::to_string(vid) + ",'" +
       label + "'," + std::to_string(head) + ",0.3," + (specified ? "1," : "0,") + (pond ? "1)" : "0)"));
  }
  /// "Wells: a; b | Particles: ..."
  std::string Labels() {
    std::string text;
    for (const ElementGroup& group : list.Groups()) {
      text += (text.empty() ? "" : " | ") + group.caption + ":";
      for (const ListedElement& item : group.elements) text += " " + item.label + ";";
    }
    return text;
  }
  std::string Says(std::size_t group, std::size_t item) {
    const ListedElement& element = list.Groups().at(group).elements.at(item);
    return element.label + " / " + element.value + " / " + element.state;
  }
};

TEST_F(ElementListTest, says_what_each_element_is_given_and_how_it_acts) {
  AddWell(1, "a", 1200);
  AddWell(2, "b", 20.5, true);
  AddWell(3, "c", 0.01, false, true);
  AddWell(4, "Mirror_a", -1200);
  Do("insert into LinesinkStrings(PID,Label,HeadSpecified,StartingHead,EndingHead) "
     "values(5,'brook',1,20,18)");
  Do("insert into Inhomogeneities(PID,Label,ChangeK,HydCond,ChangeR,Recharge,ChangeP,Porosity) "
     "values(6,'gravel',-1,40,-1,0.001,-1,0.25)");
  Do("insert into TestPoints(VID,Label,ObsHead) values(7,'TP',19.5)");
  Do("insert into Particles(VID,Forward,SatdThick,Elevation) values(8,0,0,3)");
  EXPECT_EQ(Says(0, 0), "a / 1200 m^3/day / given discharge");
  EXPECT_EQ(Says(0, 1), "b / 20.5 m / given head");
  EXPECT_EQ(Says(0, 2), "c / 0.01 m/day / pond");
  EXPECT_EQ(Says(0, 3), "Mirror_a / -1200 m^3/day / image well");
  EXPECT_EQ(Says(1, 0), "brook / 20 to 18 m / given head");
  EXPECT_EQ(Says(2, 0), "gravel / k 40 m/day, recharge 0.001 m/day / porosity 0.25");
  EXPECT_EQ(Says(3, 0), "TP / 19.5 m / ");
  EXPECT_EQ(Says(4, 0), "Particle 8 / 3 m / backward");
}

TEST_F(ElementListTest, follows_adding_changing_deleting_and_undoing) {
  EXPECT_EQ(Labels(), "");
  AddWell(1, "W 1", 5);
  AddWell(2, "W 2", 5);
  EXPECT_EQ(Labels(), "Wells: W 1; W 2;");
  const long before = list.revision();
  Do("update Model set AQBase=3");
  EXPECT_EQ(list.revision(), before) << "nothing of it is in the list";
  Do("update Wells set Label='Town', Head=7 where VID=1");
  EXPECT_GT(list.revision(), before);
  EXPECT_EQ(Says(0, 0), "Town / 7 m^3/day / given discharge");
  Do("delete from Wells where VID=2");
  EXPECT_EQ(Labels(), "Wells: Town;");
  RunCommand(ormel, "test", [&] { document.Undo(); });
  EXPECT_EQ(Labels(), "Wells: Town; W 2;");
  Do("update Wells set VID=9 where VID=1");  // an identity that changes leaves no ghost
  EXPECT_EQ(Labels(), "Wells: Town; W 2;");
  EXPECT_EQ(list.Groups()[0].elements[0].id.key, 9);
  RunCommand(ormel, "test", [&] {  // more than are read one by one
    BulkInsert rows(ormel.db(), "TestPoints", {"VID", "Label", "ObsHead"});
    for (int i = 0; i < 1000; ++i) rows.Row(100 + i, "P " + std::to_string(i), 1.0);
  });
  EXPECT_EQ(list.Groups()[1].all, 1000U);
}

TEST_F(ElementListTest, searches_all_columns_and_sorts_as_people_count) {
  AddWell(1, "W 10", 9);
  AddWell(2, "w 9", 10);
  AddWell(3, "Lake", 100, true);
  EXPECT_EQ(Labels(), "Wells: Lake; w 9; W 10;");
  list.Sort(ListColumn::kLabel, true);
  EXPECT_EQ(Labels(), "Wells: W 10; w 9; Lake;");
  list.Sort(ListColumn::kValue, false);
  EXPECT_EQ(Labels(), "Wells: W 10; w 9; Lake;");
  list.Search("  GIVEN w ");
  EXPECT_EQ(Labels(), "Wells: W 10; w 9;");
  EXPECT_EQ(list.Groups()[0].all, 3U);
  list.Search("head");
  EXPECT_EQ(Labels(), "Wells: Lake;");
  list.Search("nowhere");
  EXPECT_EQ(Labels(), "");
  for (const auto& [a, b] :
       {std::pair("a2", "a10"), {"a02b", "a2c"}, {"A", "b"}, {"a", "a1"}, {"9", "010"}}) {
    EXPECT_TRUE(NaturallyBefore(a, b)) << a << " " << b;
    EXPECT_FALSE(NaturallyBefore(b, a)) << a << " " << b;
  }
}

TEST_F(ElementListTest, tells_results_only_while_they_are_on_view) {
  AddWell(12, "a", 1200);
  Do("insert into LinesinkStrings(PID,Label,HeadSpecified) values(3,'brook',1)");
  Do("insert into WLResults(Label,VadoxLabel,X,Y,Radius,Discharge,Head,SpecifiedHead) "
     "values('a','WL_000012',0,0,1,1200,18.123,0)");
  for (const char* part : {"0101", "0201"})
    Do(std::string(
           "insert into LSResults(Label,VadoxLabel,X1,Y1,X2,Y2,SpecifiedHead,CalculatedHead,Resistance,"
           "Discharge) values('brook','LS_000003_") +
       part + "',0,0,1,1,2,2,0,-250.5)");
  EXPECT_EQ(Says(0, 0), "a / 1200 m^3/day / given discharge");
  ormel.solution.ValidSolution = true;
  list.ResultsChanged();
  EXPECT_EQ(Says(0, 0), "a / 1200 m^3/day / given discharge, head 18.12 m, takes 1200 m^3/day");
  EXPECT_EQ(Says(1, 0), "brook / 0 m / given head, gives 501.0 m^3/day");
  Do("update WLResults set Head=-9999");
  list.ResultsChanged();
  EXPECT_EQ(Says(0, 0), "a / 1200 m^3/day / given discharge, DRY");
  ormel.solution.ValidSolution = false;
  list.ResultsChanged();
  EXPECT_EQ(Says(0, 0), "a / 1200 m^3/day / given discharge");
}

/// The distance from a line's middle and the inside of an area count, not only vertices.
TEST_F(ElementListTest, finds_all_that_lies_at_a_place_the_nearest_first) {
  const auto vertex = [&](int pid, int seq, double x, double y) {
    BulkInsert rows(ormel.db(), "Vertices", {"PID", "Seq", "X", "Y"});
    rows.Row(pid, seq, x, y);
    return static_cast<int>(rows.LastNumber());
  };
  const int well = vertex(-1, 0, 51, 50);
  AddWell(well, "a", 1);
  for (const auto& [pid, table] :
       {std::pair(5, "LinesinkStrings"), {6, "Inhomogeneities"}, {7, "Inhomogeneities"}})
    Do("insert into " + std::string(table) + "(PID,Label) values(" + std::to_string(pid) + ",'x')");
  for (const int end : {0, 1}) vertex(5, end, 100.0 * end, 52);
  for (const auto& [pid, half] : {std::pair(6, 40.0), {7, 20.0}})
    for (const int corner : {0, 1, 2, 3})
      vertex(pid, corner, 50 + (corner == 1 || corner == 2 ? half : -half), 50 + (corner > 1 ? half : -half));
  using Ids = std::vector<ElementId>;
  const ElementId point{Element::kWell, well}, line{Element::kLinesink, 5}, large{Element::kInhomogeneity, 6},
      small{Element::kInhomogeneity, 7};
  EXPECT_EQ(ElementsNear(ormel, {50, 50}, 9.0), (Ids{point, line, small, large}));
  EXPECT_EQ(ElementsNear(ormel, {50, 50}, 0.25), (Ids{small, large}));
  EXPECT_EQ(ElementsNear(ormel, {95, 52}, 9.0), (Ids{line}));
  EXPECT_EQ(ElementsNear(ormel, {10, 60}, 1.0), (Ids{large})) << "on its edge between two corners";
  EXPECT_TRUE(ElementsNear(ormel, {200, 200}, 9.0).empty());
}

}  // namespace
}  // namespace ormel::test
