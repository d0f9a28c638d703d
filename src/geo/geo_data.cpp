#include "geo/geo_data.h"

#include <cpl_conv.h>
#include <ogr_srs_api.h>

#include <filesystem>

namespace ormel {

void UseGeoData(const std::string& folder) {
  const std::filesystem::path proj = std::filesystem::path(folder) / "proj";
  const std::filesystem::path gdal = std::filesystem::path(folder) / "gdal";
  std::error_code failure;
  if (std::filesystem::exists(proj / "proj.db", failure)) {
    const std::string text = proj.string();
    const char* const paths[] = {text.c_str(), nullptr};
    OSRSetPROJSearchPaths(paths);
  }
  if (std::filesystem::is_directory(gdal, failure)) CPLSetConfigOption("GDAL_DATA", gdal.string().c_str());
}

}  // namespace ormel
