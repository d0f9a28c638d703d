#include "model/vertices.h"

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "document/document.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/recordset.h"

namespace ormel {
namespace {

constexpr Seq kSeqStep = 100;

double DistanceSquared(MapPoint a, MapPoint b) {
  const double dx = a.x - b.x, dy = a.y - b.y;
  return dx * dx + dy * dy;
}

/// By the index where there is one, else by a look at every vertex.
HitIndex::Hit NearestVertex(Ormel& ormel, MapPoint at) {
  if (ormel.ports.document != nullptr) return ormel.ports.document->NearestVertex(at);
  HitIndex once;
  return once.Nearest(ormel, at);
}

}  // namespace

Vid ElemAddVertex(Ormel& ormel, MapPoint at, Pid pid, Seq seq) {
  const Named named(ormel, "ElemAddVertex");
  if (seq < 0) {
    seq = ormel.mouse.NextSeq;
    ormel.mouse.NextSeq += kSeqStep;
  }
  Recordset& vertices = *ormel.project.bound.Vertices;
  vertices.AddNew();
  vertices["PID"] = pid;
  vertices["Seq"] = seq;
  vertices["X"] = at.x;
  vertices["Y"] = at.y;
  vertices.Update();
  return vertices.Get<Vid>("VID");
}

Pid ElemAddPolygon(Ormel& ormel, bool closed) {
  const Named named(ormel, "ElemAddPolygon");
  Recordset& polygons = *ormel.project.bound.Polygons;
  polygons.AddNew();
  polygons["Closed"] = closed ? 1 : 0;
  polygons.Update();
  return polygons.Get<Pid>("PID");
}

Pid AddPolygonWithVertices(Ormel& ormel, bool closed, std::span<const MapPoint> points) {
  const Pid pid = ElemAddPolygon(ormel, closed);
  ormel.mouse.NextSeq = 1;
  for (const MapPoint at : points) ElemAddVertex(ormel, at, pid, kAutomaticSeq);
  return pid;
}

std::vector<VertexRow> VerticesOf(Ormel& ormel, Pid pid) {
  std::vector<VertexRow> rows;
  RowReader reader(ormel.db(), "select VID,Seq,X,Y from Vertices where PID=? order by Seq,VID", {pid});
  while (reader.Next())
    rows.push_back({reader.Long(0), pid, reader.Long(1), {reader.Double(2), reader.Double(3)}});
  return rows;
}

std::vector<MapPoint> PointsOf(Ormel& ormel, Pid pid) {
  std::vector<MapPoint> points;
  for (const VertexRow& row : VerticesOf(ormel, pid)) points.push_back(row.at);
  return points;
}

bool FindVertex(Ormel& ormel, Vid vid, VertexRow& found) {
  Recordset& vertices = *ormel.project.bound.Vertices;
  if (!vertices.FindKey("VID", vid)) return false;
  found = {vid,
           vertices.Get<Pid>("PID"),
           vertices.Get<Seq>("Seq"),
           {vertices.Get<double>("X"), vertices.Get<double>("Y")}};
  return true;
}

void PutVertex(Ormel& ormel, Vid vid, MapPoint at) {
  Recordset& vertices = *ormel.project.bound.Vertices;
  if (!vertices.FindKey("VID", vid)) return;
  vertices.Edit();
  vertices["X"] = at.x;
  vertices["Y"] = at.y;
  vertices.Update();
}

void DeleteVertex(Ormel& ormel, Vid vid) {
  Recordset& vertices = *ormel.project.bound.Vertices;
  if (vertices.FindKey("VID", vid)) vertices.Delete();
}

void SpaceOut(Ormel& ormel, std::vector<VertexRow>& rows, Seq spacing) {
  BulkUpdate update(ormel.db(), "Vertices", "VID", {"Seq"});
  Seq seq = 0;
  for (VertexRow& row : rows) {
    row.seq = seq += spacing;
    update.Row(row.vid, row.seq);
  }
}

void Resequence(Ormel& ormel, Pid pid, Vid vid) {
  const Named named(ormel, "Resequence");
  std::vector<VertexRow> rows = VerticesOf(ormel, pid);
  SpaceOut(ormel, rows, kSeqStep);
  ormel.project.bound.Vertices->FindKey("VID", vid);
}

Vid ElemFindVertex(Ormel& ormel, MapPoint at) {
  const Named named(ormel, "ElemFindVertex");
  auto [found, nearest] = NearestVertex(ormel, at);
  if (found != kNothingFound) ormel.project.bound.Vertices->FindKey("VID", found);

  const bool hydrography = ormel.layers.On(Layer::kHydrographyLabels);
  Bookmark nearest_label;
  RowReader labels(ormel.db(), "select rowid,LabelType,X,Y from TextLabels order by rowid");
  while (labels.Next()) {
    const std::int64_t type = labels.Long(1);
    if (type != 0 && !(type == 1 && hydrography)) continue;
    const double distance = DistanceSquared(at, {labels.Double(2), labels.Double(3)});
    if (distance < nearest) {
      nearest = distance;
      found = kLabelFound;
      nearest_label.row = labels.Long(0);
    }
  }
  if (found == kLabelFound) ormel.project.bound.TextLabels->SetBookmark(nearest_label);

  if (!(nearest < ormel.selection.radius_squared)) found = kNothingFound;
  ormel.selection.found_vid = found;
  return found;
}

void DeletePolygon(Ormel& ormel, Pid pid) {
  ormel.db().Execute("delete from Vertices where PID=?", {pid});
  ormel.db().Execute("delete from Polygons where PID=?", {pid});
}

void DeletePolygonElement(Ormel& ormel, const char* table, Pid pid) {
  DeletePolygon(ormel, pid);
  ormel.db().Execute("delete from " + std::string(table) + " where PID=?", {pid});
}

}  // namespace ormel
