// What the panels beside the map show: layers with their switches, and what the last solve gave.
#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "core/run_files.h"
#include "model/linesinks.h"
#include "model/wells.h"
#include "shell/context_menu.h"
#include "shell/layer_list.h"
#include "shell/menus.h"
#include "shell/results_log.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

TEST(LayerPanelData, every_layer_of_the_map_is_listed_once_below_the_one_it_belongs_to) {
  TestProject p;
  OfferLayers(p.ormel, true);
  std::set<Layer> listed;
  std::vector<Layer> above;
  for (const ListedLayer& item : LayerList(p.ormel)) {
    EXPECT_TRUE(listed.insert(item.layer).second) << item.caption;
    above.resize(static_cast<std::size_t>(item.depth));
    EXPECT_EQ(RowOf(item.layer).parent, above.empty() ? item.layer : above.back()) << item.caption;
    above.push_back(item.layer);
    EXPECT_EQ(item.caption.find_first_of("&."), std::string::npos) << item.caption;
  }
  for (const LayerRow& row : LayerRows())
    EXPECT_EQ(listed.count(row.layer), row.kind == LayerKind::kMap) << row.caption;
}

TEST(LayerPanelData, a_switch_does_what_the_menu_does_and_rests_when_that_rests) {
  TestProject p;
  OfferLayers(p.ormel, true);
  const auto find = [&](Layer layer) {
    for (const ListedLayer& item : LayerList(p.ormel))
      if (item.layer == layer) return item;
    throw std::out_of_range("layer");
  };
  EXPECT_TRUE(find(Layer::kWells).on);
  SwitchLayer(p.ormel, Layer::kWells);
  EXPECT_FALSE(find(Layer::kWells).on);
  EXPECT_EQ(p.view.zooms.back(), Zoom::kRedrawInPlace);
  EXPECT_FALSE(find(Layer::kContours).offered);
  EXPECT_EQ(find(Layer::kContours).why, "solve the model first");
  const bool was = find(Layer::kContours).on;
  SwitchLayer(p.ormel, Layer::kContours);
  EXPECT_EQ(find(Layer::kContours).on, was);
}

TEST(ResultsPanelData, remarks_lead_to_the_elements_that_they_name) {
  TestProject p;
  const Vid well = StoreWell(p.ormel, {.Label = "Town", .Head = 5, .Radius = 0.3}, {5000, 20});
  ASSERT_EQ(well, 1);
  EXPECT_EQ(ResultsLog(p.ormel)[0].lines[0].text, "The model has not been solved.");
  const std::string key = ResultsKey(p.ormel);
  std::ofstream(ModelFile(p.ormel, "ERROR.LOG"))
      << "*\n warning: WL_000001 runs dry\n nothing of an element\n*\n";
  std::ofstream(StemFile(p.ormel, ".OUT"))
      << "Water balance\n  wells   5.0E+00\n  error over throughflow  2E-02\n"
         "Largest errors\n  head at wells   1.2E-05 at WL_000001\n";
  EXPECT_NE(ResultsKey(p.ormel), key);
  p.ormel.solution.ValidSolution = p.ormel.solution.OfOlderModel = true;
  const std::vector<LogSection> log = ResultsLog(p.ormel);
  ASSERT_EQ(log.size(), 4U);
  EXPECT_TRUE(log[0].lines[0].warning);
  EXPECT_NE(log[0].lines[0].text.find("Out of date"), std::string::npos);
  ASSERT_EQ(log[1].lines.size(), 2U);
  EXPECT_NE(log[1].lines[0].text.find("Town (WL_000001)"), std::string::npos);
  ASSERT_TRUE(log[1].lines[0].place);
  EXPECT_FALSE(log[1].lines[1].place);
  EXPECT_EQ(log[2].lines[0].text, "head at wells at Town");
  ASSERT_TRUE(log[2].lines[0].place);
  EXPECT_EQ(log[3].lines[0].value, "5.000 m^3/day");
  EXPECT_TRUE(log[3].lines[1].warning) << "2 percent are missing";
  // The window goes there, and keeps its scale.
  p.ormel.window.SolveWindow = {0, 100, 100, 0};
  ShowNamed(p.ormel, *log[1].lines[0].place);
  EXPECT_EQ(p.ormel.selection.vid, well);
  EXPECT_EQ(p.view.zooms.back(), Zoom::kApplyWindow);
  EXPECT_EQ(p.view.last_rect, (MapRect{4950, 5050, 70, -30}));
  p.view.zooms.clear();
  p.ormel.window.SolveWindow = p.view.last_rect;
  ShowNamed(p.ormel, *log[1].lines[0].place);
  EXPECT_TRUE(p.view.zooms.empty()) << "it is in view already";
}

TEST(ContextMenu, offers_what_can_be_done_at_a_place_and_nothing_else) {
  TestProject p;
  p.ormel.selection.radius_squared = 4.0;
  const Vid well = StoreWell(p.ormel, {.Label = "Town", .Head = 5, .Radius = 0.3}, {10, 10});
  StoreLinesink(p.ormel, {.Label = "brook"}, std::vector<MapPoint>{{50, 50}, {60, 50}});
  const auto captions = [&](MapPoint at) {
    std::set<std::string> texts;
    for (const ContextItem& item : ContextMenu(p.ormel, at)) {
      EXPECT_TRUE(ItemEnabled(p.ormel, *item.item)) << item.caption;
      texts.insert(item.caption);
    }
    return texts;
  };
  EXPECT_EQ(captions({90, 90}).count("&Delete Well"), 0U);
  EXPECT_EQ(captions({90, 90}).count("New &Well"), 1U);
  EXPECT_EQ(captions({11, 10}).count("&Delete Well"), 1U);
  EXPECT_EQ(p.ormel.selection.vid, well);
  EXPECT_EQ(captions({90, 90}).count("&Delete Well"), 1U) << "the selection stays";
  EXPECT_TRUE(OffersContextMenu(p.ormel, {11, 10}));
  EXPECT_FALSE(OffersContextMenu(p.ormel, {50, 50})) << "the click opens the string's information";
  p.ormel.mouse.MouseMode = MouseMode::kDigitize;
  EXPECT_FALSE(OffersContextMenu(p.ormel, {90, 90})) << "the click ends the string";
}

}  // namespace
}  // namespace ormel::test
