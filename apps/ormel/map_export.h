// The map on paper, in a picture file and on the clipboard.
#pragma once

#include <memory>
#include <string>

#include "view/map_output.h"

class QPrinter;

namespace ormel {

struct Ormel;
class MainWindow;

/// What stands beside the map; kept from one output to the next.
struct MapExtras {
  std::string title;
  bool legend = true, scale_bar = true, north_arrow = true;
  LegendCorner legend_corner = LegendCorner::kAuto;
};

class MapExport {
 public:
  MapExport(Ormel& ormel, MainWindow& window);
  ~MapExport();

  /// The dialog of margins, paper and what stands beside the map.
  void PrintSetup();
  /// Asks for a printer and prints the window's part of the map.
  void Print();
  /// Prints without a question; false when the printer refused.
  bool PrintOn(QPrinter& printer);
  /// Asks for a name and for what stands beside the map, and writes PNG, SVG or PDF.
  void SaveAs();
  /// Puts the picture on the screen, with the shapes above it, on the clipboard.
  void Copy();

 private:
  QPrinter& Printer();
  /// The choices of an earlier run; the title belongs to a project and is not among them.
  void ReadChoices();
  void SaveChoices();
  bool MayWrite(const std::string& path);

  Ormel& ormel_;
  MainWindow& window_;
  std::unique_ptr<QPrinter> printer_;  ///< keeps the user's choices between two prints
  MapExtras extras_;
  bool choices_read_ = false, landscape_ = true;
  int width_ = 1600, dpi_ = 96;  ///< of a picture file
};

}  // namespace ormel
