// A finished solve is known again exactly as long as it belongs to the model.
#include "shell/solve_stamp.h"
#include "document/fingerprint.h"

#include <filesystem>

#include "model/observations.h"
#include "model/wells.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

struct StampTest : ::testing::Test, TestProject {
  StampTest() {
    StoreWell(ormel, {.Label = "W", .Head = 100}, {5, 6});
    ormel.db().Execute("update Model set CONTOURShow=1");
    for (const char* extension : {".XTR", ".GRD", ".CTR", ".PTH"}) WriteAll(File(extension), extension);
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
  EXPECT_TRUE(ormel.solution.ContoursValid);
  EXPECT_TRUE(ormel.solution.PathlinesValid);
  EXPECT_EQ(ormel.window.solved, (Extents{1.1, 2.0, 3.0, 1e6 + 0.1}));
  EXPECT_EQ(Number("select SOLVERX0 from Model"), 1.1);
}

TEST_F(StampTest, FallsWithEachChangeOfTheModel) {
  const char* changes[] = {
      "update Vertices set X=X+1E-9",
      "update Wells set Head=100.5",
      "insert into Polygons (Closed) values (0)",  // nothing yet: no row refers to it
      "insert into Particles (VID) values (77)",
      "update Model set AQHydCond=2",
      "update Model set TRACEMaxTime=10",
      "update Model set CONTOURInterval=0.5",
      "delete from Wells",
  };
  for (const char* sql : changes) {
    const auto before = FingerprintOf(ormel);
    ormel.db().Execute(sql);
    const bool polygon = std::string_view(sql).find("Polygons") != std::string_view::npos;
    EXPECT_EQ(FingerprintOf(ormel) == before, polygon) << sql;
  }
  EXPECT_EQ(RestoreSolve(ormel), "the model has been changed since it was solved");
  EXPECT_FALSE(ormel.solution.ValidSolution);
}

TEST_F(StampTest, StandsWhileCaptureZonesAreDrawnFromIt) {
  StoreCapzone(ormel, "W 5 years", std::vector<MapPoint>{{0, 0}, {1, 0}, {1, 1}});
  EXPECT_EQ(WhyNotSolved(ormel), "");
}

TEST_F(StampTest, FallsWithEachFileOfTheRun) {
  for (const char* extension : {".XTR", ".GRD", ".CTR", ".PTH"}) {
    WriteAll(File(extension), "other");
    EXPECT_NE(WhyNotSolved(ormel).find(File(extension)), std::string::npos) << extension;
    std::filesystem::remove(File(extension));
    EXPECT_NE(WhyNotSolved(ormel).find("is missing"), std::string::npos) << extension;
    WriteAll(File(extension), extension);
    EXPECT_EQ(WhyNotSolved(ormel), "") << extension;
  }
}

TEST_F(StampTest, DamagedOrMissingStampIsNoSolution) {
  const std::string whole = ReadAll(File(".RUN"));
  for (std::size_t size = 0; size + 2 < whole.size(); ++size) {
    WriteAll(File(".RUN"), whole.substr(0, size));
    EXPECT_NE(WhyNotSolved(ormel), "") << "cut at " << size;
  }
  std::filesystem::remove(File(".RUN"));
  EXPECT_EQ(RestoreSolve(ormel), "the project has not been solved yet");
}

}  // namespace
}  // namespace ormel::test
