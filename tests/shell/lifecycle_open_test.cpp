// Opening a project: what is refused, what is repaired, which window is shown.
#include <sys/stat.h>

#include <filesystem>

#include "core/changes.h"
#include "core/command.h"
#include "lifecycle_fixture.h"
#include "shell/open_steps.h"

namespace ormel::test {
namespace {

struct Refusal {
  const char* name;
  void (*spoil)(const std::string& path);
  const char* title;
  const char* words;  ///< somewhere in the last box
};

void Cut(const std::string& path) {
  WriteAll(path, ReadAll(path).substr(0, 5000));
}

const Refusal kRefusals[] = {
    {"read-only", [](const std::string& path) { chmod(path.c_str(), 0444); }, "File is Read-only!",
     "read-only attribute"},
    {"no project", [](const std::string& path) { WriteAll(path, "Hello"); }, "Can't open database",
     "town.orm"},
    {"empty", [](const std::string& path) { WriteAll(path, ""); }, "Can't open database", "town.orm"},
    {"cut", Cut, "Damaged Project", "town.orm"},
    {"newer",
     [](const std::string& path) { LifecycleTest::Run(path, "update Project set ProjectVersion=209"); },
     "Can't open database", "newer version of Ormel"},
};

class OpenRefusal : public LifecycleTest, public ::testing::WithParamInterface<Refusal> {};

TEST_P(OpenRefusal, SaysWhyAndLeavesTheFileAsItWas) {
  const std::string path = Make("town.orm");
  FileOpenProject(ormel, Make("present.orm"));
  GetParam().spoil(path);
  ui.AnswerTo("File is Read-only!", {Answer::kNo});
  ui.AnswerTo("Damaged Project", {Answer::kNo});
  const std::string bytes = ReadAll(path);
  FileOpenProject(ormel, path);
  EXPECT_EQ(ui.LastTitle(), GetParam().title);
  EXPECT_NE(ui.LastText().find(GetParam().words), std::string::npos) << ui.LastText();
  EXPECT_EQ(ReadAll(path), bytes);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(ormel.project.db, nullptr);
  EXPECT_EQ(ui.caption, "Ormel");
  EXPECT_FALSE(ormel.mouse.MouseDisabled);
}
INSTANTIATE_TEST_SUITE_P(Files, OpenRefusal, ::testing::ValuesIn(kRefusals), [](const auto& test) {
  std::string name = test.param.name;
  std::erase_if(name, [](char c) { return c == '-' || c == ' '; });
  return name;
});

TEST_F(LifecycleTest, AReadOnlyProjectIsViewedAndItsChangesAreKeptInADuplicate) {
  const std::string path = Make("town.orm");
  chmod(path.c_str(), 0444);
  const std::string bytes = ReadAll(path);
  ui.AnswerTo("File is Read-only!", {Answer::kYes});
  ormel.changes.tables = {"Wells"};
  struct Nobody : ChangeListener {
    void CommandEnded(const ChangeRecord&) override {}
  } listener;
  ormel.changes.Subscribe(listener);
  FileOpenProject(ormel, path);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(ui.caption, "Ormel - town.orm (view only)");
  const std::size_t boxes = ui.boxes.size();
  for (int i = 0; i < 2; ++i)
    RunCommand(ormel, "ElemAddWell",
               [&] { ormel.db().Execute("insert into Wells (VID,Label) values (?,'w')", {i + 1}); });
  EXPECT_EQ(ui.boxes.size(), boxes + 1) << "told once";
  EXPECT_NE(ui.LastText().find("kept only by Make Duplicate Database"), std::string::npos);
  ui.AnswerTo("View Only", {Answer::kYes});
  ui.ChooseFile(dir / "copy.orm");
  FileCloseProject(ormel);
  EXPECT_EQ(ReadAll(path), bytes);
  EXPECT_EQ(Ask(dir / "copy.orm", "select count(*) from Wells"), "2");
  ormel.changes.Unsubscribe(listener);
}

TEST_F(LifecycleTest, OlderProjectIsUpdatedOnlyWhenAskedAndKeepsACopy) {
  const std::string path = Make("town.orm");
  Run(path, "update Project set ProjectVersion=207");
  Run(path,
      "insert into LinesinkStrings (PID,Label,Width,Depth,Resistance) values "
      "(1,'brook',0,0,0),(2,'river',5,0,0)");
  Run(path, "insert into Polygons (PID,Closed) values (1,0),(2,0)");
  Run(path,
      "insert into Vertices (VID,PID,Seq,X,Y) values (1,1,1,0.0,0.0),(2,1,2,9.0,0.0),(3,2,1,0.0,5.0),"
      "(4,2,2,9.0,5.0)");
  const std::string spoilt = ReadAll(path);  // it has a field that only the step adds
  ui.AnswerTo("Version Update", {Answer::kNo, Answer::kYes, Answer::kOk, Answer::kYes});
  FileOpenProject(ormel, path);
  EXPECT_EQ(ui.LastText(), "Can't open this project database unless it is updated.");
  FileOpenProject(ormel, path);
  for (const char* words : {"Error occurred during database update", "Step 207 to 208",
                            "table LinesinkStrings, field Farfield", "town.v207.orm", "as it was"})
    EXPECT_NE(ui.LastText().find(words), std::string::npos) << words << " in " << ui.LastText();
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(ReadAll(path), spoilt);
  EXPECT_EQ(ReadAll(dir / "town.v207.orm"), spoilt);

  Run(path, "alter table LinesinkStrings drop column Farfield");
  const std::string bytes = ReadAll(path);
  FileOpenProject(ormel, path);
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(ReadAll(dir / "town.v207.orm"), spoilt) << "an older copy stays";
  EXPECT_EQ(ReadAll(dir / "town.v207-2.orm"), bytes);
  EXPECT_EQ(ormel.db().Scalar("select Farfield from LinesinkStrings where PID=1").AsLong(), -1);
  EXPECT_EQ(ormel.db().Scalar("select Farfield from LinesinkStrings where PID=2").AsLong(), 0);
  EXPECT_EQ(ormel.db().Scalar("select ProjectVersion from Project").AsLong(), 208);
}

TEST_F(LifecycleTest, ProjectThatAnotherProgramHasOpenIsRefused) {
  const std::string path = Make("town.orm");
  const Database other = Database::Open(path);
  ui.AnswerTo("Can't open database", {Answer::kNo});
  FileOpenProject(ormel, path);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(ui.LastTitle(), "Can't open database");
}

TEST_F(LifecycleTest, MissingFileIsMadeOnlyWhenAsked) {
  ui.AnswerTo("No Such File", {Answer::kNo, Answer::kYes});
  FileOpenProject(ormel, "fresh.orm");
  EXPECT_FALSE(std::filesystem::exists(dir / "fresh.orm"));
  FileOpenProject(ormel, "fresh.orm");
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(ormel.project.DBName, dir / "fresh.orm");
  EXPECT_EQ(ui.boxes.size(), 2U) << "the new project's folder is its own";
}

TEST_F(LifecycleTest, CancelledDialogLeavesThePresentProject) {
  FileOpenProject(ormel, Make("town.orm"));
  ui.ChooseFile(std::nullopt);
  FileOpenProject(ormel, "");
  EXPECT_TRUE(IsOpen());
  EXPECT_FALSE(ormel.mouse.MouseDisabled);
}

TEST_F(LifecycleTest, DamageFoundWhileLoadingClosesTheProjectAgain) {
  const std::string path = Make("town.orm");
  Run(path, "drop table Wells");
  EXPECT_ANY_THROW(FileOpenProject(ormel, path));
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(ormel.project.db, nullptr);
  EXPECT_FALSE(ormel.mouse.MouseDisabled);
}

TEST_F(LifecycleTest, FolderOfTheModelFilesIsRepairedOnlyWhenItDiffers) {
  const std::string path = Make("town.orm");
  const std::string own = dir.path().string();
  for (const std::string& stored : {own, own + "/", std::string("."), std::string("./")}) {
    Run(path, "update Project set OrmelBasePath='" + stored + "'");
    FileOpenProject(ormel, path);
    EXPECT_TRUE(ui.boxes.empty()) << stored << ": " << ui.LastText();
    FileCloseProject(ormel);
  }
  Run(path, "update Project set OrmelBasePath='/somewhere'");
  ui.AnswerTo("Ormel", {Answer::kNo, Answer::kYes});
  FileOpenProject(ormel, path);
  EXPECT_EQ(ormel.project.OrmelBasePath, "/somewhere");
  FileOpenProject(ormel, path);
  EXPECT_EQ(ormel.project.OrmelBasePath, own);
  FileCloseProject(ormel);
  EXPECT_EQ(Ask(path, "select OrmelBasePath from Project"), own);
}

TEST_F(LifecycleTest, WindowComesFromTheProjectOrIsTheFirstOne) {
  const std::string path = Make("town.orm");
  FileOpenProject(ormel, path);
  EXPECT_EQ(ormel.window.SolveWindow, (MapRect{-100, 100, 100, -100}));
  EXPECT_EQ(ormel.window.full, (Extents{-100, 100, -100, 100}));
  EXPECT_EQ(ormel.window.power_of_ten, 100.0);
  EXPECT_DOUBLE_EQ(ormel.gui.VertexTolerance, 200.0 * 1e-5);
  FileCloseProject(ormel);

  // A well far outside the stored window widens the full extents and leaves the window alone; the origin of
  // the last solve stays.
  Run(path,
      "update Model set WINDOWX1=0, WINDOWX2=4000, WINDOWY1=3000, WINDOWY2=0, MARGINLeft=2, SOLVERX0=7");
  Run(path, "insert into Vertices (PID,Seq,X,Y) values (-1,0,-50,10)");
  Run(path, "insert into Vertices (PID,Seq,X,Y) values (-1,0,10,9000)");
  Run(path, "insert into Wells (VID,Head,Label,HeadSpecified) select VID,5,'W',1 from Vertices");
  FileOpenProject(ormel, path);
  EXPECT_EQ(ormel.window.SolveWindow, (MapRect{0, 4000, 3000, 0}));
  EXPECT_EQ(ormel.window.full, (Extents{-50, 4000, 0, 9000}));
  EXPECT_EQ(ormel.window.power_of_ten, 1000.0);
  EXPECT_EQ(ormel.window.margin_left, 2.0);
  EXPECT_EQ(ormel.db().Scalar("select SOLVERX0 from Model").AsDouble(), 7.0);
}

TEST(PowerOfTen, IsTheIntegerPartOfTheLogarithm) {
  EXPECT_EQ(PowerOfTen(999.0), 100.0);
  EXPECT_EQ(PowerOfTen(1000.0), 1000.0);
  EXPECT_EQ(PowerOfTen(0.5), 1.0);
  EXPECT_EQ(PowerOfTen(0.0), 1.0);
}

}  // namespace
}  // namespace ormel::test
