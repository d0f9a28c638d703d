// The base maps of the open project: the table `Basemaps`, and what is loaded of each map.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "basemaps/bbm_file.h"
#include "basemaps/raster_map.h"
#include "basemaps/vector_map.h"
#include "core/types.h"

namespace ormel {

struct Ormel;

enum class BaseMapKind { kBbm, kShape, kCad, kVector, kRaster };
/// By the extension; whatever is no vector file that is known is an image.
BaseMapKind BaseMapKindOf(const std::string& name);
/// "BBM", "shapefile", "CAD", "vector", "raster"
const char* BaseMapKindText(BaseMapKind kind);

inline constexpr const char* kNoColorField = "__NONE__";

/// A row of `Basemaps`, with the label field of `MapLabels`.
struct BaseMapRow {
  std::string MapName;
  Color color{};
  bool Show = true;
  std::string ColorField;
  bool UseColorField = true;
  std::string TextField;  ///< "" for no labels
  bool ByField() const { return UseColorField && !ColorField.empty() && ColorField != kNoColorField; }
};
/// In the order of the table.
std::vector<BaseMapRow> ReadBaseMapRows(Ormel& ormel);

/// A map that was loaded.  One that failed keeps its place and is not drawn.
struct BaseMap {
  std::string name;  ///< as the row has it
  std::string path;  ///< of the file
  BaseMapKind kind = BaseMapKind::kRaster;
  std::unique_ptr<BBMap> bbm;
  std::unique_ptr<VectorMap> vector;
  std::unique_ptr<RasterMap> raster;
  std::string fault;  ///< why it is not drawn; "" while it is
  std::optional<Extents> Bounds() const;
};

struct BaseMaps {
  std::string project;  ///< whose maps these are
  std::vector<std::unique_ptr<BaseMap>> maps;
  std::vector<std::string> group;  ///< names of the BBM maps of the selected group
  BaseMap* Find(const std::string& name) const;
};
BaseMaps& BaseMapsOf(Ormel& ormel);

/// The file of a map: a relative name belongs to the project's folder, so that it moves about with it.
std::string BaseMapPath(const Ormel& ormel, const std::string& name);

/// Loads all maps of the project anew and widens `bounds` by each; true when there is any.  A map that cannot
/// be loaded is told of once, and the others go on.
bool LoadBaseMaps(Ormel& ormel, Extents& bounds);
/// Asks about each map whose file is not there: another place, away with it, or (Cancel) leave it.
void FindMissingBaseMaps(Ormel& ormel);
/// Lets go of all that is loaded.
void CloseBaseMaps(Ormel& ormel);

/// What the union of the shown maps covers.
std::optional<Extents> ShownBaseMapExtents(Ormel& ormel);

/// The file dialog, then AddBaseMap for each file.  True when the table has changed.
bool AddBaseMapsByDialog(Ormel& ormel);
/// Adds a row for the file, after the questions that belong to it; loads nothing.  False when none was added.
bool AddBaseMap(Ormel& ormel, const std::string& name);
void RemoveBaseMap(Ormel& ormel, const std::string& name);
void ShowBaseMap(Ormel& ormel, const std::string& name, bool show);
/// Colour, colour field and label field; the map is loaded anew where its fields have changed.
void StoreBaseMapLook(Ormel& ormel, const BaseMapRow& row);
/// Puts the map before all others (to the bottom of the picture) or behind them.
void MoveBaseMap(Ormel& ormel, const std::string& name, bool to_top);

}  // namespace ormel
