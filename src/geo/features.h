// Features of a layer in plain terms: parts of points, and values of fields.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace ormel {

enum class GeometryKind { kNone, kPoint, kLine, kPolygon, kMixed };
/// "points", "lines", "polygons", "no geometry", "geometry of several kinds"
const char* GeometryKindText(GeometryKind kind);

struct GeoPoint {
  double x = 0, y = 0;
  double z = 0;  ///< 0 in parts without elevations
  double m = 0;  ///< a measure along a line; written, not read
};

/// One point, line or ring.  Rings close by themselves: their last point is not the first again.
struct GeoPart {
  enum class Role { kPoint, kLine, kOuterRing, kHole };
  Role role = Role::kPoint;
  bool has_z = false;
  std::vector<GeoPoint> points{};
};

enum class FieldKind { kText, kInteger, kReal };

struct GeoField {
  std::string name;
  FieldKind kind = FieldKind::kText;
};

/// Empty where the feature has no value.
using GeoValue = std::variant<std::monostate, std::int64_t, double, std::string>;
/// As a user reads it; "" for none.
std::string GeoValueText(const GeoValue& value);

struct GeoFeature {
  std::int64_t id = 0;  ///< the number under which the file knows it
  std::vector<GeoPart> parts;
  std::vector<GeoValue> values;  ///< one a field of the layer, in their order
};

}  // namespace ormel
