// A picture or grid of another program, for reading only, a window at a time at the resolution that is
// needed.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ormel {

/// Largest file that is opened; most pixels that one read gives; most bytes of one block of the file.
inline constexpr unsigned long long kLargestRasterFile = 64ULL << 30U;
inline constexpr std::size_t kMostPixelsRead = std::size_t{64} << 20U;
inline constexpr std::size_t kLargestBlock = std::size_t{256} << 20U;

struct RasterBand {
  std::string type;                ///< "Byte", "Float32", ...
  std::string meaning;             ///< "Red", "Gray", "Palette", "Alpha", ...; "Undefined" when not told
  std::optional<double> no_value;  ///< the number that stands for none
};

struct RasterInfo {
  int width = 0, height = 0;  ///< pixels
  std::vector<RasterBand> bands;
  /// x = g[0] + column g[1] + row g[2], y = g[3] + column g[4] + row g[5]; columns and rows from the upper
  /// left corner of the upper left pixel.  Of the file or of a world file beside it.
  std::optional<std::array<double, 6>> geotransform;
  std::string crs_wkt;                               ///< "" when the file does not say
  std::vector<std::array<std::uint8_t, 4>> palette;  ///< red, green, blue, alpha; empty without one
  struct Size {
    int width = 0, height = 0;
  };
  std::vector<Size> overviews;  ///< reduced pictures that the file brings along
  std::string format;           ///< in words
};

/// A part of the picture in whole pixels.
struct PixelWindow {
  int column = 0, row = 0, width = 0, height = 0;
};

/// An open file.  An object belongs to one thread at a time.  Every failure throws GeoError with the file.
class RasterSource {
 public:
  explicit RasterSource(const std::string& path);
  ~RasterSource();
  RasterSource(RasterSource&&) noexcept;
  RasterSource& operator=(RasterSource&&) noexcept;

  const std::string& path() const;
  const RasterInfo& info() const;
  /// Red, green, blue, alpha of `width` by `height` pixels, rows from the top, that show the window; from the
  /// file's overviews where they do.  Palettes are looked up, missing values transparent.  Values that are
  /// not bytes are stretched from their least to their greatest.  The window must lie within the picture.
  std::vector<std::uint8_t> ReadRgba(const PixelWindow& window, int width, int height) const;
  /// Values of a band (from 1), NaN where there are none.
  std::vector<double> ReadValues(int band, const PixelWindow& window, int width, int height) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Endings that a file dialog offers, as "*.tif;*.png;..."
const char* RasterFilePatterns();

}  // namespace ormel
