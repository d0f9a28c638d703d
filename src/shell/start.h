// Start and stop of the program, and the placement of its window between runs.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace ormel {

struct Ormel;

/// The main window's place in twips (1/1440 inch; 15 to a pixel at 96 pixels an inch).
struct Placement {
  double Top = 0.0, Left = 0.0, Width = 6400.0, Height = 6400.0;
  bool Toolbar = true;
  bool Maximized = false;  ///< the numbers are then those of the window when it is not
  bool First = false;      ///< nothing is stored yet: a window may choose a size that suits its screen
};

Placement ReadPlacement(const Ormel& ormel);
void SavePlacement(Ormel& ormel, const Placement& placement);

/// What only the window can do at start.
struct StartSteps {
  std::function<void(const Placement&)> place;
  std::function<void()> show;
};

/// From the start of the program to a usable window.  A command line that is not empty is, as a whole, the
/// path of a project.
void Form_Load(Ormel& ormel, const std::string& command_line, const StartSteps& steps);

/// The end: saves the placement (nothing for a minimised window) and closes the project.
void Form_Unload(Ormel& ormel, const std::optional<Placement>& placement);

}  // namespace ormel
