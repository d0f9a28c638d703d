// What one command is to the user: one step with a name, taken back as a whole, with the solution that
// belongs to the model.
#include <gtest/gtest.h>

#include <filesystem>

#include "document/document.h"
#include "document/fingerprint.h"
#include "model/validity.h"
#include "shell/menus.h"
#include "support/model_dump.h"
#include "view/map_fixture.h"
#include "view/mouse.h"

namespace ormel::test {
namespace {

struct UndoTest : testing::Test, MapProject {
  Document document{ormel};

  UndoTest() {
    ormel.ports.document = &document;
    for (const char* menu : {"EDIT_CMDS", "DeleteWHPA"})
      for (int index = 0; index <= 5; ++index) ormel.menus.Enable(menu, index, true);
  }
  std::string Dump() { return DumpModel(ormel.db()); }
  DevicePoint At(double x, double y) { return map.vg().vgGDIWorldToDevice(x, y); }
  void Left(double x, double y) {
    Map_MouseDown(map, MouseButton::kLeft, 0, At(x, y));
    Map_MouseUp(map, MouseButton::kLeft, 0, At(x, y));
  }
  void Right() { Map_MouseDown(map, MouseButton::kRight, 0, At(0, 0)); }
  void Drag(double x1, double y1, double x2, double y2) {
    Map_MouseDown(map, MouseButton::kLeft, 0, At(x1, y1));
    Map_MouseMove(map, MouseButton::kLeft, 0, At(x2, y2));
    Map_MouseUp(map, MouseButton::kLeft, 0, At(x2, y2));
  }
  /// Presses OK behind entries that the form has.
  void Accept(const std::string& form, std::vector<std::pair<std::string, std::string>> texts = {}) {
    ui.OnForm(form, [texts](Form& f) {
      for (const auto& [name, text] : texts)
        if (f.Has(name) && f.State(name).enabled) f.SetText(name, text);
      for (const ControlSpec& control : f.Controls())
        if (control.role == ButtonRole::kAccept && !f.Hidden()) f.Click(control.name);
    });
  }
  void AddWell(double x, double y, const std::string& label) {
    ASSERT_TRUE(Dispatch(ormel, "ELEM_NEW", 1));
    Accept("WellProperties", {{"tbLabel", label}, {"tbData(2)", "800"}});
    Left(x, y);
  }
  void DrawString(int kind, const char* form, std::initializer_list<MapPoint> points) {
    Accept(form, {{"tbLabel", "S"}, {"tbData(0)", "5"}, {"tbData(1)", "4"}});
    ASSERT_TRUE(Dispatch(ormel, "ELEM_NEW", kind));
    for (const MapPoint p : points) Left(p.x, p.y);
    if (kind == 2) Accept(form);
    Right();
  }
  /// A run that ended well, with its files.
  void Solved() {
    for (const char* extension : {".XTR", ".GRD", ".PTH"})
      WriteAll(dir / ("town" + std::string(extension)), "x");
    ormel.solution.GridValid = ormel.solution.ContoursValid = ormel.solution.PathlinesValid = true;
    ShowSolution(ormel);
    ormel.solution.solved = SolvedModel{FingerprintOf(ormel), true, true, true};
  }
  void Undo() { ASSERT_TRUE(Dispatch(ormel, "UNDO")); }
  void Redo() { ASSERT_TRUE(Dispatch(ormel, "REDO")); }
};

TEST_F(UndoTest, each_act_is_one_step_with_a_name_that_the_menu_shows) {
  struct Act {
    const char* name;
    std::function<void()> act;
  };
  const std::vector<Act> acts{
      {"Add Well", [&] { AddWell(10, 10, "W1"); }},
      {"Add Linesink",
       [&] {
         DrawString(2, "LinesinkString", {{-50, 0}, {-40, 10}, {-30, 0}});
       }},
      {"Add Horizontal Barrier",
       [&] {
         DrawString(3, "NoFlowString", {{50, 0}, {50, 30}});
       }},
      {"Add Inhomogeneity",
       [&] {
         DrawString(4, "Inhomogeneity", {{60, 60}, {80, 60}, {80, 80}});
       }},
      {"Move Well",
       [&] {
         Left(10, 10);
         ASSERT_TRUE(Dispatch(ormel, "EDIT_CMDS", 2));
         Drag(10, 10, 20, 5);
       }},
      {"Move Linesink Vertex",
       [&] {
         Left(-40, 10);
         ASSERT_TRUE(Dispatch(ormel, "EDIT_CMDS", 2));
         Drag(-40, 10, -40, 30);
       }},
      {"Change Well",
       [&] {
         Left(20, 5);
         Accept("WellProperties", {{"tbLabel", "W2"}});
         ASSERT_TRUE(Dispatch(ormel, "EDIT_CMDS", 1));
       }},
      {"Refine Linesink",
       [&] {
         Left(-40, 30);
         ui.InputTo("Refine", "10");
         ASSERT_TRUE(Dispatch(ormel, "EDIT_CMDS", 4));
       }},
      {"Delete Well",
       [&] {
         Left(20, 5);
         ui.AnswerTo("Confirm", {Answer::kOk});
         ASSERT_TRUE(Dispatch(ormel, "EDIT_CMDS", 3));
       }},
      {"Change Model Settings",
       [&] {
         Accept("ModelSettings", {{"tbHydCond", "7.5"}});
         ASSERT_TRUE(Dispatch(ormel, "MODEL_CMDS", 1));
       }},
  };
  std::vector<std::string> dumps{Dump()};
  for (const Act& act : acts) {
    const std::size_t before = document.history().size();
    act.act();
    EXPECT_EQ(document.history().size(), before + 1) << act.name;
    EXPECT_EQ(document.UndoName(), act.name);
    EXPECT_EQ(ormel.menus.Caption("UNDO"), std::string("&Undo ") + act.name);
    EXPECT_FALSE(document.CanRedo());
    dumps.push_back(Dump());
    EXPECT_NE(dumps[dumps.size() - 2], dumps.back()) << act.name;
  }
  for (std::size_t i = acts.size(); i > 0; --i) {
    Undo();
    EXPECT_EQ(FirstDifference(Dump(), dumps[i - 1]), "") << acts[i - 1].name;
    EXPECT_EQ(ormel.menus.Caption("REDO"), std::string("Red&o ") + acts[i - 1].name);
  }
  EXPECT_FALSE(Dispatch(ormel, "UNDO"));
  for (std::size_t i = 0; i < acts.size(); ++i) {
    Redo();
    EXPECT_EQ(FirstDifference(Dump(), dumps[i + 1]), "") << acts[i].name;
  }
  EXPECT_FALSE(Dispatch(ormel, "REDO"));
  // Another future.
  Undo();
  AddWell(0, -50, "W3");
  EXPECT_FALSE(document.CanRedo());
}

TEST_F(UndoTest, a_vertex_is_taken_back_while_drawing_and_an_abandoned_string_is_no_step) {
  Accept("NoFlowString", {{"tbLabel", "B"}});
  ASSERT_TRUE(Dispatch(ormel, "ELEM_NEW", 3));
  EXPECT_FALSE(Dispatch(ormel, "UNDO")) << "the menu rests while something is drawn";
  for (const double x : {0.0, 10.0, 20.0}) Left(x, 0);
  EXPECT_TRUE(Map_KeyDown(map, MapKey::kBackspace));
  EXPECT_EQ(Number("select count(*) from Vertices"), 2);
  Left(20, 30);
  EXPECT_EQ(Number("select Seq from Vertices where Y=30"), 201) << "as if the vertex had never been";
  for (int i = 0; i < 5; ++i) Map_KeyDown(map, MapKey::kBackspace);
  EXPECT_EQ(Number("select count(*) from Vertices"), 0);
  EXPECT_EQ(Number("select count(*) from NoFlowStrings"), 1) << "drawing goes on";
  EXPECT_FALSE(ormel.mouse.LineInProgress);
  Left(0, 0);
  Left(5, 5);
  Right();
  EXPECT_EQ(Number("select min(Seq) from Vertices"), 1);
  EXPECT_EQ(document.history().size(), 1U);
  Undo();
  EXPECT_EQ(Number("select count(*) from Polygons"), 0);

  Accept("NoFlowString", {{"tbLabel", "C"}});
  ASSERT_TRUE(Dispatch(ormel, "ELEM_NEW", 3));
  Map_KeyDown(map, MapKey::kEscape);
  EXPECT_FALSE(document.CanUndo());
}

TEST_F(UndoTest, the_solution_of_a_model_comes_back_with_the_model) {
  AddWell(10, 10, "W1");
  Solved();
  Left(10, 10);
  ASSERT_TRUE(Dispatch(ormel, "EDIT_CMDS", 2));
  ui.AnswerTo("Model Changed!", {Answer::kYes});
  Drag(10, 10, 40, 10);
  EXPECT_FALSE(ormel.solution.ValidSolution);
  EXPECT_FALSE(ormel.menus.Enabled("RESULTS_TABLE"));
  EXPECT_EQ(ui.panels[Panel::kNote], "");
  Undo();
  EXPECT_TRUE(ormel.solution.ValidSolution);
  EXPECT_EQ(ui.panels[Panel::kNote], "CURRENT");
  EXPECT_TRUE(ormel.menus.Enabled("RESULTS_TABLE"));
  EXPECT_TRUE(ormel.layers.On(Layer::kContours));
  ui.AnswerTo("Model Changed!", {Answer::kYes});
  Redo();
  EXPECT_FALSE(ormel.solution.ValidSolution);
  // A run that failed took the files along.
  std::filesystem::remove(dir / "town.XTR");
  Undo();
  EXPECT_FALSE(ormel.solution.ValidSolution);
}

TEST_F(UndoTest, contours_and_paths_follow_their_settings_and_their_files_stay) {
  ormel.db().Execute("update Model set CONTOURShow=1,TRACECompute=1");
  document.Forget();
  Solved();
  ui.AnswerTo("Regrid/Retrace?", {Answer::kNo});
  Accept("ModelSettings", {{"tbContourInt", "0.25"}, {"tbMaxTime", "99"}});
  ASSERT_TRUE(Dispatch(ormel, "MODEL_CMDS", 1));
  EXPECT_TRUE(ormel.solution.ValidSolution);
  EXPECT_FALSE(ormel.solution.ContoursValid);
  EXPECT_FALSE(ormel.solution.PathlinesValid);
  EXPECT_FALSE(ormel.layers.On(Layer::kPathlines));
  EXPECT_TRUE(std::filesystem::exists(dir / "town.PTH"));
  Undo();
  EXPECT_TRUE(ormel.solution.ContoursValid);
  EXPECT_TRUE(ormel.solution.PathlinesValid);
  EXPECT_TRUE(ormel.layers.On(Layer::kPathlines));
  Redo();
  EXPECT_TRUE(ormel.solution.ValidSolution);
  EXPECT_FALSE(ormel.solution.ContoursValid);
  EXPECT_FALSE(ormel.layers.On(Layer::kPathlines));
  Undo();
  ormel.layers.Switch(Layer::kContours, false);
  Accept("TextLabelDialog", {{"tbText", "St. John's"}});
  ASSERT_TRUE(Dispatch(ormel, "ADDTEXT"));
  Left(0, 0);
  EXPECT_EQ(document.UndoName(), "Add Text");
  Undo();
  EXPECT_FALSE(ormel.layers.On(Layer::kContours)) << "the user's own choice";
}

TEST_F(UndoTest, windows_and_results_are_left_alone) {
  AddWell(10, 10, "W1");
  const Vid vid = AddVertex(30, 30);
  ormel.db().Execute("insert into TestPoints (VID,ObsHead,Label) values (?,5,'T')", {vid});
  document.Forget();
  Left(30, 30);
  Accept("TestPointProperties", {{"tbObsHead", "6"}});
  ASSERT_TRUE(Dispatch(ormel, "EDIT_CMDS", 1));
  EXPECT_EQ(document.UndoName(), "Change Test Point");
  ormel.db().Execute("update TestPoints set ModelHead=4.5");
  ormel.db().Execute("update Model set WINDOWX1=-7,SOLVERX0=3");
  ormel.window.SolveWindow = {-50.0, 50.0, 50.0, -50.0};
  map.ZoomActions(Zoom::kRedraw);
  const double window = Number("select WINDOWX1 from Model");
  EXPECT_EQ(document.history().size(), 1U);
  Undo();
  EXPECT_EQ(Number("select ObsHead from TestPoints"), 5);
  EXPECT_EQ(Number("select ModelHead from TestPoints"), 4.5);
  EXPECT_EQ(Number("select WINDOWX1 from Model"), window);
}

TEST_F(UndoTest, a_step_that_no_longer_fits_changes_nothing_and_ends_the_history) {
  AddWell(10, 10, "W1");
  AddWell(30, 10, "W2");
  ormel.db().Execute("delete from Wells where Label='W2'");
  ormel.db().TakeChanges();  // as if by another hand
  const std::string before = Dump();
  Undo();
  EXPECT_EQ(ui.LastTitle(), "Unhandled Error -- Contact the ZRB");
  EXPECT_EQ(Dump(), before);
  EXPECT_FALSE(document.CanUndo());
}

}  // namespace
}  // namespace ormel::test
