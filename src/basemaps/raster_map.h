// A georeferenced image as a base map: read in tiles at the resolution of the view, the last ones kept.
#pragma once

#include <array>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "core/pixels.h"
#include "core/types.h"
#include "geo/raster_source.h"

namespace ormel {

/// What the tiles of one image may take [bytes].
inline constexpr std::size_t kRasterCache = std::size_t{96} << 20U;

class RasterMap {
 public:
  /// Opens the file.  Throws GeoError.
  explicit RasterMap(const std::string& path);

  const RasterInfo& info() const { return source_.info(); }
  /// False for an image that nothing tells the place of: it lies at the origin, a pixel a map unit.
  bool georeferenced() const { return georeferenced_; }
  const std::array<double, 6>& geotransform() const { return transform_; }
  Extents bounds() const;

  /// A part of the image, as its pixels are shown.
  struct Part {
    std::shared_ptr<const Pixels> pixels;
    MapPoint upper_left, upper_right, lower_left;  ///< corners on the map
  };
  /// What the view shows, with pixels of the size of the view's or up to twice as fine; nothing when it lies
  /// beside.  The same part again comes as the same object.  Throws GeoError.
  std::optional<Part> Read(const Extents& view, double pixel);
  std::size_t cached_bytes() const { return cached_; }

 private:
  using Key = std::tuple<int, int, int>;  ///< halvings, column, row
  struct Tile {
    Pixels pixels;
    std::list<Key>::iterator used;
  };
  /// Pixels of the image that the view covers; of no size when it lies beside.
  PixelWindow Seen(const Extents& view) const;
  const Tile& TileOf(const Key& key);
  void Compose(const PixelWindow& seen, int halvings);
  MapPoint Place(double column, double row) const;

  RasterSource source_;
  std::array<double, 6> transform_{};
  bool georeferenced_ = true;
  std::map<Key, Tile> tiles_;
  std::list<Key> order_;  ///< the last used first
  std::size_t cached_ = 0;
  std::tuple<int, int, int, int, int> shown_of_{-1, 0, 0, 0, 0};
  Part shown_;
};

}  // namespace ormel
