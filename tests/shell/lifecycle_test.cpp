// Making, duplicating and closing a project.
#include "shell/lifecycle.h"

#include <filesystem>
#include <fstream>

#include "core/layers.h"
#include "core/project.h"
#include "lifecycle_fixture.h"
#include "model/barriers.h"
#include "shell/import_whpa.h"
#include "shell/new_database_wizard.h"
#include "shell/open_steps.h"

namespace ormel::test {
namespace {

namespace fs = std::filesystem;

void Accept(Form& form) {
  form.Click("OK");
}

TEST_F(LifecycleTest, AnOlderInputFileBecomesAProjectWithItsTitle) {
  std::ofstream(dir / "Brunnen 1.in") << "Müller's field\n 1 2 3\nrest";
  ui.AnswerTo("DLG Converter", {Answer::kCancel, Answer::kOk, Answer::kOk});
  ImportWHPA(ormel);
  EXPECT_TRUE(ui.file_dialogs.empty());
  ui.ChooseFile(dir / "missing.in");
  ui.ChooseFile(dir / "Brunnen 1.in");
  ImportWHPA(ormel);
  EXPECT_EQ(ui.boxes[2].title, "File Not Found");
  EXPECT_EQ(ui.file_dialogs[0].title, "Import WHPA File:");
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(ormel.project.DBName, dir / "Brunnen 1.orm");
  EXPECT_EQ(ormel.db().Scalar("select Description from Project").AsText(), "Müller's field");
  FileCloseProject(ormel);
  // A project of that name is never written over.
  const std::string before = ReadAll(dir / "Brunnen 1.orm");
  ui.ChooseFile(dir / "Brunnen 1.in");
  ImportWHPA(ormel);
  EXPECT_EQ(ReadAll(dir / "Brunnen 1.orm"), before);
  EXPECT_FALSE(IsOpen());
}

TEST_F(LifecycleTest, NamesThatASolveWouldWriteOverAreRefused) {
  ASSERT_NO_FATAL_FAILURE(FileOpenProject(ormel, Make("town.orm")));
  std::ofstream(dir / "p.DAT") << "a deck";
  for (const char* name : {"p.DAT", "error.log", "town.xtr", "Ormel.def", " lead.orm", "trail.orm ",
                           ".hidden.orm", "tab\t.orm", "line\n.orm"}) {
    for (const auto& act : {FileNewProject, FileSaveAs}) {
      const std::size_t boxes = ui.boxes.size();
      ui.ChooseFile(dir / name);
      act(ormel);
      ASSERT_EQ(ui.boxes.size(), boxes + 1) << name;
      EXPECT_NE(ui.LastText().find("Choose a"), std::string::npos) << ui.LastText();
      EXPECT_TRUE(IsOpen()) << name;
    }
  }
  ui.ChooseFile(dir / (std::string(600, 'x') + ".orm"));
  FileSaveAs(ormel);
  EXPECT_NE(ui.LastText().find("at most 512"), std::string::npos) << ui.LastText();
  EXPECT_EQ(ReadAll(dir / "p.DAT"), "a deck");
}

TEST_F(LifecycleTest, NamesThatLeadOutOfTheModelFolderAreMended) {
  fs::create_directory(dir / "victim");
  std::ofstream(dir / "victim/thesis.XTR") << "years of work";
  fs::create_directory(dir / "model");
  const std::string path = Make("model/town.orm");
  Run(path, "update Project set OrmelBaseName='../victim/thesis', OrmelBasePath='.'");
  FileOpenProject(ormel, path);
  ASSERT_TRUE(IsOpen());
  EXPECT_NE(ui.boxes[0].text.find("../victim/thesis"), std::string::npos) << ui.boxes[0].text;
  EXPECT_EQ(ormel.project.OrmelBaseName, "town");
  FileCloseProject(ormel);
  EXPECT_EQ(Ask(path, "select OrmelBaseName from Project"), "town");
  EXPECT_EQ(ReadAll(dir / "victim/thesis.XTR"), "years of work");
}

TEST_F(LifecycleTest, NewProjectHoldsTheAnswersOfTheWizardAndIsOpen) {
  ui.ChooseFile(dir / "plan.v2.orm");
  ui.OnForm("NewDatabaseWizard", [](Form& form) {
    form.SetText("tbDesc", "Müller's field");
    form.SetChecked("optCompute(0)", true);
    form.Click("OK");
  });
  ui.OnForm("ProjectSettings", Accept);
  FileNewProject(ormel);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(ui.caption, "Ormel - plan.v2.orm");
  EXPECT_EQ(ormel.project.OrmelBaseName, "plan");
  EXPECT_EQ(ormel.project.OrmelBasePath, dir.path().string());
  EXPECT_FALSE(ormel.project.ComputeMeters);
  EXPECT_TRUE(ormel.project.BasemapMeters);
  EXPECT_EQ(ormel.db().Scalar("select Description from Project").AsText(), "Müller's field");
  EXPECT_TRUE(ui.boxes.empty()) << ui.LastText();
  EXPECT_NE(ReadAll(dir / "Ormel.def").find("Open Project Path = " + dir.path().string()), std::string::npos);
}

TEST_F(LifecycleTest, DeclinedOverwriteLeavesFileAndOpenProject) {
  const std::string old = Make("old.orm");
  const std::string bytes = ReadAll(old);
  FileOpenProject(ormel, Make("present.orm"));
  ui.ChooseFile(old);
  ui.AnswerTo("File Exists", {Answer::kCancel});
  FileNewProject(ormel);
  EXPECT_EQ(ui.LastText(), "New file creation aborted");
  EXPECT_EQ(ReadAll(old), bytes);
  EXPECT_EQ(ormel.project.DBName, dir / "present.orm");
  EXPECT_TRUE(IsOpen());
}

TEST_F(LifecycleTest, AbortedWizardLeavesTheFileThatWasToBeReplaced) {
  const std::string old = Make("old.orm");
  const std::string bytes = ReadAll(old);
  ui.ChooseFile(old);
  ui.AnswerTo("File Exists", {Answer::kOk});
  FileNewProject(ormel);  // the wizard is left by Abort
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(ReadAll(old), bytes);
}

TEST_F(LifecycleTest, FileThatAnotherProgramHasOpenIsNotReplaced) {
  const std::string old = Make("old.orm");
  const Database other = Database::Open(old);
  ui.ChooseFile(old);
  ui.AnswerTo("File Exists", {Answer::kOk});
  FileNewProject(ormel);
  EXPECT_FALSE(IsOpen());
  EXPECT_TRUE(ui.shown_forms.empty());
  EXPECT_EQ(ui.boxes.back().icon, Icon::kStop);
}

TEST_F(LifecycleTest, DuplicateGoesOnWithTheCopy) {
  const std::string source = Make("town.orm");
  Run(source, "insert into SavedWindows (Name,X1,Y1,X2,Y2) values ('kept',1,2,3,4)");
  FileOpenProject(ormel, source);
  const std::string before = ReadAll(source);
  ui.ChooseFile(dir / "copy.2.orm");
  FileSaveAs(ormel);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(ui.file_dialogs.back().default_extension, "gfl");
  EXPECT_EQ(ormel.project.DBName, dir / "copy.2.orm");
  EXPECT_EQ(ormel.project.OrmelBaseName, "copy.2");
  EXPECT_EQ(ormel.db().Scalar("select Name from SavedWindows").AsText(), "kept");
  EXPECT_EQ(ReadAll(source), before);
}

TEST_F(LifecycleTest, DuplicateOntoItselfIsRefusedUnderEveryName) {
  const std::string source = Make("town.orm");
  fs::create_symlink(source, dir / "link.orm");
  FileOpenProject(ormel, source);
  for (const std::string& name : {source, dir / "link.orm", dir / "./town.orm"}) {
    ui.ChooseFile(name);
    FileSaveAs(ormel);
    EXPECT_EQ(ui.LastTitle(), "Save As") << name;
    EXPECT_TRUE(IsOpen()) << name;
    EXPECT_EQ(ormel.project.DBName, source);
  }
}

TEST_F(LifecycleTest, FailedDuplicateOpensTheProjectAgainAndLeavesTheTarget) {
  FileOpenProject(ormel, Make("town.orm"));
  fs::create_directory(dir / "folder.orm");
  for (const std::string& target : {dir / "missing/copy.orm", dir / "folder.orm"}) {
    ui.ChooseFile(target);
    FileSaveAs(ormel);
    EXPECT_TRUE(IsOpen()) << target;
    EXPECT_EQ(ormel.project.DBName, dir / "town.orm");
    EXPECT_EQ(ui.LastTitle(), "Save As") << target;
  }
  for (const auto& entry : fs::directory_iterator(dir.path()))
    EXPECT_EQ(entry.path().filename().string().find(".copy"), std::string::npos) << entry.path();
}

TEST_F(LifecycleTest, CloseLeavesOnlyProjectAndHelpCommands) {
  const std::string path = Make("town.orm");
  FileOpenProject(ormel, path);
  EXPECT_TRUE(ormel.menus.Enabled("FILE_CMDS", 2));
  ormel.layers.Switch(Layer::kPathlines, true);
  FileCloseProject(ormel);
  EXPECT_FALSE(IsOpen());
  EXPECT_FALSE(view.menus_on);
  EXPECT_TRUE(ormel.menus.Enabled("FILEMENU"));
  EXPECT_TRUE(ormel.menus.Enabled("HELPMENU"));
  for (const int index : {2, 3, 4, 5, 6}) EXPECT_FALSE(ormel.menus.Enabled("FILE_CMDS", index));
  EXPECT_FALSE(ormel.layers.On(Layer::kPathlines));
  EXPECT_EQ(ui.caption, "Ormel");
  EXPECT_TRUE(ormel.project.folder.empty());
  Database::Open(path);  // the file is free again
  FileCloseProject(ormel);
}

TEST_F(LifecycleTest, CloseGivesUpADrawing) {
  const std::string path = Make("town.orm");
  FileOpenProject(ormel, path);
  ui.OnForm("NoFlowString", [](Form& form) {
    form.SetText("tbLabel", "Wall");
    form.Click("OK");
  });
  ElemAddNoFlowString(ormel);
  EXPECT_EQ(ormel.db().RowCount("NoFlowStrings"), 1);
  FileCloseProject(ormel);
  EXPECT_EQ(ormel.mouse.MouseMode, MouseMode::kSelect);
  EXPECT_EQ(Ask(path, "select count(*) from NoFlowStrings"), "0") << "nobody could see or select it";
}

TEST_F(LifecycleTest, APortableProjectStaysOneThroughItsSettings) {
  FileOpenProject(ormel, Make("town.orm"));
  ormel.db().Execute("update Project set OrmelBasePath='.'");
  ReadProjectState(ormel);
  ormel.solution.ValidSolution = true;
  ui.OnForm("ProjectSettings", [](Form& form) {
    EXPECT_EQ(form.Text("BasePath"), ".");
    form.SetText("ProjectDesc", "d");
    form.Click("OK");
    EXPECT_TRUE(form.Hidden());
  });
  FileProjectSettings(ormel);
  EXPECT_EQ(ormel.db().Scalar("select OrmelBasePath from Project").AsText(), ".");
  EXPECT_EQ(ormel.project.OrmelBasePath, dir.path().string());
  EXPECT_TRUE(ormel.solution.ValidSolution) << "the same folder";
}

TEST_F(LifecycleTest, SettingsThatSpoilTheSolutionMakeItInvalid) {
  FileOpenProject(ormel, Make("town.orm"));
  ormel.solution.ValidSolution = true;
  ui.OnForm("ProjectSettings", [this](Form& form) {
    form.SetText("BaseName", "a/b");
    form.Click("OK");
    EXPECT_EQ(form.FocusedControl(), "BaseName");
    form.SetText("BaseName", "other");
    form.SetText("BasePath", dir / "nowhere");
    form.Click("OK");
    EXPECT_FALSE(form.Hidden());
    form.SetText("BasePath", dir.path().string());
    form.SetText("ProjectDesc", std::string(256, 'x'));
    form.Click("OK");
    EXPECT_EQ(form.FocusedControl(), "ProjectDesc");
    form.SetText("ProjectDesc", "d");
    form.SetChecked("CompUnits(1)", true);
    form.Click("OK");
  });
  FileProjectSettings(ormel);
  EXPECT_EQ(ormel.project.OrmelBaseName, "other");
  EXPECT_FALSE(ormel.project.ComputeMeters);
  EXPECT_FALSE(ormel.solution.ValidSolution);
  EXPECT_EQ(view.zooms.back(), Zoom::kRedraw);
}

}  // namespace
}  // namespace ormel::test
