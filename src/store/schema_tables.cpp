// The 23 tables, in the order of their making.  Fields keep their order; those marked "appended" are named by
// the procedures but were not in the first list of fields, and stand last so that every position stays.
#include "store/schema.h"

#include <algorithm>
#include <array>

#include "text/strings.h"

namespace ormel::schema {

namespace {

using enum FieldType;

constexpr bool kOptional = false;

constexpr Field Required(std::string_view name, FieldType type) {
  return {name, type, 0, {}, false, true, false};
}
constexpr Field Given(std::string_view name, FieldType type, std::string_view default_value,
                      bool required = true) {
  return {name, type, 0, default_value, true, required, false};
}
constexpr Field Number(std::string_view name) {
  return {name, kDouble, 0, {}, false, true, false};
}
constexpr Field Number(std::string_view name, std::string_view default_value, bool required = true) {
  return {name, kDouble, 0, default_value, true, required, false};
}
constexpr Field Automatic(std::string_view name) {
  return {name, kLong, 0, {}, false, true, true};
}
constexpr Field Text(std::string_view name, int size = kDefaultTextSize, bool required = true) {
  return {name, kText, size, {}, false, required, false};
}
constexpr Field GivenText(std::string_view name, int size, std::string_view default_value,
                          bool required = true) {
  return {name, kText, size, default_value, true, required, false};
}

constexpr std::array kBasemaps{Text("MapName", 255), Given("Color", kLong, "4519528"),
                               Given("Show", kBoolean, "True"), GivenText("ColorField", 32, "__NONE__"),
                               Given("UseColorField", kBoolean, "True")};

constexpr std::array kLinesinkStrings{
    Given("PID", kLong, "0"), Text("Label", 32), Given("HeadSpecified", kLong, "1"),
    Number("StartingHead", "0.0"), Number("EndingHead", "0.0"), Number("Resistance", "0.0"),
    Number("Width", "0.0"), Number("Depth", "0.0"), Given("Routing", kLong, "0"),
    Given("Drain", kLong, "0", kOptional), Given("AutoSWIZC", kInteger, "0"), Given("Farfield", kLong, "0"),
    // appended
    Number("EndInflow", "0.0"), Given("EndStream", kLong, "0"), Number("Overlandflow", "0.0"),
    GivenText("ScenResistance", 32, "__NONE__")};

constexpr std::array kModel{Number("AQBase", "0.0"),
                            GivenText("AQThickness", kDefaultTextSize, "1"),
                            Number("AQHydCond", "1.0"),
                            Number("AQRecharge", "0.0"),
                            Number("AQPorosity", "0.2"),
                            Given("BasemapMeters", kBoolean, "True"),
                            Given("ComputeMeters", kBoolean, "True"),
                            Given("CONTOURShow", kInteger, "0"),
                            Number("CONTOURMinimum", "0.0"),
                            Number("CONTOURMaximum", "1.0"),
                            Number("CONTOURInterval", "1.0"),
                            Given("TRACECompute", kInteger, "1"),
                            Number("TRACEStep", "1.0"),
                            Number("TRACEMaxTime", "3650.0"),
                            Number("UNIFLOWRefX", "0.0"),
                            Number("UNIFLOWRefY", "0.0"),
                            Number("UNIFLOWRefHead", "0.0"),
                            Number("UNIFLOWGradient", "0.0"),
                            Number("UNIFLOWOrientation", "0.0"),
                            Given("UNIFLOWCompute", kInteger, "0"),
                            Number("WINDOWX1", "100.0"),
                            Number("WINDOWY1", "100.0"),
                            Number("WINDOWX2", "-100.0"),
                            Number("WINDOWY2", "-100.0"),
                            Number("MARGINLeft", "1.0"),
                            Number("MARGINRight", "1.0"),
                            Number("MARGINTop", "1.0"),
                            Number("MARGINBottom", "1.0"),
                            Given("MARGINDrawBox", kInteger, "1"),
                            Number("EDITGRIDSpacing", "10.0"),
                            Given("EDITGRIDShow", kBoolean, "True"),
                            Given("EDITGRIDSnap", kBoolean, "False"),
                            Given("SOLVERIterations", kInteger, "1"),
                            Given("SOLVERConjunctive", kInteger, "0"),
                            Given("CONTOURLevel", kInteger, "40"),
                            Given("GRID3D", kBoolean, "False"),
                            Given("GRIDHorzSlice3D", kBoolean, "False"),
                            Given("GRIDVertSlice3D", kBoolean, "False"),
                            Number("WINDOWZ1", "100.0"),
                            Number("WINDOWZ2", "100.0"),
                            Number("SOLVERX0", "-100.0"),
                            Number("SOLVERY0", "-100.0"),
                            Given("ViewErrorLog", kInteger, "1"),
                            Given("ViewMessageLog", kInteger, "1"),
                            GivenText("DefaultFont", kDefaultTextSize, "Arial"),
                            Given("DefaultFontSize", kInteger, "10"),
                            Given("DefaultFontBold", kBoolean, "False"),
                            Given("DefaultFontItalic", kBoolean, "False")};

constexpr std::array kNoFlowStrings{Given("PID", kLong, "0"),           Number("HydCond", "0"),
                                    Number("Thickness", "1"),           Number("Porosity", "0.2"),
                                    Number("BottomElevation", "-9999"), Given("Color", kLong, "0"),
                                    Given("Closed", kLong, "0"),        Text("Label")};

constexpr std::array kInhomogeneities{Given("PID", kLong, "0"),
                                      Number("HydCond", "0.0"),
                                      Number("BottomElevation", "0.0"),
                                      Number("AverageHead", "0.0"),
                                      Number("Recharge", "0.0"),
                                      Number("Porosity", "0.0"),
                                      Given("Color", kLong, "0"),
                                      Text("Label", 32),
                                      Given("ChangeK", kBoolean, "False"),
                                      Given("ChangeR", kBoolean, "False"),
                                      Given("ChangeP", kBoolean, "False"),
                                      Given("ChangeB", kBoolean, "False"),
                                      Given("ChangeA", kBoolean, "False")};

constexpr std::array kParticles{Given("VID", kLong, "0"), Number("Elevation", "0.0"),
                                Given("SatdThick", kInteger, "1"), Given("Forward", kInteger, "1")};

constexpr std::array kPolygons{Automatic("PID"), Given("Closed", kInteger, "0"),
                               // appended
                               Field{"ObsDischarge", kDouble, 0, {}, false, kOptional, false}};

constexpr std::array kProject{GivenText("Description", 255, "New Ormel Model", kOptional),
                              Required("Updated", kDate), Text("OrmelBaseName"), Text("OrmelBasePath"),
                              Given("ProjectVersion", kLong, "208"),
                              // appended: code or WKT of the map's coordinates, empty when unknown
                              GivenText("CRS", 8000, "", kOptional)};

constexpr std::array kTestPoints{Given("VID", kLong, "0"), Number("ObsHead", "0.0"),
                                 Number("ModelHead", "0.0", kOptional), Text("Label", 32, kOptional)};

constexpr std::array kTextLabels{GivenText("Text", 255, "", kOptional),
                                 Number("X", "0.0"),
                                 Number("Y", "0.0", kOptional),
                                 Number("ScalerX", "0.0", kOptional),
                                 GivenText("FontName", 255, "Arial"),
                                 Given("FontSize", kInteger, "10"),
                                 Given("FontBold", kBoolean, "False"),
                                 Given("FontItalic", kBoolean, "False"),
                                 Given("FontUnderline", kBoolean, "False"),
                                 Given("FontStrikeThru", kBoolean, "False"),
                                 Given("LabelType", kInteger, "0")};

constexpr std::array kVertices{Automatic("VID"), Given("PID", kLong, "-1"), Given("Seq", kLong, "-1"),
                               Number("X", "0.0"), Number("Y", "0.0")};

constexpr std::array kWells{
    Required("VID", kLong), Number("Head", "0.0"), Number("Radius", "1.0"), Given("NParticles", kLong, "-1"),
    // 64: an image well's label is "Mirror_" and that of its source; the dialog allows 32
    GivenText("Label", 64, "", kOptional), Number("Setback", "1.0"), Given("Transient", kLong, "0"),
    Given("Cyclic", kLong, "0"), Given("Cycles", kLong, "0"), Number("SS", "0.0"), Number("Time", "0.0"),
    Number("TopElev", "0.0"), Number("BottomElev", "0.0"), Given("HeadSpecified", kLong, "0"),
    Given("PPWell", kLong, "0"), Number("StartHead", "0.0"), Number("StartElev", "0.0"),
    Given("Pond", kLong, "0"), Given("PathlineColor", kLong, "-99", kOptional)};

constexpr std::array kLSResults{
    Text("Label", 255), Text("VadoxLabel", 255), Number("X1"), Number("Y1"), Number("X2"), Number("Y2"),
    Number("SpecifiedHead"), Number("Discharge"), Number("CalculatedHead"), Number("Width", "0.0", kOptional),
    Number("Resistance"), Number("Depth", "0.0", kOptional), Number("Error", "0.0", kOptional),
    // appended
    Number("Baseflow", "0.0", kOptional), Number("Overlandflow", "0.0", kOptional)};

constexpr std::array kINResults{Text("Label"),
                                Text("VadoxLabel"),
                                Number("Conductivity", "0.0", kOptional),
                                Number("BottomElev", "0.0", kOptional),
                                Number("ExtractRate", "0.0", kOptional),
                                Number("Porosity", "0.0"),
                                Number("DomainArea", "0.0"),
                                Number("AvgPotJump", "0.0"),
                                Number("X1"),
                                Number("Y1"),
                                Number("XC"),
                                Number("YC"),
                                Number("StrPotJumpNode"),
                                Number("ParabStrPotJump"),
                                Number("RealStrExtrNode"),
                                Number("ImagStrExtrNode"),
                                Number("RealStrExtrCntr"),
                                Number("Tfac", "0.0", kOptional),
                                Number("DeltaPNode", "0.0", kOptional),
                                Number("DeltaPCntr", "0.0", kOptional)};

constexpr std::array kNFResults{Text("Label"),
                                Text("VadoxLabel"),
                                Number("Conductivity"),
                                Number("Width"),
                                Number("Porosity"),
                                Number("WallBottomElev"),
                                Number("X1"),
                                Number("Y1"),
                                Number("XC"),
                                Number("YC"),
                                Number("StrPotJumpNode"),
                                Number("ParabStrPotJump"),
                                Number("DeltaFlowCntr"),
                                Number("DeltaFlowNode")};

constexpr std::array kTPResults{
    Text("Label", 32, kOptional), Required("VID", kLong), Number("ObsHead"),
    Number("ModelHead"),          Number("Difference"),   Number("X", "0.0", kOptional),
    Number("Y", "0.0", kOptional)};

constexpr std::array kFIResults{Text("Label", 32, kOptional), Required("PID", kLong), Number("TotalFlux")};

constexpr std::array kWLResults{
    Text("Label", 64, kOptional),  // as Wells.Label
    Text("VadoxLabel", 32, kOptional), Number("X"),         Number("Y"),   Number("Radius"),
    Number("SpecifiedHead"),           Number("Discharge"), Number("Head")};

constexpr std::array kSavedWindows{Text("Name", 64), Number("X1"), Number("Y1"), Number("X2"),
                                   Number("Y2", "0.0", kOptional)};

constexpr std::array kFluxInspect{Text("Label", 32), Required("PID", kLong)};
constexpr std::array kCapzones{Text("Label", 32), Required("PID", kLong)};
/// How each outlined capture zone was made and what its checks said; hand-drawn ones have no row.
constexpr std::array kZones{Required("PID", kLong),
                            Text("Well", 64),
                            Given("Part", kInteger, "0", kOptional),
                            Number("Years", "0.0", kOptional),
                            Number("Area", "0.0", kOptional),
                            Number("Pumped", "0.0", kOptional),
                            Number("Pores", "0.0", kOptional),
                            Number("Recharge", "0.0", kOptional),
                            Number("Surface", "0.0", kOptional),
                            Number("Edge", "0.0", kOptional),
                            Number("LeftOut", "0.0", kOptional),
                            Number("Shared", "0.0", kOptional),
                            Number("Balance", "0.0", kOptional),
                            Number("Tolerance", "0.0", kOptional),
                            GivenText("Ends", 255, "", kOptional),
                            GivenText("Made", 32, "", kOptional)};
constexpr std::array kMapLabels{GivenText("MapName", 255, ""), GivenText("TextField", 255, "")};

constexpr std::array kWHPAs{Text("Well", 64), Number("Radius"), Number("TimeOfTravel"), Number("Porosity"),
                            Number("Thickness", "0.0", kOptional), Number("AmbientFlow", "0.0", kOptional),
                            Number("Direction", "0.0", kOptional), Number("T", "0.0", kOptional),
                            Number("Shift", "0.0", kOptional), Number("Point1X", "0.0", kOptional),
                            Number("Point1Y", "0.0", kOptional), Number("Point2X", "0.0", kOptional),
                            Number("Point2Y", "0.0", kOptional), Number("FirstHead", "0.0", kOptional),
                            Given("Type", kInteger, "0", kOptional),
                            GivenText("WHPAText", kDefaultTextSize, "", kOptional),
                            Field{"WHPAData", kDouble, 0, {}, false, kOptional, false},
                            // appended
                            Given("VID1", kLong, "0", kOptional), Given("VID2", kLong, "0", kOptional),
                            Given("Outline", kInteger, "0", kOptional)};

constexpr Index Key(std::string_view field) {
  return {field, true, true};
}

constexpr std::array kTables{
    Table{"Basemaps", kBasemaps, {}, {}},
    Table{"LinesinkStrings", kLinesinkStrings, Key("PID"), {}},
    Table{"Model", kModel, {}, {}},
    Table{"NoFlowStrings", kNoFlowStrings, Key("PID"), {}},
    Table{"Inhomogeneities", kInhomogeneities, Key("PID"), {}},
    Table{"Particles", kParticles, Key("VID"), {}},
    Table{"Polygons", kPolygons, Key("PID"), {}},
    Table{"Project", kProject, {}, {}},
    Table{"TestPoints", kTestPoints, Key("VID"), {}},
    Table{
        "TextLabels", kTextLabels, {"X", true, false}, {}},  // by position on purpose: labels may share an X
    Table{"Vertices", kVertices, Key("VID"), "PID,Seq;X,Y"},
    Table{"Wells", kWells, Key("VID"), {}},
    Table{"LSResults", kLSResults, {}, "VadoxLabel"},
    Table{"INResults", kINResults, {}, "VadoxLabel"},
    Table{"NFResults", kNFResults, {}, "VadoxLabel"},
    Table{"TPResults", kTPResults, {}, "VID"},
    Table{"FIResults", kFIResults, {}, "PID"},
    Table{"WLResults", kWLResults, {}, "VadoxLabel"},
    Table{"SavedWindows", kSavedWindows, {}, {}},
    Table{"FluxInspect", kFluxInspect, {}, {}},
    Table{"Capzones", kCapzones, {}, {}},
    Table{"Zones", kZones, Key("PID"), {}},
    Table{"MapLabels", kMapLabels, {"MapName", false, false}, {}},
    Table{"WHPAs", kWHPAs, {}, {}}};

}  // namespace

std::span<const Table> Tables() {
  return kTables;
}

const Table* FindTable(std::string_view name) {
  const auto* found =
      std::find_if(kTables.begin(), kTables.end(), [&](const Table& t) { return EqualNoCase(t.name, name); });
  return found == kTables.end() ? nullptr : found;
}

const Field* FindField(const Table& table, std::string_view name) {
  for (const Field& field : table.fields) {
    if (EqualNoCase(field.name, name)) return &field;
  }
  return nullptr;
}

}  // namespace ormel::schema
