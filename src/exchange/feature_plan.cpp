#include <algorithm>
#include <cmath>
#include <set>

#include "core/ormel.h"
#include "core/project_crs.h"
#include "core/user_interface.h"
#include "document/elements.h"
#include "exchange/feature_import.h"
#include "exchange/units.h"
#include "geo/geo_error.h"
#include "model/crossing.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::size_t kNamed = 5;  ///< numbers of features that a reason names
constexpr std::size_t kReportEvery = 500;
constexpr std::size_t kMostElements = 200'000;

double SquaredDistanceToSegment(MapPoint p, MapPoint a, MapPoint b) {
  const double dx = b.x - a.x, dy = b.y - a.y, length = dx * dx + dy * dy;
  double t = length > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length : 0.0;
  t = std::clamp(t, 0.0, 1.0);
  const double ex = a.x + t * dx - p.x, ey = a.y + t * dy - p.y;
  return ex * ex + ey * ey;
}

/// Leaves out vertices that lie within the tolerance of the line through those that stay (Douglas and
/// Peucker, 1973). Ends stay.
std::vector<MapPoint> Simplified(const std::vector<MapPoint>& points, double tolerance) {
  if (!(tolerance > 0.0) || points.size() < 3) return points;
  std::vector<char> stays(points.size(), 0);
  stays.front() = stays.back() = 1;
  std::vector<std::pair<std::size_t, std::size_t>> parts{{0, points.size() - 1}};
  while (!parts.empty()) {
    const auto [from, to] = parts.back();
    parts.pop_back();
    double farthest = tolerance * tolerance;
    std::size_t at = 0;
    for (std::size_t i = from + 1; i < to; ++i) {
      const double distance = SquaredDistanceToSegment(points[i], points[from], points[to]);
      if (distance > farthest) {
        farthest = distance;
        at = i;
      }
    }
    if (at == 0) continue;
    stays[at] = 1;
    parts.emplace_back(from, at);
    parts.emplace_back(at, to);
  }
  std::vector<MapPoint> result;
  for (std::size_t i = 0; i < points.size(); ++i)
    if (stays[i] != 0) result.push_back(points[i]);
  return result;
}

struct BoundProperty {
  const TargetProperty* property;
  PropertySource source;
  int field = -1;  ///< place in the layer; -1 for none
  double factor = 1.0;
};

/// What a feature meets on its way; each step gives "" or why it is left out.
class Planner {
 public:
  Planner(Ormel& ormel, const FeatureImport& request, const VectorSource& source);
  ImportPlan Run();

 private:
  void BindProperties();
  void FindWay();
  void Take(const GeoFeature& feature);
  std::string TakePart(const GeoFeature& feature, const GeoPart& part, std::size_t number);
  std::string Values(const GeoFeature& feature, PropertyValues& values) const;
  std::string Number(const BoundProperty& bound, const GeoFeature& feature, PropertyValues& values) const;
  std::string Places(const GeoPart& part, std::vector<MapPoint>& points) const;
  std::string Shape(const GeoPart& part, std::vector<MapPoint>& points, PropertyValues& values);
  std::string UniqueLabel(PropertyValues& values, std::size_t number);
  void Snap(std::vector<MapPoint>& points);
  bool Fits(const GeoPart& part) const;
  void LeaveOut(const std::string& why, std::int64_t feature);

  Ormel& ormel_;
  const FeatureImport& request_;
  const VectorSource& source_;
  std::size_t layer_ = 0;
  const FeatureTarget& target_;
  std::vector<BoundProperty> bound_;
  std::optional<CrsTransform> way_;
  double vertex_factor_ = 1.0;
  FreePlaces places_;
  std::vector<MapPoint> corners_;  ///< of the domains that stand
  std::set<std::string> labels_;   ///< folded
  std::int64_t wells_ = 0;
  ImportPlan plan_;
};

Planner::Planner(Ormel& ormel, const FeatureImport& request, const VectorSource& source)
    : ormel_(ormel), request_(request), source_(source), target_(*request.target), places_(ormel) {
  plan_.target = request.target;
  if (request.layer.empty() && source.layers().size() > 1) {
    std::string all;
    for (const VectorLayer& layer : source.layers()) all += (all.empty() ? "" : ", ") + layer.name;
    throw FeatureImportError("The file holds several layers; name one of: " + all);
  }
  layer_ = request.layer.empty() ? 0 : source.Find(request.layer);
  BindProperties();
  FindWay();
  if (!target_.label_table.empty()) {
    RowReader rows(ormel.db(), "select Label from " + std::string(target_.label_table));
    while (rows.Next()) labels_.insert(FoldCase(rows.Text(0)));
  }
  if (target_.element == Element::kWell) wells_ = ormel.db().RowCount("Wells");
  if (target_.element == Element::kInhomogeneity)
    for (const ElementId& id : ElementsOf(ormel, Element::kInhomogeneity))
      for (const MapPoint at : PointsOf(ormel, id)) corners_.push_back(at);
}

void Planner::BindProperties() {
  const VectorLayer& layer = source_.layers()[layer_];
  for (const auto& [name, source] : request_.properties) {
    const bool known = std::any_of(target_.properties.begin(), target_.properties.end(),
                                   [&](const TargetProperty& each) { return each.name == name; });
    if (!known) throw FeatureImportError(std::string(target_.caption) + " have no property \"" + name + "\"");
  }
  for (const TargetProperty& property : target_.properties) {
    BoundProperty bound{&property, {}};
    bound.source.standard = property.standard;
    if (const auto given = request_.properties.find(property.name); given != request_.properties.end())
      bound.source = given->second;
    for (std::size_t i = 0; i < layer.fields.size(); ++i)
      if (EqualNoCase(layer.fields[i].name, bound.source.field)) bound.field = static_cast<int>(i);
    if (!bound.source.field.empty() && bound.field < 0)
      throw FeatureImportError("The layer " + layer.name + " has no field \"" + bound.source.field + "\"");
    const auto factor = UnitFactor(ormel_, property.quantity, bound.source.unit);
    if (!factor)
      throw FeatureImportError("\"" + bound.source.unit + "\" is no unit of " +
                               std::string(property.caption));
    bound.factor = *factor;
    if (!property.text && !bound.source.standard.empty() && !IsNumeric(bound.source.standard))
      throw FeatureImportError("The default \"" + bound.source.standard + "\" of " +
                               std::string(property.caption) + " is not a number");
    bound_.push_back(bound);
  }
  const auto factor = UnitFactor(ormel_, Quantity::kLength, request_.vertex_unit);
  if (!factor) throw FeatureImportError("\"" + request_.vertex_unit + "\" is no unit of elevations");
  vertex_factor_ = *factor;
}

void Planner::FindWay() {
  const VectorLayer& layer = source_.layers()[layer_];
  const std::string text = request_.crs.empty() ? layer.crs_wkt : request_.crs;
  const std::optional<Crs> own = ProjectCrs(ormel_);
  std::optional<Crs> theirs;
  try {
    if (!text.empty()) theirs = Crs::Parse(text);
  } catch (const GeoError&) {
    if (!request_.crs.empty()) throw;
  }
  if (theirs && own) {
    if (!theirs->Same(*own)) {
      way_.emplace(*theirs, *own);
      plan_.remarks.push_back("Coordinates go from " + theirs->name() + " to " + own->name() + ".");
    }
    return;
  }
  if (theirs && !theirs->projected())
    throw GeoError(
        "The layer is in longitudes and latitudes, and the coordinate reference system of the project is not "
        "known. "
        "Choose it in the Project Settings, and import again.",
        source_.path(), layer.name);
  plan_.remarks.push_back(
      own ? "The layer does not say its coordinate reference system: coordinates are taken as "
            "those of the map."
          : "The coordinate reference system of the project is not known: coordinates are taken "
            "as they are.");
}

bool Planner::Fits(const GeoPart& part) const {
  if (target_.geometry == GeometryKind::kPoint) return part.role == GeoPart::Role::kPoint;
  if (part.role == GeoPart::Role::kPoint) return false;
  if (target_.geometry == GeometryKind::kLine || part.role != GeoPart::Role::kLine) return true;
  // A line that comes back to where it began bounds a domain.
  const GeoPoint &a = part.points.front(), &b = part.points.back();
  return part.points.size() > 3 && a.x == b.x && a.y == b.y;
}

std::string Planner::Number(const BoundProperty& bound, const GeoFeature& feature,
                            PropertyValues& values) const {
  const TargetProperty& property = *bound.property;
  std::string text =
      bound.field < 0
          ? ""
          : std::string(Trim(GeoValueText(feature.values[static_cast<std::size_t>(bound.field)])));
  if (text.empty()) text = bound.source.standard;
  if (text.empty()) {
    values.Put(property.name, std::string("none"));
    return {};
  }
  if (!IsNumeric(text) || !std::isfinite(Val(text)))
    return std::string(property.caption) + " is not a number";
  const double number = Val(text) * bound.factor;
  if (number < property.lowest || std::abs(number) > 1e12)
    return std::string(property.caption) + " is out of range";
  values.Put(property.name, number);
  return {};
}

std::string Planner::Values(const GeoFeature& feature, PropertyValues& values) const {
  for (const BoundProperty& bound : bound_) {
    if (!bound.property->text) {
      if (std::string why = Number(bound, feature, values); !why.empty()) return why;
      continue;
    }
    std::string text =
        bound.field < 0 ? "" : GeoValueText(feature.values[static_cast<std::size_t>(bound.field)]);
    if (Trim(text).empty()) text = bound.source.standard;
    values.Put(bound.property->name, std::string(Trim(text)));
    if (bound.property->name == "Text" && Trim(text).empty()) return "no text";
  }
  return {};
}

std::string Planner::Places(const GeoPart& part, std::vector<MapPoint>& points) const {
  for (const GeoPoint& point : part.points) {
    MapPoint at{point.x, point.y};
    if (way_) {
      const auto there = way_->Forward(at.x, at.y);
      if (!there) return "coordinates that are not defined in the map's system";
      at = {there->x, there->y};
    }
    if (!std::isfinite(at.x + at.y) || std::abs(at.x) > 1e9 || std::abs(at.y) > 1e9)
      return "coordinates out of range";
    if (points.empty() || !(points.back() == at)) points.push_back(at);
  }
  return {};
}

bool Touches(const std::vector<MapPoint>& points, const Extents& box) {
  Extents own{HUGE_VAL, -HUGE_VAL, HUGE_VAL, -HUGE_VAL};
  for (const MapPoint at : points)
    own = {std::min(own.x_min, at.x), std::max(own.x_max, at.x), std::min(own.y_min, at.y),
           std::max(own.y_max, at.y)};
  return own.x_min <= box.x_max && own.x_max >= box.x_min && own.y_min <= box.y_max && own.y_max >= box.y_min;
}

std::string Planner::Shape(const GeoPart& part, std::vector<MapPoint>& points, PropertyValues& values) {
  const bool ring_part = part.role == GeoPart::Role::kOuterRing || part.role == GeoPart::Role::kHole;
  if (std::string why = Places(part, points); !why.empty()) return why;
  if (request_.within && !Touches(points, *request_.within)) return "outside of the window";
  if (target_.geometry == GeometryKind::kPoint) return {};
  const bool ring = target_.geometry == GeometryKind::kPolygon;
  if ((ring || target_.element == Element::kBarrier) && points.size() > 3 &&
      points.front() == points.back()) {
    points.pop_back();
    values.Put("Closed", 1.0);
  } else if (ring_part) {
    values.Put("Closed", 1.0);
  }
  const bool closes = ring || values.Number("Closed") != 0.0;
  // The shore of a lake: the string goes round to where it began.
  if (ring_part && target_.element == Element::kLinesink) points.push_back(points.front());
  const std::size_t before = points.size();
  points = Simplified(points, request_.tolerance);
  plan_.thinned += before - points.size();
  if (points.size() < (closes ? 3U : 2U)) return "too few vertices";
  if (points.size() > request_.most_vertices)
    return "more than " + std::to_string(request_.most_vertices) + " vertices";
  if (CrossesItself(points, closes && target_.element != Element::kLinesink)) return "crosses itself";
  return {};
}

void Planner::Snap(std::vector<MapPoint>& points) {
  if (target_.element == Element::kTextLabel) return;
  const double tolerance = ormel_.gui.VertexTolerance;
  for (MapPoint& at : points) {
    const MapPoint first = at;
    if (target_.element == Element::kInhomogeneity) {
      for (const MapPoint corner : corners_)
        if (std::hypot(corner.x - at.x, corner.y - at.y) < tolerance) at = corner;
    } else {
      at = places_.Find(at);
    }
    if (!(at == first)) ++plan_.moved;
  }
  if (target_.element == Element::kInhomogeneity)
    corners_.insert(corners_.end(), points.begin(), points.end());
}

std::string Planner::UniqueLabel(PropertyValues& values, std::size_t number) {
  if (target_.label_table.empty()) {
    if (target_.element == Element::kTestPoint)
      values.Put("Label", std::string(TextLeft(values.Text("Label"), 32)));
    return {};
  }
  const bool given = std::any_of(bound_.begin(), bound_.end(), [](const BoundProperty& each) {
    return each.property->name == "Label" && each.field >= 0;
  });
  const schema::Field* field = schema::FindField(*schema::FindTable(target_.label_table), "Label");
  const auto longest = static_cast<std::size_t>(field->size > 0 ? field->size : schema::kDefaultTextSize);
  std::string label(TextLeft(values.Text("Label"), longest));
  // Parts behind the first of a feature, and elements that only the default names, are numbered.
  if (number > 0 || !given) {
    for (std::size_t next = number + 1;; ++next) {
      const std::string behind =
          given ? " (" + std::to_string(next) + ")" : " " + std::to_string(plan_.elements.size() + next);
      const std::string tried = std::string(TextLeft(label, longest - behind.size())) + behind;
      if (labels_.count(FoldCase(tried)) != 0) continue;
      label = tried;
      break;
    }
  }
  if (label.empty()) return "no label";
  if (IsMirror(label) && target_.element == Element::kWell) return "the label of an image well";
  if (!labels_.insert(FoldCase(label)).second) return "duplicate label";
  values.Put("Label", label);
  return {};
}

std::string Planner::TakePart(const GeoFeature& feature, const GeoPart& part, std::size_t number) {
  if (!Fits(part)) return "its geometry is not of " + std::string(GeometryKindText(target_.geometry));
  PlannedElement element;
  if (std::string why = Values(feature, element.values); !why.empty()) return why;
  if (std::string why = Shape(part, element.points, element.values); !why.empty()) return why;
  if (request_.heads_from_vertices && target_.heads_from_vertices) {
    if (!part.has_z) return "no elevations at its vertices";
    element.values.Put("StartingHead", part.points.front().z * vertex_factor_);
    element.values.Put("EndingHead", part.points.back().z * vertex_factor_);
  }
  if (target_.element == Element::kWell && wells_ > kWellLimit) return "more wells than a model takes";
  if (plan_.elements.size() >= kMostElements) return "more elements than one import takes";
  if (std::string why = UniqueLabel(element.values, number); !why.empty()) return why;
  ++wells_;
  Snap(element.points);
  plan_.elements.push_back(std::move(element));
  return {};
}

void Planner::Take(const GeoFeature& feature) {
  ++plan_.features;
  if (feature.parts.empty()) return LeaveOut("no geometry", feature.id);
  std::size_t number = 0;
  for (const GeoPart& part : feature.parts) {
    // A hole of an area is a polygon of its own, as the outlines of zones have it; a domain cannot have one.
    if (part.role == GeoPart::Role::kHole && target_.element == Element::kInhomogeneity) {
      LeaveOut("hole of a domain (the domain came without it)", feature.id);
      continue;
    }
    const std::string why = TakePart(feature, part, number++);
    if (!why.empty()) LeaveOut(why, feature.id);
  }
}

void Planner::LeaveOut(const std::string& why, std::int64_t feature) {
  LeftOut& left = plan_.left_out[why];
  ++left.count;
  if (left.first.size() < kNamed) left.first.push_back(feature);
}

ImportPlan Planner::Run() {
  const double all = static_cast<double>(source_.layers()[layer_].count);
  source_.Read(layer_, [&](GeoFeature& feature) {
    Take(feature);
    if (plan_.features % kReportEvery != 0) return true;
    ormel_.ui().Progress(all > 0 ? static_cast<double>(plan_.features) / all : -1.0, "Reading features...");
    plan_.cancelled = ormel_.ui().CancelRequested();
    return !plan_.cancelled;
  });
  return std::move(plan_);
}

}  // namespace

void GuessProperties(FeatureImport& request, const VectorLayer& layer) {
  request.properties.clear();
  for (const TargetProperty& property : request.target->properties) {
    PropertySource& source = request.properties[std::string(property.name)];
    source.standard = property.standard;
    for (const std::string& name : ParseString(std::string(property.also), ' ')) {
      const auto found = std::find_if(layer.fields.begin(), layer.fields.end(),
                                      [&](const GeoField& field) { return EqualNoCase(field.name, name); });
      if (found == layer.fields.end()) continue;
      source.field = found->name;
      break;
    }
  }
}

ImportPlan PlanImport(Ormel& ormel, const FeatureImport& request) {
  const VectorSource source(request.file);
  return Planner(ormel, request, source).Run();
}

std::string ImportPlan::Text() const {
  const auto count = [](std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
  };
  std::string text = count(features, "feature", "features") + " read, " +
                     count(elements.size(), "element comes in", "elements come in") + ".";
  for (const auto& [why, left] : left_out) {
    text += "\n" + std::to_string(left.count) + " left out: " + why + " (feature";
    for (std::size_t i = 0; i < left.first.size(); ++i)
      text += (i == 0 ? " " : ", ") + std::to_string(left.first[i]);
    text += left.count > left.first.size() ? ", ...)" : ")";
  }
  if (moved > 0)
    text += "\n" + count(moved, "vertex", "vertices") + " too close to others: moved by the tolerance.";
  if (thinned > 0)
    text += "\n" + count(thinned, "vertex was", "vertices were") + " left out by simplification.";
  for (const std::string& remark : remarks) text += "\n" + remark;
  return text;
}

}  // namespace ormel
