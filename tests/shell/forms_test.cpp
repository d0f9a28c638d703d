// Start and stop, and the small dialogs of the shell.
#include <filesystem>
#include <fstream>

#include "core/layers.h"
#include "core/map_view.h"
#include "shell/about.h"
#include "shell/gui_options_form.h"
#include "shell/recent_projects.h"
#include "shell/start.h"
#include "shell/welcome.h"
#include "support/test_project.h"

namespace ormel::test {
namespace {

struct StartTest : ::testing::Test, TestController {
  TempDir dir;
  std::optional<Placement> placed;
  bool shown = false;
  StartTest() {
    processes.program_folder = dir.path().string();
    processes.current_directory = dir.path().string();
  }
  void Load(const std::string& command_line) {
    Form_Load(ormel, command_line,
              {[this](const Placement& placement) { placed = placement; }, [this] { shown = true; }});
  }
};

TEST_F(StartTest, WithoutSettingsTheWindowHasItsFirstPlaceAndTheWelcomeBoxComes) {
  Load("");
  ASSERT_TRUE(placed);
  EXPECT_EQ(placed->Top, 0.0);
  EXPECT_EQ(placed->Left, 0.0);
  EXPECT_EQ(placed->Width, 6400.0);
  EXPECT_EQ(placed->Height, 6400.0);
  EXPECT_TRUE(placed->First);
  EXPECT_TRUE(placed->Toolbar);
  EXPECT_TRUE(shown);
  EXPECT_TRUE(ormel.layers.On(Layer::kToolbar));
  EXPECT_EQ(ui.shown_forms, (std::vector<std::string>{"About", "Welcome"}));
  EXPECT_EQ(settings.values["WelcomeBox"], "0");
  EXPECT_TRUE(ormel.menus.Enabled("FILEMENU"));
  EXPECT_FALSE(ormel.menus.Enabled("FILE_CMDS", 4));
}

TEST_F(StartTest, WelcomeStaysAwayOnceToldToAndForACommandLine) {
  settings.values["WelcomeBox"] = "1";
  Load("");
  EXPECT_EQ(ui.shown_forms, std::vector<std::string>{"About"});
  settings.values["WelcomeBox"] = "0";
  ui.shown_forms.clear();
  ui.AnswerTo("No Such File", {Answer::kNo});
  Load("my town.orm");
  EXPECT_EQ(ui.shown_forms, std::vector<std::string>{"About"});
  EXPECT_EQ(ui.LastTitle(), "No Such File");
}

TEST_F(StartTest, WelcomeButtons) {
  ui.OnForm("Welcome", [](Form& form) {
    form.SetChecked("chkDontShow", true);
    form.Click("cmdButton(1)");  // the example is not installed: nothing happens
    EXPECT_FALSE(form.Hidden());
    form.Click("cmdButton(0)");
  });
  ShowWelcome(ormel);
  EXPECT_EQ(ui.help_topics, std::vector<std::string>{"tutorial"});
  EXPECT_EQ(settings.values["WelcomeBox"], "1");

  DBNewDatabase(dir / "example.orm", {.file_title = "example.orm", .working_directory = "."});
  std::filesystem::create_directories(dir / "home/Dokumente");
  std::filesystem::create_directories(dir / "home/.config");
  std::ofstream(dir / "home/.config/user-dirs.dirs")
      << "# of the desktop\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n";
  processes.environment["HOME"] = dir / "home";
  const std::string stem =
      Database::Open(dir / "example.orm").Scalar("select OrmelBaseName from Project").AsText();
  std::ofstream(dir / (stem + ".SOL")) << "solved";
  const std::string copy = dir / "home/Dokumente/Ormel Examples/example.orm";
  for (const char* description : {"New Ormel Model", "mine"}) {
    ui.OnForm("Welcome", [](Form& form) { form.Click("cmdButton(1)"); });
    ui.AnswerTo("Ormel", {Answer::kYes});
    ShowWelcome(ormel);
    ASSERT_TRUE(ormel.project.ProjectOpen) << ui.LastText();
    EXPECT_EQ(ormel.project.DBName, copy) << "never the program's own file";
    EXPECT_EQ(ReadAll(dir / ("home/Dokumente/Ormel Examples/" + ormel.project.OrmelBaseName + ".SOL")),
              "solved");
    if (description == std::string("mine")) {
      EXPECT_EQ(ormel.db().Scalar("select Description from Project").AsText(), "mine")
          << "the user's work stays";
    }
    ormel.db().Execute("update Project set Description='mine'");
    Form_Unload(ormel, std::nullopt);
    EXPECT_FALSE(ormel.project.ProjectOpen);
  }
  processes.environment["HOME"] = "/nowhere";
  ui.OnForm("Welcome", [](Form& form) { form.Click("cmdButton(1)"); });
  ui.AnswerTo("Ormel", {Answer::kYes});
  ShowWelcome(ormel);
  EXPECT_FALSE(ormel.project.ProjectOpen);
  EXPECT_NE(ui.LastText().find("The example has not been opened."), std::string::npos) << ui.LastText();
}

TEST_F(StartTest, PlacementSurvivesARunUnlessTheWindowIsMinimised) {
  Form_Unload(ormel, Placement{15.0, 30.5, 9000.0, 7000.0, false});
  const Placement kept = ReadPlacement(ormel);
  EXPECT_EQ(kept.Left, 30.5);
  EXPECT_EQ(kept.Height, 7000.0);
  EXPECT_FALSE(kept.Toolbar);
  Form_Unload(ormel, std::nullopt);
  Form_Unload(ormel, Placement{1.0, 1.0, 0.0, 500.0, true});
  EXPECT_EQ(ReadPlacement(ormel).Width, 9000.0);
}

TEST(RecentProjectsList, IsNewestFirstWithoutRepeats) {
  TestController c;
  for (const char* path : {"/1", "/2", "/3", "/1", "/4", "/5", "/6", "/7"}) RememberProject(c.ormel, path);
  EXPECT_EQ(RecentProjects(c.ormel), (std::vector<std::string>{"/7", "/6", "/5", "/4", "/1", "/3"}));
}

TEST(AboutForm, TellsTheVersion) {
  TestController c;
  EXPECT_EQ(About(c.ormel).VersionID(), "Ormel Version " + VersionText());
}

TEST(GUIOptionsForm, StoresOptionsAndRefusesALevelOutOfRange) {
  TestProject p;
  p.ui.OnForm("GUIOptions", [](Form& form) {
    for (const char* level : {"6", "0", ""}) {
      form.SetText("DataHazeLevel", level);
      form.Click("OK");
      EXPECT_FALSE(form.Hidden()) << level;
      EXPECT_EQ(form.FocusedControl(), "DataHazeLevel");
    }
    form.SetText("DataHazeLevel", "5");
    form.SetText("DataLinesinkShadow", "2");
    form.SetText("DataVertexTolerance", "");
    form.Click("FontText");
    form.Click("OK");
    EXPECT_TRUE(form.Hidden());
  });
  p.ui.font = FontChoice{"DejaVu Sans", 14, true, false};
  ShowGUIOptions(p.ormel);
  EXPECT_EQ(p.ui.LastText(), "Invalid Haze Level!\nPlease enter a new value.");
  EXPECT_EQ(p.ormel.gui.HazeLevel(), 2);
  EXPECT_EQ(p.ormel.gui.LinesinkShadow, 2.0);
  EXPECT_EQ(p.ormel.gui.VertexTolerance, 0.0);
  EXPECT_EQ(p.Text("select DefaultFont from Model"), "DejaVu Sans");
  EXPECT_EQ(p.Number("select DefaultFontSize from Model"), 14);
  EXPECT_EQ(p.view.zooms, std::vector{Zoom::kRedraw});

  ShowGUIOptions(p.ormel);  // left by Cancel
  EXPECT_EQ(p.view.zooms.size(), 1U);
}

}  // namespace
}  // namespace ormel::test
