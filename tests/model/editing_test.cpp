// Selecting, editing, moving and refining what stands on the map.
#include <cmath>
#include <filesystem>
#include <optional>

#include "editing_fixture.h"
#include "model/area_runs.h"
#include "model/barriers.h"
#include "model/edit.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/move.h"
#include "model/observations.h"
#include "model/refine.h"
#include "model/uniform_flow.h"
#include "model/vertices.h"
#include "model/wells.h"

namespace ormel::test {
namespace {

using Points = std::vector<MapPoint>;
using Editing = EditingProject;

TEST_F(Editing, one_element_of_every_kind_is_selected_and_described) {
  ormel.db().Execute("update Model set AQThickness='12'");
  StoreWell(ormel, {.Label = "O'Brien", .Head = 1500, .Radius = 0.25}, {0, 0});
  StoreWell(ormel, {.Label = "lake", .HeadSpecified = true, .Pond = true, .Head = 12.5, .Radius = 50},
            {10, 0});
  StoreLinesink(ormel, {.Label = "Orge", .StartingHead = 9.456, .EndingHead = 8}, Points{{20, 0}, {25, 0}});
  StoreLinesink(ormel, {.Label = "drain", .HeadSpecified = false, .StartingHead = 0.5, .EndingHead = 0.25},
                Points{{30, 0}, {35, 0}});
  StoreBarrier(ormel, {.Label = "wall"}, Points{{40, 0}, {45, 0}});
  StoreInhomogeneity(ormel,
                     {.Label = "marsh",
                      .HydCond = 3,
                      .Recharge = 0.0012,
                      .Porosity = 0.25,
                      .BottomElevation = -4,
                      .ChangeB = true},
                     Points{{50, 0}, {55, 0}, {55, 5}});
  StoreFluxLine(ormel, "across", Points{{60, 0}, {65, 0}});
  StoreCapzone(ormel, "zone", Points{{70, 0}, {75, 0}});
  StoreTestPoint(ormel, {.Label = "MW-1", .ObsHead = 7.5}, {80, 0});
  StoreParticle(ormel, {}, {90, 0});
  StoreUniformFlow(ormel, {100, 0}, 10, 0.001, 30);
  StoreTextLabel(ormel, {.Text = "St. John's"}, {110, 0});
  ElemAddVertex(ormel, {120, 0}, kSinglePoint, 0);  // nobody's

  struct Row {
    double x;
    Element element;
    const char *properties, *move, *feedback;
    bool refine;
  };
  const Row kRows[] = {
      {0, Element::kWell, "Well &Properties", "&Move Well", "Well: O'Brien Pumping Rate: 1500 Radius: 0.25",
       false},
      {10, Element::kWell, "Well &Properties", "&Move Well", "Pond: lake Head: 12.5 Radius: 50", false},
      {20, Element::kLinesink, "&Properties...", "&Move Vertex",
       "Label: Orge  Starting Head: 9.46 Ending Head: 8.00", true},
      {35, Element::kLinesink, "&Properties...", "&Move Vertex",
       "Label: drain  Starting Discharge: 0.5 Ending Discharge: 0.25", true},
      {40, Element::kBarrier, "&Properties...", "&Move Vertex", "Horizontal barrier: wall", true},
      {50, Element::kInhomogeneity, "&Properties...", "&Move Vertex",
       "Label: marsh Recharge: 12.000e-04 Porosity: 0.25  Conductivity: 3 Bottom -4", true},
      {60, Element::kFluxLine, "&Properties...", "&Move Vertex", "Flux inspector: across", true},
      {70, Element::kCapzone, "&Properties...", "&Move Vertex", "Protection area delineation: zone", true},
      {80, Element::kTestPoint, "Test Point &Properties", "&Move Test Point",
       "Label: MW-1   Observed head: 7.5", false},
      {90, Element::kParticle, "Particle &Properties", "&Move Particle",
       "Direction: Forward   Starting Elevation: 12", false},
      {100, Element::kUniformFlow, "Uniform Flow &Properties", "&Move Uniform Flow", "Uniform flow", false},
      {110, Element::kTextLabel, "Text &Properties", "&Move Label", "Text: St. John's", false},
  };
  for (const Row& row : kRows) {
    SelectAt(row.x, 0.1);
    EXPECT_EQ(Selected().SelectedType, row.element) << row.x;
    EXPECT_EQ(ormel.menus.Caption("EDIT_CMDS", 1), row.properties) << row.x;
    EXPECT_EQ(ormel.menus.Caption("EDIT_CMDS", 2), row.move) << row.x;
    EXPECT_EQ(ormel.feedback, row.feedback);
    for (int i = 1; i <= 3; ++i) EXPECT_TRUE(ormel.menus.Enabled("EDIT_CMDS", i)) << row.x;
    EXPECT_EQ(ormel.menus.Enabled("EDIT_CMDS", 4), row.refine) << row.x;
    EXPECT_EQ(SelectedElements(ormel).size(), 1U);
  }
  for (const double x : {5.0, 120.0}) {  // nothing there, and a vertex that nobody owns
    SelectAt(0, 0);
    SelectAt(x, 0);
    EXPECT_EQ(Selected().SelectedType, Element::kNone);
    for (int i = 1; i <= 4; ++i) EXPECT_FALSE(ormel.menus.Enabled("EDIT_CMDS", i));
    EXPECT_EQ(ormel.feedback, "Click mouse button to select element");
  }
  ormel.mouse.MouseMode = MouseMode::kPlace;
  ormel.mouse.MouseElement = Element::kGridCorner;
  SelectAt(0, 0);
  EXPECT_EQ(Selected().SelectedType, Element::kNone) << "a corner of the editor grid is no selection";
}

TEST_F(Editing, results_follow_the_description_while_the_solution_is_valid) {
  const Vid well = StoreWell(ormel, {.Label = "a", .Head = 5}, {0, 0});
  const Vid head = StoreWell(ormel, {.Label = "b", .HeadSpecified = true, .Head = 5}, {10, 0});
  const auto result = [&](Vid vid, double discharge, double computed) {
    const std::string label = "WL_" + std::string(6 - std::to_string(vid).size(), '0') + std::to_string(vid);
    ormel.db().Execute(
        "insert into WLResults (Label,VadoxLabel,X,Y,Radius,SpecifiedHead,Discharge,Head) "
        "values ('x',?,0,0,1,0,?,?)",
        {label, discharge, computed});
  };
  result(well, 5, 8.5);
  result(head, 77, 5);
  SelectAt(0, 0);
  EXPECT_EQ(ormel.feedback, "Well: a Pumping Rate: 5 Radius: 1");
  ormel.solution.ValidSolution = true;
  SelectAt(0, 0);
  EXPECT_EQ(ormel.feedback, "Well: a Pumping Rate: 5 Radius: 1 Head: 8.5");
  SelectAt(10, 0);
  EXPECT_EQ(ormel.feedback, "Well: b Head: 5 Radius: 1 Discharge: 77");
  ormel.db().Execute("update WLResults set Head=-9999");
  SelectAt(0, 0);
  EXPECT_EQ(ormel.feedback, "Well: a Pumping Rate: 5 Radius: 1 Head: -9999 Aquifer is DRY ");
}

TEST_F(Editing, neighbours_close_the_ring_where_the_element_does) {
  const Points square{{0, 0}, {4, 0}, {4, 4}, {0, 4}};
  const Pid open = StoreBarrier(ormel, {.Label = "open"}, square);
  const Pid closed = StoreBarrier(ormel, {.Label = "closed", .Closed = BarrierClosed::kClosed}, square);
  const Vid open_first = VerticesOf(ormel, open).front().vid,
            closed_first = VerticesOf(ormel, closed).front().vid;
  EXPECT_FALSE(NeighboursOf(ormel, Element::kBarrier, open, open_first).before);
  EXPECT_EQ(NeighboursOf(ormel, Element::kBarrier, open, open_first).after, (MapPoint{4, 0}));
  EXPECT_EQ(NeighboursOf(ormel, Element::kBarrier, closed, closed_first).before, (MapPoint{0, 4}));
  EXPECT_FALSE(NeighboursOf(ormel, Element::kWell, closed, closed_first).after);
}

TEST_F(Editing, well_edit_invalidates_by_what_was_touched) {
  struct Row {
    const char* what;
    std::vector<Entry> entries;
    bool color;
    std::vector<std::string> questions;
    bool valid;
    std::size_t runs;
  };
  const Row kRows[] = {
      {"setback", {{"tbData(10)", "9"}}, false, {}, true, 0},
      {"colour", {}, true, {"Ormel"}, true, 0},
      {"particles", {{"tbData(11)", "30"}}, false, {"Regrid/Retrace?"}, true, 1},
      {"discharge", {{"tbData(2)", "77"}}, false, {"Model Changed!"}, false, 0},
      {"discharge and particles",
       {{"tbData(2)", "78"}, {"tbData(11)", "31"}},
       false,
       {"Model Changed!"},
       false,
       0},
  };
  const Vid vid = StoreWell(ormel, {.Label = "a", .NParticles = 5, .PathlineColor = 3}, {0, 0});
  for (const Row& row : kRows) {
    ormel.solution.ValidSolution = true;
    test.ui.boxes.clear();
    test.solver.runs.clear();
    for (const std::string& title : row.questions)
      test.ui.AnswerTo(title, {title == "Ormel" ? Answer::kOk : Answer::kYes});
    test.ui.color = Rgb(4, 5, 6);
    test.ui.OnForm("WellProperties", [&](Form& form) {
      if (row.color) form.Click("comColor");
      Fill(row.entries)(form);
    });
    SelectAt(0, 0);
    ElemSetProperties(ormel);
    std::vector<std::string> asked;
    for (const Box& box : test.ui.boxes) asked.push_back(box.title);
    EXPECT_EQ(asked, row.questions) << row.what;
    EXPECT_EQ(ormel.solution.ValidSolution, row.valid) << row.what;
    EXPECT_EQ(test.solver.runs.size(), row.runs) << row.what;
    EXPECT_EQ(Selected().SelectedType, Element::kNone);
  }
  WellRow row;
  ASSERT_TRUE(FindWell(ormel, vid, row));
  EXPECT_EQ(row.Setback, 9.0);
  EXPECT_EQ(row.PathlineColor, Rgb(4, 5, 6).value);
  EXPECT_EQ(row.NParticles, 31);
  EXPECT_EQ(row.Head, 78.0);
}

TEST_F(Editing, well_moves_by_its_dialog_and_an_image_has_none) {
  const Vid vid = StoreWell(ormel, {.Label = "a"}, {0, 0});
  StoreWell(ormel, {.Label = "Mirror_a"}, {10, 0});
  SelectAt(0, 0);
  test.ui.OnForm("WellProperties", Fill({{"tbData(0)", "3.5"}}));
  ElemSetProperties(ormel);
  EXPECT_EQ(XOf(vid), 3.5);
  SelectAt(10, 0);
  ElemSetProperties(ormel);
  EXPECT_EQ(test.ui.shown_forms.size(), 1U);
}

TEST_F(Editing, other_kinds_store_and_invalidate_as_they_should) {
  ormel.db().Execute("update Model set AQThickness='12'");
  struct Row {
    const char* form;
    std::vector<Entry> entries;
    const char *check, *value;
    std::vector<std::string> boxes;
    bool valid;
  };
  const Row kRows[] = {
      {"LinesinkString", {}, "select Label from LinesinkStrings", "Orge", {"Model Changed!"}, false},
      {"NoFlowString",
       {{"ClosedDomain", "on"}},
       "select Closed from NoFlowStrings",
       "1",
       {"Model Changed!"},
       false},
      {"Inhomogeneity", {}, "select AverageHead from Inhomogeneities", "12", {}, true},
      {"Inhomogeneity",
       {{"chkChangeK", "on"}, {"tbData(0)", "5"}},
       "select HydCond from Inhomogeneities",
       "5",
       {"Model Changed!"},
       false},
      {"TestPointProperties",
       {{"tbObsHead", "8"}, {"tbX", "40.25"}},
       "select ObsHead from TestPoints",
       "8",
       {"Test Point Changed"},
       true},
      {"ParticleProperties", {{"chkDirection(0)", "on"}}, "select Forward from Particles", "0", {}, true},
      {"FluxInspectDialog", {{"tbLabel", "zone'2"}}, "select Label from Capzones", "zone'2", {}, true},
      {"TextLabelDialog", {{"tbText", "town"}}, "select Text from TextLabels", "town", {}, true},
  };
  StoreLinesink(ormel, {.Label = "Orge"}, Points{{10, 0}, {15, 0}});
  StoreBarrier(ormel, {.Label = "wall"}, Points{{20, 0}, {25, 0}});
  StoreInhomogeneity(ormel, {.Label = "marsh", .Porosity = 0.2, .AverageHead = 12}, Points{{30, 0}, {35, 0}});
  StoreTestPoint(ormel, {}, {40, 0});
  StoreParticle(ormel, {}, {50, 0});
  StoreCapzone(ormel, "zone", Points{{60, 0}, {65, 0}});
  StoreTextLabel(ormel, {.Text = "x"}, {70, 0});
  const double kSpots[] = {10, 20, 30, 30, 40, 50, 60, 70};
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    const Row& row = kRows[i];
    ormel.solution.ValidSolution = ormel.solution.PathlinesValid = true;
    test.ui.boxes.clear();
    for (const std::string& title : row.boxes)
      if (title == "Model Changed!") test.ui.AnswerTo(title, {Answer::kYes});
    SelectAt(kSpots[i], 0);
    test.ui.OnForm(row.form, Fill(row.entries));
    ElemSetProperties(ormel);
    EXPECT_EQ(test.Text(row.check), row.value) << row.form;
    std::vector<std::string> shown;
    for (const Box& box : test.ui.boxes) shown.push_back(box.title);
    EXPECT_EQ(shown, row.boxes) << row.form;
    EXPECT_EQ(ormel.solution.ValidSolution, row.valid) << row.form;
    EXPECT_EQ(ormel.solution.PathlinesValid, std::string(row.form) != "ParticleProperties") << row.form;
  }
  EXPECT_EQ(test.ui.shown_forms.size(), std::size(kRows));
}

TEST_F(Editing, average_head_at_the_top_is_dropped_even_when_the_dialog_is_cancelled) {
  ormel.db().Execute("update Model set AQThickness='12'");
  StoreInhomogeneity(ormel, {.Label = "marsh", .AverageHead = 12}, Points{{0, 0}, {5, 0}});
  SelectAt(0, 0);
  test.ui.OnForm("Inhomogeneity", Fill({{"tbLabel", "no"}}, "Cancel"));
  ElemSetProperties(ormel);
  EXPECT_EQ(test.Number("select AverageHead from Inhomogeneities"), -9999.0);
  EXPECT_EQ(test.Text("select Label from Inhomogeneities"), "marsh");
}

TEST_F(Editing, moves_write_the_place_and_invalidate_what_depends_on_it) {
  struct Row {
    double x;
    const char *activity, *box;
    bool valid;
  };
  const Row kRows[] = {{0, "Move Well", "Model Changed!", false},
                       {10, "Move Vertex", "Model Changed!", false},
                       {20, "Move Test Point", "", true},
                       {30, "Move Particle", "", true},
                       {40, "Move Vertex", "Please Note", true},
                       {50, "Move Vertex", "", true},
                       {60, "Move Text", "", true},
                       {70, "Move Vertex", "Model Changed!", false}};
  StoreWell(ormel, {.Label = "a"}, {0, 0});
  StoreLinesink(ormel, {.Label = "Orge"}, Points{{10, 0}, {15, 0}});
  StoreTestPoint(ormel, {}, {20, 0});
  StoreParticle(ormel, {}, {30, 0});
  StoreFluxLine(ormel, "across", Points{{40, 0}, {45, 0}});
  StoreCapzone(ormel, "zone", Points{{50, 0}, {55, 0}});
  StoreTextLabel(ormel, {.Text = "x"}, {60, 0});
  StoreUniformFlow(ormel, {70, 0}, 10, 0, 0);
  for (const Row& row : kRows) {
    ormel.solution.ValidSolution = true;
    test.ui.boxes.clear();
    if (!row.valid) test.ui.AnswerTo("Model Changed!", {Answer::kYes});
    SelectAt(row.x, 0);
    const Selection selected = Selected();
    ElemBeginMove(ormel);
    EXPECT_TRUE(ormel.mouse.MovePending);
    EXPECT_FALSE(test.view.menus_on);
    EXPECT_EQ(ormel.activity, row.activity) << row.x;
    ElemEndMove(ormel, {}, {row.x + 0.5, 7});
    if (selected.SelectedType == Element::kTextLabel)
      EXPECT_EQ((MapPoint{test.Number("select X from TextLabels where Y in (7,8)"),
                          test.Number("select Y from TextLabels where Y in (7,8)")}),
                (MapPoint{row.x + 0.5, 7}));
    else
      EXPECT_EQ(XOf(selected.vid), row.x + 0.5);
    EXPECT_EQ(test.ui.LastTitle(), row.box) << row.x;
    EXPECT_EQ(ormel.solution.ValidSolution, row.valid) << row.x;
    EXPECT_FALSE(ormel.mouse.MovePending);
    EXPECT_TRUE(test.view.menus_on);
    EXPECT_EQ(ormel.activity, "Select");
  }
  EXPECT_EQ(ReadModel(ormel).UNIFLOWRefX, 70.5);
  EXPECT_EQ(ReadModel(ormel).UNIFLOWRefY, 7.0);
}

TEST_F(Editing, shared_corner_moves_with_every_domain_and_asks_once) {
  ormel.gui.VertexTolerance = 0.001;
  const Pid left = StoreInhomogeneity(ormel, {.Label = "left"}, Points{{0, 0}, {10, 0}, {10, 10}});
  const Pid right = StoreInhomogeneity(ormel, {.Label = "right"}, Points{{20, 0}, {10, 0.0005}, {10, 10}});
  StoreBarrier(ormel, {.Label = "wall"}, Points{{10, 0}, {5, 5}});
  ormel.solution.ValidSolution = true;
  test.ui.AnswerTo("Model Changed!", {Answer::kYes});
  SelectAt(10, 0);
  ASSERT_EQ(Selected().pid, left);
  ElemBeginMove(ormel);
  ElemEndMove(ormel, {}, {11, 1});
  EXPECT_EQ(PointsOf(ormel, left), (Points{{0, 0}, {11, 1}, {10, 10}}));
  EXPECT_EQ(PointsOf(ormel, right), (Points{{20, 0}, {11, 1}, {10, 10}}));
  EXPECT_EQ(test.Number("select count(*) from Vertices where X=10 and Y=0"), 1.0) << "a barrier is not moved";
  EXPECT_EQ(test.ui.boxes.size(), 1U);
}

TEST_F(Editing, stream_boundary_takes_its_image_wells_along) {
  StoreWell(ormel, {.Label = "a", .Head = 5}, {3, 4});
  const Vid vid1 = ElemAddVertex(ormel, {0, 0}, kSinglePoint, 0);
  const Vid vid2 = ElemAddVertex(ormel, {10, 0}, kSinglePoint, 0);
  ormel.db().Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,Type,WHPAText,WHPAData,VID1,VID2,Point1X,Point1Y,"
      "Point2X,Point2Y) values ('a',0,0,0.2,2,'stem',0,?,?,0,0,10,0)",
      {vid1, vid2});
  WriteAll(test.dir / "stem.PTH", "x");
  WriteAll(test.dir / "town.SOL", "x");
  SelectAt(10, 0);
  EXPECT_EQ(Selected().SelectedType, Element::kWhpaBoundaryVertex);
  EXPECT_EQ(ormel.menus.Caption("EDIT_CMDS", 2), "&Move Boundary Vertex");
  EXPECT_TRUE(ormel.menus.Enabled("EDIT_CMDS", 2));
  for (const int off : {1, 3, 4}) EXPECT_FALSE(ormel.menus.Enabled("EDIT_CMDS", off));
  ElemBeginMove(ormel);
  ElemEndMove(ormel, {}, {0, 10});
  EXPECT_EQ(test.Number("select Point2X from WHPAs"), 0.0);
  EXPECT_EQ(test.Number("select Point2Y from WHPAs"), 10.0);
  EXPECT_EQ(
      test.Number("select Vertices.X from Wells,Vertices where Wells.VID=Vertices.VID and Label='Mirror_a'"),
      -3.0);
  // Nothing old is drawn, and the files wait for an undo.
  const std::string stem = test.Text("select WHPAText from WHPAs");
  EXPECT_NE(stem, "stem");
  EXPECT_FALSE(std::filesystem::exists(test.dir / (stem + ".PTH")));
  for (const char* file : {"stem.PTH", "town.SOL"}) EXPECT_TRUE(std::filesystem::exists(test.dir / file));
  DeleteOutdatedRuns(ormel, "stem");
  EXPECT_TRUE(std::filesystem::exists(test.dir / "stem.PTH"));
  DeleteOutdatedRuns(ormel);
  EXPECT_FALSE(std::filesystem::exists(test.dir / "stem.PTH"));
  EXPECT_TRUE(std::filesystem::exists(test.dir / "town.SOL"));
}

TEST_F(Editing, refinement_divides_long_edges_and_keeps_the_shape) {
  const Points points{{0, 0}, {10, 0}, {10, 3}, {10, 9}};
  const Pid open = StoreLinesink(ormel, {.Label = "Orge"}, points);
  // 10 in four parts, 3 stays, 6 in two parts.
  EXPECT_EQ(ElemRefineString(ormel, Element::kLinesink, open, 3.0), 4);
  EXPECT_EQ(PointsOf(ormel, open),
            (Points{{0, 0}, {2.5, 0}, {5, 0}, {7.5, 0}, {10, 0}, {10, 3}, {10, 6}, {10, 9}}));
  EXPECT_EQ(VerticesOf(ormel, open).back().seq, 800);
  EXPECT_EQ(ElemRefineString(ormel, Element::kLinesink, open, 3.0), 0);
  // Four edges of 2.5 and three of 3: many to an edge, so room is made.
  EXPECT_EQ(ElemRefineString(ormel, Element::kLinesink, open, 0.01), 4 * 249 + 3 * 299);
  const std::vector<MapPoint> fine = PointsOf(ormel, open);
  for (std::size_t i = 1; i < fine.size(); ++i)
    ASSERT_NEAR(std::hypot(fine[i].x - fine[i - 1].x, fine[i].y - fine[i - 1].y), 0.01, 1e-9) << i;
  const Pid closed = StoreInhomogeneity(ormel, {.Label = "marsh"}, Points{{0, 50}, {4, 50}, {4, 53}});
  EXPECT_EQ(ElemRefineString(ormel, Element::kInhomogeneity, closed, 2.5), 3);
  EXPECT_EQ(PointsOf(ormel, closed), (Points{{0, 50}, {2, 50}, {4, 50}, {4, 51.5}, {4, 53}, {2, 51.5}}))
      << "the closing edge as well";
}

TEST_F(Editing, refinement_asks_and_refuses_what_makes_no_sense) {
  StoreLinesink(ormel, {.Label = "Orge"}, Points{{0, 0}, {10, 0}});
  struct Row {
    std::optional<std::string> answer;
    const char* title;
    double vertices;
  };
  const Row kRows[] = {{std::nullopt, "", 2},      {"0", "Bad Entry", 2}, {"x", "Not Wholly a Number", 2},
                       {"0.0001", "Bad Entry", 2}, {"10", "Refine", 2},   {"5", "Model Changed!", 3}};
  for (const Row& row : kRows) {
    ormel.solution.ValidSolution = true;
    test.ui.boxes.clear();
    test.ui.InputTo("Refine", row.answer);
    if (row.answer == "x") {
      test.ui.AnswerTo("Not Wholly a Number", {Answer::kNo});
      test.ui.InputTo("Refine", std::nullopt);
    }
    if (row.vertices == 3) test.ui.AnswerTo("Model Changed!", {Answer::kYes});
    SelectAt(0, 0);
    ElemRefine(ormel);
    EXPECT_EQ(test.ui.LastTitle(), row.title);
    EXPECT_EQ(Count("Vertices"), row.vertices);
    EXPECT_EQ(ormel.solution.ValidSolution, row.vertices == 2);
  }
}

}  // namespace
}  // namespace ormel::test
