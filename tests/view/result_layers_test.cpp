// Contours, pathlines and the results overlay.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>

#include "core/layers.h"
#include "solver/pathline_tics.h"
#include "solver/result_files.h"
#include "text/files.h"
#include "view/contours.h"
#include "view/map_fixture.h"
#include "view/pathlines.h"
#include "view/redraw.h"

namespace ormel::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Strings = std::vector<std::string>;

/// A contour point: x and y in 14 columns each from column 7, y with its sign.
std::string ContourPoint(double x, double y) {
  char line[80];
  std::snprintf(line, sizeof line, "      %14.4f%+14.4f\r\n", x, y);
  return line;
}

std::string PathPointLine(double x, double y, double z, double t) {
  char line[120];
  std::snprintf(line, sizeof line, "      %13.6f %13.6f %13.6f %13.6f %13.6f\r\n", x, y, z, t, z);
  return line;
}

struct ResultProject : MapProject {
  ResultProject() {
    ormel.solution = {.ValidSolution = true, .PathlinesValid = true, .ContoursValid = true};
    ormel.layers.Switch(Layer::kContours, true);
    ormel.layers.Switch(Layer::kPathlines, true);
    ormel.db().Execute("update Model set CONTOURShow=1");
  }
  void Contours(const std::string& text) { WriteAll(dir / "town.CTR", text); }
  void Paths(const std::string& text) { WriteAll(dir / "town.PTH", text); }
};

struct LabelCase {
  const char* what;
  double level;
  std::vector<MapPoint> points;
  Strings drawn;
};

TEST(Contours, HaveOneLabelAtTheFirstMidpointInsideTheBox) {
  // The window is -100 to 100: labels stand where -92 < x < 92 and -92 < y < 80.
  const LabelCase cases[] = {
      {"a level to one decimal, level text",
       12.34,
       {{0, 0}, {20, 0}, {40, 0}},
       {"text \"12.3\" at 220,200 1 h13 Arial", "line 1 200,200 240,200 280,200"}},
      {"rising to the right",
       5,
       {{0, 0}, {20, 20}},
       {"text \"5.0\" at 220,180 1 h13 a45 Arial", "line 1 200,200 240,160"}},
      {"falling to the right",
       5,
       {{0, 0}, {20, -20}},
       {"text \"5.0\" at 220,220 1 h13 a315 Arial", "line 1 200,200 240,240"}},
      {"the way back reads the same",
       5,
       {{20, 20}, {0, 0}},
       {"text \"5.0\" at 220,180 1 h13 a45 Arial", "line 1 240,160 200,200"}},
      {"straight up",
       5,
       {{0, 0}, {0, 20}},
       {"text \"5.0\" at 200,180 1 h13 a90 Arial", "line 1 200,200 200,160"}},
      {"straight down",
       5,
       {{0, 20}, {0, 0}},
       {"text \"5.0\" at 200,180 1 h13 a270 Arial", "line 1 200,160 200,200"}},
      {"only in the upper margin", 5, {{0, 81}, {20, 81}}, {"line 1 200,38 240,38"}},
      {"on the box's edge", 5, {{0, 80}, {20, 80}}, {"line 1 200,40 240,40"}},
      {"below the upper margin",
       5,
       {{0, 79}, {20, 79}},
       {"text \"5.0\" at 220,42 1 h13 Arial", "line 1 200,42 240,42"}},
      {"the second segment is the first inside",
       5,
       {{-99, 0}, {-95, 0}, {-85, 0}},
       {"text \"5.0\" at 20,200 1 h13 Arial", "line 1 2,200 10,200 30,200"}},
      {"a single point", 5, {{0, 0}}, {}},
  };
  for (const LabelCase& c : cases) {
    ResultProject t;
    std::string text = "LEVEL " + std::to_string(c.level) + "\r\n";
    for (const MapPoint& p : c.points) text += ContourPoint(p.x, p.y);
    t.Contours(text);
    Strings drawn = t.Drawn("Contour Labels");
    for (const std::string& line : t.surface.picture.Layer("Contours")) drawn.push_back(line);
    EXPECT_EQ(drawn, c.drawn) << c.what;
  }
}

TEST(Contours, AreDrawnOnlyWhenTheyBelongToTheSolution) {
  ResultProject t;
  t.Contours("LEVEL 5.0\r\n" + ContourPoint(0, 0) + ContourPoint(9, 0));
  WriteAll(t.dir / "zone.CTR", "LEVEL 5.0\r\n" + ContourPoint(0, 50) + ContourPoint(9, 50));
  for (const int again : {1, 2})  // two wells of one area: its contours are drawn once
    t.ormel.db().Execute(
        "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,WHPAText) values (?,0,0,0,'zone')", {again});
  EXPECT_EQ(t.Drawn("Contours").size(), 1U);
  t.ormel.layers.Switch(Layer::kWhpas, true);
  EXPECT_EQ(t.Drawn("Contours").size(), 2U);
  EXPECT_THAT(t.Drawn("Contours"), Contains("line 12 200,100 218,100"));
  t.ormel.layers.Switch(Layer::kWhpas, false);
  t.ormel.solution.ContoursValid = false;
  EXPECT_THAT(t.Drawn("Contours"), IsEmpty());
  t.ormel.solution.ContoursValid = true;
  t.ormel.db().Execute("update Model set CONTOURShow=0");
  EXPECT_THAT(t.Drawn("Contours"), IsEmpty());
  t.ormel.db().Execute("update Model set CONTOURShow=1");
  std::filesystem::remove(t.dir / "town.CTR");
  EXPECT_THAT(t.Drawn("Contours"), IsEmpty());
  EXPECT_THAT(t.ui.boxes, IsEmpty()) << "a file that is not there is no failure";
}

TEST(ResultFiles, AreReadOnceAndAgainWhenTheyChange) {
  ResultProject t;
  t.Contours("LEVEL 5.0\r\n" + ContourPoint(0, 0) + ContourPoint(9, 0));
  t.Redraw();
  for (const Zoom code : {Zoom::kLeft, Zoom::kRight, Zoom::kIn, Zoom::kOut}) t.map.ZoomActions(code);
  EXPECT_EQ(ResultFilesOf(t.ormel).reads(), 1);
  t.Contours("LEVEL 5.0\r\n" + ContourPoint(0, 0) + ContourPoint(9, 0) + ContourPoint(9, 9));
  t.Redraw();
  EXPECT_EQ(ResultFilesOf(t.ormel).reads(), 2);
  t.ormel.window.solved.x_min = 50.0;
  EXPECT_THAT(t.Drawn("Contours"), Contains("line 1 300,200 318,200 318,182")) << "another origin";
  t.Contours("LEVEL 5.0\r\n" + ContourPoint(0, 0) + "      nonsense\r\n");
  t.Redraw();
  t.Redraw();
  ASSERT_EQ(t.ui.boxes.size(), 1U) << "one box for each state of the file";
  EXPECT_EQ(t.ui.LastTitle(), "Internal Error");
  EXPECT_THAT(t.ui.LastText(), ::testing::HasSubstr("town.CTR"));
}

TEST(ResultFiles, OfAProtectionAreaLieWhereItsOwnDeckSays) {
  ResultProject t;
  t.ormel.db().Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,Type,WHPAText) values "
      "('North',0,0,0.2,3,'area')");
  WriteAll(t.dir / "area.PTH",
           "START\r\n" + PathPointLine(0, 0, 5, 0) + PathPointLine(9, 0, 5, 1) + "END\r\n");
  const auto first_point = [&] {
    ResultFiles files;
    return files.Paths(t.ormel, t.dir / "area.PTH")->points.front();
  };
  t.ormel.window.solved = {100, 200, 50, 150};
  EXPECT_EQ(first_point(), (MapPoint{100, 50})) << "without a deck the last solve counts";
  WriteAll(t.dir / "area.DAT", "* Written by Ormel\r\n modelorigin -20  30   1 \r\n title area\r\n");
  EXPECT_EQ(first_point(), (MapPoint{-20, 30}));
  t.ormel.window.solved = {7, 8, 9, 10};
  EXPECT_EQ(first_point(), (MapPoint{-20, 30})) << "a solve of the model on another origin moves no area";
}

TEST(Pathlines, TakeTheColourOfAWellNearTheirStart) {
  const struct {
    double start;
    const char* color;
  } cases[] = {{2.0 * 10, "2"}, {2.2 * 10, "4"}, {-20.9, "2"}};
  for (const auto& c : cases) {
    ResultProject t;
    t.AddWell(0, 0, "North", 10.0);
    t.ormel.db().Execute("update Wells set PathlineColor=?", {QBColor(2).value});
    t.Paths("START\r\n" + PathPointLine(c.start, 0, 5, 0) + PathPointLine(c.start, 1000, 5, 10) + "END\r\n");
    const Strings lines = t.Drawn("Pathlines");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].substr(0, 7), std::string("line ") + c.color + " ") << c.start;
  }
  ResultProject t;
  for (const int color : {2, 6}) {
    const Vid vid = t.AddWell(0, 0, "w" + std::to_string(color), 10.0);
    t.ormel.db().Execute("update Wells set PathlineColor=? where VID=?", {QBColor(color).value, vid});
  }
  t.Paths("START\r\n" + PathPointLine(0, 0, 5, 0) + PathPointLine(9, 0, 5, 10) + "END\r\n");
  EXPECT_THAT(t.Drawn("Pathlines"), ElementsAre("line 6 200,200 218,200")) << "the later well wins";
}

PathSet OnePath(const std::vector<std::array<double, 4>>& points) {
  PathSet set;
  set.paths.push_back({0, points.size()});
  for (const auto& [x, y, z, t] : points) {
    set.points.push_back({x, y});
    set.elevations.push_back(z);
    set.times.push_back(t);
  }
  return set;
}

struct TicCase {
  const char* what;
  std::vector<std::array<double, 4>> points;  ///< x, y, elevation, time
  double spacing;
  std::vector<double> x;  ///< of the marks
};

std::vector<double> XOf(const std::vector<Tic>& tics) {
  std::vector<double> x;
  for (const Tic& tic : tics) x.push_back(std::round(tic.at.x * 1e6) / 1e6);
  return x;
}

TEST(Tics, StandAtEqualTimes) {
  const MapRect window{-100, 100, 100, -100};
  const TicCase cases[] = {
      {"1000 days by 365", {{0, 0, 0, 0}, {50, 0, 0, 500}, {100, 0, 0, 1000}}, 365, {36.5, 73.0}},
      {"one step passes several", {{0, 0, 0, 0}, {100, 0, 0, 1000}}, 250, {25, 50, 75}},
      {"a time reached exactly is not passed", {{0, 0, 0, 0}, {100, 0, 0, 500}}, 500, {}},
      {"a step that ends outside has none, those after it count on",
       {{0, 0, 0, 0}, {200, 0, 0, 250}, {50, 0, 0, 400}},
       100,
       {150.0}},
      {"no spacing, no marks", {{0, 0, 0, 0}, {100, 0, 0, 1000}}, 0, {}},
  };
  for (const TicCase& c : cases)
    EXPECT_EQ(XOf(TimeTics(OnePath(c.points), c.spacing, &window, 100)), c.x) << c.what;
  EXPECT_EQ(TimeTics(OnePath({{0, 0, 0, 0}, {1, 0, 0, 1e9}}), 1e-9, &window, 100).size(), 100U)
      << "a spacing that would never end";
}

TEST(Tics, StandAtMultiplesOfElevation) {
  const MapRect window{-100, 100, 100, -100};
  const TicCase cases[] = {
      {"up", {{0, 0, 1, 0}, {100, 0, 26, 1}}, 10, {36, 76}},
      {"down", {{0, 0, 26, 0}, {100, 0, 1, 1}}, 10, {24, 64}},
      {"through zero", {{0, 0, -5, 0}, {100, 0, 5, 1}}, 10, {50}},
      {"between two multiples", {{0, 0, 11, 0}, {100, 0, 19, 1}}, 10, {}},
      {"level", {{0, 0, 10, 0}, {100, 0, 10, 1}}, 10, {}},
  };
  for (const TicCase& c : cases)
    EXPECT_EQ(XOf(ElevationTics(OnePath(c.points), c.spacing, &window, 100)), c.x) << c.what;
}

TEST(Pathlines, WriteTheirMarksToTheScratchFiles) {
  ResultProject t;
  t.ui.InputTo("Time Mark Spacing", "-3");
  t.ui.InputTo("Time Mark Spacing", "400");
  t.ui.InputTo("Elevation Tics", "10");
  t.Paths("START\r\n" + PathPointLine(0, 0, 25, 0) + PathPointLine(100, 0, 5, 1000) + "END\r\n");
  TMARKS(t.ormel, kTimeMarksCustom);
  EXPECT_EQ(t.ui.LastTitle(), "Input error");
  EXPECT_EQ(t.ui.LastText(), "Illegal time mark value -3");
  EXPECT_EQ(t.ormel.solution.TimeTicSpacing, 0.0);
  TMARKS(t.ormel, kTimeMarksCustom);
  ZMARKS(t.ormel, true);
  EXPECT_EQ(t.surface.picture.Layer("Pathlines").size(), 1U + 2U + 2U * 2U) << "line, two dots, two crosses";
  EXPECT_EQ(ReadAll(t.dir / "TICMARKST.TIC"), " 40            0 \r\n 80            0 \r\n");
  EXPECT_EQ(ReadAll(t.dir / "TICMARKSZ.TIC"),
            " 25            0             2 \r\n 75            0             1 \r\n");

  // What is not wholly a number is asked about, and an emptied box changes nothing.
  t.ui.InputTo("Elevation Tics", "2,5");
  t.ui.InputTo("Elevation Tics", "");
  t.ui.AnswerTo("Not Wholly a Number", {Answer::kNo});
  ZMARKS(t.ormel, true);
  EXPECT_EQ(t.ui.LastTitle(), "Not Wholly a Number");
  EXPECT_EQ(t.ormel.solution.ElevationTicSpacing, 10.0);
  std::filesystem::remove(t.dir / "TICMARKST.TIC");
  t.Redraw();
  EXPECT_FALSE(FileExists(t.dir / "TICMARKST.TIC")) << "drawing writes no file";
  t.ormel.window.SolveWindow = {30, 50, 10, -10};
  WriteTicFiles(t.ormel);
  EXPECT_EQ(ReadAll(t.dir / "TICMARKST.TIC"), " 40            0 \r\n 80            0 \r\n")
      << "what is seen does not matter";
  TMARKS(t.ormel, kTimeMarks2Years);
  EXPECT_EQ(t.ormel.solution.TimeTicSpacing, 730.0);
  PATHLINES(t.ormel);
  EXPECT_THAT(t.surface.picture.Layer("Pathlines"), IsEmpty());
}

TEST(Pathlines, OfAModelThatHasChangedAreNotShown) {
  ResultProject t;
  t.Paths("START\r\n" + PathPointLine(0, 0, 5, 0) + PathPointLine(9, 0, 5, 10) + "END\r\n");
  EXPECT_EQ(t.Drawn("Pathlines").size(), 1U);
  t.ormel.solution.ValidSolution = false;
  EXPECT_THAT(t.Drawn("Pathlines"), IsEmpty());
}

struct OverlayCase {
  const char* mode;
  LinesinkResult row;
  int color;  ///< -1: not drawn
  double width;
};

TEST(ResultsOverlay, GivesWidthAndColourByItsMode) {
  const OverlayCase cases[] = {
      {"Head Error", {.error = 0.0}, 4, 2.0},
      {"Head Error", {.error = -5.0}, 4, 6.05},
      {"Head Error", {.error = 20.0}, 4, 24.0},
      {"Head Error", {.error = 100.0}, 4, 24.0},
      {"Strength", {.discharge = 0.0}, 11, 2.0},
      {"Strength", {.discharge = -5.0}, 13, 6.05},
      {"Baseflow", {.discharge = 0.0, .baseflow = 9.0}, 7, 2.0},
      {"Baseflow", {.discharge = 1.0, .baseflow = 0.0}, 3, 2.0},
      {"Baseflow", {.discharge = 1.0, .baseflow = -5.0}, 13, 6.05},
      {"Baseflow", {.discharge = 1.0, .baseflow = 5.0}, 11, 6.05},
      {"Streamflow", {.discharge = 1.0, .baseflow = 3.0, .overlandflow = 2.0}, 11, 6.05},
      {"Streamflow", {.discharge = 1.0, .baseflow = -3.0, .overlandflow = 2.0}, 3, 2.0},
      {"Percolating", {.resistance = 1, .specified_head = 10, .calculated_head = 7.9, .depth = 2}, 10, 2.0},
      {"Percolating", {.resistance = 1, .specified_head = 10, .calculated_head = 8, .depth = 2}, -1, 0},
      {"Percolating", {.resistance = 0, .specified_head = 10, .calculated_head = 0, .depth = 2}, -1, 0},
      {"Recharging", {.discharge = -1.0}, 10, 2.0},
      {"Recharging", {.discharge = 0.0}, -1, 0},
      {"off", {.error = 9.0}, -1, 0},
  };
  for (const OverlayCase& c : cases) {
    const auto line = OverlayLineOf({c.mode, 10.0}, c.row);
    ASSERT_EQ(line.has_value(), c.color >= 0) << c.mode;
    if (!line) continue;
    EXPECT_EQ(ColorName(line->color), std::to_string(c.color)) << c.mode;
    EXPECT_DOUBLE_EQ(line->width, c.width) << c.mode;
  }
}

TEST(ResultsOverlay, FormShowsTheRangeOfTheChoice) {
  MapProject t;
  for (const double discharge : {-30.0, 12.0})
    t.ormel.db().Execute(
        "insert into LSResults (Label,VadoxLabel,X1,Y1,X2,Y2,SpecifiedHead,Discharge,"
        "CalculatedHead,Resistance) values ('a','b',0,0,1,1,5,?,5,0)",
        {discharge});
  ResultOverlay form(t.ormel, {});
  form.SetChecked("chkLSShow", true);
  form.SetChecked("LSSetting(1)", true);
  EXPECT_EQ(form.Number("tbLSMin"), -30.0);
  EXPECT_EQ(form.Number("tbLSMax"), 12.0);
  EXPECT_EQ(form.Number("tbLSScaleMax"), 30.0);
  form.SetText("tbLSScaleMax", "0");
  form.Click("OK");
  EXPECT_EQ(t.ui.LastTitle(), "Error in Results overlay");
  EXPECT_EQ(form.Result, 1);
  EXPECT_EQ(form.Settings().LSMode, "Strength");
}

}  // namespace
}  // namespace ormel::test
