#include "model/wells.h"

#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/digitize.h"
#include "model/geometry.h"
#include "model/image_wells.h"
#include "model/vertices.h"
#include "model/well_form.h"
#include "store/database.h"
#include "store/recordset.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kMirrorPrefix = "Mirror_";
constexpr std::size_t kMirroredCharacters = 57;

void PutFields(Recordset& wells, const WellRow& row) {
  wells["Label"] = row.Label;
  wells["HeadSpecified"] = row.HeadSpecified ? 1 : 0;
  wells["Pond"] = row.Pond ? 1 : 0;
  wells["Head"] = row.Head;
  wells["Radius"] = row.Radius;
  wells["Setback"] = row.Setback;
  wells["NParticles"] = row.NParticles;
  wells["StartElev"] = row.StartElev;
  wells["PathlineColor"] = row.PathlineColor;
  wells["PPWell"] = row.PPWell;
  wells["Transient"] = row.Transient;
}

}  // namespace

WellRow ReadWell(const Recordset& wells) {
  WellRow row{.Label = wells.Get<std::string>("Label"),
              .HeadSpecified = wells.Get<int>("HeadSpecified") != 0,
              .Pond = wells.Get<int>("Pond") != 0,
              .Head = wells.Get<double>("Head"),
              .Radius = wells.Get<double>("Radius"),
              .Setback = wells.Get<double>("Setback"),
              .NParticles = wells.Get<int>("NParticles"),
              .StartElev = wells.Get<double>("StartElev"),
              .PPWell = wells.Get<int>("PPWell"),
              .Transient = wells.Get<int>("Transient")};
  if (!wells.Get("PathlineColor").IsNull()) row.PathlineColor = wells.Get<std::int32_t>("PathlineColor");
  return row;
}

bool FindWell(Ormel& ormel, Vid vid, WellRow& found) {
  Recordset& wells = *ormel.project.bound.Wells;
  if (!wells.FindKey("VID", vid)) return false;
  found = ReadWell(wells);
  return true;
}

Vid StoreWell(Ormel& ormel, const WellRow& row, MapPoint at) {
  const Vid vid = ElemAddVertex(ormel, at, kSinglePoint, 0);
  Recordset& wells = *ormel.project.bound.Wells;
  try {
    wells.AddNew();
    wells["VID"] = vid;
    PutFields(wells, row);
    wells.Update();
  } catch (...) {
    wells.CancelUpdate();
    DeleteVertex(ormel, vid);
    throw;
  }
  return vid;
}

void ChangeWell(Ormel& ormel, Vid vid, const WellRow& row, MapPoint at) {
  Recordset& wells = *ormel.project.bound.Wells;
  if (!wells.FindKey("VID", vid)) return;
  const std::string label = wells.Get("Label").AsText();
  wells.Edit();
  PutFields(wells, row);
  wells.Update();
  PutVertex(ormel, vid, at);
  if (IsMirror(label)) return;
  if (label != row.Label) RenameInAreas(ormel, label, row.Label);
  if (HasProtectionArea(ormel, row.Label)) RemakeImageWells(ormel);
}

bool WellLimitReached(Ormel& ormel, std::string_view last_line) {
  // Strictly more: one well above the number that the box names is still accepted.
  if (ormel.db().RowCount("Wells") <= kWellLimit) return false;
  Inform(ormel, "Maximum well limit reached!",
         Lines({"Ormel only allows for up to 2000 wells in a single model.", last_line}));
  return true;
}

bool IsMirror(std::string_view label) {
  return label.starts_with(kMirrorPrefix);
}

std::string MirrorLabel(std::string_view label) {
  return std::string(kMirrorPrefix) + std::string(TextLeft(label, kMirroredCharacters));
}

void ElemAddWell(Ormel& ormel) {
  RunEdit(ormel, "ElemAddWell", [&] {
    if (WellLimitReached(ormel, "You may not add any more.")) {
      EndPlacing(ormel);
      return;
    }
    ormel.view().ElemTurnOffSelection();
    const MapPoint click = LastClick(ormel);
    WellProperties form(ormel);
    form.Fill({}, click);
    ormel.view().ShowPlace(Element::kWell, click);
    ormel.ui().ShowForm(form);
    if (form.Result == OkCancelForm::kOk) {
      WellRow row = form.Row();
      row.PathlineColor = kDefaultPathlineColor;  // a colour is stored by an edit only
      const MapPoint at = ElemCheckVertices(ormel, form.At());
      StoreWell(ormel, row, at);
      TurnOnLayer(ormel, Layer::kElements);
    }
    EndPlacing(ormel);
  });
}

bool MirrorWell(Ormel& ormel, const std::string& label, MapPoint point1, MapPoint point2, MapPoint well) {
  const Named named(ormel, "MirrorWell");
  if (point1 == point2) {
    Inform(ormel, "Stream Boundary",
           "The two points of the stream boundary are the same.  Cannot create the mirrored well");
    return false;
  }
  const Value present = ormel.db().Scalar("select VID from Wells where Label=?", {MirrorLabel(label)});
  if (present.IsNull() && WellLimitReached(ormel, "Cannot create the mirrored well")) return false;
  Recordset source = ormel.db().OpenRecordset("select * from Wells where Label='" + SQLSafe(label) + "'");
  if (!source.HasRow()) return false;
  WellRow image = ReadWell(source);
  image.Label = MirrorLabel(label);
  image.Head = -image.Head;
  if (image.NParticles > 0) image.NParticles = -image.NParticles;
  image.PathlineColor = kDefaultPathlineColor;

  const MapPoint at = ReflectInLine(well, point1, point2);
  if (present.IsNull())
    StoreWell(ormel, image, at);
  else
    ChangeWell(ormel, present.AsLong(), image, at);  // one image to a well
  return true;
}

}  // namespace ormel
