#include "view/map_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/layers.h"
#include "view/map_fixture.h"
#include "view/map_legend.h"

namespace ormel::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(MapOutput, RoundsTheScaleBarDown) {
  const double cases[][2] = {{1.0, 1.0}, {1.99, 1.0}, {2.0, 2.0},   {4.99, 2.0}, {5.0, 5.0},
                             {9.9, 5.0}, {730, 500},  {0.03, 0.02}, {0.0, 0.0},  {-1.0, 0.0}};
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(RoundLength(c[0]), c[1]) << c[0];
}

TEST(MapOutput, DrawsTheMapWithWhatStandsAroundIt) {
  MapProject t;
  t.AddWell(0, 0, "North");
  RecordingDevice page(800, 600);
  const MapRect window = t.ormel.window.SolveWindow;
  ASSERT_TRUE(DrawMapOutput(t.ormel, t.map.state(), page,
                            {.title = "Well field",
                             .legend = true,
                             .scale_bar = true,
                             .north_arrow = true,
                             .margins = PageMargins{1, 1, 1, 1},
                             .box = true}));
  EXPECT_EQ(t.ormel.window.SolveWindow, window) << "the window of the screen stays";
  EXPECT_THAT(page.LayersDrawn(),
              ElementsAre("Wells", "Text", "Legend", "Scale Bar", "North Arrow", "Frame", "Title"));
  // The page of 800 by 600 pixels less an inch each way, and less 32 pixels for the title.
  EXPECT_TRUE(page.Drew("clip 96,128 704,504"));
  EXPECT_TRUE(page.Drew("line 0 96,128 704,128 704,504 96,504 96,128"));
  EXPECT_TRUE(page.Drew("text \"Well field\" at 400,115 0 h18 centre Arial bold"));
  // 376 pixels show 200 m; 0.3 of the width of 608 pixels is 97 m, so the bar has 50 m in 94 pixels.
  EXPECT_THAT(page.Layer("Scale Bar"), Contains("text \"50 meters\" at 216,483 0 h11 centre Arial"));
  EXPECT_THAT(page.Layer("Legend"), Contains(::testing::HasSubstr("\"Well\"")));
  EXPECT_THAT(page.Layer("Wells"), ElementsAre("circle 5 at 400,316 r19"));

  RecordingDevice bare(400, 400);
  ASSERT_TRUE(DrawMapOutput(t.ormel, t.map.state(), bare, {.window = MapRect{-10, 10, 10, -10}}));
  EXPECT_THAT(bare.LayersDrawn(), ElementsAre("Wells", "Text"));
  EXPECT_TRUE(bare.Drew("circle 5 at 200,200 r200"));
  RecordingDevice small(150, 150);
  EXPECT_FALSE(DrawMapOutput(t.ormel, t.map.state(), small, {.margins = PageMargins{1, 1, 1, 1}}))
      << "margins that leave no room";
}

TEST(MapOutput, LegendNamesOnlyWhatIsShown) {
  MapProject t;
  const auto texts = [&] {
    std::vector<std::string> list;
    for (const LegendEntry& entry : LegendOf(t.ormel, t.map.state())) list.push_back(entry.text);
    return list;
  };
  EXPECT_THAT(texts(), IsEmpty());
  t.AddWell(0, 0, "North");
  t.AddWell(0, 0, "Mirror_North");
  t.ormel.db().Execute("insert into LinesinkStrings (PID,Label,Drain) values (1,'a',null)");
  t.ormel.db().Execute("insert into LinesinkStrings (PID,Label,Drain) values (2,'b',1)");
  t.ormel.solution = {.ValidSolution = true, .TimeTicSpacing = 365.0};
  t.ormel.layers.Switch(Layer::kPathlines, true);
  t.ormel.layers.Switch(Layer::kTimeTics, true);
  EXPECT_THAT(texts(), ElementsAre("Well", "Image well", "Linesink, head specified", "Drain",
                                   "Pathline of 3650 days", "Time mark every 365 days"));
  t.ormel.layers.Switch(Layer::kElements, false);
  EXPECT_THAT(texts(), ElementsAre("Pathline of 3650 days", "Time mark every 365 days"));
}

}  // namespace
}  // namespace ormel::test
