#include "model/inhomogeneities.h"

#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/user_interface.h"
#include "document/elements.h"
#include "model/crossing.h"
#include "model/digitize.h"
#include "model/vertices.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/recordset.h"
#include "text/numbers.h"

namespace ormel {
namespace {

void PutFields(Recordset& domains, const InhomogeneityRow& row) {
  domains["Label"] = row.Label;
  domains["HydCond"] = row.HydCond;
  domains["BottomElevation"] = row.BottomElevation;
  domains["AverageHead"] = row.AverageHead;
  domains["Recharge"] = row.Recharge;
  domains["Porosity"] = row.Porosity;
  domains["Color"] = row.color.value;
  domains["ChangeK"] = row.ChangeK;
  domains["ChangeR"] = row.ChangeR;
  domains["ChangeP"] = row.ChangeP;
  domains["ChangeB"] = row.ChangeB;
  domains["ChangeA"] = row.ChangeA;
}

/// The corner of another domain at the click, else the click.
MapPoint SharedCorner(Ormel& ormel, MapPoint click) {
  const Vid vid = ElemFindVertex(ormel, click);
  VertexRow corner;
  if (vid < 0 || !FindVertex(ormel, vid, corner) || corner.pid == ormel.mouse.CurrentPID) return click;
  return Exists(ormel, {Element::kInhomogeneity, corner.pid}) ? corner.at : click;
}

}  // namespace

bool FindInhomogeneity(Ormel& ormel, Pid pid, InhomogeneityRow& found) {
  Recordset& domains = *ormel.project.bound.Inho;
  if (!domains.FindKey("PID", pid)) return false;
  found = {.Label = domains.Get<std::string>("Label"),
           .HydCond = domains.Get<double>("HydCond"),
           .Recharge = domains.Get<double>("Recharge"),
           .Porosity = domains.Get<double>("Porosity"),
           .BottomElevation = domains.Get<double>("BottomElevation"),
           .AverageHead = domains.Get<double>("AverageHead"),
           .color = Color{domains.Get<std::int32_t>("Color")},
           .ChangeK = domains.Get<bool>("ChangeK"),
           .ChangeR = domains.Get<bool>("ChangeR"),
           .ChangeP = domains.Get<bool>("ChangeP"),
           .ChangeB = domains.Get<bool>("ChangeB"),
           .ChangeA = domains.Get<bool>("ChangeA")};
  return true;
}

Pid StoreInhomogeneity(Ormel& ormel, const InhomogeneityRow& row, std::span<const MapPoint> points) {
  const Pid pid = AddPolygonWithVertices(ormel, false, points);
  Recordset& domains = *ormel.project.bound.Inho;
  try {
    domains.AddNew();
    domains["PID"] = pid;
    PutFields(domains, row);
    domains.Update();
  } catch (...) {
    domains.CancelUpdate();
    DeletePolygon(ormel, pid);
    throw;
  }
  return pid;
}

void ChangeInhomogeneity(Ormel& ormel, Pid pid, const InhomogeneityRow& row) {
  Recordset& domains = *ormel.project.bound.Inho;
  if (!domains.FindKey("PID", pid)) return;
  domains.Edit();
  PutFields(domains, row);
  domains.Update();
}

void DropTrivialAverageHead(Ormel& ormel, Pid pid) {
  InhomogeneityRow row;
  if (!FindInhomogeneity(ormel, pid, row)) return;
  const double top = ReadModel(ormel).AquiferTop();
  // The dialog's field holds the top as a text of 15 digits.
  if (row.AverageHead != top && row.AverageHead != Val(NumberText(top))) return;
  Recordset& domains = *ormel.project.bound.Inho;
  domains.Edit();
  domains["AverageHead"] = kNoAverageHead;
  domains.Update();
}

void ElemAddInhomogeneity(Ormel& ormel) {
  RunEdit(ormel, "ElemAddInhomogeneity", [&] {
    ormel.view().ElemTurnOffSelection();
    Inhomogeneity form(ormel);
    form.Fill({});
    ormel.ui().ShowForm(form);
    if (form.Result != OkCancelForm::kOk) return;
    BeginDigitizing(ormel, Element::kInhomogeneity, "Add Inhomogeneity");
    DigitizePolygon(ormel, StoreInhomogeneity(ormel, form.Row(), {}));
    TurnOnLayer(ormel, Layer::kElements);
  });
}

void ElemAddInhoVertex(Ormel& ormel, bool first) {
  RunEdit(ormel, "ElemAddInhoVertex", [&] {
    const MapPoint click = LastClick(ormel);
    const MapPoint at = first ? click : SharedCorner(ormel, click);
    if (!RefuseCrossingVertex(ormel, at)) AddDigitizedVertex(ormel, at);
  });
}

void ElemEndInhomogeneity(Ormel& ormel) {
  RunEdit(ormel, "ElemEndInhomogeneity", [&] {
    if (RefuseCrossingEnd(ormel, Element::kInhomogeneity)) return;
    EndDigitizing(ormel);
    ormel.view().TurnOnMenus();
  });
}

}  // namespace ormel
