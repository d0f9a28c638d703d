#include "core/layers.h"

#include <array>

#include "core/ormel.h"
#include "store/database.h"

namespace ormel {
namespace {

using enum LayerNeeds;
constexpr LayerKind kMap = LayerKind::kMap, kDetail = LayerKind::kDetail, kWindow = LayerKind::kWindow;
constexpr Layer kElements = Layer::kElements, kWhpas = Layer::kWhpas, kTests = Layer::kTestPoints;

constexpr const char* kAnyTestPoints = "select count(*) from TestPoints";

/// In the order of the enumeration.
constexpr std::array kTable = std::to_array<LayerRow>({
    // layer, name, caption, control, index, parent, kind, usual, by project, needs, rows, setting
    {Layer::kElements, "elements", "Elements", "layermenu", kLayerElements, kElements, kMap, true, true,
     kNothing, nullptr, nullptr},
    {Layer::kContours, "contours", "Contours", "layermenu", kLayerContours, Layer::kContours, kMap, true,
     true, kSolutionOrAreas, nullptr, "select CONTOURShow from Model"},
    {Layer::kPathlines, "pathlines", "Pathlines", "layermenu", kLayerPathlines, Layer::kPathlines, kMap, true,
     true, kSolutionOrAreas, nullptr, "select TRACECompute from Model"},
    {Layer::kTestPoints, "testpoints", "Test Points", "layermenu", kLayerTestPoints, kTests, kMap, true, true,
     kRows, kAnyTestPoints, nullptr},
    {Layer::kResultsOverlay, "overlay", "Results Overlay...", "layermenu", kLayerResultsOverlay,
     Layer::kResultsOverlay, kMap, false, true, kSolution, nullptr, nullptr},
    {Layer::kCapzones, "capzones", "Wellhead Protection Areas", "layermenu", kLayerWhpas, Layer::kCapzones,
     kMap, true, true, kRows, "select count(*) from Capzones", nullptr},
    {Layer::kHydrographyLabels, "hydrography", "Show Hydrography Labels", "layermenu",
     kLayerHydrographyLabels, Layer::kHydrographyLabels, kMap, true, true, kRows,
     "select count(*) from TextLabels where LabelType=1", nullptr},
    {Layer::kHypsographyLabels, "hypsography", "Show Hypsography Labels", "layermenu",
     kLayerHypsographyLabels, Layer::kHypsographyLabels, kMap, true, true, kRows,
     "select count(*) from TextLabels where LabelType>1", nullptr},
    {Layer::kLinesinkVertices, "linesinkvertices", "Linesink Vertices", "ShowVertices", 0, Layer::kLinesinks,
     kMap, false, false, kNothing, nullptr, nullptr},
    {Layer::kDomainVertices, "domainvertices", "Inhomogeneity Vertices", "ShowVertices", 1, Layer::kDomains,
     kMap, false, false, kNothing, nullptr, nullptr},
    {Layer::kWhpas, "whpas", "Show Simple WHPAs", "ShowWHPAs", 0, kElements, kMap, false, false, kNothing,
     nullptr, nullptr},
    {Layer::kWellLabels, "welllabels", "Show Well Labels", "ShowWellLabels", 0, Layer::kWellLabels, kMap,
     false, false, kNothing, nullptr, nullptr},
    {Layer::kHaze, "haze", "Haze Background", "Haze", 0, Layer::kHaze, kMap, false, false, kNothing, nullptr,
     nullptr},
    {Layer::kBasemaps, "basemaps", "Base Maps", "", 0, Layer::kBasemaps, kMap, true, false, kNothing, nullptr,
     nullptr},
    {Layer::kUniformFlow, "uniformflow", "Uniform Flow", "", 0, Layer::kUniformFlow, kMap, true, false,
     kNothing, nullptr, nullptr},
    {Layer::kWells, "wells", "Wells", "", 0, kElements, kMap, true, false, kNothing, nullptr, nullptr},
    {Layer::kLinesinks, "linesinks", "Linesinks", "", 0, kElements, kMap, true, false, kNothing, nullptr,
     nullptr},
    {Layer::kBarriers, "barriers", "Barriers", "", 0, kElements, kMap, true, false, kNothing, nullptr,
     nullptr},
    {Layer::kDomains, "domains", "Inhomogeneities", "", 0, kElements, kMap, true, false, kNothing, nullptr,
     nullptr},
    {Layer::kStreamBoundaries, "streamboundaries", "Stream Boundaries", "", 0, kWhpas, kMap, true, false,
     kNothing, nullptr, nullptr},
    {Layer::kParticles, "particles", "Particles", "", 0, Layer::kParticles, kMap, true, false, kNothing,
     nullptr, nullptr},
    {Layer::kFluxLines, "fluxlines", "Flux Inspection Lines", "", 0, Layer::kFluxLines, kMap, true, false,
     kNothing, nullptr, nullptr},
    {Layer::kTextLabels, "labels", "Text Labels", "", 0, Layer::kTextLabels, kMap, true, false, kNothing,
     nullptr, nullptr},
    {Layer::kTracedLines, "tracedlines", "Traced Lines", "", 0, Layer::kTracedLines, kMap, true, false,
     kNothing, nullptr, nullptr},
    {Layer::kTimeTics, "", "Show Tic Marks", "TMARKS", 0, Layer::kTimeTics, kDetail, false, false, kNothing,
     nullptr, nullptr},
    {Layer::kElevationTics, "", "Show Tic Marks", "ZMARKS", 0, Layer::kElevationTics, kDetail, false, false,
     kNothing, nullptr, nullptr},
    {Layer::kTestText, "", "&Text", "TESTDISPLAY", 1, kTests, kDetail, false, true, kNothing, nullptr,
     nullptr},
    {Layer::kTestScaled, "", "Scaled S&ymbols", "TESTDISPLAY", 2, kTests, kDetail, false, true, kNothing,
     nullptr, nullptr},
    {Layer::kTestScale5, "", "+/- &5", "TPSCALING", 0, kTests, kDetail, true, true, kNothing, nullptr,
     nullptr},
    {Layer::kTestScale10, "", "+/- 10", "TPSCALING", 1, kTests, kDetail, false, true, kNothing, nullptr,
     nullptr},
    {Layer::kTestScale20, "", "+/- 20", "TPSCALING", 2, kTests, kDetail, false, true, kNothing, nullptr,
     nullptr},
    {Layer::kEditorGrid, "", "Show Editor Grid", "EDITORGRID", 0, Layer::kEditorGrid, kDetail, false, true,
     kNothing, nullptr, "select EDITGRIDShow from Model"},
    {Layer::kToolbar, "", "Toolbar", "layermenu", kLayerToolbar, Layer::kToolbar, kWindow, false, false,
     kNothing, nullptr, nullptr},
    {Layer::kManualRedraw, "", "Manual Redraw", "layermenu", kLayerManualRedraw, Layer::kManualRedraw,
     kWindow, false, false, kNothing, nullptr, nullptr},
});

constexpr bool InOrder() {
  for (std::size_t i = 0; i < kTable.size(); ++i)
    if (static_cast<std::size_t>(kTable[i].layer) != i) return false;
  return kTable.size() == static_cast<std::size_t>(Layer::kCount) && kTable.size() <= 64;
}
static_assert(InOrder(), "each layer has its row, in the order of the enumeration");

/// Other menu items that switch a layer of the table.
struct Alias {
  std::string_view control;
  int index;
  Layer layer;
};
constexpr std::array kAliases{Alias{"PATHLINES", 0, Layer::kPathlines},
                              Alias{"TESTDISPLAY", 0, Layer::kTestPoints}};

bool HasSomething(const Ormel& ormel, const LayerRow& row, bool traced_areas) {
  const bool solution = ormel.solution.ValidSolution;
  switch (row.needs) {
    case kNothing:
      return true;
    case kRows:
      return ormel.db().Scalar(row.rows).AsLong() > 0;
    case kSolution:
      return solution;
    case kSolutionOrAreas:
      return solution || traced_areas;
  }
  return false;
}

}  // namespace

LayerSwitches::LayerSwitches() {
  offered_.set();
  for (const LayerRow& row : kTable) Switch(row.layer, row.usual && row.control.empty());
  Switch(Layer::kTestPoints, true);
  Switch(Layer::kTestScale5, true);
}

std::span<const LayerRow> LayerRows() {
  return kTable;
}

const LayerRow& RowOf(Layer layer) {
  return kTable.at(static_cast<std::size_t>(layer));
}

const LayerRow* FindLayer(std::string_view name) {
  if (name.empty()) return nullptr;
  for (const LayerRow& row : kTable)
    if (row.name == name) return &row;
  return nullptr;
}

std::optional<Layer> LayerOf(std::string_view control, int index) {
  if (control.empty()) return std::nullopt;
  for (const LayerRow& row : kTable)
    if (row.control == control && row.index == index) return row.layer;
  for (const Alias& alias : kAliases)
    if (alias.control == control && alias.index == index) return alias.layer;
  return std::nullopt;
}

std::optional<Layer> layermenu(int index) {
  return LayerOf("layermenu", index);
}

bool Shown(const Ormel& ormel, Layer layer) {
  for (; ormel.layers.On(layer); layer = RowOf(layer).parent)
    if (RowOf(layer).parent == layer) return true;
  return false;
}

void SetLayer(Ormel& ormel, Layer layer, bool on) {
  ormel.layers.Offer(layer, on);
  ormel.layers.Switch(layer, on);
}

void TurnOnLayer(Ormel& ormel, Layer layer) {
  SetLayer(ormel, layer, true);
}

void TurnOffLayer(Ormel& ormel, Layer layer) {
  SetLayer(ormel, layer, false);
}

void OfferLayers(Ormel& ormel, bool fresh) {
  Database& db = ormel.db();
  const bool traced_areas = db.Scalar("select count(*) from WHPAs where T>1 or Type=3").AsLong() > 0;
  for (const LayerRow& row : kTable) {
    const bool has = HasSomething(ormel, row, traced_areas), could = ormel.layers.Offered(row.layer);
    ormel.layers.Offer(row.layer, has);
    if (!has)
      ormel.layers.Switch(row.layer, false);
    else if ((fresh && row.by_project) || !could)
      ormel.layers.Switch(row.layer, row.wanted != nullptr ? db.Scalar(row.wanted).AsBool() : row.usual);
  }
}

}  // namespace ormel
