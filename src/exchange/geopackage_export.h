// The project and its results as layers of one GeoPackage.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// A protection area that is a circle.
struct ExportedCircle {
  std::string well;
  int type = 0;  ///< `WHPAs.Type`
  MapPoint centre;
  double radius = 0.0;  ///< [map units]
};

struct GeoPackageExport {
  std::string path;
  double time_tics = 0.0;       ///< spacing of marks along the whole paths [d]; 0 for none
  double elevation_tics = 0.0;  ///< [computation length]
  std::vector<ExportedCircle> circles;
};

struct ExportOutcome {
  std::vector<std::pair<std::string, std::size_t>> layers;  ///< name and features of those that hold any
  bool cancelled = false;                                   ///< no file was written
  std::vector<std::string> remarks;
  std::string Text() const;
};

/// Elements with all their fields; of a valid solution its results, contours, pathlines and marks.  A layer
/// without a feature is not made.  Throws GeoError; an older file of that name stays until the new one is
/// whole.
ExportOutcome ExportGeoPackage(Ormel& ormel, const GeoPackageExport& request);

}  // namespace ormel
