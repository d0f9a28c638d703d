#include "whpa/run.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/layers.h"
#include "model/model_values.h"
#include "model/wells.h"
#include "solver/text_sink.h"
#include "support/test_project.h"
#include "text/files.h"
#include "whpa/rows.h"

namespace ormel {
namespace {

using test::TestProject;

/// Blanks and line ends in view, so that a failure shows where a deck differs.
std::string Visible(const std::string& text) {
  std::string shown;
  for (const char c : text) {
    if (c == ' ') {
      shown += "\u00b7";
    } else if (c == '\r') {
      shown += "\\r";
    } else {
      shown += c;
    }
  }
  return shown;
}

std::string ReadFixture(const std::string& name) {
  return test::ReadAll(std::string(ORMEL_TEST_DATA) + "/" + name);
}

struct WhpaRunTest : testing::Test {
  TestProject program;
  Vid well = -1;

  void SetUp() override {
    program.ormel.window.SolveWindow = {-1000, 1000, 500, -500};
    program.ormel.window.model = {-1000, 1000, -500, 500};
    ModelValues model = ReadModel(program.ormel);
    model.AQBase = 10;
    model.TRACEMaxTime = 1825;
    model.CONTOURShow = 1;
    WriteModel(program.ormel, model);
    WellRow row;
    row.Label = "North";
    row.Head = 800;
    row.Radius = 0.3;
    row.NParticles = 5;
    well = StoreWell(program.ormel, row, {100, 50});
    WhpaRow area;
    area.Well = "North";
    area.Type = WhpaType::kCalculated;
    area.T = 1.29;
    area.TimeOfTravel = 1825;
    area.Porosity = 0.2;
    area.Thickness = 20;
    area.AmbientFlow = 0.6;
    area.Direction = 180;
    area.FirstHead = 40;
    area.WHPAData = 15;
    WhpaRow circle;
    circle.Well = "North";
    circle.Radius = 200;
    AddWhpaRows(program.ormel, {area, circle});
    program.ormel.db().Execute("update WHPAs set WHPAText='6f24a300'");
  }

  std::string Deck() {
    StringSink deck;
    WriteWhpaDeck(program.ormel, deck, "6f24a300");
    return deck.text();
  }
};

TEST_F(WhpaRunTest, WritesTheDeckWithoutABoundary) {
  EXPECT_EQ(Visible(Deck()), Visible(ReadFixture("without_boundary.DAT")));
}

TEST_F(WhpaRunTest, WritesTheDeckWithABoundaryAndItsImages) {
  program.ormel.db().Execute(
      "update WHPAs set Point1X=600,Point1Y=-100,Point2X=600,Point2Y=300 where Type=2");
  MirrorWell(program.ormel, "North", {600, -100}, {600, 300}, {100, 50});
  EXPECT_EQ(Visible(Deck()), Visible(ReadFixture("with_boundary.DAT")));
}

TEST_F(WhpaRunTest, TellsAFatalStopAndLeavesTheFilesOfTheModelAlone) {
  test::WriteAll(program.dir / "town.SOL", "the model's own");
  test::WriteAll(program.dir / "VADOX1.EXE", "");
  program.processes.on_run = [&](const ProcessRequest& request, const auto&, const auto&) {
    EXPECT_EQ(request.arguments.back(), "6f24a300");
    test::WriteAll(program.dir / "VADOX.OPS", "The well 'North' stands outside.\r\n");
    ProcessResult result;
    result.started = true;
    result.exit_code = 1;
    return result;
  };
  ModelRunWHPAs(program.ormel);
  EXPECT_EQ(program.ui.LastTitle(), "Fatal execution error");
  EXPECT_NE(program.ui.LastText().find("The well 'North' stands outside."), std::string::npos);
  EXPECT_FALSE(FileExists(program.dir / "VADOX.OPS"));
  EXPECT_EQ(test::ReadAll(program.dir / "town.SOL"), "the model's own");
  EXPECT_EQ(program.processes.requests.size(), 1U) << "no contours after a fatal stop";
}

TEST_F(WhpaRunTest, ShowsTheAreasAfterARun) {
  test::WriteAll(program.dir / "VADOX1.EXE", "");
  program.processes.on_run = [&](const ProcessRequest&, const auto&, const auto&) {
    test::WriteAll(program.dir / "temperror.log", "*\r\n");
    ProcessResult result;
    result.started = true;
    return result;
  };
  ModelRunWHPAs(program.ormel);
  EXPECT_TRUE(program.ormel.layers.On(Layer::kWhpas));
  EXPECT_TRUE(program.ui.viewed_files.empty());
  EXPECT_EQ(program.ui.boxes.size(), 0U) << program.ui.LastText();
}

/// A solver that writes the files of a run; `path_end` ends its one path.
struct WhpaFilesTest : WhpaRunTest {
  std::string path_end = "time";
  std::function<ProcessResult(const std::function<bool()>&)> ending;
  std::vector<std::string> decks;

  void SetUp() override {
    WhpaRunTest::SetUp();
    test::WriteAll(program.dir / "VADOX1.EXE", "");
    program.processes.on_run = [&](const ProcessRequest& request, const auto&, const auto& cancelled) {
      decks.push_back(test::ReadAll(program.dir / (request.arguments.back() + ".DAT")));
      for (const char* extension : {".SOL", ".XTR"}) test::WriteAll(File(extension), "new");
      test::WriteAll(File(".PTH"),
                     "START\r\n                 0.0           1.0           5.0           0.0"
                     "           1.0\r\nEND   " +
                         path_end + "\r\n");
      ProcessResult result;
      result.started = true;
      return ending ? ending(cancelled) : result;
    };
  }
  std::string File(const std::string& extension) { return program.dir / ("6f24a300" + extension); }
};

TEST_F(WhpaFilesTest, ACancelledOrFailedRunKeepsThePathsThatWereThere) {
  ModelRunWHPAs(program.ormel);
  const std::string paths = test::ReadAll(File(".PTH"));
  const std::string deck = test::ReadAll(File(".DAT"));
  path_end = "half";
  program.ormel.window.SolveWindow.x2 = 900;
  program.ui.cancel = [] { return true; };
  for (const char* how : {"cancelled", "not started", "stopped"}) {
    ending = [&](const std::function<bool()>& cancelled) {
      ProcessResult result;
      result.started = std::string(how) != "not started";
      result.cancelled = std::string(how) == "cancelled" && cancelled();
      result.exit_code = std::string(how) == "stopped" ? 3 : 0;
      return result;
    };
    ModelRunWHPAs(program.ormel);
    EXPECT_EQ(test::ReadAll(File(".PTH")), paths) << how;
    EXPECT_EQ(test::ReadAll(File(".DAT")), deck) << how << ": the paths lie where their deck says";
    EXPECT_EQ(test::ReadAll(File(".SOL")), "new") << how;
  }
}

TEST_F(WhpaFilesTest, ImagesFollowTheirSource) {
  program.ormel.db().Execute(
      "update WHPAs set Point1X=600,Point1Y=-100,Point2X=600,Point2Y=300 where Type=2");
  program.ui.AnswerTo("Error", {Answer::kOk, Answer::kOk});  // no element has a given head
  ModelRunWHPAs(program.ormel);
  EXPECT_NE(decks.back().find("-8.00000E+02 3.00000E-01 WL_"), std::string::npos) << decks.back();
  WellRow row;
  ASSERT_TRUE(FindWell(program.ormel, well, row));
  row.Head = 900;
  row.Label = "Renamed";
  ChangeWell(program.ormel, well, row, {200, 50});
  EXPECT_EQ(program.Text("select Well from WHPAs where Type=2"), "Renamed");
  EXPECT_EQ(program.Number("select Head from Wells where Label='Mirror_Renamed'"), -900);
  EXPECT_EQ(program.Number("select X from Vertices where VID=(select VID from Wells where "
                           "Label='Mirror_Renamed')"),
            1000);
  EXPECT_EQ(program.Number("select count(*) from Wells"), 2);
  EXPECT_EQ(program.Number("select count(*) from Vertices"), 2) << "no vertex of an old image stays";
  // Whatever has changed the row, the run makes the image from it.
  program.ormel.db().Execute("update Wells set Head=950 where Label='Renamed'");
  ModelRunWHPAs(program.ormel);
  EXPECT_NE(decks.back().find("-9.50000E+02 3.00000E-01 WL_"), std::string::npos) << decks.back();
}

TEST_F(WhpaFilesTest, AsksWhenTheTimeOfTravelIsNotTheTimeThatIsTraced) {
  program.ormel.db().Execute("update WHPAs set TimeOfTravel=2000 where Type=2");
  program.ui.AnswerTo("Time of Travel", {Answer::kCancel, Answer::kNo, Answer::kYes});
  ModelRunWHPAs(program.ormel);
  EXPECT_TRUE(decks.empty());
  EXPECT_NE(program.ui.LastText().find("2000 days"), std::string::npos);
  ModelRunWHPAs(program.ormel);
  EXPECT_NE(decks.back().find(" time 1825\r\n"), std::string::npos);
  EXPECT_EQ(program.ormel.feedback, "Pathlines of 1825 days");
  ModelRunWHPAs(program.ormel);
  EXPECT_NE(decks.back().find(" time 2000\r\n"), std::string::npos);
  EXPECT_EQ(program.Number("select TRACEMaxTime from Model"), 2000);
  ModelRunWHPAs(program.ormel);  // asks no more
}

TEST_F(WhpaFilesTest, TellsOfPathsCutAtTheWindowAndWidensIt) {
  path_end = "window";
  program.ui.AnswerTo("Pathlines Cut", {Answer::kYes, Answer::kNo});
  ModelRunWHPAs(program.ormel);
  EXPECT_NE(program.ui.LastText().find("1 of 1 pathlines end at the edge"), std::string::npos);
  EXPECT_EQ(decks.size(), 2U);
  EXPECT_EQ(program.ormel.window.SolveWindow, (MapRect{-2000, 2000, 1000, -1000}));
}

}  // namespace
}  // namespace ormel
