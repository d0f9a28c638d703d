#include "ormel/form_page.h"

#include <QGroupBox>
#include <algorithm>

#include "ormel/qt_text.h"

namespace ormel {
namespace {

constexpr int kColumns = 3;

/// An item of the grid that keeps to one column.
bool NarrowIn(QGridLayout& grid, const QLayoutItem* item) {
  if (item == nullptr) return false;
  int row = 0, column = 0, rows = 0, columns = 0;
  for (int i = 0; i < grid.count(); ++i) {
    if (grid.itemAt(i) != item) continue;
    grid.getItemPosition(i, &row, &column, &rows, &columns);
    return columns == 1;
  }
  return false;
}

}  // namespace

FormPage::FormPage(QWidget* page) : page_(new QHBoxLayout(page)), column_(new QVBoxLayout) {
  page_->addLayout(column_);
  column_->setSpacing(10);
}

void FormPage::StartGroup(const std::string& group) {
  if (grid_ != nullptr && group == group_) return;
  group_ = group;
  inline_row_ = nullptr;
  check_ = nullptr;
  grid_ = new QGridLayout;
  grid_->setHorizontalSpacing(10);
  grid_->setVerticalSpacing(6);
  grid_->setColumnStretch(1, 1);
  if (group.empty()) {
    open_grids_.push_back(grid_);
    column_->addLayout(grid_);
    return;
  }
  auto* frame = new QGroupBox(ToQString(group), column_->parentWidget());
  frame->setLayout(grid_);
  column_->addWidget(frame);
}

void FormPage::AddStretch() {
  column_->addStretch(1);
}

void FormPage::Add(const ControlView& view) {
  if (view.place == ControlPlace::kBeside) {
    page_->addWidget(view.editor, 1);
    return;
  }
  StartGroup(std::string(view.spec->group));
  if (view.place != ControlPlace::kInline) inline_row_ = nullptr;
  if (view.place != ControlPlace::kField) check_ = nullptr;
  switch (view.place) {
    case ControlPlace::kField:
      AddField(view);
      return;
    case ControlPlace::kWide:
      AddWide(view);
      return;
    case ControlPlace::kTall:
      AddTall(view);
      return;
    case ControlPlace::kInline:
      AddInline(view);
      return;
    case ControlPlace::kBeside:
      return;
  }
}

bool FormPage::JoinsCheck(const ControlView& view) const {
  return check_ != nullptr && view.spec->caption.empty();
}

void FormPage::AddField(const ControlView& view) {
  int row = grid_->rowCount();
  if (JoinsCheck(view)) {
    --row;
    grid_->removeWidget(check_);
    grid_->addWidget(check_, row, 0);
  }
  check_ = nullptr;
  grid_->addWidget(view.caption, row, 0);
  grid_->addWidget(view.editor, row, 1);
  grid_->addWidget(view.unit, row, 2);
}

void FormPage::AddWide(const ControlView& view) {
  grid_->addWidget(view.editor, grid_->rowCount(), 0, 1, kColumns);
  const bool toggles = view.spec->kind == ControlKind::kCheck || view.spec->kind == ControlKind::kOption;
  if (toggles) check_ = view.editor;
}

void FormPage::AddTall(const ControlView& view) {
  grid_->addWidget(view.caption, grid_->rowCount(), 0, 1, kColumns);
  const int row = grid_->rowCount();
  grid_->addWidget(view.editor, row, 0, 1, kColumns);
  grid_->setRowStretch(row, 1);
}

void FormPage::AddInline(const ControlView& view) {
  if (inline_row_ == nullptr) {
    inline_row_ = new QHBoxLayout;
    inline_row_->setSpacing(8);
    const int row = grid_->rowCount();
    if (view.caption != nullptr) grid_->addWidget(view.caption, row, 0);
    grid_->addLayout(inline_row_, row, 1, 1, kColumns - 1, Qt::AlignLeft);
  } else if (view.caption != nullptr) {
    inline_row_->addWidget(view.caption);
  }
  inline_row_->addWidget(view.editor);
}

void FormPage::AlignColumns() {
  for (const int column : {0, kColumns - 1}) {
    int width = 0;
    for (QGridLayout* grid : open_grids_)
      for (int row = 0; row < grid->rowCount(); ++row)
        if (const QLayoutItem* item = grid->itemAtPosition(row, column); NarrowIn(*grid, item))
          width = std::max(width, item->sizeHint().width());
    for (QGridLayout* grid : open_grids_) grid->setColumnMinimumWidth(column, width);
  }
}

}  // namespace ormel
