#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "core/layers.h"
#include "view/display_commands.h"
#include "view/map_fixture.h"

namespace ormel::test {
namespace {

struct ZoomCase {
  Zoom code;
  MapRect rect, window;
};

TEST(ZoomActions, ChangesTheWindowByItsCode) {
  const ZoomCase cases[] = {
      {Zoom::kIn, {}, {-50, 50, 50, -50}},
      {Zoom::kOut, {}, {-200, 200, 200, -200}},
      {Zoom::kLeft, {}, {-150, 50, 100, -100}},
      {Zoom::kRight, {}, {-50, 150, 100, -100}},
      {Zoom::kUp, {}, {-100, 100, 150, -50}},
      {Zoom::kDown, {}, {-100, 100, 50, -150}},
      {Zoom::kRedraw, {}, {-100, 100, 100, -100}},
      {Zoom::kApplyWindow, {0, 10, 10, 0}, {0, 10, 10, 0}},
      {Zoom::kApplyRectangle, {0, 2, 2, 0}, {0, 2, 2, 0}},
      {Zoom::kApplyRectangle, {0, 40, 20, 0}, {0, 40, 30, -10}},
      {Zoom::kRecentreAtClick, {}, {-70, 130, 140, -60}},
  };
  for (const ZoomCase& c : cases) {
    MapProject t;
    t.ormel.mouse.LastX = 30;
    t.ormel.mouse.LastY = 40;
    t.map.ZoomActions(c.code, c.rect);
    EXPECT_EQ(t.ormel.window.SolveWindow, c.window) << static_cast<int>(c.code);
    EXPECT_EQ(t.Number("select WINDOWX1 from Model"), c.window.x1);
    EXPECT_EQ(t.Number("select WINDOWX2 from Model"), c.window.x2);
    EXPECT_EQ(t.Number("select WINDOWY1 from Model"), c.window.y1);
    EXPECT_EQ(t.Number("select WINDOWY2 from Model"), c.window.y2);
    const double w = c.window.Width(), h = c.window.Height();
    EXPECT_DOUBLE_EQ(t.ormel.selection.radius_squared, (w * w + h * h) * 0.0005);
    EXPECT_DOUBLE_EQ(t.ormel.solution.default_step, 0.004 * std::hypot(w, h));
    EXPECT_EQ(t.ormel.mouse.MouseMode, MouseMode::kSelect);
    EXPECT_EQ(t.ormel.activity, "Select");
    EXPECT_EQ(t.surface.pictures, t.surface.finished);
  }
}

TEST(ZoomActions, RefusesARectangleBelowOnePercent) {
  for (const MapRect& small : {MapRect{0, 1.99, 50, 0}, MapRect{0, 50, 1.99, 0}}) {
    MapProject t;
    t.map.ZoomActions(Zoom::kApplyRectangle, small);
    EXPECT_EQ(t.ui.LastTitle(), "Can't set window");
    EXPECT_EQ(t.ui.LastText(), "Selected window is too small");
    EXPECT_EQ(t.ormel.window.SolveWindow, (MapRect{-100, 100, 100, -100}));
  }
}

TEST(ZoomActions, StopsAtTheLimitAfterTheRedraw) {
  const struct {
    bool metres;
    double width;
    bool may;
  } cases[] = {{true, 0.2, true}, {true, 0.19, false}, {false, 0.07, true}, {false, 0.06, false}};
  for (const auto& c : cases) {
    MapProject t(c.metres, true);
    t.map.ZoomActions(Zoom::kApplyWindow, {0, c.width, c.width, 0});
    EXPECT_EQ(t.surface.pictures, 2);
    EXPECT_EQ(t.ormel.menus.Enabled("WINDOWZOOMIN"), c.may) << c.width;
    EXPECT_EQ(t.ormel.menus.Enabled("WINDOWZOOMWIN"), c.may);
    EXPECT_EQ(t.ormel.menus.Enabled("ZOOM_CMDS", 1), c.may);
    EXPECT_EQ(t.ormel.menus.Enabled("ZOOM_CMDS", 4), c.may);
    t.map.ZoomActions(Zoom::kOut);
    t.map.ZoomActions(Zoom::kOut);
    EXPECT_TRUE(t.ormel.menus.Enabled("WINDOWZOOMIN"));
  }
}

TEST(ZoomActions, MendsAWindowThatCannotBeDrawn) {
  const double nan = std::nan("");
  const MapRect full{0, 50, 50, 0};
  const MapRect cases[][2] = {{{100, -100, -100, 100}, {-100, 100, 100, -100}},
                              {{5, 5, 10, 0}, full},
                              {{nan, 1, 1, 0}, full},
                              {{-INFINITY, INFINITY, 1, 0}, full}};
  for (const auto& [given, drawn] : cases) {
    MapProject t;
    t.ormel.window.full = ExtentsOf(full);
    t.ormel.window.SolveWindow = given;
    t.Redraw();
    EXPECT_EQ(t.ormel.window.SolveWindow, drawn);
    EXPECT_EQ(t.map.vg().World(), drawn);
  }
}

TEST(ZoomActions, KeepsTheWindowThatCanBeDrawn) {
  MapProject t;
  t.map.ZoomActions(Zoom::kApplyWindow, {0, 1e9, 1e9, 0});
  EXPECT_THAT(t.ui.LastText(), ::testing::HasSubstr("Can't zoom in any further!"));
  EXPECT_EQ(t.ormel.window.SolveWindow, (MapRect{-100, 100, 100, -100}));
}

TEST(ZoomActions, ReportsOnlyWhileTheUserRedrawsByHand) {
  MapProject t;
  t.ormel.layers.Switch(Layer::kManualRedraw, true);
  const int pictures = t.surface.pictures;
  t.map.ZoomActions(Zoom::kRedrawInPlace);
  EXPECT_EQ(t.surface.pictures, pictures);
  EXPECT_EQ(t.ormel.activity, "REDRAW");
  EXPECT_EQ(t.ormel.feedback, "Current picture is obsolete -- press CTRL-L to refresh");
  t.map.ZoomActions(Zoom::kIn);
  EXPECT_EQ(t.surface.pictures, pictures + 1) << "a zoom redraws all the same";
}

TEST(ZoomActions, StartsItsModesFromSelectOnly) {
  MapProject t;
  t.map.ZoomActions(Zoom::kStartRectangle);
  EXPECT_EQ(t.ormel.mouse.MouseMode, MouseMode::kRectangle);
  EXPECT_EQ(t.ormel.mouse.MouseElement, Element::kZoomRectangle);
  t.map.ZoomActions(Zoom::kRecentre);
  EXPECT_EQ(t.ormel.mouse.MouseElement, Element::kRecentre);
  EXPECT_EQ(t.ormel.mouse.cursor, 5);
  EXPECT_EQ(t.ormel.activity, "Recenter");
  EXPECT_TRUE(t.ormel.mouse.MenusOff);
  EXPECT_FALSE(t.ormel.menus.Enabled("FILEMENU"));
  EXPECT_FALSE(t.ormel.menus.Enabled("Toolbar1"));
  t.map.ZoomActions(Zoom::kStartRectangle);
  EXPECT_EQ(t.ormel.mouse.MouseElement, Element::kRecentre) << "not from another mode";
  t.map.ZoomActions(Zoom::kRecentreAtClick);
  EXPECT_FALSE(t.ormel.mouse.MenusOff);
  EXPECT_TRUE(t.ormel.menus.Enabled("FILEMENU"));
}

TEST(ZoomActions, RefusesAnUnknownCode) {
  MapProject t;
  t.map.ZoomActions(static_cast<Zoom>(6));
  EXPECT_EQ(t.ui.LastText(), "Internal error in Zoom commands");
}

TEST(SavedWindows, AreKeptAndRestored) {
  MapProject t;
  t.ui.InputTo("Save Window", "Town's centre");
  t.ui.InputTo("Save Window", "");
  t.map.ZoomActions(Zoom::kSaveWindow);
  t.map.ZoomActions(Zoom::kIn);
  t.map.ZoomActions(Zoom::kSaveWindow);
  EXPECT_EQ(t.Number("select count(*) from SavedWindows"), 1.0) << "an empty name saves nothing";
  t.ui.InputTo("Save Window", "close");
  t.map.ZoomActions(Zoom::kSaveWindow);
  t.ui.OnForm("RestoreWindow", [](Form& form) {
    EXPECT_EQ(form.State("lstWindows").items, (std::vector<std::string>{"Town's centre", "close"}));
    EXPECT_EQ(form.Number("txX2"), 100.0);
    form.Click("Navigate(1)");
    EXPECT_EQ(form.Number("txX2"), 50.0);
    form.Click("DeleteWindow");
    EXPECT_EQ(form.Number("txY2"), -100.0);
    form.Click("OK");
  });
  t.map.ZoomActions(Zoom::kRestoreWindow);
  EXPECT_EQ(t.ormel.window.SolveWindow, (MapRect{-100, 100, 100, -100}));
  EXPECT_EQ(t.Text("select Name from SavedWindows"), "Town's centre");
}

TEST(MapView, WorksWithoutASurface) {
  TestProject t;
  MapViewImpl map(t.ormel, nullptr);
  t.ormel.ports.view = &map;
  map.SetUpLayers();
  map.ZoomActions(Zoom::kApplyWindow, {0, 10, 10, 0});
  map.ShowPlace(Element::kWell, {0, 0});
  map.Refresh();
  EXPECT_EQ(t.Number("select WINDOWX2 from Model"), 10.0);
}

TEST(MapView, TheWheelKeepsSelectionAndMode) {
  MapProject t;
  t.ormel.mouse.MouseMode = MouseMode::kDigitize;
  t.ormel.mouse.MouseElement = Element::kLinesink;
  t.ormel.mouse.LineInProgress = true;
  t.map.ZoomAbout({300, 200}, 0.5);  // the point (50, 0) stays where it is
  EXPECT_EQ(t.ormel.window.SolveWindow, (MapRect{-25, 75, 50, -50}));
  EXPECT_EQ(t.ormel.mouse.MouseMode, MouseMode::kDigitize);
  EXPECT_TRUE(t.ormel.mouse.LineInProgress);
  t.map.Pan({0, 0}, {40, -80});
  EXPECT_EQ(t.ormel.window.SolveWindow, (MapRect{-35, 65, 30, -70}));
}

TEST(MapView, DrawsTheEditorGridUnderEverything) {
  MapProject t;
  t.ormel.db().Execute("update Model set EDITGRIDShow=True,EDITGRIDSpacing=100");
  t.map.SetUpLayers();
  t.Redraw();
  EXPECT_EQ(t.surface.picture.Layer("Editor Grid").size(), 8U);
  t.ormel.project.ProjectOpen = false;
  t.map.ZoomActions(Zoom::kRedrawInPlace);
  EXPECT_EQ(t.surface.picture.Lines(), (std::vector<std::string>{"clear 15"}));
  t.ormel.project.ProjectOpen = true;
}

TEST(EditorGrid, IsStoredShownAndSnapsByItsCommands) {
  MapProject t;
  t.ormel.db().Execute("update Model set EDITGRIDShow=False,EDITGRIDSpacing=100");
  t.map.SetUpLayers();
  EDITORGRID(t.ormel, kGridShow);
  EXPECT_EQ(t.surface.picture.Layer("Editor Grid").size(), 8U);
  EDITORGRID(t.ormel, kGridSnap);
  EXPECT_TRUE(t.ormel.mouse.Snap);
  for (const char* text : {"0", "-5", "ten", "50"}) t.ui.InputTo("Editor Grid Settings", text);
  for (int i = 0; i < 4; ++i) EDITORGRID(t.ormel, kGridSettings);
  EXPECT_EQ(t.ui.boxes.size(), 3U);
  EXPECT_EQ(t.Number("select EDITGRIDSpacing from Model"), 50.0);
  EXPECT_EQ(t.surface.picture.Layer("Editor Grid").size(), 12U);
}

TEST(Layers, AreOfferedOnceTheyHaveSomethingToShow) {
  MapProject t;
  EXPECT_FALSE(t.ormel.layers.Offered(Layer::kTestPoints));
  EXPECT_FALSE(t.ormel.layers.Offered(Layer::kPathlines));
  t.ormel.db().Execute("insert into TestPoints (VID,Label) values (?,'TP')", {t.AddVertex(0, 0)});
  t.map.Refresh();
  EXPECT_TRUE(t.ormel.layers.Offered(Layer::kTestPoints));
  t.ormel.solution.ValidSolution = true;
  t.Redraw();
  EXPECT_TRUE(t.ormel.layers.On(Layer::kPathlines)) << "paths are asked for by the settings";
  EXPECT_TRUE(t.ormel.layers.On(Layer::kPathlines));
  t.ormel.layers.Switch(Layer::kPathlines, false);
  t.Redraw();
  EXPECT_FALSE(t.ormel.layers.On(Layer::kPathlines)) << "the user's choice stays";
  t.ormel.mouse.MouseMode = MouseMode::kDigitize;
  t.ormel.mouse.MouseElement = Element::kCapzone;
  t.ormel.mouse.CurrentPID = t.AddPolygon("0,0 10,0 0,10");
  t.Redraw();  // what is being drawn is shown
  EXPECT_TRUE(t.ormel.layers.On(Layer::kCapzones));
}

TEST(ResultsOverlay, IsChosenByItsCommand) {
  MapProject t;
  t.ormel.solution.ValidSolution = true;
  t.ormel.db().Execute(
      "insert into LSResults (Label,VadoxLabel,X1,Y1,X2,Y2,SpecifiedHead,Discharge,"
      "CalculatedHead,Resistance) values ('a','b',0,0,10,0,5,-8,5,0)");
  t.ui.OnForm("ResultOverlay", [](Form& form) {
    form.SetChecked("chkLSShow", true);
    form.SetChecked("LSSetting(2)", true);
    form.Click("OK");
  });
  ResultsOverlayCommand(t.ormel);
  EXPECT_THAT(t.surface.picture.Layer("Results Overlay"),
              ::testing::ElementsAre("line 10 w2 200,200 220,200"));
}

TEST(MapView, AFailureInALayerLeavesTheProgramUsable) {
  MapProject t;
  t.map.state().basemaps = [](const MapCanvas&) { throw std::runtime_error("the map is torn"); };
  t.map.ZoomActions(Zoom::kIn);
  EXPECT_THAT(t.ui.LastText(), ::testing::HasSubstr("Unhandled error in Redraw_Basemap"));
  EXPECT_THAT(t.ui.LastText(), ::testing::HasSubstr("the map is torn"));
  EXPECT_FALSE(t.ormel.mouse.MouseDisabled);
  EXPECT_TRUE(t.ormel.menus.Enabled("FILE_CMDS", 2));
  EXPECT_EQ(t.surface.pictures, t.surface.finished);
  t.map.state().basemaps = nullptr;
  t.map.ZoomActions(Zoom::kRedraw);
  EXPECT_EQ(t.surface.pictures, t.surface.finished);
}

TEST(Zoom, ToExtentsComesBackFromALargeWindow) {
  MapProject t;
  t.ormel.db().Execute("delete from Vertices");
  t.AddWell(10, 20, "A");
  t.AddWell(60, 70, "B");
  t.ormel.db().Execute("update Model set UNIFLOWCompute=1");
  for (int i = 0; i < 6; ++i) t.map.ZoomActions(Zoom::kOut);
  t.map.ZoomActions(Zoom::kExtents);
  EXPECT_EQ(t.ormel.window.SolveWindow, (MapRect{10, 60, 70, 20}));
  EXPECT_TRUE(t.ormel.window.at_extents);
  t.ormel.db().Execute("delete from Vertices where X>50");
  t.AddWell(50, 20, "C");  // all on one line: the window still has a height
  for (int i = 0; i < 6; ++i) t.map.ZoomActions(Zoom::kOut);
  t.map.ZoomActions(Zoom::kExtents);
  EXPECT_NEAR(t.ormel.window.SolveWindow.Width(), 40.0, 1e-9);
  EXPECT_NEAR(t.ormel.window.SolveWindow.y1, 40.0, 1e-9);
}

}  // namespace
}  // namespace ormel::test
