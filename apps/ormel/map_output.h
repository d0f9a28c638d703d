// The map on paper, in a picture file and on the clipboard.
#pragma once

#include <memory>

class QPrinter;

namespace ormel {

struct Ormel;
class MainWindow;

class MapOutput {
 public:
  MapOutput(Ormel& ormel, MainWindow& window);
  ~MapOutput();

  /// The dialog of margins and paper.
  void PrintSetup();
  /// Asks for a printer and prints the window's part of the map.
  void Print();
  /// Asks for a name and for what stands beside the map, and writes PNG, SVG or PDF.
  void SaveAs();
  /// The picture on the screen, with the shapes above it.
  void Copy();

 private:
  QPrinter& Printer();

  Ormel& ormel_;
  MainWindow& window_;
  std::unique_ptr<QPrinter> printer_;  ///< keeps the user's choices between two prints
};

}  // namespace ormel
