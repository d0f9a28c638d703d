// The panels beside the map: what they have in common, and their place in the window.
#pragma once

#include <QDockWidget>
#include <QMainWindow>
#include <QObject>
#include <functional>
#include <vector>

#include "core/changes.h"
#include "core/window_commands.h"

namespace ormel {

struct Ormel;

/// What a panel needs of the window.
struct PanelHost {
  Ormel& ormel;
  std::function<bool()> idle;     ///< no command runs, and nothing is being placed or drawn
  std::function<void()> touched;  ///< the panel has changed something of the controller
};

class PanelWidget : public QWidget {
  Q_OBJECT
 public:
  PanelWidget(PanelHost host, QWidget* parent) : QWidget(parent), host_(std::move(host)) {}
  /// Shows what is, where it is not shown yet; called after everything that may have changed it, and cheap
  /// when nothing has.
  virtual void Refresh() = 0;
  /// The results on view are others than before.
  virtual void ResultsChanged() {}

 protected:
  Ormel& ormel() const { return host_.ormel; }
  bool Idle() const { return host_.idle(); }
  void Touched() const { host_.touched(); }

 private:
  PanelHost host_;
};

/// The docks.  Where they stand and which are shown is remembered; a window narrower than 900 pixels hides
/// them while it is so, and each can still be called.
class Panels : public QObject {
  Q_OBJECT
 public:
  Panels(const PanelHost& host, QMainWindow& window);

  QDockWidget* dock(PanelItem item) const { return docks_.at(static_cast<std::size_t>(item)); }
  PanelWidget* panel(PanelItem item) const { return panels_.at(static_cast<std::size_t>(item)); }
  void Toggle(int index);
  /// Places them as they were left, or as a first user finds them; once the window has its size.
  void Restore();
  void Save();
  /// The window has another width.
  void Fit(int width);
  void Refresh();

 signals:
  /// Panels were shown or hidden by their own buttons.
  void Changed();

 private:
  void Add(PanelItem item, const char* name, const QString& title, PanelWidget* panel,
           Qt::DockWidgetArea area);
  void ShowInMenu();

  Ormel& ormel_;
  QMainWindow& window_;
  std::vector<QDockWidget*> docks_;
  std::vector<PanelWidget*> panels_;
  std::vector<QDockWidget*> folded_;  ///< shown again by a wide window
  std::string results_key_;
  bool narrow_ = false, restored_ = false;
};

}  // namespace ormel
