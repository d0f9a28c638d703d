#include <gtest/gtest.h>

#include "core/coordinates.h"
#include "core/directory_memory.h"
#include "support/test_project.h"

namespace ormel {
namespace {

using test::TestController;
using test::TestProject;

TEST(Coordinates, ComeBackRoundedToFourDecimalsThroughTheOriginOfTheLastSolve) {
  struct Row {
    bool compute_meters, basemap_meters;
    double factor;
  };
  for (const Row& row : {Row{true, true, 1.0}, Row{false, false, 1.0}, Row{true, false, 0.3048},
                         Row{false, true, 1.0 / 0.3048}}) {
    TestController program;
    program.ormel.project.ComputeMeters = row.compute_meters;
    program.ormel.project.BasemapMeters = row.basemap_meters;
    program.ormel.window.model.x_min = 500000.25;
    program.ormel.window.model.y_min = -20.0;
    program.ormel.window.solved = program.ormel.window.model;
    const ModelPoint model = WToM(program.ormel, {500123.456789, 80.0});
    EXPECT_DOUBLE_EQ(model.x, (500123.456789 - 500000.25) * row.factor);
    EXPECT_DOUBLE_EQ(model.y, 100.0 * row.factor);
    const MapPoint back = MToW(program.ormel, model);
    EXPECT_DOUBLE_EQ(back.x, 500123.4568);
    EXPECT_DOUBLE_EQ(back.y, 80.0);
    // The extents may have moved since the solve: results still belong to the solve's origin.
    program.ormel.window.model.x_min = 0.0;
    EXPECT_DOUBLE_EQ(MToW_X(program.ormel, model.x), 500123.4568);
  }
}

struct MemoryTest : testing::Test {
  TestProject program;
  std::string File() { return program.dir / "Ormel.def"; }
};

TEST_F(MemoryTest, IsMadeByTheFirstReadWithThePresentDirectory) {
  program.processes.current_directory = "/data/wells";
  EXPECT_EQ(ReadDefaultDirectory(program.ormel, kOpenProjectPathKey), "/data/wells");
  EXPECT_EQ(test::ReadAll(File()), "Open Project Path = /data/wells\r\n");
}

TEST_F(MemoryTest, TakesTheLastEntryOfAKeyAndKeepsForeignLines) {
  test::WriteAll(File(),
                 "# mine\nOpen Project Path = /a\r\nother = x\r\nOpen Project Path = /b c/\u00fc\r\n");
  EXPECT_EQ(ReadDefaultDirectory(program.ormel, kOpenProjectPathKey), "/b c/\u00fc/");
  WriteDefaultDirectory(program.ormel, kNewProjectPathKey, "/new");
  WriteDefaultDirectory(program.ormel, kOpenProjectPathKey, "/c");
  EXPECT_EQ(test::ReadAll(File()),
            "# mine\r\nOpen Project Path = /c\r\nother = x\r\nOpen Project Path = /b c/\u00fc\r\n"
            "Default create new project path = /new\r\n");
}

TEST_F(MemoryTest, FallsBackToTheProgramFolder) {
  test::WriteAll(File(), "Open Project Path = \r\nOpen Project Path\r\n");
  program.processes.program_folder = "/opt/ormel";
  EXPECT_EQ(ReadDefaultDirectory(program.ormel, kOpenProjectPathKey), "/opt/ormel/");
}

TEST_F(MemoryTest, NeverFailsACommandWhereTheFolderTakesNoFile) {
  program.ormel.project.folder = "/proc/no such folder/";
  EXPECT_NO_THROW(WriteDefaultDirectory(program.ormel, kOpenProjectPathKey, "/a"));
  EXPECT_NO_THROW(ReadDefaultDirectory(program.ormel, kOpenProjectPathKey));
}

}  // namespace
}  // namespace ormel
