// The layers of the map with their switches and symbols.
#pragma once

#include <QTreeWidget>
#include <optional>
#include <vector>

#include "ormel/panels.h"
#include "shell/layer_list.h"

namespace ormel {

class LayerPanel : public PanelWidget {
  Q_OBJECT
 public:
  LayerPanel(const PanelHost& host, QWidget* parent);
  void Refresh() override;
  QTreeWidget& tree() { return *tree_; }

 private:
  void Build(const std::vector<ListedLayer>& layers);
  void Show(QTreeWidgetItem& item, const ListedLayer& layer) const;
  QIcon SymbolOf(StyleId id);

  QTreeWidget* tree_;
  std::vector<QTreeWidgetItem*> items_;
  bool showing_ = false;
};

}  // namespace ormel
