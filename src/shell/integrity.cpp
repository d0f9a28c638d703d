#include "shell/integrity.h"

#include <string>
#include <string_view>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/project.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/validity.h"
#include "store/database.h"

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

void Tell(Ormel& ormel, std::int64_t count, const std::string& kind) {
  Inform(ormel, kRepairTitle,
         count == 0 ? "Found no " + kind + " outside the current Window."
                    : Lines({"Deleted " + std::to_string(count) + " " + kind,
                             "which occured outside the current Window."}));
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
  if (!AskOkCancel(
          ormel, kRepairTitle,
          Lines({"When clicking OK all Test Points, Text Labels, and Wells outside the",
                 "current Window will be deleted!", "Click CANCEL and enlarge window if necessary."}),
          Icon::kWarning))
    return;
  RemoveStrayTestPoints(ormel);
  RemoveStrayTextLabels(ormel);
  RemoveStrayWells(ormel);
  LoadDataControls(ormel);
  Inform(ormel, kRepairTitle, "Database Repair completed.", Icon::kInformation);
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

}  // namespace ormel
