#include "view/map_legend.h"

#include "core/coordinates.h"
#include "core/ormel.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"
#include "view/redraw.h"
#include "view/traced_lines.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

using Sample = std::function<void(VgGdi&, MapPoint, MapPoint)>;

MapPoint Middle(MapPoint a, MapPoint b) {
  return {(a.x + b.x) * 0.5, a.y};
}

Sample LineSample(Color color, double width) {
  return [=](VgGdi& vg, MapPoint a, MapPoint b) { vg.vgGDILine(a, b, PenStyle::kSolid, width, color); };
}

Sample SymbolSample(VgSymbol symbol, Color color) {
  return [=](VgGdi& vg, MapPoint a, MapPoint b) { vg.vgGDISymbol(Middle(a, b), symbol, color, color, 1.0); };
}

Sample ArrowSample(Color color) {
  return [=](VgGdi& vg, MapPoint a, MapPoint) {
    const double inward = 0.5 * vg.PointUnit() * vg.vgGDIPixelSize();  // the arrow's tail has a radius
    vg.vgGDISymbol({a.x + inward, a.y}, VgSymbol::kArrow, color, color, 0.0);
  };
}

Sample CircleSample(Color color) {
  return [=](VgGdi& vg, MapPoint a, MapPoint b) {
    vg.vgGDICircle(Middle(a, b), 0.4 * vg.PointUnit() * vg.vgGDIPixelSize(), PenStyle::kSolid, 1.0, color);
  };
}

class Entries {
 public:
  Entries(Ormel& ormel, std::vector<LegendEntry>& list) : ormel_(ormel), list_(list) {}
  void Add(bool shown, std::string text, Sample sample) {
    if (shown) list_.push_back({std::move(text), std::move(sample)});
  }
  bool Any(const char* sql) const { return ormel_.db().Scalar(sql).AsLong() > 0; }
  /// A kind whose elements have colours of their own: each by its label while they are few.
  void AddColoured(const char* table, const std::string& kind, double width) {
    constexpr std::int64_t kFew = 6;
    Database& db = ormel_.db();
    const std::int64_t count = db.RowCount(table);
    if (count > kFew) return Add(true, kind, LineSample(QBColor(0), width));
    RowReader rows(db, std::string("select Label,Color from ") + table);
    while (rows.Next())
      Add(true, kind + " " + std::string(rows.Text(0)),
          LineSample({static_cast<std::int32_t>(rows.Long(1))}, width));
  }

 private:
  Ormel& ormel_;
  std::vector<LegendEntry>& list_;
};

void AddElements(Ormel& ormel, Entries& entries) {
  const auto any = [&](const char* sql) { return entries.Any(sql); };
  entries.Add(any("select count(*) from Wells where Label not like 'Mirror_*'"), "Well",
              CircleSample(QBColor(5)));
  entries.Add(any("select count(*) from Wells where Label like 'Mirror_*'"), "Image well",
              CircleSample(Rgb(170, 170, 170)));
  entries.Add(ormel.solution.ValidSolution && any("select count(*) from WLResults where Head<-1000"),
              "Dry well", CircleSample(QBColor(10)));
  struct Kind {
    const char* text;
    const char* where;
    Color color;
  };
  constexpr Kind kLinesinks[] = {
      {"Linesink, head specified", "HeadSpecified<>0 and not (Drain is not null and Drain<>0) and FarField=0",
       Rgb(0, 0, 255)},
      {"Linesink, far field", "HeadSpecified<>0 and not (Drain is not null and Drain<>0) and FarField<>0",
       QBColor(3)},
      {"Drain", "HeadSpecified<>0 and Drain<>0", QBColor(6)},
      {"Linesink, discharge specified", "HeadSpecified=0", QBColor(5)},
  };
  for (const Kind& kind : kLinesinks)
    entries.Add(any((std::string("select count(*) from LinesinkStrings where ") + kind.where).c_str()),
                kind.text, LineSample(kind.color, 1.5));
  entries.AddColoured("NoFlowStrings", "Barrier", 2.0);
  entries.AddColoured("Inhomogeneities", "Inhomogeneity", 1.0);
  entries.Add(ormel.menus.Checked("ShowWHPAs") && any("select count(*) from WHPAs"),
              "Wellhead protection area", CircleSample(Rgb(255, 0, 0)));
}

void AddObservations(Ormel& ormel, Entries& entries) {
  const auto any = [&](const char* sql) { return entries.Any(sql); };
  entries.Add(ormel.menus.Checked("TESTDISPLAY", kTestShow) && any("select count(*) from TestPoints"),
              "Test point", SymbolSample(VgSymbol::kDot, QBColor(4)));
  entries.Add(any("select count(*) from Particles"), "Particle",
              SymbolSample(VgSymbol::kDiagonalCross, QBColor(4)));
  entries.Add(any("select count(*) from FluxInspect"), "Flux inspection line", LineSample(QBColor(5), 1.0));
  entries.Add(ormel.menus.Checked("layermenu", kLayerWhpas) && any("select count(*) from Capzones"),
              "Protection area, drawn", LineSample(QBColor(9), 1.0));
}

void AddResults(Ormel& ormel, const ViewState& state, Entries& entries) {
  const MenuState& menus = ormel.menus;
  const SolutionState& solution = ormel.solution;
  const bool contours = menus.Checked("layermenu", kLayerContours) && solution.ContoursValid &&
                        entries.Any("select count(*) from Model where CONTOURShow<>0");
  entries.Add(contours, std::string("Head contour [") + ComputeLengthUnit(ormel) + "]",
              LineSample(QBColor(1), 1.0));
  const bool paths = menus.Checked("layermenu", kLayerPathlines) && solution.ValidSolution;
  entries.Add(paths, "Pathline", LineSample(kPathlineColor, 1.0));
  const bool traced = HasTracedLines(ormel);
  entries.Add(traced, "Traced streamline", LineSample(kTracedLineColor, kTracedLineWidth));
  const bool marks = paths || traced;
  entries.Add(marks && menus.Checked("TMARKS", kTimeMarksShow) && solution.TimeTicSpacing > 0.0,
              "Time mark every " + NumberText(solution.TimeTicSpacing) + " days",
              SymbolSample(VgSymbol::kDot, QBColor(0)));
  entries.Add(
      marks && menus.Checked("ZMARKS", kElevationMarksShow) && solution.ElevationTicSpacing > 0.0,
      "Elevation mark every " + NumberText(solution.ElevationTicSpacing) + " " + ComputeLengthUnit(ormel),
      SymbolSample(VgSymbol::kUprightCross, QBColor(0)));
  entries.Add(menus.Checked("layermenu", kLayerResultsOverlay) && state.overlay.LSMode != "off",
              "Linesink results: " + state.overlay.LSMode, LineSample(QBColor(11), 4.0));
}

}  // namespace

std::vector<LegendEntry> LegendOf(Ormel& ormel, const ViewState& state) {
  std::vector<LegendEntry> list;
  Entries entries(ormel, list);
  entries.Add(entries.Any("select count(*) from Model where UNIFLOWCompute<>0"), "Uniform flow",
              ArrowSample(QBColor(2)));
  if (ormel.menus.Checked("layermenu", kLayerElements)) AddElements(ormel, entries);
  AddObservations(ormel, entries);
  AddResults(ormel, state, entries);
  return list;
}

}  // namespace ormel
