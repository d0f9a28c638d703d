#include "model/move.h"

#include <string_view>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/kinds.h"
#include "model/area_runs.h"
#include "model/crossing.h"
#include "model/digitize.h"
#include "model/image_wells.h"
#include "model/model_values.h"
#include "model/observations.h"
#include "model/selection.h"
#include "model/several.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

std::string_view ActivityOf(Element element) {
  const ElementKind* kind = FindKind(element);
  return kind == nullptr ? "Move Vertex" : kind->moving;
}

void MoveReference(Ormel& ormel, MapPoint to) {
  ModelValues model = ReadModel(ormel);
  model.UNIFLOWRefX = to.x;
  model.UNIFLOWRefY = to.y;
  WriteModel(ormel, model);
}

struct BoundaryRow {
  std::string well, stem;
  bool first = false;
  MapPoint point1, point2;
};

/// The protection areas that a stream boundary's vertex belongs to.
std::vector<BoundaryRow> BoundariesOf(Ormel& ormel, Vid vid) {
  std::vector<BoundaryRow> rows;
  RowReader reader(ormel.db(),
                   "select Well,WHPAText,VID1,Point1X,Point1Y,Point2X,Point2Y from WHPAs "
                   "where VID1=? or VID2=?",
                   {vid, vid});
  while (reader.Next())
    rows.push_back({std::string(reader.Text(0)),
                    std::string(reader.Text(1)),
                    reader.Long(2) == vid,
                    {reader.Double(3), reader.Double(4)},
                    {reader.Double(5), reader.Double(6)}});
  return rows;
}

void MoveBoundary(Ormel& ormel, Vid vid, MapPoint to) {
  const std::vector<BoundaryRow> rows = BoundariesOf(ormel, vid);
  ormel.db().Execute("update WHPAs set Point1X=?,Point1Y=? where VID1=?", {to.x, to.y, vid});
  ormel.db().Execute("update WHPAs set Point2X=?,Point2Y=? where VID2=?", {to.x, to.y, vid});
  for (BoundaryRow row : rows) {
    (row.first ? row.point1 : row.point2) = to;
    RowReader well(ormel.db(),
                   "select Vertices.X,Vertices.Y from Wells,Vertices "
                   "where Wells.VID=Vertices.VID and Wells.Label=?",
                   {row.well});
    if (well.Next()) {
      const MapPoint at{well.Double(0), well.Double(1)};
      MirrorWell(ormel, row.well, row.point1, row.point2, at);
    }
    OutdateAreaRun(ormel, row.stem);
  }
}

/// What a moved vertex means for the rows that repeat its place.
void FollowUp(Ormel& ormel, Element element, Vid vid, MapPoint to) {
  switch (element) {
    case Element::kWell:
      RemakeImageWells(ormel);
      break;
    case Element::kUniformFlow:
      MoveReference(ormel, to);
      break;
    case Element::kFluxLine:
      TellFluxLineMoved(ormel);
      break;
    case Element::kWhpaBoundaryVertex:
      MoveBoundary(ormel, vid, to);
      break;
    default:
      break;  // no other row knows the place
  }
}

}  // namespace

void TellFluxLineMoved(Ormel& ormel) {
  Inform(ormel, "Please Note",
         "To view the new results for the flux inspection line, you must re-solve the model");
}

void ElemBeginMove(Ormel& ormel) {
  RunEdit(ormel, "EDIT_CMDS_Click", [&] {
    if (SelectedElements(ormel).empty()) return;
    ormel.view().TurnOffMenus();
    ormel.mouse.MovePending = true;
    ormel.mouse.MoveActive = false;
    const bool one = ormel.selection.SelectedType != Element::kNone;
    Activity(ormel, one ? ActivityOf(ormel.selection.SelectedType) : "Move Elements");
    Feedback(ormel, "Press mouse button and drag to the new location");
  });
}

void ElemCancelMove(Ormel& ormel) {
  ormel.mouse.MovePending = ormel.mouse.MoveActive = false;
  EndPlacing(ormel);
}

std::vector<Vid> SharedCorners(Ormel& ormel, Vid vid) {
  VertexRow vertex;
  if (!FindVertex(ormel, vid, vertex)) return {};
  const double t = ormel.gui.VertexTolerance;
  const auto [x, y] = vertex.at;
  std::vector<Vid> corners;
  RowReader reader(ormel.db(),
                   "select VID from Vertices where X >= ? and X <= ? and Y >= ? and Y <= ? and VID <> ? "
                   "and PID in (select PID from Inhomogeneities) and PID <> ?",
                   {x - t, x + t, y - t, y + t, vid, vertex.pid});
  while (reader.Next()) corners.push_back(reader.Long(0));
  return corners;
}

void ElemMoveVertex(Ormel& ormel, MapPoint to) {
  const Named named(ormel, "ElemMoveVertex");
  const Selection selected = ormel.selection;
  if (selected.SelectedType == Element::kTextLabel) {
    MoveTextLabel(ormel, selected.vid, to);
  } else {
    if (selected.SelectedType == Element::kInhomogeneity)
      for (const Vid corner : SharedCorners(ormel, selected.vid)) PutVertex(ormel, corner, to);
    PutVertex(ormel, selected.vid, to);
  }
  FollowUp(ormel, selected.SelectedType, selected.vid, to);
}

void ElemEndMove(Ormel& ormel, MapPoint from, MapPoint to) {
  RunEdit(ormel, "ElemMoveVertex", [&] {
    const Element element = ormel.selection.SelectedType;
    ormel.mouse.MovePending = ormel.mouse.MoveActive = false;
    if (element != Element::kNone) {
      if (!RefuseCrossingMove(ormel, element, ormel.selection.pid, ormel.selection.vid, to))
        ElemMoveVertex(ormel, to);
      ClearSelection(ormel);
    } else {
      MoveSelected(ormel, {to.x - from.x, to.y - from.y});  // several may have farther to go
    }
    EndPlacing(ormel);
  });
}

}  // namespace ormel
