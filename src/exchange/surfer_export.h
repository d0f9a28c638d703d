// Exports for mapping programs that read text grids and boundary lines (.GRD, .BLN), in map coordinates.
#pragma once

#include <string>

#include "exchange/vector_export.h"

namespace ormel {

/// The solver's grid with its two ranges in map coordinates; every other line as it is.  An older file stays
/// when that fails.  Throws FileError, also for a damaged grid.
void WriteSurferGrid(Ormel& ormel, const std::string& path);
/// Lines of a count and the flag 1, and their points; closed ones repeat their first point.  Wells are closed
/// boxes.  Throws FileError, ExportCancelled.
VectorReport WriteBoundaryLines(Ormel& ormel, VectorMode mode, const std::string& path);

/// The menu commands: dialog, file, boxes.  With a path only the question about an older file; false when
/// nothing was written.
void ToolsExportGrid(Ormel& ormel);
bool ToolsExportGrid(Ormel& ormel, const std::string& path);
void ToolsExportBLN(Ormel& ormel);
bool ToolsExportBLN(Ormel& ormel, VectorMode mode, const std::string& path);

/// The dialog of the grid.
class GridExport : public OkCancelForm {
 public:
  explicit GridExport(Ormel& ormel);
  std::string Title() const override { return "Export SURFER\u00ae Grid File"; }
  std::string_view Name() const override { return "GridExport"; }
  std::span<const ControlSpec> Controls() const override;
  int mode = 0;  ///< 0: heads, all that the solver grids

 private:
  bool Ok() override { return true; }
};

}  // namespace ormel
