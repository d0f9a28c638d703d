#include "geo/raster_source.h"

#include <cpl_conv.h>
#include <gdal.h>
#include <ogr_srs_api.h>
#include <algorithm>
#include <cmath>
#include <limits>

#include "geo/gdal_room.h"
#include "geo/geo_error.h"

namespace ormel {
namespace {

using geo_detail::Messages;

constexpr int kMostBands = 64;
constexpr std::size_t kMostPaletteEntries = 65536;

std::uint8_t Byte(int value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

std::vector<std::array<std::uint8_t, 4>> PaletteOf(GDALRasterBandH band) {
  std::vector<std::array<std::uint8_t, 4>> palette;
  GDALColorTableH table = GDALGetRasterColorTable(band);
  if (table == nullptr) return palette;
  const int count = std::min(GDALGetColorEntryCount(table), static_cast<int>(kMostPaletteEntries));
  for (int i = 0; i < count; ++i) {
    GDALColorEntry entry{};
    GDALGetColorEntryAsRGB(table, i, &entry);
    palette.push_back({Byte(entry.c1), Byte(entry.c2), Byte(entry.c3), Byte(entry.c4)});
  }
  return palette;
}

std::string WktOf(GDALDatasetH data) {
  OGRSpatialReferenceH system = GDALGetSpatialRef(data);
  if (system == nullptr) return "";
  const char* options[] = {"FORMAT=WKT2_2018", nullptr};
  char* text = nullptr;
  std::string result;
  if (OSRExportToWktEx(system, &text, options) == OGRERR_NONE && text != nullptr) result = text;
  CPLFree(text);
  return result;
}

RasterInfo Described(GDALDatasetH data) {
  RasterInfo info;
  info.width = GDALGetRasterXSize(data);
  info.height = GDALGetRasterYSize(data);
  info.format = GDALGetDriverLongName(GDALGetDatasetDriver(data));
  for (int i = 1; i <= std::min(GDALGetRasterCount(data), kMostBands); ++i) {
    GDALRasterBandH band = GDALGetRasterBand(data, i);
    RasterBand known;
    known.type = GDALGetDataTypeName(GDALGetRasterDataType(band));
    known.meaning = GDALGetColorInterpretationName(GDALGetRasterColorInterpretation(band));
    int has = 0;
    const double none = GDALGetRasterNoDataValue(band, &has);
    if (has != 0) known.no_value = none;
    info.bands.push_back(known);
  }
  std::array<double, 6> transform{};
  if (GDALGetGeoTransform(data, transform.data()) == CE_None) info.geotransform = transform;
  info.crs_wkt = WktOf(data);
  GDALRasterBandH first = GDALGetRasterBand(data, 1);
  info.palette = PaletteOf(first);
  for (int i = 0; i < GDALGetOverviewCount(first); ++i) {
    GDALRasterBandH overview = GDALGetOverview(first, i);
    if (overview == nullptr) continue;
    info.overviews.push_back({GDALGetRasterBandXSize(overview), GDALGetRasterBandYSize(overview)});
  }
  return info;
}

bool IsByte(GDALRasterBandH band) {
  return GDALGetRasterDataType(band) == GDT_Byte;
}

}  // namespace

struct RasterSource::Impl {
  std::string path;
  GDALDatasetH data = nullptr;
  RasterInfo info;
  mutable std::vector<std::optional<std::array<double, 2>>>
      ranges;  // least and greatest of each band, once known

  Impl() = default;
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
  ~Impl() {
    const Messages quiet;
    if (data != nullptr) GDALClose(data);
  }

  void Check(const PixelWindow& w, int width, int height) const {
    const bool inside = w.column >= 0 && w.row >= 0 && w.width > 0 && w.height > 0 &&
                        w.width <= info.width - w.column && w.height <= info.height - w.row;
    if (!inside) throw GeoError("A part outside of the picture was asked for.", path);
    if (width <= 0 || height <= 0 ||
        static_cast<std::size_t>(width) * static_cast<std::size_t>(height) > kMostPixelsRead) {
      throw GeoError("More pixels were asked for than one read gives.", path);
    }
  }

  void Read(GDALRasterBandH band, const PixelWindow& w, int width, int height, void* target,
            GDALDataType type, int spacing, bool smooth) const {
    GDALRasterIOExtraArg more;
    INIT_RASTERIO_EXTRA_ARG(more);
    const bool reduced = width < w.width || height < w.height;
    more.eResampleAlg = smooth && reduced ? GRIORA_Average : GRIORA_NearestNeighbour;
    const Messages messages;
    if (GDALRasterIOEx(band, GF_Read, w.column, w.row, w.width, w.height, target, width, height, type,
                       spacing, static_cast<GSpacing>(spacing) * width, &more) != CE_None) {
      throw GeoError("The picture is damaged: " + messages.Reason("a part cannot be read"), path);
    }
  }

  std::array<double, 2> RangeOf(int band) const {
    auto& known = ranges[static_cast<std::size_t>(band - 1)];
    if (!known) {
      const Messages messages;
      std::array<double, 2> range{};
      GDALComputeRasterMinMax(GDALGetRasterBand(data, band), 1, range.data());
      if (messages.failed()) range = {0, 0};
      known = range;
    }
    return *known;
  }

  // One colour of the picture into every fourth byte.
  void ReadColour(int number, const PixelWindow& w, int width, int height, std::uint8_t* target) const {
    GDALRasterBandH band = GDALGetRasterBand(data, number);
    if (IsByte(band)) {
      Read(band, w, width, height, target, GDT_Byte, 4, true);
      return;
    }
    const auto [least, greatest] = RangeOf(number);
    const double scale = greatest > least ? 255.0 / (greatest - least) : 0.0;
    std::vector<float> values(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    Read(band, w, width, height, values.data(), GDT_Float32, sizeof(float), true);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const double value = (static_cast<double>(values[i]) - least) * scale;
      target[4 * i] =
          std::isfinite(value) ? Byte(static_cast<int>(std::lround(std::clamp(value, 0.0, 255.0)))) : 0;
    }
  }

  // Looks the numbers in the bytes up; several numbers cannot be averaged, so the nearest is taken.
  void ReadPalette(const PixelWindow& w, int width, int height, std::vector<std::uint8_t>& rgba) const {
    std::vector<std::int32_t> numbers(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    Read(GDALGetRasterBand(data, 1), w, width, height, numbers.data(), GDT_Int32, sizeof(std::int32_t),
         false);
    const auto none = info.bands.front().no_value;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      const auto number = static_cast<std::size_t>(std::max(numbers[i], 0));
      const bool known = number < info.palette.size() && !(none && *none == static_cast<double>(numbers[i]));
      for (std::size_t k = 0; k < 4; ++k) rgba[4 * i + k] = known ? info.palette[number][k] : std::uint8_t{0};
    }
  }
};

RasterSource::RasterSource(const std::string& path) : impl_(std::make_unique<Impl>()) {
  geo_detail::Start();
  geo_detail::CheckedSize(path, kLargestRasterFile);
  impl_->path = path;
  const std::vector<std::string> names = geo_detail::RasterDrivers();
  std::vector<const char*> drivers;
  for (const std::string& name : names) drivers.push_back(name.c_str());
  drivers.push_back(nullptr);
  const Messages messages;
  impl_->data = GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, drivers.data(), nullptr, nullptr);
  if (impl_->data == nullptr || GDALGetRasterCount(impl_->data) < 1) {
    throw GeoError("The file cannot be read as a picture: " + messages.Reason("its format is not known"),
                   path);
  }
  int across = 0, down = 0;
  GDALRasterBandH first = GDALGetRasterBand(impl_->data, 1);
  GDALGetBlockSize(first, &across, &down);
  const auto block = static_cast<std::size_t>(across) * static_cast<std::size_t>(down) *
                     static_cast<std::size_t>(GDALGetDataTypeSizeBytes(GDALGetRasterDataType(first)));
  if (block > kLargestBlock) throw GeoError("One block of the picture is larger than can be read.", path);
  impl_->info = Described(impl_->data);
  impl_->ranges.resize(impl_->info.bands.size());
}
RasterSource::~RasterSource() = default;
RasterSource::RasterSource(RasterSource&&) noexcept = default;
RasterSource& RasterSource::operator=(RasterSource&&) noexcept = default;

const std::string& RasterSource::path() const {
  return impl_->path;
}
const RasterInfo& RasterSource::info() const {
  return impl_->info;
}

std::vector<std::uint8_t> RasterSource::ReadRgba(const PixelWindow& window, int width, int height) const {
  const Impl& own = *impl_;
  own.Check(window, width, height);
  std::vector<std::uint8_t> rgba(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, 255);
  if (!own.info.palette.empty()) {
    own.ReadPalette(window, width, height, rgba);
    return rgba;
  }
  const bool coloured = own.info.bands.size() >= 3;
  own.ReadColour(1, window, width, height, rgba.data());
  for (int k = 1; k < 3; ++k) {
    if (coloured) {
      own.ReadColour(k + 1, window, width, height, rgba.data() + k);
    } else {
      for (std::size_t i = 0; i < rgba.size(); i += 4) rgba[i + static_cast<std::size_t>(k)] = rgba[i];
    }
  }
  GDALRasterBandH first = GDALGetRasterBand(own.data, 1);
  if ((GDALGetMaskFlags(first) & GMF_ALL_VALID) == 0) {
    own.Read(GDALGetMaskBand(first), window, width, height, rgba.data() + 3, GDT_Byte, 4, false);
  }
  return rgba;
}

std::vector<double> RasterSource::ReadValues(int band, const PixelWindow& window, int width,
                                             int height) const {
  const Impl& own = *impl_;
  own.Check(window, width, height);
  if (band < 1 || band > static_cast<int>(own.info.bands.size())) {
    throw GeoError("The picture has no band " + std::to_string(band) + ".", own.path);
  }
  std::vector<double> values(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  own.Read(GDALGetRasterBand(own.data, band), window, width, height, values.data(), GDT_Float64,
           sizeof(double), false);
  if (const auto none = own.info.bands[static_cast<std::size_t>(band - 1)].no_value) {
    for (double& value : values) {
      if (value == *none) value = std::numeric_limits<double>::quiet_NaN();
    }
  }
  return values;
}

const char* RasterFilePatterns() {
  return "*.tif;*.tiff;*.png;*.jpg;*.jpeg;*.bmp;*.gif;*.webp;*.jp2;*.gpkg;*.mbtiles;*.asc;*.grd;*.img;*.dem;*"
         ".hgt";
}

}  // namespace ormel
