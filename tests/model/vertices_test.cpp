#include "model/vertices.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/layers.h"
#include "model/linesinks.h"
#include "model/observations.h"
#include "one_commit.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

using Points = std::vector<MapPoint>;

std::vector<Seq> SeqsOf(Ormel& ormel, Pid pid) {
  std::vector<Seq> seqs;
  for (const VertexRow& row : VerticesOf(ormel, pid)) seqs.push_back(row.seq);
  return seqs;
}

class Vertices : public ::testing::Test {
 protected:
  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

TEST_F(Vertices, number_the_points_of_a_string_from_1_in_hundreds) {
  const Points points{{0, 0}, {1, 0}, {2, 0}};
  const Pid first = AddPolygonWithVertices(ormel, false, points);
  const Pid second = AddPolygonWithVertices(ormel, true, points);
  EXPECT_NE(first, second);
  EXPECT_EQ(SeqsOf(ormel, second), (std::vector<Seq>{1, 101, 201}));
  EXPECT_EQ(test.Number("select Closed from Polygons where PID=" + std::to_string(second)), 1.0);
  ElemAddVertex(ormel, {3, 0}, second, kAutomaticSeq);
  EXPECT_EQ(SeqsOf(ormel, second).back(), 301);
  const Vid well = ElemAddVertex(ormel, {9, 9}, kSinglePoint, 0);
  VertexRow row;
  ASSERT_TRUE(FindVertex(ormel, well, row));
  EXPECT_EQ(row.seq, 0);
  EXPECT_EQ(row.pid, kSinglePoint);
}

TEST_F(Vertices, never_get_the_identity_of_a_deleted_one) {
  const Vid gone = ElemAddVertex(ormel, {0, 0}, kSinglePoint, 0);
  DeleteVertex(ormel, gone);
  EXPECT_GT(ElemAddVertex(ormel, {0, 0}, kSinglePoint, 0), gone);
}

TEST_F(Vertices, resequence_keeps_the_order_and_stands_on_the_named_vertex) {
  const Pid pid = ElemAddPolygon(ormel, false);
  const Vid last = ElemAddVertex(ormel, {3, 0}, pid, 7);
  const Vid first = ElemAddVertex(ormel, {1, 0}, pid, 0);
  const Vid middle = ElemAddVertex(ormel, {2, 0}, pid, 6);
  const Pid other = AddPolygonWithVertices(ormel, false, Points{{0, 0}, {1, 1}});
  Resequence(ormel, pid, middle);
  const std::vector<VertexRow> rows = VerticesOf(ormel, pid);
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows[0].vid, first);
  EXPECT_EQ(rows[1].vid, middle);
  EXPECT_EQ(rows[2].vid, last);
  EXPECT_EQ(SeqsOf(ormel, pid), (std::vector<Seq>{100, 200, 300}));
  EXPECT_EQ(SeqsOf(ormel, other), (std::vector<Seq>{1, 101}));
  EXPECT_EQ(ormel.project.bound.Vertices->Get<Vid>("VID"), middle);
}

TEST_F(Vertices, find_the_nearest_strictly_within_the_radius) {
  const Vid left = ElemAddVertex(ormel, {-1, 0}, kSinglePoint, 0);
  const Vid right = ElemAddVertex(ormel, {1, 0}, kSinglePoint, 0);
  ormel.selection.radius_squared = 1.0;
  EXPECT_EQ(ElemFindVertex(ormel, {0, 0}), kNothingFound) << "on the radius is not within";
  EXPECT_EQ(ormel.project.bound.Vertices->Get<Vid>("VID"), left) << "the nearest all the same";
  ormel.selection.radius_squared = 1.0001;
  EXPECT_EQ(ElemFindVertex(ormel, {0, 0}), left) << "of two at one distance the first";
  EXPECT_EQ(ElemFindVertex(ormel, {0.1, 0}), right);
  EXPECT_EQ(ormel.project.bound.Vertices->Get<Vid>("VID"), right);
}

TEST_F(Vertices, find_labels_only_where_they_show) {
  const Vid vertex = ElemAddVertex(ormel, {5, 0}, kSinglePoint, 0);
  StoreTextLabel(ormel, {.Text = "Mill's pond"}, {9, 9});
  StoreTextLabel(ormel, {.Text = "river", .type = LabelType::kHydrography}, {3, 0});
  StoreTextLabel(ormel, {.Text = "town"}, {4, 0});
  ormel.selection.radius_squared = 100.0;
  EXPECT_EQ(ElemFindVertex(ormel, {3, 0}), kLabelFound);
  EXPECT_EQ(ormel.project.bound.TextLabels->Get<std::string>("Text"), "town");
  ormel.layers.Switch(Layer::kHydrographyLabels, true);
  EXPECT_EQ(ElemFindVertex(ormel, {3, 0}), kLabelFound);
  EXPECT_EQ(ormel.project.bound.TextLabels->Get<std::string>("Text"), "river");
  EXPECT_EQ(ElemFindVertex(ormel, {5, 0}), vertex);
  EXPECT_EQ(ElemFindVertex(ormel, {4.5, 0}), vertex) << "a label must be nearer than every vertex";
}

TEST_F(Vertices, move_new_points_off_those_that_stand) {
  struct Row {
    MapPoint wanted, given;
  };
  const Row kRows[] = {{{0, 0}, {2, 2}},  // the next place is taken as well
                       {{2, 0}, {2, 0}},  // exactly one tolerance away does not count
                       {{0.5, 0.5}, {2.5, 2.5}},
                       {{50, 50}, {50, 50}}};
  ormel.gui.VertexTolerance = 1.0;
  ElemAddVertex(ormel, {0, 0}, kSinglePoint, 0);
  ElemAddVertex(ormel, {1, 1}, kSinglePoint, 0);
  const std::string report = test.dir / "moved.txt";
  for (const Row& row : kRows) {
    EXPECT_EQ(ElemCheckVertices(ormel, row.wanted, report), row.given) << row.wanted.x;
    EXPECT_EQ(FreePlaces(ormel).Find(row.wanted), row.given) << row.wanted.x;
  }
  const std::string text = ReadAll(report);
  EXPECT_TRUE(text.starts_with("X:\t0\tY:\t0\t | X:\t2\tY:\t2\r\n")) << text;
  EXPECT_EQ(std::ranges::count(text, '\n'), 2) << "points that stay are not told";
  FreePlaces places(ormel);
  EXPECT_EQ(places.Find({50, 50}), (MapPoint{50, 50}));
  EXPECT_EQ(places.Find({50, 50}), (MapPoint{51, 51})) << "a place once given is taken";
}

TEST_F(Vertices, report_that_cannot_be_written_is_a_failure_with_its_name) {
  ormel.gui.VertexTolerance = 1.0;
  ElemAddVertex(ormel, {0, 0}, kSinglePoint, 0);
  const std::string report = test.dir / "no such folder/moved.txt";
  try {
    ElemCheckVertices(ormel, {0, 0}, report);
    FAIL() << "nothing was thrown";
  } catch (const std::exception& e) {
    EXPECT_NE(std::string(e.what()).find(report), std::string::npos) << e.what();
  }
}

TEST_F(Vertices, too_close_to_the_start_are_removed_and_later_ones_stay) {
  struct Row {
    const char* what;
    Points points, left;
  };
  // The running total is never reset: pairs late in a string stay.
  const Row kRows[] = {
      {"one point", {{0, 0}}, {{0, 0}}},
      {"even steps", {{0, 0}, {10, 0}, {20, 0}}, {{0, 0}, {10, 0}, {20, 0}}},
      {"second near the first", {{0, 0}, {0.1, 0}, {10, 0}}, {{0, 0}, {10, 0}}},
      {"two near the first", {{0, 0}, {0.1, 0}, {0.2, 0}, {20, 0}}, {{0, 0}, {20, 0}}},
      {"total carried on", {{0, 0}, {0.4, 0}, {0.5, 0}, {20, 0}}, {{0, 0}, {0.5, 0}, {20, 0}}},
      {"pair at the end", {{0, 0}, {10, 0}, {10.01, 0}}, {{0, 0}, {10, 0}, {10.01, 0}}},
  };
  for (const Row& row : kRows) {
    const Pid pid = AddPolygonWithVertices(ormel, false, row.points);
    const auto removed = row.points.size() - row.left.size();
    for (std::size_t i = 0; i < removed; ++i) test.ui.AnswerTo("Ormel", {Answer::kOk});
    test.ui.boxes.clear();
    ElemCheckPolyVertices(ormel, pid);
    EXPECT_EQ(PointsOf(ormel, pid), row.left) << row.what;
    EXPECT_EQ(test.ui.boxes.size(), removed) << row.what;
  }
  EXPECT_EQ(test.ui.LastText(), "");
}

TEST_F(Vertices, a_line_sink_string_of_one_point_goes_with_all_its_rows) {
  const Pid kept = StoreLinesink(ormel, {.Label = "kept"}, Points{{0, 0}, {1, 0}});
  const Pid phantom = StoreLinesink(ormel, {.Label = "phantom"}, Points{{5, 5}});
  EXPECT_FALSE(ElemCheckPhantomLinesinkVertices(ormel, kept));
  EXPECT_TRUE(test.ui.boxes.empty());
  EXPECT_TRUE(ElemCheckPhantomLinesinkVertices(ormel, phantom));
  EXPECT_EQ(test.ui.LastTitle(), "Warning");
  EXPECT_EQ(test.ui.LastText(),
            "The currently selected linesink string has only one point.  The string will be deleted.");
  EXPECT_EQ(test.Number("select count(*) from LinesinkStrings"), 1.0);
  EXPECT_EQ(test.Number("select count(*) from Polygons"), 1.0);
  EXPECT_EQ(test.Number("select count(*) from Vertices"), 2.0);
}

}  // namespace
}  // namespace ormel::test
