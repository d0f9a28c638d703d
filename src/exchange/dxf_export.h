// Export to DXF: contours, pathlines with their marks, capture zones, or elements.
#pragma once

#include <string>

#include "exchange/figures.h"
#include "exchange/vector_export.h"

namespace ormel {

/// Writes the file; an older one stays as it was when that fails.  Lines with fewer than two points and rings
/// with fewer than three are left out and counted.  Throws FileError, ExportCancelled.
VectorReport WriteDxf(Ormel& ormel, VectorMode mode, const TicSpacings& spacings, const std::string& path);

/// The menu command: dialog, file, boxes.
void ToolsExportDXF(Ormel& ormel);
/// The same for a file that is named, after the question about an older one; false when nothing was written.
bool ToolsExportDXF(Ormel& ormel, VectorMode mode, const TicSpacings& spacings, const std::string& path);

}  // namespace ormel
