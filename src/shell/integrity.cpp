#include "shell/integrity.h"

#include <string>
#include <string_view>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/project.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/kinds.h"
#include "model/image_wells.h"
#include "model/validity.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr const char* kRepairTitle = "Database Repair";

/// Condition on the fields X and Y; the four sides are bound as left, right, top, bottom.
constexpr std::string_view kOutside = "(X < ? or X > ? or Y > ? or Y < ?)";

/// The ends of the stream boundary of a protection area are single points too.
std::string NotOfBoundaries(Database& db) {
  if (!db.HasField("WHPAs", "VID1") || !db.HasField("WHPAs", "VID2")) return {};
  return " and VID not in (select VID1 from WHPAs) and VID not in (select VID2 from WHPAs)";
}

std::int64_t Delete(Ormel& ormel, const std::string& from_where) {
  const MapRect& w = ormel.window.SolveWindow;
  return ormel.db().Execute("delete from " + from_where, {w.x1, w.x2, w.y1, w.y2});
}

/// Vertex and row of the single-point elements of `table` outside the window; gives the rows' number.
std::int64_t RemoveStrayPoints(Ormel& ormel, const std::string& table) {
  const std::string strays =
      "(select Vertices.VID from Vertices inner join " + table + " on Vertices.VID=" + table + ".VID where ";
  const std::int64_t count = Delete(ormel, table + " where VID in " + strays + std::string(kOutside) + ")");
  // The vertices that have just lost their element: single points outside that nobody claims.
  Delete(ormel, "Vertices where PID=-1 and " + std::string(kOutside) +
                    " and VID not in (select VID from TestPoints) and VID not in (select VID from Wells)"
                    " and VID not in (select VID from Particles)" +
                    NotOfBoundaries(ormel.db()));
  return count;
}

/// Condition of the wells outside the window, its sides as numbers.
std::string StrayWells(Ormel& ormel) {
  const MapRect& w = ormel.window.SolveWindow;
  return "VID in (select VID from Vertices where X<" + NumberText(w.x1) + " or X>" + NumberText(w.x2) +
         " or Y>" + NumberText(w.y1) + " or Y<" + NumberText(w.y2) + ")";
}

struct StrayKind {
  const char* plural;
  std::string_view names;  ///< of what lies outside the window
};
constexpr StrayKind kStrays[] = {
    {"Test Points", "select Label from TestPoints inner join Vertices on Vertices.VID=TestPoints.VID where "},
    {"Text Labels", "select Text from TextLabels where "},
    {"Wells", "select Label from Wells inner join Vertices on Vertices.VID=Wells.VID where "}};

/// How many of each kind would be deleted, and which.
std::string WhatWouldGo(Ormel& ormel) {
  constexpr int kNamed = 12;
  const MapRect& w = ormel.window.SolveWindow;
  std::string text;
  for (const StrayKind& kind : kStrays) {
    std::string names;
    int count = 0;
    RowReader rows(ormel.db(), std::string(kind.names) + std::string(kOutside), {w.x1, w.x2, w.y1, w.y2});
    for (; rows.Next(); ++count)
      if (count < kNamed) names += (names.empty() ? "" : ", ") + std::string(rows.Text(0));
    if (count == 0) continue;
    if (count > kNamed) names += " and " + std::to_string(count - kNamed) + " more";
    text += "\n" + std::to_string(count) + " " + kind.plural + ": " + names;
  }
  return "\n\n" + (text.empty() ? "Nothing lies outside the current Window." : "These would go:" + text);
}

void Tell(Ormel& ormel, std::int64_t count, const std::string& kind) {
  Inform(ormel, kRepairTitle,
         count == 0 ? "Found no " + kind + " outside the current Window."
                    : Lines({"Deleted " + std::to_string(count) + " " + kind,
                             "which occured outside the current Window."}));
}

/// What a drawing that was cut short by a crash has left: rows without a vertex cannot be seen or selected,
/// and keep their label taken.
void RemoveUndrawn(Ormel& ormel) {
  constexpr const char* kWithout = " where PID not in (select PID from Vertices)";
  std::int64_t removed = 0;
  for (const ElementKind& kind : ElementKinds())
    if (kind.Polygon()) removed += ormel.db().Execute("delete from " + std::string(kind.table) + kWithout);
  if (ormel.db().HasField("Zones", "PID")) ormel.db().Execute("delete from Zones" + std::string(kWithout));
  removed += ormel.db().Execute("delete from Polygons" + std::string(kWithout));
  if (removed > 0) LoadDataControls(ormel);
}

}  // namespace

void DBIntegrity(Ormel& ormel) {
  const Named named(ormel, "DBIntegrity");
  const PleaseWait wait(ormel, "Inspecting Database Integrity...");
  Database& db = ormel.db();
  db.Execute(
      "delete from Vertices where PID=-1 and VID not in (select VID from TestPoints)"
      " and VID not in (select VID from Wells) and VID not in (select VID from Particles)" +
      NotOfBoundaries(db));
  db.Execute("update Model set UNIFLOWCompute=abs(UNIFLOWCompute) where UNIFLOWCompute<0");
  db.Execute(
      "delete from Vertices where PID=-10 and X<>(select UNIFLOWRefX from Model)"
      " and Y<>(select UNIFLOWRefY from Model)");
  RemoveUndrawn(ormel);
}

void RemoveStrayTestPoints(Ormel& ormel) {
  const Named named(ormel, "RemoveStrayTestPoints");
  const std::int64_t orphans =
      ormel.db().Execute("delete from TestPoints where VID not in (select VID from Vertices)");
  for (std::int64_t i = 0; i < orphans; ++i)
    Inform(ormel, "", Lines({"Found Test Point without vertex!", "Test Point has been deleted."}),
           Icon::kWarning);
  Tell(ormel, RemoveStrayPoints(ormel, "TestPoints"), "Test Points");
}

void RemoveStrayTextLabels(Ormel& ormel) {
  const Named named(ormel, "RemoveStrayTextLabels");
  Tell(ormel, Delete(ormel, "TextLabels where " + std::string(kOutside)), "Text Labels");
}

void RemoveStrayWells(Ormel& ormel) {
  const Named named(ormel, "RemoveStrayWells");
  const std::int64_t count = RemoveStrayPoints(ormel, "Wells");
  Tell(ormel, count, "Wells");
  if (count > 0) InvalidateSolution(ormel, false, false);
}

void DBRepair(Ormel& ormel) {
  const Named named(ormel, "DBRepair");
  const Box box{
      .title = kRepairTitle,
      .text = Lines({"When clicking OK all Test Points, Text Labels, and Wells outside the",
                     "current Window will be deleted!", "Click CANCEL and enlarge window if necessary."}) +
              WhatWouldGo(ormel),
      .buttons = Buttons::kOkCancel,
      .icon = Icon::kWarning,
      .safe_default = true};
  if (ormel.ui().Ask(box) != Answer::kOk) return;
  if (!RemoveAreasOfWells(ormel, StrayWells(ormel))) return;
  RemoveStrayTestPoints(ormel);
  RemoveStrayTextLabels(ormel);
  RemoveStrayWells(ormel);
  LoadDataControls(ormel);
  Inform(ormel, kRepairTitle, "Database Repair completed.", Icon::kInformation);
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

}  // namespace ormel
