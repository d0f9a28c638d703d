#include "geo/raster_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "geo/crs.h"
#include "geo/geo_error.h"
#include "support/temp_dir.h"

namespace ormel {
namespace {

using test::TempDir;
using test::WriteAll;

// A grid of text, 4 by 2, with one missing value; its lower left corner stands at 100, 200.
std::string Grid(const TempDir& dir) {
  const std::string path = dir / "grid.asc";
  WriteAll(path,
           "ncols 4\nnrows 2\nxllcorner 100\nyllcorner 200\ncellsize 10\nNODATA_value -9999\n"
           "1 2 3 4\n5 6 -9999 8.5\n");
  return path;
}

TEST(RasterSource, TellsWhereAGridLiesAndWhatItHolds) {
  const TempDir dir;
  const RasterSource source(Grid(dir));
  EXPECT_EQ(source.info().width, 4);
  EXPECT_EQ(source.info().height, 2);
  ASSERT_TRUE(source.info().geotransform);
  EXPECT_EQ((*source.info().geotransform)[0], 100);
  EXPECT_EQ((*source.info().geotransform)[3], 220);
  EXPECT_EQ((*source.info().geotransform)[5], -10);
  const auto values = source.ReadValues(1, {0, 0, 4, 2}, 4, 2);
  EXPECT_EQ(values[3], 4);
  EXPECT_TRUE(std::isnan(values[6]));
  EXPECT_EQ(values[7], 8.5);

  const auto rgba = source.ReadRgba({0, 0, 4, 2}, 4, 2);
  ASSERT_EQ(rgba.size(), 32U);
  EXPECT_EQ(rgba[0], 0);        // the least
  EXPECT_EQ(rgba[4 * 7], 255);  // the greatest
  EXPECT_EQ(rgba[4 * 7 + 3], 255);
  EXPECT_EQ(rgba[4 * 6 + 3], 0);  // the missing value is transparent

  EXPECT_THROW(source.ReadRgba({3, 0, 2, 1}, 2, 1), GeoError);
  EXPECT_THROW(source.ReadRgba({0, 0, 4, 2}, 100000, 100000), GeoError);
  EXPECT_THROW(source.ReadValues(2, {0, 0, 1, 1}, 1, 1), GeoError);
}

// A bitmap of 8 bits by hand: 4 by 4 pixels of two colours, the upper half red, the lower half blue.
TEST(RasterSource, LooksPalettesUpAndReadsWorldFiles) {
  const TempDir dir;
  std::string bmp = "BM";
  const auto put = [&](unsigned value, int bytes) {
    for (int i = 0; i < bytes; ++i) bmp += static_cast<char>((value >> (8 * i)) & 255U);
  };
  put(14 + 40 + 8 + 16, 4);
  put(0, 4);
  put(14 + 40 + 8, 4);
  put(40, 4);
  put(4, 4);
  put(4, 4);
  put(1, 2);
  put(8, 2);
  put(0, 4);
  put(16, 4);
  put(0, 8);
  put(2, 4);
  put(2, 4);
  put(0x00FF0000, 4);                                                    // red, as blue green red
  put(0x000000FF, 4);                                                    // blue
  for (int row = 0; row < 4; ++row) put(row < 2 ? 0x01010101U : 0U, 4);  // from the bottom
  WriteAll(dir / "map.bmp", bmp);
  WriteAll(dir / "map.bpw", "2\n0\n0\n-2\n1001\n2007\n");
  const RasterSource source(dir / "map.bmp");
  ASSERT_EQ(source.info().palette.size(), 2U);
  ASSERT_TRUE(source.info().geotransform);
  EXPECT_EQ((*source.info().geotransform)[0], 1000);
  EXPECT_EQ((*source.info().geotransform)[3], 2008);
  const auto rgba = source.ReadRgba({0, 0, 4, 4}, 2, 2);
  EXPECT_EQ((std::vector<std::uint8_t>{rgba.begin(), rgba.begin() + 4}),
            (std::vector<std::uint8_t>{255, 0, 0, 255}));
  EXPECT_EQ((std::vector<std::uint8_t>{rgba.end() - 4, rgba.end()}),
            (std::vector<std::uint8_t>{0, 0, 255, 255}));
}

}  // namespace
}  // namespace ormel
