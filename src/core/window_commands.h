// Commands that only a window can carry out: its own end, printing, the clipboard.  A program without a
// window has none, and their menu items are disabled there.
#pragma once

#include <string>

namespace ormel {

/// `PANEL`, by its index: the panels beside the map.
enum PanelItem : int { kPanelElements = 0, kPanelLayers = 1, kPanelProperties = 2, kPanelResults = 3 };

class WindowCommands {
 public:
  virtual ~WindowCommands() = default;

  /// Asks the main window to close; the stop sequence follows from its closing.
  virtual void Exit() = 0;
  virtual void FilePrintSetup() = 0;
  virtual void FilePrint() = 0;
  virtual void CopyImage() = 0;
  virtual void SaveMapAs() = 0;
  /// The text on the clipboard; empty when there is none.
  virtual std::string ClipboardText() { return {}; }
  /// Opens a text file of the program's folder, such as the release notes.
  virtual void ShowReleaseNotes() = 0;
  /// Shows a panel beside the map, or hides it.
  virtual void TogglePanel(int /*index*/) {}
};

}  // namespace ormel
