// Exports of results, from files written by hand.
#include <gtest/gtest.h>

#include "exchange/dxf_export.h"
#include "exchange/shape_export.h"
#include "exchange/surfer_export.h"
#include "model/wells.h"
#include "support/test_project.h"
#include "text/files.h"

namespace ormel::test {
namespace {

/// Origin of the solve at (1000, 2000), map in metres, computed in metres.
struct ResultExport : ::testing::Test {
  TestProject project;
  Ormel& ormel = project.ormel;
  ResultExport() {
    ormel.window.solved = {1000, 3000, 2000, 4000};
    ormel.solution.ValidSolution = true;
    const Vid vid = StoreWell(ormel, {.Label = "Mill, old", .Head = 400.0, .Radius = 0.5}, {100, 200});
    well_ = "WL_00000" + std::to_string(vid);
    well_.erase(3, well_.size() - 9);  // six digits
  }
  std::string Result(const char* extension) {
    return ormel.project.OrmelBasePath + "/" + ormel.project.OrmelBaseName + extension;
  }
  static std::string Field(double value) {
    std::string text = std::to_string(value);
    return std::string(13 - text.size(), ' ') + text + " ";
  }
  static std::string Point(double x, double y, double z, double t) {
    return "      " + Field(x) + Field(y) + Field(z) + Field(t) + Field(1.0) + "\r\n";
  }
  void WritePaths() {
    WriteAll(Result(".PTH"), "START 0 0 10 0 well " + well_ + ", particle 1 of 2, forward\r\n" +
                                 Point(0, 0, 10, 0) + Point(10, 0, 7.5, 100) + Point(30, 0, 9.5, 250) +
                                 "END   boundary\r\nSTART 5 5 1 0 point, forward\r\n" + Point(5, 5, 1, 0) +
                                 "END   dry ground\r\n");
  }
  std::string well_;
};

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST_F(ResultExport, PathsCarryTheLabelOfTheirWell) {
  WritePaths();
  const ShapeReport report = WriteShapes(ormel, *FindShapeKind("pathlines"), {}, project.dir / "p.shp");
  EXPECT_EQ(report.written, 1U);
  EXPECT_EQ(report.left_out, 1U);  // a path of one point is no line
  EXPECT_NE(ReadAll(project.dir / "p.dbf").find("Mill, old"), std::string::npos);
  const std::string shp = ReadAll(project.dir / "p.shp");
  EXPECT_EQ(shp.size(), 100U + 8U + 48U + 3U * 16U);  // the START line is no point of its own
}

TEST_F(ResultExport, MarksStandOnTheWholePaths) {
  WritePaths();
  ormel.window.SolveWindow = {0, 10, 10, 0};  // far from the paths, and small
  EXPECT_EQ(WriteDxf(ormel, VectorMode::kPathlines, {100.0, 1.0}, project.dir / "p.dxf").written,
            1U + 2U + 5U);
  const std::string dxf = ReadAll(project.dir / "p.dxf");
  EXPECT_EQ(Count(dxf, "\r\nLWPOLYLINE\r\n  5\r\n"), 1U);
  EXPECT_EQ(Count(dxf, "CIRCLE\r\n"), 7U);
  // Down from 10 through 9 and 8, up through 8 and 9; the layer table names each layer once more.
  EXPECT_EQ(Count(dxf, "  8\r\nVertical Ticmarks Down\r\n"), 3U);
  EXPECT_EQ(Count(dxf, "  8\r\nVertical Ticmarks Up\r\n"), 2U);
  EXPECT_EQ(Count(dxf, "  8\r\nTime Ticmarks\r\n"), 2U);
  EXPECT_EQ(Count(dxf, " 40\r\n0.0048\r\n"), 7U);  // 10 / 2105: above zero
  // 200 days are two thirds between 100 and 250 d: x = 1000 + 10 + 20 * 2 / 3.
  EXPECT_EQ(Count(dxf, " 10\r\n1023.3\r\n 20\r\n2000.0\r\n"), 1U);

  WriteShapes(ormel, *FindShapeKind("time-tics"), {{100.0, 1.0}, false, false, {}}, project.dir / "t.shp");
  const std::string dbf = ReadAll(project.dir / "t.dbf");
  EXPECT_NE(dbf.find("T_Interval"), std::string::npos);
  EXPECT_NE(dbf.find(" 100 Days 200 Days"), std::string::npos);
}

TEST_F(ResultExport, ContoursAreInMapCoordinates) {
  const auto point = [](const char* x, const char* y) {
    return "      " + std::string(13 - std::string(x).size(), ' ') + x + " " +
           std::string(13 - std::string(y).size(), ' ') + y + "\r\n";
  };
  WriteAll(Result(".CTR"), "LEVEL 101.5\r\n" + point("1.0", "+2.0") + point("3.0", "+4.0") + "LEVEL .25\r\n" +
                               point("5.0", "-6.0") + point("7.0", "+8.0"));
  WriteShapes(ormel, *FindShapeKind("contours"), {}, project.dir / "c.shp");
  EXPECT_NE(ReadAll(project.dir / "c.dbf").find("    101.50       .25"), std::string::npos)
      << ReadAll(project.dir / "c.dbf");
  WriteBoundaryLines(ormel, VectorMode::kContours, project.dir / "c.bln");
  EXPECT_EQ(ReadAll(project.dir / "c.bln"),
            "2   1\r\n1.001000e+03 2.002000e+03 \r\n1.003000e+03 2.004000e+03 \r\n"
            "2   1\r\n1.005000e+03 1.994000e+03 \r\n1.007000e+03 2.008000e+03 \r\n");
  EXPECT_TRUE(ToolsExportDXF(ormel, VectorMode::kContours, {}, project.dir / "c.dxf"));
  EXPECT_NE(project.ui.LastText().find("DXF version AC1015 (Autocad 2000)"), std::string::npos);

  WriteAll(Result(".CTR"), "* none\r\n");
  std::filesystem::resize_file(Result(".CTR"), 0);
  EXPECT_EQ(WriteDxf(ormel, VectorMode::kContours, {}, project.dir / "n.dxf").written, 0U);
  EXPECT_NE(ReadAll(project.dir / "n.dxf").find("ENTITIES\r\n  0\r\nENDSEC\r\n"), std::string::npos);
}

TEST_F(ResultExport, OnlyTheRangesOfTheGridChange) {
  const std::string tail = "10.0 13.0\r\n10.0 11.0 12.0\r\n11.0 12.0 13.0\r\n";
  WriteAll(Result(".GRD"), "DSAA\r\n3 2\r\n0 20\r\n0 10.004\r\n" + tail);
  EXPECT_TRUE(ToolsExportGrid(ormel, project.dir / "g.grd"));
  EXPECT_EQ(ReadAll(project.dir / "g.grd"),
            "DSAA\r\n3 2\r\n  1000.00  1020.00\r\n  2000.00  2010.00\r\n" + tail);
}

TEST_F(ResultExport, DamagedResultsAreNoHalfExports) {
  WritePaths();
  const std::string good = ReadAll(Result(".PTH"));
  WriteAll(Result(".PTH"), good.substr(0, good.size() - 20));
  WriteAll(project.dir / "p.dxf", "older");
  project.ui.AnswerTo("File Exists", {Answer::kYes});
  EXPECT_FALSE(ToolsExportDXF(ormel, VectorMode::kPathlines, {}, project.dir / "p.dxf"));
  EXPECT_EQ(ReadAll(project.dir / "p.dxf"), "older");
  EXPECT_NE(project.ui.LastText().find("PTH"), std::string::npos) << project.ui.LastText();
  WriteAll(Result(".GRD"), "DSAA\r\n3 2\r\n0 20\r\n0 10\r\n0 1\r\n1 2 3\r\n4 5\r\n");
  EXPECT_FALSE(ToolsExportGrid(ormel, project.dir / "g.grd"));
  EXPECT_FALSE(std::filesystem::exists(project.dir / "g.grd"));
}

}  // namespace
}  // namespace ormel::test
