#include <gmock/gmock.h>

#include "basemaps/catalogue.h"
#include "basemaps/sample_bbm.h"
#include "view/map_fixture.h"

namespace ormel {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct BaseMapPicture : testing::Test {
  test::MapProject program;
  Ormel& ormel = program.ormel;

  void Add(const std::string& name, const std::string& bytes) {
    const std::string path = program.dir / name;
    test::WriteAll(path, bytes);
    ASSERT_TRUE(AddBaseMap(ormel, path));
    Extents bounds;
    LoadBaseMaps(ormel, bounds);
  }
  std::vector<std::string> Drawn() { return program.Drawn("Base Maps"); }
  static std::size_t Count(const std::vector<std::string>& calls, const std::string& start) {
    return static_cast<std::size_t>(std::count_if(
        calls.begin(), calls.end(), [&](const std::string& c) { return c.starts_with(start); }));
  }
};

TEST_F(BaseMapPicture, OfALakeWithAnIsland) {
  Add("lake.bbm", BbmBytesOf(test::SampleContent()));
  const std::vector<std::string> calls = Drawn();
  EXPECT_THAT(
      calls, Contains(testing::AllOf(StartsWith("areas 0/192/192 opacity 1"), HasSubstr(" ring "))).Times(1));
  // The shore of class 200 is hidden, the other is drawn in the colour of water; a line without attributes is
  // not.
  EXPECT_EQ(Count(calls, "line 0/192/192"), 1u);
  EXPECT_GT(Count(calls, "line 5"), 0u);  // the symbol of the one point that has attributes
  ShowBaseMap(ormel, program.dir / "lake.bbm", false);
  EXPECT_THAT(Drawn(), testing::IsEmpty());
}

TEST_F(BaseMapPicture, DrawsThePointsOfPlainMapsTwice) {
  Add("plain.bbm", BbmBytesOf(test::SampleContent(kBbmPlain)));
  const std::size_t plain = Count(Drawn(), "line 5");
  RemoveBaseMap(ormel, program.dir / "plain.bbm");
  Add("black.bbm", BbmBytesOf(test::SampleContent(kBbmBlack)));
  EXPECT_EQ(plain, 2 * Count(Drawn(), "line 5"));
}

TEST_F(BaseMapPicture, OfAnOperationStream) {
  Add("stream.bbm", test::SampleStream());
  const std::vector<std::string> calls = Drawn();
  EXPECT_EQ(Count(calls, "line 0 w2"), 3u);
  EXPECT_EQ(Count(calls, "area 0 fill 0"), 1u);
}

TEST_F(BaseMapPicture, SpacesTheLabelsOfOneRoad) {
  BbmContent content;
  content.header.description = "ROADS";
  for (const std::int32_t x : {0, 10, 90})
    content.lines.push_back(test::SampleLine({{170, 201}, {172, 80}}, {{x, 0}, {x + 5, 5}}));
  Add("roads.bbm", BbmBytesOf(content));
  EXPECT_EQ(Count(Drawn(), "text \"I-80\""), 2u);  // the view's diagonal is above 282, a seventh of it 42
}

TEST_F(BaseMapPicture, TellsOfACutStreamOnceAndGoesOn) {
  const std::string bytes = test::SampleStream();
  Add("cut.bbm", bytes.substr(0, bytes.size() - 4));
  Drawn();
  Drawn();
  ASSERT_EQ(program.ui.boxes.size(), 1u);
  EXPECT_EQ(program.ui.LastTitle(), "Error encountered in OpenDWG BBM file");
}

TEST_F(BaseMapPicture, PlacesImagesAndFillsPolygons) {
  Add("grid.asc", "ncols 2\nnrows 2\nxllcorner -50\nyllcorner 0\ncellsize 25\n1 2\n3 4\n");
  Add("field.geojson", R"({"type":"Feature","properties":{},"geometry":{"type":"Polygon","coordinates":)"
                       R"([[[0,0],[50,0],[50,50],[0,50],[0,0]],[[10,10],[10,20],[20,20],[10,10]]]}})");
  const std::vector<std::string> calls = Drawn();
  EXPECT_EQ(Count(calls, "picture 2x2"), 1u);
  EXPECT_EQ(Count(calls, "areas "), 1u);
  // Images lie below vectors, whatever their rows say.
  EXPECT_THAT(calls.front(), StartsWith("picture"));
  const auto picture = calls.front();
  const DevicePoint at = program.map.vg().vgGDIWorldToDevice(-50, 50);
  EXPECT_THAT(picture, HasSubstr(" " + std::to_string(at.x) + "," + std::to_string(at.y) + " "));
}

}  // namespace
}  // namespace ormel
