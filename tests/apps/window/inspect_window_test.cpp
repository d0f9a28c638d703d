// The inspector, the information panels and the results table through the window.
#include <QElapsedTimer>
#include <QHeaderView>
#include <QPushButton>

#include "ormel/form_dialog.h"
#include "ormel/table_view.h"
#include "solver/result_rows.h"
#include "window/window_fixture.h"

namespace ormel::test {
namespace {

class InspectWindowTest : public WindowTest {
 protected:
  void StartSolved() {
    Start(town);
    Ormel& ormel = program->ormel;
    ormel.solution.ValidSolution = true;
    ormel.window.solved = {0, 1000, 0, 800};
    ormel.db().Execute("update Model set SOLVERX0=0, SOLVERY0=0");
    WriteAll(dir / "VADOX1.EXE", "");
    processes.on_run = [this](const ProcessRequest&, const auto&, const auto&) {
      WriteAll(dir / "_INSPECT.XTR", "@ 200, 100, 3, .2, 12, 0, 0, 90, 9.25, 1, 2, .1, .2, 0, \r\n");
      ProcessResult ended;
      ended.started = true;
      return ended;
    };
  }
};

TEST_F(InspectWindowTest, ShiftAndAClickShowTheResultsThere) {
  StartSolved();
  std::string text;
  WithNextDialog([&](QDialog& dialog) {
    auto* box = qobject_cast<QMessageBox*>(&dialog);
    if (box != nullptr) text = box->text().toStdString();
    dialog.accept();
  });
  QTest::mouseClick(&Map(), Qt::LeftButton, Qt::ShiftModifier, PixelOf({200, 100}));
  EXPECT_NE(text.find("Head 9.2500E+00"), std::string::npos) << text;
  EXPECT_NE(text.find("X        2.0000E+02"), std::string::npos) << text;
  ASSERT_EQ(processes.requests.size(), 1U);
  EXPECT_FALSE(program->ormel.mouse.ButtonDown);
}

TEST_F(InspectWindowTest, ARightClickOnACornerOpensItsPanel) {
  Start(town);
  std::string title, label;
  bool results = true;
  WithNextDialog([&](QDialog& dialog) {
    title = dialog.windowTitle().toStdString();
    label = dialog.findChild<QLabel*>("txLabel")->text().toStdString();
    results = dialog.findChild<TableControl*>()->isVisible();
    dialog.reject();
  });
  QTest::mouseClick(&Map(), Qt::RightButton, {}, PixelOf({800, 330}));
  EXPECT_EQ(title, "Inhomogeneity Information");
  EXPECT_EQ(label, "Gravel");
  EXPECT_FALSE(results) << "without a solution";
}

TEST_F(InspectWindowTest, AnswersAtOnceWithManyRows) {
  StartSolved();
  constexpr int kRows = 50'000;
  {
    Transaction all(program->ormel.db());
    ResultRows rows(program->ormel.db());
    for (int i = 0; i < kRows; ++i)
      rows.Linesink("River " + std::to_string(i), "LS_" + std::to_string(i), {i * 0.5, 0}, {0, 0}, i % 977);
  }
  program->ormel.menus.Enable("RESULTS_TABLE", true);
  program->window.Refresh();
  qint64 open = 0, sorted = 0;
  int shown = 0;
  std::string first;
  QElapsedTimer time;
  time.start();
  WithNextDialog([&](QDialog& dialog) {
    auto* view = dialog.findChild<TableControl*>();
    open = time.restart();
    shown = view->model()->rowCount();
    QHeaderView& header = *view->horizontalHeader();
    for (int press = 0; press < 2; ++press)
      QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                        QPoint(header.sectionViewportPosition(5) + 5, header.height() / 2));
    view->scrollToBottom();
    QApplication::processEvents();
    sorted = time.elapsed();
    first = view->model()->index(0, 5).data().toString().toStdString();
    dialog.reject();
  });
  Item("RESULTS_TABLE")->trigger();
  EXPECT_EQ(shown, kRows);
  EXPECT_EQ(first, "976.000");
  RecordProperty("open_ms", static_cast<int>(open));
  std::printf("50,000 rows: open %lld ms, sorted twice and scrolled %lld ms\n", static_cast<long long>(open),
              static_cast<long long>(sorted));
}

}  // namespace
}  // namespace ormel::test
