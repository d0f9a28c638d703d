// The extraction file into the results tables.
#include "solver/result_loader.h"

#include <gtest/gtest.h>

#include "core/status.h"
#include "solver/extents.h"
#include "solver/fixture_project.h"
#include "solver/result_rows.h"
#include "text/files.h"

namespace ormel::test {
namespace {

/// The fixture with the rows that a deck has made.
struct SeededProject : FixtureProject {
  SeededProject() {
    ModelCheckExtents(ormel, false, false);
    ormel.window.solved = ormel.window.model;
    SeedResultRows(ormel.db(), ReadSolverInput(ormel));
  }
  LoadReport Load(const std::string& text) {
    WriteAll(dir / "town.XTR", text);
    return ModelLoadVadoxResults(ormel);
  }
  /// The fields of a row, named in `columns`, joined with commas.
  std::string Row(const std::string& table, const std::string& label, const std::string& columns) {
    RowReader row(ormel.db(), "select " + columns + " from " + table + " where VadoxLabel=?", {label});
    if (!row.Next()) return "no row";
    std::string text;
    for (int i = 0; i < row.ColumnCount(); ++i) text += (i > 0 ? "," : "") + row.Get(i).AsText();
    return text;
  }
};

constexpr const char* kWhole =
    "* Written by the solver\n"
    " 1,2,3,4,5,6,7,8\n"  // no section yet
    "! discharge specified wells\n"
    " 250.5,300.00004,0.3,850,21.25, WL_000001 \n"
    "!head specified partially penetrating wells\n"
    " 450,150,.2,-12.5,10,0.5,WL_000004\n"
    "! Theis wells\n"
    " 550,250,0.15,60,24,WL_000010\n"
    "! head specified line sinks\n"
    " 0,750,400,750,28,27.5,100.25,10,5,2,77,88,0.01,LS_000002_0101\n"
    "! discharge specified line sinks\n"
    " 0,0,300,400,0.75,LS_000001_0101\n"
    "! drain line sinks\n"
    " 800,0,800,100,18,19,3.5,1,2,3,0.5,LS_000003_0101\n"
    "! trans domains\n"
    " IN_000008_0000,25,3.5,-0.001,0.15,5000,1.5\n"
    " 1,200,100,250,100,1,2,3,4,5,6,7,8,IN_000008_0001\n"
    " a,b\n"
    " 1,300,100,300,150,1,2,3,4,5,6,7,8,IN_000008_0101\n"
    "! slurry walls\n"
    " HB_000012_0000,0.01,1,0.2,-9999,0,0,0\n"
    " 1,100,500,150,500,11,12,13,14,HB_000012_0001\n"
    "! a header that names nothing\n"
    " 1,100,550,150,550,21,22,23,24,HB_000013_0001\n"
    "? something else\n"
    "\n"
    "! flux\n"
    " FL_000018 , 12.75 \n"
    "@ 111.12,222.22,1,.2,12.5,2,0,10,22.4,0,0,0,0,0,TP_000500\n";

TEST(Loader, PutsEveryFieldIntoItsColumn) {
  SeededProject p;
  const LoadReport report = p.Load(kWhole);
  EXPECT_TRUE(report.complete);
  EXPECT_EQ(report.bad, 0U);
  EXPECT_EQ(report.unknown, 0U);
  EXPECT_EQ(report.records, 11U);
  const struct {
    const char *table, *label, *columns, *expected;
  } rows[] = {
      {"WLResults", "WL_000001", "Label,X,Y,Radius,SpecifiedHead,Discharge,Head",
       "Town 1,1250.5,2300,0.3,0,850,21.25"},
      {"WLResults", "WL_000004", "X,Y,SpecifiedHead,Discharge,Head", "1450,2150,10,-12.5,10.5"},
      {"WLResults", "WL_000010", "Discharge,Head", "60,24"},
      {"LSResults", "LS_000002_0101",
       "X1,Y1,X2,Y2,SpecifiedHead,CalculatedHead,Discharge,Width,Resistance,Depth,Error",
       "1000,2750,1400,2750,28,27.5,100.25,10,5,2,0.01"},
      {"LSResults", "LS_000001_0101", "X1,SpecifiedHead,CalculatedHead,Discharge", "1000,-999,0,0"},
      {"LSResults", "LS_000003_0101", "SpecifiedHead,CalculatedHead,Discharge,Width,Resistance,Depth,Error",
       "18,19,3.5,1,2,3,0.5"},
      {"INResults", "IN_000008_0001",
       "Conductivity,BottomElev,ExtractRate,Porosity,DomainArea,AvgPotJump,X1,Y1,XC,YC,StrPotJumpNode,"
       "ParabStrPotJump,RealStrExtrNode,ImagStrExtrNode,RealStrExtrCntr,Tfac,DeltaPNode,DeltaPCntr",
       "25,3.5,-0.001,0.15,5000,1.5,1200,2100,1250,2100,1,2,3,4,5,6,7,8"},
      // A record that is no vertex is a head: what it does not say is 0.
      {"INResults", "IN_000008_0101", "Conductivity,BottomElev,X1,DeltaPCntr", "0,0,1300,8"},
      {"NFResults", "HB_000012_0001",
       "Conductivity,Width,Porosity,WallBottomElev,X1,Y1,XC,YC,StrPotJumpNode,ParabStrPotJump,DeltaFlowCntr,"
       "DeltaFlowNode",
       "0.01,1,0.2,-9999,1100,2500,1150,2500,11,12,13,14"},
      {"NFResults", "HB_000013_0001", "X1,DeltaFlowNode", "1100,24"},
  };
  for (const auto& row : rows) EXPECT_EQ(p.Row(row.table, row.label, row.columns), row.expected) << row.label;
  EXPECT_EQ(p.Text("select Label||','||PID||','||TotalFlux from FIResults"), "FL_000018,18,12.75");
  EXPECT_EQ(p.Text("select Label from TPResults where VID=500"), "MW-1");
  EXPECT_DOUBLE_EQ(p.Number("select ModelHead from TPResults where VID=500"), 22.4);
  EXPECT_DOUBLE_EQ(p.Number("select Difference from TPResults where VID=500"), 1.0)
      << "observed less computed";
  EXPECT_EQ(p.Number("select ModelHead from TPResults where VID=501"), 0);
  // Wells 2, 3 and 5; line-sinks 2_0201, 4, 6 (two) and 7; 6 sides of domains, 7 of walls; a test point.
  EXPECT_EQ(report.unanswered.size(), 3U + 5U + 6U + 7U + 1U);
  EXPECT_EQ(Feedback(p.ormel), "22 elements have no results.");
  p.Load(kWhole);
  EXPECT_EQ(p.Number("select count(*) from FIResults"), 1);
  EXPECT_EQ(p.Number("select count(*) from TPResults"), 2);
}

TEST(Loader, CoordinatesComeBackByTheLastSolveAndUnits) {
  TestProject p(false, true);
  p.ormel.window.solved = {100, 0, 200, 0};
  p.ormel.db().Execute(
      "insert into WLResults(Label,VadoxLabel,X,Y,Radius,SpecifiedHead,Discharge,Head) "
      "values('w','WL_000001',0,0,0,0,0,0)");
  WriteAll(p.dir / "town.xtr", "! discharge specified wells\r\n 304.8,30.48,1,2,3,wl_000001\r\n");
  ModelLoadVadoxResults(p.ormel);
  EXPECT_EQ(p.Number("select X from WLResults"), 1100);
  EXPECT_EQ(p.Number("select Y from WLResults"), 300);
}

TEST(Loader, AsksAboutRecordsThatAreTooShort) {
  const struct {
    const char *header, *line, *kind;
  } cases[] = {
      {"! discharge specified wells", " 1,2,3,4,5", "Bad DISCHARGE WELL record: Record 2"},
      {"! head specified wells", " 1,2,3,4,5,6", "Bad HEAD WELL record: Record 2"},
      {"! head specified line sinks", " 1,2,3,4,5,6,7,8,9,10,11,12,13", "Bad HEAD LINESINK record: Record 2"},
      {"! discharge specified line sinks", " 1,2,3,4,5", "Bad DISCHARGE LINESINK record: Record 2"},
      {"! drains", " 1,2,3", "Bad DRAIN record: Record 2"},
      {"! flux", " FL_000018", "Bad FLUX INSPECTOR record: Record 2"},
      {"*", "@1,2,3,4,5,6,7,8,9,10,11,12,13,14", "Bad DATA record: Record 2"}};
  SeededProject p;
  for (const auto& c : cases) {
    for (const ormel::Answer answer : {ormel::Answer::kYes, ormel::Answer::kNo}) {
      p.ui.AnswerTo("Import error", {answer});
      const LoadReport report = p.Load(std::string(c.header) + "\n" + c.line + "\n! flux\n FL_000018,5\n");
      EXPECT_EQ(p.ui.LastText(), std::string(c.kind) + " of Vadox results file:\n\n" + c.line +
                                     "\n\nContinue reading the results file?");
      EXPECT_EQ(p.ui.boxes.back().icon, Icon::kStop);
      EXPECT_EQ(report.complete, answer == ormel::Answer::kYes) << c.kind;
      EXPECT_EQ(p.Number("select count(*) from FIResults"), answer == ormel::Answer::kYes ? 1 : 0) << c.kind;
    }
  }
}

TEST(Loader, LeavesUnknownLabelsOutAndTellsHowMany) {
  SeededProject p;
  const LoadReport report = p.Load(
      "! head specified wells\n 1,2,3,4,5,6,WL_999999\n 1,2,3,4,5,6,O'Brien''s\n"
      "@ 1,2,3,4,5,6,7,8,9,10,11,12,13,14,TP_000999\n");
  EXPECT_EQ(report.unknown, 3U);
  EXPECT_NE(Feedback(p.ormel).find("3 results name no element"), std::string::npos);
}

TEST(Loader, IdentitiesOfMoreThanSixDigitsStayWhole) {
  TestProject p;
  p.ormel.db().Execute("insert into Vertices(VID) values(1234567)");
  p.ormel.db().Execute("insert into TestPoints(VID,ObsHead,Label) values(1234567,3,'far')");
  p.ormel.db().Execute("insert into Vertices(VID) values(234567)");
  p.ormel.db().Execute("insert into TestPoints(VID,ObsHead,Label) values(234567,3,'near')");
  WriteAll(p.dir / "town.XTR", "@1,2,3,4,5,6,7,8,2.5,10,11,12,13,14,TP_1234567\n");
  ModelLoadVadoxResults(p.ormel);
  EXPECT_EQ(p.Number("select ModelHead from TPResults where VID=1234567"), 2.5);
  EXPECT_EQ(p.Number("select ModelHead from TPResults where VID=234567"), 0);
}

// Wherever a file is cut, the load ends without a crash and asks at most once.
TEST(Loader, SurvivesAFileCutAtAnyByte) {
  SeededProject p;
  const std::string whole = kWhole;
  Transaction together(p.ormel.db());
  for (std::size_t length = 0; length < whole.size(); length += 7) {
    p.ui.AnswerTo("Import error", {ormel::Answer::kYes});
    const LoadReport report = p.Load(whole.substr(0, length));
    EXPECT_TRUE(report.complete);
    EXPECT_LE(report.bad, 1U);
  }
}

}  // namespace
}  // namespace ormel::test
