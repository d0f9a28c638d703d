// What features of a layer can become, one row a kind.
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/quantities.h"
#include "core/types.h"
#include "geo/features.h"

namespace ormel {

/// A property that a field or a default gives.
struct TargetProperty {
  std::string_view name;  ///< "Label", "Rate": for the form and the command line
  std::string_view caption;
  Quantity quantity = Quantity::kNone;
  bool text = false;
  std::string_view standard;  ///< default, a number in the project's units or a text
  std::string_view also{};    ///< names of fields that are taken for it, in lower case, separated by blanks
  double lowest = -1e12;      ///< of a number
};

/// The values of one element, by the names of its properties.
class PropertyValues {
 public:
  void Put(std::string_view name, double number) { numbers_[std::string(name)] = number; }
  void Put(std::string_view name, std::string text) { texts_[std::string(name)] = std::move(text); }
  double Number(std::string_view name) const;
  const std::string& Text(std::string_view name) const;

 private:
  std::map<std::string, double, std::less<>> numbers_;
  std::map<std::string, std::string, std::less<>> texts_;
};

struct FeatureTarget {
  std::string_view name;     ///< "wells"
  std::string_view caption;  ///< "Discharge specified wells"
  Element element;
  GeometryKind geometry;  ///< kPoint; kLine takes rings too; kPolygon takes lines that close
  std::span<const TargetProperty> properties;
  std::string_view label_table{};  ///< where labels are looked for when no two may be the same
  bool heads_from_vertices = false;
  std::int64_t (*store)(Ormel&, const PropertyValues&, std::span<const MapPoint>) = nullptr;
};

std::span<const FeatureTarget> FeatureTargets();
/// nullptr when there is none of the name.
const FeatureTarget* FindFeatureTarget(std::string_view name);

}  // namespace ormel
