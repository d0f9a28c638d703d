// The main window: project in and out, menus, zoom, mouse, a run and its end.
#include <QClipboard>
#include <QCommandLinkButton>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QUrl>
#include <QWheelEvent>
#include <filesystem>
#include <map>

#include "core/command.h"
#include "ormel/map_export.h"
#include "ormel/wait_box.h"
#include "shell/lifecycle.h"
#include "shell/menus.h"
#include "window/window_fixture.h"

namespace ormel {
namespace {

using test::WindowTest;

/// True when the picture shows anything but paper.
bool HasInk(const QImage& image) {
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixel(x, y) != qRgb(255, 255, 255)) return true;
  return false;
}

TEST_F(WindowTest, MenusAndMapComeAndGoWithTheProject) {
  Start("");
  EXPECT_TRUE(Item("FILE_CMDS", 1)->isEnabled());
  const auto expect_project_items = [&](bool open) {
    for (const MenuItem& item : MenuItems()) {
      const bool depends = (item.flags & kNeedsProject) != 0 && !HasSubmenu(item);
      if (!depends || open) continue;
      EXPECT_FALSE(program->window.menus().Find(item.control, item.index)->isEnabled()) << item.caption;
    }
    for (const auto& [control, index] : {std::pair{"FILE_CMDS", 3}, {"ZOOM_CMDS", 1}, {"ELEM_NEW", 1}})
      EXPECT_EQ(Item(control, index)->isEnabled(), open) << control;
    EXPECT_EQ(program->window.toolbar().Find("WINDOWZOOMIN")->isEnabled(), open);
  };
  expect_project_items(false);
  EXPECT_FALSE(HasInk(Map().picture()));

  RunCommand(program->ormel, "test", [&] { FileOpenProject(program->ormel, town); });
  program->window.Refresh();
  expect_project_items(true);
  EXPECT_TRUE(HasInk(Map().picture()));
  EXPECT_TRUE(program->window.windowTitle().contains("town"));

  Item("FILE_CMDS", 3)->trigger();
  expect_project_items(false);
  EXPECT_FALSE(HasInk(Map().picture()));
  EXPECT_FALSE(program->window.windowTitle().contains("town"));
}

/// A menu in which two items answer to one letter needs a second key stroke to tell them apart.  These are
/// meant to be so.
const std::map<QString, int> kSharedLetters = {
    {"Project:P", 2}, {"Edit:P", 2}, {"Model:S", 2}, {"Help:O", 2}, {":H", 2}};

void CheckLetters(const QString& menu, const QList<QAction*>& actions) {
  std::map<QString, int> letters;
  for (const QAction* action : actions) {
    const QString text = QString(action->text()).replace("&&", "");
    const qsizetype at = text.indexOf('&');
    if (at >= 0 && at + 1 < text.size()) ++letters[menu + ':' + text[at + 1].toUpper()];
    if (action->menu() != nullptr)
      CheckLetters(QString(action->text()).remove('&'), action->menu()->actions());
  }
  for (const auto& [letter, count] : letters) {
    const auto meant = kSharedLetters.find(letter);
    EXPECT_LE(count, meant != kSharedLetters.end() ? meant->second : 1) << letter.toStdString();
  }
}

TEST_F(WindowTest, TheKeyboardReachesEveryMenuByItsLetter) {
  Start(town);
  CheckLetters("", program->window.menuBar()->actions());
  std::map<QString, QString> shortcuts;
  for (const MenuItem& item : MenuItems()) {
    const QAction* action = Item(item.control.data(), item.index);
    const QString key = action->shortcut().toString();
    if (key.isEmpty()) continue;
    EXPECT_TRUE(shortcuts.emplace(key, action->text()).second)
        << key.toStdString() << ": " << action->text().toStdString() << " and "
        << shortcuts[key].toStdString();
  }
  // Nothing that rests does so without saying why.
  for (const MenuItem& item : MenuItems()) {
    const QAction* action = Item(item.control.data(), item.index);
    if (action->isEnabled() || action->text().isEmpty() || action->menu() != nullptr) continue;
    EXPECT_NE(action->toolTip(), QString(action->text()).remove('&').remove("..."))
        << action->text().toStdString();
    EXPECT_NE(ItemTip(program->ormel, item), "not at present") << action->text().toStdString();
  }
  EXPECT_EQ(Item("EDIT_CMDS", 3)->toolTip(), "select an element on the map first");
  EXPECT_EQ(Item("MODEL_CMDS", 3)->toolTip(), "solve the model first");
  Item("ELEM_NEW", 1)->trigger();
  EXPECT_TRUE(program->window.toolbar().Find("ELEMLINESINK")->toolTip().contains("Escape"));
  QTest::keyClick(&Map(), Qt::Key_Escape);
  EXPECT_FALSE(program->window.toolbar().Find("ELEMLINESINK")->toolTip().contains("Escape"));
  Item("FILE_CMDS", 3)->trigger();
  EXPECT_EQ(Item("ZOOM_CMDS", 1)->toolTip(), "open a project first");
}

TEST_F(WindowTest, EveryButtonHasItsDrawingAndSaysWhatItDoes) {
  Start("");
  for (const ToolbarButton& button : ToolbarButtons()) {
    const QAction* action = program->window.toolbar().Find(button.key);
    EXPECT_FALSE(action->icon().isNull()) << button.key;
    EXPECT_FALSE(action->toolTip().isEmpty()) << button.key;
  }
  for (const MenuItem& item : MenuItems()) {
    const QAction* action = program->window.menus().Find(item.control, item.index);
    EXPECT_EQ(action->shortcut().isEmpty(), item.shortcut.empty())
        << item.caption << ": a shortcut that is none";
  }
}

TEST_F(WindowTest, TheWheelZoomsAboutThePointerAndTheMiddleButtonDrags) {
  Start(town);
  const QPoint at(200, 150);
  const MapPoint before = WorldAt(at);
  const double width = program->ormel.window.SolveWindow.Width();
  QWheelEvent wheel(at, Map().mapToGlobal(at), {}, {0, 240}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(&Map(), &wheel);
  Settle(250);
  EXPECT_NEAR(program->ormel.window.SolveWindow.Width(), width / (1.25 * 1.25), width * 1e-3);
  EXPECT_NEAR(WorldAt(at).x, before.x, 2.0);
  EXPECT_NEAR(WorldAt(at).y, before.y, 2.0);

  const MapPoint held = WorldAt(at);
  const QPoint to(260, 110);
  QTest::mousePress(&Map(), Qt::MiddleButton, {}, at);
  QTest::mouseMove(&Map(), to);
  QTest::mouseRelease(&Map(), Qt::MiddleButton, {}, to);
  Settle(50);
  EXPECT_NEAR(WorldAt(to).x, held.x, 2.0);
  EXPECT_NEAR(WorldAt(to).y, held.y, 2.0);
}

TEST_F(WindowTest, MenuKeysAndResizeMoveTheWindowOnTheMap) {
  Start(town);
  const MapRect before = program->ormel.window.SolveWindow;
  Item("ZOOM_CMDS", 1)->trigger();
  EXPECT_NEAR(program->ormel.window.SolveWindow.Width(), before.Width() / 2, 1.0);
  Map().setFocus();
  QTest::keyClick(&Map(), Qt::Key_Right);
  EXPECT_GT(program->ormel.window.SolveWindow.x1, before.x1);
  const QSize size = Map().picture().size();
  program->window.resize(1000, 760);
  Settle(400);
  EXPECT_NE(Map().picture().size(), size);
  EXPECT_EQ(Map().picture().size(), Map().size() * Map().devicePixelRatioF());
}

TEST_F(WindowTest, AWellIsPlacedByAClickAndItsDialog) {
  Start(town);
  Item("ELEM_NEW", 1)->trigger();
  EXPECT_FALSE(Item("FILE_CMDS", 3)->isEnabled()) << "the menus rest while the mouse is in a mode";
  WithNextDialog([](QDialog& dialog) {
    dialog.findChild<QLineEdit*>("tbLabel")->clear();
    QTest::keyClicks(dialog.findChild<QLineEdit*>("tbLabel"), "East");
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  const QPoint at = PixelOf({700.0, 200.0});
  QTest::mouseClick(&Map(), Qt::LeftButton, {}, at);
  Settle(100);
  EXPECT_EQ(program->ormel.db().Scalar("select count(*) from Wells").AsLong(), 3);
  EXPECT_NEAR(program->ormel.db()
                  .Scalar("select X from Vertices where VID in (select VID from Wells where Label='East')")
                  .AsDouble(),
              700.0, 3.0);
  EXPECT_TRUE(Item("FILE_CMDS", 3)->isEnabled());
}

constexpr qint64 kSolverTime = 20000;  ///< milliseconds

/// A solver that does not end by itself before a user has lost patience.
void BeSlow(test::FakeProcesses& processes) {
  processes.on_run = [](const ProcessRequest&, const auto&, const auto& cancelled) {
    ProcessResult result;
    result.started = true;
    QElapsedTimer time;
    time.start();
    while (!result.cancelled && time.elapsed() < kSolverTime) {
      result.cancelled = cancelled();
      QTest::qSleep(10);
    }
    return result;
  };
}

class SolveTest : public WindowTest {
 protected:
  SolveTest() {
    for (const char* name : {"VADOX1.EXE", "CONTOUR.EXE"}) test::WriteAll(dir / name, "");
    BeSlow(processes);
  }
  /// Tries again until the act has been done.
  void Once(std::function<bool()> act) {
    auto* timer = new QTimer(&program->window);
    QObject::connect(timer, &QTimer::timeout, [timer, act] {
      timer->stop();
      if (!act()) timer->start(50);
    });
    timer->start(50);
  }
  /// Answers questions by Enter, until the solver runs.
  void AcceptQuestions() {
    auto* timer = new QTimer(&program->window);
    QObject::connect(timer, &QTimer::timeout, [] {
      if (QWidget* dialog = QApplication::activeModalWidget()) QTest::keyClick(dialog, Qt::Key_Return);
    });
    timer->start(30);
  }
};

TEST_F(SolveTest, CancelEndsTheRunAndLeavesTheProjectAsItWas) {
  Start(town);
  AcceptQuestions();
  bool seen = false;
  Once([&] {
    auto* box = program->window.findChild<WaitBox*>();
    seen = box != nullptr && box->isVisible();
    if (seen) QTest::mouseClick(box->findChild<QPushButton*>(), Qt::LeftButton);
    return seen;
  });
  QElapsedTimer time;
  time.start();
  Item("MODEL_CMDS", 2)->trigger();
  EXPECT_TRUE(seen);
  EXPECT_FALSE(processes.requests.empty());
  EXPECT_LT(time.elapsed(), kSolverTime);
  EXPECT_FALSE(program->ui.Waiting());
  EXPECT_FALSE(program->ormel.solution.ValidSolution);
  EXPECT_TRUE(program->ormel.project.ProjectOpen);
  EXPECT_EQ(program->ormel.db().Scalar("select count(*) from Wells").AsLong(), 2);
  EXPECT_TRUE(Item("MODEL_CMDS", 2)->isEnabled());
}

TEST_F(SolveTest, ClosingDuringARunAsksStopsTheRunAndThenCloses) {
  Start(town);
  AcceptQuestions();
  Once([&] {
    if (!program->ui.Waiting() || processes.requests.empty()) return false;
    program->window.close();
    return true;
  });
  Item("MODEL_CMDS", 2)->trigger();
  for (int i = 0; i < 50 && program->window.isVisible(); ++i) Settle(50);
  EXPECT_FALSE(program->window.isVisible());
  EXPECT_FALSE(program->ormel.project.ProjectOpen);
}

TEST_F(WindowTest, APlacementIsKeptForTheNextRun) {
  Start(town);
  program->window.move(120, 60);
  program->window.resize(850, 640);
  Settle(50);
  program->window.close();
  program = std::make_unique<Program>(Surroundings{settings, processes, clock});
  program->ui.SetSplashTime(0);
  program->Start("");
  EXPECT_EQ(program->window.pos(), QPoint(120, 60));
  EXPECT_EQ(program->window.size(), QSize(850, 640));
  EXPECT_TRUE(Item("RECENT", 0)->isVisible());
  EXPECT_TRUE(Item("RECENT", 0)->text().contains("town.orm"));
}

TEST_F(WindowTest, AWindowOfALostScreenComesBackWithinReach) {
  settings.values["Left"] = "900000";  // twips
  settings.values["Top"] = "-300000";
  settings.values["Maximized"] = "1";
  Start("");
  const QRect screen = program->window.screen()->availableGeometry();
  EXPECT_TRUE(screen.contains(program->window.pos()));
  EXPECT_TRUE(program->window.isMaximized());
  program->window.close();
  EXPECT_EQ(settings.values["Maximized"], "1");
}

TEST_F(WindowTest, ALogoutClosesWhatIsOpenAndLosesNothing) {
  Start(town);
  WithNextDialog([this](QDialog& settings_dialog) {
    program->window.EndByRequest();
    EXPECT_FALSE(settings_dialog.isVisible()) << "closed as by Escape";
    EXPECT_TRUE(program->window.isVisible()) << "the command is still on its way";
  });
  Item("MODEL_CMDS", 1)->trigger();
  EXPECT_TRUE(program->ormel.project.ProjectOpen);
  program->window.EndByRequest();
  EXPECT_FALSE(program->window.isVisible());
  EXPECT_FALSE(program->ormel.project.ProjectOpen);
}

TEST_F(WindowTest, TheWelcomeBoxOpensAnExample) {
  const std::string example = "basin and range.orm";
  std::filesystem::copy_file(std::string(ORMEL_SOURCE_DIR) + "/examples/" + example, dir / example);
  settings.values["WelcomeBox"] = "0";
  setenv("HOME", dir.path().c_str(), 1);  // takes the copy that is opened
  WithNextDialog([this](QDialog& welcome) {
    WithNextDialog([](QDialog& question) {
      auto* box = qobject_cast<QMessageBox*>(&question);
      ASSERT_NE(box, nullptr);
      EXPECT_TRUE(box->text().contains("Load the example file?")) << box->text().toStdString();
      box->button(QMessageBox::Yes)->click();
    });
    for (auto* button : welcome.findChildren<QCommandLinkButton*>())
      if (button->text().contains("Basin")) return button->click();
    FAIL() << "no button for the example";
  });
  processes.environment["HOME"] = dir.path().string();
  Start("");
  EXPECT_TRUE(program->window.windowTitle().contains("basin and range"));
  EXPECT_TRUE(QString::fromStdString(program->ormel.project.folder).contains("Ormel Examples"))
      << "a copy: " << program->ormel.project.folder;
  EXPECT_EQ(program->ormel.project.unit_suffix, " ft");
  EXPECT_TRUE(HasInk(Map().picture()));
}

TEST_F(WindowTest, AProjectIsOpenedByADrop) {
  Start("");
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QString::fromStdString(town))});
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&program->window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&program->window, &drop);
  Settle(100);
  EXPECT_TRUE(program->ormel.project.ProjectOpen);
  EXPECT_EQ(program->ormel.project.DBName, town);
}

TEST_F(WindowTest, TheMapGoesToPaperAndToTheClipboard) {
  Start(town);
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(QString::fromStdString(dir / "map.pdf"));
  MapExport output(program->ormel, program->window);
  EXPECT_TRUE(output.PrintOn(printer));
  EXPECT_TRUE(test::ReadAll(dir / "map.pdf").starts_with("%PDF"));
  // By the menu, through the print dialog, into a file.
  WithNextDialog([this](QDialog& dialog) {
    auto* print = qobject_cast<QPrintDialog*>(&dialog);
    ASSERT_NE(print, nullptr);
    print->printer()->setOutputFormat(QPrinter::PdfFormat);
    print->printer()->setOutputFileName(QString::fromStdString(dir / "menu.pdf"));
    print->done(QDialog::Accepted);
  });
  Item("FILE_CMDS", 6)->trigger();
  EXPECT_TRUE(test::ReadAll(dir / "menu.pdf").starts_with("%PDF"));
  Item("COPYIMAGE")->trigger();
  EXPECT_EQ(QApplication::clipboard()->pixmap().size(), Map().size() * Map().devicePixelRatioF());
}

}  // namespace
}  // namespace ormel
