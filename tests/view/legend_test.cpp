// What the legend explains is what the map shows.
#include <gmock/gmock.h>

#include <algorithm>
#include <tuple>

#include "core/layers.h"
#include "core/ormel.h"
#include "map_fixture.h"
#include "view/map_legend.h"
#include "view/map_output.h"
#include "view/styles.h"

namespace ormel::test {
namespace {

/// Kind of figure, colour of its pen, width, fill and opacity; the sample of a tic and the tic are equal in
/// it.
using Look = std::tuple<int, int, double, int, double>;

std::vector<Look> LooksOf(const std::vector<DrawCall>& calls) {
  std::vector<Look> looks;
  for (const DrawCall& call : calls) {
    if (call.kind == DrawKind::kLayer || call.kind == DrawKind::kClear || call.kind == DrawKind::kText)
      continue;
    if (call.kind == DrawKind::kSetClip || call.kind == DrawKind::kClearClip) continue;
    // A curve and a straight line are both lines to the reader.
    const DrawKind kind = call.kind == DrawKind::kFineLine ? DrawKind::kPolyline : call.kind;
    looks.emplace_back(static_cast<int>(kind), call.pen.color.value, call.pen.width,
                       call.fill ? call.fill->value : -1, call.opacity);
  }
  return looks;
}

/// A project with something of every kind that a legend can name.
struct FullMap : MapProject {
  FullMap() {
    Database& db = ormel.db();
    AddWell(0, 0, "North");
    AddWell(5, 0, "Mirror_North");
    const Vid dry = AddWell(-20, 0, "Dry");
    char label[16];
    std::snprintf(label, sizeof label, "WL_%06d", static_cast<int>(dry));
    db.Execute(
        "insert into WLResults (VadoxLabel,X,Y,Radius,SpecifiedHead,Discharge,Head) values "
        "(?,0,0,1,0,0,-9999)",
        {label});
    const char* strings[] = {"1,0,0", "1,0,1", "1,1,0", "0,0,0"};
    for (const char* kind : strings)
      db.Execute(
          std::string("insert into LinesinkStrings (PID,Label,HeadSpecified,Drain,FarField) values (?,'s',") +
              kind + ")",
          {AddPolygon("-50,-50 50,-40")});
    db.Execute("insert into NoFlowStrings (PID,Label,Color) values (?,'wall',255)",
               {AddPolygon("0,-60 60,-60")});
    db.Execute("insert into Inhomogeneities (PID,Label,Color) values (?,'sand',32768)",
               {AddPolygon("-80,50 -60,50 -60,80")});
    db.Execute("insert into Particles (VID) values (?)", {AddVertex(30, 30)});
    db.Execute("insert into FluxInspect (PID,Label) values (?,'FI')", {AddPolygon("60,60 80,60")});
    db.Execute("insert into TestPoints (VID,Label) values (?,'TP')", {AddVertex(20, 20)});
    db.Execute("insert into TPResults (VID,ObsHead,ModelHead,Difference,X,Y) values (1,0,0,1,20,20)");
    db.Execute("insert into TPResults (VID,ObsHead,ModelHead,Difference,X,Y) values (2,0,0,-1,25,20)");
    for (const char* zone : {"North 1 year", "North 10 years", "Dry 10 years", "sketch"}) {
      const Pid pid = AddPolygon("-10,-10 10,-10 10,10 -10,10");
      db.Execute("update Polygons set Closed=1 where PID=?", {pid});
      db.Execute("insert into Capzones (PID,Label) values (?,?)", {pid, zone});
    }
    db.Execute(
        "insert into WHPAs (Well,Radius,TimeOfTravel,Porosity,Type,Point1X,Point1Y,Point2X,Point2Y) "
        "values ('North',20,0,0,1,1,1,5,5)");
    db.Execute("update Model set CONTOURShow=1,UNIFLOWCompute=1");
    for (const double discharge : {8.0, -8.0})
      db.Execute(
          "insert into LSResults "
          "(Label,VadoxLabel,X1,Y1,X2,Y2,SpecifiedHead,Discharge,CalculatedHead,Resistance) "
          "values ('LS','LS_000002_0001',0,0,10,10,5,?,5,0)",
          {discharge});
    map.state().overlay = {"Strength", 40.0};
    WriteAll(dir / "town.CTR",
             "LEVEL 10.0\r\n             10.0         +10.0\r\n             20.0         +20.0\r\n");
    WriteAll(dir / "town.PTH",
             "START\r\n      10.0000000000 10.0000000000  5.0000000000  0.0000000000  5.0000000000\r\n"
             "      20.0000000000 20.0000000000  15.0000000000  900.0000000000  5.0000000000\r\nEND\r\n");
    ormel.solution = {.ValidSolution = true, .PathlinesValid = true, .ContoursValid = true};
    ormel.solution.TimeTicSpacing = 365.0;
    ormel.solution.ElevationTicSpacing = 5.0;
    ormel.solution.traced_lines.push_back({{{-30, -30}, {-20, -25}}, {5, 5}, {0, 9}});
    for (const LayerRow& row : LayerRows())
      if (row.kind == LayerKind::kMap && row.layer != Layer::kHaze) TurnOnLayer(ormel, row.layer);
    for (const Layer layer : {Layer::kTimeTics, Layer::kElevationTics}) ormel.layers.Switch(layer, true);
    for (const Layer layer : {Layer::kLinesinkVertices, Layer::kDomainVertices})
      ormel.layers.Switch(layer, false);
  }
};

TEST(Legend, EachSampleLooksAsItIsDrawn) {
  FullMap t;
  t.Redraw();
  const std::vector<Look> drawn = LooksOf(t.surface.picture.calls());
  const std::vector<LegendEntry> entries = LegendOf(t.ormel, t.map.state());
  EXPECT_EQ(entries.size(), 28U);
  DisplayList paper(400, 400, 96);
  for (const LegendEntry& entry : entries) {
    paper.Reset();
    {
      const VgGdi::Redirect redirect(t.map.vg(), paper);
      entry.sample(t.map.vg(), {-90, 0}, {-80, 0});
    }
    ASSERT_FALSE(paper.empty()) << entry.text;
    for (Look look : LooksOf(paper.calls())) {
      // The bars of results have a width that tells a value.
      const bool bar = entry.text.starts_with("Linesink, takes") || entry.text.starts_with("Linesink, gives");
      const bool found = std::any_of(drawn.begin(), drawn.end(), [&](Look on_map) {
        if (bar) std::get<2>(on_map) = std::get<2>(look);
        return on_map == look;
      });
      EXPECT_TRUE(found) << entry.text << ": the map shows nothing that looks like its sample";
    }
  }
}

TEST(Legend, EachColourOfTheMapIsExplained) {
  FullMap t;
  t.Redraw();
  std::vector<int> explained;
  DisplayList paper(400, 400, 96);
  {
    const VgGdi::Redirect redirect(t.map.vg(), paper);
    for (const LegendEntry& entry : LegendOf(t.ormel, t.map.state()))
      entry.sample(t.map.vg(), {-90, 0}, {-80, 0});
  }
  for (const Look& look : LooksOf(paper.calls())) explained.push_back(std::get<1>(look));
  std::string layer;
  for (const DrawCall& call : t.surface.picture.calls()) {
    if (call.kind == DrawKind::kLayer) layer = call.text;
    if (call.kind != DrawKind::kPolyline && call.kind != DrawKind::kFineLine &&
        call.kind != DrawKind::kCircle)
      continue;
    const Color white = QBColor(15);
    if (call.pen.color == white) continue;  // the shadow that parts a stream from what lies beneath
    EXPECT_NE(std::find(explained.begin(), explained.end(), call.pen.color.value), explained.end())
        << layer << ": " << Describe(call);
  }
}

TEST(Legend, StandsWhereItHidesNoZone) {
  MapProject t;
  t.AddWell(60, -60, "South");
  const Pid pid = t.AddPolygon("20,-90 95,-90 95,-10 20,-10");
  t.ormel.db().Execute("update Polygons set Closed=1 where PID=?", {pid});
  t.ormel.db().Execute("insert into Capzones (PID,Label) values (?,'South 5 years')", {pid});
  TurnOnLayer(t.ormel, Layer::kCapzones);
  const auto box = [&](const MapSheet& sheet) {
    RecordingDevice page(800, 600);
    EXPECT_TRUE(DrawMapOutput(t.ormel, t.map.state(), page, sheet));
    bool in_legend = false;
    for (const DrawCall& call : page.calls()) {
      if (call.kind == DrawKind::kLayer) in_legend = call.text == "Legend";
      if (in_legend && call.kind == DrawKind::kPolygon) return call.points.front();
    }
    return DevicePoint{-1, -1};
  };
  const DevicePoint automatic = box({.legend = true});
  EXPECT_LT(automatic.x, 400) << "the zone lies in the lower right corner";
  const DevicePoint asked = box({.legend = true, .legend_corner = LegendCorner::kLowerRight});
  EXPECT_GT(asked.x, 400);
  EXPECT_GT(asked.y, 300);
  const DevicePoint placed = box({.legend = true, .legend_at = std::pair{0.25, 0.5}});
  EXPECT_EQ(placed, (DevicePoint{200, 300}));
  const DevicePoint beyond = box({.legend = true, .legend_at = std::pair{1.0, 1.0}});
  EXPECT_LT(beyond.x, 800) << "it stays on the sheet";
  EXPECT_LT(beyond.y, 600);

  // On a strip of its own while it leaves the map most of the width: nothing of the map is drawn there.
  RecordingDevice page(800, 600);
  ASSERT_TRUE(DrawMapOutput(t.ormel, t.map.state(), page,
                            {.legend = true, .legend_corner = LegendCorner::kBeside, .box = true}));
  int frame = 0, legend = 800;
  std::string layer;
  for (const DrawCall& call : page.calls()) {
    if (call.kind == DrawKind::kLayer) layer = call.text;
    for (const DevicePoint& p : call.points) {
      if (layer == "Frame") frame = std::max(frame, p.x);
      if (layer == "Legend") legend = std::min(legend, p.x);
    }
  }
  EXPECT_LT(frame, legend);
  EXPECT_GT(frame, 480);
  const DevicePoint narrow = [&] {
    RecordingDevice strip(220, 600);
    EXPECT_TRUE(DrawMapOutput(t.ormel, t.map.state(), strip,
                              {.legend = true, .legend_corner = LegendCorner::kBeside, .box = true}));
    DevicePoint most{0, 0};
    for (const DrawCall& call : strip.calls()) {
      if (call.kind == DrawKind::kLayer) layer = call.text;
      for (const DevicePoint& p : call.points)
        if (layer == "Frame") most = {std::max(most.x, p.x), std::max(most.y, p.y)};
    }
    return most;
  }();
  EXPECT_EQ(narrow.x, 220) << "on a narrow sheet it lies on the map";
}

}  // namespace
}  // namespace ormel::test
