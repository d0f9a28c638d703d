#include "model/image_wells.h"

#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/recordset.h"

namespace ormel {

std::vector<ImageSource> ImageSources(Ormel& ormel) {
  std::vector<ImageSource> sources;
  RowReader rows(ormel.db(),
                 "select WHPAs.Well,Point1X,Point1Y,Point2X,Point2Y,Vertices.X,Vertices.Y from WHPAs inner "
                 "join Wells on Wells.Label=WHPAs.Well inner join Vertices on Vertices.VID=Wells.VID where "
                 "(WHPAs.Type=2 or WHPAs.Type=3) and (Point1X<>Point2X or Point1Y<>Point2Y) order by "
                 "WHPAs.rowid");
  while (rows.Next())
    sources.push_back({std::string(rows.Text(0)),
                       {rows.Double(1), rows.Double(2)},
                       {rows.Double(3), rows.Double(4)},
                       {rows.Double(5), rows.Double(6)}});
  return sources;
}

void RemakeImageWells(Ormel& ormel) {
  for (const ImageSource& source : ImageSources(ormel))
    MirrorWell(ormel, source.well, source.first, source.second, source.at);
}

void RenameInAreas(Ormel& ormel, std::string_view from, std::string_view to) {
  ormel.db().Execute("update WHPAs set Well=? where Well=?", {std::string(to), std::string(from)});
  ormel.db().Execute("update Wells set Label=? where Label=?", {MirrorLabel(to), MirrorLabel(from)});
  if (ormel.project.bound.Wells) ormel.project.bound.Wells->Requery();
}

bool HasProtectionArea(Ormel& ormel, std::string_view well) {
  return ormel.db().Scalar("select count(*) from WHPAs where Well=?", {std::string(well)}).AsLong() > 0;
}

void RemoveAreasOf(Ormel& ormel, const std::string& well) {
  std::vector<Vid> points;
  {
    RowReader rows(ormel.db(), "select VID1,VID2 from WHPAs where Well=?", {well});
    while (rows.Next()) points.insert(points.end(), {rows.Long(0), rows.Long(1)});
  }
  const std::string image = MirrorLabel(well);
  points.push_back(ormel.db().Scalar("select VID from Wells where Label=?", {image}).AsLong());
  ormel.db().Execute("delete from Wells where Label=?", {image});
  ormel.db().Execute("delete from WHPAs where Well=?", {well});
  for (const Vid point : points) {
    const bool shared =
        ormel.db().Scalar("select count(*) from WHPAs where VID1=? or VID2=?", {point, point}).AsLong() > 0;
    if (point > 0 && !shared) DeleteVertex(ormel, point);
  }
  if (ormel.project.bound.Wells) ormel.project.bound.Wells->Requery();
}

bool AskToRemoveAreas(Ormel& ormel, const std::vector<std::string>& wells) {
  if (wells.empty()) return true;
  if (!AskOkCancel(ormel, "Confirm",
                   "Protection areas are drawn for " + std::to_string(wells.size()) +
                       " of these wells.  The areas, their stream boundaries and the images of the wells go "
                       "with them.  Delete them all?",
                   Icon::kQuestion))
    return false;
  for (const std::string& well : wells) RemoveAreasOf(ormel, well);
  return true;
}

bool RemoveAreasOfWells(Ormel& ormel, const std::string& condition) {
  std::vector<std::string> wells;
  {
    RowReader rows(ormel.db(),
                   "select Label from Wells where (" + condition + ") and Label in (select Well from WHPAs)");
    while (rows.Next()) wells.emplace_back(rows.Text(0));
  }
  return AskToRemoveAreas(ormel, wells);
}

}  // namespace ormel
