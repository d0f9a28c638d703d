#include "basemaps/catalogue.h"

#include <gmock/gmock.h>

#include "basemaps/base_map_forms.h"
#include "basemaps/bbm_groups.h"
#include "basemaps/sample_bbm.h"
#include "support/test_project.h"
#include "text/files.h"

namespace ormel {
namespace {

using test::WriteAll;
using testing::ElementsAre;
using testing::HasSubstr;

struct Catalogue : testing::Test {
  test::TestProject program;
  Ormel& ormel = program.ormel;

  /// A square map of side 10 with its lower left corner there, added to the project.
  std::string AddBbm(const std::string& name, std::int32_t x, std::int32_t y) {
    BbmContent content;
    content.header.description = "ROADS";
    content.lines = {test::SampleLine({{170, 201}}, {{x, y}, {x + 10, y + 10}})};
    const std::string path = program.dir / name;
    WriteBbm(path, BbmBytesOf(content));
    EXPECT_TRUE(AddBaseMap(ormel, path));
    return path;
  }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const BaseMapRow& row : ReadBaseMapRows(ormel)) names.push_back(FileTitle(row.MapName));
    return names;
  }
};

TEST_F(Catalogue, KeepsTheOrderOfItsMaps) {
  Extents bounds{1, 2, 3, 4};
  EXPECT_FALSE(LoadBaseMaps(ormel, bounds));
  EXPECT_EQ(bounds, (Extents{1, 2, 3, 4}));
  const std::string first = AddBbm("first.bbm", 0, 0), middle = AddBbm("o'middle.bbm", 100, 0);
  AddBbm("last.bbm", 50, -50);
  EXPECT_FALSE(AddBaseMap(ormel, first));
  EXPECT_EQ(program.ui.LastTitle(), "Can't Add Basemap");
  EXPECT_EQ(program.ui.LastText(), "Base map file " + first + " is already selected");
  EXPECT_TRUE(LoadBaseMaps(ormel, bounds));
  EXPECT_EQ(bounds, (Extents{0, 110, -50, 10}));
  ShowBaseMap(ormel, middle, false);
  EXPECT_EQ(*ShownBaseMapExtents(ormel), (Extents{0, 60, -50, 10}));
  RemoveBaseMap(ormel, middle);
  EXPECT_THAT(Names(), ElementsAre("first.bbm", "last.bbm"));
  MoveBaseMap(ormel, first, true);
  EXPECT_THAT(Names(), ElementsAre("last.bbm", "first.bbm"));
}

TEST_F(Catalogue, GoesOnBehindAMapThatFails) {
  const std::string bad = program.dir / "bad.bbm", picture = program.dir / "picture.tif";
  WriteAll(bad, "no map");
  WriteAll(picture, "no picture");
  AddBaseMap(ormel, bad);
  program.ui.AnswerTo("Not Georeferenced", {Answer::kCancel, Answer::kOk});
  EXPECT_FALSE(AddBaseMap(ormel, picture));
  EXPECT_TRUE(AddBaseMap(ormel, picture));
  AddBbm("good.bbm", 0, 0);
  program.ui.boxes.clear();
  Extents bounds;
  EXPECT_TRUE(LoadBaseMaps(ormel, bounds));
  EXPECT_EQ(bounds, (Extents{0, 10, 0, 10}));
  ASSERT_EQ(program.ui.boxes.size(), 2u);
  EXPECT_EQ(program.ui.boxes[0].text, "Illegal BBM file header found in file " + bad + " --.");
  EXPECT_THAT(program.ui.boxes[1].text, HasSubstr("Error adding raster image " + picture +
                                                  "\nThe image is not a valid raster data set."));
  EXPECT_EQ(program.ui.wait_depth, 0);
}

TEST_F(Catalogue, AsksWhereAMissingMapIs) {
  const std::string a = AddBbm("a.bbm", 0, 0), b = AddBbm("b.bbm", 0, 0), c = AddBbm("c.bbm", 0, 0);
  const std::string moved = program.dir / "moved.bbm";
  std::filesystem::rename(b, moved);
  for (const std::string& path : {a, c}) std::filesystem::remove(path);
  program.ui.AnswerTo("Can't Open BBM Basemap File", {Answer::kNo, Answer::kYes, Answer::kCancel});
  program.ui.ChooseFile(moved);
  FindMissingBaseMaps(ormel);
  EXPECT_THAT(Names(), ElementsAre("moved.bbm", "c.bbm"));
  Extents bounds;
  EXPECT_TRUE(LoadBaseMaps(ormel, bounds));
  EXPECT_EQ(BaseMapsOf(ormel).Find(c)->fault, "the file is not there");
}

TEST_F(Catalogue, MovesAboutWithTheProjectByARelativeName) {
  AddBbm("map.bbm", 0, 0);
  ormel.db().Execute("update Basemaps set MapName='map.bbm'");
  Extents bounds;
  EXPECT_TRUE(LoadBaseMaps(ormel, bounds));
}

TEST_F(Catalogue, SelectsAGroupByAClick) {
  SelectBBMGroup(ormel);
  EXPECT_EQ(program.ui.LastText(), "No BBM Maps are loaded in current project!");
  const std::string under = AddBbm("under.bbm", 0, 0), edge = AddBbm("edge.bbm", 10, 10);
  AddBbm("far.bbm", 50, 50);
  Extents bounds;
  LoadBaseMaps(ormel, bounds);
  SelectBBMGroup(ormel);
  EXPECT_EQ(ormel.mouse.MouseElement, Element::kBaseMapSelection);
  EXPECT_EQ(BbmOutlines(ormel).size(), 3u);
  ormel.mouse.LastX = ormel.mouse.LastY = 10;  // on the corner of both
  program.ui.OnForm("BBMGroup", [&](Form& form) {
    EXPECT_THAT(form.State("MapList").items, ElementsAre(under, edge));
    form.Click("cmdHideShow(0)");
    form.Click("Apply");
  });
  BBMSelect(ormel);
  EXPECT_EQ(program.Number("select count(*) from Basemaps where Show=0"), 2);
  program.ui.OnForm("BBMGroup", [](Form& form) { form.Click("cmdDelete"); });
  program.ui.AnswerTo("Remove Maps?", {Answer::kYes});
  BBMSelect(ormel);
  EXPECT_THAT(Names(), ElementsAre("far.bbm"));
}

TEST_F(Catalogue, IsEditedByItsDialogs) {
  const std::string roads = AddBbm("roads.bbm", 0, 0), shapes = program.dir / "areas.geojson";
  WriteAll(
      shapes,
      R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{"tone":3,"name":"Mill"},)"
      R"("geometry":{"type":"Point","coordinates":[5,7]}}]})");
  EXPECT_TRUE(AddBaseMap(ormel, shapes));
  Extents bounds;
  LoadBaseMaps(ormel, bounds);
  program.ui.OnForm("ViewShape", [&](Form& form) {
    EXPECT_THAT(form.State("MapList").items, ElementsAre(shapes));
    EXPECT_THAT(form.State("ColorList").items, ElementsAre("(none)", "tone", "name"));
    form.Select("ColorList", {1});
    form.Select("TextList", {2});
    form.Click("OK");
  });
  program.ui.OnForm("ViewGraphics", [&](Form& form) {
    EXPECT_THAT(form.State("VectorList").items, ElementsAre(roads, shapes));
    form.Click("EditMap");
    form.Click("cmdSelect(1)");
    form.Select("VectorList", {1});
    form.Click("OK");
  });
  ShowViewGraphics(ormel, false);
  const std::vector<BaseMapRow> rows = ReadBaseMapRows(ormel);
  EXPECT_FALSE(rows[0].Show);
  EXPECT_TRUE(rows[1].Show);
  EXPECT_EQ(rows[1].ColorField, "tone");
  const VectorMap& map = *BaseMapsOf(ormel).Find(shapes)->vector;
  const VectorMap::Part& part = map.Full().parts.front();
  EXPECT_EQ(map.ColorIndex(part), 3);
  EXPECT_EQ(map.Label(part), "Mill");
  RemoveBaseMap(ormel, shapes);
  EXPECT_EQ(program.Number("select count(*) from MapLabels"), 0);
}

}  // namespace
}  // namespace ormel
