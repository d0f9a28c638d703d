// Contours, pathlines and grids: whole files, and damage told with file and line.
#include <gtest/gtest.h>

#include <vector>

#include "solver/contour_file.h"
#include "solver/grid_file.h"
#include "solver/path_file.h"
#include "support/temp_dir.h"

namespace ormel::test {
namespace {

struct Files {
  TempDir dir;
  std::string Put(const std::string& text) {
    WriteAll(dir / "a b", text);
    return dir / "a b";
  }
};

/// Where the outcome says the damage is; 0 for none.
std::size_t LineOf(const ReadOutcome& outcome) {
  return outcome ? outcome->line : 0;
}

TEST(ContourFile, ReadsOverlappingColumnsByWhatCanBelongToANumber) {
  Files files;
  const std::string path = files.Put(
      "LEVEL 12.34\r\n"
      "             1250.50      +2300.25\r\n"
      "        -1234567.125   -98765432.5\r\n"
      "            0.000001+123456789.123\r\n"
      "LEVEL -5\r\n"
      "LEVEL 1E2\r\n"
      "                1 2.            +7\r\n");
  std::vector<ContourLine> lines;
  EXPECT_FALSE(ReadContourFile(path, [&](const ContourLine& line) { lines.push_back(line); }));
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0].level, 12.34);
  EXPECT_EQ(lines[0].points, (std::vector<ModelPoint>{
                                 {1250.5, 2300.25}, {-1234567.125, -98765432.5}, {0.000001, 123456789.123}}));
  EXPECT_EQ(lines[1].level, -5);
  EXPECT_TRUE(lines[1].points.empty());
  EXPECT_EQ(lines[2].points, (std::vector<ModelPoint>{{12, 7}}));
}

TEST(ContourFile, TellsDamageWithItsLine) {
  const std::string point = "           1250.50      +2300.25\n";
  std::string thousand = "LEVEL 1\n";
  for (int i = 0; i < 1000; ++i) thousand += point;
  const struct {
    std::string text;
    std::size_t line;
  } cases[] = {{point, 1},
               {"LEVEL\n", 1},
               {"LEVEL 1\n" + point + "           1250.50      \n", 3},
               {"LEVEL 1\n\n", 2},
               {"LEVEL 1\n                nan          +inf\n", 2},
               {"LEVEL 1\n            9E999      +1\n", 2},
               {std::string("LEVEL 1\n\0\xff\xfe\n", 12), 2},
               {thousand, 0},
               {thousand + point, 1002}};
  Files files;
  for (const auto& c : cases) {
    const ReadOutcome outcome = ReadContourFile(files.Put(c.text), [](const ContourLine&) {});
    EXPECT_EQ(LineOf(outcome), c.line) << c.text.substr(0, 80);
    if (outcome) {
      EXPECT_NE(outcome->Message().find("a b, line " + std::to_string(c.line)), std::string::npos);
    }
  }
  const ReadOutcome missing = ReadContourFile(files.dir / "none", [](const ContourLine&) {});
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->kind, FileDamage::Kind::kMissing);
}

constexpr const char* kPoint =
    "         100.000000   -200.500000 1.2500000E+01 3.6500000E+02     21.000000\n";

TEST(PathFile, ReadsCompletePaths) {
  Files files;
  const std::string path = files.Put("* \nSTART 1 2 3 4 well WL_000001\n" + std::string(kPoint) + kPoint +
                                     "END left the window\nSTA\nEND\n");
  std::vector<Pathline> paths;
  EXPECT_FALSE(ReadPathFile(path, [&](const Pathline& p) { paths.push_back(p); }));
  ASSERT_EQ(paths.size(), 2U);
  EXPECT_EQ(paths[0].start, "START 1 2 3 4 well WL_000001");
  EXPECT_EQ(paths[0].end, "END left the window");
  ASSERT_EQ(paths[0].points.size(), 2U);
  const PathPoint& p = paths[0].points[1];
  EXPECT_EQ(p.at, (ModelPoint{100, -200.5}));
  EXPECT_EQ(p.elevation, 12.5);
  EXPECT_EQ(p.time, 365);
  EXPECT_EQ(p.head, 21);
  EXPECT_TRUE(paths[1].points.empty());
}

TEST(PathFile, TellsDamageAfterTheCompletePaths) {
  const std::string whole = std::string("START\n") + kPoint + "END\n";
  const struct {
    std::string text;
    std::size_t line;
    std::size_t paths;
  } cases[] = {{whole + "START\n" + kPoint, 5, 1},
               {whole + "START\n" + std::string(kPoint).substr(0, 62) + "\n", 5, 1},
               {whole + kPoint, 4, 1},
               {whole + "END\n", 4, 1},
               {"START\nSTART\n", 2, 0},
               {"* \n", 0, 0},
               {"", 0, 0}};
  Files files;
  for (const auto& c : cases) {
    std::size_t paths = 0;
    EXPECT_EQ(LineOf(ReadPathFile(files.Put(c.text), [&](const Pathline&) { ++paths; })), c.line) << c.text;
    EXPECT_EQ(paths, c.paths) << c.text;
  }
}

TEST(GridFile, ReadsRowsAcrossLineEnds) {
  Files files;
  const std::string path =
      files.Put("DSAA\r\n3 2\r\n0 20\r\n-5 5\r\n10 12.5\r\n10 11\r\n12\r\n+10.5 11.5 1.70141E+38\r\n");
  std::vector<std::vector<double>> rows;
  GridHeader header;
  EXPECT_FALSE(ReadGridFile(
      path, [&](const GridHeader& h) { header = h; },
      [&](std::size_t row, std::span<const double> values) {
        EXPECT_EQ(row, rows.size());
        rows.emplace_back(values.begin(), values.end());
      }));
  EXPECT_EQ(header.columns, 3U);
  EXPECT_EQ(header.y_min, -5);
  EXPECT_EQ(header.z_max, 12.5);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0], (std::vector<double>{10, 11, 12}));
  EXPECT_GE(rows[1][2], kGridBlank);
}

TEST(GridFile, TellsDamageWithItsLine) {
  const std::string head = "DSAA\n2 2\n0 1\n0 1\n0 1\n";
  const struct {
    std::string text;
    std::size_t line;
  } cases[] = {{"DSBB\n2 2\n", 1},
               {"DSAA\n2 2\n0 1\n", 3},
               {"DSAA\n0 2\n0 1\n0 1\n0 1\n", 5},
               {"DSAA\n1E9 1E9\n0 1\n0 1\n0 1\n", 5},
               {"DSAA\n2.5 2\n0 1\n0 1\n0 1\n", 5},
               {head + "1 2\n3\n", 7},
               {head + "1 2\n3 x\n", 7},
               {head + "1 2\n3 nan\n", 7},
               {head + "1 2\n3 4\n5\n", 8},
               {head + "1 2\n3 4\n", 0},
               {head + "1 2\n3 4;\n", 7}};
  Files files;
  for (const auto& c : cases)
    EXPECT_EQ(LineOf(ReadGridFile(
                  files.Put(c.text), [](const GridHeader&) {}, [](std::size_t, std::span<const double>) {})),
              c.line)
        << c.text;
}

}  // namespace
}  // namespace ormel::test
