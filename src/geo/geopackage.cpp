#include "geo/geopackage.h"

#include <gdal.h>
#include <ogr_api.h>
#include <cmath>
#include <filesystem>
#include <system_error>

#include "geo/crs_impl.h"
#include "geo/gdal_room.h"
#include "geo/geo_error.h"

namespace ormel {
namespace {

using geo_detail::Messages;

OGRwkbGeometryType TypeOf(const NewLayer& layer) {
  OGRwkbGeometryType type = wkbUnknown;
  switch (layer.kind) {
    case GeometryKind::kNone:
      return wkbNone;
    case GeometryKind::kPoint:
      type = layer.multi ? wkbMultiPoint : wkbPoint;
      break;
    case GeometryKind::kLine:
      type = layer.multi ? wkbMultiLineString : wkbLineString;
      break;
    case GeometryKind::kPolygon:
      type = layer.multi ? wkbMultiPolygon : wkbPolygon;
      break;
    case GeometryKind::kMixed:
      break;
  }
  if (layer.has_z) type = wkbSetZ(type);
  return layer.has_m ? wkbSetM(type) : type;
}

OGRFieldType TypeOf(FieldKind kind) {
  return kind == FieldKind::kInteger ? OFTInteger64 : kind == FieldKind::kReal ? OFTReal : OFTString;
}

void PutPoints(OGRGeometryH line, const GeoPart& part, bool close, const NewLayer& layer) {
  const std::size_t count = part.points.size() + (close ? 1 : 0);
  OGR_G_SetPointCount(line, static_cast<int>(count));
  for (std::size_t i = 0; i < count; ++i) {
    const GeoPoint& point = part.points[i % part.points.size()];
    if (layer.has_m) {
      OGR_G_SetPointZM(line, static_cast<int>(i), point.x, point.y, point.z, point.m);
    } else if (layer.has_z) {
      OGR_G_SetPoint(line, static_cast<int>(i), point.x, point.y, point.z);
    } else {
      OGR_G_SetPoint_2D(line, static_cast<int>(i), point.x, point.y);
    }
  }
}

OGRwkbGeometryType Dimensioned(OGRwkbGeometryType flat, const NewLayer& layer) {
  if (layer.has_z) flat = wkbSetZ(flat);
  return layer.has_m ? wkbSetM(flat) : flat;
}

// The geometry of the parts; owned by the caller.  A part of a polygon begins with its outer ring.
OGRGeometryH Built(const GeoFeature& feature, const NewLayer& layer) {
  OGRGeometryH whole = layer.multi ? OGR_G_CreateGeometry(TypeOf(layer)) : nullptr;
  OGRGeometryH last = nullptr;
  for (const GeoPart& part : feature.parts) {
    if (part.points.empty()) continue;
    const bool hole = part.role == GeoPart::Role::kHole;
    if (hole || part.role == GeoPart::Role::kOuterRing) {
      OGRGeometryH ring = OGR_G_CreateGeometry(wkbLinearRing);
      PutPoints(ring, part, true, layer);
      if (hole && last != nullptr) {
        OGR_G_AddGeometryDirectly(last, ring);
        continue;
      }
      last = OGR_G_CreateGeometry(Dimensioned(wkbPolygon, layer));
      OGR_G_AddGeometryDirectly(last, ring);
    } else {
      const bool point = part.role == GeoPart::Role::kPoint;
      last = OGR_G_CreateGeometry(Dimensioned(point ? wkbPoint : wkbLineString, layer));
      PutPoints(last, part, false, layer);
    }
    if (whole == nullptr) {
      whole = last;
    } else if (layer.multi) {
      OGR_G_AddGeometryDirectly(whole, last);
    } else {
      OGR_G_DestroyGeometry(last);
      OGR_G_DestroyGeometry(whole);
      return nullptr;
    }
  }
  return whole;
}

}  // namespace

struct GeoPackageWriter::Impl {
  std::string path, working;
  GDALDatasetH data = nullptr;
  OGRSpatialReferenceH system = nullptr;
  OGRLayerH layer = nullptr;
  NewLayer current;
  std::vector<std::pair<NewLayer, std::string>> styles;  // layer and document

  Impl() = default;
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
  ~Impl() {
    const Messages quiet;
    if (data != nullptr) GDALClose(data);
    if (system != nullptr) OSRRelease(system);
    std::error_code ignored;
    std::filesystem::remove(std::filesystem::u8path(working), ignored);
    std::filesystem::remove(std::filesystem::u8path(working + "-journal"), ignored);
  }

  [[noreturn]] void Fail(const Messages& messages, const std::string& what) const {
    throw GeoError(what + ": " + messages.Reason("no reason is known"), path, current.name);
  }

  void MakeLayer() {
    const Messages messages;
    const std::string title = "DESCRIPTION=" + current.title;
    const char* options[] = {"GEOMETRY_NAME=geom", "FID=fid", title.c_str(), nullptr};
    layer = GDALDatasetCreateLayer(data, current.name.c_str(), system, TypeOf(current),
                                   const_cast<char**>(options));
    if (layer == nullptr) Fail(messages, "The layer cannot be made");
    for (const GeoField& field : current.fields) {
      OGRFieldDefnH definition = OGR_Fld_Create(field.name.c_str(), TypeOf(field.kind));
      const OGRErr made = OGR_L_CreateField(layer, definition, 0);
      OGR_Fld_Destroy(definition);
      if (made != OGRERR_NONE) Fail(messages, "The field " + field.name + " cannot be made");
    }
  }

  void WriteStyles();
};

GeoPackageWriter::GeoPackageWriter(const std::string& path, const std::optional<Crs>& crs)
    : impl_(std::make_unique<Impl>()) {
  geo_detail::Start();
  impl_->path = path;
  impl_->working = path + ".part.gpkg";
  std::error_code ignored;
  std::filesystem::remove(std::filesystem::u8path(impl_->working), ignored);
  const Messages messages;
  impl_->data =
      GDALCreate(GDALGetDriverByName("GPKG"), impl_->working.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
  if (impl_->data == nullptr || GDALDatasetStartTransaction(impl_->data, 0) != OGRERR_NONE) {
    throw GeoError("The file cannot be written: " + messages.Reason("the folder refuses it"), path);
  }
  if (crs) {
    impl_->system = OSRClone(crs->impl().handle);
  } else {
    impl_->system = OSRNewSpatialReference(nullptr);
    OSRSetLocalCS(impl_->system, "Undefined Cartesian SRS");
  }
}
GeoPackageWriter::~GeoPackageWriter() = default;
GeoPackageWriter::GeoPackageWriter(GeoPackageWriter&&) noexcept = default;
GeoPackageWriter& GeoPackageWriter::operator=(GeoPackageWriter&&) noexcept = default;

void GeoPackageWriter::Layer(const NewLayer& layer) {
  impl_->current = layer;
  impl_->MakeLayer();
  if (layer.style) impl_->styles.emplace_back(layer, StyleQml(*layer.style, layer.kind));
}

void GeoPackageWriter::Add(const GeoFeature& feature) {
  const NewLayer& layer = impl_->current;
  const Messages messages;
  OGRFeatureH raw = OGR_F_Create(OGR_L_GetLayerDefn(impl_->layer));
  for (std::size_t i = 0; i < feature.values.size() && i < layer.fields.size(); ++i) {
    const int field = static_cast<int>(i);
    const GeoValue& value = feature.values[i];
    if (const auto* text = std::get_if<std::string>(&value)) OGR_F_SetFieldString(raw, field, text->c_str());
    if (const auto* whole = std::get_if<std::int64_t>(&value)) OGR_F_SetFieldInteger64(raw, field, *whole);
    if (const auto* number = std::get_if<double>(&value); number != nullptr && std::isfinite(*number)) {
      OGR_F_SetFieldDouble(raw, field, *number);
    }
  }
  if (layer.kind != GeometryKind::kNone) {
    OGRGeometryH geometry = Built(feature, layer);
    if (geometry == nullptr) {
      OGR_F_Destroy(raw);
      throw GeoError("A feature has no part, or several where the layer takes one.", impl_->path, layer.name);
    }
    OGR_F_SetGeometryDirectly(raw, geometry);
  }
  const OGRErr made = OGR_L_CreateFeature(impl_->layer, raw);
  OGR_F_Destroy(raw);
  if (made != OGRERR_NONE) impl_->Fail(messages, "A feature cannot be written");
}

void GeoPackageWriter::Impl::WriteStyles() {
  if (styles.empty()) return;
  const auto text = [](const char* name) { return GeoField{name, FieldKind::kText}; };
  current = {};
  current.name = "layer_styles";
  current.kind = GeometryKind::kNone;
  current.fields = {text("f_table_catalog"),
                    text("f_table_schema"),
                    text("f_table_name"),
                    text("f_geometry_column"),
                    text("styleName"),
                    text("styleQML"),
                    text("styleSLD"),
                    {"useAsDefault", FieldKind::kInteger},
                    text("description"),
                    text("owner"),
                    text("ui")};
  const Messages messages;
  const char* options[] = {"FID=id", nullptr};
  layer = GDALDatasetCreateLayer(data, current.name.c_str(), nullptr, wkbNone, const_cast<char**>(options));
  if (layer == nullptr) Fail(messages, "The styles cannot be written");
  for (const GeoField& field : current.fields) {
    OGRFieldDefnH definition = OGR_Fld_Create(field.name.c_str(), TypeOf(field.kind));
    if (field.kind == FieldKind::kInteger) OGR_Fld_SetSubType(definition, OFSTBoolean);
    OGR_L_CreateField(layer, definition, 0);
    OGR_Fld_Destroy(definition);
  }
}

void GeoPackageWriter::Commit() {
  Impl& own = *impl_;
  own.WriteStyles();
  for (const auto& [layer, document] : own.styles) {
    GeoFeature row;
    row.values = {std::string(), std::string(), layer.name,      std::string("geom"), std::string("default"),
                  document,      GeoValue{},    std::int64_t{1}, layer.title,         std::string(),
                  GeoValue{}};
    Add(row);
  }
  const Messages messages;
  if (GDALDatasetCommitTransaction(own.data) != OGRERR_NONE) own.Fail(messages, "The file cannot be written");
  GDALClose(own.data);
  own.data = nullptr;
  if (messages.failed()) own.Fail(messages, "The file cannot be written");
  std::error_code failed;
  std::filesystem::rename(std::filesystem::u8path(own.working), std::filesystem::u8path(own.path), failed);
  if (failed) throw GeoError("The file cannot be given its name: " + failed.message() + ".", own.path);
}

}  // namespace ormel
