#include "exchange/feature_import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/command.h"
#include "core/project_crs.h"
#include "core/table.h"
#include "exchange/feature_import_form.h"
#include "exchange/units.h"
#include "geo/geo_error.h"
#include "model/vertices.h"
#include "support/test_project.h"

namespace ormel {
namespace {

using test::TestProject;
using test::WriteAll;
using testing::HasSubstr;

FeatureImport Request(const std::string& file, const char* target) {
  FeatureImport request;
  request.file = file;
  request.target = FindFeatureTarget(target);
  GuessProperties(request, VectorSource(file).layers()[0]);
  return request;
}

std::string Feature(const std::string& geometry, const std::string& properties = "{}") {
  return R"({"type":"Feature","properties":)" + properties + R"(,"geometry":)" + geometry + "}";
}

std::string Json(const TestProject& t, const std::vector<std::string>& features,
                 const char* crs = "EPSG:28992") {
  std::string text =
      std::string(R"({"type":"FeatureCollection","crs":{"type":"name","properties":{"name":")") + crs +
      R"("}},"features":[)";
  for (const std::string& feature : features) text += (&feature == &features.front() ? "" : ",") + feature;
  const std::string path = t.dir / "in.geojson";
  WriteAll(path, text + "]}");
  return path;
}

TEST(FeatureImport, CountsBeforeAnythingIsWritten) {
  TestProject t;
  t.ormel.gui.VertexTolerance = 1.0;
  WriteAll(
      t.dir / "wells.csv",
      "name,x,y,q,radius\nMill,100,200,5,0.3\nmill,150,200,5,0.3\nOak,300,200,x,0.3\nElm,9000,200,1,0.3\n"
      "Ash,400,200,2,0\nFir,100.2,200.2,,0.3\n");
  FeatureImport request = Request(t.dir / "wells.csv", "wells");
  EXPECT_EQ(request.properties["Label"].field, "name");
  EXPECT_EQ(request.properties["Rate"].field, "q");
  request.properties["Rate"].unit = "l/s";
  request.properties["Rate"].standard = "10";
  request.within = Extents{0, 1000, 0, 1000};
  const ImportPlan plan = PlanImport(t.ormel, request);
  EXPECT_EQ(t.Number("select count(*) from Wells"), 0);
  EXPECT_EQ(plan.features, 6U);
  ASSERT_EQ(plan.elements.size(), 2U);
  EXPECT_EQ(plan.left_out.at("duplicate label").count, 1U);
  EXPECT_EQ(plan.left_out.at("outside of the window").count, 1U);
  EXPECT_EQ(plan.left_out.at("Discharge is not a number").count, 1U);
  EXPECT_EQ(plan.left_out.at("Radius is out of range").count, 1U);
  EXPECT_EQ(plan.moved, 1U);
  EXPECT_THAT(plan.Text(), HasSubstr("6 features read, 2 elements come in."));

  RunCommand(t.ormel, "Import", [&] { CarryOut(t.ormel, plan); });
  EXPECT_EQ(t.Number("select count(*) from Wells"), 2);
  EXPECT_NEAR(t.Number("select Head from Wells where Label='Mill'"), 432.0, 1e-9);  // 5 l/s
  EXPECT_NEAR(t.Number("select Head from Wells where Label='Fir'"), 864.0, 1e-9);
  EXPECT_GT(t.Number("select X from Vertices order by VID desc limit 1"), 101.0);

  EXPECT_EQ(PlanImport(t.ormel, request).elements.size(), 0U) << "all labels are taken now";
}

TEST(FeatureImport, LinesBecomeStringsWithHeadsOfTheirEnds) {
  TestProject t;
  const std::string file = Json(
      t,
      {Feature(R"({"type":"LineString","coordinates":[[0,0,30],[50,0.5,29],[100,0,28],[100,100,20]]})",
               R"({"name":"Brook"})"),
       Feature(R"({"type":"LineString","coordinates":[[0,0,1],[10,10,1],[10,0,1],[0,10,1]]})",
               R"({"name":"Knot"})"),
       Feature(R"({"type":"LineString","coordinates":[[0,500],[10,500]]})", R"({"name":"Flat"})"),
       Feature(R"({"type":"MultiLineString","coordinates":[[[0,600,9],[10,600,8]],[[0,700,7],[10,700,6]]]})",
               R"({"name":"Two"})"),
       Feature(R"({"type":"Point","coordinates":[1,2]})")});
  FeatureImport request = Request(file, "linesinks");
  request.heads_from_vertices = true;
  request.vertex_unit = "ft";
  request.tolerance = 2.0;
  const ImportPlan plan = PlanImport(t.ormel, request);
  ASSERT_EQ(plan.elements.size(), 3U);
  EXPECT_EQ(plan.elements[0].points.size(), 3U) << "one vertex lies within the tolerance";
  EXPECT_NEAR(plan.elements[0].values.Number("StartingHead"), 9.144, 1e-9);
  EXPECT_NEAR(plan.elements[0].values.Number("EndingHead"), 6.096, 1e-9);
  EXPECT_EQ(plan.elements[2].values.Text("Label"), "Two (2)");
  EXPECT_EQ(plan.left_out.at("crosses itself").count, 1U);
  EXPECT_EQ(plan.left_out.at("no elevations at its vertices").count, 1U);
  EXPECT_EQ(plan.left_out.at("its geometry is not of lines").count, 1U);
  RunCommand(t.ormel, "Import", [&] { CarryOut(t.ormel, plan); });
  EXPECT_EQ(t.Number("select count(*) from LinesinkStrings where HeadSpecified=1"), 3);
}

TEST(FeatureImport, PolygonsBecomeDomainsThatShareCorners) {
  TestProject t;
  t.ormel.gui.VertexTolerance = 1.0;
  const std::string file = Json(
      t,
      {Feature(
           R"({"type":"Polygon","coordinates":[[[0,0],[100,0],[100,100],[0,100],[0,0]],[[40,40],[60,40],[60,60],[40,40]]]})",
           R"({"name":"West","k":5})"),
       Feature(R"({"type":"Polygon","coordinates":[[[100.3,0.2],[200,0],[200,100],[100,100],[100.3,0.2]]]})",
               R"({"name":"East","k":null})")});
  const ImportPlan plan = PlanImport(t.ormel, Request(file, "inhomogeneities"));
  ASSERT_EQ(plan.elements.size(), 2U);
  EXPECT_EQ(plan.elements[1].points[0].x, 100.0) << "takes the other's corner";
  EXPECT_EQ(plan.left_out.begin()->second.count, 1U);
  RunCommand(t.ormel, "Import", [&] { CarryOut(t.ormel, plan); });
  EXPECT_EQ(t.Number("select HydCond from Inhomogeneities where Label='West' and ChangeK and not ChangeB"),
            5);
  EXPECT_EQ(t.Number("select count(*) from Inhomogeneities where Label='East' and not ChangeK"), 1);
}

TEST(FeatureImport, CoordinatesBecomeThoseOfTheMap) {
  TestProject t;
  const std::string file = Json(
      t,
      {Feature(R"({"type":"Point","coordinates":[5.38721,52.15517]})", R"({"label":"Tower","obshead":3})")},
      "urn:ogc:def:crs:OGC:1.3:CRS84");
  EXPECT_THROW(PlanImport(t.ormel, Request(file, "testpoints")), GeoError) << "degrees on a map in metres";
  StoreCrs(t.ormel, "EPSG:28992");
  ReadProjectState(t.ormel);
  const ImportPlan plan = PlanImport(t.ormel, Request(file, "testpoints"));
  ASSERT_EQ(plan.elements.size(), 1U);
  EXPECT_NEAR(plan.elements[0].points[0].x, 155000, 2.0);
  EXPECT_NEAR(plan.elements[0].points[0].y, 463000, 2.0);
  FeatureImport request = Request(file, "testpoints");
  request.crs = "EPSG:28992";
  EXPECT_NEAR(PlanImport(t.ormel, request).elements[0].points[0].x, 5.38721, 1e-9) << "the user knows better";
}

TEST(FeatureImport, RefusesWhatDoesNotFitTheLayer) {
  TestProject t;
  const std::string file = Json(t, {Feature(R"({"type":"Point","coordinates":[5,52]})")});
  const auto refused = [&](const char* property, PropertySource source) {
    FeatureImport request = Request(file, "wells");
    request.properties[property] = std::move(source);
    EXPECT_THROW(PlanImport(t.ormel, request), FeatureImportError) << property;
  };
  refused("Rate", {"nofield", "", ""});
  refused("Rate", {"", "much", ""});
  refused("Rate", {"", "1", "parsec"});
  refused("Colour", {"", "1", ""});
}

TEST(FeatureImport, TheFormShowsRowsAndCountsAndImportsOnce) {
  TestProject t;
  const std::string file =
      Json(t, {Feature(R"({"type":"Point","coordinates":[5,52]})", R"({"name":"A","obs":1})"),
               Feature(R"({"type":"Point","coordinates":[6,52]})", R"({"name":"B","obs":2})"),
               Feature(R"({"type":"Point","coordinates":[7,52]})", R"({"name":"C","obs":"?"})")});
  t.ui.OnForm("FeatureImportForm", [&](Form& form) {
    form.Click("OK");
    EXPECT_FALSE(form.Hidden()) << "no file yet";
    form.SetText("File", t.dir / "no such file.shp");
    form.SetText("File", file);
    EXPECT_EQ(form.State("Rows").table->Rows(), 3U);
    form.Select("Target", {6});
    form.EditCell("Mapping", 1, 1, "obs");
    form.Click("Check");
    EXPECT_THAT(form.State("Counts").caption, HasSubstr("2 elements come in"));
    form.Click("OK");
    EXPECT_TRUE(form.Hidden());
  });
  ToolsImportFeatures(t.ormel);
  EXPECT_EQ(t.Number("select count(*) from TestPoints"), 2);
  EXPECT_EQ(t.Number("select ObsHead from TestPoints where Label='B'"), 2);
}

TEST(Units, AreTakenToThoseOfTheProject) {
  TestProject t(true, false);
  EXPECT_NEAR(*UnitFactor(t.ormel, Quantity::kDischarge, "gal/min"), 192.5, 0.01);  // ft^3/day
  EXPECT_NEAR(*UnitFactor(t.ormel, Quantity::kRate, "in/year"), 1.0 / 12 / 365, 1e-12);
  EXPECT_EQ(*UnitFactor(t.ormel, Quantity::kLength, ""), 1.0);
  EXPECT_FALSE(UnitFactor(t.ormel, Quantity::kLength, "l/s"));
}

}  // namespace
}  // namespace ormel
