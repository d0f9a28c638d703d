#include "document/elements_near.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "core/ormel.h"
#include "document/kinds.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

double Squared(MapPoint a, MapPoint b) {
  return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

/// Of a place from a segment.
double Squared(MapPoint at, MapPoint a, MapPoint b) {
  const double length = Squared(a, b);
  if (!(length > 0.0)) return Squared(at, a);
  const double share =
      std::clamp(((at.x - a.x) * (b.x - a.x) + (at.y - a.y) * (b.y - a.y)) / length, 0.0, 1.0);
  return Squared(at, {a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)});
}

bool Inside(MapPoint at, const std::vector<MapPoint>& ring) {
  bool inside = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    const MapPoint a = ring[i], b = ring[j];
    if ((a.y > at.y) != (b.y > at.y) && at.x < (b.x - a.x) * (at.y - a.y) / (b.y - a.y) + a.x)
      inside = !inside;
  }
  return inside;
}

double Area(const std::vector<MapPoint>& ring) {
  double twice = 0.0;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++)
    twice +=
        (ring[j].x - ring[0].x) * (ring[i].y - ring[0].y) - (ring[i].x - ring[0].x) * (ring[j].y - ring[0].y);
  return 0.5 * std::abs(twice);
}

struct Found {
  double distance = 0.0;  ///< squared; behind all distances for an area
  double area = 0.0;
  ElementId id;
};

class Search {
 public:
  Search(Ormel& ormel, MapPoint at, double reach) : ormel_(ormel), at_(at), reach_(reach) {}

  void Point(Vid vid, Pid pid, MapPoint place) {
    const double distance = Squared(at_, place);
    if (distance <= reach_) Keep(distance, 0.0, OwnerOf(ormel_, vid, pid), vid, pid);
  }
  void Line(Vid first, Pid pid, const std::vector<MapPoint>& points) {
    if (points.empty()) return;
    double nearest = Squared(at_, points.front());
    for (std::size_t i = 1; i < points.size(); ++i)
      nearest = std::min(nearest, Squared(at_, points[i - 1], points[i]));
    const double closing = Squared(at_, points.back(), points.front());
    const bool inside = points.size() > 2 && Inside(at_, points);
    if (std::min(nearest, closing) > reach_ && !inside) return;
    const Element element = OwnerOf(ormel_, first, pid);
    const ElementKind* kind = FindKind(element);
    if (kind == nullptr) return;
    const bool ring = kind->shape == Shape::kRing || element == Element::kCapzone;
    if (ring) nearest = std::min(nearest, closing);
    if (nearest <= reach_)
      Keep(nearest, 0.0, element, first, pid);
    else if (ring && inside)
      Keep(std::numeric_limits<double>::max(), Area(points), element, first, pid);
  }
  void Label(std::int64_t row, MapPoint place) {
    const double distance = Squared(at_, place);
    if (distance <= reach_) found_.push_back({distance, 0.0, {Element::kTextLabel, row}});
  }
  std::vector<ElementId> Ids() {
    std::stable_sort(found_.begin(), found_.end(), [](const Found& a, const Found& b) {
      return a.distance != b.distance ? a.distance < b.distance : a.area < b.area;
    });
    std::vector<ElementId> ids;
    std::set<ElementId> known;
    for (const Found& found : found_)
      if (known.insert(found.id).second) ids.push_back(found.id);
    return ids;
  }

 private:
  void Keep(double distance, double area, Element element, Vid vid, Pid pid) {
    if (element != Element::kNone) found_.push_back({distance, area, IdOf(element, vid, pid)});
  }
  Ormel& ormel_;
  MapPoint at_;
  double reach_;
  std::vector<Found> found_;
};

}  // namespace

std::vector<ElementId> ElementsNear(Ormel& ormel, MapPoint at, double reach_squared) {
  Search search(ormel, at, reach_squared);
  Pid pid = kSinglePoint;
  Vid first = -1;
  std::vector<MapPoint> points;
  RowReader rows(ormel.db(), "select VID,PID,X,Y from Vertices order by PID,Seq");
  while (rows.Next()) {
    const Pid of = rows.Long(1);
    const MapPoint place{rows.Double(2), rows.Double(3)};
    if (of < 1) {
      search.Point(rows.Long(0), of, place);
      continue;
    }
    if (of != pid) {
      search.Line(first, pid, points);
      points.clear();
      pid = of;
      first = rows.Long(0);
    }
    points.push_back(place);
  }
  search.Line(first, pid, points);
  RowReader labels(ormel.db(), "select rowid,X,Y from TextLabels");
  while (labels.Next()) search.Label(labels.Long(0), {labels.Double(1), labels.Double(2)});
  return search.Ids();
}

}  // namespace ormel
