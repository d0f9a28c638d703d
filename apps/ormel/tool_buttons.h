// The toolbar, built from the shell's table.
#pragma once

#include <QToolBar>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace ormel {

struct Ormel;
struct ToolbarButton;

class ToolButtons : public QToolBar {
  Q_OBJECT
 public:
  /// `run` gets the key of a button that the user pressed.
  ToolButtons(Ormel& ormel, QWidget* parent, const std::function<void(std::string_view)>& run);

  void Refresh();
  QAction* Find(std::string_view key) const;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void ShowIcons();

  Ormel& ormel_;
  std::vector<std::pair<const ToolbarButton*, QAction*>> buttons_;
};

}  // namespace ormel
