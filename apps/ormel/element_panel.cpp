#include "ormel/element_panel.h"

#include <QAction>
#include <QHeaderView>
#include <QItemSelection>
#include <QMenu>
#include <QVBoxLayout>
#include <algorithm>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "model/selection.h"
#include "ormel/qt_text.h"
#include "shell/menus.h"
#include "shell/results_log.h"

namespace ormel {
namespace {

constexpr int kColumns = 3;
constexpr int kLabelWidth = 140, kValueWidth = 100, kIndent = 14;  // pixels

}  // namespace

ElementModel::ElementModel(Ormel& ormel, QObject* parent)
    : QAbstractItemModel(parent), list_(ormel), groups_(&list_.Groups()) {}

bool ElementModel::Follow() {
  if (shown_ == list_.revision()) return false;
  beginResetModel();
  groups_ = &list_.Groups();
  shown_ = list_.revision();
  places_.clear();
  for (std::size_t g = 0; g < groups_->size(); ++g)
    for (std::size_t i = 0; i < (*groups_)[g].elements.size(); ++i)
      places_.emplace((*groups_)[g].elements[i].id, std::pair(static_cast<int>(g), static_cast<int>(i)));
  endResetModel();
  return true;
}

ElementId ElementModel::IdAt(const QModelIndex& index) const {
  if (!index.isValid() || index.internalId() == 0) return {};
  return GroupAt(static_cast<int>(index.internalId()) - 1)
      .elements.at(static_cast<std::size_t>(index.row()))
      .id;
}

QModelIndex ElementModel::IndexOf(const ElementId& id) const {
  const auto found = places_.find(id);
  if (found == places_.end()) return {};
  return createIndex(found->second.second, 0, static_cast<quintptr>(found->second.first + 1));
}

QModelIndex ElementModel::index(int row, int column, const QModelIndex& parent) const {
  if (row < 0 || row >= rowCount(parent) || column < 0 || column >= kColumns) return {};
  return createIndex(row, column, parent.isValid() ? static_cast<quintptr>(parent.row() + 1) : quintptr{0});
}

QModelIndex ElementModel::parent(const QModelIndex& child) const {
  if (!child.isValid() || child.internalId() == 0) return {};
  return createIndex(static_cast<int>(child.internalId()) - 1, 0, quintptr{0});
}

int ElementModel::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return static_cast<int>(groups_->size());
  if (parent.internalId() != 0 || parent.column() != 0) return 0;
  return static_cast<int>(GroupAt(parent.row()).elements.size());
}

int ElementModel::columnCount(const QModelIndex&) const {
  return kColumns;
}

QVariant ElementModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
  if (index.internalId() == 0) {
    if (role == Qt::ToolTipRole || index.column() != 0) return {};
    const ElementGroup& group = GroupAt(index.row());
    const QString caption = ToQString(group.caption);
    return group.all == group.elements.size()
               ? QStringLiteral("%1 (%2)").arg(caption).arg(group.all)
               : QStringLiteral("%1 (%2 of %3)").arg(caption).arg(group.elements.size()).arg(group.all);
  }
  const ListedElement& item =
      GroupAt(static_cast<int>(index.internalId()) - 1).elements.at(static_cast<std::size_t>(index.row()));
  return ToQString(index.column() == 0 ? item.label : index.column() == 1 ? item.value : item.state);
}

QVariant ElementModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return section == 0 ? tr("Label") : section == 1 ? tr("Value") : tr("State");
}

void ElementModel::sort(int column, Qt::SortOrder order) {
  list_.Sort(static_cast<ListColumn>(std::clamp(column, 0, kColumns - 1)), order == Qt::DescendingOrder);
}

ElementPanel::ElementPanel(const PanelHost& host, QWidget* parent)
    : PanelWidget(host, parent),
      model_(new ElementModel(host.ormel, this)),
      search_(new QLineEdit(this)),
      tree_(new QTreeView(this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(6, 6, 6, 6);
  column->addWidget(search_);
  column->addWidget(tree_);
  search_->setPlaceholderText(tr("Search label, value or state"));
  search_->setAccessibleName(search_->placeholderText());
  search_->setClearButtonEnabled(true);
  tree_->setAccessibleName(tr("Elements"));
  tree_->setModel(model_);
  tree_->setUniformRowHeights(true);
  tree_->setIndentation(kIndent);
  tree_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  tree_->setExpandsOnDoubleClick(false);
  tree_->setContextMenuPolicy(Qt::CustomContextMenu);
  tree_->setSortingEnabled(true);
  tree_->sortByColumn(0, Qt::AscendingOrder);
  tree_->header()->resizeSection(0, kLabelWidth);
  tree_->header()->resizeSection(1, kValueWidth);
  connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
    model_->list().Search(text.toStdString());
    Refresh();
  });
  connect(tree_->header(), &QHeaderView::sortIndicatorChanged, this, [this] { Refresh(); });
  connect(tree_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &ElementPanel::TakeSelection);
  connect(tree_, &QTreeView::activated, this, &ElementPanel::Edit);
  connect(tree_, &QTreeView::customContextMenuRequested, this, &ElementPanel::ShowMenu);
  const auto fold = [this](const QModelIndex& index, bool closed) {
    if (!showing_ && search_->text().isEmpty()) closed_[model_->KindAt(index.row())] = closed;
  };
  connect(tree_, &QTreeView::collapsed, this, [fold](const QModelIndex& index) { fold(index, true); });
  connect(tree_, &QTreeView::expanded, this, [fold](const QModelIndex& index) { fold(index, false); });
}

void ElementPanel::ResultsChanged() {
  model_->list().ResultsChanged();
}

void ElementPanel::Refresh() {
  if (showing_) return;
  showing_ = true;
  const bool other = model_->Follow();
  if (other) {
    for (int row = 0; row < model_->rowCount(); ++row) {
      const QModelIndex group = model_->index(row, 0);
      const auto closed = closed_.find(model_->KindAt(row));
      tree_->setExpanded(group, !search_->text().isEmpty() || closed == closed_.end() || !closed->second);
      tree_->setFirstColumnSpanned(row, {}, true);
    }
  }
  std::vector<ElementId> now = SelectedElements(ormel());
  if (other || now != selected_) {
    selected_ = std::move(now);
    ShowSelection();
  }
  showing_ = false;
}

void ElementPanel::ShowSelection() {
  QItemSelection selection;
  std::vector<QModelIndex> rows;
  for (const ElementId& id : selected_)
    if (const QModelIndex index = model_->IndexOf(id); index.isValid()) rows.push_back(index);
  std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) {
    return std::pair(a.internalId(), a.row()) < std::pair(b.internalId(), b.row());
  });
  for (std::size_t i = 0; i < rows.size();) {  // neighbours as one range
    std::size_t end = i + 1;
    while (end < rows.size() && rows[end].internalId() == rows[i].internalId() &&
           rows[end].row() == rows[end - 1].row() + 1)
      ++end;
    selection.select(rows[i], rows[end - 1].siblingAtColumn(kColumns - 1));
    i = end;
  }
  tree_->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
  if (rows.size() != 1) return;
  tree_->selectionModel()->setCurrentIndex(rows.front(), QItemSelectionModel::NoUpdate);
  tree_->scrollTo(rows.front());
}

void ElementPanel::TakeSelection() {
  if (showing_) return;
  if (!Idle() || !ormel().project.ProjectOpen) {
    selected_.clear();
    return Refresh();  // what is being drawn keeps the selection
  }
  std::vector<ElementId> ids;
  for (const QModelIndex& index : tree_->selectionModel()->selectedRows()) {
    if (const ElementId id = model_->IdAt(index); id.element != Element::kNone) ids.push_back(id);
  }
  showing_ = true;
  RunCommand(ormel(), "SelectItems", [&] {
    SelectItems(ormel(), ids);
    if (ids.size() == 1) BringIntoView(ormel(), ids.front());
  });
  selected_ = SelectedElements(ormel());
  showing_ = false;
  Touched();
}

void ElementPanel::Edit(const QModelIndex& index) {
  if (model_->IdAt(index).element == Element::kNone) {
    tree_->setExpanded(index, !tree_->isExpanded(index));
    return;
  }
  if (Idle()) Dispatch(ormel(), "EDIT_CMDS", 1);
  Touched();
}

void ElementPanel::ShowMenu(QPoint at) {
  if (!Idle() || model_->IdAt(tree_->indexAt(at)).element == Element::kNone) return;
  QMenu menu(this);
  for (const int index : {1, 2, 3, 4}) {
    const MenuItem* item = FindMenuItem("EDIT_CMDS", index);
    QAction* action = menu.addAction(ToQString(ItemCaption(ormel(), *item)));
    action->setEnabled(ItemEnabled(ormel(), *item));
    connect(action, &QAction::triggered, this, [this, index] {
      Dispatch(ormel(), "EDIT_CMDS", index);
      Touched();
    });
  }
  menu.exec(tree_->viewport()->mapToGlobal(at));
}

}  // namespace ormel
