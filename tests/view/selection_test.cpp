// Several elements at once, by the pointer and by the clipboard.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/command.h"
#include "core/window_commands.h"
#include "document/document.h"
#include "model/delete.h"
#include "model/move.h"
#include "model/observations.h"
#include "model/several.h"
#include "model/undo.h"
#include "support/model_dump.h"
#include "view/map_fixture.h"
#include "view/mouse.h"

namespace ormel::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Town : MapProject {
  Document document{ormel};
  FakeWindow window{ui.clipboard};
  Vid well = 0, far = 0;
  Pid brook = 0, marsh = 0, field = 0;

  explicit Town(bool metres = true) : MapProject(metres, metres) {
    ormel.ports.window = &window;
    ormel.gui.VertexTolerance = 0.01;
    RunCommand(ormel, "Test", [&] {
      well = AddWell(10, 10, "W", 2.5);
      far = AddWell(90, 90, "Far");
      brook = AddPolygon("0,0 20,0 20,20");
      ormel.db().Execute("insert into LinesinkStrings (PID,Label,StartingHead) values (?,'Brook\\1',5.25)",
                         {brook});
      marsh = AddPolygon("-50,-50 -30,-50 -30,-30");
      field = AddPolygon("-30,-50 -10,-50 -30,-30");
      for (const Pid pid : {marsh, field})
        ormel.db().Execute("insert into Inhomogeneities (PID,Label,HydCond) values (?,?,3)",
                           {pid, pid == marsh ? "Marsh" : "Field"});
      ormel.db().Execute(
          "insert into TextLabels (Text,X,Y,LabelType,FontName,FontSize) values "
          "('Tab\there',5,5,0,'Arial',10)");
    });
    document.Forget();
  }
  static DevicePoint At(double x, double y) {
    return {static_cast<int>((x + 100) * 2), static_cast<int>(400 - (y + 100) * 2)};
  }
  void Drag(MapPoint from, MapPoint to, int shift = 0) {
    Map_MouseDown(map, MouseButton::kLeft, shift, At(from.x, from.y));
    Map_MouseMove(map, MouseButton::kLeft, shift, At(to.x, to.y));
    Map_MouseUp(map, MouseButton::kLeft, shift, At(to.x, to.y));
  }
  void Click(double x, double y, int shift = 0) { Drag({x, y}, {x, y}, shift); }
  std::string Dump() { return DumpModel(ormel.db()); }
  MapPoint PointOf(Vid vid) { return PointsOf(ormel, {Element::kWell, vid}).front(); }
};

TEST(SeveralElements, AreSelectedByABoxAndComeAndGoByTheKeys) {
  Town t;
  t.Drag({-5, -5}, {25, 25});
  EXPECT_THAT(t.document.selected,
              ElementsAre(ElementId{Element::kWell, t.well}, ElementId{Element::kLinesink, t.brook},
                          ElementId{Element::kTextLabel, 1}));
  EXPECT_EQ(t.ormel.selection.SelectedType, Element::kNone);
  EXPECT_EQ(t.ormel.feedback, "3 elements are selected");
  const bool offered[] = {false, true, true, false};
  for (int i = 1; i <= 4; ++i) EXPECT_EQ(t.ormel.menus.Enabled("EDIT_CMDS", i), offered[i - 1]) << i;
  RecordingDevice top;
  t.map.PaintOverlay(top);
  EXPECT_TRUE(top.Drew("line 12 w1.5 200,200 240,200 240,160")) << "the string";
  EXPECT_TRUE(top.Drew("circle 12 at 220,180 r5")) << "the well";

  t.Click(90, 90, kCtrlKey);
  EXPECT_EQ(t.document.selected.size(), 4U);
  t.Click(90, 90, kCtrlKey);
  EXPECT_EQ(t.document.selected.size(), 3U);
  t.Drag({-60, -60}, {0, -20}, kShiftKey);
  EXPECT_EQ(t.document.selected.size(), 5U) << "two domains came";
  EXPECT_TRUE(t.ui.boxes.empty()) << "a dragged box inspects nothing";
  t.Drag({-60, -60}, {25, 25}, kShiftKey);
  EXPECT_THAT(t.document.selected, IsEmpty()) << "what was selected and lies in the box has left";
  t.Drag({5, 12}, {15, 8});
  EXPECT_EQ(t.ormel.selection.SelectedType, Element::kWell) << "one alone is selected as by a click";
  EXPECT_TRUE(Map_KeyDown(t.map, MapKey::kEscape));
  EXPECT_THAT(t.document.selected, IsEmpty());
  EditSelectAll(t.ormel);
  EXPECT_EQ(t.document.selected.size(), 6U);
}

TEST(SeveralElements, MoveInOneStepAndTakeSharedCornersAlong) {
  Town t;
  const std::string before = t.Dump();
  t.Drag({-60, -60}, {-20, -20});  // of the two domains only the marsh lies within
  t.Drag({-5, -5}, {25, 25}, kShiftKey);
  ASSERT_EQ(t.document.selected.size(), 4U);
  ElemBeginMove(t.ormel);
  EXPECT_EQ(t.ormel.activity, "Move Elements");
  Map_MouseDown(t.map, MouseButton::kLeft, 0, t.At(0, 0));
  EXPECT_THAT(t.surface.picture.Layer("Linesinks"), IsEmpty()) << "nothing stands at its old place";
  EXPECT_EQ(t.surface.picture.Layer("Wells").size(), 1U);
  Map_MouseMove(t.map, MouseButton::kLeft, 0, t.At(5, 30));
  RecordingDevice top;
  t.map.PaintOverlay(top);
  EXPECT_TRUE(top.Drew("line 12 210,140 250,140")) << "an edge of the string under the pointer";
  Map_MouseUp(t.map, MouseButton::kLeft, 0, t.At(5, 30));
  EXPECT_EQ(t.PointOf(t.well), (MapPoint{15, 40}));
  EXPECT_EQ(t.PointOf(t.far), (MapPoint{90, 90}));
  EXPECT_THAT(PointsOf(t.ormel, {Element::kInhomogeneity, t.field}),
              ElementsAre(MapPoint{-25, -20}, MapPoint{-10, -50}, MapPoint{-25, 0}));
  EXPECT_EQ(PointsOf(t.ormel, {Element::kTextLabel, 1}).front(), (MapPoint{10, 35}));
  EXPECT_THAT(t.surface.picture.Layer("Linesinks"), Contains("line 9 w1.5 210,140 250,140 250,100"));
  EXPECT_EQ(t.document.history().size(), 1U);
  EditUndo(t.ormel);
  EXPECT_EQ(t.Dump(), before);

  t.Drag({-5, -5}, {25, 25});
  ElemBeginMove(t.ormel);
  Map_MouseDown(t.map, MouseButton::kLeft, 0, t.At(0, 0));
  Map_KeyDown(t.map, MapKey::kEscape);
  EXPECT_EQ(t.surface.picture.Layer("Linesinks").size(), 1U) << "a move given up brings them back";
  EXPECT_EQ(t.Dump(), before);
}

TEST(SeveralElements, AreDeletedInOneStepWithTheSolutionAskedAboutOnce) {
  Town t;
  t.ormel.solution.ValidSolution = true;
  const std::string before = t.Dump();
  EditSelectAll(t.ormel);
  t.ui.AnswerTo("Confirm", {Answer::kCancel, Answer::kOk});
  t.ui.AnswerTo("Model Changed!", {Answer::kYes});
  ElemDeleteElements(t.ormel);
  EXPECT_EQ(t.Dump(), before);
  EXPECT_EQ(t.ui.LastText(), "Delete the 6 selected elements?");
  ElemDeleteElements(t.ormel);
  EXPECT_EQ(t.ormel.db().RowCount("Vertices") + t.ormel.db().RowCount("Polygons"), 0);
  EXPECT_FALSE(t.ormel.solution.ValidSolution);
  EXPECT_EQ(t.document.history().size(), 1U);
  EditUndo(t.ormel);
  EXPECT_EQ(t.Dump(), before);
}

TEST(CopiedElements, ArePastedBesideTheirOriginalsWithLabelsOfTheirOwn) {
  Town t;
  t.Drag({-5, -5}, {25, 25});
  EditCopy(t.ormel);
  EditPaste(t.ormel);
  EditPaste(t.ormel);
  EXPECT_EQ(t.document.history().size(), 2U);
  EXPECT_EQ(t.Text("select Label from Wells where Label like 'W (*' order by VID"), "W (2)");
  EXPECT_EQ(t.Number("select count(*) from Wells where Label='W (3)' and Radius=2.5"), 1.0);
  EXPECT_EQ(t.Number("select count(*) from LinesinkStrings where Label='Brook\\1 (2)' and StartingHead=5.25"),
            1.0);
  EXPECT_EQ(t.Number("select count(*) from TextLabels where Text='Tab\there'"), 3.0);
  EXPECT_EQ(t.document.selected.size(), 3U) << "the copies are selected, to be moved on";
  EXPECT_EQ(t.Number("select count(*) from (select distinct X,Y from Vertices)") + 2.0,
            t.Number("select count(*) from Vertices"))
      << "no vertex on another one but the two shared corners that were there";
  const std::string pasted = t.Dump();
  EditUndo(t.ormel);
  EditUndo(t.ormel);
  EXPECT_EQ(t.Number("select count(*) from Wells"), 2.0);
  EditRedo(t.ormel);
  EditRedo(t.ormel);
  EXPECT_EQ(t.Dump(), pasted);
}

TEST(CopiedElements, GoToAnotherProjectAsTheyAreUnlessItsUnitsDiffer) {
  Town from;
  EditSelectAll(from.ormel);
  EditCopy(from.ormel);
  MapProject to;
  Document document{to.ormel};
  FakeWindow window{from.ui.clipboard};
  to.ormel.ports.window = &window;
  to.ormel.gui.VertexTolerance = 0.01;
  EditPaste(to.ormel);
  for (const char* table : {"Wells", "LinesinkStrings", "Inhomogeneities", "TextLabels"})
    EXPECT_EQ(to.ormel.db().RowCount(table), from.ormel.db().RowCount(table)) << table;
  for (const char* sql : {"select sum(X*(Y+7)) from Vertices", "select sum(HydCond) from Inhomogeneities",
                          "select sum(Radius) from Wells"})
    EXPECT_EQ(to.Number(sql), from.Number(sql)) << sql;

  Town feet(false);
  feet.ui.clipboard = from.ui.clipboard;
  const std::string before = feet.Dump();
  EditPaste(feet.ormel);
  EXPECT_THAT(feet.ui.LastText(), HasSubstr("other units of length"));
  EXPECT_EQ(feet.Dump(), before);
}

TEST(CopiedElements, ThatCannotBeReadAreRefusedWithTheirLine) {
  const std::string head = "Ormel elements\t1\nBasemapMeters\t1\nComputeMeters\t1\n";
  const struct {
    std::string text, says;
  } cases[] = {
      {"some words", "The clipboard holds no elements."},
      {head, "The clipboard holds no elements."},
      {"Ormel elements\t9\n", "another version"},
      {head + "element\tCars\n", "line 4: \"Cars\" is no kind of element"},
      {head + "element\tModel\n", "line 4: \"Model\" is no kind of element"},
      {head + "field\tLabel\ttext\tx\n", "stands before the first element"},
      {head + "element\tWells\nfield\tVID\twhole\t7\npoint\t1\t2\n", "have no field \"VID\""},
      {head + "element\tWells\nfield\tRadius\tnumber\tnan\npoint\t1\t2\n", "line 5: \"nan\" is no number"},
      {head + "element\tWells\nfield\tRadius\tnumber\t-1\npoint\t1\t2\n", "not above 0"},
      {head + "element\tWells\nfield\tLabel\ttext\tMirror_W\npoint\t1\t2\n", "image of another one"},
      {head + "element\tWells\npoint\t1\t1e999\n", "line 5: \"1e999\" is no number"},
      {head + "element\tWells\npoint\t1\n", "line 5: it is cut short"},
      {head + "element\tWells\n", "has 0 points"},
      {head + "element\tInhomogeneities\npoint\t1\t2\npoint\t3\t4\nelement\tWells\npoint\t1\t2\n",
       "line 7: the element before has 2 points"},
  };
  Town t;
  const std::string before = t.Dump();
  for (const auto& c : cases) {
    t.ui.clipboard = c.text;
    EditPaste(t.ormel);
    EXPECT_THAT(t.ui.LastText(), HasSubstr(c.says)) << c.text;
    EXPECT_EQ(t.Dump(), before) << c.text;
  }
  t.ui.clipboard = head + "element\tWells\nfield\tLabel\ttext\t" + std::string(65, 'x') +
                   "\nfield\tRadius\tnumber\t1\npoint\t1\t2\n";
  EditPaste(t.ormel);
  EXPECT_THAT(t.ui.LastText(), HasSubstr("Table Wells, field Label")) << "the store has the last word";
  EXPECT_EQ(t.Dump(), before) << "and nothing is half pasted";
}

TEST(Drawing, GoesOnThroughAZoomWhileTheMenusRest) {
  Town t;
  t.ui.OnForm("FluxInspectDialog", [](Form& form) {
    for (const ControlSpec& control : form.Controls())
      if (control.kind == ControlKind::kText) form.SetText(control.name, "across");
    form.Click("OK");
  });
  ModelAddFluxInspect(t.ormel);
  t.Click(40, 40);
  t.map.ZoomActions(Zoom::kIn);
  EXPECT_EQ(t.ormel.mouse.MouseMode, MouseMode::kDigitize);
  EXPECT_TRUE(t.ormel.mouse.MenusOff);
  const DevicePoint end = t.map.vg().vgGDIWorldToDevice(45, 45);
  Map_MouseDown(t.map, MouseButton::kLeft, 0, end);
  Map_MouseDown(t.map, MouseButton::kRight, 0, end);
  EXPECT_FALSE(t.ormel.mouse.MenusOff);
  EXPECT_EQ(t.Number("select count(*) from Vertices where PID in (select PID from FluxInspect)"), 2.0);
  EXPECT_THAT(t.surface.picture.Layer("Flux Lines"), testing::Not(IsEmpty()));
}

}  // namespace
}  // namespace ormel::test
