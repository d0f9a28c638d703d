#include "exchange/geopackage_export.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "core/command.h"
#include "core/project_crs.h"
#include "exchange/feature_import.h"
#include "geo/geo_error.h"
#include "model/linesinks.h"
#include "model/observations.h"
#include "model/wells.h"
#include "support/test_project.h"

namespace ormel {
namespace {

using test::TestProject;
using testing::HasSubstr;

std::vector<std::string> Rows(TestProject& t, const std::string& sql) {
  std::vector<std::string> rows;
  RowReader reader(t.ormel.db(), sql);
  while (reader.Next()) {
    std::string row;
    for (int i = 0; i < reader.ColumnCount(); ++i) row += std::string(reader.Get(i).AsText()) + "|";
    rows.push_back(row);
  }
  return rows;
}

void ImportLayer(TestProject& t, const std::string& file, const char* layer, const char* target) {
  const VectorSource source(file);
  FeatureImport request;
  request.file = file;
  request.layer = layer;
  request.target = FindFeatureTarget(target);
  GuessProperties(request, source.layers()[source.Find(layer)]);
  const ImportPlan plan = PlanImport(t.ormel, request);
  EXPECT_TRUE(plan.left_out.empty()) << plan.Text();
  RunCommand(t.ormel, "Import", [&] { CarryOut(t.ormel, plan); });
}

TEST(GeoPackageExport, ComesBackAsTheSameWellsAndStrings) {
  TestProject t;
  StoreCrs(t.ormel, "EPSG:28992");
  ReadProjectState(t.ormel);
  WellRow well{.Label = "M\u00fchle \"1\"", .Head = 1234.567890123, .Radius = 0.15};
  StoreWell(t.ormel, well, {155000.123456789, 463000.5});
  well = {.Label = "Pond", .HeadSpecified = true, .Head = -2.25, .Radius = 3};
  StoreWell(t.ormel, well, {155100, 463000});
  const std::vector<MapPoint> points{{155000, 463500}, {155200, 463510.25}, {155400, 463400}};
  StoreLinesink(t.ormel,
                {.Label = "Brook", .StartingHead = 12.5, .EndingHead = 11.75, .Resistance = 2, .Width = 4},
                points);
  StoreCapzone(t.ormel, "Zone", points);
  const auto dump = [](TestProject& of) {
    auto rows = Rows(of,
                     "select Label,HeadSpecified,Head,Radius,X,Y from Wells,Vertices where "
                     "Wells.VID=Vertices.VID order by Label");
    const auto more =
        Rows(of,
             "select Label,StartingHead,EndingHead,Resistance,Width,Depth,X,Y from "
             "LinesinkStrings,Vertices where LinesinkStrings.PID=Vertices.PID order by Label,Seq");
    rows.insert(rows.end(), more.begin(), more.end());
    return rows;
  };
  const std::string file = t.dir / "out.gpkg";
  const ExportOutcome outcome = ExportGeoPackage(t.ormel, {file, 0, 0, {{"Pond", 1, {155100, 463000}, 50}}});
  EXPECT_THAT(outcome.Text(), HasSubstr("wells: 1"));
  EXPECT_THAT(outcome.Text(), HasSubstr("protection_areas: 1"));
  EXPECT_THAT(outcome.Text(), HasSubstr("no valid results"));

  TestProject back;
  StoreCrs(back.ormel, "EPSG:28992");
  ReadProjectState(back.ormel);
  ImportLayer(back, file, "wells", "wells");
  ImportLayer(back, file, "head_wells", "headwells");
  ImportLayer(back, file, "linesinks", "linesinks");
  EXPECT_EQ(dump(back), dump(t));
  ImportLayer(back, file, "capture_zones", "areas");
  EXPECT_EQ(back.Number("select count(*) from Capzones where Label='Zone'"), 1);
}

TEST(GeoPackageExport, LeavesTheOlderFileWhenItIsCancelledOrFails) {
  TestProject t;
  const std::string file = t.dir / "out.gpkg";
  test::WriteAll(file, "older");
  RunCommand(t.ormel, "Fill", [&t] {
    for (int i = 0; i < 1001; ++i) StoreParticle(t.ormel, {}, {static_cast<double>(i), 0.0});
  });
  t.ui.cancel = [] { return true; };
  EXPECT_TRUE(ExportGeoPackage(t.ormel, {file, 0, 0, {}}).cancelled);
  EXPECT_EQ(test::ReadAll(file), "older");
  EXPECT_FALSE(std::filesystem::exists(file + ".part.gpkg"));
  EXPECT_THROW(ExportGeoPackage(t.ormel, {t.dir / "nowhere/out.gpkg", 0, 0, {}}), GeoError);
}

}  // namespace
}  // namespace ormel
