// The elements of the project in a tree by kind.
#pragma once

#include <QAbstractItemModel>
#include <QLineEdit>
#include <QTreeView>
#include <unordered_map>
#include <vector>

#include "document/element_list.h"
#include "ormel/panels.h"

namespace ormel {

/// Kinds at the top, their elements below; hands out the cells that are in view.
class ElementModel : public QAbstractItemModel {
  Q_OBJECT
 public:
  ElementModel(Ormel& ormel, QObject* parent);

  ElementList& list() { return list_; }
  /// Takes what has changed; true when anything was.
  bool Follow();
  /// kNone in the row of a kind.
  ElementId IdAt(const QModelIndex& index) const;
  QModelIndex IndexOf(const ElementId& id) const;
  Element KindAt(int row) const { return groups_->at(static_cast<std::size_t>(row)).element; }

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 private:
  const ElementGroup& GroupAt(int row) const { return groups_->at(static_cast<std::size_t>(row)); }

  ElementList list_;
  const std::vector<ElementGroup>* groups_;
  std::map<ElementId, std::pair<int, int>> places_;  ///< row of the kind, row within it
  long shown_ = -1;
};

class ElementPanel : public PanelWidget {
  Q_OBJECT
 public:
  ElementPanel(const PanelHost& host, QWidget* parent);
  void Refresh() override;
  void ResultsChanged() override;

  QTreeView& tree() { return *tree_; }
  QLineEdit& search() { return *search_; }
  ElementModel& model() { return *model_; }

 private:
  void ShowSelection();
  void TakeSelection();
  void Edit(const QModelIndex& index);
  void ShowMenu(QPoint at);

  ElementModel* model_;
  QLineEdit* search_;
  QTreeView* tree_;
  std::vector<ElementId> selected_;
  std::map<Element, bool> closed_;  ///< kinds that the user has folded
  bool showing_ = false;
};

}  // namespace ormel
