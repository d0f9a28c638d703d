// The main window: menus, toolbar, status bar and the map.
#pragma once

#include <QMainWindow>
#include <memory>
#include <optional>
#include <tuple>

#include "core/window_commands.h"
#include "ormel/map_widget.h"
#include "shell/start.h"

namespace ormel {

class MapExport;
class MenuActions;
class Panels;
class QtInterface;
class StatusPanels;
class ToolButtons;

class MainWindow : public QMainWindow, public WindowCommands {
  Q_OBJECT
 public:
  MainWindow(Ormel& ormel, QtInterface& ui);
  ~MainWindow() override;

  /// The view that draws on the map; outlives the window's last event.  The controller has its ports by now.
  void SetView(MapViewImpl& view);
  MapWidget& map() { return *map_; }
  MapViewImpl& view() { return *view_; }
  MenuActions& menus() { return *menu_actions_; }
  ToolButtons& toolbar() { return *toolbar_; }
  StatusPanels& panels() { return *panels_; }
  Panels& beside() { return *beside_; }

  void Place(const Placement& placement);
  /// Nothing while the window is minimised.
  std::optional<Placement> PresentPlacement() const;
  /// Places the panels beside the map, once the window has its size.
  void PlacePanels();
  /// Shows the state of menus, toolbar and panels if it has changed.
  void Refresh();

  // WindowCommands
  void Exit() override;
  void FilePrintSetup() override;
  void FilePrint() override;
  void CopyImage() override;
  std::string ClipboardText() override;
  void SaveMapAs() override;
  void ShowReleaseNotes() override;
  void TogglePanel(int index) override;

  /// The system asks the program to end: a run is cancelled first, without a question.
  void EndByRequest();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  bool Busy() const;
  void AskWhileBusy();
  void StopAndClose();
  void ShowAll();
  void OpenDropped(const QString& path);

  using Shown = std::tuple<long, LayerSwitches, bool, bool>;
  Shown Present() const;

  Ormel& ormel_;
  QtInterface& ui_;
  MapViewImpl* view_ = nullptr;
  MapWidget* map_;
  StatusPanels* panels_;
  Panels* beside_ = nullptr;
  ToolButtons* toolbar_ = nullptr;
  MenuActions* menu_actions_ = nullptr;
  std::unique_ptr<MapExport> output_;
  std::optional<Shown> shown_;
  bool close_after_wait_ = false;
};

}  // namespace ormel
