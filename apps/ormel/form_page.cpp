#include "ormel/form_page.h"

#include <QGroupBox>

#include "ormel/qt_text.h"

namespace ormel {
namespace {

constexpr int kColumns = 3;

}  // namespace

FormPage::FormPage(QWidget* page) : column_(new QVBoxLayout(page)) {
  column_->setSpacing(10);
}

void FormPage::StartGroup(const std::string& group) {
  if (grid_ != nullptr && group == group_) return;
  group_ = group;
  inline_row_ = nullptr;
  grid_ = new QGridLayout;
  grid_->setHorizontalSpacing(10);
  grid_->setVerticalSpacing(6);
  grid_->setColumnStretch(1, 1);
  if (group.empty()) {
    column_->addLayout(grid_);
    return;
  }
  auto* frame = new QGroupBox(ToQString(group), column_->parentWidget());
  frame->setLayout(grid_);
  column_->addWidget(frame);
}

void FormPage::Add(const ControlView& view) {
  StartGroup(std::string(view.spec->group));
  const Placement placement = PlacementOf(view.spec->kind);
  if (placement != Placement::kInline) inline_row_ = nullptr;
  switch (placement) {
    case Placement::kField:
      AddField(view);
      return;
    case Placement::kWide:
      AddWide(view);
      return;
    case Placement::kTall:
      AddTall(view);
      return;
    case Placement::kInline:
      AddInline(view);
      return;
  }
}

void FormPage::AddField(const ControlView& view) {
  const int row = grid_->rowCount();
  grid_->addWidget(view.caption, row, 0);
  grid_->addWidget(view.editor, row, 1);
  grid_->addWidget(view.unit, row, 2);
}

void FormPage::AddWide(const ControlView& view) {
  grid_->addWidget(view.editor, grid_->rowCount(), 0, 1, kColumns);
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

}  // namespace ormel
