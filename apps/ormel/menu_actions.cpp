#include "ormel/menu_actions.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <utility>

#include "core/ormel.h"
#include "ormel/qt_text.h"
#include "shell/menus.h"

namespace ormel {

MenuActions::MenuActions(Ormel& ormel, QMenuBar& bar, std::function<void(std::string_view, int)> run)
    : QObject(&bar), ormel_(ormel), run_(std::move(run)) {
  for (const MenuItem& item : MenuItems()) Add(item, bar);
}

QMenu* MenuActions::MenuOf(const MenuItem& item) const {
  for (const Entry& entry : entries_)
    if (entry.item->control == item.parent && entry.item->index == item.parent_index) return entry.submenu;
  return nullptr;
}

void MenuActions::Add(const MenuItem& item, QMenuBar& bar) {
  Entry entry;
  entry.item = &item;
  QMenu* parent = MenuOf(item);
  if (parent != nullptr && (item.flags & kSeparator) != 0) entry.line = parent->addSeparator();
  const QString caption = ToQString(item.caption);
  if (item.parent.empty() || HasSubmenu(item)) {
    entry.submenu = parent != nullptr ? parent->addMenu(caption) : bar.addMenu(caption);
    entry.submenu->setToolTipsVisible(true);
    entry.action = entry.submenu->menuAction();
    // The state of what stands in a menu may depend on what happened since: recent projects, selection.
    connect(entry.submenu, &QMenu::aboutToShow, this, &MenuActions::Refresh);
  } else {
    entry.action = parent->addAction(caption);
    entry.action->setCheckable((item.flags & kCheckable) != 0);
    if (!item.shortcut.empty())
      entry.action->setShortcuts(QKeySequence::listFromString(ToQString(item.shortcut)));
    connect(entry.action, &QAction::triggered, this, [this, &item] { run_(item.control, item.index); });
  }
  entries_.push_back(entry);
}

void MenuActions::Show(const Entry& entry) {
  const MenuItem& item = *entry.item;
  const QString caption = ToQString(ItemCaption(ormel_, item));
  QAction& action = *entry.action;
  action.setText(caption);
  action.setVisible(!caption.isEmpty());
  if (entry.line != nullptr) entry.line->setVisible(!caption.isEmpty());
  action.setEnabled(ItemEnabled(ormel_, item));
  action.setToolTip(ToQString(ItemTip(ormel_, item)));
  if (action.isCheckable()) action.setChecked(ItemChecked(ormel_, item));
}

void MenuActions::Refresh() {
  for (const Entry& entry : entries_) Show(entry);
}

QAction* MenuActions::Find(std::string_view control, int index) const {
  for (const Entry& entry : entries_)
    if (entry.item->control == control && entry.item->index == index) return entry.action;
  return nullptr;
}

}  // namespace ormel
