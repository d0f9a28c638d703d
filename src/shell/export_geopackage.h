// Menu "Export GeoPackage...".
#pragma once

#include <string>

namespace ormel {

struct Ormel;
struct ExportOutcome;

/// Writes the project with the marks that are switched on, or with the spacings given [d, computation
/// length].  Throws GeoError.
ExportOutcome WriteGeoPackage(Ormel& ormel, const std::string& path, double time_tics, double elevation_tics);
/// Asks for the file, writes it and tells what it holds.
void ToolsExportGeoPackage(Ormel& ormel);

}  // namespace ormel
