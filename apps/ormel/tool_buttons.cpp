#include "ormel/tool_buttons.h"

#include <QAction>
#include <QEvent>

#include "core/layers.h"
#include "core/ormel.h"
#include "ormel/icons.h"
#include "ormel/qt_text.h"
#include "shell/menus.h"

namespace ormel {
namespace {

constexpr int kIconSize = 24;

/// The tip with the shortcut of the item that the button stands for.
QString TipOf(const ToolbarButton& button) {
  QString tip = ToQString(button.tip);
  const MenuItem* item = button.control.empty() ? nullptr : FindMenuItem(button.control, button.index);
  if (item == nullptr || item->shortcut.empty()) return tip;
  return QStringLiteral("%1 (%2)").arg(tip, ToQString(item->shortcut));
}

}  // namespace

ToolButtons::ToolButtons(Ormel& ormel, QWidget* parent, const std::function<void(std::string_view)>& run)
    : QToolBar(tr("Toolbar"), parent), ormel_(ormel) {
  setObjectName(QStringLiteral("Toolbar1"));
  setIconSize(QSize(kIconSize, kIconSize));
  setMovable(false);
  setContextMenuPolicy(Qt::PreventContextMenu);
  for (const ToolbarButton& button : ToolbarButtons()) {
    if ((button.flags & kSeparator) != 0) addSeparator();
    QAction* action = addAction(ToQString(button.tip));
    connect(action, &QAction::triggered, this, [run, &button] { run(button.key); });
    buttons_.emplace_back(&button, action);
  }
  ShowIcons();
}

void ToolButtons::ShowIcons() {
  for (const auto& [button, action] : buttons_) action->setIcon(ToolIcon(button->icon, palette()));
}

void ToolButtons::changeEvent(QEvent* event) {
  QToolBar::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ShowIcons();
}

void ToolButtons::Refresh() {
  setVisible(ormel_.layers.On(Layer::kToolbar));
  for (const auto& [button, action] : buttons_) {
    action->setEnabled(ButtonEnabled(ormel_, *button));
    const MenuItem* item = FindMenuItem(button->control, button->index);
    const std::string_view missing = item == nullptr ? std::string_view() : ItemTip(ormel_, *item);
    const QString tip = TipOf(*button);
    action->setToolTip(missing.empty() ? tip : tip + QStringLiteral(" - ") + ToQString(missing));
  }
}

QAction* ToolButtons::Find(std::string_view key) const {
  for (const auto& [button, action] : buttons_)
    if (button->key == key) return action;
  return nullptr;
}

}  // namespace ormel
