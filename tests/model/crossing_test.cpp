#include "model/crossing.h"

#include <gtest/gtest.h>

#include <vector>

#include "editing_fixture.h"
#include "model/barriers.h"
#include "model/digitize.h"
#include "model/inhomogeneities.h"
#include "model/move.h"
#include "model/vertices.h"
#include "model/wells.h"

namespace ormel::test {
namespace {

using Points = std::vector<MapPoint>;

TEST(Crossing, is_found_in_lines_and_rings_and_touching_is_none) {
  struct Row {
    const char* what;
    Points points;
    bool as_line, as_ring;
  };
  const double far = 5.4e6;
  for (const Row& row :
       {Row{"bow-tie", {{0, 0}, {10, 10}, {10, 0}, {0, 10}}, true, true},
        Row{"its closing side only", {{0, 0}, {10, 0}, {0, 10}, {10, 10}, {5, -5}}, true, true},
        Row{"ring that closes over a side", {{0, 0}, {10, 0}, {10, 10}, {5, -5}, {0, 10}}, true, true},
        Row{"open, its closing would cross", {{0, 0}, {4, 8}, {8, 0}, {10, 5}}, false, true},
        Row{"square", {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, false, false},
        Row{"vertex on a side", {{0, 0}, {10, 0}, {10, 10}, {5, 0}, {0, 10}}, false, false},
        Row{"closed by hand", {{0, 0}, {10, 0}, {10, 10}, {0, 0}}, false, false},
        Row{"far from the origin",
            {{far, far}, {far + 1, far}, {far + 1, far + 1}, {far, far + 1}},
            false,
            false},
        Row{"two points", {{0, 0}, {1, 1}}, false, false}}) {
    EXPECT_EQ(CrossesItself(row.points, false), row.as_line) << row.what;
    EXPECT_EQ(CrossesItself(row.points, true), row.as_ring) << row.what;
  }
}

class CrossingEdits : public EditingProject {
 protected:
  void Click(double x, double y) {
    ormel.mouse.LastX = x;
    ormel.mouse.LastY = y;
    ElemAddInhoVertex(ormel, !ormel.mouse.LineInProgress);
  }
};

TEST_F(CrossingEdits, a_ring_is_refused_where_it_is_drawn) {
  test.ui.OnForm("Inhomogeneity", Fill({{"tbLabel", "gravel"}}));
  ElemAddInhomogeneity(ormel);
  const Pid pid = ormel.mouse.CurrentPID;
  Click(0, 0);
  Click(40, 80);
  Click(80, 0);
  Click(20, 90);  // over the first side
  EXPECT_EQ(test.ui.LastTitle(), "Crossing Lines");
  EXPECT_EQ(PointsOf(ormel, pid).size(), 3U);
  Click(100, 50);
  ElemEndInhomogeneity(ormel);  // back to the first vertex across the sides
  EXPECT_EQ(test.ui.boxes.size(), 2U);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kDigitize) << "drawing goes on";
  Click(100, -50);
  ElemEndInhomogeneity(ormel);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kSelect);
  EXPECT_FALSE(CrossesItself(PointsOf(ormel, pid), true));
  EXPECT_EQ(test.ui.boxes.size(), 2U);
}

TEST_F(CrossingEdits, a_vertex_is_not_moved_where_its_lines_would_cross) {
  StoreInhomogeneity(ormel, {.Label = "a"}, Points{{0, 0}, {100, 0}, {100, 100}, {0, 100}});
  const Pid other =
      StoreInhomogeneity(ormel, {.Label = "b"}, Points{{100, 0}, {200, 0}, {200, 100}, {100, 100}});
  SelectAt(0, 0);
  ElemEndMove(ormel, {0, 0}, {50, 150});
  EXPECT_EQ(test.ui.LastTitle(), "Crossing Lines");
  EXPECT_EQ(test.Number("select count(*) from Vertices where X=50"), 0.0);
  test.ui.boxes.clear();
  SelectAt(100, 0);  // shared: fine for "a", not for "b"
  ElemEndMove(ormel, {100, 0}, {300, 90});
  EXPECT_EQ(test.ui.boxes.size(), 1U);
  EXPECT_EQ(PointsOf(ormel, other).front().x, 100.0);
  SelectAt(0, 0);
  ElemEndMove(ormel, {0, 0}, {-50, -50});
  EXPECT_EQ(test.ui.boxes.size(), 1U);
  EXPECT_EQ(test.Number("select count(*) from Vertices where X=-50"), 1.0);
}

TEST_F(CrossingEdits, several_are_not_moved_where_a_domain_that_shares_their_corner_would_cross_itself) {
  const Pid moved = StoreInhomogeneity(ormel, {.Label = "a"}, Points{{0, 0}, {100, 0}, {100, 100}, {0, 100}});
  const Pid pulled =
      StoreInhomogeneity(ormel, {.Label = "b"}, Points{{100, 100}, {200, 100}, {200, 200}, {100, 200}});
  const Vid well = StoreWell(ormel, {.Label = "w", .Radius = 0.3}, {20, 20});
  SelectItems(ormel, {{Element::kInhomogeneity, moved}, {Element::kWell, well}});
  ElemEndMove(ormel, {0, 0}, {300, 60});
  EXPECT_EQ(test.ui.LastTitle(), "Crossing Lines");
  EXPECT_EQ(PointsOf(ormel, moved).front().x, 0.0);
  EXPECT_EQ(PointsOf(ormel, pulled).front().x, 100.0);
  test.ui.boxes.clear();
  ElemEndMove(ormel, {0, 0}, {-30, 0});
  EXPECT_TRUE(test.ui.boxes.empty()) << test.ui.LastText();
  EXPECT_EQ(PointsOf(ormel, pulled).front().x, 70.0);
}

}  // namespace
}  // namespace ormel::test
