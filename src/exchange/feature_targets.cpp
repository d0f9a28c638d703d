#include "exchange/feature_targets.h"

#include <array>

#include "core/ormel.h"
#include "model/barriers.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/observations.h"
#include "model/wells.h"
#include "store/database.h"

namespace ormel {
namespace {

using Points = std::span<const MapPoint>;
using enum Quantity;

constexpr std::string_view kLabelFields = "label name naam id code title";
constexpr std::string_view kHeadFields = "head level stage waterlevel waterlevel_m h";

constexpr TargetProperty Label(std::string_view standard) {
  return {"Label", "Label", kNone, true, standard, kLabelFields};
}

constexpr std::array kWells{
    Label("Well"),
    TargetProperty{"Rate", "Discharge", kDischarge, false, "0", "rate discharge q pumping yield"},
    TargetProperty{"Radius", "Radius", kLength, false, "1", "radius r", 1e-6}};
constexpr std::array kHeadWells{Label("Well"),
                                TargetProperty{"Head", "Head", kLength, false, "0", kHeadFields},
                                TargetProperty{"Radius", "Radius", kLength, false, "1", "radius r", 1e-6}};
constexpr std::array kStreams{
    Label("Stream"),
    TargetProperty{"StartingHead", "Starting head", kLength, false, "0",
                   "startinghead head_start head1 head level stage"},
    TargetProperty{"EndingHead", "Ending head", kLength, false, "0",
                   "endinghead head_end head2 head level stage"},
    TargetProperty{"Resistance", "Resistance", kDays, false, "0", "resistance", 0.0},
    TargetProperty{"Width", "Width", kLength, false, "0", "width", 0.0},
    TargetProperty{"Depth", "Depth", kLength, false, "0", "depth", 0.0}};
constexpr std::array kSinks{Label("Stream"), TargetProperty{"Density", "Discharge per length", kSinkDensity,
                                                            false, "0", "density sigma"}};
constexpr std::array kWalls{Label("Barrier")};
constexpr std::array kDomains{
    Label("Domain"),
    TargetProperty{"HydCond", "Conductivity", kRate, false, "", "hydcond k conductivity", 0.0},
    TargetProperty{"Recharge", "Recharge", kRate, false, "", "recharge"},
    TargetProperty{"Porosity", "Porosity", kNone, false, "", "porosity n", 0.0},
    TargetProperty{"Bottom", "Bottom elevation", kLength, false, "", "bottom base"},
    TargetProperty{"AverageHead", "Average head", kLength, false, "", "averagehead"}};
constexpr std::array kTestPoints{Label("TP"), TargetProperty{"ObsHead", "Observed head", kLength, false, "0",
                                                             "obshead head observed level"}};
constexpr std::array kParticles{
    TargetProperty{"Elevation", "Elevation", kLength, false, "", "elevation elev z"},
    TargetProperty{"Forward", "1 forward, 0 backward", kNone, false, "1", "forward"}};
constexpr std::array kTexts{TargetProperty{"Text", "Text", kNone, true, "", "text label name naam title"}};
constexpr std::array kAreas{Label("Area")};

std::int64_t AddWell(Ormel& ormel, const PropertyValues& values, Points points) {
  WellRow row;
  row.Label = values.Text("Label");
  row.Head = values.Number("Rate");
  row.Radius = values.Number("Radius");
  return StoreWell(ormel, row, points.front());
}

std::int64_t AddHeadWell(Ormel& ormel, const PropertyValues& values, Points points) {
  WellRow row;
  row.Label = values.Text("Label");
  row.HeadSpecified = true;
  row.Head = values.Number("Head");
  row.Radius = values.Number("Radius");
  return StoreWell(ormel, row, points.front());
}

std::int64_t AddStream(Ormel& ormel, const PropertyValues& values, Points points) {
  LinesinkRow row;
  row.Label = values.Text("Label");
  row.StartingHead = values.Number("StartingHead");
  row.EndingHead = values.Number("EndingHead");
  row.Resistance = values.Number("Resistance");
  row.Width = values.Number("Width");
  row.Depth = values.Number("Depth");
  return StoreLinesink(ormel, row, points);
}

std::int64_t AddSink(Ormel& ormel, const PropertyValues& values, Points points) {
  LinesinkRow row;
  row.Label = values.Text("Label");
  row.HeadSpecified = false;
  row.StartingHead = values.Number("Density");
  return StoreLinesink(ormel, row, points);
}

std::int64_t AddWall(Ormel& ormel, const PropertyValues& values, Points points) {
  BarrierRow row;
  row.Label = values.Text("Label");
  row.color = QBColor(0);
  row.Closed = values.Number("Closed") != 0.0 ? BarrierClosed::kClosed : BarrierClosed::kOpen;
  return StoreBarrier(ormel, row, points);
}

// A property that no field and no default gives leaves the aquifer's value.
std::int64_t AddDomain(Ormel& ormel, const PropertyValues& values, Points points) {
  InhomogeneityRow row;
  row.Label = values.Text("Label");
  row.AverageHead = kNoAverageHead;
  const auto take = [&values](std::string_view name, double& value, bool& changes) {
    if (!(changes = values.Text(name) != "none")) return;
    value = values.Number(name);
  };
  take("HydCond", row.HydCond, row.ChangeK);
  take("Recharge", row.Recharge, row.ChangeR);
  take("Porosity", row.Porosity, row.ChangeP);
  take("Bottom", row.BottomElevation, row.ChangeB);
  take("AverageHead", row.AverageHead, row.ChangeA);
  return StoreInhomogeneity(ormel, row, points);
}

std::int64_t AddTestPoint(Ormel& ormel, const PropertyValues& values, Points points) {
  return StoreTestPoint(ormel, {values.Text("Label"), values.Number("ObsHead")}, points.front());
}

std::int64_t AddParticle(Ormel& ormel, const PropertyValues& values, Points points) {
  ParticleRow row;
  row.SatdThick = values.Text("Elevation") == "none";
  row.Elevation = values.Number("Elevation");
  row.Forward = values.Number("Forward") != 0.0;
  return StoreParticle(ormel, row, points.front());
}

std::int64_t AddText(Ormel& ormel, const PropertyValues& values, Points points) {
  TextLabelRow row;
  row.Text = values.Text("Text");
  row.ScalerX = ormel.window.SolveWindow.Width();
  return StoreTextLabel(ormel, row, points.front());
}

std::int64_t AddArea(Ormel& ormel, const PropertyValues& values, Points points) {
  return StoreCapzone(ormel, values.Text("Label"), points);
}

constexpr std::array kTargets{
    FeatureTarget{"wells", "Discharge specified wells", Element::kWell, GeometryKind::kPoint, kWells, "Wells",
                  false, AddWell},
    FeatureTarget{"headwells", "Head specified wells", Element::kWell, GeometryKind::kPoint, kHeadWells,
                  "Wells", false, AddHeadWell},
    FeatureTarget{"linesinks", "Head specified linesink strings", Element::kLinesink, GeometryKind::kLine,
                  kStreams, "LinesinkStrings", true, AddStream},
    FeatureTarget{"dischargelinesinks", "Discharge specified linesink strings", Element::kLinesink,
                  GeometryKind::kLine, kSinks, "LinesinkStrings", false, AddSink},
    FeatureTarget{"barriers", "Horizontal barriers", Element::kBarrier, GeometryKind::kLine, kWalls,
                  "NoFlowStrings", false, AddWall},
    FeatureTarget{"inhomogeneities", "Inhomogeneities", Element::kInhomogeneity, GeometryKind::kPolygon,
                  kDomains, "Inhomogeneities", false, AddDomain},
    FeatureTarget{"testpoints", "Test points", Element::kTestPoint, GeometryKind::kPoint, kTestPoints, "",
                  false, AddTestPoint},
    FeatureTarget{"particles", "Particles", Element::kParticle, GeometryKind::kPoint, kParticles, "", false,
                  AddParticle},
    FeatureTarget{"labels", "Text labels", Element::kTextLabel, GeometryKind::kPoint, kTexts, "", false,
                  AddText},
    FeatureTarget{"areas", "Capture zone polygons", Element::kCapzone, GeometryKind::kPolygon, kAreas,
                  "Capzones", false, AddArea},
};

}  // namespace

double PropertyValues::Number(std::string_view name) const {
  const auto found = numbers_.find(name);
  return found == numbers_.end() ? 0.0 : found->second;
}

const std::string& PropertyValues::Text(std::string_view name) const {
  static const std::string none;
  const auto found = texts_.find(name);
  return found == texts_.end() ? none : found->second;
}

std::span<const FeatureTarget> FeatureTargets() {
  return kTargets;
}

const FeatureTarget* FindFeatureTarget(std::string_view name) {
  for (const FeatureTarget& target : kTargets)
    if (target.name == name) return &target;
  return nullptr;
}

}  // namespace ormel
