// Zones by time and well, lines between pixels, contours at walls, labels that keep apart.
#include <gmock/gmock.h>

#include "core/layers.h"
#include "core/ormel.h"
#include "map_fixture.h"
#include "view/capture_zones.h"
#include "view/label_placer.h"
#include "view/map_output.h"
#include "view/styles.h"

namespace ormel::test {
namespace {

TEST(Zones, TellWellAndTimeByTheirLabel) {
  struct Case {
    const char* label;
    const char* well;
    double years;
  };
  const Case cases[] = {{"PW-1 5 years", "PW-1", 5.0},
                        {"PW-1 1 year", "PW-1", 1.0},
                        {"Old well 2 0.5 years", "Old well 2", 0.5},
                        {"years", "", 0.0},
                        {"5 years", "", 0.0},
                        {"PW-1 many years", "", 0.0},
                        {"PW-1 -3 years", "", 0.0},
                        {"PW-1 nan years", "", 0.0},
                        {"sketch", "", 0.0},
                        {"", "", 0.0}};
  for (const Case& c : cases) {
    const ZoneTag tag = ZoneTagOf(c.label);
    EXPECT_EQ(tag.well, c.well) << c.label;
    EXPECT_EQ(tag.years, c.years) << c.label;
  }
}

std::vector<DrawCall> CallsOf(const DisplayList& picture, const std::string& layer) {
  std::vector<DrawCall> calls;
  bool inside = false;
  for (const DrawCall& call : picture.calls()) {
    if (call.kind == DrawKind::kLayer)
      inside = call.text == layer;
    else if (inside)
      calls.push_back(call);
  }
  return calls;
}

TEST(Zones, HaveTheColourOfTimeAndWellAndLieBeneathThePaths) {
  MapProject t;
  t.ormel.db().Execute("insert into Wells (VID,Label) values (1001,'A'),(1002,'B')");
  for (const char* label : {"A 1 year", "A 10 years", "B 10 years", "sketch"}) {
    const Pid pid = t.AddPolygon("0,0 10,0 10,10.25");
    t.ormel.db().Execute("update Polygons set Closed=1 where PID=?", {pid});
    t.ormel.db().Execute("insert into Capzones (PID,Label) values (?,?)", {pid, label});
  }
  t.Redraw();
  const auto calls = CallsOf(t.surface.picture, "Capture Zones");
  std::vector<Color> areas, lines;
  for (const DrawCall& call : calls) {
    if (call.kind == DrawKind::kArea) areas.push_back(*call.fill);
    if (call.kind == DrawKind::kFineLine) lines.push_back(call.pen.color);
  }
  EXPECT_THAT(areas, ::testing::ElementsAre(ZoneAreaColor(0), ZoneAreaColor(1), ZoneAreaColor(0)));
  EXPECT_THAT(lines, ::testing::ElementsAre(ZoneLineColor(1), ZoneLineColor(1), ZoneLineColor(0)))
      << "the shorter time lies above";
  EXPECT_EQ(calls.back().kind, DrawKind::kPolyline) << "a zone drawn by hand keeps its look";
  EXPECT_EQ(calls.back().pen.color, QBColor(9));
  // 400 pixels show 200 m: y = 10.25 is half a pixel off.
  EXPECT_EQ(calls.front().fine.at(2), (FinePoint{220.0, 179.5})) << "not rounded to whole pixels";

  t.ormel.layers.Switch(Layer::kCapzones, false);
  EXPECT_THAT(t.Drawn("Capture Zones"), ::testing::IsEmpty());
}

/// The table of zones tells well and time, whatever the label was cut or changed to; holes are left open.
TEST(Zones, TakeWellAndTimeFromTheTable) {
  MapProject t;
  const auto add = [&t](const char* label, const char* points, const char* well, int part) {
    const Pid pid = t.AddPolygon(points);
    t.ormel.db().Execute("update Polygons set Closed=1 where PID=?", {pid});
    t.ormel.db().Execute("insert into Capzones (PID,Label) values (?,?)", {pid, label});
    if (well != nullptr)
      t.ormel.db().Execute("insert into Zones (PID,Well,Years,Part) values (?,?,5.0,?)", {pid, well, part});
  };
  add("Wellfield of the old town 10 y", "0,0 20,0 20,20 0,20", "Wellfield of the old town, No. 12", 0);
  add("renamed", "5,5 5,8 8,8 8,5", "Wellfield of the old town, No. 12", 1);
  t.ormel.db().Execute("insert into Wells (VID,Label) values (1,'by its label')");
  add("of no well 9 years", "30,0 40,0 40,10", nullptr, 0);
  add("by its label 7 years", "30,0 40,0 40,10", nullptr, 0);
  const Zones zones = ReadZones(t.ormel);
  EXPECT_THAT(zones.times, ::testing::ElementsAre(5.0, 7.0));
  EXPECT_THAT(zones.wells, ::testing::ElementsAre("Wellfield of the old town, No. 12", "by its label"));
  t.Redraw();
  std::size_t areas = 0;
  for (const DrawCall& call : CallsOf(t.surface.picture, "Capture Zones")) {
    if (call.kind != DrawKind::kArea) continue;
    ++areas;
    // The ring, a bridge, the hole; the other has its three corners.
    EXPECT_EQ(call.fine.size(), *call.fill == ZoneAreaColor(0) ? 10U : 3U);
  }
  EXPECT_EQ(areas, 2U) << "the hole has none of its own";
}

TEST(Contours, BreakAtWalls) {
  MapProject t;
  t.ormel.db().Execute("update Model set CONTOURShow=1");
  t.ormel.solution = {
      .ValidSolution = true, .PathlinesValid = false, .GridValid = true, .ContoursValid = true};
  // Cells of 10 by 10 from -100 on; the contour runs along y = 5 from x = -50 to 50.
  std::string contour = "LEVEL 10.0\r\n";
  char line[64];
  for (int x = -50; x <= 50; x += 10) {
    std::snprintf(line, sizeof line, "      %14.4f%+14.4f\r\n", static_cast<double>(x), 5.0);
    contour += line;
  }
  WriteAll(t.dir / "town.CTR", contour);
  WriteAll(t.dir / "town.GRD", "DSAA\r\n21 21\r\n-100 100\r\n-100 100\r\n0 1\r\n");
  TurnOnLayer(t.ormel, Layer::kContours);
  EXPECT_EQ(t.Drawn("Contours").size(), 1U) << "no wall: one line";
  t.ormel.db().Execute("insert into NoFlowStrings (PID,Label) values (?,'wall')",
                       {t.AddPolygon("3,-80 3,80")});
  t.Redraw();
  const auto pieces = CallsOf(t.surface.picture, "Contours");
  ASSERT_EQ(pieces.size(), 2U);
  EXPECT_EQ(pieces[0].fine.back().x, 200.0) << "up to the cell of the wall";
  EXPECT_EQ(pieces[1].fine.front().x, 220.0) << "from behind it on";
  EXPECT_THAT(t.Drawn("Contour Labels").size(), 1U) << "named once";
}

TEST(Labels, KeepApartAndLieAboveThePaths) {
  MapProject t;
  t.ormel.layers.Switch(Layer::kWellLabels, true);
  for (int i = 0; i < 40; ++i) t.AddWell(i * 0.5, 0.0, "Well field " + std::to_string(i), 0.1);
  t.AddWell(-80.0, 80.0, "Alone", 0.1);
  t.Redraw();
  LabelPlacer placer;
  int labels = 0;
  for (const DrawCall& call : CallsOf(t.surface.picture, "Well Labels")) {
    ASSERT_EQ(call.kind, DrawKind::kText);
    EXPECT_TRUE(call.style.halo);
    const int width = t.surface.picture.TextWidth(call.text, call.style);
    const int left = call.points[0].x - (call.style.align == TextAlign::kRight ? width : 0);
    EXPECT_TRUE(placer.Take({left, call.points[0].y - call.style.height / 2, left + width, call.points[0].y}))
        << call.text << " lies over another label";
    ++labels;
  }
  EXPECT_GE(labels, 4);
  EXPECT_LT(labels, 41) << "where there is no room a label is left out";
  const auto layers = t.surface.picture.LayersDrawn();
  EXPECT_EQ(layers.back(), "Well Labels");
}

TEST(Labels, LeaveRoomForLegendAndScaleBar) {
  MapProject t;
  t.ormel.layers.Switch(Layer::kWellLabels, true);
  const Transaction command(t.ormel.db());
  for (int i = -9; i < 10; i += 2)
    for (int j = -9; j < 10; ++j) t.AddWell(i * 10.0, j * 10.0, "W", 0.1);
  RecordingDevice page(800, 800);
  ASSERT_TRUE(DrawMapOutput(t.ormel, t.map.state(), page,
                            {.legend = true, .legend_corner = LegendCorner::kUpperLeft, .scale_bar = true}));
  DevicePoint lower{};
  bool legend = false;
  for (const DrawCall& call : page.calls()) {
    if (call.kind == DrawKind::kLayer) legend = call.text == "Legend";
    if (legend && call.kind == DrawKind::kPolygon && lower.x == 0) lower = call.points.at(2);
  }
  ASSERT_GT(lower.x, 20);
  for (const DrawCall& call : CallsOf(page, "Well Labels"))
    if (call.kind == DrawKind::kText) {
      EXPECT_FALSE(call.points[0].x < lower.x && call.points[0].y - call.style.height / 2 < lower.y)
          << call.text;
    }
}

}  // namespace
}  // namespace ormel::test
