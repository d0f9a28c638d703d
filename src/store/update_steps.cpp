#include "store/update_steps.h"

#include <array>

namespace ormel::update {
namespace {

constexpr Action Add(std::string_view table, std::string_view fields) {
  return {Act::kAddFields, table, fields};
}
constexpr Action Drop(std::string_view table, std::string_view fields) {
  return {Act::kDropFields, table, fields};
}
constexpr Action Make(std::string_view table) {
  return {Act::kMakeTable, table};
}
constexpr Action Run(std::string_view table, std::string_view field, std::string_view sql) {
  return {Act::kRun, table, field, sql};
}

// Version 1 of the program: discharge-specified wells only, no domains, results by line-sink number.
constexpr std::array kFrom100{
    Add("Project", "ProjectVersion,OrmelBasePath,OrmelBaseName"),
    Add("Wells", "HeadSpecified,Head,StartElev,Pond,PPWell,Transient"),
    Run("Wells", "PumpingRate",
        "update Wells set HeadSpecified=0, Head=PumpingRate, StartElev=(select AQBase from Model), Pond=0,"
        " PPWell=0, Transient=0"),
    Drop("Wells", "PumpingRate"),
    Add("LSResults",
        "Label,VadoxLabel,X1,Y1,X2,Y2,SpecifiedHead,Discharge,CalculatedHead,Width,Resistance,Depth,Error"),
    // Behind the new ones: a table is never without a field.
    Drop("LSResults", "PID,SpecHead,ModelHead,DPStrength,SinkDensity,Vertex,X,Y,Length"),
    Run("LSResults", "Label",
        "update LSResults set Label='__NONE__', VadoxLabel='__NONE__', X1=0, Y1=0, X2=0, Y2=0,"
        " SpecifiedHead=0, Discharge=0, CalculatedHead=0, Width=0, Resistance=0, Depth=0, Error=0"),
    Add("NoFlowStrings", "Closed,HydCond,Thickness,Porosity,BottomElevation,Color"),
    Run("NoFlowStrings", "Closed",
        "update NoFlowStrings set Closed=0, HydCond=0, Thickness=1, Porosity=0.2, BottomElevation=-9999,"
        " Color=0"),
    Run("Inhomogeneities", "",
        "create table Inhomogeneities (PID INTEGER, HydCond DOUBLE, BottomElevation DOUBLE,"
        " AverageHead DOUBLE, Recharge DOUBLE, Porosity DOUBLE, Color INTEGER, Label VARCHAR(32),"
        " ChangeK INTEGER, ChangeB INTEGER)"),
    Run("INResults", "",
        "create table INResults (Label VARCHAR(255), VadoxLabel VARCHAR(255), X1 DOUBLE, Y1 DOUBLE,"
        " X2 DOUBLE, Y2 DOUBLE, VertexStrength DOUBLE, CenterStrength DOUBLE, VertexError DOUBLE,"
        " CenterError DOUBLE)"),
    Make("WLResults"),
    Run("Project", "OrmelBasePath", "update Project set OrmelBasePath=?, OrmelBaseName='DEFAULT'"),
    Add("LinesinkStrings", "Resistance,Width,Depth,Drain,Routing"),
    Run("LinesinkStrings", "Resistance",
        "update LinesinkStrings set Resistance=0, Width=0, Depth=0, Drain=0, Routing=0"),
    Drop("Model", "SolverCustomIterations,SOLVERDefault"),
    Add("Model",
        "SOLVERX0,SOLVERY0,SOLVERIterations,SOLVERConjunctive,GRID3D,GRIDHorzSlice3D,GRIDVertSlice3D,"
        "WINDOWZ1,WINDOWZ2"),
    Run("Model", "SOLVERIterations",
        "update Model set SOLVERIterations=1, SOLVERX0=-100, SOLVERY0=-100, SOLVERConjunctive=0, GRID3D=0,"
        " GRIDHorzSlice3D=0, GRIDVertSlice3D=0, WINDOWZ1=0, WINDOWZ2=0")};

constexpr std::array kFrom201{
    Add("Model", "ViewErrorLog,ViewMessageLog"),
    Run("Model", "ViewErrorLog", "update Model set ViewErrorLog=1, ViewMessageLog=1")};

constexpr std::array kFrom202{Make("WHPAs"), Add("Wells", "PathlineColor"),
                              Run("Wells", "PathlineColor", "update Wells set PathlineColor=-99")};

constexpr std::array kFrom203{
    Add("Model", "DefaultFont,DefaultFontSize,DefaultFontBold,DefaultFontItalic"),
    Run("Model", "DefaultFont",
        "update Model set DefaultFont='Arial', DefaultFontSize=10, DefaultFontBold=0, DefaultFontItalic=0")};

constexpr std::array kFrom204{
    Action{Act::kDropTable, "INResults"}, Make("INResults"), Make("NFResults"),
    // The uniform flow gets its vertex.  Its number is behind all that were ever given.
    Run("Vertices", "VID",
        "insert into Vertices (VID,PID,Seq,X,Y) select 1+max(coalesce((select max(VID) from Vertices),0),"
        "coalesce((select max(seq) from sqlite_sequence where name='Vertices' collate nocase),0)),"
        "-10,0,UNIFLOWRefX,UNIFLOWRefY from Model where not (UNIFLOWRefX=0 and UNIFLOWRefY=0)"),
    Add("Model", "CONTOURLevel"),
    Run("Model", "CONTOURDetailed",
        "update Model set CONTOURLevel=case when coalesce(CONTOURDetailed,0)<>0 then 80 else 40 end"),
    Drop("Model", "CONTOURDetailed")};

constexpr std::array kFrom205{
    Add("Basemaps", "ColorField,UseColorField"), Make("MapLabels"),
    Run("Basemaps", "ColorField",
        "update Basemaps set ColorField='__NONE__' where ColorField is null or ColorField=''"),
    Run("Basemaps", "UseColorField", "update Basemaps set UseColorField=0")};

// Heads are equal to 12 digits: the head was once computed from the same two numbers, in another order.
constexpr std::array kFrom206{
    Add("LinesinkStrings", "AutoSWIZC"),
    Run("LinesinkStrings", "AutoSWIZC", "update LinesinkStrings set AutoSWIZC=0"),
    Run("Inhomogeneities", "ChangeK", "alter table Inhomogeneities rename column ChangeK to ChangeK_206"),
    Run("Inhomogeneities", "ChangeB", "alter table Inhomogeneities rename column ChangeB to ChangeB_206"),
    Add("Inhomogeneities", "ChangeK,ChangeR,ChangeP,ChangeB,ChangeA"),
    Run("Inhomogeneities", "ChangeK",
        "update Inhomogeneities set ChangeK=case when coalesce(ChangeK_206,0)<>0 then -1 else 0 end,"
        " ChangeP=case when coalesce(ChangeK_206,0)<>0 then -1 else 0 end,"
        " ChangeB=case when coalesce(ChangeB_206,0)<>0 then -1 else 0 end,"
        " ChangeR=case when Recharge=0 then 0 else -1 end"),
    Run("Inhomogeneities", "ChangeA",
        "update Inhomogeneities set ChangeA=case when AverageHead=-9999 or"
        " abs(AverageHead-(select AQBase+val(AQThickness) from Model))<="
        "1e-12*max(abs(AverageHead),(select abs(AQBase)+abs(val(AQThickness)) from Model)) then 0 else -1 "
        "end"),
    Run("Inhomogeneities", "AverageHead",
        "update Inhomogeneities set AverageHead=(select AQBase+val(AQThickness) from Model)"
        " where AverageHead=-9999"),
    // The older sign is that of an extraction.
    Run("Inhomogeneities", "Recharge", "update Inhomogeneities set Recharge=-Recharge where Recharge<>0"),
    Drop("Inhomogeneities", "ChangeK_206,ChangeB_206")};

constexpr std::array kFrom207{
    Add("LinesinkStrings", "Farfield"),
    Run("LinesinkStrings", "Farfield",
        "update LinesinkStrings set Farfield=case when Resistance=0 and Depth=0 and Width=0 then -1 else 0"
        " end")};

constexpr std::array kSteps{Step{100, 200, kFrom100}, Step{200, 201, {}},       Step{201, 202, kFrom201},
                            Step{202, 203, kFrom202}, Step{203, 204, kFrom203}, Step{204, 205, kFrom204},
                            Step{205, 206, kFrom205}, Step{206, 207, kFrom206}, Step{207, 208, kFrom207}};

}  // namespace

std::span<const Step> Steps() {
  return kSteps;
}

}  // namespace ormel::update
