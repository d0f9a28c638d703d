#include "core/command.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/test_project.h"

namespace ormel {
namespace {

using test::TestProject;

void AddPolygons(Ormel& ormel, int count) {
  BulkInsert rows(ormel.db(), "Polygons", {"Closed"});
  for (int i = 0; i < count; ++i) rows.Row(i);
}

TEST(Command, KeepsWhatWasWrittenAndNamesTheInnermostProcedureThatFailed) {
  TestProject program;
  const bool done = RunCommand(program.ormel, "ELEM_CMDS_Click", [&] {
    AddPolygons(program.ormel, 2);
    const Named outer(program.ormel, "ElemAddWell");
    { const Named finished(program.ormel, "ElemAddVertex"); }
    const Named inner(program.ormel, "MirrorWell");
    throw std::runtime_error("the river is gone");
  });
  EXPECT_FALSE(done);
  ASSERT_EQ(program.ui.boxes.size(), 1U);
  EXPECT_EQ(program.ui.LastTitle(), "Unhandled Error -- Contact the ZRB");
  EXPECT_EQ(program.ui.LastText(),
            "Unhandled error in MirrorWell\n"
            "Ormel may have become unstable.  For best results, exit Ormel and restart\n"
            "If the problem persists, Contact the ZRB\n"
            "the river is gone");
  EXPECT_EQ(program.Number("select count(*) from Polygons"), 2);
  EXPECT_FALSE(program.ormel.db().InTransaction());

  // The next failure is told under its own name.
  RunCommand(program.ormel, "DBRepair", [] { throw std::runtime_error("again"); });
  EXPECT_EQ(program.ui.LastText().rfind("Unhandled error in DBRepair\n", 0), 0U);
}

TEST(Command, InsideAnotherItLeavesTheReportToTheOuterOne) {
  TestProject program;
  bool went_on = false;
  const bool done = RunCommand(program.ormel, "outer", [&] {
    RunCommand(program.ormel, "inner", [] { throw std::runtime_error("broken"); });
    went_on = true;
  });
  EXPECT_FALSE(done);
  EXPECT_FALSE(went_on) << "a deck that could not be written must not be solved";
  EXPECT_EQ(program.ui.boxes.size(), 1U);
}

TEST(Command, IsOneTransactionThatACommitSoFarDividesInTwo) {
  TestProject program;
  RunCommand(program.ormel, "command", [&] {
    EXPECT_TRUE(program.ormel.db().InTransaction());
    AddPolygons(program.ormel, 1);
    CommitSoFar(program.ormel);
    EXPECT_TRUE(program.ormel.db().InTransaction());
    AddPolygons(program.ormel, 1);
  });
  EXPECT_FALSE(program.ormel.db().InTransaction());
}

TEST(Command, MayCloseAndOpenTheProject) {
  TestProject program;
  const bool done = RunCommand(program.ormel, "FileOpenProject", [&] {
    AddPolygons(program.ormel, 3);
    const std::string path = program.ormel.project.DBName;
    DetachProject(program.ormel);
    AttachProject(program.ormel, path);
    LoadDataControls(program.ormel);
    EXPECT_TRUE(program.ormel.db().InTransaction());
  });
  EXPECT_TRUE(done);
  EXPECT_EQ(program.Number("select count(*) from Polygons"), 3);
}

}  // namespace
}  // namespace ormel
