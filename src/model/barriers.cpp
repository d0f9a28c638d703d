#include "model/barriers.h"

#include <array>

#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/user_interface.h"
#include "document/elements.h"
#include "model/crossing.h"
#include "model/digitize.h"
#include "model/vertices.h"
#include "store/database.h"
#include "store/recordset.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::string_view kRegion = "Ignore Region";

constexpr std::array kControls{
    ControlSpec{.name = "tbLabel", .kind = kText, .caption = "Label", .longest = 255},
    ControlSpec{.name = "CmdBarrierColor", .kind = kButton, .caption = "Barrier Color"},
    ControlSpec{.name = "picColor", .kind = kColor},
    ControlSpec{.name = "ClosedDomain", .kind = kCheck, .caption = "Barrier bounds a closed domain"},
    ControlSpec{.name = "IgnoreInside", .kind = kCheck, .caption = "Inside Boundary", .group = kRegion},
    ControlSpec{.name = "IgnoreOutside", .kind = kCheck, .caption = "Outside Boundary", .group = kRegion},
    ControlSpec{.name = "lblNote",
                .kind = kNote,
                .caption = "If a barrier forms a closed domain, that domain must have at least one head "
                           "specified feature."},
    kOkButton,
    kCancelButton};

void PutFields(Recordset& barriers, const BarrierRow& row) {
  barriers["Color"] = row.color.value;
  barriers["HydCond"] = 0.0;
  barriers["Thickness"] = 1.0;
  barriers["Porosity"] = 0.2;
  barriers["BottomElevation"] = -9999.0;
  barriers["Closed"] = static_cast<int>(row.Closed);
  barriers["Label"] = row.Label;
}

}  // namespace

NoFlowString::NoFlowString(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
  OfferRegions();
}

std::span<const ControlSpec> NoFlowString::Controls() const {
  return kControls;
}

void NoFlowString::Fill(const BarrierRow& row) {
  opened_label_ = row.Label;
  Put("tbLabel", row.Label);
  Mutable("picColor").color = row.color;
  PutCheck("ClosedDomain", row.Closed != BarrierClosed::kOpen);
  PutCheck("IgnoreInside", row.Closed == BarrierClosed::kIgnoreInside);
  PutCheck("IgnoreOutside", row.Closed == BarrierClosed::kIgnoreOutside);
  OfferRegions();
}

BarrierRow NoFlowString::Row() const {
  BarrierClosed closed = BarrierClosed::kOpen;
  if (Checked("ClosedDomain"))
    closed = Checked("IgnoreInside")    ? BarrierClosed::kIgnoreInside
             : Checked("IgnoreOutside") ? BarrierClosed::kIgnoreOutside
                                        : BarrierClosed::kClosed;
  return {Text("tbLabel"), State("picColor").color, closed};
}

void NoFlowString::OfferRegions() {
  OfferAll({"IgnoreInside", "IgnoreOutside"}, Checked("ClosedDomain"));
}

void NoFlowString::Changed(std::string_view name) {
  if (name == "ClosedDomain") OfferRegions();
  if (name == "IgnoreInside" && Checked(name)) PutCheck("IgnoreOutside", false);
  if (name == "IgnoreOutside" && Checked(name)) PutCheck("IgnoreInside", false);
}

void NoFlowString::OtherPressed(std::string_view name) {
  if (name != "CmdBarrierColor" && name != "picColor") return;
  if (const auto color = ormel().ui().ChooseColor(State("picColor").color))
    Mutable("picColor").color = *color;
}

bool NoFlowString::Ok() {
  const std::string& label = Text("tbLabel");
  if (label.empty()) return Refuse("tbLabel", "Data Missing", "Label must be specified. ");
  if (IsDuplicateLabel(ormel(), "NoFlowStrings", label, opened_label_))
    return Refuse("tbLabel", "Duplicate Label", DuplicateLabelText("Barrier", label));
  return true;
}

bool FindBarrier(Ormel& ormel, Pid pid, BarrierRow& found) {
  Recordset& barriers = *ormel.project.bound.NoFlowStrings;
  if (!barriers.FindKey("PID", pid)) return false;
  found = {barriers.Get<std::string>("Label"), Color{barriers.Get<std::int32_t>("Color")},
           static_cast<BarrierClosed>(barriers.Get<int>("Closed"))};
  return true;
}

Pid StoreBarrier(Ormel& ormel, const BarrierRow& row, std::span<const MapPoint> points) {
  const Pid pid = AddPolygonWithVertices(ormel, false, points);
  Recordset& barriers = *ormel.project.bound.NoFlowStrings;
  try {
    barriers.AddNew();
    barriers["PID"] = pid;
    PutFields(barriers, row);
    barriers.Update();
  } catch (...) {
    barriers.CancelUpdate();
    DeletePolygon(ormel, pid);
    throw;
  }
  return pid;
}

void ChangeBarrier(Ormel& ormel, Pid pid, const BarrierRow& row) {
  Recordset& barriers = *ormel.project.bound.NoFlowStrings;
  if (!barriers.FindKey("PID", pid)) return;
  barriers.Edit();
  PutFields(barriers, row);
  barriers.Update();
}

void ElemAddNoFlowString(Ormel& ormel) {
  RunEdit(ormel, "ElemAddNoFlowString", [&] {
    ormel.view().ElemTurnOffSelection();
    NoFlowString form(ormel);
    form.Fill({});
    ormel.ui().ShowForm(form);
    if (form.Result != OkCancelForm::kOk) return;
    BeginDigitizing(ormel, Element::kBarrier, "Add No-flow");
    DigitizePolygon(ormel, StoreBarrier(ormel, form.Row(), {}));
    TurnOnLayer(ormel, Layer::kElements);
  });
}

void ElemAddNoFlowVertex(Ormel& ormel, bool /*first*/) {
  RunEdit(ormel, "ElemAddNoFlowVertex", [&] {
    if (!RefuseCrossingVertex(ormel, LastClick(ormel))) AddDigitizedVertex(ormel, LastClick(ormel));
  });
}

void ElemEndNoFlowString(Ormel& ormel) {
  RunEdit(ormel, "ElemEndNoFlowString", [&] {
    if (RefuseCrossingEnd(ormel, Element::kBarrier)) return;
    const Pid pid = EndDigitizing(ormel);
    if (ElemCheckPhantomNoFlowVertices(ormel, pid)) RemoveElement(ormel, {Element::kBarrier, pid});
    ormel.view().TurnOnMenus();
  });
}

}  // namespace ormel
