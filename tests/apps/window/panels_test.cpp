// The panels beside the map: what a user does in them, and that window and panels agree.
#include <QComboBox>
#include <QDockWidget>
#include <QLineEdit>

#include "core/command.h"
#include "core/layers.h"
#include "model/selection.h"
#include "ormel/element_panel.h"
#include "ormel/layer_panel.h"
#include "ormel/panels.h"
#include "ormel/property_panel.h"
#include "ormel/results_panel.h"
#include "store/bulk.h"
#include "window/window_fixture.h"

namespace ormel {
namespace {

class PanelsTest : public test::WindowTest {
 protected:
  template <class P>
  P& Panel(PanelItem item) {
    return dynamic_cast<P&>(*program->window.beside().panel(item));
  }
  ElementPanel& Elements() { return Panel<ElementPanel>(kPanelElements); }
  void Open(PanelItem item) {
    QDockWidget* dock = program->window.beside().dock(item);
    dock->show();
    dock->raise();
    Settle(50);
  }
  std::vector<ElementId> Selected() { return SelectedElements(program->ormel); }
  ElementId Well(const char* label) {
    return {Element::kWell,
            program->ormel.db().Scalar("select VID from Wells where Label=?", {label}).AsLong()};
  }
};

TEST_F(PanelsTest, StandTabbedInAWideWindowAndMakeRoomInANarrowOne) {
  Start(town);
  Panels& panels = program->window.beside();
  EXPECT_FALSE(panels.dock(kPanelElements)->isHidden());
  EXPECT_TRUE(
      program->window.tabifiedDockWidgets(panels.dock(kPanelElements)).contains(panels.dock(kPanelLayers)));
  EXPECT_TRUE(panels.dock(kPanelResults)->isHidden());
  program->window.resize(700, 500);
  Settle(50);
  EXPECT_TRUE(panels.dock(kPanelElements)->isHidden());
  Item("PANEL", kPanelProperties)->trigger();
  EXPECT_FALSE(panels.dock(kPanelProperties)->isHidden()) << "asked for by the user";
  EXPECT_TRUE(Item("PANEL", kPanelProperties)->isChecked());
  program->window.resize(1000, 700);
  Settle(50);
  EXPECT_FALSE(panels.dock(kPanelElements)->isHidden());
  Item("PANEL", kPanelElements)->trigger();
  EXPECT_FALSE(Item("PANEL", kPanelElements)->isChecked());
  // The next start finds them so.
  program->window.close();
  program = std::make_unique<Program>(Surroundings{settings, processes, clock});
  program->ui.SetSplashTime(0);
  Start(town);
  EXPECT_TRUE(program->window.beside().dock(kPanelElements)->isHidden());
  EXPECT_FALSE(program->window.beside().dock(kPanelProperties)->isHidden());
}

TEST_F(PanelsTest, TheListSelectsShowsAndEdits) {
  Start(town);
  Open(kPanelElements);
  ElementModel& model = Elements().model();
  ASSERT_EQ(model.rowCount(), 2);  // wells and the zone of gravel
  const ElementId north = Well("North"), south = Well("South");
  const QModelIndex at = model.IndexOf(north);
  ASSERT_TRUE(at.isValid());
  const QRect cell = Elements().tree().visualRect(at);
  QTest::mouseClick(Elements().tree().viewport(), Qt::LeftButton, {}, cell.center());
  EXPECT_EQ(Selected(), std::vector{north});
  EXPECT_TRUE(program->window.toolbar().Find("EDITPROPERTIES")->isEnabled());
  QTest::mouseClick(Elements().tree().viewport(), Qt::LeftButton, Qt::ControlModifier,
                    Elements().tree().visualRect(model.IndexOf(south)).center());
  EXPECT_EQ(Selected(), (std::vector{north, south}));
  // The map selects, and the list shows it.
  QTest::mouseClick(&Map(), Qt::LeftButton, {}, PixelOf({500, 300}));
  EXPECT_EQ(Elements().tree().selectionModel()->selectedRows().size(), 1);
  EXPECT_TRUE(Elements().tree().selectionModel()->isSelected(model.IndexOf(south)));
  bool asked = false;
  WithNextDialog([&](QDialog& dialog) {
    asked = dialog.windowTitle().contains("Well Properties");
    dialog.reject();
  });
  QTest::mouseDClick(Elements().tree().viewport(), Qt::LeftButton, {},
                     Elements().tree().visualRect(model.IndexOf(south)).center());
  EXPECT_TRUE(asked);
  // While something is being placed the list changes nothing.
  Item("ELEM_NEW", 1)->trigger();
  QTest::mouseClick(Elements().tree().viewport(), Qt::LeftButton, {},
                    Elements().tree().visualRect(model.IndexOf(north)).center());
  EXPECT_TRUE(Selected().empty());
  QTest::keyClick(&Map(), Qt::Key_Escape);
  QTest::keyClicks(&Elements().search(), "gravel");
  EXPECT_EQ(model.rowCount(), 1);
}

TEST_F(PanelsTest, PropertiesAreChangedInPlaceAndCanBeUndone) {
  Start(town);
  Open(kPanelProperties);
  auto& panel = Panel<PropertyPanel>(kPanelProperties);
  QTest::mouseClick(&Map(), Qt::LeftButton, {}, PixelOf({400, 600}));
  auto* head = qobject_cast<QLineEdit*>(panel.Editor("Head"));
  ASSERT_NE(head, nullptr);
  EXPECT_EQ(head->text(), "1200");
  head->selectAll();
  QTest::keyClicks(head, "900");
  QTest::keyClick(head, Qt::Key_Return);
  const auto stored = [&] {
    return program->ormel.db().Scalar("select Head from Wells where Label='North'").AsDouble();
  };
  EXPECT_EQ(stored(), 900.0);
  EXPECT_EQ(Selected(), std::vector{Well("North")});
  Item("UNDO")->trigger();
  EXPECT_EQ(stored(), 1200.0);
  QTest::mouseClick(&Map(), Qt::LeftButton, {}, PixelOf({400, 600}));
  auto* type = qobject_cast<QComboBox*>(panel.Editor("HeadSpecified"));
  ASSERT_NE(type, nullptr);
  EXPECT_EQ(type->currentText(), "Discharge-Specified");
  // A refusal leaves the stored value in the field.
  auto* radius = qobject_cast<QLineEdit*>(panel.Editor("Radius"));
  radius->selectAll();
  QTest::keyClicks(radius, "0");
  bool told = false;
  WithNextDialog([&](QDialog& box) {
    told = true;
    box.reject();
  });
  QTest::keyClick(radius, Qt::Key_Return);
  EXPECT_TRUE(told);
  EXPECT_EQ(qobject_cast<QLineEdit*>(panel.Editor("Radius"))->text(), "0.3");
}

TEST_F(PanelsTest, LayersFollowTheMenuAndTheMenuThem) {
  Start(town);
  Open(kPanelLayers);
  auto& tree = Panel<LayerPanel>(kPanelLayers).tree();
  QTreeWidgetItem* labels = nullptr;
  for (QTreeWidgetItemIterator it(&tree); *it != nullptr; ++it)
    if ((*it)->text(0) == "Well Labels") labels = *it;
  ASSERT_NE(labels, nullptr);
  const bool before = program->ormel.layers.On(Layer::kWellLabels);
  labels->setCheckState(0, before ? Qt::Unchecked : Qt::Checked);
  EXPECT_NE(program->ormel.layers.On(Layer::kWellLabels), before);
  EXPECT_NE(Item("ShowWellLabels")->isChecked(), before);
  Item("ShowWellLabels")->trigger();
  EXPECT_EQ(labels->checkState(0) == Qt::Checked, before);
}

TEST_F(PanelsTest, ThousandsOfElementsDoNotStopTheHand) {
  Start(town);
  Open(kPanelElements);
  RunCommand(program->ormel, "test", [&] {
    BulkInsert wells(program->ormel.db(), "Wells", {"VID", "Label", "Head", "Radius"});
    for (int i = 0; i < 2000; ++i) wells.Row(100000 + i, "W " + std::to_string(i), 1.0 * i, 0.3);
    BulkInsert strings(program->ormel.db(), "LinesinkStrings",
                       {"PID", "Label", "StartingHead", "EndingHead"});
    for (int i = 0; i < 5000; ++i) strings.Row(100000 + i, "S " + std::to_string(i), 1.0 * i, 1.0);
  });
  QElapsedTimer time;
  time.start();
  program->window.Refresh();
  Settle(1);
  std::printf("7,000 elements listed in %lld ms\n", static_cast<long long>(time.restart()));
  EXPECT_EQ(Elements().model().rowCount(Elements().model().index(1, 0)), 5000);
  RunCommand(program->ormel, "test",
             [&] { program->ormel.db().Execute("update Wells set Head=5 where VID=100007"); });
  program->window.Refresh();
  Settle(1);
  std::printf("one of them changed in %lld ms\n", static_cast<long long>(time.elapsed()));
  const QModelIndex changed = Elements().model().IndexOf({Element::kWell, 100007});
  EXPECT_EQ(changed.siblingAtColumn(1).data().toString(), "5 m^3/day");
}

}  // namespace
}  // namespace ormel
