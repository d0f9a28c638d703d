#include "ormel/form_controls.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QCommandLinkButton>
#include <QFocusEvent>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTimer>
#include <algorithm>
#include <array>
#include <string>

#include "ormel/chart_view.h"
#include "ormel/color_swatch.h"
#include "ormel/form_dialog.h"
#include "ormel/qt_text.h"
#include "ormel/table_view.h"

namespace ormel {
namespace {

using Name = std::string_view;  // names live in the form's static table

QWidget* MakeEdit(const ControlSpec& spec, FormDialog& dialog) {
  auto* edit = new FieldEdit(&dialog);
  const Name name = spec.name;
  QObject::connect(edit, &QLineEdit::textEdited, &dialog, [&dialog, name](const QString& text) {
    dialog.Do([&](Form& form) { form.SetText(name, text.toStdString()); });
  });
  QObject::connect(edit, &FieldEdit::Left, &dialog,
                   [&dialog, name] { dialog.Do([&](Form& form) { form.LeaveField(name); }); });
  if (spec.kind == ControlKind::kNumber) {
    edit->setAlignment(Qt::AlignRight);
    edit->setMinimumWidth(edit->fontMetrics().averageCharWidth() * 16);
  } else {
    edit->setMinimumWidth(edit->fontMetrics().averageCharWidth() * 30);
  }
  return edit;
}

QWidget* MakeMultiline(const ControlSpec& spec, FormDialog& dialog) {
  auto* edit = new QPlainTextEdit(&dialog);
  edit->setTabChangesFocus(true);
  edit->setMinimumHeight(edit->fontMetrics().lineSpacing() * 5);
  QObject::connect(edit, &QPlainTextEdit::textChanged, &dialog, [&dialog, edit, name = spec.name] {
    dialog.Do([&](Form& form) { form.SetText(name, edit->toPlainText().toStdString()); });
  });
  return edit;
}

template <class Button>
QWidget* MakeToggle(const ControlSpec& spec, FormDialog& dialog) {
  auto* button = new Button(&dialog);
  QObject::connect(button, &QAbstractButton::clicked, &dialog, [&dialog, name = spec.name](bool on) {
    dialog.Do([&](Form& form) { form.SetChecked(name, on); });
  });
  return button;
}

template <class Button>
QWidget* MakeButton(const ControlSpec& spec, FormDialog& dialog) {
  auto* button = new Button(&dialog);
  button->setAutoDefault(false);
  QObject::connect(button, &QAbstractButton::clicked, &dialog,
                   [&dialog, name = spec.name] { dialog.Do([&](Form& form) { form.Click(name); }); });
  return button;
}

QWidget* MakeChoice(const ControlSpec& spec, FormDialog& dialog) {
  auto* button = static_cast<QCommandLinkButton*>(MakeButton<QCommandLinkButton>(spec, dialog));
  button->setDescription(ToQString(spec.tip));
  // A line for the title and one for the description: left alone, the button counts more and the distances
  // become uneven.
  constexpr int kIconAndRims = 56, kRims = 24;
  button->setMinimumWidth(button->fontMetrics().horizontalAdvance(button->description()) + kIconAndRims);
  button->setFixedHeight(2 * button->fontMetrics().height() + kRims);
  return button;
}

QWidget* MakeCombo(const ControlSpec& spec, FormDialog& dialog) {
  auto* combo = new QComboBox(&dialog);
  combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  combo->setMinimumWidth(combo->fontMetrics().averageCharWidth() * 20);
  QObject::connect(combo, &QComboBox::activated, &dialog, [&dialog, name = spec.name](int index) {
    dialog.Do([&](Form& form) { form.Select(name, {index}); });
  });
  return combo;
}

std::vector<int> SelectedRows(const QListWidget& list) {
  std::vector<int> rows;
  for (int i = 0; i < list.count(); ++i)
    if (list.item(i)->isSelected()) rows.push_back(i);
  return rows;
}

QWidget* MakeList(const ControlSpec& spec, FormDialog& dialog) {
  auto* list = new QListWidget(&dialog);
  const bool many = spec.kind == ControlKind::kMultiList;
  list->setSelectionMode(many ? QAbstractItemView::ExtendedSelection : QAbstractItemView::SingleSelection);
  list->setAlternatingRowColors(true);
  list->setMinimumHeight(list->fontMetrics().lineSpacing() * 7);
  QObject::connect(list, &QListWidget::itemSelectionChanged, &dialog, [&dialog, list, name = spec.name] {
    dialog.Do([&](Form& form) { form.Select(name, SelectedRows(*list)); });
  });
  if (!many)
    QObject::connect(list, &QListWidget::itemDoubleClicked, &dialog, [&dialog] { dialog.PressAccept(); });
  return list;
}

QWidget* MakeTable(const ControlSpec& spec, FormDialog& dialog) {
  return new TableControl(spec.name, dialog);
}

QWidget* MakeChart(const ControlSpec& spec, FormDialog& dialog) {
  return new ChartControl(spec.name, dialog);
}

QWidget* MakeLabel(const ControlSpec& spec, FormDialog& dialog) {
  auto* label = new QLabel(&dialog);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  if (spec.kind == ControlKind::kNote) {
    label->setWordWrap(true);
    label->setMinimumWidth(label->fontMetrics().averageCharWidth() * 44);
  }
  return label;
}

void UpdateEdit(QWidget& widget, const ControlState& state) {
  auto& edit = static_cast<QLineEdit&>(widget);
  const QString text = ToQString(state.text);
  if (edit.text() != text) edit.setText(text);
}

void UpdateMultiline(QWidget& widget, const ControlState& state) {
  auto& edit = static_cast<QPlainTextEdit&>(widget);
  const QString text = ToQString(state.text);
  if (edit.toPlainText() != text) edit.setPlainText(text);
}

void UpdateToggle(QWidget& widget, const ControlState& state) {
  auto& button = static_cast<QAbstractButton&>(widget);
  button.setText(ToQString(state.caption));
  button.setChecked(state.checked);
}

void UpdateButton(QWidget& widget, const ControlState& state) {
  static_cast<QAbstractButton&>(widget).setText(ToQString(state.caption));
}

void UpdateSwatch(QWidget& widget, const ControlState& state) {
  static_cast<ColorSwatch&>(widget).SetColor(state.color);
}

void UpdateFont(QWidget& widget, const ControlState& state) {
  static_cast<QAbstractButton&>(widget).setText(ToQString(state.text.empty() ? "Choose..." : state.text));
}

/// The items of a combo box or a list, set only where they differ so that the scroll position stays.
template <class Widget, class TextAt>
bool SameItems(const Widget& widget, const ControlState& state, TextAt text_at) {
  if (widget.count() != static_cast<int>(state.items.size())) return false;
  for (int i = 0; i < widget.count(); ++i)
    if (text_at(i) != ToQString(state.items[static_cast<std::size_t>(i)])) return false;
  return true;
}

void UpdateCombo(QWidget& widget, const ControlState& state) {
  auto& combo = static_cast<QComboBox&>(widget);
  if (!SameItems(combo, state, [&](int i) { return combo.itemText(i); })) {
    combo.clear();
    for (const std::string& item : state.items) combo.addItem(ToQString(item));
  }
  combo.setCurrentIndex(state.selected.empty() ? -1 : state.selected.front());
}

void UpdateList(QWidget& widget, const ControlState& state) {
  auto& list = static_cast<QListWidget&>(widget);
  if (!SameItems(list, state, [&](int i) { return list.item(i)->text(); })) {
    list.clear();
    for (const std::string& item : state.items) list.addItem(ToQString(item));
  }
  for (int i = 0; i < list.count(); ++i) {
    const bool on = std::find(state.selected.begin(), state.selected.end(), i) != state.selected.end();
    if (list.item(i)->isSelected() != on) list.item(i)->setSelected(on);
    if (on && state.selected.size() == 1) list.scrollToItem(list.item(i));
  }
}

void UpdateTable(QWidget& widget, const ControlState& state) {
  static_cast<TableControl&>(widget).Show(state);
}

void UpdateChart(QWidget& widget, const ControlState& state) {
  static_cast<ChartControl&>(widget).Show(state);
}

void UpdateLabel(QWidget& widget, const ControlState& state) {
  static_cast<QLabel&>(widget).setText(ToQString(state.text.empty() ? state.caption : state.text));
}

/// A label whose caption stands beside it shows only its text.
void UpdateValue(QWidget& widget, const ControlState& state) {
  static_cast<QLabel&>(widget).setText(ToQString(state.text));
}

struct KindRow {
  ControlKind kind;
  ControlPlace place;
  bool caption;  ///< a label beside or above the editor
  QWidget* (*make)(const ControlSpec&, FormDialog&);
  void (*update)(QWidget&, const ControlState&);
};

constexpr std::array kKinds = {
    KindRow{ControlKind::kLabel, ControlPlace::kField, true, MakeLabel, UpdateValue},
    KindRow{ControlKind::kText, ControlPlace::kField, true, MakeEdit, UpdateEdit},
    KindRow{ControlKind::kMultiline, ControlPlace::kTall, true, MakeMultiline, UpdateMultiline},
    KindRow{ControlKind::kNumber, ControlPlace::kField, true, MakeEdit, UpdateEdit},
    KindRow{ControlKind::kCheck, ControlPlace::kWide, false, MakeToggle<QCheckBox>, UpdateToggle},
    KindRow{ControlKind::kOption, ControlPlace::kWide, false, MakeToggle<QRadioButton>, UpdateToggle},
    KindRow{ControlKind::kButton, ControlPlace::kInline, false, MakeButton<QPushButton>, UpdateButton},
    KindRow{ControlKind::kColor, ControlPlace::kInline, true, MakeButton<ColorSwatch>, UpdateSwatch},
    KindRow{ControlKind::kFont, ControlPlace::kInline, true, MakeButton<QPushButton>, UpdateFont},
    KindRow{ControlKind::kCombo, ControlPlace::kField, true, MakeCombo, UpdateCombo},
    KindRow{ControlKind::kList, ControlPlace::kTall, true, MakeList, UpdateList},
    KindRow{ControlKind::kMultiList, ControlPlace::kTall, true, MakeList, UpdateList},
    KindRow{ControlKind::kTable, ControlPlace::kTall, true, MakeTable, UpdateTable},
    KindRow{ControlKind::kChart, ControlPlace::kBeside, false, MakeChart, UpdateChart},
    KindRow{ControlKind::kNote, ControlPlace::kWide, false, MakeLabel, UpdateLabel},
};

constexpr KindRow kChoice{ControlKind::kButton, ControlPlace::kWide, false, MakeChoice, UpdateButton};

const KindRow& RowOf(ControlKind kind) {
  return *std::find_if(kKinds.begin(), kKinds.end(), [kind](const KindRow& row) { return row.kind == kind; });
}

bool IsChoice(const ControlSpec& spec, bool at_foot) {
  return !at_foot && spec.kind == ControlKind::kButton && spec.role != ButtonRole::kReject &&
         !spec.tip.empty();
}

void UpdateCaption(QLabel* label, const std::string& text, const ControlState& state) {
  if (label == nullptr) return;
  label->setText(ToQString(text));
  label->setVisible(state.visible && !text.empty());
  label->setEnabled(state.enabled);
}

/// A field whose text will not be taken as it stands.
void MarkField(const ControlView& view, bool on) {
  if (view.editor->property("marked").toBool() == on) return;
  view.editor->setProperty("marked", on);
  QPalette colors = view.editor->parentWidget()->palette();
  if (on) {
    colors.setColor(QPalette::Base, QColor(255, 228, 196));
    colors.setColor(QPalette::Text, Qt::black);
  }
  view.editor->setPalette(colors);
  view.unit->setForegroundRole(on ? QPalette::WindowText : QPalette::PlaceholderText);
}

}  // namespace

void FieldEdit::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  // After the press that brought the focus, which would put the cursor somewhere and select nothing.
  QTimer::singleShot(0, this, &QLineEdit::selectAll);
}

void FieldEdit::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  const Qt::FocusReason reason = event->reason();
  if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason) emit Left();
}

ControlView MakeControl(const ControlSpec& spec, bool at_foot, FormDialog& dialog) {
  const KindRow& row = IsChoice(spec, at_foot) ? kChoice : RowOf(spec.kind);
  ControlView view;
  view.spec = &spec;
  view.place = row.place;
  view.editor = row.make(spec, dialog);
  view.editor->setObjectName(ToQString(spec.name));
  if (!spec.tip.empty()) view.editor->setToolTip(ToQString(spec.tip));
  if (row.caption) {
    view.caption = new QLabel(&dialog);
    if (view.editor->focusPolicy() != Qt::NoFocus) view.caption->setBuddy(view.editor);
  }
  if (row.place == ControlPlace::kField) {
    view.unit = new QLabel(&dialog);
    view.unit->setForegroundRole(QPalette::PlaceholderText);
  }
  return view;
}

void UpdateControl(const ControlView& view, const ControlState& state) {
  const QSignalBlocker quiet(view.editor);
  RowOf(view.spec->kind).update(*view.editor, state);
  view.editor->setEnabled(state.enabled);
  view.editor->setVisible(state.visible);
  if (view.editor->accessibleName().isEmpty()) view.editor->setAccessibleName(ToQString(state.caption));
  UpdateCaption(view.caption, state.caption, state);
  const std::string reads = ReadsAs(*view.spec, state);
  UpdateCaption(view.unit, reads.empty() ? state.unit : reads + " " + state.unit, state);
  if (view.spec->kind == ControlKind::kNumber) MarkField(view, !reads.empty());
}

void FocusControl(const ControlView& view) {
  view.editor->setFocus(Qt::OtherFocusReason);
  if (auto* edit = qobject_cast<QLineEdit*>(view.editor)) edit->selectAll();
  if (auto* edit = qobject_cast<QPlainTextEdit*>(view.editor)) edit->selectAll();
}

}  // namespace ormel
