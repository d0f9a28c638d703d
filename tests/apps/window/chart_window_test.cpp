// The chart control in a real dialog: where it draws a point is where the pointer finds it.
#include <QChart>
#include <QClipboard>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QImage>
#include <QLabel>
#include <QMouseEvent>
#include <QTabWidget>
#include <set>

#include "analysis/calibration_form.h"
#include "analysis/report_form.h"
#include "model/observations.h"
#include "ormel/chart_view.h"
#include "ormel/form_dialog.h"
#include "window/window_fixture.h"

namespace ormel {
namespace {

class ChartWindowTest : public test::WindowTest {
 protected:
  /// A lattice of test points in their heads, so that no two stand on one pixel.
  void AddPoints(int count) {
    Ormel& ormel = program->ormel;
    for (int i = 0; i < count; ++i) {
      const double observed = 20.0 + i % 25 + 0.01 * (i / 25), modelled = 20.0 + 1.2 * (i / 25);
      const std::string label = "MW-" + std::to_string(i);
      const MapPoint at{10.0 + i, 400.0};
      const Vid vid = StoreTestPoint(ormel, {label, observed}, at);
      ormel.db().Execute(
          "insert into TPResults(Label,VID,ObsHead,ModelHead,Difference,X,Y) values(?,?,?,?,?,?,?)",
          {label, vid, observed, modelled, observed - modelled, at.x, at.y});
    }
    ormel.solution.ValidSolution = true;
  }
  static void MoveTo(ChartControl& chart, QPointF at) {
    QMouseEvent move(QEvent::MouseMove, at, chart.viewport()->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(chart.viewport(), &move);
  }
  static void ClickAt(ChartControl& chart, QPointF at) {
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      QMouseEvent event(type, at, chart.viewport()->mapToGlobal(at), Qt::LeftButton,
                        type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
      QApplication::sendEvent(chart.viewport(), &event);
    }
  }
};

TEST_F(ChartWindowTest, PointingAtEachOfManyPointsNamesIt) {
  Start(town);
  AddPoints(500);
  CalibrationStats form(program->ormel, ReadCalibration(program->ormel));
  FormDialog dialog(form, &program->window);
  form.MarkShown();
  dialog.show();
  Settle(200);
  auto* control = dialog.findChild<ChartControl*>();
  ASSERT_NE(control, nullptr);
  auto* box = control->findChild<QLabel*>("pointBox");
  std::set<std::string> named;
  const auto& points = form.State("chart").chart->series.back().points;
  ASSERT_EQ(points.size(), 500U);
  for (const ChartPoint& point : points) {
    // Where the toolkit itself has put it.
    const QPointF at = control->chart()->mapToScene(control->chart()->mapToPosition({point.x, point.y})) -
                       control->sceneRect().topLeft();
    MoveTo(*control, at + QPointF(1.5, -1.5));
    const std::string text = form.Text("chart");
    EXPECT_NE((text + "\n").find("Selected test point: " + point.label + "\n"), std::string::npos)
        << point.label << " at " << at.x() << ',' << at.y() << ": " << text;
    named.insert(text);
  }
  EXPECT_EQ(named.size(), 500U);
  EXPECT_TRUE(box->isVisible());
  EXPECT_NE(box->text().toStdString().find("Observed head: "), std::string::npos)
      << box->text().toStdString();
  EXPECT_GE(box->x(), 0);
  EXPECT_LE(box->x() + box->width(), control->width());
  MoveTo(*control, {2, 2});
  EXPECT_EQ(form.Text("chart"), "");
  EXPECT_FALSE(box->isVisible());
}

TEST_F(ChartWindowTest, AnotherSizeOrChartLeavesNothingOfTheOneBefore) {
  Start(town);
  AddPoints(60);
  CalibrationStats form(program->ormel, ReadCalibration(program->ormel));
  FormDialog dialog(form, &program->window);
  form.MarkShown();
  dialog.show();
  auto* control = dialog.findChild<ChartControl*>();
  const auto shown = [control](const QString& title) {
    int count = 0;
    for (QGraphicsItem* item : control->scene()->items())
      if (auto* text = qgraphicsitem_cast<QGraphicsTextItem*>(item))
        count += text->isVisible() && text->toPlainText() == title ? 1 : 0;
    return count;
  };
  for (const int width : {900, 1100, 950}) {
    dialog.resize(width, 700);
    Settle(100);
    EXPECT_EQ(shown("Observed head [m]"), 1) << width;
    EXPECT_EQ(shown("Modeled head [m]"), 1) << width;
  }
  dialog.Do([](Form& of) { of.SetChecked("optGraph(2)", true); });
  Settle(100);
  EXPECT_EQ(shown("Observed head [m]"), 1);
  EXPECT_EQ(shown("Modeled head [m]"), 0);
}

TEST_F(ChartWindowTest, AClickShowsTheTestPointOnTheMapAndTheCopyIsAPicture) {
  Start(town);
  AddPoints(60);
  CalibrationStats form(program->ormel, ReadCalibration(program->ormel));
  FormDialog dialog(form, &program->window);
  form.MarkShown();
  dialog.show();
  Settle(200);
  auto* control = dialog.findChild<ChartControl*>();
  const ChartPoint point = form.State("chart").chart->series.back().points.at(31);
  ClickAt(*control, control->chart()->mapToScene(control->chart()->mapToPosition({point.x, point.y})) -
                        control->sceneRect().topLeft());
  EXPECT_EQ(program->ormel.selection.SelectedType, Element::kTestPoint);
  EXPECT_EQ(program->ormel.db()
                .Scalar("select Label from TestPoints where VID=?", {program->ormel.selection.vid})
                .AsText(),
            point.label);
  form.Click("EDIT_COPYCHART");
  const QImage copied = QApplication::clipboard()->image();
  EXPECT_GT(copied.width(), 800);
  // Something is drawn on it: the line of perfect fit and the points have colours.
  int coloured = 0;
  for (int y = 0; y < copied.height(); y += 2)
    for (int x = 0; x < copied.width(); x += 2)
      coloured += copied.pixelColor(x, y).saturation() > 120 ? 1 : 0;
  EXPECT_GT(coloured, 200);
}

}  // namespace
}  // namespace ormel
