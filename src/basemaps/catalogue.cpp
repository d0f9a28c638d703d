#include "basemaps/catalogue.h"

#include <algorithm>
#include <any>
#include <array>
#include <filesystem>

#include "basemaps/world_file.h"
#include "core/command.h"
#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "geo/geo_error.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kPathKey = "Default select BBM path";
constexpr const char* kFilter =
    "All Supported "
    "Types|*.bbm;*.bil;*.bip;*.bmp;*.bsq;*.dbf;*.dgn;*.dwg;*.dxf;*.gis;*.jpg;*.jpeg;*.lan;*.ras;*."
    "rlc;*.rs;*.shp;*.shx;*.sid;*.sun;*.tif;*.tiff;*.tff|DRG (Digital Raster "
    "Graphics)|*.bil;*.bip;*.bmp;*.bsq;*."
    "gis;*.jpg;*.jpeg;*.lan;*.ras;*.rlc;*.rs;*.sid;*.sun;*.tif;*.tiff;*.tff|Vector Files (BBM, CAD, "
    "Shape)|*.BBM;*."
    "DBF;*.DGN;*.DWG;*.DXF;*.SHP;*.SHX|Band Interleaved by Line (*.bil)|*.bil|Band Interleaved by Pixel "
    "(*.bip)|*.bip|Band Sequential (*.bsq)|*.bsq|CAD files (*.DXF, *.DWG, *.DGN)|*.dxf;*.dwg;*.dgn|ERDAS "
    "(*.gis, "
    "*.lan)|*.gis;*.lan|ESRI Shapefiles (*.SHP, *.SHX)|*.shp;*.shx|GeoTiff (*.tif, *.tff, "
    "*.tiff)|*.tif;*.tff;*.tiff|Impell Bitmap (*.rlc)|*.rlc|JFIF (*.jpg)|*.jpg;*.jpeg|MrSid "
    "(*.sid)|*.sid|Sun "
    "Raster (*.sun, *.ras, *.rs)|*.rs;*.ras;*.sun|Windows Bitmap (*.bmp)|*.bmp|GeoPackage, GeoJSON, KML "
    "(*.gpkg, *.geojson, *.kml)|*.gpkg;*.geojson;*.json;*.kml|All Files|*";

struct KindRow {
  std::string_view extension;
  BaseMapKind kind;
};
constexpr std::array kKinds{KindRow{".bbm", BaseMapKind::kBbm},        KindRow{".shp", BaseMapKind::kShape},
                            KindRow{".shx", BaseMapKind::kShape},      KindRow{".dbf", BaseMapKind::kShape},
                            KindRow{".dgn", BaseMapKind::kCad},        KindRow{".dwg", BaseMapKind::kCad},
                            KindRow{".dxf", BaseMapKind::kCad},        KindRow{".gpkg", BaseMapKind::kVector},
                            KindRow{".geojson", BaseMapKind::kVector}, KindRow{".json", BaseMapKind::kVector},
                            KindRow{".kml", BaseMapKind::kVector},     KindRow{".gpx", BaseMapKind::kVector},
                            KindRow{".fgb", BaseMapKind::kVector},     KindRow{".tab", BaseMapKind::kVector},
                            KindRow{".mif", BaseMapKind::kVector},     KindRow{".gdb", BaseMapKind::kVector}};

std::string ExtensionOf(const std::string& name) {
  return FoldCase(std::filesystem::path(name).extension().string());
}

/// Of a shapefile's parts, the one that is opened.
std::string ShapePath(const std::string& path) {
  const std::string extension = ExtensionOf(path);
  if (extension != ".shx" && extension != ".dbf") return path;
  const std::string stem = path.substr(0, path.size() - 4);
  return FileExists(stem + ".shp") || !FileExists(stem + ".SHP") ? stem + ".shp" : stem + ".SHP";
}

void LoadBbm(BaseMap& map) {
  map.bbm = std::make_unique<BBMap>();
  map.bbm->Connect(map.path);
  if (!map.bbm->connected()) map.fault = "the file cannot be opened";
}

void LoadVector(BaseMap& map, const BaseMapRow& row) {
  const bool cad = map.kind == BaseMapKind::kCad;
  const std::string color = cad ? "color" : row.ByField() ? row.ColorField : "";
  map.vector = std::make_unique<VectorMap>(ShapePath(map.path), color, row.TextField);
}

/// Loads one map; a failure is shown and remembered.
void Load(Ormel& ormel, BaseMap& map, const BaseMapRow& row) {
  try {
    if (map.kind == BaseMapKind::kBbm)
      LoadBbm(map);
    else if (map.kind == BaseMapKind::kRaster)
      map.raster = std::make_unique<RasterMap>(map.path);
    else
      LoadVector(map, row);
  } catch (const BbmError& e) {
    map.fault = e.what();
    Inform(ormel, BbmError::kTitle, e.what(), Icon::kStop);
  } catch (const GeoError& e) {
    map.fault = e.reason();
    const bool raster = map.kind == BaseMapKind::kRaster;
    Inform(ormel, "Base maps",
           Lines({std::string("Error adding ") + (raster ? "raster" : "vector") + " image " + map.name,
                  raster ? "The image is not a valid raster data set."
                         : "The image is not a valid vector data set.",
                  e.reason()}),
           Icon::kWarning);
  }
}

bool IsListed(Ormel& ormel, const std::string& name) {
  RowReader rows(ormel.db(), "select MapName from Basemaps where MapName=?", {name});
  return rows.Next();
}

/// The georeference question is for images, and for the drawings that a slip of old counts among them.
bool MayLackPlace(const std::string& name, const std::string& path) {
  if (BaseMapKindOf(name) != BaseMapKind::kRaster && ExtensionOf(name) != ".dwg") return false;
  std::string extension;
  if (WorldFileExists(path, extension)) return false;
  try {
    return !RasterSource(path).info().geotransform.has_value();
  } catch (const GeoError&) {
    return true;
  }
}

void Insert(Ormel& ormel, const BaseMapRow& row) {
  BulkInsert rows(ormel.db(), "Basemaps", {"MapName", "Color", "Show", "ColorField", "UseColorField"});
  rows.Row(row.MapName, static_cast<std::int64_t>(row.color.value), row.Show, row.ColorField,
           row.UseColorField);
}

/// Clears the table and writes the rows in their order.
void Rewrite(Ormel& ormel, const std::vector<BaseMapRow>& rows) {
  ormel.db().Execute("delete from Basemaps");
  for (const BaseMapRow& row : rows) Insert(ormel, row);
}

}  // namespace

BaseMapKind BaseMapKindOf(const std::string& name) {
  const std::string extension = ExtensionOf(name);
  const auto row =
      std::find_if(kKinds.begin(), kKinds.end(), [&](const KindRow& r) { return r.extension == extension; });
  return row == kKinds.end() ? BaseMapKind::kRaster : row->kind;
}

const char* BaseMapKindText(BaseMapKind kind) {
  constexpr std::array kTexts{"BBM", "shapefile", "CAD", "vector", "raster"};
  return kTexts[static_cast<std::size_t>(kind)];
}

std::vector<BaseMapRow> ReadBaseMapRows(Ormel& ormel) {
  std::vector<BaseMapRow> rows;
  RowReader reader(
      ormel.db(),
      "select MapName,Color,Show,ColorField,UseColorField,"
      "(select TextField from MapLabels where MapLabels.MapName=Basemaps.MapName) from Basemaps");
  while (reader.Next())
    rows.push_back({std::string(reader.Text(0)), Color{static_cast<std::int32_t>(reader.Long(1))},
                    reader.Bool(2), std::string(reader.Text(3)), reader.Bool(4),
                    std::string(reader.Text(5))});
  return rows;
}

std::optional<Extents> BaseMap::Bounds() const {
  if (!fault.empty()) return std::nullopt;
  if (bbm) return bbm->Bounds();
  if (vector) return vector->bounds();
  if (raster) return raster->bounds();
  return std::nullopt;
}

BaseMap* BaseMaps::Find(const std::string& name) const {
  const auto at = std::find_if(maps.begin(), maps.end(), [&](const auto& map) { return map->name == name; });
  return at == maps.end() ? nullptr : at->get();
}

BaseMaps& BaseMapsOf(Ormel& ormel) {
  std::any& memory = ormel.form_memory["BaseMaps"];
  if (!memory.has_value()) memory = std::make_shared<BaseMaps>();
  return *std::any_cast<std::shared_ptr<BaseMaps>&>(memory);
}

std::string BaseMapPath(const Ormel& ormel, const std::string& name) {
  if (name.empty() || !std::filesystem::path(name).is_relative()) return name;
  return JoinPath(GetPathFromFile(ormel.project.DBName), name);
}

bool LoadBaseMaps(Ormel& ormel, Extents& bounds) {
  const Named named(ormel, "LoadBaseMaps");
  const std::vector<BaseMapRow> rows = ReadBaseMapRows(ormel);
  BaseMaps& all = BaseMapsOf(ormel);
  all.maps.clear();
  all.group.clear();
  all.project = ormel.project.DBName;
  if (rows.empty()) return false;
  const PleaseWait wait(ormel, "Pre-scanning maps...");
  bool any = false;
  for (const BaseMapRow& row : rows) {
    auto map = std::make_unique<BaseMap>();
    map->name = row.MapName;
    map->path = BaseMapPath(ormel, row.MapName);
    map->kind = BaseMapKindOf(row.MapName);
    if (FileExists(map->path) || std::filesystem::is_directory(map->path))
      Load(ormel, *map, row);
    else
      map->fault = "the file is not there";
    if (const auto box = map->Bounds()) {
      if (!any) bounds = *box;
      Widen(bounds, *box);
      any = true;
    }
    all.maps.push_back(std::move(map));
  }
  return any;
}

void FindMissingBaseMaps(Ormel& ormel) {
  const Named named(ormel, "LoadBaseMaps");
  for (const BaseMapRow& row : ReadBaseMapRows(ormel)) {
    const std::string path = BaseMapPath(ormel, row.MapName);
    if (FileExists(path) || std::filesystem::is_directory(path)) continue;
    const Answer answer = ormel.ui().Ask(
        Box{"Can't Open BBM Basemap File",
            Lines({"Ormel cannot load the project because the basemap file", row.MapName,
                   "was not found at its specified location.  It is possible that the file has",
                   "been moved from its original location.  Would you like to locate the file?",
                   "If you press No, the basemap file will be removed from the project.",
                   "NOTE: You may click No and reselect all the BBM files at once in",
                   "Project Settings in the Project menu after the project has been opened.",
                   "If you press Cancel, it stays in the project and is not drawn."}),
            Buttons::kYesNoCancel, Icon::kWarning, true});
    if (answer == Answer::kNo) RemoveBaseMap(ormel, row.MapName);
    if (answer != Answer::kYes) continue;
    FileDialog dialog;
    dialog.title = "Select Basemap File";
    dialog.default_extension = "BBM";
    dialog.filter = kFilter;
    dialog.directory = ReadDefaultDirectory(ormel, kPathKey);
    const auto found = ormel.ui().Ask(dialog);
    if (!found || found->empty() || IsListed(ormel, *found)) continue;
    ormel.db().Execute("update MapLabels set MapName=? where MapName=?", {*found, row.MapName});
    ormel.db().Execute("update Basemaps set MapName=? where MapName=?", {*found, row.MapName});
  }
}

void CloseBaseMaps(Ormel& ormel) {
  ormel.form_memory.erase("BaseMaps");
}

std::optional<Extents> ShownBaseMapExtents(Ormel& ormel) {
  std::optional<Extents> whole;
  if (ormel.project.db == nullptr) return whole;
  for (const BaseMapRow& row : ReadBaseMapRows(ormel)) {
    const BaseMap* map = row.Show ? BaseMapsOf(ormel).Find(row.MapName) : nullptr;
    const auto box = map == nullptr ? std::nullopt : map->Bounds();
    if (!box) continue;
    if (!whole) whole = box;
    Widen(*whole, *box);
  }
  return whole;
}

bool AddBaseMapsByDialog(Ormel& ormel) {
  FileDialog dialog;
  dialog.title = "Select Basemap File";
  dialog.default_extension = "BBM";
  dialog.filter = kFilter;
  dialog.directory = ReadDefaultDirectory(ormel, kPathKey);
  const auto answer = ormel.ui().Ask(dialog);
  if (!answer || answer->empty()) return false;
  bool added = false;
  std::string_view rest = *answer;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string name(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (name.empty()) continue;
    WriteDefaultDirectory(ormel, kPathKey, GetPathFromFile(name));
    added = AddBaseMap(ormel, name) || added;
  }
  return added;
}

bool AddBaseMap(Ormel& ormel, const std::string& name) {
  if (TextLength(name) > 255) {
    Inform(ormel, "Can't Add Basemap", "The name of the file " + name + " is longer than 255 characters.");
    return false;
  }
  const bool may_lack = MayLackPlace(name, BaseMapPath(ormel, name));
  if (may_lack && !AskOkCancel(ormel, "Not Georeferenced",
                               Lines({"The file " + name + " may not be georeferenced!",
                                      "Click OK to proceed or Cancel to remove map."}),
                               Icon::kWarning))
    return false;
  if (IsListed(ormel, name)) {
    Inform(ormel, "Can't Add Basemap", "Base map file " + name + " is already selected");
    return false;
  }
  BulkInsert rows(ormel.db(), "Basemaps", {"MapName"});
  rows.Row(name);
  return true;
}

void RemoveBaseMap(Ormel& ormel, const std::string& name) {
  std::vector<BaseMapRow> rows = ReadBaseMapRows(ormel);
  std::erase_if(rows, [&](const BaseMapRow& row) { return row.MapName == name; });
  Rewrite(ormel, rows);
  ormel.db().Execute("delete from MapLabels where MapName=?", {name});
}

void ShowBaseMap(Ormel& ormel, const std::string& name, bool show) {
  ormel.db().Execute("update Basemaps set Show=? where MapName=?", {show, name});
}

void StoreBaseMapLook(Ormel& ormel, const BaseMapRow& row) {
  ormel.db().Execute(
      "update Basemaps set Color=?, ColorField=?, UseColorField=? where MapName=?",
      {static_cast<std::int64_t>(row.color.value), row.ColorField, row.UseColorField, row.MapName});
  ormel.db().Execute("delete from MapLabels where MapName=?", {row.MapName});
  if (!row.TextField.empty()) {
    BulkInsert labels(ormel.db(), "MapLabels", {"MapName", "TextField"});
    labels.Row(row.MapName, row.TextField);
  }
  BaseMap* map = BaseMapsOf(ormel).Find(row.MapName);
  if (map == nullptr || map->vector == nullptr || map->kind == BaseMapKind::kCad) return;
  const std::string color = row.ByField() ? row.ColorField : "";
  if (map->vector->color_field() == color && map->vector->label_field() == row.TextField) return;
  map->fault.clear();
  Load(ormel, *map, row);
}

void MoveBaseMap(Ormel& ormel, const std::string& name, bool to_top) {
  std::vector<BaseMapRow> rows = ReadBaseMapRows(ormel);
  std::stable_partition(rows.begin(), rows.end(),
                        [&](const BaseMapRow& row) { return (row.MapName == name) != to_top; });
  Rewrite(ormel, rows);
  auto& maps = BaseMapsOf(ormel).maps;
  std::stable_partition(maps.begin(), maps.end(),
                        [&](const auto& map) { return (map->name == name) != to_top; });
}

}  // namespace ormel
