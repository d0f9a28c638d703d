#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "geo/geo_error.h"
#include "geo/geopackage.h"
#include "geo/vector_source.h"
#include "support/temp_dir.h"

namespace ormel {
namespace {

using test::TempDir;
using test::WriteAll;
using testing::HasSubstr;

std::vector<GeoFeature> All(const VectorSource& source, std::size_t layer) {
  std::vector<GeoFeature> features;
  source.Read(layer, [&](GeoFeature& feature) {
    features.push_back(feature);
    return true;
  });
  return features;
}

GeoFeature Feature(std::vector<GeoPart> parts, std::vector<GeoValue> values) {
  return {0, std::move(parts), std::move(values)};
}

NewLayer Wells() {
  NewLayer layer;
  layer.name = "wells";
  layer.title = "Wells & drains";
  layer.fields = {{"label", FieldKind::kText}, {"rate", FieldKind::kReal}, {"number", FieldKind::kInteger}};
  layer.style = LayerStyle{};
  layer.style->label_field = "label";
  return layer;
}

TEST(GeoPackage, GivesBackWhatWasWritten) {
  const TempDir dir;
  const std::string path = dir / "out.gpkg";
  {
    GeoPackageWriter writer(path, Crs::Parse("EPSG:28992"));
    writer.Layer(Wells());
    writer.Add(Feature({{GeoPart::Role::kPoint, false, {{1.5, 2.25, 0}}}},
                       {std::string("Müh<l>e"), -1234.5678901234, std::int64_t{7}}));
    writer.Add(Feature({{GeoPart::Role::kPoint, false, {{3, 4, 0}}}}, {GeoValue{}, GeoValue{}, GeoValue{}}));
    NewLayer zones;
    zones.name = "zones";
    zones.kind = GeometryKind::kPolygon;
    zones.multi = true;
    zones.fields = {{"level", FieldKind::kReal}};
    zones.style = LayerStyle{};
    writer.Layer(zones);
    writer.Add(Feature({{GeoPart::Role::kOuterRing, false, {{0, 0}, {10, 0}, {10, 10}, {0, 10}}},
                        {GeoPart::Role::kHole, false, {{4, 4}, {4, 6}, {6, 6}}},
                        {GeoPart::Role::kOuterRing, false, {{20, 0}, {30, 0}, {30, 10}}}},
                       {2.5}));
    NewLayer lines;
    lines.name = "lines";
    lines.kind = GeometryKind::kLine;
    lines.has_z = true;
    writer.Layer(lines);
    writer.Add(Feature({{GeoPart::Role::kLine, true, {{0, 0, 5}, {1, 1, 4.5}}}}, {}));
    EXPECT_FALSE(std::filesystem::exists(path));
    writer.Commit();
  }
  const VectorSource source(path);
  const VectorLayer& wells = source.layers()[source.Find("WELLS")];
  EXPECT_EQ(wells.kind, GeometryKind::kPoint);
  EXPECT_EQ(wells.count, 2);
  EXPECT_EQ(Crs::Parse(wells.crs_wkt).code(), "EPSG:28992");
  ASSERT_TRUE(wells.extent);
  EXPECT_EQ(wells.extent->right, 3);
  const auto features = All(source, source.Find("wells"));
  ASSERT_EQ(features.size(), 2U);
  EXPECT_EQ(GeoValueText(features[0].values[0]), "Müh<l>e");
  EXPECT_EQ(std::get<double>(features[0].values[1]), -1234.5678901234);
  EXPECT_EQ(std::get<std::int64_t>(features[0].values[2]), 7);
  EXPECT_EQ(features[0].parts[0].points[0].x, 1.5);
  EXPECT_EQ(GeoValueText(features[1].values[1]), "");

  const auto zones = All(source, source.Find("zones"));
  ASSERT_EQ(zones[0].parts.size(), 3U);
  EXPECT_EQ(zones[0].parts[1].role, GeoPart::Role::kHole);
  EXPECT_EQ(zones[0].parts[0].points.size(), 4U);
  const auto lines = All(source, source.Find("lines"));
  EXPECT_EQ(lines[0].parts[0].points[1].z, 4.5);

  const auto styles = All(source, source.Find("layer_styles"));
  ASSERT_EQ(styles.size(), 2U);
  EXPECT_EQ(GeoValueText(styles[0].values[2]), "wells");
  EXPECT_THAT(GeoValueText(styles[0].values[5]), HasSubstr("<qgis"));
}

TEST(GeoPackage, LeavesTheOlderFileWhenItIsNotCommitted) {
  const TempDir dir;
  const std::string path = dir / "out.gpkg";
  WriteAll(path, "older");
  {
    GeoPackageWriter writer(path, std::nullopt);
    writer.Layer(Wells());
    writer.Add(
        Feature({{GeoPart::Role::kPoint, false, {{1, 2, 0}}}}, {std::string("a"), 1.0, std::int64_t{1}}));
    EXPECT_THROW(writer.Add(Feature({}, {})), GeoError);
  }
  EXPECT_EQ(test::ReadAll(path), "older");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
  EXPECT_THROW(GeoPackageWriter((dir / "no such folder") + "/x.gpkg", std::nullopt), GeoError);
}

TEST(GeoPackage, WithoutASystemSaysThatThereIsNone) {
  const TempDir dir;
  const std::string path = dir / "out.gpkg";
  GeoPackageWriter writer(path, std::nullopt);
  writer.Layer(Wells());
  writer.Add(Feature({{GeoPart::Role::kPoint, false, {{1, 2, 0}}}}, {}));
  writer.Commit();
  const VectorSource source(path);
  EXPECT_EQ(source.layers()[0].crs_wkt.find("EPSG"), std::string::npos) << source.layers()[0].crs_wkt;
}

TEST(VectorSource, ReadsOtherFormats) {
  const TempDir dir;
  WriteAll(dir / "a.geojson",
           R"({"type":"FeatureCollection","features":[
             {"type":"Feature","properties":{"name":"one","q":3.5},"geometry":{"type":"Point","coordinates":[5.4,52.1]}},
             {"type":"Feature","properties":{"name":null},"geometry":null},
             {"type":"Feature","properties":{},"geometry":{"type":"GeometryCollection","geometries":[
               {"type":"MultiLineString","coordinates":[[[0,0],[1,1]],[[2,2],[3,3],[4,4]]]}]}}]})");
  const VectorSource json(dir / "a.geojson");
  const auto features = All(json, 0);
  ASSERT_EQ(features.size(), 3U);
  EXPECT_TRUE(features[1].parts.empty());
  ASSERT_EQ(features[2].parts.size(), 2U);
  EXPECT_EQ(features[2].parts[1].points.size(), 3U);
  EXPECT_EQ(Crs::Parse(json.layers()[0].crs_wkt).code(), "EPSG:4326");

  WriteAll(dir / "b.csv", "name,easting,northing,q\nA,100,200,1.5\nB,300,400,\n");
  const VectorSource table(dir / "b.csv");
  EXPECT_EQ(table.layers()[0].kind, GeometryKind::kPoint);
  const auto rows = All(table, 0);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[1].parts[0].points[0].y, 400);
  EXPECT_EQ(GeoValueText(rows[0].values[3]), "1.5");

  std::size_t seen = 0;
  json.Read(0, [&](GeoFeature&) { return ++seen < 1; });
  EXPECT_EQ(seen, 1U);
  EXPECT_THROW(json.Find("roads"), GeoError);
}

TEST(VectorSource, NeverLeavesTheDisk) {
  const TempDir dir;
  WriteAll(dir / "v.vrt",
           "<OGRVRTDataSource><OGRVRTLayer "
           "name=\"x\"><SrcDataSource>/vsicurl/http://127.0.0.1/x.shp</SrcDataSource>"
           "</OGRVRTLayer></OGRVRTDataSource>");
  WriteAll(dir / "w.xml",
           "<GDAL_WMS><Service name=\"TMS\"><ServerUrl>http://127.0.0.1/</ServerUrl></Service></GDAL_WMS>");
  for (const std::string& path :
       {dir / "v.vrt", dir / "w.xml", std::string("/vsicurl/http://127.0.0.1/x.geojson"),
        std::string("http://127.0.0.1/x.geojson"), std::string("PG:dbname=x"), std::string("/vsizip/x.zip"),
        std::string(R"({"type":"Point","coordinates":[1,2]})"), dir / "missing.shp"}) {
    EXPECT_THROW(VectorSource{path}, GeoError) << path;
  }
}

}  // namespace
}  // namespace ormel
