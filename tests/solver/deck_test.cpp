// Decks against files that were worked out by hand, line by line, from the deck's description.
#include <gtest/gtest.h>

#include "core/command.h"
#include "solver/deck_export.h"
#include "solver/driver.h"
#include "solver/element_deck.h"
#include "solver/extents.h"
#include "solver/fixture_project.h"
#include "solver/result_rows.h"
#include "solver/text_sink.h"
#include "text/files.h"

namespace ormel::test {
namespace {

std::string Expected(const std::string& name) {
  return ReadAll(std::string(ORMEL_TEST_DATA) + "/" + name);
}

ProcessResult Cancelled() {
  ProcessResult result;
  result.started = result.cancelled = true;
  return result;
}

/// The deck as it stands while the solver runs.
std::string DeckOfRun(FixtureProject& p, const SolveRequest& request, const std::string& deck) {
  p.InstallPrograms();
  std::string text;
  p.processes.on_run = [&](const ProcessRequest&, const auto&, const auto&) {
    text = ReadAll(p.dir / deck);
    return Cancelled();
  };
  ModelRunVadox(p.ormel, request);
  return text;
}

TEST(Deck, NewSolveOfEveryElementIsTheExpectedFile) {
  FixtureProject p;
  ExpectSameDeck(Expected("new_solve.DAT"), DeckOfRun(p, {}, "town.DAT"));
  ASSERT_EQ(p.processes.requests.size(), 1U);
  const ProcessRequest& request = p.processes.requests[0];
  EXPECT_EQ(request.program, p.dir / "VADOX1.EXE");
  EXPECT_EQ(request.folder, p.dir.path().string());
  // 2 x 12 sides of walls, 9 line-sinks, 2 x 6 sides of domains, 7 of wells, 26 to spare; the run was
  // cancelled, so that the stored number is the one of before.
  EXPECT_EQ(request.arguments, (std::vector<std::string>{"78", "town"}));
}

TEST(Deck, ReloadingRunIsTheExpectedFile) {
  FixtureProject p;
  p.Run("update Model set SOLVERX0=1000, SOLVERY0=2000");
  ExpectSameDeck(Expected("reload.DAT"), DeckOfRun(p, {.KeepSolution = true}, "REGRID.DAT"));
  EXPECT_EQ(p.processes.requests.at(0).arguments.back(), "REGRID.DAT");
}

TEST(Deck, ContinuedRunLoadsSolvesAndSaves) {
  FixtureProject p;
  p.ui.InputTo("Continue Solution", "3.9");
  const std::string deck = DeckOfRun(p, {.KeepSolution = true, .ContinueSolve = true}, "REGRID.DAT");
  EXPECT_NE(deck.find(" message message.log\r\n"), std::string::npos);
  EXPECT_NE(
      deck.find(" load town\r\n time          12.5 \r\n solve 3 0 0 1\r\n \r\n save town\r\ny\r\n extract"),
      std::string::npos);
  EXPECT_EQ(p.ui.input_boxes.at(0).initial, "4");
}

TEST(Deck, StepIsTheDefaultOrTheUsersOwn) {
  FixtureProject p;
  p.ormel.solution.use_default_step = true;
  p.ormel.solution.default_step = 6.25;
  EXPECT_NE(DeckOfRun(p, {}, "town.DAT").find(" step 6.25\r\n"), std::string::npos);
}

TEST(Deck, WithoutGridTraceAndElementsOnlyTheFrameStands) {
  TestProject p;
  p.ormel.db().Execute("update Model set TRACECompute=0, SOLVERIterations=2, UNIFLOWCompute=1");
  p.ormel.window.SolveWindow = {0, 100, 50, 0};
  WriteAll(p.dir / "VADOX1.EXE", "");
  std::string deck;
  p.processes.on_run = [&](const ProcessRequest&, const auto&, const auto&) {
    deck = ReadAll(p.dir / "town.DAT");
    return Cancelled();
  };
  ModelRunVadox(p.ormel, {});
  EXPECT_EQ(
      deck.substr(deck.find(" layout ")),
      " layout \r\n window 0.00 0.00 100.00 50.00 \r\n quit \r\n layout \r\n window 0.00 0.00 100.00 50.00 "
      "\r\n quit \r\n time 0\r\n solve 2 0 0 1\r\n \r\n save town\r\ny\r\n time          0 \r\n extract\r\n "
      "file town\r\n y\r\n well discharge\r\n well head\r\n linesink discharge\r\n linesink head\r\n "
      "inhomogeneity\r\n quit\r\n stop\r\n");
}

TEST(Deck, ExportOfAMapInFeetWithUniformFlow) {
  TestProject p(false, true);
  p.ormel.window.SolveWindow = {1000, 3000, 1500, 500};
  p.ormel.db().Execute(
      "update Model set AQBase=0, AQThickness='20', AQHydCond=10, UNIFLOWCompute=1, UNIFLOWGradient=0.001, "
      "UNIFLOWOrientation=60, UNIFLOWRefHead=50, UNIFLOWRefX=3000, UNIFLOWRefY=1500");
  p.ormel.db().Execute("insert into Vertices(VID,X,Y) values(1234567,2000,1000)");
  p.ormel.db().Execute("insert into Wells(VID,Label,Radius) values(1234567,'A',9.9999999)");
  p.ormel.db().Execute("insert into Vertices(VID,X,Y) values(1234568,1000,500)");
  p.ormel.db().Execute("insert into Wells(VID,Label,Radius,Pond) values(1234568,'B',12,1)");
  p.ui.ChooseFile(p.dir / "out put.DAT");
  RunCommand(p.ormel, "ToolsExportVadox", [&] { ToolsExportVadox(p.ormel, ""); });
  ExpectSameDeck(Expected("uniform_feet_export.DAT"), ReadAll(p.dir / "out put.DAT"));
  EXPECT_EQ(p.Number("select count(*) from WLResults"), 0);
  EXPECT_EQ(p.ui.file_dialogs.at(0).filter, "Vadox Input Files|*.DAT");

  p.ui.AnswerTo("File Exists", {ormel::Answer::kNo});
  WriteAll(p.dir / "out put.DAT", "mine");
  ToolsExportVadox(p.ormel, p.dir / "out put.DAT");
  EXPECT_EQ(ReadAll(p.dir / "out put.DAT"), "mine");
}

TEST(Deck, HeadsHalfWayBetweenTwoDigitsAreThoseOfTheProductFirst) {
  FixtureProject p;
  p.String(20, {{0, 0, 1}, {90, 0, 101}, {320, 0, 201}});
  p.Linesink(20, "Half way", 0, 1.9, "", "");
  // 1.9 x 45 / 320 = 0.2671875 exactly; 1.9 x (45 / 320) is less in the last bit.
  EXPECT_NE(DeckOfRun(p, {}, "town.DAT").find(" 2.67188E-01 LS_000020_0101"), std::string::npos);
}

TEST(Deck, ScenarioResistanceStandsInExportsOnly) {
  FixtureProject p;
  p.Run("update LinesinkStrings set ScenResistance='42.5'");
  ToolsExportVadox(p.ormel, p.dir / "a.DAT");
  const std::string deck = ReadAll(p.dir / "a.DAT");
  EXPECT_NE(deck.find(" head \r\n resistance  5 \r\n"), std::string::npos);
  EXPECT_NE(deck.find(" overlandflow 2.000E+02\r\n resistance  42.5 \r\n"), std::string::npos);
  EXPECT_NE(DeckOfRun(p, {}, "town.DAT").find(" resistance 5.000000E+00 \r\n"), std::string::npos);
}

TEST(Deck, ResultRowsWaitForTheSolver) {
  FixtureProject p;
  ModelCheckExtents(p.ormel, false, false);
  p.Run(
      "insert into WLResults(Label,VadoxLabel,X,Y,Radius,SpecifiedHead,Discharge,Head) "
      "values('old','WL_000001',0,0,0,0,0,0)");
  const SolverInput input = ReadSolverInput(p.ormel);
  EXPECT_EQ(RecommendedIterations(input), 6);  // a domain changes the base
  SeedResultRows(p.ormel.db(), input);
  // Groups 1 to 5; the second Irrigation record is the same well, ponds and image wells have no row.
  EXPECT_EQ(p.Text("select group_concat(VadoxLabel) from WLResults"),
            "WL_000001,WL_000002,WL_000003,WL_000004,WL_000005,WL_000010");
  EXPECT_EQ(p.Number("select X from WLResults where VadoxLabel='WL_000001'"), 1250.5);
  EXPECT_EQ(p.Text("select group_concat(SpecifiedHead) from WLResults"), "0.0,22.5,0.0,21.0,0.0,0.0");
  EXPECT_EQ(p.Text("select group_concat(VadoxLabel||'='||SpecifiedHead) from LSResults"),
            "LS_000001_0101=-999.0,LS_000001_0201=-999.0,LS_000002_0101=28.0,LS_000002_0201=23.0,"
            "LS_000003_0101=18.0,LS_000004_0101=30.0,LS_000006_0101=19.0,LS_000006_0201=17.0,"
            "LS_000007_0101=0.25");
  EXPECT_EQ(p.Number("select count(*) from INResults"), 8);
  // Walls 12 (2 vertices, open) 1; 13 (3, closed) 3; 14 and 15 (3) 2 each; 16 (2) 1.
  EXPECT_EQ(p.Number("select count(*) from NFResults"), 9);
  EXPECT_EQ(p.Number("select count(*) from NFResults where VadoxLabel='HB_000013_0201'"), 1);
}

/// Every row of every results table.
std::string AllResults(TestProject& p) {
  std::string text;
  for (const char* table : {"WLResults", "LSResults", "INResults", "NFResults", "TPResults", "FIResults"}) {
    RowReader rows(p.ormel.db(), std::string("select * from ") + table);
    while (rows.Next())
      for (int i = 0; i < rows.ColumnCount(); ++i) text += rows.Get(i).AsText() + ";";
  }
  return text;
}

TEST(Deck, WritingOneChangesNoResult) {
  FixtureProject p;
  ModelCheckExtents(p.ormel, false, false);
  SeedResultRows(p.ormel.db(), ReadSolverInput(p.ormel));
  const std::string before = AllResults(p);
  ToolsExportVadox(p.ormel, p.dir / "export.DAT");
  EXPECT_EQ(AllResults(p), before) << "rows of zeros would pass as results of a reload";
}

}  // namespace
}  // namespace ormel::test
