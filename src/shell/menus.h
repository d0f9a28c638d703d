// Every menu item and toolbar button of the program, as tables.
//
// The window builds its menus, shortcuts and toolbar from them and hands each click to Dispatch; nothing else
// of the program knows where an item stands.  A command that this version does not have keeps its place: it
// is disabled and its tip says so.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace ormel {

struct Ormel;

/// Properties of an item; added up in `MenuItem::flags`.
enum MenuFlag : unsigned {
  kPlain = 0,
  kNeedsProject = 1,    ///< disabled while no project is open
  kCheckable = 2,       ///< shows the check mark of MenuState
  kSeparator = 4,       ///< a line stands above it
  kNeedsWindow = 8,     ///< done by the window (core/window_commands.h)
  kNeedsSolution = 16,  ///< disabled while there is no valid solution
};

using MenuCommand = void (*)(Ormel&, int index);

struct MenuItem {
  std::string_view control{};  ///< name of the control; also of the procedure: <control>_Click
  int index = 0;               ///< in the control's array; 0 for a control without one
  std::string_view caption{};  ///< with "&" before its mnemonic; "" for that of the layer that it switches
  std::string_view parent{};   ///< control of the item whose submenu it is in; "" for a top menu
  int parent_index = 0;
  unsigned flags = kPlain;
  std::string_view shortcut{};  ///< "Ctrl+N"; several with "; " between them
  MenuCommand run = nullptr;    ///< null for a submenu, and for a command that this version does not have
};

struct ToolbarButton {
  std::string_view key{};
  std::string_view tip{};
  std::string_view icon{};     ///< name of the drawing, without folder and extension
  std::string_view control{};  ///< the menu item it stands for: same command, same enabled state; may be ""
  int index = 0;
  unsigned flags = kPlain;
  MenuCommand run = nullptr;  ///< where `control` is empty
};

/// Top menus first, each item behind its parent, in the order of the screen.
std::span<const MenuItem> MenuItems();
std::span<const ToolbarButton> ToolbarButtons();

const MenuItem* FindMenuItem(std::string_view control, int index = 0);
const ToolbarButton* FindToolbarButton(std::string_view key);
/// True when other items stand in its submenu.
bool HasSubmenu(const MenuItem& item);

/// The caption as shown; that of a recent project depends on the settings, and is empty when there is none.
std::string ItemCaption(const Ormel& ormel, const MenuItem& item);
/// Why the command rests, "not available in this version" for one that is missing; empty when it can be
/// given.
std::string_view ItemTip(const Ormel& ormel, const MenuItem& item);
/// By the table, the state that procedures have set, the project, and the menus above it.
bool ItemEnabled(const Ormel& ormel, const MenuItem& item);
/// A layer's item follows its switch.
bool ItemChecked(const Ormel& ormel, const MenuItem& item);
bool ButtonEnabled(const Ormel& ormel, const ToolbarButton& button);

/// Runs the command of an item, with the failure policy.  False when there is no such item, or it is
/// disabled: nothing happens then.
bool Dispatch(Ormel& ormel, std::string_view control, int index = 0);
bool DispatchButton(Ormel& ormel, std::string_view key);

}  // namespace ormel
