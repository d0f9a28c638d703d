// What the last solve gave, and what the solver said.
#pragma once

#include <QTreeWidget>

#include "ormel/panels.h"
#include "shell/results_log.h"

namespace ormel {

class ResultsPanel : public PanelWidget {
  Q_OBJECT
 public:
  ResultsPanel(const PanelHost& host, QWidget* parent);
  void Refresh() override;
  void ResultsChanged() override { outdated_ = true; }
  QTreeWidget& tree() { return *tree_; }

 private:
  void AddSection(const LogSection& section);

  QTreeWidget* tree_;
  std::vector<NamedElement> places_;
  bool outdated_ = true;
};

}  // namespace ormel
