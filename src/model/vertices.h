// All positions of the model: identities, order within a polygon, nearest vertex, clean store.
//
// Positions are map coordinates [map units].  The procedures write through the bound recordsets of the open
// project and leave them on the row they wrote.
#pragma once

#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

struct VertexRow {
  Vid vid = -1;
  Pid pid = kSinglePoint;
  Seq seq = 0;
  MapPoint at;
};

/// Adds a vertex and gives its identity.  `seq` from 0 is stored as it is; kAutomaticSeq takes the next
/// number of the sequence counter (`mouse.NextSeq`), which then grows by 100.
Vid ElemAddVertex(Ormel& ormel, MapPoint at, Pid pid, Seq seq);
/// Adds a polygon and gives its identity.
Pid ElemAddPolygon(Ormel& ormel, bool closed);
/// A new polygon with these vertices: their Seq is 1, 101, 201 ...  The sequence counter stands behind the
/// last one, so that more vertices can follow.
Pid AddPolygonWithVertices(Ormel& ormel, bool closed, std::span<const MapPoint> points);

/// The vertices of a polygon in their order.
std::vector<VertexRow> VerticesOf(Ormel& ormel, Pid pid);
/// Positions only.
std::vector<MapPoint> PointsOf(Ormel& ormel, Pid pid);
/// Puts the bound recordset on the vertex and reads it; false when there is none.
bool FindVertex(Ormel& ormel, Vid vid, VertexRow& found);
/// Gives a vertex a new place.
void PutVertex(Ormel& ormel, Vid vid, MapPoint at);
/// Deletes a vertex; nothing when there is none.
void DeleteVertex(Ormel& ormel, Vid vid);

/// Gives the vertices of a polygon the values 100, 200, 300 ... in their present order and leaves the bound
/// recordset on `vid`.
void Resequence(Ormel& ormel, Pid pid, Vid vid);

/// The same with another spacing; `rows`, in their order, get their new numbers as well.
void SpaceOut(Ormel& ormel, std::vector<VertexRow>& rows, Seq spacing);

inline constexpr Vid kNothingFound = -1;  ///< nothing within the selection radius
inline constexpr Vid kLabelFound = -2;    ///< the bound TextLabels stands on the label

/// The nearest vertex or label within the selection radius (strictly).  Of two at the same distance the
/// first in the table's order wins.  Leaves the bound Vertices on the nearest vertex, whatever its distance.
Vid ElemFindVertex(Ormel& ormel, MapPoint at);

/// The tolerance of a project just opened: the width of the full extents times 1E-05 [map units].
double DefaultVertexTolerance(const Ormel& ormel);

/// Is a stored result, from `a` to `b`, that of the segment from `from` to `to`?  Results are found by
/// numbers that a deletion or a refinement gives away again; their places tell whose they are.
bool IsSegment(const Ormel& ormel, MapPoint from, MapPoint to, MapPoint a, MapPoint b);

/// A place near `at` that overlaps no vertex: x and y grow by the tolerance until no vertex lies less than
/// the tolerance away in both.  A point that moved is told in one line of the file `report`, when one is
/// named.
MapPoint ElemCheckVertices(Ormel& ormel, MapPoint at, const std::string& report = {});

/// A line of a report of moved points.
std::string MovedPointText(MapPoint from, MapPoint to);

/// The same for many new points, without a query for each: made once, it knows the stored vertices and every
/// place that it gave.
class FreePlaces {
 public:
  explicit FreePlaces(Ormel& ormel);
  MapPoint Find(MapPoint at, const std::string& report = {});
  /// A vertex lies less than the tolerance away in both directions.
  bool Taken(MapPoint at) const;

 private:
  void Add(MapPoint at);
  double tolerance_;
  std::unordered_map<std::int64_t, std::vector<MapPoint>> cells_;  ///< by a hash of the cell
};

/// Removes vertices near the polygon's start that lie too close together, with a message for each.
void ElemCheckPolyVertices(Ormel& ormel, Pid pid);
/// Removes a line-sink string that has ended with one point; true when it is gone.
bool ElemCheckPhantomLinesinkVertices(Ormel& ormel, Pid pid);
/// Removes vertex and polygon of a barrier that has ended with one point; true when they are gone.  The row
/// of `NoFlowStrings` is the caller's.
bool ElemCheckPhantomNoFlowVertices(Ormel& ormel, Pid pid);

/// Deletes the vertices of a polygon and the polygon itself.
void DeletePolygon(Ormel& ormel, Pid pid);
/// Deletes the vertices, the polygon and the row of `table` that carries its PID.
void DeletePolygonElement(Ormel& ormel, const char* table, Pid pid);

}  // namespace ormel
