// Contour lines of grids, the text they are written as, and the program that does both.
#include "contour/contour_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "contour/tracing.h"
#include "support/temp_dir.h"

namespace contour {
namespace {

using ormel::test::ReadAll;
using ormel::test::TempDir;
using ormel::test::WriteAll;

/// A grid over the unit cells 0..columns-1, 0..rows-1 with `value(x, y)` at its nodes.
template <class F>
Grid MakeGrid(int columns, int rows, F value) {
  Grid grid{columns, rows, 0.0, columns - 1.0, 0.0, rows - 1.0, {}};
  for (int j = 0; j < rows; ++j) {
    for (int i = 0; i < columns; ++i) grid.values.push_back(value(i, j));
  }
  return grid;
}

std::string GridText(const Grid& grid) {
  std::ostringstream out;
  out << "DSAA\r\n" << grid.columns << " " << grid.rows << "\r\n";
  out << grid.left << " " << grid.right << "\r\n" << grid.bottom << " " << grid.top << "\r\n0 1\r\n";
  out.precision(12);
  for (std::size_t i = 0; i < grid.values.size(); ++i) {
    out << grid.values[i] << ((i + 1) % static_cast<std::size_t>(grid.columns) == 0 ? "\r\n" : " ");
  }
  return out.str();
}

struct Traced {
  double level;
  Polyline line;
  bool Closed() const { return line.front().x == line.back().x && line.front().y == line.back().y; }
};

std::vector<Traced> Trace(const Grid& grid, const Levels& levels) {
  std::vector<Traced> all;
  TraceContours(grid, levels, [&](double level, const Polyline& line) { all.push_back({level, line}); });
  return all;
}

TEST(Contours, a_hill_gives_one_closed_line_per_level_on_its_circle) {
  const Grid grid = MakeGrid(81, 81, [](int i, int j) { return 40.0 - std::hypot(i - 40.0, j - 40.0); });
  const std::vector<Traced> lines = Trace(grid, {5.0, 5.0, 35.0});
  ASSERT_EQ(lines.size(), 7u);
  for (const Traced& traced : lines) {
    EXPECT_TRUE(traced.Closed());
    const double radius = 40.0 - traced.level;
    EXPECT_GT(traced.line.size(), 4 * radius);
    for (const Point& p : traced.line) EXPECT_NEAR(std::hypot(p.x - 40.0, p.y - 40.0), radius, 0.03);
  }
}

TEST(Contours, lines_on_the_nodes_themselves_are_single_and_whole) {
  // A plane whose levels pass exactly through columns of nodes.
  const Grid grid = MakeGrid(6, 9, [](int i, int) { return static_cast<double>(i); });
  const std::vector<Traced> lines = Trace(grid, {0.0, 1.0, 5.0});
  ASSERT_EQ(lines.size(), 5u);  // the level of the lowest corner bounds nothing
  for (const Traced& traced : lines) {
    EXPECT_EQ(traced.line.size(), 9u);
    for (const Point& p : traced.line) EXPECT_DOUBLE_EQ(p.x, traced.level);
  }
}

TEST(Contours, a_saddle_is_decided_by_its_centre_and_lines_never_cross) {
  struct Case {
    double level;
    bool cuts_high_corners;  // the centre lies below the level: the high corners stand alone
  };
  // corners 10 and 10 on one diagonal, 0 and 4 on the other: the centre is 6
  const Grid grid = MakeGrid(2, 2, [](int i, int j) { return i == j ? 10.0 : (i == 1 ? 0.0 : 4.0); });
  for (const Case& c : {Case{5.0, false}, Case{7.0, true}}) {
    const std::vector<Traced> lines = Trace(grid, {c.level, 100.0, c.level});
    ASSERT_EQ(lines.size(), 2u);
    for (const Traced& traced : lines) {
      ASSERT_EQ(traced.line.size(), 2u);
      const Point a = traced.line[0], b = traced.line[1];
      const double mx = 0.5 * (a.x + b.x), my = 0.5 * (a.y + b.y);
      // a line that cuts off the corner (0,0) or (1,1) has its middle near that diagonal's ends
      const bool near_high = std::fabs(mx - my) < std::fabs(mx + my - 1.0);
      EXPECT_EQ(near_high, c.cuts_high_corners) << "level " << c.level;
    }
  }
}

TEST(Contours, blanked_cells_are_left_out_and_lines_end_there) {
  Grid grid = MakeGrid(11, 3, [](int, int j) { return static_cast<double>(j); });
  grid.values[11 + 5] = kBlank;
  const std::vector<Traced> lines = Trace(grid, {0.5, 1.0, 0.5});
  ASSERT_EQ(lines.size(), 2u);
  double left_end = 0.0, right_end = 10.0;
  for (const Traced& traced : lines) {
    for (const Point& p : traced.line) {
      if (p.x < 5.0) left_end = std::max(left_end, p.x);
      if (p.x > 5.0) right_end = std::min(right_end, p.x);
    }
  }
  EXPECT_DOUBLE_EQ(left_end, 4.0);
  EXPECT_DOUBLE_EQ(right_end, 6.0);
}

TEST(Contours, levels_come_from_their_index_and_none_is_lost_at_the_end) {
  const Grid grid = MakeGrid(2, 2, [](int i, int) { return i * 100.0; });
  const std::vector<Traced> lines = Trace(grid, {0.1, 0.1, 99.9});
  ASSERT_EQ(lines.size(), 999u);
  EXPECT_EQ(lines.back().level, 0.1 + 998 * 0.1);
  EXPECT_THROW(Trace(grid, {0.0, 1e-6, 100.0}), ContourError);
  EXPECT_TRUE(Trace(grid, {-1e9, 1e-3, -1e6}).empty());
}

TEST(Contours, time_grows_with_the_grid_not_with_its_square) {
  const auto wavy = [](int i, int j) { return std::sin(i * 0.11) * std::cos(j * 0.13) * 10.0; };
  const auto seconds = [&](int n) {
    const Grid grid = MakeGrid(n, n, wavy);
    const auto begin = std::chrono::steady_clock::now();
    Trace(grid, {-10.0, 0.25, 10.0});
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  seconds(200);
  EXPECT_LT(seconds(800), 16.0 * 4.0 * seconds(200) + 0.05);
}

// --- the written file ---

/// Reads as the programs behind do: blanks are passed over, and the first character that cannot belong to a
/// number ends it.
double LeadingNumber(const std::string& text) {
  std::string number;
  bool point = false;
  for (const char c : text) {
    if (c == ' ') continue;
    const bool sign = (c == '-' || c == '+') && number.empty();
    if (c == '.' && !point) {
      point = true;
    } else if (!sign && (c < '0' || c > '9')) {
      break;
    }
    number += c;
  }
  return number.empty() ? 0.0 : std::strtod(number.c_str(), nullptr);
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    EXPECT_TRUE(line.ends_with('\r'));
    line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

TEST(ContourFile, all_three_ways_to_read_a_point_agree) {
  for (const Point p : {Point{0.0, 0.0}, Point{-1.5, 2.25}, Point{12345.678901, -98765.432109},
                        Point{-1234567.25, 7654321.125}, Point{99999999.5, -99999999.5}, Point{1e-9, -1e-9},
                        Point{-123456789012.0, 999999999999.0}}) {
    std::string text;
    AppendContour(text, 12.5, {p, {p.x + 1.0, p.y}});
    const std::vector<std::string> lines = Lines(text);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].substr(0, 5), "LEVEL");
    EXPECT_EQ(LeadingNumber(lines[0].substr(5)), 12.5);
    const std::string& line = lines[1];
    ASSERT_EQ(line.size(), 34u) << line;
    EXPECT_EQ(line.find_first_not_of(' '), line.substr(0, 20).find_first_not_of(' '));
    const double x14 = LeadingNumber(line.substr(6, 14)), y14 = LeadingNumber(line.substr(20, 14));
    EXPECT_EQ(LeadingNumber(line.substr(6, 20)), x14) << line;
    EXPECT_EQ(LeadingNumber(line.substr(20, 34)), y14) << line;
    std::istringstream items(line);
    double x = 0.0, y = 0.0;
    std::string rest;
    items >> x >> y;
    EXPECT_EQ(x, x14);
    EXPECT_EQ(y, y14);
    EXPECT_FALSE(items >> rest);
    EXPECT_NEAR(x, p.x, std::max(1e-6, std::fabs(p.x) * 1e-11));
    EXPECT_NEAR(y, p.y, std::max(1e-6, std::fabs(p.y) * 1e-11));
  }
  std::string text;
  EXPECT_THROW(AppendContour(text, 1.0, {{1e15, 0.0}, {0.0, 0.0}}), ContourError);
}

TEST(ContourFile, long_lines_are_split_and_share_the_point_between) {
  for (const std::size_t count : {2u, 999u, 1000u, 1001u, 1999u, 2000u, 5000u}) {
    Polyline line;
    for (std::size_t i = 0; i < count; ++i) line.push_back({static_cast<double>(i), 1.0});
    std::string text;
    AppendContour(text, 3.0, line);
    std::vector<std::vector<std::string>> pieces;
    for (const std::string& read : Lines(text)) {
      if (read.starts_with("LEVEL")) {
        pieces.emplace_back();
      } else {
        pieces.back().push_back(read);
      }
    }
    std::size_t points = 1;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      EXPECT_LE(pieces[i].size(), kMostPoints);
      EXPECT_GE(pieces[i].size(), 2u);
      EXPECT_TRUE(i == 0 || pieces[i].front() == pieces[i - 1].back());
      points += pieces[i].size() - 1;
    }
    EXPECT_EQ(points, count);
  }
}

TEST(ContourFile, a_line_of_one_place_is_not_written) {
  std::string text;
  AppendContour(text, 1.0, {{5.0, 5.0}, {5.00000001, 5.0}, {5.0, 5.0}});
  EXPECT_EQ(text, "");
}

// --- grids that are no grids ---

TEST(SurferGrid, refuses_what_is_cut_or_lies_about_its_size) {
  const Grid grid = MakeGrid(5, 4, [](int i, int j) { return i + 10.0 * j; });
  const std::string good = GridText(grid);
  EXPECT_EQ(ReadSurferGrid(good, "g").values, grid.values);
  // Cut at every byte: only the end of the last number may be missing without being noticed.
  for (std::size_t size = 0; size + 4 < good.size(); ++size) {
    EXPECT_THROW(ReadSurferGrid(good.substr(0, size), "g"), ContourError) << size;
  }
  for (const char* bad :
       {"", "DSBB\n2 2\n0 1\n0 1\n0 1\n1 2 3 4\n", "DSAA\n2000000000 2000000000\n0 1\n0 1\n0 1\n1 2\n",
        "DSAA\n-2 2\n0 1\n0 1\n0 1\n1 2 3 4\n", "DSAA\n1 4\n0 1\n0 1\n0 1\n1 2 3 4\n",
        "DSAA\n2 2\n1 1\n0 1\n0 1\n1 2 3 4\n", "DSAA\n2 2\n0 1\n0 1\n0 1\n1 nan 3 4\n",
        "DSAA\n2 2\n0 1\n0 1\n0 1\n1 2 3 1e999\n", "DSAA\n2.5 2\n0 1\n0 1\n0 1\n1 2 3 4\n"}) {
    EXPECT_THROW(ReadSurferGrid(bad, "g"), ContourError) << bad;
  }
  try {
    ReadSurferGrid("DSAA\n2 2\n0 1\n0 x\n", "well field.GRD");
    FAIL();
  } catch (const ContourError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("well field.GRD, line 4"));
  }
}

TEST(SurferGrid, any_changed_byte_is_a_grid_or_a_message) {
  const std::string good = GridText(MakeGrid(4, 4, [](int i, int j) { return i * j * 1.0; }));
  unsigned state = 12345;
  for (int round = 0; round < 3000; ++round) {
    std::string text = good;
    for (int k = 0; k < 3; ++k) {
      state = state * 1664525u + 1013904223u;
      text[(state >> 8) % text.size()] = static_cast<char>(state >> 24);
    }
    try {
      const Grid grid = ReadSurferGrid(text, "g");
      Trace(grid, {0.0, 1.0, 9.0});
    } catch (const ContourError&) {
    }
  }
}

// --- the program ---

int RunProgram(const TempDir& folder, const std::string& arguments) {
  const std::string command = "cd '" + folder.path().string() + "' && '" ORMEL_BIN_DIR "/CONTOUR.EXE' " +
                              arguments + " 2> errors.txt";
  return WEXITSTATUS(std::system(command.c_str()));
}

TEST(ContourProgram, writes_the_file_or_removes_an_old_one_and_says_why) {
  TempDir folder;
  const Grid grid = MakeGrid(11, 11, [](int i, int j) { return i + 0.1 * j; });
  WriteAll(folder / "my town.GRD", GridText(grid));
  ASSERT_EQ(RunProgram(folder, "'my town' 0 1 10"), 0);
  const std::string contours = ReadAll(folder / "my town.CTR");
  EXPECT_TRUE(contours.starts_with("LEVEL 1\r\n"));
  ASSERT_EQ(RunProgram(folder, "my town 0 1 10"), 0) << "a stem that was not quoted";
  EXPECT_EQ(ReadAll(folder / "my town.CTR"), contours);
  ASSERT_EQ(RunProgram(folder, "'my town' 50 1 60"), 0);
  EXPECT_EQ(ReadAll(folder / "my town.CTR"), "") << "no level within the range of the grid";

  struct Case {
    const char* arguments;
    const char* words;
  };
  for (const Case& c : {Case{"'my town' 0 0 10", "interval"}, Case{"'my town' 10 1 0", "maximum"},
                        Case{"'my town' a 1 10", "must be a number"},
                        Case{"'my town' 0 1e-9 10", "larger contour interval"}}) {
    WriteAll(folder / "my town.CTR", "old");
    EXPECT_EQ(RunProgram(folder, c.arguments), 1);
    EXPECT_THAT(ReadAll(folder / "errors.txt"), testing::HasSubstr(c.words));
    EXPECT_FALSE(std::filesystem::exists(folder / "my town.CTR")) << c.arguments;
  }
  EXPECT_EQ(RunProgram(folder, "missing 0 1 10"), 1);
  EXPECT_THAT(ReadAll(folder / "errors.txt"), testing::HasSubstr("missing.GRD"));
  EXPECT_EQ(RunProgram(folder, "'my town'"), 1);
}

TEST(ContourProgram, a_disk_that_is_full_leaves_no_half_file) {
  TempDir folder;
  const Grid grid = MakeGrid(201, 201, [](int i, int j) { return std::sin(i * 0.3) * std::cos(j * 0.3); });
  WriteAll(folder / "g.GRD", GridText(grid));
  const std::string command = "cd '" + folder.path().string() +
                              "' && (ulimit -f 16; exec '" ORMEL_BIN_DIR
                              "/CONTOUR.EXE' g -1 0.01 1) 2> errors.txt";
  EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
  EXPECT_THAT(ReadAll(folder / "errors.txt"), testing::HasSubstr("cannot be written in full"));
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    EXPECT_NE(entry.path().extension(), ".CTR");
    EXPECT_NE(entry.path().extension(), ".tmp");
  }
}

}  // namespace
}  // namespace contour
