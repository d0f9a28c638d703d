// Path files, grids, logs and records, to the column.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "files/numbers.h"
#include "files/output_file.h"
#include "support/temp_dir.h"
#include "vadox1/grid_file.h"
#include "vadox1/logs.h"
#include "vadox1/path_file.h"
#include "vadox1/records.h"

namespace vadox1 {
namespace {

using ormel::test::ReadAll;
using ormel::test::TempDir;

TEST(Numbers, reads_what_decks_write_and_nothing_else) {
  const struct {
    const char* text;
    double value;
  } good[] = {{".000000E+00", 0.0}, {"-.5E+00", -0.5}, {"+5.", 5.0},    {"12.3456", 12.3456},
              {"1D+02", 100.0},     {"1e-400", 0.0},   {"00012", 12.0}, {"-9.99900E+03", -9999.0}};
  for (const auto& c : good) {
    ASSERT_TRUE(files::ReadNumber(c.text)) << c.text;
    EXPECT_EQ(*files::ReadNumber(c.text), c.value) << c.text;
  }
  for (const char* bad : {"", ".", "-", "+", "E+00", "1E", "1.2.3", "nan", "inf", "0x10", "1e999", "-1e999",
                          "1,5", "--1", "+-1", "1 2", "TP_1"}) {
    EXPECT_FALSE(files::ReadNumber(bad)) << bad;
  }
}

TEST(PathFile, points_stand_in_their_columns) {
  NamedPath named;
  named.reason = "well WL_000012, particle 1 of 20";
  named.path.start.forward = false;
  named.path.points = {{{-1234567.25, 100.0}, 12.5, 0.0, 33.25}, {{0.0, -1e-12}, -5.0, 1e7, aem::kNotSet}};
  named.path.end = aem::PathEnd::kSurfaceWater;
  named.path.label = "LS_000003_0002";
  const std::string text = PathText(std::vector<NamedPath>{named});
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find("\r\n", at);
    lines.push_back(text.substr(at, end - at));
    at = end + 2;
  }
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_THAT(lines[0], testing::StartsWith("START "));
  EXPECT_THAT(lines[0], testing::HasSubstr("well WL_000012, particle 1 of 20, backward"));
  const double expected[2][5] = {{-1234567.25, 100.0, 12.5, 0.0, 33.25}, {0.0, 0.0, -5.0, 1e7, -9999.0}};
  for (int i = 0; i < 2; ++i) {
    const std::string& line = lines[static_cast<std::size_t>(1 + i)];
    ASSERT_EQ(line.size(), 75u);
    for (int field = 0; field < 5; ++field) {
      EXPECT_EQ(std::stod(line.substr(static_cast<std::size_t>(6 + 14 * field), 13)), expected[i][field])
          << line;
      EXPECT_EQ(line[static_cast<std::size_t>(5 + 14 * field)], ' ');
    }
  }
  EXPECT_EQ(lines[3], "END   surface water LS_000003_0002");
  EXPECT_EQ(PathText({}), "* \r\n");
}

std::string GridText(const GridShape& shape, const std::vector<double>& heads) {
  std::string text;
  WriteGrid(shape, heads, [&](std::string_view piece) { text += piece; });
  return text;
}

TEST(GridFile, cells_are_nearly_square_and_dry_nodes_blank) {
  const struct {
    aem::Window window;
    int columns, rows;
  } cases[] = {{{0, 0, 100, 100, true}, 41, 41},
               {{0, 0, 100, 50, true}, 41, 21},
               {{0, 0, 100, 1, true}, 3, 2},
               {{0, 0, 3, 2, true}, 40, 27}};
  for (const auto& c : cases) EXPECT_EQ(ShapeGrid(c.window, c.columns).rows, c.rows);
  EXPECT_EQ(ShapeGrid({0, 0, 1, 1, true}, 2000000000).rows, 0);
  EXPECT_EQ(ShapeGrid({0, 0, 1e-3, 1e9, true}, 100).rows, 0);
  const GridShape shape = ShapeGrid({0, 0, 2, 1, true}, 3);
  ASSERT_EQ(shape.rows, 2);
  EXPECT_EQ(GridText(shape, {1, 2, 3, 4, kBlank, 6.5}),
            "DSAA\r\n3 2\r\n0 2\r\n0 1\r\n1 6.5\r\n1 2 3\r\n\r\n4 1.70141E+38 6.5\r\n\r\n");
  EXPECT_THAT(GridText(shape, std::vector<double>(6, kBlank)),
              testing::HasSubstr("\r\n1.70141e+38 1.70141e+38\r\n"));
}

TEST(Records, carry_ten_digits_and_no_negative_zero) {
  EXPECT_EQ(Record(' ').Add(1.23456789012).Add(-0.0).Add("WL_000001").Line(),
            "   1.234567890E+00,  0.000000000E+00, WL_000001\r\n");
  EXPECT_EQ(Record('@').Add(-1e-5).Add(3).Add("").Line(), "@ -1.000000000E-05,       3, \r\n");
}

TEST(LogFiles, an_error_log_without_errors_holds_a_star_alone) {
  TempDir folder;
  Logs logs;
  logs.Name({Log::kError, folder / "error.log"});
  logs.Name({Log::kMessage, folder / "message.log"});
  logs.Name({Log::kEcho, ""});
  logs.Echo("dropped");
  logs.Report({aem::Severity::kNote, "WL_000001", 12, "is remarkable."}, true);
  logs.Write();
  EXPECT_EQ(ReadAll(folder / "error.log"), "*\r\n");
  EXPECT_EQ(ReadAll(folder / "message.log"), "WL_000001 (line 12): is remarkable.\r\n");
  logs.Report({aem::Severity::kWarning, "WL_000001", 12, "is wrong."}, false);
  logs.Error("two\nlines");
  logs.Write();
  EXPECT_EQ(ReadAll(folder / "error.log"), "WL_000001: is wrong.\r\ntwo\r\nlines\r\n");
}

TEST(OutputFiles, appear_whole_or_not_at_all) {
  TempDir folder;
  files::WriteWholeFile(folder / "a.txt", "old");
  {
    files::OutputFile file(folder / "a.txt");
    file.Write("half");
  }
  EXPECT_EQ(ReadAll(folder / "a.txt"), "old");
  EXPECT_THROW(files::WriteWholeFile(folder / "none/a.txt", "x"), files::FileError);
  std::filesystem::create_directory(folder / "b.txt");
  EXPECT_THROW(files::WriteWholeFile(folder / "b.txt", "x"), files::FileError) << "a folder is in the way";
  int files_left = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    files_left += entry.is_regular_file() ? 1 : 0;
  }
  EXPECT_EQ(files_left, 1);
}

}  // namespace
}  // namespace vadox1
