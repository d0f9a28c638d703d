// The drawing's skeleton, its colours, and the exports of elements.
#include <gtest/gtest.h>

#include <sstream>

#include "exchange/dxf_export.h"
#include "exchange/dxf_writer.h"
#include "exchange/export_job.h"
#include "exchange/shape_export.h"
#include "exchange/surfer_export.h"
#include "model/observations.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "support/test_project.h"
#include "text/files.h"

namespace ormel::test {
namespace {

using Groups = std::vector<std::pair<std::string, std::string>>;

Groups ReadGroups(const std::string& path) {
  std::istringstream text(ReadAll(path));
  Groups groups;
  std::string code, value;
  while (std::getline(text, code) && std::getline(text, value)) {
    EXPECT_TRUE(code.ends_with('\r') && value.ends_with('\r'));
    code.pop_back();
    value.pop_back();
    EXPECT_GE(code.size(), 3U);
    groups.emplace_back(code, value);
  }
  return groups;
}

std::vector<std::string> SectionNames(const Groups& groups) {
  std::vector<std::string> names;
  for (std::size_t i = 1; i < groups.size(); ++i)
    if (groups[i - 1].second == "SECTION") names.push_back(groups[i].second);
  return names;
}

std::string ValueBehind(const Groups& groups, const std::string& name) {
  for (std::size_t i = 0; i + 1 < groups.size(); ++i)
    if (groups[i].second == name) return groups[i + 1].second;
  return "none";
}

TEST(Dxf, Skeleton) {
  const TempDir dir;
  TextFileWriter file(dir / "a.dxf");
  DxfWriter dxf(file);
  dxf.WriteHeader({-1.25, 20, 3, 40}, HandleSeed(1));
  dxf.WriteClasses();
  dxf.WriteTables("Elements");
  dxf.WriteBlocks();
  dxf.WriteEntity("NONE", "Section Header");
  dxf.WriteEntity("AcDbCircle", "CIRCLE", "Wells", 100);
  dxf.WriteCircle({1.06, -2}, 3.3);
  dxf.WriteEntityEnd("Section End");
  dxf.WriteObjects();
  dxf.WriteEndOfFile();
  file.Commit();

  const Groups groups = ReadGroups(dir / "a.dxf");
  EXPECT_EQ(SectionNames(groups),
            (std::vector<std::string>{"HEADER", "CLASSES", "TABLES", "BLOCKS", "ENTITIES", "OBJECTS"}));
  EXPECT_EQ(groups.back(), (std::pair<std::string, std::string>{"  0", "EOF"}));
  int variables = 0, layers = 0;
  for (const auto& [code, value] : groups) {
    variables += code == "  9" && value.starts_with("$") ? 1 : 0;
    layers += code == "  0" && value == "LAYER" ? 1 : 0;
  }
  EXPECT_EQ(variables, 198);
  EXPECT_EQ(layers, 10);
  EXPECT_EQ(ValueBehind(groups, "$ACADVER"), "AC1015");
  EXPECT_EQ(ValueBehind(groups, "$ACADMAINTVER"), "     6");
  EXPECT_EQ(ValueBehind(groups, "$LIMMIN"), "587128.95");
  const std::string text = ReadAll(dir / "a.dxf");
  EXPECT_NE(text.find("$EXTMIN\r\n 10\r\n-1.2\r\n 20\r\n3.0\r\n 30\r\n0.0\r\n"), std::string::npos);
  EXPECT_NE(
      text.find("  2\r\nENTITIES\r\n  0\r\nCIRCLE\r\n  5\r\n100\r\n100\r\nAcDbEntity\r\n  8\r\nWells\r\n"
                "  6\r\nContinuous\r\n100\r\nAcDbCircle\r\n 10\r\n1.1\r\n 20\r\n-2.0\r\n 30\r\n0.0\r\n"
                " 40\r\n3.3\r\n  0\r\nENDSEC\r\n"),
      std::string::npos);
}

TEST(Dxf, TheSeedLiesAboveAllHandles) {
  EXPECT_EQ(HandleSeed(0), "34653CD4");            // above the fixed ones
  EXPECT_EQ(HandleSeed(99'999'900), "100000001");  // the text 100000000 read as hexadecimal
}

struct ElementExport : ::testing::Test {
  TestProject project;
  Ormel& ormel = project.ormel;
  void AddWell() { StoreWell(ormel, {.Label = "Br\u00fccke", .Head = 400.0, .Radius = 0.5}, {100, 200}); }
};

TEST_F(ElementExport, AZoneIsClosedInEveryFormat) {
  const std::vector<MapPoint> triangle{{0, 0}, {10, 0}, {0, 10}};  // against the clock
  StoreCapzone(ormel, "Zone", triangle);
  EXPECT_EQ(WriteDxf(ormel, VectorMode::kZones, {}, project.dir / "z.dxf").written, 1U);
  const std::string dxf = ReadAll(project.dir / "z.dxf");
  EXPECT_NE(dxf.find(" 90\r\n        4\r\n 70\r\n     0\r\n 10\r\n0.0\r\n 20\r\n0.0\r\n 10\r\n10.0\r\n"),
            std::string::npos);
  WriteBoundaryLines(ormel, VectorMode::kZones, project.dir / "z.bln");
  EXPECT_EQ(
      ReadAll(project.dir / "z.bln"),
      "4 1\r\n0.000000e+00 0.000000e+00 \r\n1.000000e+01 0.000000e+00 \r\n0.000000e+00 1.000000e+01 \r\n"
      "0.000000e+00 0.000000e+00 \r\n");
  WriteShapes(ormel, *FindShapeKind("zones"), {}, project.dir / "z.shp");
  const std::string shp = ReadAll(project.dir / "z.shp");
  EXPECT_EQ(shp.size(), 100U + 8U + 48U + 4U * 16U);  // four points
  EXPECT_EQ(shp[100 + 8 + 48 + 8 + 6], '\x24');       // the other way round: from (0, 10)
  EXPECT_EQ(ReadAll(project.dir / "z.cpg"), "UTF-8");
}

TEST_F(ElementExport, BoxesOfWellsAndBarriers) {
  AddWell();
  const std::vector<MapPoint> points{{0, 0}, {10, 0}, {0, 10}};
  const Pid pid = AddPolygonWithVertices(ormel, true, points);
  ormel.db().Execute("insert into NoFlowStrings (PID,Closed,Label) values (?,1,'Wall')", {pid});
  WriteBoundaryLines(ormel, VectorMode::kElements, project.dir / "e.bln");
  EXPECT_EQ(ReadAll(project.dir / "e.bln"),
            " 5 1\r\n96.7 196.7\r\n96.7 203.3\r\n103.3 203.3\r\n103.3 196.7\r\n96.7 196.7\r\n"
            "4 1\r\n0 0\r\n10 0\r\n0 10\r\n0 0\r\n");
}

TEST_F(ElementExport, CancelAndFailureLeaveTheOlderFiles) {
  AddWell();
  const std::string shp = project.dir / "w.shp";
  for (const char* name : {"w.shp", "w.shx", "w.dbf", "w.dxf", "w.bln"})
    WriteAll(project.dir / name, "older");
  project.ui.cancel = [] { return true; };
  EXPECT_THROW(WriteShapes(ormel, *FindShapeKind("wells"), {}, shp), ExportCancelled);
  EXPECT_THROW(WriteDxf(ormel, VectorMode::kElements, {}, project.dir / "w.dxf"), ExportCancelled);
  EXPECT_THROW(WriteBoundaryLines(ormel, VectorMode::kElements, project.dir / "w.bln"), ExportCancelled);
  EXPECT_EQ(project.ui.wait_depth, 0);
  for (const char* name : {"w.shp", "w.shx", "w.dbf", "w.dxf", "w.bln"})
    EXPECT_EQ(ReadAll(project.dir / name), "older") << name;
  project.ui.cancel = {};
  std::filesystem::remove(project.dir / "w.dbf");
  std::filesystem::create_directory(project.dir / "w.dbf");  // in the way of one of the set
  EXPECT_THROW(WriteShapes(ormel, *FindShapeKind("wells"), {}, shp), FileError);
  EXPECT_EQ(ReadAll(shp), "older");
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(project.dir.path()))
    files += entry.path().string().ends_with(".tmp") ? 1 : 0;
  EXPECT_EQ(files, 0U) << "something was left";
}

TEST_F(ElementExport, TheDialogOffersWhatThereIs) {
  AddWell();
  StoreTestPoint(ormel, {"TP 1", 12.0}, {1, 2});
  const std::string path = project.dir / "points.shp";
  project.ui.OnForm("ExportShapefile", [](Form& form) {
    for (const char* option : {"Option1", "Option2", "Option3", "Option6", "Option7", "Option8"})
      EXPECT_FALSE(form.State(option).enabled) << option;
    form.Click("OK");
    EXPECT_FALSE(form.Hidden());  // nothing is chosen
    form.SetChecked("Option5", true);
    form.Click("OK");
  });
  project.ui.AnswerTo("Ormel", {Answer::kOk, Answer::kYes});
  project.ui.ChooseFile(path);
  ExportShapefiles(ormel);
  EXPECT_EQ(project.ui.file_dialogs.back().file_name, "town_points.shp");
  const std::string dbf = ReadAll(project.dir / "points.dbf");
  EXPECT_NE(dbf.find("PointLabel"), std::string::npos);
  EXPECT_NE(dbf.find("Well-Br\u00fccke"), std::string::npos);
  EXPECT_NE(dbf.find("TestPoint-TP 1"), std::string::npos);
}

/// A file without marks would pass for paths without any.
TEST_F(ElementExport, MarksWithoutASpacingAreNotWritten) {
  ToolsExportShape(ormel, 2, true, {});  // nor are paths: no file is chosen
  EXPECT_EQ(project.ui.boxes.size(), 2U);
  EXPECT_EQ(project.ui.LastText(),
            "Elevation Tic Export Failed - no spacing is chosen.  View > Pathlines sets it.");
  EXPECT_EQ(project.ui.file_dialogs.size(), 1U);
}

TEST_F(ElementExport, NothingThereIsSaid) {
  EXPECT_FALSE(ToolsExportDXF(ormel, VectorMode::kContours, {}, project.dir / "c.dxf"));
  EXPECT_EQ(project.ui.LastText(), "No Contours to be exported");
  EXPECT_FALSE(ToolsExportDXF(ormel, VectorMode::kElements, {}, project.dir / "c.dxf"));
  EXPECT_EQ(project.ui.LastText(), "No elements to be exported!\nNo Dxf file written!");
  EXPECT_FALSE(ToolsExportBLN(ormel, VectorMode::kContours, project.dir / "c.bln"));
  EXPECT_EQ(project.ui.LastTitle(), "I/O Error");
  EXPECT_FALSE(std::filesystem::exists(project.dir / "c.dxf"));
  AddWell();
  WriteAll(project.dir / "e.dxf", "older");
  project.ui.AnswerTo("File Exists", {Answer::kNo});
  EXPECT_FALSE(ToolsExportDXF(ormel, VectorMode::kElements, {}, project.dir / "e.dxf"));
  EXPECT_EQ(project.ui.LastText(), "DXF file export aborted");
  EXPECT_EQ(ReadAll(project.dir / "e.dxf"), "older");
}

}  // namespace
}  // namespace ormel::test
