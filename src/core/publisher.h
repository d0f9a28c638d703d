// Pictures and paged documents, for those who have no toolkit: reports, and charts in files.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/types.h"

namespace ormel {

struct Chart;

/// A picture inside a document: its size on paper at 96 dots an inch, and how much finer its pixels are.
struct PictureShape {
  int width = 640, height = 480;
  double fineness = 2.0;
};

/// Paper and margins of a document [mm], and the line at the foot of each page.
struct PageStyle {
  std::string paper = "A4";  ///< "A4", "A3", "Letter", "Legal"
  bool landscape = false;
  double margin = 18.0;
  std::string foot{};  ///< left; the number of the page stands at the right
};

class Publisher {
 public:
  virtual ~Publisher() = default;

  /// A chart as the bytes of a PNG file; empty when there is not enough memory.
  virtual std::string ChartPng(const Chart& chart, const PictureShape& shape) = 0;
  /// The map's layers in a window (none: the present one) with legend, scale bar and north arrow, as the
  /// bytes of a PNG file; empty when there is no room to draw on.
  virtual std::string MapPng(const PictureShape& shape, const std::optional<MapRect>& window) = 0;
  /// Writes a chart into a file whose extension (.png, .svg, .pdf) tells the kind.  Gives an empty text, or
  /// the sentence that tells what failed and what to do.
  virtual std::string SaveChart(const Chart& chart, const std::string& path) = 0;
  /// Lays out a document of HTML (tables with repeated heads, pictures as data inside it) and writes it as
  /// PDF.  `go_on` gets the part done, 0 to 1, and stops the work by false: no file is left then, and the
  /// text given is empty.  Otherwise as SaveChart.
  virtual std::string SavePdf(const std::string& html, const PageStyle& style, const std::string& path,
                              const std::function<bool(double)>& go_on) = 0;
};

}  // namespace ormel
