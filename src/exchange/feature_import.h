// Features of a layer as elements of the project.
//
// A plan says what would come in and why other features would not; nothing is written before it is carried
// out, and that is one command.
#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "exchange/feature_targets.h"
#include "geo/vector_source.h"

namespace ormel {

struct Ormel;

/// Where a property comes from.
struct PropertySource {
  std::string field;     ///< of the layer; "" for the default alone
  std::string standard;  ///< where there is no field, or it is empty
  std::string unit;      ///< of both; "" for the project's own
};

struct FeatureImport {
  std::string file, layer;  ///< the only layer when it has no name here
  const FeatureTarget* target = nullptr;
  std::map<std::string, PropertySource, std::less<>> properties;
  std::string crs;                  ///< of the layer, in place of what the file says; "" to believe the file
  double tolerance = 0.0;           ///< by which lines may leave their vertices out [map units]
  std::size_t most_vertices = 500;  ///< of one string or domain
  bool heads_from_vertices = false;
  std::string vertex_unit;        ///< of the elevations at vertices
  std::optional<Extents> within;  ///< only what touches this [map units]
};

/// Fields of the layer that are named like properties, and the defaults.
void GuessProperties(FeatureImport& request, const VectorLayer& layer);

struct PlannedElement {
  PropertyValues values;
  std::vector<MapPoint> points;
};

struct LeftOut {
  std::size_t count = 0;
  std::vector<std::int64_t> first;  ///< numbers of some features
};

struct ImportPlan {
  const FeatureTarget* target = nullptr;
  std::size_t features = 0;  ///< seen
  std::vector<PlannedElement> elements;
  std::map<std::string, LeftOut> left_out;  ///< by reason
  std::vector<std::string> remarks;         ///< about the layer as a whole
  std::size_t moved = 0;                    ///< vertices that were too close to others
  std::size_t thinned = 0;                  ///< vertices that the tolerance left out
  bool cancelled = false;

  /// What would happen, in lines.
  std::string Text() const;
};

/// Throws GeoError when the file cannot be read or its coordinates cannot become those of the map,
/// FeatureImportError when the request does not fit the layer.
ImportPlan PlanImport(Ormel& ormel, const FeatureImport& request);

class FeatureImportError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Adds the elements; all or, when one fails, none.
void CarryOut(Ormel& ormel, const ImportPlan& plan);

/// Menu "Import Features...".
void ToolsImportFeatures(Ormel& ormel);

}  // namespace ormel
