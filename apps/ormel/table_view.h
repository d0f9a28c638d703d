// The table control of forms.
#pragma once

#include <QAbstractTableModel>
#include <QTableView>
#include <functional>
#include <memory>
#include <string_view>

namespace ormel {

class Form;
class FormDialog;
class Table;
struct ControlState;

/// Hands out the cells that are looked at; nothing is made for those that are not.
class TableModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  using Edit = std::function<void(std::size_t row, std::size_t column, std::string_view text)>;
  TableModel(QObject* parent, Edit edit) : QAbstractTableModel(parent), edit_(std::move(edit)) {}

  /// True when another table came, or other columns.
  bool Show(const std::shared_ptr<Table>& table, bool editable);
  const Table* table() const { return table_.get(); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 private:
  std::shared_ptr<Table> table_;
  long shown_revision_ = -1;
  bool editable_ = false;
  Edit edit_;
};

/// Tells the form what the user selects, sorts, copies and types over.
class TableControl : public QTableView {
  Q_OBJECT
 public:
  TableControl(std::string_view name, FormDialog& dialog);
  void Show(const ControlState& state);
  QSize sizeHint() const override;

 private:
  void SendSelection();
  void SortBy(int column);
  void SizeColumns();

  std::string_view name_;  ///< lives in the form's static table
  FormDialog& dialog_;
  TableModel* model_;
};

}  // namespace ormel
