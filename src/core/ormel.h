// The state of the running program, and nothing else.
//
// Procedures are free functions named by area and verb that take it as their first argument; each is declared
// in the header of the file that holds it.
#pragma once

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "core/changes.h"
#include "core/gui_options.h"
#include "core/layer_switches.h"
#include "core/map_window.h"
#include "core/menu_state.h"
#include "core/mouse_state.h"
#include "core/project_state.h"
#include "core/selection.h"
#include "core/solution_state.h"

namespace ormel {

class UserInterface;
class MapView;
class Solver;
class Processes;
class Settings;
class Clock;
class Publisher;
class WindowCommands;
class Document;

/// References to what stands outside; all of them outlive the controller.
struct Ports {
  UserInterface* ui = nullptr;
  MapView* view = nullptr;
  ormel::Solver* solver = nullptr;
  ormel::Processes* processes = nullptr;
  ormel::Settings* settings = nullptr;
  ormel::Clock* clock = nullptr;
  WindowCommands* window = nullptr;  ///< null in a program without a window
  Document* document = nullptr;      ///< null in a program that keeps no history
  Publisher* publisher = nullptr;    ///< null in a program that draws nothing
};

class Transaction;

/// The running command (core/command.h).
struct CommandState {
  CommandState();
  ~CommandState();
  int depth = 0;                             ///< open command wrappers
  std::string failed_procedure;              ///< innermost named procedure that an exception has left
  std::unique_ptr<Transaction> transaction;  ///< of the open project
};

struct Ormel {
  ProjectState project;
  MouseState mouse;
  Selection selection;
  MapWindow window;
  SolutionState solution;
  GuiOptions gui;
  MenuState menus;
  LayerSwitches layers;
  CommandState command;
  ChangeFeed changes;
  Ports ports;

  // Panels of the status bar as last written, for their reading form.
  std::string activity, feedback, note;
  /// What a form keeps between two uses, by the form's name; its type stands in the form's own header.
  std::map<std::string, std::any, std::less<>> form_memory;
  std::string StreamWell;  ///< well whose stream boundary is being entered, or "Multiple"

  UserInterface& ui() const { return *ports.ui; }
  MapView& view() const { return *ports.view; }
  ormel::Solver& solver() const { return *ports.solver; }
  ormel::Processes& processes() const { return *ports.processes; }
  ormel::Settings& settings() const { return *ports.settings; }
  ormel::Clock& clock() const { return *ports.clock; }
  /// The connection of the open project.  Throws std::logic_error while none is open.
  Database& db() const;
};

/// Name of the program as the caption shows it.
inline constexpr const char* kProgramTitle = "Ormel";
inline constexpr int kVersionMajor = 1, kVersionMinor = 0, kVersionRevision = 0;
/// "1.0.0"
std::string VersionText();

}  // namespace ormel
