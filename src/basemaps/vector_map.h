// A vector file as a base map: read once, then found by place and thinned by scale.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

/// A file with more points than this is refused; so is one that is no layer of features.
inline constexpr std::size_t kMostMapPoints = 40'000'000;

class VectorMap {
 public:
  enum class Role : std::uint8_t { kPoint, kLine, kRing };
  /// A run of points, of one feature.  The rings of a polygon stand one behind the other.
  struct Part {
    Role role = Role::kPoint;
    bool text = false;  ///< a point of a CAD text
    std::uint32_t feature = 0;
    std::size_t first = 0, count = 0;  ///< in the points
    Extents box;
  };
  /// The parts with as many points as a scale can show.
  struct Sheet {
    std::vector<MapPoint> points;
    std::vector<Part> parts;  ///< those of the map, in its order
    std::span<const MapPoint> Of(const Part& part) const { return {points.data() + part.first, part.count}; }
  };

  /// Reads the whole file; texts of `label_field` and values of `color_field` are kept, where it has them.
  /// Throws GeoError.
  VectorMap(const std::string& path, const std::string& color_field, const std::string& label_field);

  const std::optional<Extents>& bounds() const { return bounds_; }
  const std::vector<std::string>& fields() const { return fields_; }
  const std::string& format() const { return format_; }
  std::size_t point_count() const { return full_.points.size(); }
  std::size_t part_count() const { return full_.parts.size(); }
  /// Index of a colour, of the feature's colour field; nothing where there is none.
  std::optional<int> ColorIndex(const Part& part) const;
  const std::string& Label(const Part& part) const;
  const std::string& color_field() const { return color_field_; }
  const std::string& label_field() const { return label_field_; }

  /// The map as it is drawn at this size of a pixel [map units]: no point lies farther than half a pixel from
  /// the lines that are left.
  const Sheet& At(double pixel, const Extents& view) const;
  const Sheet& Full() const { return full_; }

 private:
  void Add(Role role, std::uint32_t feature, bool text, std::span<const MapPoint> points);

  Sheet full_;
  std::optional<Extents> bounds_;
  std::vector<std::string> fields_, labels_;
  std::vector<std::int16_t> colors_;  ///< by feature; -1 for none; empty without a colour field
  std::string format_, color_field_, label_field_;
  mutable std::map<int, Sheet> thinned_;  ///< by the power of two of the tolerance
};

bool Meets(const Extents& a, const Extents& b);
void Widen(Extents& extents, const Extents& other);

}  // namespace ormel
