#include "ormel/property_panel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>

#include "core/ormel.h"
#include "model/selection.h"
#include "ormel/qt_text.h"

namespace ormel {

PropertyPanel::PropertyPanel(const PanelHost& host, QWidget* parent)
    : PanelWidget(host, parent), sheet_(host.ormel), title_(new QLabel(this)), area_(new QScrollArea(this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(6, 6, 6, 6);
  column->addWidget(title_);
  column->addWidget(area_, 1);
  title_->setWordWrap(true);
  area_->setWidgetResizable(true);
  area_->setFrameShape(QFrame::NoFrame);
  host.ormel.changes.Subscribe(*this);
}

PropertyPanel::~PropertyPanel() {
  ormel().changes.Unsubscribe(*this);
}

void PropertyPanel::CommandEnded(const ChangeRecord& record) {
  if (record.project_replaced || !record.rows.empty()) outdated_ = true;
}

QWidget* PropertyPanel::Editor(const QString& property) const {
  return area_->widget() == nullptr ? nullptr : area_->widget()->findChild<QWidget*>(property);
}

void PropertyPanel::Set(std::size_t row, const QString& text) {
  if (setting_) return;
  setting_ = true;  // a box that refuses takes the focus from the field, which is no second change
  if (Idle()) sheet_.Set(row, text.toStdString());
  setting_ = false;
  outdated_ = true;
  Touched();
  Refresh();
}

QWidget* PropertyPanel::MakeEditor(std::size_t row, const SheetRow& sheet_row) {
  if (sheet_row.kind == ControlKind::kCheck) {
    auto* box = new QCheckBox;
    connect(box, &QCheckBox::clicked, this, [this, row, box] {
      Set(row, box->checkState() == Qt::Unchecked ? QStringLiteral("no") : QStringLiteral("yes"));
    });
    return box;
  }
  if (sheet_row.kind == ControlKind::kCombo) {
    auto* combo = new QComboBox;
    for (const std::string& choice : sheet_row.choices) combo->addItem(ToQString(choice));
    connect(combo, &QComboBox::activated, this, [this, row, combo] { Set(row, combo->currentText()); });
    return combo;
  }
  auto* edit = new FieldEdit(nullptr);
  const auto take = [this, row, edit] {
    if (!edit->isModified()) return;
    edit->setModified(false);
    Set(row, edit->text());
  };
  connect(edit, &QLineEdit::returnPressed, this, take);
  connect(edit, &FieldEdit::Left, this, take);
  return edit;
}

void PropertyPanel::Build() {
  auto* page = new QWidget;
  auto* grid = new QGridLayout(page);
  grid->setContentsMargins(0, 4, 4, 4);
  grid->setHorizontalSpacing(8);
  grid->setVerticalSpacing(5);
  grid->setColumnStretch(1, 1);
  editors_.clear();
  built_.clear();
  for (std::size_t i = 0; i < sheet_.rows().size(); ++i) {
    const SheetRow& row = sheet_.rows()[i];
    QWidget* editor = MakeEditor(i, row);
    editor->setObjectName(ToQString(row.property.name));
    editor->setAccessibleName(ToQString(row.caption));
    const int line = static_cast<int>(i);
    if (auto* box = qobject_cast<QCheckBox*>(editor)) {
      box->setText(ToQString(row.caption));
      grid->addWidget(editor, line, 0, 1, 3);
    } else {
      auto* caption = new QLabel(ToQString(row.caption));
      caption->setBuddy(editor);
      caption->setWordWrap(true);
      grid->addWidget(caption, line, 0);
      grid->addWidget(editor, line, 1);
      grid->addWidget(new QLabel(ToQString(row.unit)), line, 2);
    }
    editors_.push_back(editor);
    built_.push_back(std::string(row.property.name) + "|" + row.caption + "|" + row.unit);
  }
  grid->setRowStretch(static_cast<int>(editors_.size()), 1);
  area_->setWidget(page);
}

void PropertyPanel::ShowRows() {
  for (std::size_t i = 0; i < editors_.size(); ++i) {
    const SheetRow& row = sheet_.rows()[i];
    const QSignalBlocker quiet(editors_[i]);
    editors_[i]->setEnabled(row.enabled);
    if (auto* box = qobject_cast<QCheckBox*>(editors_[i])) {
      box->setTristate(row.mixed);
      box->setCheckState(row.mixed ? Qt::PartiallyChecked : row.text == "yes" ? Qt::Checked : Qt::Unchecked);
    } else if (auto* combo = qobject_cast<QComboBox*>(editors_[i])) {
      combo->setCurrentIndex(row.mixed ? -1 : combo->findText(ToQString(row.text)));
      combo->setPlaceholderText(tr("(different)"));
    } else if (auto* edit = qobject_cast<QLineEdit*>(editors_[i])) {
      edit->setText(ToQString(row.text));
      edit->setPlaceholderText(row.mixed ? tr("(different)") : QString());
      edit->setModified(false);
    }
  }
}

void PropertyPanel::Refresh() {
  if (setting_) return;
  std::vector<ElementId> now;
  if (ormel().project.ProjectOpen) now = SelectedElements(ormel());
  if (!outdated_ && now == shown_) return;
  outdated_ = false;
  shown_ = std::move(now);
  sheet_.Read();
  title_->setText(ToQString(sheet_.title()));
  QFont font = title_->font();
  font.setBold(!sheet_.rows().empty());
  title_->setFont(font);
  std::vector<std::string> names;
  for (const SheetRow& row : sheet_.rows())
    names.push_back(std::string(row.property.name) + "|" + row.caption + "|" + row.unit);
  if (names != built_ || area_->widget() == nullptr) {
    const QWidget* focused = focusWidget();
    const QString focus = focused == nullptr ? QString() : focused->objectName();
    Build();
    if (QWidget* editor = focus.isEmpty() ? nullptr : Editor(focus)) editor->setFocus();
  }
  ShowRows();
}

}  // namespace ormel
