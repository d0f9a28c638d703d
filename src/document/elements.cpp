#include "document/elements.h"

#include <algorithm>
#include <limits>
#include <string>

#include "core/ormel.h"
#include "document/kinds.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

std::string Table(const ElementKind& kind) {
  return std::string(kind.table);
}

/// All elements of a kind that have no point outside of the four bounds.
std::string WithinSql(const ElementKind& kind) {
  const std::string inside = "X>=? and X<=? and Y>=? and Y<=?";
  if (kind.shape == Shape::kFree) return "select rowid from " + Table(kind) + " where " + inside;
  const std::string key = kind.KeyField(), own = "(select " + key + " from " + Table(kind) + ")";
  if (!kind.Polygon()) return "select VID from Vertices where " + inside + " and VID in " + own;
  return "select PID from Vertices where PID in " + own +
         " group by PID having min(X)>=? and max(X)<=? and "
         "min(Y)>=? and max(Y)<=?";
}

}  // namespace

ElementPlace PlaceOf(const ElementId& id) {
  const ElementKind* kind = FindKind(id.element);
  return kind != nullptr && kind->Polygon() ? ElementPlace{-1, id.key} : ElementPlace{id.key, kSinglePoint};
}

ElementId IdOf(Element element, Vid vid, Pid pid) {
  const ElementKind* kind = FindKind(element);
  return {element, kind != nullptr && kind->Polygon() ? pid : vid};
}

bool MayBeOneOfSeveral(Element element) {
  const ElementKind* kind = FindKind(element);
  return kind != nullptr && !kind->table.empty() && element != Element::kWhpaBoundaryVertex;
}

bool Exists(Ormel& ormel, const ElementId& id) {
  const ElementKind* kind = FindKind(id.element);
  if (kind == nullptr) return false;
  if (!MayBeOneOfSeveral(id.element)) return OwnerOf(ormel, id.key).element == id.element;
  return ormel.db()
             .Scalar("select count(*) from " + Table(*kind) + " where " + kind->KeyField() + "=?", {id.key})
             .AsLong() > 0;
}

std::vector<ElementId> ElementsOf(Ormel& ormel, Element element) {
  const ElementKind* kind = FindKind(element);
  if (!MayBeOneOfSeveral(element)) return {};
  std::vector<ElementId> ids;
  const std::string key = kind->KeyField();
  RowReader rows(ormel.db(), "select " + key + " from " + Table(*kind) + " order by " + key);
  while (rows.Next()) ids.push_back({element, rows.Long(0)});
  return ids;
}

std::vector<ElementId> ElementsWithin(Ormel& ormel, const Extents& box) {
  std::vector<ElementId> ids;
  for (const ElementKind& kind : ElementKinds()) {
    if (!MayBeOneOfSeveral(kind.element)) continue;
    RowReader rows(ormel.db(), WithinSql(kind), {box.x_min, box.x_max, box.y_min, box.y_max});
    while (rows.Next()) ids.push_back({kind.element, rows.Long(0)});
  }
  std::sort(ids.begin(), ids.end());
  return ids;
}

std::vector<ElementId> AllElements(Ormel& ormel) {
  constexpr double kFar = std::numeric_limits<double>::max();
  return ElementsWithin(ormel, {-kFar, kFar, -kFar, kFar});
}

std::vector<Vid> VertexIdsOf(Ormel& ormel, const ElementId& id) {
  const ElementKind* kind = FindKind(id.element);
  if (kind == nullptr || kind->shape == Shape::kFree) return {};
  if (!kind->Polygon()) return {id.key};
  std::vector<Vid> vids;
  RowReader rows(ormel.db(), "select VID from Vertices where PID=? order by Seq,VID", {id.key});
  while (rows.Next()) vids.push_back(rows.Long(0));
  return vids;
}

std::vector<MapPoint> PointsOf(Ormel& ormel, const ElementId& id) {
  const ElementKind* kind = FindKind(id.element);
  if (kind == nullptr) return {};
  const std::string sql = kind->shape == Shape::kFree ? "select X,Y from " + Table(*kind) + " where rowid=?"
                          : kind->Polygon() ? "select X,Y from Vertices where PID=? order by Seq,VID"
                                            : "select X,Y from Vertices where VID=?";
  std::vector<MapPoint> points;
  RowReader rows(ormel.db(), sql, {id.key});
  while (rows.Next()) points.push_back({rows.Double(0), rows.Double(1)});
  return points;
}

bool IsImageWell(Ormel& ormel, const ElementId& id) {
  return id.element == Element::kWell &&
         ormel.db()
                 .Scalar("select count(*) from Wells where VID=? and Label like 'Mirror_*'", {id.key})
                 .AsLong() > 0;
}

void RemoveElement(Ormel& ormel, const ElementId& id) {
  const ElementKind* kind = FindKind(id.element);
  if (kind == nullptr || !MayBeOneOfSeveral(id.element)) return;
  Database& db = ormel.db();
  db.Execute("delete from " + Table(*kind) + " where " + kind->KeyField() + "=?", {id.key});
  if (kind->shape == Shape::kFree) return;
  db.Execute(std::string("delete from Vertices where ") + (kind->Polygon() ? "PID=?" : "VID=?"), {id.key});
  if (kind->Polygon()) db.Execute("delete from Polygons where PID=?", {id.key});
}

}  // namespace ormel
