#include <gmock/gmock.h>

#include <cmath>

#include "basemaps/cad_color.h"
#include "basemaps/raster_map.h"
#include "basemaps/vector_map.h"
#include "basemaps/world_file.h"
#include "support/temp_dir.h"

namespace ormel {
namespace {

using test::TempDir;
using test::WriteAll;

TEST(WorldFile, IsFoundByTheImagesExtension) {
  const TempDir dir;
  std::string extension;
  EXPECT_FALSE(WorldFileExists(dir / "map.JPG", extension));
  WriteAll(dir / "map.jgw", "1");
  EXPECT_TRUE(WorldFileExists(dir / "map.JPG", extension));
  EXPECT_EQ(extension, "jgw");
  WriteAll(dir / "map.jpgw", "1");
  EXPECT_TRUE(WorldFileExists(dir / "map.JPG", extension));
  EXPECT_EQ(extension, "jpgw");
  WriteAll(dir / "map.tfw", "1");
  EXPECT_TRUE(WorldFileExists(dir / "map.tiff", extension));
  EXPECT_FALSE(WorldFileExists(dir / "map", extension));
}

TEST(WorldFile, IsWrittenInPaddedLinesAndReadBack) {
  const TempDir dir;
  WriteWorldFile(dir / "map.tfw", 2.5, -2.5, 1001.25, 1998.75);
  const std::string text = test::ReadAll(dir / "map.tfw");
  EXPECT_EQ(text.substr(0, 26), "2.5" + std::string(21, ' ') + "\r\n");
  EXPECT_EQ(text.size(), 6u * 26u);
  const auto place = ReadWorldFile(dir / "map.tif");
  ASSERT_TRUE(place);
  EXPECT_THAT(*place, testing::ElementsAre(1000, 2.5, 0, 2000, 0, -2.5));
  WriteAll(dir / "other.tfw", "1\n0\n0\nnothing\n");
  EXPECT_FALSE(ReadWorldFile(dir / "other.tif"));
}

TEST(CadColors, StepThroughTheWheel) {
  const std::pair<int, Color> cases[] = {
      {0, Rgb(0, 0, 0)},       {1, Rgb(255, 0, 0)},      {7, Rgb(0, 0, 0)},       {10, Rgb(255, 0, 0)},
      {50, Rgb(255, 255, 0)},  {90, Rgb(0, 255, 0)},     {130, Rgb(0, 255, 255)}, {170, Rgb(0, 0, 255)},
      {210, Rgb(255, 0, 255)}, {11, Rgb(255, 127, 127)}, {18, Rgb(38, 0, 0)},     {12, Rgb(165, 0, 0)},
      {256, Rgb(0, 0, 0)},     {-1, Rgb(0, 0, 0)},       {13, Rgb(165, 82, 82)},  {30, Rgb(255, 127, 0)},
      {149, Rgb(19, 33, 38)},  {9, Rgb(0, 0, 0)}};
  for (const auto& [index, color] : cases) EXPECT_EQ(CADColorConvert(index), color) << index;
}

/// A grid of text whose pixel (column, row) has the value column + 100 row; 40 by 20, cells of 10 from 100,
/// 200.
std::string Grid(const TempDir& dir) {
  std::string text = "ncols 40\nnrows 20\nxllcorner 100\nyllcorner 200\ncellsize 10\n";
  for (int row = 0; row < 20; ++row) {
    for (int column = 0; column < 40; ++column) text += std::to_string(column + 100 * row) + " ";
    text += "\n";
  }
  WriteAll(dir / "grid.asc", text);
  return dir / "grid.asc";
}

TEST(RasterMap, ReadsWhatTheViewShows) {
  const TempDir dir;
  RasterMap map(Grid(dir));
  EXPECT_TRUE(map.georeferenced());
  EXPECT_EQ(map.bounds(), (Extents{100, 500, 200, 400}));
  const auto part = map.Read({0, 600, 0, 600}, 10.0);
  ASSERT_TRUE(part);
  EXPECT_EQ(part->pixels->width, 40);
  EXPECT_EQ(part->upper_left, (MapPoint{100, 400}));
  EXPECT_EQ(part->upper_right, (MapPoint{500, 400}));
  EXPECT_EQ(part->lower_left, (MapPoint{100, 200}));
  EXPECT_EQ(map.Read({0, 600, 0, 600}, 10.0)->pixels, part->pixels);
  const auto coarse = map.Read({0, 600, 0, 600}, 45.0);
  EXPECT_EQ(coarse->pixels->width, 10);
  EXPECT_FALSE(map.Read({600, 700, 0, 600}, 10.0));
}

TEST(VectorMap, ThinsWithoutLosingPlace) {
  const TempDir dir;
  std::string text = R"({"type":"Feature","properties":{},"geometry":{"type":"LineString","coordinates":[)";
  constexpr int kPoints = 60'000;
  for (int i = 0; i < kPoints; ++i)
    text += (i > 0 ? "," : "") + ("[" + std::to_string(i * 0.01)) + "," + std::to_string(std::sin(i * 0.01)) +
            "]";
  WriteAll(dir / "wave.geojson", text + "]}}");
  const VectorMap map(dir / "wave.geojson", "", "");
  const Extents whole = *map.bounds();
  EXPECT_NEAR(whole.x_max, (kPoints - 1) * 0.01, 1e-9);
  EXPECT_GT(map.part_count(), 50u);  // in runs that share their ends
  const VectorMap::Sheet& thin = map.At(1.0, whole);
  EXPECT_LT(thin.points.size(), 3'000u);
  for (std::size_t i = 0; i < map.part_count(); ++i) {
    const auto all = map.Full().Of(map.Full().parts[i]), left = thin.Of(thin.parts[i]);
    EXPECT_EQ(all.front(), left.front());
    EXPECT_EQ(all.back(), left.back());
    std::size_t at = 0;
    for (const MapPoint& p : all) {  // each point lies within half a pixel of the one that stands for it
      while (at + 1 < left.size() && left[at + 1].x <= p.x) ++at;
      EXPECT_LE(std::hypot(p.x - left[at].x, p.y - left[at].y), 0.5 + 1e-9);
    }
  }
  // A view of a small part gets all of its points.
  EXPECT_EQ(&map.At(0.001, {10, 12, -1, 1}), &map.Full());
}

}  // namespace
}  // namespace ormel
