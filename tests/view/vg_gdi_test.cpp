#include "view/vg_gdi.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "support/fakes.h"
#include "support/recording_device.h"

namespace ormel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Layer : TestController {
  RecordingDevice device{400, 400};
  VgGdi vg{ormel};
  MapRect window{-100.0, 100.0, 100.0, -100.0};
  Layer() { vg.vgGDIInitObject(device, window); }
};

struct ShapeCase {
  const char* what;
  int width, height;
  MapRect given, fitted;
};

TEST(VgGdi, WidensTheShorterSideOfTheWindow) {
  const ShapeCase cases[] = {
      {"square on a wide target grows in x", 800, 400, {0, 100, 100, 0}, {-50, 150, 100, 0}},
      {"square on a high target grows in y", 400, 800, {0, 100, 100, 0}, {0, 100, 150, -50}},
      {"flat window on a square grows in y", 400, 400, {0, 100, 10, 0}, {0, 100, 55, -45}},
      {"narrow window on a square grows in x", 400, 400, {0, 10, 100, 0}, {-45, 55, 100, 0}},
      {"a window that fits stays", 800, 400, {0, 200, 100, 0}, {0, 200, 100, 0}},
  };
  for (const ShapeCase& c : cases) {
    TestController t;
    RecordingDevice device(c.width, c.height);
    VgGdi vg(t.ormel);
    MapRect window = c.given;
    EXPECT_EQ(vg.vgGDIInitObject(device, window), VgInit::kDone) << c.what;
    EXPECT_EQ(window, c.fitted) << c.what;
    const MapRect first = window;
    vg.vgGDIInitObject(device, window);
    EXPECT_EQ(window, first) << c.what << ": the same window set twice";
  }
}

TEST(VgGdi, AWindowWithoutWidthLeavesTheMappingInForce) {
  Layer t;
  MapRect flat{5.0, 5.0, 10.0, 0.0};
  EXPECT_EQ(t.vg.vgGDIInitObject(t.device, flat), VgInit::kUnchanged);
  EXPECT_EQ(flat, (MapRect{5.0, 5.0, 10.0, 0.0}));
  EXPECT_EQ(t.vg.vgGDIWorldToDevice(0.0, 0.0), (DevicePoint{200, 200}));
}

TEST(VgGdi, TurnsWorldIntoDeviceAndBack) {
  Layer t;
  EXPECT_EQ(t.vg.vgGDIWorldToDevice(-100.0, -100.0), (DevicePoint{0, 400}));
  EXPECT_EQ(t.vg.vgGDIWorldToDevice(100.0, 100.0), (DevicePoint{400, 0}));
  EXPECT_EQ(t.vg.vgGDIWorldToDevice(10.0, 30.0), (DevicePoint{220, 140}));
  EXPECT_DOUBLE_EQ(t.vg.vgGDIDeviceToWorldX(220, false), 10.0);
  EXPECT_DOUBLE_EQ(t.vg.vgGDIDeviceToWorldY(140, false), 30.0);
  EXPECT_DOUBLE_EQ(t.vg.vgGDIPixelSize(), 0.5);
  EXPECT_EQ(t.vg.PointUnit(), 13);
  t.vg.SetGridSpacing(10.0);
  EXPECT_DOUBLE_EQ(t.vg.vgGDIDeviceToWorldX(209, true), 0.0);
  EXPECT_DOUBLE_EQ(t.vg.vgGDIDeviceToWorldX(210, true), 10.0) << "half a cell goes up";
  EXPECT_DOUBLE_EQ(t.vg.vgGDIDeviceToWorldX(189, true), -10.0) << "downward below zero";
}

TEST(VgGdi, SaysOnceThatTheZoomEndsAndKeepsTheLastPosition) {
  Layer t;
  const DevicePoint last = t.vg.vgGDIWorldToDevice(1.0, 1.0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(t.vg.vgGDIWorldToDevice(1e12, 0.0), last);
  ASSERT_EQ(t.ui.boxes.size(), 1U);
  EXPECT_THAT(t.ui.LastText(), ::testing::HasSubstr("Can't zoom in any further!"));
  for (const MapRect& hopeless : {MapRect{0, 0.001, 0.001, 0}, MapRect{0, 1e9, 1e9, 0}}) {
    MapRect window = hopeless;
    EXPECT_EQ(t.vg.vgGDIInitObject(t.device, window), VgInit::kOverflow);
    EXPECT_EQ(window, hopeless);
  }
  EXPECT_EQ(t.vg.vgGDIWorldToDevice(0.0, 0.0), (DevicePoint{200, 200})) << "the mapping stays";
}

TEST(VgGdi, TellsWhatIsInView) {
  Layer t;
  EXPECT_TRUE(t.vg.vgGDIInView(-50, 0, 450, -50));
  EXPECT_TRUE(t.vg.vgGDIInView(100, 200, 300, 100));
  EXPECT_FALSE(t.vg.vgGDIInView(-50, -1, 300, 100));
  EXPECT_FALSE(t.vg.vgGDIInView(100, 200, 500, 401));
}

TEST(VgGdi, DrawsLongLinesInPiecesThatShareTheirEnds) {
  Layer t;
  std::vector<MapPoint> points;
  for (int i = 0; i < 12000; ++i) points.push_back({(i % 2) * 50.0, std::fmod(i * 0.5, 90.0)});
  t.vg.vgGDIPolyline(points, PenStyle::kSolid, 1.0, QBColor(1));
  ASSERT_EQ(t.device.calls().size(), 3U);
  std::size_t total = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    total += t.device.calls()[i].points.size();
    if (i > 0) {
      EXPECT_EQ(t.device.calls()[i].points.front(), t.device.calls()[i - 1].points.back());
    }
  }
  EXPECT_EQ(total, 12000U + 2U);
  t.device.Reset();
  points.resize(5000);
  t.vg.vgGDIPolyline(points, PenStyle::kSolid, 1.0, QBColor(1));
  EXPECT_EQ(t.device.calls().size(), 1U);
}

TEST(VgGdi, DenseLinesKeepTheirEndsAndLoseTheStairsOfRounding) {
  Layer t;
  std::vector<MapPoint> points;
  for (int i = 0; i <= 1000; ++i) points.push_back({i * 0.05, i * 0.025});
  t.vg.vgGDIPolyline(points, PenStyle::kSolid, 1.0, QBColor(1));
  ASSERT_EQ(t.device.calls().size(), 1U);
  const auto& drawn = t.device.calls()[0].points;
  EXPECT_EQ(drawn.front(), (DevicePoint{200, 200}));
  EXPECT_EQ(drawn.back(), (DevicePoint{300, 150}));
  EXPECT_LT(drawn.size(), 60U);
  for (const DevicePoint& p : drawn) EXPECT_LE(std::abs((p.x - 200) * 0.5 - (200 - p.y)), 1.0);
  t.device.Reset();
  t.vg.vgGDILine({0, 0}, {0.1, 0.1}, PenStyle::kSolid, 1.0, QBColor(1));
  EXPECT_EQ(t.device.Lines(), (std::vector<std::string>{"line 1 200,200 200,200"})) << "a dot";
}

TEST(VgGdi, LinesFromFarAwayCrossTheViewWhereTheyShould) {
  Layer t;
  // Through (0, 50): from far left to far right, its slope 1/1e7.
  t.vg.vgGDILine({-1e9, 50.0 - 100.0}, {1e9, 50.0 + 100.0}, PenStyle::kSolid, 1.0, QBColor(1));
  ASSERT_EQ(t.device.calls().size(), 1U);
  for (const DevicePoint& p : t.device.calls()[0].points) {
    EXPECT_EQ(p.y, 100);
    EXPECT_LT(std::abs(p.x), 20000);
  }
  EXPECT_LT(t.device.calls()[0].points.front().x, 0);
  EXPECT_GT(t.device.calls()[0].points.back().x, 400);
  t.device.Reset();
  const MapPoint far_area[] = {{-1e9, -1e9}, {1e9, -1e9}, {1e9, 0.0}, {-1e9, 0.0}};
  t.vg.vgGDIPolygon(far_area, PenStyle::kSolid, 1.0, QBColor(1), QBColor(7));
  ASSERT_EQ(t.device.calls().size(), 1U);
  int top = 1000;
  for (const DevicePoint& p : t.device.calls()[0].points) top = std::min(top, p.y);
  EXPECT_EQ(top, 200) << "the upper edge lies at y = 0";
  EXPECT_THAT(t.ui.boxes, IsEmpty());
}

TEST(VgGdi, LeavesOutWhatLiesOutsideTheView) {
  Layer t;
  t.vg.vgGDILine({200, 0}, {300, 0}, PenStyle::kSolid, 1.0, QBColor(1));
  t.vg.vgGDICircle({200, 0}, 50, PenStyle::kSolid, 1.0, QBColor(1));
  t.vg.vgGDISymbol({200, 0}, VgSymbol::kDot, QBColor(1), QBColor(1));
  t.vg.vgGDItext("far", {2000, 0}, {});
  t.vg.vgGDILine({NAN, 0}, {NAN, 5}, PenStyle::kSolid, 1.0, QBColor(1));
  EXPECT_THAT(t.device.Lines(), IsEmpty());
}

TEST(VgGdi, DrawsTheElevenSymbolsAsShapesAroundTheirPlace) {
  // At 96 dots per inch a 10-point size has 13 pixels: d is 4, 5, 2, 7, 3 or 8 pixels.
  const struct {
    VgSymbol symbol;
    std::vector<std::string> lines;
  } cases[] = {
      {VgSymbol::kFilledDiamond, {"area 4 fill 2 204,200 200,196 196,200 200,204"}},
      {VgSymbol::kDiamond, {"line 4 204,200 200,196 196,200 200,204 204,200"}},
      {VgSymbol::kCircleDiagonalCross,
       {"circle 4 at 200,200 r5", "line 4 195,195 205,205", "line 4 195,205 205,195"}},
      {VgSymbol::kCircleUprightCross,
       {"circle 4 at 200,200 r5", "line 4 195,200 205,200", "line 4 200,205 200,195"}},
      {VgSymbol::kDot, {"circle 4 style5 at 200,200 r2 fill 2"}},
      {VgSymbol::kDiagonalCross, {"line 4 195,195 205,205", "line 4 195,205 205,195"}},
      {VgSymbol::kUprightCross, {"line 4 195,200 205,200", "line 4 200,205 200,195"}},
      {VgSymbol::kCircle, {"circle 4 at 200,200 r3"}},
      {VgSymbol::kDoubleDiamond,
       {"area 4 fill 2 208,200 200,192 192,200 200,208",
        "area 4 fill 4 200,200 196,196 200,192 204,196 200,200"}},
      {VgSymbol::kDiamondWithLine,
       {"area 4 fill 2 204,200 200,196 196,200 200,204", "line 4 200,204 200,196"}},
  };
  for (const auto& c : cases) {
    Layer t;
    t.vg.vgGDISymbol({0, 0}, c.symbol, QBColor(4), QBColor(2));
    EXPECT_EQ(t.device.Lines(), c.lines) << static_cast<int>(c.symbol);
  }
  Layer t;
  t.vg.vgGDISymbol({0, 0}, VgSymbol::kArrow, QBColor(2), QBColor(2), 90.0);
  EXPECT_TRUE(t.device.Drew("line 2 200,200 200,174"))
      << "the shaft points north: " << ::testing::PrintToString(t.device.Lines());
}

TEST(VgGdi, WritesTextBySizeAndAlignment) {
  const struct {
    int alignment;
    const char* word;
  } cases[] = {{0, ""}, {1, " centre"}, {4, " centre"}, {2, " right"}};
  for (const auto& c : cases) {
    Layer t;
    t.vg.vgGDItext("12.3", {10, 0},
                   {.size = 12, .bold = true, .color = QBColor(1), .angle = 45.0, .alignment = c.alignment});
    EXPECT_THAT(t.device.Lines(),
                ElementsAre(std::string("text \"12.3\" at 220,200 1 h15 a45") + c.word + " Arial bold"));
  }
}

TEST(VgGdi, DrawsTheEditorGridWithItsAxes) {
  Layer t;
  MapRect window{-100.0, 100.0, 100.0, -100.0};
  t.vg.vgGDIInitObject(t.device, window, true, 50.0);
  const auto lines = t.device.Layer("Editor Grid");
  ASSERT_EQ(lines.size(), 12U) << "five lines and an axis each way";
  EXPECT_EQ(lines.front(), "line 7 style2 0,400 0,0");
  EXPECT_EQ(lines[5], "line 7 200,400 200,0");
  t.vg.vgGDIInitObject(t.device, window, true, 0.0);
  EXPECT_EQ(t.ui.LastTitle(), "Illegal Value");
  EXPECT_EQ(t.ui.LastText(), "Internal Error in vgGDIInitObject -- illegal grid spacing!");
  EXPECT_TRUE(t.vg.Ready());
  t.device.Reset();
  t.vg.vgGDIInitObject(t.device, window, true, 1e-9);
  EXPECT_EQ(t.device.Layer("Editor Grid").size(), 44U) << "every ten-thousand-millionth, and the axes";
}

TEST(VgGdi, LeavesTheMarginsOfAPageFree) {
  TestController t;
  RecordingDevice page(850, 1100, 100);
  VgGdi vg(t.ormel);
  MapRect window{0.0, 650.0, 800.0, 0.0};
  vg.vgGDIInitPrinter(page, window, {1.0, 1.0, 2.0, 1.0});
  EXPECT_EQ(window, (MapRect{0.0, 650.0, 800.0, 0.0}));
  EXPECT_EQ(vg.vgGDIWorldToDevice(0.0, 0.0), (DevicePoint{100, 1000}));
  EXPECT_EQ(vg.vgGDIWorldToDevice(650.0, 800.0), (DevicePoint{750, 200}));
  EXPECT_DOUBLE_EQ(vg.vgGDIDeviceToWorldX(100, false), 0.0);
}

}  // namespace
}  // namespace ormel::test
