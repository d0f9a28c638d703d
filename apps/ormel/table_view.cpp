#include "ormel/table_view.h"

#include <QAction>
#include <QHeaderView>
#include <QScrollBar>
#include <QShortcut>
#include <algorithm>
#include <utility>
#include <vector>

#include "core/form.h"
#include "core/table.h"
#include "ormel/form_dialog.h"
#include "ormel/qt_text.h"

namespace ormel {
namespace {

constexpr int kRowsMeasured = 60;   ///< rows by which a column's width is found
constexpr int kWidestColumn = 260;  ///< pixels, as the table opens
constexpr int kFewRows = 6;         ///< a table as short as this is shown whole and no higher
constexpr int kRowsInView = 13;     ///< of a longer one, and of an empty one, which may get rows
constexpr int kWidestTable = 940;   ///< pixels
constexpr int kNarrowestTable = 340;

}  // namespace

bool TableModel::Show(const std::shared_ptr<Table>& table, bool editable) {
  const bool other = table != table_;
  const long revision = table ? table->revision() : -1;
  if (!other && revision == shown_revision_ && editable == editable_) return false;
  beginResetModel();
  table_ = table;
  shown_revision_ = revision;
  editable_ = editable;
  endResetModel();
  return other;
}

int TableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() || !table_ ? 0 : static_cast<int>(table_->Rows());
}

int TableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() || !table_ ? 0 : static_cast<int>(table_->columns().size());
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || !table_) return {};
  const auto row = static_cast<std::size_t>(index.row()), column = static_cast<std::size_t>(index.column());
  switch (role) {
    case Qt::DisplayRole:
      return ToQString(table_->Text(row, column));
    case Qt::EditRole:
      return ToQString(table_->At(row, column).AsText());
    case Qt::TextAlignmentRole:
      return QVariant((table_->columns()[column].number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    default:
      return {};
  }
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical || section < 0 || section >= columnCount()) return {};
  const TableColumn& column = table_->columns()[static_cast<std::size_t>(section)];
  if (role == Qt::DisplayRole) return ToQString(column.caption);
  if (role == Qt::ToolTipRole) return ToQString(column.name);
  if (role == Qt::TextAlignmentRole)
    return QVariant((column.number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  return {};
}

Qt::ItemFlags TableModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags plain = QAbstractTableModel::flags(index);
  return editable_ ? plain | Qt::ItemIsEditable : plain;
}

bool TableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || !index.isValid() || !table_) return false;
  edit_(static_cast<std::size_t>(index.row()), static_cast<std::size_t>(index.column()),
        value.toString().toStdString());
  return true;
}

TableControl::TableControl(std::string_view name, FormDialog& dialog)
    : QTableView(&dialog),
      name_(name),
      dialog_(dialog),
      model_(new TableModel(this, [this](std::size_t row, std::size_t column, std::string_view text) {
        dialog_.Do([&](Form& form) { form.EditCell(name_, row, column, text); });
      })) {
  setModel(model_);
  setAlternatingRowColors(true);
  setWordWrap(false);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setTabKeyNavigation(false);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  horizontalHeader()->setResizeContentsPrecision(kRowsMeasured);
  horizontalHeader()->setSectionsClickable(true);
  horizontalHeader()->setHighlightSections(false);
  connect(horizontalHeader(), &QHeaderView::sectionClicked, this, &TableControl::SortBy);
  connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &TableControl::SendSelection);
  auto* copy = new QAction(tr("Copy"), this);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  addAction(copy);
  setContextMenuPolicy(Qt::ActionsContextMenu);
  connect(copy, &QAction::triggered, this,
          [this] { dialog_.Do([this](Form& form) { form.CopyTable(name_); }); });
}

void TableControl::Show(const ControlState& state) {
  const Table* before = model_->table();
  const int across = horizontalScrollBar()->value(), down = verticalScrollBar()->value();
  const bool other = model_->Show(state.table, state.editable);
  setEditTriggers(state.editable ? QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                       QAbstractItemView::AnyKeyPressed
                                 : QAbstractItemView::NoEditTriggers);
  const Table* table = model_->table();
  horizontalHeader()->setSortIndicatorShown(table != nullptr && table->sorted_by().has_value());
  if (table != nullptr && table->sorted_by())
    horizontalHeader()->setSortIndicator(static_cast<int>(*table->sorted_by()),
                                         table->descending() ? Qt::DescendingOrder : Qt::AscendingOrder);
  if (other || before == nullptr) {
    SizeColumns();
    scrollToTop();
    if (isVisible()) dialog_.Grow();
  } else {
    horizontalScrollBar()->setValue(across);
    verticalScrollBar()->setValue(down);
  }
}

void TableControl::SizeColumns() {
  resizeColumnsToContents();
  for (int i = 0; i < model_->columnCount(); ++i)
    setColumnWidth(i, std::min(kWidestColumn, columnWidth(i) + 12));
  updateGeometry();
}

QSize TableControl::sizeHint() const {
  const int rows = model_->rowCount();
  const bool few = rows > 0 && rows <= kFewRows;
  const int edge = 2 * frameWidth() + 2;
  const int bar = verticalScrollBar()->sizeHint().width();
  const int width = horizontalHeader()->length() + edge + (few ? 0 : bar);
  const int height = horizontalHeader()->sizeHint().height() +
                     (few ? rows : kRowsInView) * verticalHeader()->defaultSectionSize() + edge;
  return {std::clamp(width, kNarrowestTable, kWidestTable), height + (few ? 0 : bar)};
}

void TableControl::SendSelection() {
  std::vector<int> rows;
  for (const QItemSelectionRange& range : selectionModel()->selection())
    for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  dialog_.Do([&](Form& form) { form.Select(name_, std::move(rows)); });
}

void TableControl::SortBy(int column) {
  const Table* table = model_->table();
  if (table == nullptr || column < 0) return;
  const auto chosen = static_cast<std::size_t>(column);
  const bool again = table->sorted_by() == chosen;
  const bool descending = again && !table->descending();
  dialog_.Do([&](Form& form) { form.SortTable(name_, chosen, descending); });
}

}  // namespace ormel
