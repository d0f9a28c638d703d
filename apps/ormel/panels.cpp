#include "ormel/panels.h"

#include <QByteArray>
#include <utility>

#include "core/ormel.h"
#include "core/settings.h"
#include "ormel/element_panel.h"
#include "ormel/layer_panel.h"
#include "ormel/property_panel.h"
#include "ormel/qt_text.h"
#include "ormel/results_panel.h"
#include "shell/results_log.h"

namespace ormel {
namespace {

constexpr int kNarrow = 900;      ///< pixels
constexpr int kFirstWidth = 350;  ///< of the panels at the right [pixels]
constexpr const char* kSetting = "Panels";
constexpr const char* kFoldedSetting = "PanelsOfWideWindow";

}  // namespace

Panels::Panels(const PanelHost& host, QMainWindow& window)
    : QObject(&window), ormel_(host.ormel), window_(window) {
  window.setDockOptions(QMainWindow::AllowTabbedDocks | QMainWindow::AllowNestedDocks |
                        QMainWindow::AnimatedDocks);
  window.setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
  window.setTabPosition(Qt::AllDockWidgetAreas, QTabWidget::North);
  Add(kPanelElements, "PanelElements", tr("Elements"), new ElementPanel(host, &window),
      Qt::RightDockWidgetArea);
  Add(kPanelLayers, "PanelLayers", tr("Layers"), new LayerPanel(host, &window), Qt::RightDockWidgetArea);
  Add(kPanelProperties, "PanelProperties", tr("Properties"), new PropertyPanel(host, &window),
      Qt::RightDockWidgetArea);
  Add(kPanelResults, "PanelResults", tr("Results and Log"), new ResultsPanel(host, &window),
      Qt::BottomDockWidgetArea);
  window.tabifyDockWidget(dock(kPanelElements), dock(kPanelLayers));
}

void Panels::Add(PanelItem /*item*/, const char* name, const QString& title, PanelWidget* panel,
                 Qt::DockWidgetArea area) {
  auto* dock = new QDockWidget(title, &window_);
  dock->setObjectName(QString::fromLatin1(name));
  dock->setWidget(panel);
  window_.addDockWidget(area, dock);
  dock->hide();
  docks_.push_back(dock);
  panels_.push_back(panel);
  connect(dock, &QDockWidget::visibilityChanged, this, [this, panel](bool shown) {
    if (shown) panel->Refresh();
    ShowInMenu();
    emit Changed();
  });
}

/// A dock behind another tab counts as shown.
void Panels::ShowInMenu() {
  for (std::size_t i = 0; i < docks_.size(); ++i) {
    const bool shown = !docks_[i]->isHidden();
    if (ormel_.menus.Checked("PANEL", static_cast<int>(i)) != shown)
      ormel_.menus.Check("PANEL", static_cast<int>(i), shown);
  }
}

void Panels::Toggle(int index) {
  QDockWidget* chosen = docks_.at(static_cast<std::size_t>(index));
  chosen->setVisible(chosen->isHidden());
  if (!chosen->isHidden()) chosen->raise();
  std::erase(folded_, chosen);
  ShowInMenu();
}

void Panels::Restore() {
  const std::string state = ormel_.settings().GetSetting(kSetting, "");
  const bool known =
      !state.empty() && window_.restoreState(QByteArray::fromBase64(ToQString(state).toLatin1()));
  if (known) {
    const std::string folded = ormel_.settings().GetSetting(kFoldedSetting, "");
    for (QDockWidget* dock : docks_)
      if (folded.find(dock->objectName().toStdString()) != std::string::npos) dock->show();
  } else {
    for (const PanelItem item : {kPanelElements, kPanelLayers}) dock(item)->show();
    dock(kPanelElements)->raise();
    window_.resizeDocks({dock(kPanelElements)}, {kFirstWidth}, Qt::Horizontal);
  }
  restored_ = true;
  Fit(window_.width());
  ShowInMenu();
}

void Panels::Save() {
  if (!restored_) return;
  std::string folded;
  for (const QDockWidget* dock : folded_) folded += dock->objectName().toStdString() + " ";
  ormel_.settings().SaveSetting(kSetting, window_.saveState().toBase64().toStdString());
  ormel_.settings().SaveSetting(kFoldedSetting, folded);
}

void Panels::Fit(int width) {
  const bool narrow = width < kNarrow;
  if (!restored_ || narrow == narrow_) return;
  narrow_ = narrow;
  if (!narrow) {
    for (QDockWidget* dock : std::exchange(folded_, {})) dock->show();
    return;
  }
  for (QDockWidget* dock : docks_) {
    if (dock->isHidden() || dock->isFloating()) continue;
    folded_.push_back(dock);
    dock->hide();
  }
}

void Panels::Refresh() {
  if (ormel_.command.depth > 0) return;  // half a command is nothing to show
  if (std::string key = ResultsKey(ormel_); key != results_key_) {
    results_key_ = std::move(key);
    for (PanelWidget* panel : panels_) panel->ResultsChanged();
  }
  for (PanelWidget* panel : panels_)
    if (panel->isVisible()) panel->Refresh();
}

}  // namespace ormel
