// A finished solve is known again exactly as long as it belongs to the model.
#include "solver/solve_stamp.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "document/fingerprint.h"
#include "model/observations.h"
#include "model/wells.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

struct StampTest : ::testing::Test, TestProject {
  StampTest() {
    StoreWell(ormel, {.Label = "W", .Head = 100}, {5, 6});
    ormel.db().Execute("update Model set CONTOURShow=1");
    for (const char* extension : {".SOL", ".XTR", ".GRD", ".CTR", ".PTH"})
      WriteAll(File(extension), extension);
    ormel.window.solved = {1.1, 2.0, 3.0, 1e6 + 0.1};
    WriteSolveStamp(ormel);
  }
  std::string File(const std::string& extension) { return dir / ("town" + extension); }
};

TEST_F(StampTest, RestoresFlagsAndTheSolversOrigin) {
  ormel.window.solved = {};
  ormel.db().Execute("update Model set SOLVERX0=0, WINDOWX1=7, EDITGRIDShow=0, DefaultFontSize=20");
  EXPECT_EQ(RestoreSolve(ormel), "");
  EXPECT_TRUE(ormel.solution.ValidSolution);
  EXPECT_FALSE(ormel.solution.OfOlderModel);
  EXPECT_TRUE(ormel.solution.ContoursValid);
  EXPECT_TRUE(ormel.solution.PathlinesValid);
  EXPECT_EQ(ormel.window.solved, (Extents{1.1, 2.0, 3.0, 1e6 + 0.1}));
  EXPECT_EQ(Number("select SOLVERX0 from Model"), 1.1);
}

TEST_F(StampTest, FallsWithEachChangeOfTheModelAndOfItsSettings) {
  struct Change {
    const char* sql;
    bool solution, contours, paths, rerun;
  };
  const Change changes[] = {
      {"update Vertices set X=X+1E-9", true, false, false, false},
      {"update Wells set Head=100.5", true, false, false, false},
      {"insert into Polygons (Closed) values (0)", false, false, false, false},  // no row refers to it yet
      {"insert into Wells (VID,Label,Head) values (99,'Mirror_W',-100)", false, false, false, false},
      {"insert into Particles (VID) values (77)", false, false, true, false},
      {"update Wells set NParticles=12 where Label='W'", false, false, true, false},
      {"insert into TestPoints (VID,ObsHead,Label) values (78,5,'MW')", false, false, false, true},
      {"update Model set AQHydCond=2", true, false, false, false},
      {"update Model set TRACEMaxTime=10", false, false, true, false},
      {"update Model set CONTOURInterval=0.5", false, true, false, false},
      {"delete from Wells where Label='W'", true, false, true, false},
  };
  for (const Change& c : changes) {
    const Fingerprint before = FingerprintOf(ormel);
    ormel.db().Execute(c.sql);
    const Fingerprint now = FingerprintOf(ormel);
    EXPECT_EQ(now.solution != before.solution, c.solution) << c.sql;
    EXPECT_EQ(now.contours != before.contours, c.contours) << c.sql;
    EXPECT_EQ(now.paths != before.paths, c.paths) << c.sql;
    EXPECT_EQ(now.rerun != before.rerun, c.rerun) << c.sql;
  }
  EXPECT_EQ(RestoreSolve(ormel), "the model has been changed since it was solved");
  EXPECT_FALSE(ormel.solution.ValidSolution);
}

TEST_F(StampTest, ResultsOfAnOlderModelAreRestoredAsSuch) {
  const std::uint64_t solved = FingerprintOf(ormel).solution;
  EXPECT_EQ(ModelOfSavedSolution(ormel), solved);
  ormel.db().Execute("update Wells set Head=200");
  // What a reload of the saved solution leaves behind.
  ormel.solution.solved = SolvedModel{{.solution = solved}, true, true, true};
  WriteSolveStamp(ormel);
  EXPECT_EQ(RestoreSolve(ormel), "");
  EXPECT_TRUE(ormel.solution.ValidSolution && ormel.solution.OfOlderModel);
  ormel.db().Execute("update Wells set Head=100");
  JudgeSolution(ormel);
  EXPECT_FALSE(ormel.solution.OfOlderModel) << "the change was taken back";
  EXPECT_EQ(ormel.note, "CURRENT");
  WriteAll(File(".SOL"), "another");
  EXPECT_EQ(ModelOfSavedSolution(ormel), 0U);
}

TEST_F(StampTest, StandsWhileCaptureZonesAreDrawnFromIt) {
  StoreCapzone(ormel, "W 5 years", std::vector<MapPoint>{{0, 0}, {1, 0}, {1, 1}});
  EXPECT_EQ(WhyNotSolved(ormel), "");
}

TEST_F(StampTest, FallsWithEachFileOfTheRun) {
  for (const char* extension : {".SOL", ".XTR", ".GRD", ".CTR", ".PTH"}) {
    WriteAll(File(extension), "other");
    EXPECT_NE(WhyNotSolved(ormel).find(File(extension)), std::string::npos) << extension;
    WriteAll(File(extension), extension);
    EXPECT_EQ(WhyNotSolved(ormel), "") << extension;
  }
  std::filesystem::remove(File(".XTR"));
  EXPECT_NE(WhyNotSolved(ormel).find("is missing"), std::string::npos);
}

// A digit of the extents would move every contour and path, and a capture zone that is made from them for
// good.
TEST_F(StampTest, NoByteOfTheStampIsBelievedWhenAnotherOneHasChanged) {
  const std::string whole = ReadAll(File(".RUN"));
  for (std::size_t i = 0; i + 2 < whole.size(); ++i) {
    WriteAll(File(".RUN"), whole.substr(0, i));
    EXPECT_NE(WhyNotSolved(ormel), "") << "cut at " << i;
    std::string changed = whole;
    changed[i] = changed[i] == '7' ? '8' : '7';
    WriteAll(File(".RUN"), changed);
    EXPECT_NE(WhyNotSolved(ormel), "") << "changed at " << i;
  }
  std::filesystem::remove(File(".RUN"));
  EXPECT_EQ(RestoreSolve(ormel), "the project has not been solved yet");
}

TEST_F(StampTest, NamesTheProjectThatAStemBelongsTo) {
  EXPECT_EQ(OtherOwnerOfStem(ormel), "");
  ormel.project.DBName = dir / "other.orm";
  EXPECT_EQ(OtherOwnerOfStem(ormel), "town.orm");
  ormel.db().Execute("update Wells set Head=200");
  EXPECT_EQ(WhyNotSolved(ormel), "the files of \"town\" are those of the project town.orm");
}

}  // namespace
}  // namespace ormel::test
