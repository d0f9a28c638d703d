#include "shell/export_geopackage.h"

#include <filesystem>

#include "core/command.h"
#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "exchange/geopackage_export.h"
#include "geo/geo_error.h"
#include "text/files.h"
#include "view/whpa_drawing.h"

namespace ormel {
namespace {

constexpr std::string_view kPathKey = "Default Export GeoPackage path";
constexpr std::string_view kTitle = "Export GeoPackage";

}  // namespace

ExportOutcome WriteGeoPackage(Ormel& ormel, const std::string& path, double time_tics,
                              double elevation_tics) {
  GeoPackageExport request{path, time_tics, elevation_tics, {}};
  for (const WhpaCircle& circle : WhpaCircles(ormel))
    request.circles.push_back({circle.well, static_cast<int>(circle.type), circle.centre, circle.radius});
  return ExportGeoPackage(ormel, request);
}

void ToolsExportGeoPackage(Ormel& ormel) {
  const Named named(ormel, "ToolsExportGeoPackage");
  FileDialog dialog;
  dialog.save = true;
  dialog.title = kTitle;
  dialog.filter = "GeoPackage (*.gpkg)|*.gpkg";
  dialog.default_extension = "gpkg";
  dialog.directory = ReadDefaultDirectory(ormel, kPathKey);
  const std::optional<std::string> path = ormel.ui().Ask(dialog);
  if (!path || path->empty()) return;
  WriteDefaultDirectory(ormel, kPathKey, std::filesystem::path(*path).parent_path().string());
  try {
    ExportOutcome outcome;
    {
      const PleaseWait wait(ormel, "Writing layers...");
      outcome =
          WriteGeoPackage(ormel, *path, ormel.solution.TimeTicSpacing, ormel.solution.ElevationTicSpacing);
    }
    Inform(ormel, kTitle, outcome.Text(), Icon::kInformation);
  } catch (const GeoError& error) {
    Inform(ormel, kTitle, error.what(), Icon::kWarning);
  } catch (const FileError& error) {
    Inform(ormel, kTitle, error.what(), Icon::kWarning);
  }
}

}  // namespace ormel
