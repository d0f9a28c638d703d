#include "geo/crs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "geo/geo_error.h"

namespace ormel {
namespace {

TEST(Crs, KnowsCodesAndTextsAndTheirUnits) {
  const Crs dutch = Crs::Parse(" 28992 ");
  EXPECT_EQ(dutch.code(), "EPSG:28992");
  EXPECT_EQ(dutch.name(), "Amersfoort / RD New");
  EXPECT_TRUE(dutch.projected());
  EXPECT_EQ(dutch.metres_per_unit(), 1.0);

  const Crs feet = Crs::Parse("EPSG:2264");  // US survey foot = 1200/3937 m
  EXPECT_NEAR(feet.metres_per_unit(), 1200.0 / 3937.0, 1e-12);

  const Crs globe = LongitudeLatitude();
  EXPECT_FALSE(globe.projected());
  EXPECT_EQ(globe.metres_per_unit(), 0.0);

  for (const std::string& text : {dutch.Wkt(), dutch.PrjWkt()}) {
    EXPECT_TRUE(Crs::Parse(text).Same(dutch)) << text;
  }
  EXPECT_FALSE(feet.Same(dutch));
  EXPECT_EQ(Crs::Parse(dutch.Text()).code(), "EPSG:28992");
}

TEST(Crs, RefusesWhatIsNone) {
  for (const char* text : {"", "EPSG:999999", "house", "GEOGCS[\"x\"", "EPSG:5709" /* heights only */,
                           "http://epsg.io/28992", "/etc/passwd", "EPSG:4978" /* centre of the earth */}) {
    EXPECT_THROW(Crs::Parse(text), GeoError) << text;
  }
  EXPECT_THROW(Crs::Parse(std::string(100000, 'x')), GeoError);
}

TEST(Crs, SearchTakesWordsInAnyOrderAndCase) {
  const auto found = SearchCrs("rd AMERSFOORT new");
  ASSERT_FALSE(found.empty());
  EXPECT_TRUE(
      std::any_of(found.begin(), found.end(), [](const CrsEntry& e) { return e.code == "EPSG:28992"; }));
  EXPECT_TRUE(SearchCrs("no such place at all").empty());
  EXPECT_EQ(SearchCrs("utm", 7).size(), 7U);
}

// Origin of the Dutch grid: the tower of Amersfoort, 155000 463000, stands at 5 23 15.5 E, 52 09 22.2 N on
// the Bessel ellipsoid; on WGS 84 that is 5.38721 E, 52.15517 N to within the metre of the datum shift.
TEST(CrsTransform, GoesForwardAndBack) {
  const CrsTransform way(Crs::Parse("EPSG:28992"), LongitudeLatitude());
  const auto tower = way.Forward(155000, 463000);
  ASSERT_TRUE(tower);
  EXPECT_NEAR(tower->x, 5.38721, 2e-5);
  EXPECT_NEAR(tower->y, 52.15517, 2e-5);
  const auto back = way.Backward(tower->x, tower->y);
  ASSERT_TRUE(back);
  EXPECT_NEAR(back->x, 155000, 0.01);
  EXPECT_NEAR(back->y, 463000, 0.01);

  EXPECT_FALSE(way.Forward(std::nan(""), 0));

  const CrsTransform mercator(LongitudeLatitude(), Crs::Parse("EPSG:3857"));
  std::vector<Place> many = {{0, 0}, {0, 95}};  // no such latitude
  EXPECT_EQ(mercator.Forward(many), 1U);
  EXPECT_NEAR(many[0].y, 0, 1e-6);
  EXPECT_TRUE(std::isnan(many[1].x));
}

}  // namespace
}  // namespace ormel
