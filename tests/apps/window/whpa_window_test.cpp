// Simple protection areas from the menu to the map.
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

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

}  // namespace
}  // namespace ormel
