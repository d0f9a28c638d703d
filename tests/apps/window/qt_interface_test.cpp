// The wait box, boxes and viewers in front of a real event loop.
#include "ormel/qt_interface.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTimer>
#include <QWidget>

#include "ormel/file_filter.h"
#include "ormel/help_viewer.h"
#include "ormel/text_viewer.h"
#include "ormel/wait_box.h"
#include "support/fakes.h"
#include "support/temp_dir.h"
#include "window/every_kind_form.h"

namespace ormel {
namespace {

TEST(QtInterface, AnswersComeFromTheButtonsAndEscapeIsTheSafeOne) {
  struct Case {
    Buttons buttons;
    int key;
    Answer answer;
  };
  const Case cases[] = {{Buttons::kOk, Qt::Key_Return, Answer::kOk},
                        {Buttons::kOk, Qt::Key_Escape, Answer::kOk},
                        {Buttons::kOkCancel, Qt::Key_Escape, Answer::kCancel},
                        {Buttons::kYesNo, Qt::Key_Return, Answer::kYes},
                        {Buttons::kYesNo, Qt::Key_Escape, Answer::kNo},
                        {Buttons::kYesNoCancel, Qt::Key_Escape, Answer::kCancel}};
  for (const Case& c : cases) {
    QtInterface ui;
    QTimer::singleShot(0, [&] {
      QWidget* box = QApplication::activeModalWidget();
      ASSERT_NE(box, nullptr);
      EXPECT_EQ(static_cast<QMessageBox*>(box)->text(), "first\nsecond <b>");
      QTest::keyClick(box, static_cast<Qt::Key>(c.key));
    });
    EXPECT_EQ(ui.Ask(Box{"Title", "first\nsecond <b>", c.buttons, Icon::kQuestion}), c.answer);
  }
}

/// A window that counts what reaches it.
class Counter : public QWidget {
 public:
  int paints = 0, presses = 0;

 protected:
  void paintEvent(QPaintEvent*) override { ++paints; }
  void mousePressEvent(QMouseEvent*) override { ++presses; }
};

TEST(QtInterface, ALongCommandShowsItsProgressRepaintsAndHearsOnlyCancel) {
  Counter window;
  window.resize(200, 100);
  window.show();
  QtInterface ui;
  ui.SetWindow(&window);
  QApplication::processEvents();
  const int paints = window.paints;

  QTimer::singleShot(100, &window, [&] {
    QTest::mouseClick(&window, Qt::LeftButton);
    window.update();
  });
  QString bar_seen;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    auto* box = window.findChild<WaitBox*>();
    if (box == nullptr || !box->isVisible()) return;
    look.stop();
    bar_seen = QString::number(box->findChild<QProgressBar*>()->value());
    QTest::mouseClick(box->findChild<QPushButton*>(), Qt::LeftButton);
  });
  look.start(50);
  ui.PleaseWaitShow("Solving...");
  QElapsedTimer time;
  time.start();
  while (!ui.CancelRequested() && time.elapsed() < 20000) {
    ui.Progress(0.25, "Iteration 2");
    QTest::qSleep(5);
  }
  EXPECT_LT(time.elapsed(), 20000) << "Cancel was not heard";
  EXPECT_EQ(bar_seen, "250");
  EXPECT_GT(window.paints, paints);
  EXPECT_EQ(window.presses, 0) << "the map heard the mouse in the middle of a command";
  ui.PleaseWaitHide();
  EXPECT_EQ(window.findChild<WaitBox*>(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  ui.PleaseWaitShow("Again");
  EXPECT_FALSE(ui.CancelRequested()) << "an old Cancel ends no new command";
  ui.PleaseWaitHide();
}

TEST(WaitBox, TellsTheTimeLeftOnceSomeIsDone) {
  WaitBox box(nullptr);
  const auto tells = [&box](const char* words) {
    const QList<QLabel*> labels = box.findChildren<QLabel*>();
    return std::any_of(labels.begin(), labels.end(),
                       [words](const QLabel* label) { return label->text().contains(QLatin1String(words)); });
  };
  box.SetElapsed(60'000);
  EXPECT_TRUE(tells("Elapsed 1:00"));
  EXPECT_FALSE(tells("left"));
  box.SetProgress(0.25, "Capture zones of 6 wells");
  box.SetElapsed(61'000);
  EXPECT_TRUE(tells("Elapsed 1:01, about 3:03 left"));
}

TEST(QtInterface, AQuestionInTheMiddleOfAWaitCanBeAnswered) {
  QtInterface ui;
  ui.PleaseWaitShow("Solving...");
  QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return); });
  EXPECT_EQ(ui.Ask(Box{"Title", "Go on?", Buttons::kYesNo, Icon::kQuestion}), Answer::kYes);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  ui.PleaseWaitHide();
}

/// A form whose OK button works for a while.
class SlowForm : public test::EveryKind {
 public:
  SlowForm(Ormel& controller, QtInterface& ui) : EveryKind(controller), ui_(ui) {}
  bool cancelled = false;

 protected:
  void Pressed(std::string_view name) override {
    if (name == "OK") {
      ui_.PleaseWaitShow("Working...");
      QElapsedTimer time;
      time.start();
      while (!cancelled && time.elapsed() < 20000) cancelled = ui_.CancelRequested();
      ui_.PleaseWaitHide();
    }
    EveryKind::Pressed(name);
  }

 private:
  QtInterface& ui_;
};

TEST(QtInterface, ACommandThatADialogStartsCanBeCancelledToo) {
  test::TestController controller;
  QtInterface ui;
  SlowForm form(controller.ormel, ui);
  QTimer::singleShot(50, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return); });
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [] {
    for (QWidget* window : QApplication::topLevelWidgets())
      if (auto* box = qobject_cast<WaitBox*>(window)) QTest::keyClick(box, Qt::Key_Escape);
  });
  look.start(50);
  ui.ShowForm(form);
  EXPECT_TRUE(form.cancelled);
  EXPECT_EQ(form.Result, 1);
}

TEST(FileFilter, PairsBecomeTheToolkitsFilters) {
  EXPECT_EQ(NameFilters("Project Database Files (*.orm)|*.orm"),
            (QStringList{"Project Database Files (*.orm *.ORM)", "All Files (*)"}));
  EXPECT_EQ(NameFilters("Vadox Input Files|*.DAT|Lists|*.wl;*.tp").size(), 3);
  EXPECT_TRUE(NameFilters("").isEmpty());
}

TEST(TextViewer, ShowsAndSearchesAnyFile) {
  const test::TempDir folder;
  test::WriteAll(folder / "ERROR.LOG", "first line\r\nsecond \xe4 line\r\nthird");
  TextViewer viewer(QString::fromStdString(folder / "ERROR.LOG"), nullptr);
  viewer.setAttribute(Qt::WA_DeleteOnClose, false);
  EXPECT_EQ(viewer.text()->toPlainText(), QString::fromLatin1("first line\nsecond \xe4 line\nthird"));
  viewer.search()->setText("line");
  EXPECT_TRUE(viewer.FindNext());
  EXPECT_TRUE(viewer.FindNext());
  EXPECT_EQ(viewer.text()->textCursor().blockNumber(), 1);
  EXPECT_TRUE(viewer.FindNext()) << "goes round at the end";
  EXPECT_EQ(viewer.text()->textCursor().blockNumber(), 0);
  viewer.search()->setText("missing");
  EXPECT_FALSE(viewer.FindNext());

  TextViewer missing(QString::fromStdString(folder / "none.log"), nullptr);
  missing.setAttribute(Qt::WA_DeleteOnClose, false);
  EXPECT_TRUE(missing.text()->toPlainText().contains("cannot be read"));
}

TEST(HelpViewer, TopicsLeadToTheirPlaceInTheGuide) {
  HelpViewer viewer(QStringLiteral(ORMEL_SOURCE_DIR "/docs/guide"), nullptr);
  struct Case {
    const char* topic;
    const char* page;
    const char* heading;  ///< the cursor stands at it; empty for the top of the page
  };
  const Case cases[] = {{"", "index.md", ""},
                        {"tutorial", "tutorial.md", ""},
                        {"WellProperties", "drawing.md", "Wells"},
                        {"NoFlowString", "drawing.md", "Barriers"},
                        {"nothing of that name", "index.md", ""}};
  for (const Case& c : cases) {
    viewer.ShowTopic(c.topic);
    EXPECT_EQ(viewer.browser()->source().fileName(), c.page) << c.topic;
    if (*c.heading == 0) continue;
    EXPECT_EQ(viewer.browser()->textCursor().block().text(), c.heading) << c.topic;
  }
  HelpViewer lost(QString(), nullptr);
  lost.ShowTopic("tutorial");
  EXPECT_TRUE(lost.browser()->toPlainText().contains("was not found"));
}

}  // namespace
}  // namespace ormel
