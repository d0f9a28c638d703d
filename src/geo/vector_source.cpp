#include "geo/vector_source.h"

#include <cpl_conv.h>
#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>
#include <cmath>

#include "geo/gdal_room.h"
#include "geo/geo_error.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

using geo_detail::Messages;

// Counting the features of a larger file is left to the reading.
constexpr unsigned long long kCountedFile = 256ULL << 20U;
constexpr int kDeepest = 32;  // collections within collections

struct FeatureDeleter {
  void operator()(void* feature) const { OGR_F_Destroy(feature); }
};

GeometryKind KindOf(OGRwkbGeometryType type) {
  switch (wkbFlatten(type)) {
    case wkbNone:
      return GeometryKind::kNone;
    case wkbPoint:
    case wkbMultiPoint:
      return GeometryKind::kPoint;
    case wkbLineString:
    case wkbMultiLineString:
    case wkbCircularString:
    case wkbCompoundCurve:
    case wkbMultiCurve:
      return GeometryKind::kLine;
    case wkbPolygon:
    case wkbMultiPolygon:
    case wkbCurvePolygon:
    case wkbMultiSurface:
      return GeometryKind::kPolygon;
    default:
      return GeometryKind::kMixed;
  }
}

FieldKind KindOf(OGRFieldType type) {
  if (type == OFTInteger || type == OFTInteger64) return FieldKind::kInteger;
  return type == OFTReal ? FieldKind::kReal : FieldKind::kText;
}

VectorLayer Described(OGRLayerH layer, bool count) {
  VectorLayer result;
  result.name = ToUtf8(OGR_L_GetName(layer));
  const OGRwkbGeometryType type = OGR_L_GetGeomType(layer);
  result.kind = KindOf(type);
  result.has_z = wkbHasZ(type);
  OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer);
  for (int i = 0; i < OGR_FD_GetFieldCount(definition); ++i) {
    OGRFieldDefnH field = OGR_FD_GetFieldDefn(definition, i);
    result.fields.push_back({ToUtf8(OGR_Fld_GetNameRef(field)), KindOf(OGR_Fld_GetType(field))});
  }
  if (OGRSpatialReferenceH system = OGR_L_GetSpatialRef(layer); system != nullptr) {
    const char* options[] = {"FORMAT=WKT2_2018", nullptr};
    char* text = nullptr;
    if (OSRExportToWktEx(system, &text, options) == OGRERR_NONE && text != nullptr) result.crs_wkt = text;
    CPLFree(text);
  }
  OGREnvelope box{};
  if (result.kind != GeometryKind::kNone && OGR_L_GetExtent(layer, &box, count ? 1 : 0) == OGRERR_NONE &&
      std::isfinite(box.MinX + box.MinY + box.MaxX + box.MaxY)) {
    result.extent = GeoExtent{box.MinX, box.MinY, box.MaxX, box.MaxY};
  }
  result.count = OGR_L_GetFeatureCount(layer, count ? 1 : 0);
  return result;
}

class PartReader {
 public:
  explicit PartReader(GeoFeature& feature) : feature_(feature) {}

  // False when the feature holds more than is read.
  bool Take(OGRGeometryH geometry, int depth = 0) {
    if (geometry == nullptr || OGR_G_IsEmpty(geometry) != 0) return true;
    if (depth > kDeepest) return false;
    switch (wkbFlatten(OGR_G_GetGeometryType(geometry))) {
      case wkbPoint:
        return Add(geometry, GeoPart::Role::kPoint);
      case wkbLineString:
        return Add(geometry, GeoPart::Role::kLine);
      case wkbPolygon:
      case wkbTriangle: {
        for (int i = 0; i < OGR_G_GetGeometryCount(geometry); ++i) {
          if (!Add(OGR_G_GetGeometryRef(geometry, i),
                   i == 0 ? GeoPart::Role::kOuterRing : GeoPart::Role::kHole)) {
            return false;
          }
        }
        return true;
      }
      default:
        break;
    }
    for (int i = 0; i < OGR_G_GetGeometryCount(geometry); ++i) {
      if (!Take(OGR_G_GetGeometryRef(geometry, i), depth + 1)) return false;
    }
    return true;
  }

 private:
  bool Add(OGRGeometryH geometry, GeoPart::Role role) {
    const int count = OGR_G_GetPointCount(geometry);
    points_ += static_cast<std::size_t>(count);
    if (points_ > kMostFeaturePoints) return false;
    GeoPart part;
    part.role = role;
    part.has_z = OGR_G_Is3D(geometry) != 0;
    part.points.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
      GeoPoint& point = part.points[static_cast<std::size_t>(i)];
      OGR_G_GetPoint(geometry, i, &point.x, &point.y, &point.z);
    }
    const bool ring = role == GeoPart::Role::kOuterRing || role == GeoPart::Role::kHole;
    if (ring && count > 1 && part.points.front().x == part.points.back().x &&
        part.points.front().y == part.points.back().y) {
      part.points.pop_back();
    }
    if (count > 0) feature_.parts.push_back(std::move(part));
    return true;
  }

  GeoFeature& feature_;
  std::size_t points_ = 0;
};

GeoValue ValueOf(OGRFeatureH feature, int index, FieldKind kind) {
  if (OGR_F_IsFieldSetAndNotNull(feature, index) == 0) return {};
  if (kind == FieldKind::kInteger)
    return static_cast<std::int64_t>(OGR_F_GetFieldAsInteger64(feature, index));
  if (kind == FieldKind::kReal) return OGR_F_GetFieldAsDouble(feature, index);
  std::string text = OGR_F_GetFieldAsString(feature, index);
  if (text.size() > kLongestFieldText) text.resize(kLongestFieldText);
  return ToUtf8(text);
}

bool IsTable(const std::string& path) {
  return LikePattern(path, "*.csv") || LikePattern(path, "*.tsv") || LikePattern(path, "*.txt");
}

}  // namespace

const char* GeometryKindText(GeometryKind kind) {
  switch (kind) {
    case GeometryKind::kPoint:
      return "points";
    case GeometryKind::kLine:
      return "lines";
    case GeometryKind::kPolygon:
      return "polygons";
    case GeometryKind::kMixed:
      return "geometry of several kinds";
    case GeometryKind::kNone:
      break;
  }
  return "no geometry";
}

std::string GeoValueText(const GeoValue& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  const auto* number = std::get_if<double>(&value);
  return number != nullptr && std::isfinite(*number) ? NumberText(*number) : "";
}

struct VectorSource::Impl {
  std::string path, format;
  GDALDatasetH data = nullptr;
  std::vector<VectorLayer> layers;
  Impl() = default;
  ~Impl() {
    const Messages quiet;
    if (data != nullptr) GDALClose(data);
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
};

VectorSource::VectorSource(const std::string& path) : impl_(std::make_unique<Impl>()) {
  geo_detail::Start();
  const unsigned long long size = geo_detail::CheckedSize(path, kLargestVectorFile);
  impl_->path = path;
  const std::vector<std::string> names = geo_detail::VectorDrivers();
  std::vector<const char*> drivers;
  for (const std::string& name : names) drivers.push_back(name.c_str());
  drivers.push_back(nullptr);
  // Which columns of a table hold the place; other formats know by themselves.
  const char* table[] = {"AUTODETECT_TYPE=YES",
                         "KEEP_GEOM_COLUMNS=YES",
                         "X_POSSIBLE_NAMES=x,X,xcoord,x_coord,easting,east,lon,long,longitude,*_x",
                         "Y_POSSIBLE_NAMES=y,Y,ycoord,y_coord,northing,north,lat,latitude,*_y",
                         "Z_POSSIBLE_NAMES=z,elev,elevation",
                         nullptr};
  const Messages messages;
  impl_->data = GDALOpenEx(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers.data(),
                           IsTable(path) ? table : nullptr, nullptr);
  if (impl_->data == nullptr) {
    throw GeoError("The file cannot be read as a layer of features: " +
                       messages.Reason("its format is not known") + (messages.failed() ? "" : "."),
                   path);
  }
  impl_->format = GDALGetDriverLongName(GDALGetDatasetDriver(impl_->data));
  for (int i = 0; i < GDALDatasetGetLayerCount(impl_->data); ++i) {
    impl_->layers.push_back(Described(GDALDatasetGetLayer(impl_->data, i), size <= kCountedFile));
  }
  if (impl_->layers.empty()) throw GeoError("The file holds no layer.", path);
}
VectorSource::~VectorSource() = default;
VectorSource::VectorSource(VectorSource&&) noexcept = default;
VectorSource& VectorSource::operator=(VectorSource&&) noexcept = default;

const std::string& VectorSource::path() const {
  return impl_->path;
}
const std::string& VectorSource::format() const {
  return impl_->format;
}
const std::vector<VectorLayer>& VectorSource::layers() const {
  return impl_->layers;
}

std::size_t VectorSource::Find(const std::string& layer) const {
  std::string all;
  for (std::size_t i = 0; i < impl_->layers.size(); ++i) {
    if (EqualNoCase(impl_->layers[i].name, layer)) return i;
    all += (all.empty() ? "" : ", ") + impl_->layers[i].name;
  }
  throw GeoError("There is no such layer. The file holds: " + all + ".", impl_->path, layer);
}

void VectorSource::Read(std::size_t layer, const std::function<bool(GeoFeature&)>& take,
                        const std::optional<GeoExtent>& within) const {
  const VectorLayer& known = impl_->layers.at(layer);
  OGRLayerH handle = GDALDatasetGetLayer(impl_->data, static_cast<int>(layer));
  const Messages messages;
  if (within) {
    OGR_L_SetSpatialFilterRect(handle, within->left, within->bottom, within->right, within->top);
  } else {
    OGR_L_SetSpatialFilter(handle, nullptr);
  }
  OGR_L_ResetReading(handle);
  std::size_t number = 0;
  GeoFeature feature;
  while (const std::unique_ptr<void, FeatureDeleter> raw{OGR_L_GetNextFeature(handle)}) {
    ++number;
    feature.id = OGR_F_GetFID(raw.get());
    feature.parts.clear();
    feature.values.clear();
    OGRGeometryH geometry = OGR_F_StealGeometry(raw.get());
    if (geometry != nullptr && OGR_G_HasCurveGeometry(geometry, 1) != 0) {
      OGRGeometryH straight = OGR_G_GetLinearGeometry(geometry, 0, nullptr);
      OGR_G_DestroyGeometry(geometry);
      geometry = straight;
    }
    const bool whole = PartReader(feature).Take(geometry);
    OGR_G_DestroyGeometry(geometry);
    if (!whole) {
      throw GeoError("Feature " + std::to_string(feature.id) + " holds more than " +
                         std::to_string(kMostFeaturePoints) + " points, or parts within parts without end.",
                     impl_->path, known.name);
    }
    for (std::size_t i = 0; i < known.fields.size(); ++i) {
      feature.values.push_back(ValueOf(raw.get(), static_cast<int>(i), known.fields[i].kind));
    }
    if (!take(feature)) return;
  }
  if (messages.failed()) {
    throw GeoError("The file is damaged after feature " + std::to_string(number) + ": " + messages.Reason(""),
                   impl_->path, known.name);
  }
}

const char* VectorFilePatterns() {
  return "*.shp;*.gpkg;*.geojson;*.json;*.kml;*.kmz;*.dxf;*.csv;*.gpx;*.fgb;*.tab;*.mif;gdb";
}

}  // namespace ormel
