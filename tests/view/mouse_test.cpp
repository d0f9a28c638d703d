#include "view/mouse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "core/command.h"
#include "core/layers.h"
#include "document/document.h"
#include "model/barriers.h"
#include "model/digitize.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/move.h"
#include "model/observations.h"
#include "model/validity.h"
#include "solver/inspection.h"
#include "view/map_fixture.h"
#include "view/map_legend.h"
#include "view/mouse_actions.h"

namespace ormel::test {
namespace {

/// A hand on the mouse: positions in map units, two pixels a unit.
struct MouseProject : MapProject {
  static DevicePoint At(double x, double y) {
    return {static_cast<int>((x + 100) * 2), static_cast<int>(400 - (y + 100) * 2)};
  }
  void Press(double x, double y, int shift = 0) { Map_MouseDown(map, MouseButton::kLeft, shift, At(x, y)); }
  void Move(double x, double y) { Map_MouseMove(map, MouseButton::kNone, 0, At(x, y)); }
  void Release(double x, double y) { Map_MouseUp(map, MouseButton::kLeft, 0, At(x, y)); }
  void Click(double x, double y) {
    Press(x, y);
    Release(x, y);
  }
  void RightClick(double x, double y) { Map_MouseDown(map, MouseButton::kRight, 0, At(x, y)); }
  std::vector<std::string> Overlaid() {
    RecordingDevice top;
    map.PaintOverlay(top);
    return top.Lines();
  }
  void ExpectSelectMode() {
    EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kSelect);
    EXPECT_EQ(ormel.mouse.MouseElement, Element::kNone);
    EXPECT_FALSE(ormel.mouse.LineInProgress);
    EXPECT_FALSE(ormel.mouse.MenusOff);
    EXPECT_EQ(ormel.mouse.CurrentPID, kNoPolygon);
    EXPECT_EQ(ormel.activity, "Select");
    EXPECT_EQ(ormel.feedback, "Click mouse button to select element");
  }
};

void Label(Form& form) {
  form.SetText("tbLabel", "new one");
  form.Click("OK");
}

/// A calculated area beyond T = 1 whose boundary is about to be clicked.
struct BoundaryProject : MouseProject {
  BoundaryProject() {
    ormel.ports.solver = &solver;
    ormel.db().Execute("update Wells set Head=800 where VID=?", {AddWell(50, 0, "North")});
    ormel.db().Execute(
        "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,T,Type,WHPAText) values "
        "('North',0,1,0.2,2,2,'s')");
    ormel.StreamWell = "North";
    ormel.mouse.MouseMode = MouseMode::kDigitize;
    ormel.mouse.MouseElement = Element::kStreamBoundary;
    map.TurnOffMenus();
  }
};

TEST(Mouse, TwoClicksMakeTheStreamBoundaryAndRunTheArea) {
  BoundaryProject t;
  t.Click(-20, -50);
  EXPECT_TRUE(t.ormel.mouse.MenusOff);
  t.Click(-20, -50);  // the same place is no line: refused, and the mode stays
  EXPECT_EQ(t.ui.LastTitle(), "Stream Boundary");
  EXPECT_EQ(t.ormel.mouse.MouseElement, Element::kStreamBoundary);
  EXPECT_EQ(t.solver.whpa_runs, 0);
  t.Click(-20, 50);
  EXPECT_EQ(t.solver.whpa_runs, 1);
  t.ExpectSelectMode();
  EXPECT_EQ(t.Number("select Point2Y from WHPAs"), 50);
  EXPECT_NEAR(
      t.Number("select X from Vertices where VID in (select VID from Wells where Label like 'Mirror_*')"),
      -90, 1e-9);
}

TEST(Mouse, ARightClickGivesTheBoundaryUp) {
  BoundaryProject t;
  t.Click(-20, -50);
  t.RightClick(0, 0);
  t.ExpectSelectMode();
  EXPECT_EQ(t.Number("select count(*) from WHPAs where Point1X=0 and VID1=0"), 1);
  EXPECT_EQ(t.Number("select count(*) from Vertices"), 1);
}

TEST(Mouse, HasAnActionForEveryPairOfTheTable) {
  const std::array<std::pair<MouseMode, Element>, 15> pairs{{
      {MouseMode::kPlace, Element::kWell},
      {MouseMode::kPlace, Element::kUniformFlow},
      {MouseMode::kPlace, Element::kUniformFlowArrow},
      {MouseMode::kPlace, Element::kTestPoint},
      {MouseMode::kPlace, Element::kParticle},
      {MouseMode::kPlace, Element::kTextLabel},
      {MouseMode::kPlace, Element::kRecentre},
      {MouseMode::kPlace, Element::kBaseMapSelection},
      {MouseMode::kRectangle, Element::kZoomRectangle},
      {MouseMode::kDigitize, Element::kLinesink},
      {MouseMode::kDigitize, Element::kBarrier},
      {MouseMode::kDigitize, Element::kInhomogeneity},
      {MouseMode::kDigitize, Element::kFluxLine},
      {MouseMode::kDigitize, Element::kCapzone},
      {MouseMode::kDigitize, Element::kStreamBoundary},
  }};
  for (const auto& [mode, element] : pairs)
    EXPECT_TRUE(HasAction(mode, element)) << static_cast<int>(element);
  EXPECT_FALSE(HasAction(MouseMode::kDigitize, Element::kWell));
}

TEST(Mouse, AddsAWellFromClickToRedraw) {
  MouseProject t;
  const Document document(t.ormel);
  t.ui.OnForm("WellProperties", [&](Form& form) {
    EXPECT_EQ(form.Text("tbData(0)"), "10");
    EXPECT_EQ(t.ormel.mouse.cursor, 0) << "an arrow while the dialog is open";
    Label(form);
  });
  BeginPlacing(t.ormel, Element::kWell, "Add Well", "Click mouse at location for new well");
  EXPECT_TRUE(t.ormel.mouse.MenusOff);
  t.Click(10, 20);
  t.ExpectSelectMode();
  EXPECT_EQ(t.Number("select Y from Vertices"), 20.0);
  EXPECT_THAT(t.surface.picture.Layer("Wells"), ::testing::ElementsAre("circle 5 at 220,160 r3"));
  EXPECT_TRUE(t.Overlaid().empty()) << "the mark of its place has gone";
}

struct StringCase {
  const char* what;
  void (*begin)(Ormel&);
  const char* form;
  const char* table;
  Element element;
};

TEST(Mouse, DigitizesStringsAndDomains) {
  const StringCase cases[] = {
      {"barrier", ElemAddNoFlowString, "NoFlowString", "NoFlowStrings", Element::kBarrier},
      {"domain", ElemAddInhomogeneity, "Inhomogeneity", "Inhomogeneities", Element::kInhomogeneity},
      {"linesinks", ElemAddLinesinkString, "LinesinkString", "LinesinkStrings", Element::kLinesink},
      {"flux line", ModelAddFluxInspect, "FluxInspectDialog", "FluxInspect", Element::kFluxLine},
      {"capture zone", ModelAddCapzone, "FluxInspectDialog", "Capzones", Element::kCapzone},
  };
  for (const StringCase& c : cases) {
    SCOPED_TRACE(c.what);
    MouseProject t;
    t.ui.OnForm(c.form, [](Form& form) {
      form.SetText("tbLabel", "new one");
      if (form.Has("chkChangeP")) form.SetChecked("chkChangeP", true);
      if (form.Has("tbData(2)")) form.SetText("tbData(2)", "0.3");
      form.Click("OK");
    });
    c.begin(t.ormel);
    EXPECT_EQ(t.ormel.mouse.MouseMode, MouseMode::kDigitize);
    EXPECT_EQ(t.ormel.mouse.MouseElement, c.element);
    t.Click(0, 0);
    EXPECT_TRUE(t.ormel.mouse.LineInProgress);
    t.Move(30, 0);
    EXPECT_THAT(t.Overlaid(), ::testing::Contains("line 8 style1 200,200 260,200")) << "the rubber line";
    t.Click(50, 0);
    t.Click(50, 50);
    EXPECT_THAT(t.Overlaid(), ::testing::Not(::testing::Contains(::testing::HasSubstr("style1"))));
    t.Move(0, 50);
    EXPECT_THAT(t.Overlaid(), ::testing::Contains("line 8 style1 300,100 200,100"));
    t.RightClick(0, 50);
    t.ExpectSelectMode();
    EXPECT_THAT(t.Overlaid(), ::testing::Not(::testing::Contains(::testing::HasSubstr("style1"))));
    EXPECT_EQ(t.Number("select count(*) from Vertices"), 3.0);
    EXPECT_EQ(t.Number(std::string("select count(*) from ") + c.table), 1.0);
    EXPECT_EQ(t.Text("select Seq from Vertices where X=50 and Y=50"), "201");
  }
}

TEST(Mouse, EscapeLeavesNoHalfDrawnElement) {
  for (const int points : {0, 1, 2, 3}) {
    SCOPED_TRACE(points);
    MouseProject t;
    t.ui.OnForm("Inhomogeneity", [](Form& form) {
      form.SetChecked("chkChangeP", true);
      form.SetText("tbData(2)", "0.3");
      Label(form);
    });
    ElemAddInhomogeneity(t.ormel);
    for (int i = 0; i < points; ++i) t.Click(i * 20, i * i * 10);
    t.Move(90, 90);
    EXPECT_TRUE(Map_KeyDown(t.map, MapKey::kEscape));
    t.ExpectSelectMode();
    EXPECT_EQ(t.Number("select count(*) from Inhomogeneities"), points < 3 ? 0.0 : 1.0);
    EXPECT_EQ(t.Number("select count(*) from Polygons"), points < 3 ? 0.0 : 1.0);
    EXPECT_EQ(t.Number("select count(*) from Vertices"), points < 3 ? 0.0 : 3.0);
    EXPECT_FALSE(Map_KeyDown(t.map, MapKey::kEscape)) << "nothing left to leave";
  }
}

TEST(Mouse, EscapeGivesUpARingThatCannotClose) {
  MouseProject t;
  t.ui.OnForm("Inhomogeneity", [](Form& form) {
    form.SetChecked("chkChangeP", true);
    form.SetText("tbData(2)", "0.3");
    Label(form);
  });
  ElemAddInhomogeneity(t.ormel);
  for (const MapPoint at : {MapPoint{0, 0}, MapPoint{80, 0}, MapPoint{0, 80}, MapPoint{80, 80}})
    t.Click(at.x, at.y);
  EXPECT_EQ(t.Number("select count(*) from Vertices"), 4.0);
  EXPECT_TRUE(Map_KeyDown(t.map, MapKey::kEscape));
  t.ExpectSelectMode();
  for (const char* table : {"Inhomogeneities", "Polygons", "Vertices"})
    EXPECT_EQ(t.Number(std::string("select count(*) from ") + table), 0.0) << table;
}

TEST(Mouse, ZoomsToADraggedRectangleWhateverItsFirstCorner) {
  const std::array<std::array<double, 4>, 2> drags{{{-50, -50, 50, 50}, {50, 50, -50, -50}}};
  for (const auto& d : drags) {
    MouseProject t;
    t.map.ZoomActions(Zoom::kStartRectangle);
    t.Press(d[0], d[1]);
    t.Move(d[2], d[3]);
    EXPECT_EQ(t.Overlaid().size(), 1U);
    t.Release(d[2], d[3]);
    EXPECT_EQ(t.ormel.window.SolveWindow, (MapRect{-50, 50, 50, -50}));
    t.ExpectSelectMode();
    EXPECT_TRUE(t.Overlaid().empty());
  }
  MouseProject t;  // two clicks do the same
  t.map.ZoomActions(Zoom::kStartRectangle);
  t.Click(-50, -50);
  EXPECT_EQ(t.ormel.mouse.MouseMode, MouseMode::kRectangle);
  t.Click(50, 50);
  EXPECT_EQ(t.ormel.window.SolveWindow, (MapRect{-50, 50, 50, -50}));
  t.ExpectSelectMode();
}

TEST(Mouse, RecentresAtAClick) {
  MouseProject t;
  t.map.ZoomActions(Zoom::kRecentre);
  t.Click(30, 40);
  EXPECT_EQ(t.ormel.window.SolveWindow, (MapRect{-70, 130, 140, -60}));
  t.ExpectSelectMode();
  EXPECT_EQ(t.ormel.mouse.cursor, 0);
}

TEST(Mouse, SelectsAndMovesAVertex) {
  MouseProject t;
  const Pid pid = t.AddPolygon("0,0 20,0 20,20");
  t.ormel.db().Execute("insert into LinesinkStrings (PID,Label) values (?,'LS')", {pid});
  t.Redraw();
  t.Click(21, 1);
  EXPECT_EQ(t.ormel.mouse.LastX, 21.0);
  ASSERT_EQ(t.ormel.selection.SelectedType, Element::kLinesink);
  EXPECT_TRUE(t.ormel.menus.Enabled("EDITMOVEVERTEX"));
  EXPECT_THAT(t.Overlaid(), ::testing::Contains("line 12 w1.5 200,200 240,200 240,160"));
  ElemBeginMove(t.ormel);
  t.Press(20, 0);
  EXPECT_TRUE(t.ormel.mouse.MoveActive);
  EXPECT_EQ(t.ormel.feedback, "Place cursor at new vertex location and release mouse button");
  t.Move(40, -10);
  EXPECT_THAT(t.Overlaid(), ::testing::Contains("line 12 style1 200,200 280,220"));
  EXPECT_THAT(t.Overlaid(), ::testing::Contains("line 12 style1 240,160 280,220"));
  t.Release(40, -10);
  EXPECT_THAT(t.Overlaid(), ::testing::Not(::testing::Contains(::testing::HasSubstr("style1"))));
  EXPECT_EQ(t.Text("select Y from Vertices where X=40"), "-10");
  EXPECT_THAT(t.surface.picture.Layer("Linesinks"),
              ::testing::ElementsAre("line 9 w1.5 200,200 280,220 240,160"));
  t.ExpectSelectMode();
  t.Click(-80, -80);
  EXPECT_EQ(t.ormel.selection.SelectedType, Element::kNone);
  EXPECT_FALSE(t.ormel.menus.Enabled("EDITMOVEVERTEX"));
}

TEST(Mouse, AMoveThatIsGivenUpChangesNothing) {
  MouseProject t;
  t.ormel.db().Execute("insert into Particles (VID) values (?)", {t.AddVertex(0, 0)});
  t.Redraw();
  const auto picture = t.surface.picture.Lines();
  t.Click(0, 0);
  ElemBeginMove(t.ormel);
  t.Press(0, 0);
  t.Move(50, 50);
  EXPECT_THAT(t.Overlaid(), ::testing::Contains("line 12 295,95 305,105"));
  EXPECT_TRUE(Map_KeyDown(t.map, MapKey::kEscape));
  t.ExpectSelectMode();
  EXPECT_EQ(t.Number("select X from Vertices"), 0.0);
  t.Redraw();
  EXPECT_EQ(t.surface.picture.Lines(), picture);
  EXPECT_TRUE(t.Overlaid().empty());
}

TEST(Mouse, ADoubleClickEditsTheSelectedElement) {
  MouseProject t;
  t.AddWell(0, 0, "North");
  t.Redraw();
  Map_DblClick(t.map);
  EXPECT_TRUE(t.ui.shown_forms.empty()) << "nothing is selected";
  t.Click(0, 0);
  t.ui.OnForm("WellProperties", [](Form& form) {
    form.SetText("tbData(3)", "20");
    form.Click("OK");
  });
  Map_DblClick(t.map);
  EXPECT_EQ(t.Number("select Radius from Wells"), 20.0);
  EXPECT_THAT(t.Drawn("Wells"), ::testing::ElementsAre("circle 5 at 200,200 r40"));
}

TEST(Mouse, SnapsToTheEditorGrid) {
  MouseProject t;
  t.ormel.db().Execute("update Model set EDITGRIDSnap=True,EDITGRIDSpacing=10");
  t.map.SetUpLayers();
  t.Redraw();
  t.ui.OnForm("NoFlowString", Label);
  ElemAddNoFlowString(t.ormel);
  t.Click(13, 27);
  EXPECT_EQ(t.Number("select X from Vertices"), 10.0);
  EXPECT_EQ(t.Number("select Y from Vertices"), 30.0);
  t.Move(36, 36);
  EXPECT_EQ(t.ui.panels[Panel::kX], "X: 40.0 m");
}

TEST(Mouse, ShiftInspectsOnlyWithASolution) {
  MouseProject t;
  t.AddWell(0, 0, "North");
  for (const int shift : {kShiftKey, kShiftKey | kCtrlKey}) {
    t.Press(0, 0, shift);
    t.Release(0, 0);
    EXPECT_EQ(t.ui.LastTitle(), "Error");
    EXPECT_EQ(t.ui.LastText(), "No solution is present.  Solve the model and try again.");
  }
  EXPECT_EQ(t.ormel.selection.SelectedType, Element::kNone);
  EXPECT_TRUE(t.processes.requests.empty());
}

/// A solution whose solver answers queries at once.
struct QueryProject : MouseProject {
  std::vector<std::string> marked;  ///< what lay over the map while the solver ran

  QueryProject() {
    ormel.solution.ValidSolution = true;
    ormel.window.solved = {-100, 100, -100, 100};
    ormel.db().Execute("update Model set SOLVERX0=-100, SOLVERY0=-100");
    WriteAll(dir / "VADOX1.EXE", "");
    processes.on_run = [this](const ProcessRequest&, const auto&, const auto&) {
      marked = Overlaid();
      WriteAll(dir / "_INSPECT.XTR", "@ 110,120,3,.2,12,0,0,90,9,1,2,.1,.2,0, \r\n");
      WriteAll(dir / "_TRACE.PTH",
               "START\r\n"
               "       110.0000000   120.0000000     3.0000000     0.0000000     9.0000000\r\n"
               "       150.0000000   120.0000000     3.0000000   800.0000000     9.0000000\r\n"
               "END   well WL_000001\r\n");
      ProcessResult ended;
      ended.started = true;
      return ended;
    };
  }
};

TEST(Mouse, ShiftClickMarksThePointWhileItsResultsAreShown) {
  QueryProject t;
  t.Press(10, 20, kShiftKey);
  t.Release(10, 20);
  EXPECT_EQ(t.ui.LastTitle(), "Model Results");
  EXPECT_THAT(t.marked, ::testing::Contains(::testing::StartsWith("circle 12 at 220,160")));
  EXPECT_TRUE(t.Overlaid().empty());
  EXPECT_EQ(t.ormel.selection.SelectedType, Element::kNone);
}

TEST(Mouse, TracedLinesStayUntilClearedOrTheSolutionGoes) {
  QueryProject t;
  t.Press(10, 20, kShiftKey | kCtrlKey);
  EXPECT_TRUE(t.ui.boxes.empty()) << t.ui.LastText();
  const std::string line = "line 12 w2 220,160 300,160";
  EXPECT_THAT(t.Overlaid(), ::testing::ElementsAre(line));
  EXPECT_EQ(t.ormel.feedback, "Streamline of 800 days, ended by: well WL_000001");
  EXPECT_THAT(t.Drawn("Traced Lines"), ::testing::ElementsAre(line));
  EXPECT_TRUE(t.Overlaid().empty()) << "now it is part of the picture";
  t.ormel.layers.Switch(Layer::kTimeTics, true);
  t.ormel.solution.TimeTicSpacing = 300.0;
  EXPECT_GT(t.Drawn("Traced Lines").size(), 2U) << "with its marks of time";

  std::vector<std::string> legend;
  for (const LegendEntry& entry : LegendOf(t.ormel, t.map.state())) legend.push_back(entry.text);
  EXPECT_THAT(legend, ::testing::IsSupersetOf({"Traced streamline", "Time mark every 300 days"}));

  ClearTracedLines(t.ormel);
  EXPECT_TRUE(t.surface.picture.Layer("Traced Lines").empty());
  t.Press(10, 20, kShiftKey | kCtrlKey);
  InvalidateSolution(t.ormel, false, true);
  t.ormel.solution.ValidSolution = true;
  EXPECT_TRUE(t.Drawn("Traced Lines").empty()) << "a line of another solution";
}

TEST(Mouse, RightClickOpensAPanelInSelectModeOnly) {
  MouseProject t;
  t.ormel.db().Execute("insert into LinesinkStrings (PID,Label) values (?,'LS')", {t.AddPolygon("0,0 20,0")});
  t.AddWell(-50, -50, "w");
  t.RightClick(20, 0);
  t.RightClick(-50, -50);
  t.RightClick(80, 80);
  EXPECT_EQ(t.ui.shown_forms, std::vector<std::string>{"LSInfo"});
  t.ui.OnForm("NoFlowString", Label);
  ElemAddNoFlowString(t.ormel);
  t.Click(60, 60);
  t.Click(70, 60);
  t.RightClick(20, 0);
  EXPECT_EQ(std::ranges::count(t.ui.shown_forms, "LSInfo"), 1) << "it ends the string instead";
  t.ExpectSelectMode();
}

TEST(Mouse, IsDeafWhileDisabledOrWithoutAProject) {
  MouseProject t;
  t.AddWell(0, 0, "North");
  t.map.DisableMouse();
  t.Click(0, 0);
  t.map.EnableMouse();
  t.ormel.project.ProjectOpen = false;
  t.Click(0, 0);
  EXPECT_FALSE(Map_KeyDown(t.map, MapKey::kLeft));
  t.ormel.feedback = "old";
  t.Move(0, 0);
  EXPECT_EQ(t.ormel.feedback, "");
  EXPECT_EQ(t.ui.panels[Panel::kX], "");
  EXPECT_EQ(t.ormel.selection.SelectedType, Element::kNone);
  t.ormel.project.ProjectOpen = true;
  t.Click(0, 0);
  EXPECT_EQ(t.ormel.selection.SelectedType, Element::kWell);
}

TEST(Keys, PanAndZoomOutsideOfModes) {
  const struct {
    MapKey key;
    MapRect window;
  } cases[] = {{MapKey::kLeft, {-150, 50, 100, -100}}, {MapKey::kRight, {-50, 150, 100, -100}},
               {MapKey::kUp, {-100, 100, 150, -50}},   {MapKey::kDown, {-100, 100, 50, -150}},
               {MapKey::kPageUp, {-50, 50, 50, -50}},  {MapKey::kPageDown, {-200, 200, 200, -200}}};
  for (const auto& c : cases) {
    MouseProject t;
    EXPECT_TRUE(Map_KeyDown(t.map, c.key));
    EXPECT_EQ(t.ormel.window.SolveWindow, c.window);
  }
  MouseProject t;
  t.map.ZoomActions(Zoom::kRecentre);
  EXPECT_FALSE(Map_KeyDown(t.map, MapKey::kLeft));
  EXPECT_TRUE(Map_KeyDown(t.map, MapKey::kEscape));
  t.ExpectSelectMode();
}

}  // namespace
}  // namespace ormel::test
