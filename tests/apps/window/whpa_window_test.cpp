// Simple protection areas from the menu to the map.
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>

#include "platform/posix_processes.h"
#include "text/files.h"
#include "window/window_fixture.h"

namespace ormel {
namespace {

using test::WindowTest;

TEST_F(WindowTest, ACircleOfChosenRadiusIsDrawnFromTheToolbar) {
  Start(town);
  const QImage before = Map().picture().copy();
  WithNextDialog([](QDialog& dialog) {
    auto* list = dialog.findChild<QListWidget*>("listWell");
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->count(), 1) << "a well with a given head has no area";
    list->item(0)->setSelected(true);
    auto* radius = dialog.findChild<QLineEdit*>("DataRadius");
    radius->clear();
    QTest::keyClicks(radius, "150");
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  program->window.toolbar().Find("ArbitraryWHPA")->trigger();
  Settle(250);
  EXPECT_EQ(program->ormel.db().Scalar("select Radius from WHPAs where Well='North'").AsDouble(), 150.0);
  EXPECT_TRUE(Item("ShowWHPAs")->isChecked());
  EXPECT_NE(Map().picture(), before);
  const double ratio = Map().devicePixelRatioF();
  const QPoint east = PixelOf({550.0, 600.0});
  bool red = false;
  for (int dx = -3; dx <= 3; ++dx) {
    const QColor color(Map().picture().pixel(QPoint(east.x() + dx, east.y()) * ratio));
    red = red || (color.red() > 200 && color.green() < 150 && color.blue() < 150);
  }
  EXPECT_TRUE(red);
}

/// The window with the outside programs that stand beside this test.
class WhpaWindowTest : public WindowTest {
 protected:
  WhpaWindowTest() {
    processes.program_folder = ORMEL_BIN_DIR;
    processes.on_run = [this](const ProcessRequest& request, const auto& line, const auto& cancelled) {
      return real_.Run(request, line, cancelled);
    };
  }

  static std::function<void(QDialog&)> AnswerBox(QMessageBox::StandardButton button) {
    return [button](QDialog& dialog) { qobject_cast<QMessageBox*>(&dialog)->button(button)->click(); };
  }

  /// Does something with the modal dialog of this title, once it is in front.
  void OnDialog(const QString& title, std::function<void(QDialog&)> act) {
    auto* timer = new QTimer(&program->window);
    QObject::connect(timer, &QTimer::timeout, [timer, title, act] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr || dialog->windowTitle() != title) return;
      timer->stop();
      timer->deleteLater();
      act(*dialog);
    });
    timer->start(20);
  }
  static void Type(QDialog& dialog, const char* field, const char* text) {
    auto* edit = dialog.findChild<QLineEdit*>(QString::fromLatin1(field));
    ASSERT_NE(edit, nullptr) << field;
    edit->clear();
    QTest::keyClicks(edit, QString::fromLatin1(text));
  }
  static void Enter(QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); }
  void Click(MapPoint at) {
    QTest::mouseClick(&Map(), Qt::LeftButton, {}, PixelOf(at));
    Settle(50);
  }
  double Number(const char* sql) { return program->ormel.db().Scalar(sql).AsDouble(); }
  std::string RunFile(const std::string& extension) {
    return dir / (program->ormel.db().Scalar("select WHPAText from WHPAs").AsText() + extension);
  }

  PosixProcesses real_{ORMEL_BIN_DIR};
};

TEST_F(WhpaWindowTest, ACalculatedAreaWithAStreamLeadsFromItsDialogsOverTwoClicksToPaths) {
  Start(town);
  OnDialog("Calculated WHPA", [](QDialog& dialog) {
    QTest::keyClick(dialog.findChild<QComboBox*>("cmbWell"), Qt::Key_Down);
    Type(dialog, "DataTime", "1825");
    Type(dialog, "DataPorosity", "0.2");
    Type(dialog, "DataThickness", "20");
    Type(dialog, "DataAmbient", "1.2");
    Enter(dialog);
  });
  OnDialog("Well in Uniform Flow", [](QDialog& dialog) {
    Type(dialog, "DataDirectionFlow", "180");
    Enter(dialog);
  });
  OnDialog("Stream Boundary", [](QDialog& dialog) {
    dialog.findChild<QRadioButton*>("optYesNo(0)")->click();
    Type(dialog, "DataHead", "20");
    Type(dialog, "DataConductivity", "30");
    Enter(dialog);
  });
  program->window.toolbar().Find("CalculatedWHPA")->trigger();
  Settle(100);
  ASSERT_EQ(Number("select count(*) from WHPAs where Type=2 and T>1"), 1);
  EXPECT_EQ(program->ormel.mouse.MouseElement, Element::kStreamBoundary);
  EXPECT_FALSE(FileExists(RunFile(".PTH")));
  Click({150, 100});
  OnDialog("Time of Travel", AnswerBox(QMessageBox::Yes));
  OnDialog("Pathlines Cut", AnswerBox(QMessageBox::No));
  Click({150, 700});
  Settle(100);
  EXPECT_TRUE(FileExists(RunFile(".PTH")));
  EXPECT_EQ(Number("select Head from Wells where Label='Mirror_North'"), -1200);
  EXPECT_EQ(program->ormel.mouse.MouseMode, MouseMode::kSelect);
  EXPECT_FALSE(program->ormel.mouse.MenusOff);
  EXPECT_TRUE(Item("ShowWHPAs")->isChecked());
}

TEST_F(WhpaWindowTest, MultipleWellsAreTracedAtOnceWithoutAStream) {
  Start(town);
  OnDialog("Multiple Wells WHPA", [](QDialog& dialog) {
    dialog.findChild<QListWidget*>("listWell")->item(0)->setSelected(true);
    Type(dialog, "DataPorosity", "0.2");
    Type(dialog, "DataThickness", "20");
    Type(dialog, "DataAmbientFlow", "0.5");
    Enter(dialog);
  });
  OnDialog("Stream Boundary", [](QDialog& dialog) { Enter(dialog); });
  OnDialog("Pathlines Cut", AnswerBox(QMessageBox::No));
  ASSERT_NE(Item("WHPA", 2), nullptr);
  Item("WHPA", 2)->trigger();
  Settle(100);
  EXPECT_EQ(Number("select count(*) from WHPAs where Type=3"), 1);
  EXPECT_TRUE(FileExists(RunFile(".PTH")));
}

TEST_F(WhpaWindowTest, AnOutlineIsTracedFromTheSolvedModel) {
  Start(town);
  program->ormel.db().Execute(
      "update Model set AQBase=-50, AQThickness='20', AQHydCond=15, SOLVERIterations=2, ViewErrorLog=0, "
      "ViewMessageLog=0");
  ASSERT_NE(Item("MODEL_CMDS", 2), nullptr);
  Item("MODEL_CMDS", 2)->trigger();
  Settle(100);
  ASSERT_TRUE(program->ormel.solution.ValidSolution);
  OnDialog("Outline Capture Zone", [](QDialog& dialog) {
    ASSERT_EQ(dialog.findChild<QListWidget*>("listWell")->count(), 1);
    Type(dialog, "tbTimes", "0.5 1");
    Enter(dialog);
  });
  const QImage before = Map().picture().copy();
  ASSERT_NE(Item("OUTLINECZ"), nullptr);
  Item("OUTLINECZ")->trigger();
  Settle(250);
  EXPECT_EQ(Number("select count(*) from Capzones"), 2);
  EXPECT_EQ(Number("select count(*) from Capzones where Label='North 0.5 years'"), 1);
  EXPECT_NE(Map().picture(), before) << "the outline is seen at once";
}

TEST_F(WhpaWindowTest, UniformFlowIsWarnedOfPlacedByAClickAndRemoved) {
  Start(town);
  const auto answer = AnswerBox;
  ASSERT_NE(Item("ELEM_CMDS", 3), nullptr);
  OnDialog("Warning - Uniform Flow", answer(QMessageBox::Yes));
  Item("ELEM_CMDS", 3)->trigger();
  EXPECT_EQ(program->ormel.feedback, "Place mouse at the point of known head and click the button");
  const QImage before = Map().picture().copy();
  OnDialog("Uniform Flow", [](QDialog& dialog) {
    Type(dialog, "tbdata(0)", "30");
    Type(dialog, "tbdata(1)", "0.001");
    Type(dialog, "tbdata(2)", "-45");
    Enter(dialog);
  });
  Click({300, 200});
  Settle(100);
  EXPECT_EQ(Number("select UNIFLOWCompute from Model"), 1);
  EXPECT_EQ(Number("select UNIFLOWOrientation from Model"), -45);
  EXPECT_NEAR(Number("select X from Vertices where PID=-10"), 300, 2);
  EXPECT_NE(Map().picture(), before) << "the arrow is drawn";

  OnDialog("Warning - Uniform Flow", answer(QMessageBox::No));
  OnDialog("Remove function", answer(QMessageBox::Yes));
  Item("ELEM_CMDS", 3)->trigger();
  Settle(100);
  EXPECT_EQ(Number("select UNIFLOWCompute from Model"), 0);
  EXPECT_EQ(Number("select count(*) from Vertices where PID=-10"), 0);
}

}  // namespace
}  // namespace ormel
