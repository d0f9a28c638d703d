// Writes layers into a GeoPackage.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "geo/crs.h"
#include "geo/features.h"
#include "geo/layer_style.h"

namespace ormel {

struct NewLayer {
  std::string name;   ///< of the table; must not be there yet
  std::string title;  ///< what a GIS shows beside it
  GeometryKind kind = GeometryKind::kPoint;
  bool multi = false;  ///< features of several lines or polygons
  bool has_z = false;
  bool has_m = false;  ///< with elevations only
  std::vector<GeoField> fields{};
  std::optional<LayerStyle> style{};
};

/// The file is written beside its name and takes it with Commit(); without that nothing is left and an older
/// file stays as it was.  Every failure throws GeoError with file and layer.
class GeoPackageWriter {
 public:
  /// `crs`: of all layers; without it the file says "undefined Cartesian".
  GeoPackageWriter(const std::string& path, const std::optional<Crs>& crs);
  ~GeoPackageWriter();
  GeoPackageWriter(GeoPackageWriter&&) noexcept;
  GeoPackageWriter& operator=(GeoPackageWriter&&) noexcept;

  /// Begins a layer; the features that follow go to it.
  void Layer(const NewLayer& layer);
  /// A feature of the present layer: parts of the layer's kind (a polygon's holes follow its outer ring), and
  /// a value for each field.  `id` is not used: the file numbers them.
  void Add(const GeoFeature& feature);
  void Commit();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace ormel
