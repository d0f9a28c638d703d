#include "view/symbols.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/command.h"
#include "core/layers.h"
#include "document/document.h"
#include "view/map_fixture.h"

namespace ormel::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

using Strings = std::vector<std::string>;

TEST(Redraw, DrawsTheLayersInTheirOrder) {
  MapProject t;
  Database& db = t.ormel.db();
  db.Execute("update Model set UNIFLOWCompute=1,CONTOURShow=1");
  t.AddWell(0, 0, "North");
  db.Execute("insert into LinesinkStrings (PID,Label) values (?,'LS')", {t.AddPolygon("0,0 10,10")});
  db.Execute("insert into NoFlowStrings (PID,Label) values (?,'HB')", {t.AddPolygon("0,0 10,10")});
  db.Execute("insert into Inhomogeneities (PID,Label) values (?,'IN')", {t.AddPolygon("0,0 10,0 0,10")});
  db.Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,Type,Point1X,Point1Y,Point2X,Point2Y) "
      "values ('North',20,0,0,1,1,1,5,5)");
  db.Execute("insert into TestPoints (VID,Label) values (?,'TP')", {t.AddVertex(20, 20)});
  db.Execute("insert into Particles (VID) values (?)", {t.AddVertex(30, 30)});
  db.Execute("insert into FluxInspect (PID,Label) values (?,'FI')", {t.AddPolygon("0,0 10,10")});
  db.Execute("insert into Capzones (PID,Label) values (?,'CZ')", {t.AddPolygon("0,0 10,10")});
  db.Execute("insert into TextLabels (Text,X,Y,ScalerX) values ('here',0,0,200)");
  t.ormel.layers.Switch(Layer::kWhpas, true);
  t.ormel.layers.Switch(Layer::kHaze, true);
  for (const Layer layer : {Layer::kContours, Layer::kPathlines, Layer::kCapzones, Layer::kResultsOverlay})
    TurnOnLayer(t.ormel, layer);
  t.ormel.solution = {.ValidSolution = true, .PathlinesValid = true, .ContoursValid = true};
  db.Execute("insert into TPResults (VID,ObsHead,ModelHead,Difference,X,Y) values (1,0,0,1,20,20)");
  db.Execute(
      "insert into LSResults (Label,VadoxLabel,X1,Y1,X2,Y2,SpecifiedHead,Discharge,CalculatedHead,"
      "Resistance) values ('LS','LS_000002_0001',0,0,10,10,5,8,5,0)");
  t.map.state().overlay = {"Strength", 10.0};
  t.map.state().basemaps = [](const MapCanvas& c) {
    c.vg.vgGDILine({0, 0}, {5, 5}, PenStyle::kSolid, 1.0, QBColor(8));
  };
  WriteAll(t.dir / "town.CTR",
           "LEVEL 10.0\r\n             10.0         +10.0\r\n"
           "             20.0         +20.0\r\n");
  WriteAll(t.dir / "town.PTH",
           "START\r\n      "
           "10.0000000000 "
           "10.0000000000 "
           " 5.0000000000 "
           " 0.0000000000 "
           " 5.0000000000\r\n      "
           "20.0000000000 "
           "20.0000000000 "
           " 5.0000000000 "
           " 9.0000000000 "
           " 5.0000000000\r\nEND\r\n");
  t.Redraw();
  const Strings order{"Base Maps",  "Haze",          "Capture Zones",   "Uniform Flow",
                      "Linesinks",  "Barriers",      "Inhomogeneities", "Stream Boundaries",
                      "WHPAs",      "Contours",      "Pathlines",       "Results Overlay",
                      "Flux Lines", "Particles",     "Wells",           "Test Points",
                      "Text",       "Contour Labels"};
  EXPECT_EQ(t.surface.picture.LayersDrawn(), order);
  EXPECT_EQ(t.surface.picture.Lines().front(), "clear 15");
  EXPECT_THAT(t.surface.picture.Layer("Haze"), ElementsAre("cover 15 opacity 0.428571 0,0 400,400"));

  t.ormel.layers.Switch(Layer::kElements, false);
  t.Redraw();
  const Strings without{
      "Base Maps",       "Haze",       "Capture Zones", "Uniform Flow", "Contours", "Pathlines",
      "Results Overlay", "Flux Lines", "Particles",     "Test Points",  "Text",     "Contour Labels"};
  EXPECT_EQ(t.surface.picture.LayersDrawn(), without);
}

struct WellCase {
  const char* label;
  double head;  ///< of its results row
  bool valid;
  const char* color;
};

TEST(Wells, ShowTheirKindByColour) {
  const WellCase cases[] = {
      {"North", 10.0, true, "5"},
      {"North", -1000.0, true, "5"},
      {"North", -1000.5, true, "10"},
      {"North", -9999.0, true, "10"},
      {"North", -9999.0, false, "5"},
      {"Mirror_North", 10.0, true, "170/170/170"},
      {"Mirror_North", 10.0, false, "170/170/170"},
  };
  for (const WellCase& c : cases) {
    MapProject t;
    const Vid vid = t.AddWell(0, 0, c.label);
    char label[16];
    std::snprintf(label, sizeof label, "WL_%06d", static_cast<int>(vid));
    t.ormel.db().Execute(
        "insert into WLResults (VadoxLabel,X,Y,Radius,SpecifiedHead,Discharge,Head) "
        "values (?,0,0,1,0,0,?)",
        {label, c.head});
    t.ormel.solution.ValidSolution = c.valid;
    EXPECT_THAT(t.Drawn("Wells"), ElementsAre(std::string("circle ") + c.color + " at 200,200 r20"))
        << c.label << " " << c.head;
  }
}

TEST(Wells, HaveTwoCirclesInMapUnitsAndALabel) {
  MapProject t(false, true);  // map in feet, radius in metres
  t.AddWell(0, 0, "O'Hara", 3.048, 6.096);
  t.AddWell(50, 0, "tiny", 0.1);
  EXPECT_THAT(t.Drawn("Wells"),
              ElementsAre("circle 5 at 200,200 r40", "circle 5 at 200,200 r20", "circle 5 at 300,200 r3"));
  t.ormel.layers.Switch(Layer::kWellLabels, true);
  // 0.015 of the width of 200 is 3 units or 6 pixels; 0.005 of the height is one unit or 2 pixels.
  EXPECT_THAT(t.Drawn("Well Labels"), Contains("text \"O'Hara\" at 206,202 9 h13 Verdana bold"));
  t.surface.picture.Shape(DisplayList(400, 400, 192));
  EXPECT_THAT(t.Drawn("Wells"), Contains("circle 5 at 300,200 r6"))
      << "as large on a screen of twice the density";
}

TEST(Linesinks, ShowTheirKindByColour) {
  const struct {
    int head_specified, drain, far_field;
    const char* color;
  } cases[] = {{0, 1, 1, "5"}, {1, 1, 1, "6"}, {1, 0, 1, "3"}, {1, 0, 0, "9"}};
  for (const auto& c : cases) {
    MapProject t;
    t.ormel.db().Execute(
        "insert into LinesinkStrings (PID,Label,HeadSpecified,Drain,FarField) "
        "values (?,'LS',?,?,?)",
        {t.AddPolygon("0,0 10,0 10,10"), c.head_specified, c.drain, c.far_field});
    EXPECT_THAT(t.Drawn("Linesinks"),
                ElementsAre(std::string("line ") + c.color + " w1.5 200,200 220,200 220,180"));
  }
  MapProject t;
  t.ormel.db().Execute("insert into LinesinkStrings (PID,Label,Drain) values (?,'LS',null)",
                       {t.AddPolygon("0,0 10,0")});
  t.ormel.gui.LinesinkShadow = 4.0;
  t.ormel.layers.Switch(Layer::kLinesinkVertices, true);
  const Strings lines = t.Drawn("Linesinks");
  ASSERT_EQ(lines.size(), 4U) << "shadow, line, two vertices";
  EXPECT_EQ(lines[0], "line 15 w4 200,200 220,200");
  EXPECT_EQ(lines[1], "line 9 w1.5 200,200 220,200");
  EXPECT_EQ(lines[2], "line 0 204,200 200,196 196,200 200,204 204,200");
}

TEST(Barriers, CloseWhenTheyBoundADomain) {
  for (const int closed : {0, 1, 2, 3}) {
    MapProject t;
    t.ormel.db().Execute("insert into NoFlowStrings (PID,Label,Color,Closed) values (?,'HB',255,?)",
                         {t.AddPolygon("0,0 10,0 10,10"), closed});
    Strings expected{"line 12 w2 200,200 220,200 220,180"};
    if (closed != 0) expected.push_back("line 12 w2 220,180 200,200");
    EXPECT_EQ(t.Drawn("Barriers"), expected) << closed;
  }
}

TEST(Inhomogeneities, MarkTheirVerticesWhereACornerIsShared) {
  MapProject t;
  Database& db = t.ormel.db();
  db.Execute("insert into Inhomogeneities (PID,Label,Color) values (?,'A',0)",
             {t.AddPolygon("0,0 10,0 10,10")});
  db.Execute("insert into Inhomogeneities (PID,Label,Color) values (?,'B',0)",
             {t.AddPolygon("10,10 20,10 20,20")});
  db.Execute("insert into Inhomogeneities (PID,Label,Color) values (?,'C',0)",
             {t.AddPolygon("-10,-10 -20,-10 -20,-20")});
  EXPECT_EQ(t.Drawn("Inhomogeneities").size(), 6U) << "boundary and closing side of each";
  t.ormel.layers.Switch(Layer::kDomainVertices, true);
  const Strings marked = t.Drawn("Inhomogeneities");
  EXPECT_EQ(marked.size(), 12U) << "three marks on A and on B, none on C";
  EXPECT_THAT(marked, Contains("line 8 w2 224,180 220,176 216,180 220,184 224,180"));
}

struct TestPointCase {
  const char* what;
  bool text, scaled, valid;
  int scaling;
  double difference;
  Strings drawn;
};

TEST(TestPoints, FollowTheDisplayAndTheSignOfTheDifference) {
  const TestPointCase cases[] = {
      {"plain, no solution", false, false, false, kTestScale5, 3.0, {"circle 4 style5 at 200,200 r2 fill 4"}},
      {"plain, above", false, false, true, kTestScale5, 3.0, {"circle 2 style5 at 200,200 r2 fill 2"}},
      {"exactly 0 is red", false, false, true, kTestScale5, 0.0, {"circle 4 style5 at 200,200 r2 fill 4"}},
      {"below is red", false, false, true, kTestScale5, -3.0, {"circle 4 style5 at 200,200 r2 fill 4"}},
      {"text has a sign",
       true,
       false,
       true,
       kTestScale5,
       1.234,
       {"area 2 fill 2 204,200 200,196 196,200 200,204", "line 2 200,204 200,196",
        "text \"+1.23\" at 207,200 2 h13 Arial"}},
      {"scaled by 5",
       false,
       true,
       true,
       kTestScale5,
       -10.0,
       {"area 4 fill 4 208,200 200,192 192,200 200,208", "line 4 200,208 200,192"}},
      {"scaled by 20",
       false,
       true,
       true,
       kTestScale20,
       -10.0,
       {"area 4 fill 4 202,200 200,198 198,200 200,202", "line 4 200,202 200,198"}},
  };
  for (const TestPointCase& c : cases) {
    MapProject t;
    const Vid vid = t.AddVertex(0, 0);
    t.ormel.db().Execute("insert into TestPoints (VID,Label) values (?,'TP')", {vid});
    t.ormel.db().Execute("insert into TPResults (VID,ObsHead,ModelHead,Difference,X,Y) values (?,0,0,?,0,0)",
                         {vid, c.difference});
    t.ormel.solution.ValidSolution = c.valid;
    t.ormel.layers.Switch(Layer::kTestText, c.text);
    t.ormel.layers.Switch(Layer::kTestScaled, c.scaled);
    for (const int item : {kTestScale5, kTestScale10, kTestScale20})
      t.ormel.layers.Switch(*LayerOf("TPSCALING", item), item == c.scaling);
    EXPECT_EQ(t.Drawn("Test Points"), c.drawn) << c.what;
    t.ormel.layers.Switch(Layer::kTestPoints, false);
    EXPECT_THAT(t.Drawn("Test Points"), IsEmpty()) << c.what;
  }
}

TEST(Text, VanishesWhenTheUserZoomsInAndFollowsItsSwitch) {
  const struct {
    const char* what;
    int type;
    double scale;
    bool hydro, hypso;
    Strings drawn;
  } cases[] = {
      {"model label", 0, 1999.0, false, false, {"text \"Hill\" at 200,200 0 h15 Arial italic"}},
      {"past a tenth of its width", 0, 2000.0, true, true, {}},
      {"hydrography off", 1, 0.0, false, true, {}},
      {"hydrography on", 1, 1e9, true, false, {"text \"Hill\" at 200,200 13 h15 Arial italic"}},
      {"hypsography on", 2, 1e9, false, true, {"text \"Hill\" at 200,200 13 h15 Arial italic"}},
  };
  for (const auto& c : cases) {
    MapProject t;
    t.ormel.db().Execute(
        "insert into TextLabels (Text,X,Y,ScalerX,FontSize,FontItalic,LabelType) "
        "values ('Hill',0,0,?,12,True,?)",
        {c.scale, c.type});
    t.map.Refresh();  // the switches learn that there are labels
    t.ormel.layers.Switch(Layer::kHydrographyLabels, c.hydro);
    t.ormel.layers.Switch(Layer::kHypsographyLabels, c.hypso);
    const char* layers[] = {"Text", "Hydrography Labels", "Hypsography Labels"};
    EXPECT_EQ(t.Drawn(layers[c.type]), c.drawn) << c.what;
  }
}

TEST(Whpas, DrawTheCircleUpstreamOfTheWell) {
  // L = Q / (2 pi Qo) = 100; with T = 0.5 the shift is (0.326 + 0.00278) * 100 = 32.878 map units.
  const double q = 200.0 * 3.14159265358979;
  const struct {
    const char* what;
    int type;
    double t, direction;
    Strings drawn;
  } cases[] = {
      {"arbitrary", 1, 0.0, 0.0, {"circle 12 at 200,200 r20"}},
      {"centric", 2, 0.1, 0.0, {"circle 12 at 200,200 r20"}},
      {"flow to the east shifts west", 2, 0.5, 0.0, {"circle 12 at 134,200 r20"}},
      {"flow to the north shifts south", 2, 0.5, 90.0, {"circle 12 at 200,266 r20"}},
      {"T of exactly 1", 2, 1.0, 0.0, {}},
      {"pathlines", 2, 2.0, 0.0, {}},
  };
  for (const auto& c : cases) {
    MapProject t;
    t.AddWell(0, 0, "North");
    t.ormel.db().Execute("update Wells set Head=?", {q});
    t.ormel.db().Execute(
        "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,AmbientFlow,Direction,T,Type) "
        "values ('North',10,0,0,1,?,?,?)",
        {c.direction, c.t, c.type});
    EXPECT_THAT(t.Drawn("WHPAs"), IsEmpty()) << c.what << ": not shown";
    t.ormel.layers.Switch(Layer::kWhpas, true);
    EXPECT_EQ(t.Drawn("WHPAs"), c.drawn) << c.what;
  }
}

TEST(Whpas, BoundaryReachesAcrossTheWindowAndIsUnsetAtZero) {
  MapProject t;
  t.ormel.layers.Switch(Layer::kWhpas, true);
  t.ormel.db().Execute(
      "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,Point1X,Point1Y,Point2X,Point2Y) "
      "values ('a',0,0,0,500,10,510,10)");
  const Strings lines = t.Drawn("Stream Boundaries");
  ASSERT_EQ(lines.size(), 1U) << "the points themselves are out of view";
  EXPECT_THAT(lines[0], ::testing::MatchesRegex("line 0 w3 [0-9]+,180 -[0-9]+,180"));
  t.ormel.db().Execute("update WHPAs set Point1X=0");
  EXPECT_THAT(t.Drawn("Stream Boundaries"), IsEmpty());
}

TEST(CaptureZones, AClosedOneIsDrawnBackToItsFirstVertex) {
  MapProject t;
  const Pid pid = t.AddPolygon("0,0 10,0 10,10");
  t.ormel.db().Execute("insert into Capzones (PID,Label) values (?,'CZ')", {pid});
  t.ormel.layers.Switch(Layer::kCapzones, true);
  const Strings open = t.Drawn("Capture Zones");
  t.ormel.db().Execute("update Polygons set Closed=1");
  const Strings closed = t.Drawn("Capture Zones");
  EXPECT_THAT(open, ElementsAre("line 9 200,200 220,200 220,180"));
  EXPECT_THAT(closed, ElementsAre("line 9 200,200 220,200 220,180 200,200"));
}

TEST(UniformFlow, PointsWithTheFlow) {
  MapProject t;
  EXPECT_THAT(t.Drawn("Uniform Flow"), IsEmpty());
  t.ormel.db().Execute("update Model set UNIFLOWCompute=1,UNIFLOWRefX=10,UNIFLOWOrientation=180");
  EXPECT_THAT(t.Drawn("Uniform Flow"), Contains("line 2 220,200 194,200"));
}

TEST(Selection, LiesAboveThePictureAndLeavesNoTrace) {
  MapProject t;
  const Pid pid = t.AddPolygon("0,0 10,0");
  t.ormel.db().Execute("insert into LinesinkStrings (PID,Label) values (?,'LS')", {pid});
  t.Redraw();
  const Strings before = t.surface.picture.Lines();
  t.ormel.selection = {.SelectedType = Element::kLinesink, .vid = 2, .pid = pid};
  t.map.Refresh();
  EXPECT_EQ(t.surface.picture.Lines(), before);
  RecordingDevice top;
  t.map.PaintOverlay(top);
  EXPECT_TRUE(top.Drew("line 12 w1.5 200,200 220,200"));
  EXPECT_TRUE(top.Drew("line 12 224,200 220,196 216,200 220,204 224,200")) << "the selected vertex";
  t.map.ElemTurnOffSelection();
  top.Reset();
  t.map.PaintOverlay(top);
  EXPECT_TRUE(top.empty());
  EXPECT_FALSE(t.ormel.menus.Enabled("EDIT_CMDS", 3));
}

TEST(ThePicture, FollowsWhatACommandHasChanged) {
  MapProject t;
  const Document document(t.ormel);
  t.Redraw();
  const auto command = [&](const char* sql, Vid vid) {
    RunCommand(t.ormel, "Test", [&] { t.ormel.db().Execute(sql, {vid}); });
  };
  Vid vid = 0;
  RunCommand(t.ormel, "Test", [&] { vid = t.AddVertex(0, 0); });
  command("insert into Particles (VID) values (?)", vid);
  EXPECT_EQ(t.surface.picture.Layer("Particles").size(), 2U);
  const int pictures = t.surface.pictures;
  command("update Model set WINDOWX1=-101+0*?", 1);
  EXPECT_EQ(t.surface.pictures, pictures) << "what the picture does not show costs none";
  command("delete from Particles where VID=?", vid);
  EXPECT_THAT(t.surface.picture.Layer("Particles"), IsEmpty());

  t.ormel.layers.Switch(Layer::kManualRedraw, true);
  const int before = t.surface.pictures;
  command("insert into Particles (VID) values (?)", vid);
  RecordingDevice top;
  t.map.PaintOverlay(top);
  EXPECT_FALSE(top.empty()) << "what is new lies over the picture";
  EXPECT_NE(t.ormel.activity, "REDRAW");
  command("delete from Particles where VID=?", vid);
  EXPECT_EQ(t.surface.pictures, before);
  EXPECT_EQ(t.ormel.activity, "REDRAW") << "the user is told that the picture is obsolete";
}

TEST(ANewElement, IsMarkedUntilTheCommandEnds) {
  MapProject t;
  const int pictures = t.surface.pictures;
  RecordingDevice top;
  RunCommand(t.ormel, "Test", [&] {
    t.map.ShowPlace(Element::kWell, {0, 0});
    t.map.PaintOverlay(top);
  });
  EXPECT_TRUE(top.Drew("circle 5 at 200,200 r3"));
  top.Reset();
  t.map.PaintOverlay(top);
  EXPECT_TRUE(top.empty());
  EXPECT_EQ(t.surface.pictures, pictures) << "no new picture for what was never in it";
}

}  // namespace
}  // namespace ormel::test
