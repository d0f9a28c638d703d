#include "basemaps/vector_map.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "geo/geo_error.h"
#include "geo/vector_source.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// Long lines are cut into runs, so that a view of a small part looks at few points.
constexpr std::size_t kLongestRun = 1024;
/// Views with fewer points are drawn as they are.
constexpr std::size_t kFewPoints = 20'000;
constexpr std::size_t kMostSheets = 6;

Extents BoxOf(std::span<const MapPoint> points) {
  Extents box{points.front().x, points.front().x, points.front().y, points.front().y};
  for (const MapPoint& p : points) {
    box.x_min = std::min(box.x_min, p.x);
    box.x_max = std::max(box.x_max, p.x);
    box.y_min = std::min(box.y_min, p.y);
    box.y_max = std::max(box.y_max, p.y);
  }
  return box;
}

std::size_t FindField(const std::vector<GeoField>& fields, std::string_view name) {
  const auto at = std::find_if(fields.begin(), fields.end(),
                               [name](const GeoField& f) { return EqualNoCase(f.name, name); });
  return static_cast<std::size_t>(at - fields.begin());
}

/// The points that differ by more than the tolerance from the one kept before; first and last stay.
void Thin(std::span<const MapPoint> points, double tolerance, std::vector<MapPoint>& out) {
  out.push_back(points.front());
  const double square = tolerance * tolerance;
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    const double dx = points[i].x - out.back().x, dy = points[i].y - out.back().y;
    if (dx * dx + dy * dy > square) out.push_back(points[i]);
  }
  if (points.size() > 1) out.push_back(points.back());
}

}  // namespace

bool Meets(const Extents& a, const Extents& b) {
  return a.x_min <= b.x_max && a.x_max >= b.x_min && a.y_min <= b.y_max && a.y_max >= b.y_min;
}

void Widen(Extents& extents, const Extents& other) {
  extents.x_min = std::min(extents.x_min, other.x_min);
  extents.x_max = std::max(extents.x_max, other.x_max);
  extents.y_min = std::min(extents.y_min, other.y_min);
  extents.y_max = std::max(extents.y_max, other.y_max);
}

VectorMap::VectorMap(const std::string& path, const std::string& color_field, const std::string& label_field)
    : color_field_(color_field), label_field_(label_field) {
  const VectorSource source(path);
  format_ = source.format();
  std::vector<MapPoint> points;
  std::uint32_t feature = 0;
  for (std::size_t layer = 0; layer < source.layers().size(); ++layer) {
    const VectorLayer& about = source.layers()[layer];
    if (about.kind == GeometryKind::kNone) continue;
    for (const GeoField& field : about.fields)
      if (std::find(fields_.begin(), fields_.end(), field.name) == fields_.end())
        fields_.push_back(field.name);
    const std::size_t color = FindField(about.fields, color_field),
                      label = FindField(about.fields, label_field);
    const std::size_t text = FindField(about.fields, "text");
    source.Read(layer, [&](GeoFeature& read) {
      const auto value = [&](std::size_t at) {
        return at < read.values.size() ? GeoValueText(read.values[at]) : std::string();
      };
      const std::string index = value(color);
      colors_.push_back(index.empty() ? std::int16_t{-1}
                                      : static_cast<std::int16_t>(std::clamp(Val(index), -1.0, 256.0)));
      labels_.push_back(value(label));
      const bool is_text =
          labels_.back().empty() && EqualNoCase(format_, "AutoCAD DXF") && !value(text).empty();
      if (is_text) labels_.back() = value(text);
      for (const GeoPart& part : read.parts) {
        points.clear();
        for (const GeoPoint& p : part.points)
          if (std::isfinite(p.x) && std::isfinite(p.y)) points.push_back({p.x, p.y});
        if (points.empty()) continue;
        if (full_.points.size() + points.size() > kMostMapPoints)
          throw GeoError("It has more than 40,000,000 points.", path, about.name);
        const Role role = part.role == GeoPart::Role::kPoint  ? Role::kPoint
                          : part.role == GeoPart::Role::kLine ? Role::kLine
                                                              : Role::kRing;
        Add(role, feature, is_text, points);
      }
      ++feature;
      return true;
    });
  }
}

void VectorMap::Add(Role role, std::uint32_t feature, bool text, std::span<const MapPoint> points) {
  const std::size_t longest = role == Role::kLine ? kLongestRun : points.size();
  for (std::size_t from = 0;;) {
    const std::size_t count = std::min(longest, points.size() - from);
    const auto run = points.subspan(from, count);
    const Part part{role, text, feature, full_.points.size(), count, BoxOf(run)};
    full_.points.insert(full_.points.end(), run.begin(), run.end());
    full_.parts.push_back(part);
    if (!bounds_) bounds_ = part.box;
    Widen(*bounds_, part.box);
    if (from + count >= points.size()) return;
    from += count - 1;  // runs share their ends
  }
}

std::optional<int> VectorMap::ColorIndex(const Part& part) const {
  const int index = part.feature < colors_.size() ? colors_[part.feature] : -1;
  return index < 0 ? std::nullopt : std::optional<int>(index);
}

const std::string& VectorMap::Label(const Part& part) const {
  static const std::string kNone;
  return part.feature < labels_.size() ? labels_[part.feature] : kNone;
}

const VectorMap::Sheet& VectorMap::At(double pixel, const Extents& view) const {
  std::size_t seen = 0;
  for (const Part& part : full_.parts)
    if (Meets(part.box, view) && (seen += part.count) > kFewPoints) break;
  if (seen <= kFewPoints || !(pixel > 0.0)) return full_;
  const int power = static_cast<int>(std::floor(std::log2(0.5 * pixel)));
  if (const auto known = thinned_.find(power); known != thinned_.end()) return known->second;
  if (thinned_.size() >= kMostSheets) thinned_.clear();
  Sheet& sheet = thinned_[power];
  const double tolerance = std::exp2(power);
  sheet.parts.reserve(full_.parts.size());
  for (Part part : full_.parts) {
    const std::size_t first = sheet.points.size();
    Thin(full_.Of(part), tolerance, sheet.points);
    part.first = first;
    part.count = sheet.points.size() - first;
    sheet.parts.push_back(part);
  }
  return sheet;
}

}  // namespace ormel
