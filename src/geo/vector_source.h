// Layers of points, lines and polygons in a file of another program, for reading only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "geo/features.h"

namespace ormel {

struct GeoExtent {
  double left = 0, bottom = 0, right = 0, top = 0;
};

struct VectorLayer {
  std::string name;
  GeometryKind kind = GeometryKind::kNone;
  bool has_z = false;
  std::vector<GeoField> fields;
  std::string crs_wkt;              ///< "" when the file does not say
  std::optional<GeoExtent> extent;  ///< in the layer's own coordinates
  std::int64_t count = -1;          ///< features; -1 when only reading could tell
};

/// Largest file that is opened, most points of one feature, most characters of one text.
inline constexpr unsigned long long kLargestVectorFile = 4ULL << 30U;
inline constexpr std::size_t kMostFeaturePoints = 5'000'000;
inline constexpr std::size_t kLongestFieldText = 1U << 16U;

/// An open file (for a file geodatabase: its folder).  An object belongs to one thread at a time.  Every
/// failure throws GeoError with file and layer.
class VectorSource {
 public:
  explicit VectorSource(const std::string& path);
  ~VectorSource();
  VectorSource(VectorSource&&) noexcept;
  VectorSource& operator=(VectorSource&&) noexcept;

  const std::string& path() const;
  /// The format in words: "GeoPackage".
  const std::string& format() const;
  const std::vector<VectorLayer>& layers() const;
  /// Place of a layer among them by its name without regard to case.  Throws GeoError naming those that there
  /// are.
  std::size_t Find(const std::string& layer) const;
  /// Hands out the features in the file's order until the file ends or `take` returns false.  With `within`
  /// only those that may touch it.
  void Read(std::size_t layer, const std::function<bool(GeoFeature&)>& take,
            const std::optional<GeoExtent>& within = std::nullopt) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Endings that a file dialog offers, as "*.shp;*.gpkg;..."
const char* VectorFilePatterns();

}  // namespace ormel
