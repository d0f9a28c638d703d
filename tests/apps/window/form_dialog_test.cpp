// The renderer of forms: what the user does reaches the model, and what the model says is seen.
#include "ormel/form_dialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include "ormel/table_view.h"
#include "support/fakes.h"
#include "window/every_kind_form.h"

namespace ormel {
namespace {

/// The dialog shown without its modal loop.
class FormDialogTest : public testing::Test {
 protected:
  FormDialogTest() : form(controller.ormel), dialog(form, nullptr) {
    form.MarkShown();
    dialog.show();
    dialog.activateWindow();
    QApplication::processEvents();
  }
  template <class Widget>
  Widget* Find(const char* name) {
    auto* widget = dialog.findChild<Widget*>(QString::fromUtf8(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
  }
  QTabWidget* Tabs() { return dialog.findChild<QTabWidget*>(); }

  test::TestController controller;
  test::EveryKind form;
  FormDialog dialog;
};

TEST_F(FormDialogTest, ShowsWhatTheFormHolds) {
  EXPECT_EQ(dialog.windowTitle(), "Every Kind");
  EXPECT_EQ(Find<QLineEdit>("text")->text(), "Well 7");
  EXPECT_EQ(Find<QLineEdit>("number")->text(), "12.5");
  EXPECT_TRUE(Find<QRadioButton>("option(0)")->isChecked());
  EXPECT_FALSE(Find<QLineEdit>("number")->isEnabled());
  EXPECT_EQ(Find<QComboBox>("combo")->count(), 2);
  EXPECT_EQ(Find<QListWidget>("list")->count(), 3);
  EXPECT_EQ(Find<QLabel>("label")->text(), "DRY");
  EXPECT_TRUE(Find<QPushButton>("OK")->isDefault());
}

TEST_F(FormDialogTest, WhatTheUserDoesReachesTheForm) {
  QTest::keyClicks(Find<QLineEdit>("text"), "x");
  Find<QRadioButton>("option(1)")->click();
  Find<QComboBox>("combo")->setCurrentIndex(1);
  emit Find<QComboBox>("combo")->activated(1);
  Find<QListWidget>("list")->setCurrentRow(2);
  Find<QListWidget>("many")->item(0)->setSelected(true);
  Find<QListWidget>("many")->item(2)->setSelected(true);
  EXPECT_TRUE(form.Checked("option(1)"));
  EXPECT_FALSE(form.Checked("option(0)"));
  EXPECT_EQ(form.Text("combo"), "Fine");
  EXPECT_EQ(form.Text("list"), "East");
  EXPECT_EQ(form.State("many").selected, (std::vector<int>{0, 2}));
}

TEST_F(FormDialogTest, ReactionsAreSeenAtOnce) {
  Tabs()->setCurrentIndex(1);
  EXPECT_FALSE(Tabs()->isTabVisible(2)) << "a page with nothing to see";
  Find<QCheckBox>("check")->click();
  EXPECT_TRUE(Find<QLineEdit>("number")->isEnabled());
  EXPECT_TRUE(Tabs()->isTabVisible(2));
  bool unit_shown = false;
  for (const QLabel* label : dialog.findChildren<QLabel*>()) unit_shown |= label->text() == "m/day";
  EXPECT_TRUE(unit_shown);
}

TEST_F(FormDialogTest, TablesAreSortedSelectedCopiedAndTypedOver) {
  Tabs()->setCurrentWidget(Find<TableControl>("table")->parentWidget());
  auto* view = Find<TableControl>("table");
  const auto cell = [&](int row, int column) { return view->model()->index(row, column).data().toString(); };
  EXPECT_EQ(cell(1, 1), "30.12") << "half to even";
  QHeaderView& header = *view->horizontalHeader();
  const auto press = [&](int column) {
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      QPoint(header.sectionViewportPosition(column) + 5, header.height() / 2));
  };
  view->selectRow(2);
  EXPECT_EQ(form.State("table").selected, std::vector<int>{2});
  press(1);
  EXPECT_TRUE(form.State("table").selected.empty()) << "other rows stand there now";
  EXPECT_EQ(cell(0, 0), "c");
  press(1);
  EXPECT_EQ(cell(0, 0), "a");
  view->selectRow(0);
  view->setFocus();
  QTest::keySequence(view, QKeySequence::Copy);
  EXPECT_EQ(controller.ui.clipboard, "Label\tHead\na\t30.125\n") << "all digits";

  EXPECT_FALSE(view->model()->flags(view->model()->index(0, 0)).testFlag(Qt::ItemIsEditable));
  form.LetEdit();
  dialog.Do([](Form&) {});
  EXPECT_TRUE(view->model()->setData(view->model()->index(0, 0), "new"));
  EXPECT_EQ(cell(0, 0), "new");
}

TEST_F(FormDialogTest, FocusSelectsTheTextAndLeavingAnEmptyNumberFillsIt) {
  Find<QCheckBox>("check")->click();
  Tabs()->setCurrentIndex(1);
  auto* number = Find<QLineEdit>("number");
  number->setFocus();
  QApplication::processEvents();
  EXPECT_EQ(number->selectedText(), "12.5");
  QTest::keyClick(number, Qt::Key_Delete);
  EXPECT_EQ(form.Text("number"), "");
  Find<QLineEdit>("text")->setFocus();
  EXPECT_EQ(form.Text("number"), "0");
  EXPECT_EQ(number->text(), "0");
}

TEST_F(FormDialogTest, ARefusedEntryBringsItsPageForwardWithTheTextSelected) {
  Find<QCheckBox>("check")->click();
  form.SetText("number", "-3");
  Tabs()->setCurrentIndex(0);
  Find<QPushButton>("OK")->click();
  EXPECT_TRUE(dialog.isVisible());
  EXPECT_EQ(Tabs()->currentIndex(), 1);
  EXPECT_EQ(Find<QLineEdit>("number")->selectedText(), "-3");
}

TEST_F(FormDialogTest, EnterAcceptsEscapeRejectsF1AsksForHelp) {
  QString topic;
  QObject::connect(&dialog, &FormDialog::HelpAsked, [&](const QString& asked) { topic = asked; });
  QTest::keyClick(&dialog, Qt::Key_F1);
  EXPECT_EQ(topic, "EveryKind");
  QTest::keyClick(Find<QLineEdit>("text"), Qt::Key_Return);
  EXPECT_EQ(form.Result, 1);
  EXPECT_FALSE(dialog.isVisible());

  test::EveryKind other(controller.ormel);
  FormDialog second(other, nullptr);
  QTimer::singleShot(0, &second, [&] { QTest::keyClick(&second, Qt::Key_Escape); });
  second.Show();
  EXPECT_EQ(other.Result, 2);
}

TEST_F(FormDialogTest, AFailureInsideTheFormLeavesTheToolkitsLoopUnharmed) {
  test::EveryKind failing(controller.ormel);
  failing.failure = "the disk is full";
  FormDialog second(failing, nullptr);
  QTimer::singleShot(0, &second, [&] { second.findChild<QPushButton*>("button")->click(); });
  EXPECT_THROW(second.Show(), std::runtime_error);
}

}  // namespace
}  // namespace ormel

int main(int argc, char** argv) {
  const QApplication app(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
