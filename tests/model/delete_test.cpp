// Deleting one element, one vertex, and in bulk.
#include "model/delete.h"

#include <filesystem>

#include "editing_fixture.h"
#include "model/barriers.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/observations.h"
#include "model/uniform_flow.h"
#include "model/vertices.h"
#include "model/wells.h"

namespace ormel::test {
namespace {

using Points = std::vector<MapPoint>;
using Deleting = EditingProject;

TEST_F(Deleting, points_are_deleted_after_a_question) {
  struct Row {
    double x;
    const char *question, *table;
    bool valid;
  };
  const Row kRows[] = {{0, "Delete this element?", "Wells", false},
                       {20, "Delete this test point?", "TestPoints", true},
                       {30, "Delete this particle?", "Particles", true},
                       {40, "Delete this label?", "TextLabels", true},
                       {50, "Delete this element?", "Wells", true}};
  StoreWell(ormel, {.Label = "a"}, {0, 0});
  StoreTestPoint(ormel, {}, {20, 0});
  StoreParticle(ormel, {}, {30, 0});
  StoreTextLabel(ormel, {.Text = "x"}, {40, 0});
  StoreWell(ormel, {.Label = "Mirror_b"}, {50, 0});
  for (const Row& row : kRows) {
    ormel.solution.ValidSolution = true;
    const double before = Count(row.table);
    SelectAt(row.x, 0);
    const Selection selected = Selected();
    test.ui.AnswerTo("Confirm", {Answer::kCancel, Answer::kOk});
    ElemDeleteElements(ormel);
    EXPECT_EQ(test.ui.LastText(), row.question);
    EXPECT_EQ(Count(row.table), before);
    EXPECT_EQ(Selected().SelectedType, selected.SelectedType) << "Cancel leaves the selection";
    if (!row.valid) test.ui.AnswerTo("Model Changed!", {Answer::kYes});
    ElemDeleteElements(ormel);
    EXPECT_EQ(Count(row.table), before - 1) << row.question;
    EXPECT_EQ(Selected().SelectedType, Element::kNone);
    EXPECT_EQ(ormel.activity, "Select");
    EXPECT_EQ(ormel.solution.ValidSolution, row.valid) << row.question;
  }
  EXPECT_EQ(Count("Vertices"), 0.0);
}

TEST_F(Deleting, strings_lose_a_vertex_or_go_as_a_whole) {
  struct Row {
    Element element;
    const char *table, *question;
    bool whole_valid, vertex_valid;
    const char* vertex_box;
  };
  const char* string = "Delete this vertex or the entire string?";
  const Row kRows[] = {
      {Element::kLinesink, "LinesinkStrings", string, false, false, "Model Changed!"},
      {Element::kBarrier, "NoFlowStrings", string, false, false, "Model Changed!"},
      {Element::kInhomogeneity, "Inhomogeneities", string, false, false, "Model Changed!"},
      {Element::kFluxLine, "FluxInspect", "Delete this vertex or the flux inspection line?", false, true,
       "Please Note"},
      {Element::kCapzone, "Capzones", "Delete this vertex or the entire protection area?", true, true, ""}};
  const Points points{{10, 0}, {20, 0}, {30, 0}};
  StoreLinesink(ormel, {.Label = "a"}, points);
  StoreBarrier(ormel, {.Label = "a"}, Points{{10, 100}, {20, 100}, {30, 100}});
  StoreInhomogeneity(ormel, {.Label = "a"}, Points{{10, 200}, {20, 200}, {30, 200}});
  StoreFluxLine(ormel, "a", Points{{10, 300}, {20, 300}, {30, 300}});
  StoreCapzone(ormel, "a", Points{{10, 400}, {20, 400}, {30, 400}});
  double y = 0;
  for (const Row& row : kRows) {
    const auto act = [&](const char* button, double x, bool valid) {
      ormel.solution.ValidSolution = true;
      test.ui.boxes.clear();
      if (!valid) test.ui.AnswerTo("Model Changed!", {Answer::kYes});
      SelectAt(x, y);
      ASSERT_EQ(Selected().SelectedType, row.element);
      test.ui.OnForm("LSConfirm", [&](Form& form) {
        EXPECT_EQ(form.State("Message").caption, row.question);
        form.Click(button);
      });
      ElemDeleteElements(ormel);
      EXPECT_EQ(ormel.solution.ValidSolution, valid) << row.table << button;
    };
    act("Cancel", 20, true);
    EXPECT_EQ(Selected().SelectedType, row.element);
    const Pid pid = Selected().pid;
    act("cmdVertex", 20, row.vertex_valid);
    EXPECT_EQ(test.ui.LastTitle(), row.vertex_box);
    const std::vector<VertexRow> left = VerticesOf(ormel, pid);
    ASSERT_EQ(left.size(), 2U);
    EXPECT_EQ(left[0].seq, 100);
    EXPECT_EQ(left[1].seq, 200);
    EXPECT_EQ(left[1].at.x, 30.0);
    act("cmdWhole", 30, row.whole_valid);
    EXPECT_EQ(Count(row.table), 0.0) << row.table;
    y += 100;
  }
  EXPECT_EQ(Count("Polygons"), 0.0);
  EXPECT_EQ(Count("Vertices"), 0.0);
}

TEST_F(Deleting, shared_corner_is_deleted_from_every_domain) {
  const Pid left = StoreInhomogeneity(ormel, {.Label = "left"}, Points{{0, 0}, {10, 0}, {10, 10}, {0, 10}});
  const Pid right =
      StoreInhomogeneity(ormel, {.Label = "right"}, Points{{20, 0}, {10, 0}, {10, 10}, {20, 10}});
  SelectAt(10, 0);
  test.ui.OnForm("LSConfirm", [](Form& form) { form.Click("cmdVertex"); });
  ElemDeleteElements(ormel);
  EXPECT_EQ(PointsOf(ormel, left), (Points{{0, 0}, {10, 10}, {0, 10}}));
  EXPECT_EQ(PointsOf(ormel, right), (Points{{20, 0}, {10, 10}, {20, 10}}));
}

TEST_F(Deleting, string_left_with_one_point_goes) {
  StoreBarrier(ormel, {.Label = "wall"}, Points{{0, 0}, {10, 0}});
  SelectAt(10, 0);
  test.ui.OnForm("LSConfirm", [](Form& form) { form.Click("cmdVertex"); });
  ElemDeleteElements(ormel);
  for (const char* table : {"NoFlowStrings", "Polygons", "Vertices"}) EXPECT_EQ(Count(table), 0.0) << table;
}

TEST_F(Deleting, uniform_flow_is_removed_with_its_point) {
  StoreUniformFlow(ormel, {0, 0}, 10, 0.001, 30);
  SelectAt(0, 0);
  test.ui.AnswerTo("Confirm", {Answer::kCancel, Answer::kOk});
  ElemDeleteElements(ormel);
  EXPECT_EQ(test.ui.LastTitle(), "Operation canceled");
  ElemDeleteElements(ormel);
  EXPECT_EQ(ReadModel(ormel).UNIFLOWCompute, 0);
  EXPECT_EQ(Count("Vertices"), 0.0);
}

TEST_F(Deleting, bulk_deletion_counts_what_it_removes) {
  struct Row {
    int index;
    const char *question, *empty, *report;
    bool valid;
  };
  const Row kRows[] = {
      {1, "Delete all hydrography labels from the database?", "No Hydrography Labels were found!",
       "1 Hydrography Labels were removed.", true},
      {2, "Delete all test points from the database?", "No Test Points were found!",
       "2 Test Points were removed.", false},
      {3, "Delete all particles from the database?  NOTE: particles associated\nwith wells will be retained.",
       "No Particles were found!", "1 Particles were removed.", true},
      {4, "Delete all text labels from the database?", "No Text Labels were found!",
       "1 Text Labels were removed.", true},
      {5, "Delete all discharge specified wells from the database?",
       "No Discharge Specified Wells were found!", "1 Discharge Specified Wells were removed.", false},
      {6, "Delete all head specified wells from the database?", "No Head Specified Wells were found!",
       "1 Head Specified Wells were removed.", false}};
  StoreTextLabel(ormel, {.Text = "r", .type = LabelType::kHydrography}, {0, 0});
  StoreTextLabel(ormel, {.Text = "t"}, {0, 0});
  StoreTestPoint(ormel, {}, {1, 1});
  StoreTestPoint(ormel, {}, {2, 1});
  StoreParticle(ormel, {}, {3, 1});
  StoreWell(ormel, {.Label = "q"}, {4, 1});
  StoreWell(ormel, {.Label = "h", .HeadSpecified = true}, {5, 1});
  StoreLinesink(ormel, {.Label = "stays"}, Points{{6, 1}, {7, 1}});
  together.Settle();
  for (const Row& row : kRows) {
    ormel.solution.ValidSolution = true;
    test.ui.AnswerTo("Delete All", {Answer::kNo, Answer::kYes, Answer::kOk, Answer::kYes, Answer::kOk});
    if (!row.valid) test.ui.AnswerTo("Model Changed!", {Answer::kYes});
    DELETEALL(ormel, row.index);
    EXPECT_EQ(test.ui.LastText(), row.question);
    test.ui.boxes.clear();
    DELETEALL(ormel, row.index);
    ASSERT_GE(test.ui.boxes.size(), 2U) << row.question;
    EXPECT_EQ(test.ui.boxes[1].text, row.report);
    EXPECT_EQ(ormel.solution.ValidSolution, row.valid) << row.question;
    DELETEALL(ormel, row.index);
    EXPECT_EQ(test.ui.LastText(), row.empty);
  }
  EXPECT_EQ(Count("Vertices"), 2.0);
}

TEST_F(Deleting, wells_in_bulk_take_their_protection_areas_along) {
  const Vid well = StoreWell(ormel, {.Label = "a'b", .Head = 5}, {3, 4});
  StoreWell(ormel, {.Label = "plain"}, {9, 9});
  MirrorWell(ormel, "a'b", {0, 0}, {1, 0}, {3, 4});
  const Vid point = ElemAddVertex(ormel, {0, 0}, kSinglePoint, 0);
  ormel.db().Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,Type,WHPAText,VID1,VID2) "
      "values ('a''b',0,0,0.2,3,'NONE',?,0)",
      {point});
  test.ui.AnswerTo("Delete All", {Answer::kYes, Answer::kYes});
  test.ui.AnswerTo("Confirm", {Answer::kCancel, Answer::kOk});
  DELETEALL(ormel, 5);
  EXPECT_EQ(Count("Wells"), 3.0);
  EXPECT_GT(XOf(well), 0.0);
  DELETEALL(ormel, 5);
  EXPECT_EQ(Count("Wells") + Count("WHPAs") + Count("Vertices"), 0.0);
}

TEST_F(Deleting, protection_areas_go_by_their_kind_with_what_belongs_to_them) {
  StoreWell(ormel, {.Label = "a'b", .Head = 5}, {3, 4});
  MirrorWell(ormel, "a'b", {0, 0}, {1, 0}, {3, 4});
  const Vid point = ElemAddVertex(ormel, {0, 0}, kSinglePoint, 0);
  for (const int type : {1, 2, 3})
    ormel.db().Execute(
        "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,Type,T,WHPAText,WHPAData,VID1,VID2) "
        "values (?,0,0,0.2,?,?,'stem',0,?,0)",
        {"a'b", type, type == 2 ? 1.5 : 0.0, type == 1 ? Vid{0} : point});
  WriteAll(test.dir / "stem.PTH", "x");
  test.ui.AnswerTo("Delete All", {Answer::kYes, Answer::kOk, Answer::kYes, Answer::kOk, Answer::kYes,
                                  Answer::kOk, Answer::kYes, Answer::kOk});
  DeleteWHPA(ormel, 1);
  EXPECT_EQ(test.ui.boxes[0].text, "Delete all Arbitrary Radius WHPAs from the database?");
  EXPECT_EQ(test.Number("select count(*) from Wells where Label like 'Mirror_*'"), 1.0) << "of another area";
  EXPECT_TRUE(ormel.solution.outdated_runs.empty());
  EXPECT_TRUE(ormel.solution.whpa_calculated_exists);
  DeleteWHPA(ormel, 2);
  EXPECT_EQ(test.Number("select count(*) from Wells where Label like 'Mirror_*'"), 0.0);
  EXPECT_EQ(ormel.solution.outdated_runs, std::vector<std::string>{"stem"});
  EXPECT_TRUE(std::filesystem::exists(test.dir / "stem.PTH")) << "an undo may want it";
  EXPECT_TRUE(ormel.solution.whpa_calculated_exists);
  DeleteWHPA(ormel, 0);
  EXPECT_EQ(Count("WHPAs"), 0.0);
  EXPECT_EQ(Count("Vertices"), 1.0) << "the well's own";
  EXPECT_FALSE(ormel.solution.whpa_calculated_exists);
  DeleteWHPA(ormel, 0);
  EXPECT_EQ(test.ui.LastText(), "No Simple WHPAs were found!");
}

}  // namespace
}  // namespace ormel::test
