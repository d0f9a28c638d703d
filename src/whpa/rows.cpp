#include "whpa/rows.h"

#include <algorithm>

#include "core/ormel.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/area_runs.h"
#include "model/wells.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/strings.h"

namespace ormel {
namespace {

std::string Where(std::string_view condition) {
  return condition.empty() ? std::string() : " where " + std::string(condition);
}

}  // namespace

std::vector<WhpaWell> EligibleWells(Ormel& ormel) {
  RowReader rows(
      ormel.db(),
      "select Wells.Label,Wells.VID,Vertices.X,Vertices.Y,Wells.Head,Wells.Radius from Wells "
      "inner join Vertices on Vertices.VID=Wells.VID where HeadSpecified=0 and PPWell=0 and Pond=0 "
      "and Transient=0 order by Label");
  std::vector<WhpaWell> wells;
  while (rows.Next()) {
    if (IsMirror(rows.Text(0))) continue;
    wells.push_back({std::string(rows.Text(0)),
                     rows.Long(1),
                     {rows.Double(2), rows.Double(3)},
                     rows.Double(4),
                     rows.Double(5)});
  }
  return wells;
}

void AddWhpaRows(Ormel& ormel, const std::vector<WhpaRow>& rows) {
  schema::EnsureField(ormel.db(), "WHPAs", "Outline");
  BulkInsert insert(
      ormel.db(), "WHPAs",
      {"Well", "Radius", "TimeOfTravel", "Porosity", "Thickness", "AmbientFlow", "Direction", "T", "Shift",
       "Point1X", "Point1Y", "Point2X", "Point2Y", "FirstHead", "Type", "WHPAText", "WHPAData", "Outline"});
  for (const WhpaRow& row : rows)
    insert.Row(row.Well, row.Radius, row.TimeOfTravel, row.Porosity, row.Thickness, row.AmbientFlow,
               row.Direction, row.T, 0.0, 0.0, 0.0, 0.0, 0.0, row.FirstHead, static_cast<int>(row.Type),
               "NONE", row.WHPAData, row.Outline ? 1 : 0);
}

std::vector<WhpaRow> ReadWhpaRows(Ormel& ormel, std::string_view where) {
  RowReader rows(
      ormel.db(),
      std::string("select Well,Radius,TimeOfTravel,Porosity,Thickness,AmbientFlow,Direction,T,FirstHead,"
                  "WHPAData,Type,") +
          (ormel.db().HasField("WHPAs", "Outline") ? "Outline" : "0") + " from WHPAs" + Where(where));
  std::vector<WhpaRow> found;
  while (rows.Next()) {
    WhpaRow row;
    row.Well = rows.Text(0);
    int column = 1;
    for (double* value : {&row.Radius, &row.TimeOfTravel, &row.Porosity, &row.Thickness, &row.AmbientFlow,
                          &row.Direction, &row.T, &row.FirstHead, &row.WHPAData})
      *value = rows.Double(column++);
    row.Type = static_cast<WhpaType>(rows.Long(column));
    row.Outline = rows.Long(column + 1) != 0;
    found.push_back(std::move(row));
  }
  return found;
}

/// Nothing else names the two points: without their rows they would stay on the map for good.
void DeleteBoundaryVertices(Ormel& ormel, std::string_view where) {
  for (const char* field : {"VID1", "VID2"})
    ormel.db().Execute("delete from Vertices where PID=-1 and VID in (select " + std::string(field) +
                       " from WHPAs" + Where(where) + ")");
}

void RemoveWhpaRows(Ormel& ormel, std::string_view where) {
  struct Doomed {
    std::string well, stem;
    bool pathlines;
  };
  std::vector<Doomed> doomed;
  {
    RowReader rows(ormel.db(), "select Well,WHPAText,Radius from WHPAs" + Where(where));
    while (rows.Next())
      doomed.push_back({std::string(rows.Text(0)), std::string(rows.Text(1)), rows.Double(2) == 0.0});
  }
  if (!doomed.empty() && doomed.front().pathlines) LeaveAreaRun(ormel, doomed.front().stem);
  for (const Doomed& row : doomed) {
    const std::string image = MirrorLabel(row.well);
    ormel.db().Execute("delete from Vertices where VID in (select VID from Wells where Label=?)", {image});
    ormel.db().Execute("delete from Wells where Label=?", {image});
  }
  DeleteBoundaryVertices(ormel, where);
  ormel.db().Execute("delete from WHPAs" + Where(where));
}

void DropRowsOfMissingWells(Ormel& ormel, WhpaType type, const std::vector<WhpaWell>& wells,
                            std::string_view closing) {
  const std::string where = "Type=" + std::to_string(static_cast<int>(type));
  for (const WhpaRow& row : ReadWhpaRows(ormel, where)) {
    const bool exists = std::any_of(wells.begin(), wells.end(), [&row](const WhpaWell& well) {
      return EqualNoCase(well.label, row.Well);
    });
    if (exists) continue;
    Inform(ormel, "Reference to missing well",
           Lines({"Could not find the well, '" + row.Well + "'.", closing}));
    ormel.db().Execute("delete from WHPAs where " + where + " and Well=?", {row.Well});
  }
}

}  // namespace ormel
