#include "view/map_legend.h"

#include <algorithm>

#include "core/coordinates.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"
#include "view/capture_zones.h"
#include "view/redraw.h"
#include "view/styles.h"
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

Sample AreaSample(Color color, double opacity) {
  return [=](VgGdi& vg, MapPoint a, MapPoint b) {
    const double half = 0.5 * vg.PointUnit() * vg.vgGDIPixelSize();
    const MapPoint ring[] = {{a.x, a.y - half}, {b.x, b.y - half}, {b.x, b.y + half}, {a.x, a.y + half}};
    vg.vgGDIArea(ring, color, opacity);
  };
}

/// As the style is drawn on the map; a kind whose elements have their own colours passes one of them.
Sample SampleOf(const Style& style, Color color) {
  const auto unit = [](const VgGdi& vg, double letters) {
    return letters * vg.PointUnit() * vg.vgGDIPixelSize();
  };
  switch (style.sample) {
    case SampleKind::kSymbol:
      return [=](VgGdi& vg, MapPoint a, MapPoint b) {
        vg.vgGDISymbol(Middle(a, b), style.symbol, color, color, 1.0, style.width);
      };
    case SampleKind::kArrow:
      return [=](VgGdi& vg, MapPoint a, MapPoint) {  // the arrow's tail has a radius
        vg.vgGDISymbol({a.x + unit(vg, 0.5), a.y}, style.symbol, color, color, 0.0, style.width);
      };
    case SampleKind::kCircle:
      return [=](VgGdi& vg, MapPoint a, MapPoint b) {
        vg.vgGDICircle(Middle(a, b), unit(vg, 0.4), PenStyle::kSolid, style.width, color);
      };
    case SampleKind::kLine:
    case SampleKind::kLetters:
      break;
  }
  return LineSample(color, style.width);
}

class Entries {
 public:
  Entries(Ormel& ormel, std::vector<LegendEntry>& list) : ormel_(ormel), list_(list) {}

  void Add(std::string text, Sample sample) { list_.push_back({std::move(text), std::move(sample)}); }
  void Add(bool shown, StyleId id, const std::string& more = "") {
    const Style& style = StyleOf(id);
    if (shown) Add(std::string(style.legend) + more, SampleOf(style, style.color));
  }
  bool Any(const char* sql) const { return ormel_.db().Scalar(sql).AsLong() > 0; }

  /// A kind whose elements have colours of their own: each by its label while they are few, otherwise each
  /// colour once.
  void AddColoured(const char* table, StyleId id) {
    constexpr std::int64_t kFew = 6;
    const Style& style = StyleOf(id);
    const bool few = ormel_.db().RowCount(table) <= kFew;
    RowReader rows(ormel_.db(),
                   std::string(few ? "select Color,Label from " : "select distinct Color from ") + table +
                       (few ? "" : " order by Color"));
    for (std::int64_t n = 0; n < kFew && rows.Next(); ++n) {
      const Color color{static_cast<std::int32_t>(rows.Long(0))};
      Add(std::string(style.legend) + (few ? " " + std::string(rows.Text(1)) : ""), SampleOf(style, color));
    }
  }

 private:
  Ormel& ormel_;
  std::vector<LegendEntry>& list_;
};

struct CountedStyle {
  StyleId style;
  Layer layer;
  const char* rows;  ///< counts the elements that are drawn in it
};

constexpr CountedStyle kElements[] = {
    {StyleId::kWell, Layer::kWells, "select count(*) from Wells where Label not like 'Mirror_*'"},
    {StyleId::kImageWell, Layer::kWells, "select count(*) from Wells where Label like 'Mirror_*'"},
    {StyleId::kLinesinkHead, Layer::kLinesinks,
     "select count(*) from LinesinkStrings where HeadSpecified<>0 and not (Drain is not null and Drain<>0) "
     "and FarField=0"},
    {StyleId::kLinesinkFarField, Layer::kLinesinks,
     "select count(*) from LinesinkStrings where HeadSpecified<>0 and not (Drain is not null and Drain<>0) "
     "and FarField<>0"},
    {StyleId::kDrain, Layer::kLinesinks,
     "select count(*) from LinesinkStrings where HeadSpecified<>0 and Drain<>0"},
    {StyleId::kLinesinkDischarge, Layer::kLinesinks,
     "select count(*) from LinesinkStrings where HeadSpecified=0"},
};

constexpr CountedStyle kObservations[] = {
    {StyleId::kParticle, Layer::kParticles, "select count(*) from Particles"},
    {StyleId::kFluxLine, Layer::kFluxLines, "select count(*) from FluxInspect"},
};

void AddElements(Ormel& ormel, Entries& entries) {
  for (const CountedStyle& row : kElements)
    entries.Add(Shown(ormel, row.layer) && entries.Any(row.rows), row.style);
  entries.Add(Shown(ormel, Layer::kWells) && ormel.solution.ValidSolution &&
                  entries.Any("select count(*) from WLResults where Head<-1000"),
              StyleId::kDryWell);
  if (Shown(ormel, Layer::kBarriers)) entries.AddColoured("NoFlowStrings", StyleId::kBarrier);
  if (Shown(ormel, Layer::kDomains)) entries.AddColoured("Inhomogeneities", StyleId::kDomain);
  entries.Add(Shown(ormel, Layer::kWhpas) && entries.Any("select count(*) from WHPAs"), StyleId::kWhpaCircle);
  entries.Add(Shown(ormel, Layer::kStreamBoundaries) &&
                  entries.Any("select count(*) from WHPAs where Point1X<>0 and Point1Y<>0 and Point2X<>0 and "
                              "Point2Y<>0"),
              StyleId::kStreamBoundary);
}

/// A line for each time, an area for each well while they are few.
void AddZones(Ormel& ormel, Entries& entries) {
  constexpr std::size_t kFew = 6;
  if (!Shown(ormel, Layer::kCapzones)) return;
  const Zones zones = ReadZones(ormel);
  for (std::size_t i = 0; i < zones.times.size(); ++i)
    entries.Add("Capture zone, " + NumberText(zones.times[i]) + (zones.times[i] == 1.0 ? " year" : " years"),
                LineSample(ZoneLineColor(i), kZoneLineWidth));
  for (std::size_t i = 0; i < zones.wells.size() && zones.wells.size() <= kFew; ++i)
    entries.Add("Area of " + zones.wells[i], AreaSample(ZoneAreaColor(i), kZoneOpacity));
  const auto by_hand = [](const CaptureZone& zone) { return !zone.tag.outlined(); };
  entries.Add(std::any_of(zones.all.begin(), zones.all.end(), by_hand), StyleId::kCapzone);
}

void AddTestPoints(Ormel& ormel, Entries& entries) {
  if (!Shown(ormel, Layer::kTestPoints) || !entries.Any("select count(*) from TestPoints")) return;
  if (!ormel.solution.ValidSolution) return entries.Add(true, StyleId::kTestPointBelow);
  entries.Add(entries.Any("select count(*) from TPResults where Difference>0"), StyleId::kTestPointAbove);
  entries.Add(entries.Any("select count(*) from TPResults where not Difference>0"), StyleId::kTestPointBelow,
              ", computed head not above observed");
}

void AddObservations(Ormel& ormel, Entries& entries) {
  AddTestPoints(ormel, entries);
  for (const CountedStyle& row : kObservations)
    entries.Add(Shown(ormel, row.layer) && entries.Any(row.rows), row.style);
}

void AddMarks(Ormel& ormel, Entries& entries) {
  const SolutionState& solution = ormel.solution;
  const std::string unit = ComputeLengthUnit(ormel);
  entries.Add(ormel.layers.On(Layer::kTimeTics) && solution.TimeTicSpacing > 0.0, StyleId::kTimeTic,
              " every " + NumberText(solution.TimeTicSpacing) + " days");
  entries.Add(ormel.layers.On(Layer::kElevationTics) && solution.ElevationTicSpacing > 0.0,
              StyleId::kElevationTic, " every " + NumberText(solution.ElevationTicSpacing) + " " + unit);
}

void AddResults(Ormel& ormel, const ViewState& state, Entries& entries) {
  const SolutionState& solution = ormel.solution;
  const bool contours = Shown(ormel, Layer::kContours) && solution.ContoursValid &&
                        entries.Any("select count(*) from Model where CONTOURShow<>0");
  entries.Add(contours, StyleId::kContour, std::string(" [") + ComputeLengthUnit(ormel) + "]");
  const bool paths = Shown(ormel, Layer::kPathlines) && solution.ValidSolution;
  if (paths)  // the time that was traced, whatever an area asked for
    entries.Add(
        true, StyleId::kPathline,
        " of " + NumberText(ormel.db().Scalar("select TRACEMaxTime from Model").AsDouble()) + " days");
  const bool traced = Shown(ormel, Layer::kTracedLines) && HasTracedLines(ormel);
  entries.Add(traced, StyleId::kTracedLine);
  if (paths || traced) AddMarks(ormel, entries);
  if (!Shown(ormel, Layer::kResultsOverlay)) return;
  for (const StyleId id : OverlayStyles(state.overlay))
    entries.Add(true, id, id == StyleId::kOverlayMarked ? "Linesink, " + state.overlay.LSMode : "");
}

}  // namespace

std::vector<LegendEntry> LegendOf(Ormel& ormel, const ViewState& state) {
  std::vector<LegendEntry> list;
  Entries entries(ormel, list);
  entries.Add(
      Shown(ormel, Layer::kUniformFlow) && entries.Any("select count(*) from Model where UNIFLOWCompute<>0"),
      StyleId::kUniformFlow);
  AddElements(ormel, entries);
  AddZones(ormel, entries);
  AddObservations(ormel, entries);
  AddResults(ormel, state, entries);
  return list;
}

void DrawSample(Ormel& ormel, DrawingDevice& device, StyleId id) {
  VgGdi vg(ormel);
  MapRect window{0.0, static_cast<double>(device.Width()), static_cast<double>(device.Height()), 0.0};
  if (vg.vgGDIInitObject(device, window) != VgInit::kDone) return;
  const double middle = 0.5 * device.Height(), rim = 0.1 * device.Width();
  const Style& style = StyleOf(id);
  if (style.sample == SampleKind::kLetters)
    vg.vgGDItext("ab", {0.5 * device.Width(), middle - 0.4 * vg.PointUnit()},
                 {.size = 9, .color = style.color, .alignment = 1});
  else
    SampleOf(style, style.color)(vg, {rim, middle}, {device.Width() - rim, middle});
}

}  // namespace ormel
