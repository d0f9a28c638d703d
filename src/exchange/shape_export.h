// Export to shapefiles: elements and results with one column of attributes each.
//
// A set of .shp, .shx, .dbf and .cpg (UTF-8), and a .prj when the project's coordinate reference system is
// given.  Rings are closed and run clockwise.  What has too few points for its kind is left out and counted.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "core/form.h"
#include "exchange/figures.h"
#include "exchange/shapes.h"
#include "model/dialog.h"

namespace ormel {

/// One kind of shapefile.
struct ShapeKind {
  int index;              ///< of the command; of tics that of their paths
  std::string_view word;  ///< its name in scripts
  Source source;
  std::string_view title, suffix, key;
  ShapeType type;
  std::string_view column;
  std::string_view prefix;   ///< of each value
  std::string_view failure;  ///< first words of the box of a failure
};
std::span<const ShapeKind> ShapeKinds();
const ShapeKind* FindShapeKind(std::string_view word);

struct ShapeOptions {
  TicSpacings spacings;
  bool test_points = false, particles = false;  ///< with the wells
  std::string prj{};  ///< WKT in the form that .prj files have; empty: the project's, where it is known
};

struct ShapeReport {
  std::size_t written = 0, left_out = 0;
};

/// Writes one shapefile; an older one stays as it was when that fails.  Throws FileError, ShapeError,
/// ExportCancelled.
ShapeReport WriteShapes(Ormel& ormel, const ShapeKind& kind, const ShapeOptions& options,
                        const std::string& path);

/// The dialog of the menu command.
class ExportShapefile : public OkCancelForm {
 public:
  explicit ExportShapefile(Ormel& ormel);
  std::string Title() const override { return "Export to Shapefile Dialog"; }
  std::string_view Name() const override { return "ExportShapefile"; }
  std::span<const ControlSpec> Controls() const override;

  int Index = 0;  ///< of the option chosen
  bool ExportTics = false, ExportTestPoints = false, ExportParticles = false;

 private:
  bool Ok() override;
};

/// The menu command: dialog, files, boxes.
void ExportShapefiles(Ormel& ormel);
/// One arm with its file dialogs.  A failure of one file is told and leaves the others.
void ToolsExportShape(Ormel& ormel, int index, bool tics, const ShapeOptions& options);

}  // namespace ormel
