#include "core/layers.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "core/ormel.h"

namespace ormel {
namespace {

TEST(Layers, AreFoundByNameMenuAndNumber) {
  std::set<std::string> names;
  std::set<std::pair<std::string, int>> items;
  for (const LayerRow& row : LayerRows()) {
    if (row.kind == LayerKind::kMap) {
      EXPECT_TRUE(names.insert(std::string(row.name)).second) << row.name << " stands for two layers";
      ASSERT_NE(FindLayer(row.name), nullptr);
      EXPECT_EQ(FindLayer(row.name)->layer, row.layer);
    }
    if (row.control.empty()) continue;
    EXPECT_TRUE(items.insert({std::string(row.control), row.index}).second) << row.control << row.index;
    EXPECT_EQ(LayerOf(row.control, row.index), row.layer);
  }
  const std::pair<int, Layer> numbers[] = {{1, Layer::kElements},          {2, Layer::kContours},
                                           {3, Layer::kPathlines},         {4, Layer::kTestPoints},
                                           {5, Layer::kResultsOverlay},    {6, Layer::kCapzones},
                                           {7, Layer::kHydrographyLabels}, {8, Layer::kHypsographyLabels},
                                           {10, Layer::kToolbar},          {12, Layer::kManualRedraw}};
  for (const auto& [number, layer] : numbers) EXPECT_EQ(layermenu(number), layer) << number;
  for (const int command : {0, 9, 11, 13, 99}) EXPECT_FALSE(layermenu(command)) << command;
  EXPECT_EQ(LayerOf("PATHLINES", 0), Layer::kPathlines);
  EXPECT_EQ(FindLayer(""), nullptr) << "details have no name of their own";
}

TEST(Layers, ArePartOfOthers) {
  Ormel ormel;
  TurnOnLayer(ormel, Layer::kElements);
  EXPECT_TRUE(Shown(ormel, Layer::kWells));
  ormel.layers.Switch(Layer::kWells, false);
  EXPECT_FALSE(Shown(ormel, Layer::kWells));
  EXPECT_TRUE(Shown(ormel, Layer::kLinesinks));
  TurnOffLayer(ormel, Layer::kElements);
  EXPECT_FALSE(Shown(ormel, Layer::kLinesinks));
  EXPECT_FALSE(ormel.layers.Offered(Layer::kElements));
  EXPECT_TRUE(ormel.layers.On(Layer::kLinesinks)) << "its own switch stays";
}

}  // namespace
}  // namespace ormel
