#include "whpa/run.h"

#include <gtest/gtest.h>

#include <string>

#include "core/layers.h"
#include "model/model_values.h"
#include "model/wells.h"
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
    const std::string path = program.dir / "deck.DAT";
    TextFileWriter deck(path);
    WriteWhpaDeck(program.ormel, deck, "6f24a300");
    deck.Commit();
    return test::ReadAll(path);
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

}  // namespace
}  // namespace ormel
