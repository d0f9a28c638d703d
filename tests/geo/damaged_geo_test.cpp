#include <sys/resource.h>

#include <gtest/gtest.h>

#include <random>

#include "geo/geo_error.h"
#include "geo/geopackage.h"
#include "geo/raster_source.h"
#include "geo/vector_source.h"
#include "support/temp_dir.h"

namespace ormel {
namespace {

using test::ReadAll;
using test::TempDir;
using test::WriteAll;

std::string SmallGeoPackage(const TempDir& dir) {
  const std::string path = dir / "whole.gpkg";
  GeoPackageWriter writer(path, Crs::Parse("EPSG:28992"));
  NewLayer layer;
  layer.name = "lines";
  layer.kind = GeometryKind::kLine;
  layer.fields = {{"label", FieldKind::kText}};
  writer.Layer(layer);
  for (int i = 0; i < 20; ++i) {
    writer.Add({0, {{GeoPart::Role::kLine, false, {{1.0 * i, 0}, {0, 1.0 * i}}}}, {std::string("line")}});
  }
  writer.Commit();
  return path;
}

const char* kJson =
    R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{"a":1,"b":"x"},"geometry":
{"type":"Polygon","coordinates":[[[0,0],[10,0],[10,10],[0,0]]]}},{"type":"Feature","properties":{"a":2},"geometry":
{"type":"Point","coordinates":[1,2,3]}}]})";
const char* kDxf =
    "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n1\n20\n2\n11\n3\n21\n4\n0\nPOINT\n8\n0\n10\n5\n20\n6\n0\nEND"
    "SEC\n0\nEOF\n";
const char* kGrid = "ncols 4\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 10\n1 2 3 4\n5 6 7 8\n";

std::string Damaged(std::string bytes, std::mt19937& random) {
  const auto place = [&] { return random() % bytes.size(); };
  if (random() % 2 == 0) {
    bytes.resize(place());
    return bytes;
  }
  for (int i = 0; i < 4; ++i)
    bytes[place()] = static_cast<char>(bytes[place()] ^ static_cast<char>(1U << (random() % 8)));
  return bytes;
}

void ReadAllLayers(const std::string& path) {
  const VectorSource source(path);
  for (std::size_t i = 0; i < source.layers().size(); ++i) {
    source.Read(i, [](GeoFeature&) { return true; });
  }
}

void ReadWholePicture(const std::string& path) {
  const RasterSource source(path);
  source.ReadRgba({0, 0, source.info().width, source.info().height}, 64, 64);
}

// Each is read, or refused with one message that names it; nothing else ends the reading, and it takes no
// memory to speak of.
void TryDamaged(const std::string& whole, const std::string& ending, void (*read)(const std::string&)) {
  const TempDir dir;
  std::mt19937 random(20);
  int refused = 0;
  for (int i = 0; i < 250; ++i) {
    const std::string path = dir / ("d" + std::to_string(i) + ending);
    WriteAll(path, Damaged(whole, random));
    try {
      read(path);
    } catch (const GeoError& error) {
      ++refused;
      EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
      EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << error.what();
    }
    std::filesystem::remove(path);
  }
  EXPECT_GT(refused, 10);
}

TEST(DamagedFiles, AreRefusedInOneMessage) {
  const TempDir dir;
  TryDamaged(ReadAll(SmallGeoPackage(dir)), ".gpkg", ReadAllLayers);
  TryDamaged(kJson, ".geojson", ReadAllLayers);
  TryDamaged(kDxf, ".dxf", ReadAllLayers);
  TryDamaged(kGrid, ".asc", ReadWholePicture);
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  EXPECT_LT(used.ru_maxrss, 600 * 1024) << "kilobytes";
}

TEST(DamagedFiles, AHugeClaimIsNoReasonToTakeMemory) {
  const TempDir dir;
  WriteAll(dir / "huge.asc",
           "ncols 2000000000\nnrows 2000000000\nxllcorner 0\nyllcorner 0\ncellsize 1\n1 2 3\n");
  EXPECT_THROW(ReadWholePicture(dir / "huge.asc"), GeoError);
  WriteAll(dir / "empty.gpkg", "");
  EXPECT_THROW(ReadAllLayers(dir / "empty.gpkg"), GeoError);
}

}  // namespace
}  // namespace ormel
