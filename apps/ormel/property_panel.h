// The properties of the selected elements, changed in place.
#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <vector>

#include "core/changes.h"
#include "ormel/form_controls.h"
#include "ormel/panels.h"
#include "tools/property_sheet.h"

namespace ormel {

class PropertyPanel : public PanelWidget, public ChangeListener {
  Q_OBJECT
 public:
  PropertyPanel(const PanelHost& host, QWidget* parent);
  ~PropertyPanel() override;
  void Refresh() override;
  void CommandEnded(const ChangeRecord& record) override;
  /// The widget in which a property is edited, by the name of its field.
  QWidget* Editor(const QString& property) const;

 private:
  void Build();
  void ShowRows();
  QWidget* MakeEditor(std::size_t row, const SheetRow& sheet_row);
  void Set(std::size_t row, const QString& text);

  PropertySheet sheet_;
  QLabel* title_;
  QScrollArea* area_;
  std::vector<QWidget*> editors_;
  std::vector<std::string> built_;  ///< the names of the rows that there are widgets for
  std::vector<ElementId> shown_;
  bool outdated_ = true, setting_ = false;
};

}  // namespace ormel
