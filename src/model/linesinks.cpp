#include "model/linesinks.h"

#include <any>

#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/user_interface.h"
#include "model/crossing.h"
#include "model/digitize.h"
#include "model/vertices.h"
#include "store/recordset.h"

namespace ormel {
namespace {

constexpr std::string_view kMemory = "LinesinkString";

/// What the dialog held last.
LinesinkRow LastHeld(const Ormel& ormel) {
  const auto kept = ormel.form_memory.find(kMemory);
  if (kept == ormel.form_memory.end()) return {};
  const auto* row = std::any_cast<LinesinkRow>(&kept->second);
  return row == nullptr ? LinesinkRow{} : *row;
}

bool ShowAndKeep(Ormel& ormel, LinesinkString& form) {
  form.SetLabelFocus();
  ormel.ui().ShowForm(form);
  ormel.form_memory[std::string(kMemory)] = form.Row();
  return form.Result == OkCancelForm::kOk;
}

/// The fields that are written at every time; far-field belongs to head-specified strings.
void PutValues(Recordset& strings, const LinesinkRow& row) {
  strings["Label"] = row.Label;
  strings["StartingHead"] = row.StartingHead;
  strings["EndingHead"] = row.EndingHead;
  strings["Resistance"] = row.Resistance;
  strings["Width"] = row.Width;
  strings["Depth"] = row.Depth;
  if (row.HeadSpecified) strings["Farfield"] = row.Farfield ? 1 : 0;
  strings["Routing"] = row.Routing ? 1 : 0;
  // Projects of older programs lack these.
  if (strings.HasField("EndStream")) strings["EndStream"] = row.EndStream ? 1 : 0;
  if (strings.HasField("EndInflow")) strings["EndInflow"] = row.EndInflow;
  if (strings.HasField("Overlandflow")) strings["Overlandflow"] = row.Overlandflow;
}

}  // namespace

bool FindLinesink(Ormel& ormel, Pid pid, LinesinkRow& found) {
  Recordset& strings = *ormel.project.bound.LinesinkStrings;
  if (!strings.FindKey("PID", pid)) return false;
  found = {.Label = strings.Get<std::string>("Label"),
           .HeadSpecified = strings.Get<int>("HeadSpecified") != 0,
           .StartingHead = strings.Get<double>("StartingHead"),
           .EndingHead = strings.Get<double>("EndingHead"),
           .Resistance = strings.Get<double>("Resistance"),
           .Width = strings.Get<double>("Width"),
           .Depth = strings.Get<double>("Depth"),
           .Drain = strings.Get<int>("Drain") != 0,
           .AutoSWIZC = static_cast<LinesinkLocation>(strings.Get<int>("AutoSWIZC")),
           .Farfield = strings.Get<int>("Farfield") != 0,
           .Routing = strings.Get<int>("Routing") != 0};
  if (strings.HasField("EndStream")) found.EndStream = strings.Get<int>("EndStream") == 1;
  if (strings.HasField("EndInflow")) found.EndInflow = strings.Get<double>("EndInflow");
  if (strings.HasField("Overlandflow")) found.Overlandflow = strings.Get<double>("Overlandflow");
  return true;
}

Pid StoreLinesink(Ormel& ormel, const LinesinkRow& row, std::span<const MapPoint> points) {
  const Pid pid = AddPolygonWithVertices(ormel, false, points);
  Recordset& strings = *ormel.project.bound.LinesinkStrings;
  try {
    strings.AddNew();
    strings["PID"] = pid;
    strings["HeadSpecified"] = row.HeadSpecified ? 1 : 0;
    strings["Drain"] = row.Drain ? 1 : 0;
    strings["AutoSWIZC"] = static_cast<int>(row.AutoSWIZC);
    PutValues(strings, row);
    strings.Update();
  } catch (...) {
    strings.CancelUpdate();
    DeletePolygon(ormel, pid);
    throw;
  }
  return pid;
}

void ChangeLinesink(Ormel& ormel, Pid pid, const LinesinkRow& row) {
  Recordset& strings = *ormel.project.bound.LinesinkStrings;
  if (!strings.FindKey("PID", pid)) return;
  strings.Edit();
  strings["HeadSpecified"] = row.HeadSpecified ? 1 : 0;
  PutValues(strings, row);
  if (row.Farfield) strings["Routing"] = 0;
  strings["Drain"] = row.Drain ? 1 : 0;
  strings["AutoSWIZC"] = static_cast<int>(row.AutoSWIZC);
  strings.Update();
}

void ElemAddLinesinkString(Ormel& ormel) {
  RunEdit(ormel, "ElemAddLinesinkString", [&] {
    ormel.view().ElemTurnOffSelection();
    LinesinkRow row = LastHeld(ormel);
    row.Resistance = row.Width = row.Depth = row.EndInflow = row.Overlandflow = 0.0;
    row.Routing = row.EndStream = false;
    LinesinkString form(ormel);
    form.Fill(row, {});
    if (!ShowAndKeep(ormel, form)) return;
    BeginDigitizing(ormel, Element::kLinesink, "Add Linesinks");
    row = form.Row();
    row.AutoSWIZC = LinesinkLocation::kUnknown;  // stored by the second dialog
    DigitizePolygon(ormel, StoreLinesink(ormel, row, {}));
    TurnOnLayer(ormel, Layer::kElements);
  });
}

void ElemAddLinesinkVertex(Ormel& ormel, bool /*first*/) {
  RunEdit(ormel, "ElemAddLinesinkVertex", [&] {
    if (!RefuseCrossingVertex(ormel, LastClick(ormel))) AddDigitizedVertex(ormel, LastClick(ormel));
  });
}

void ElemEndLinesinkString(Ormel& ormel) {
  RunEdit(ormel, "ElemEndLinesinkString", [&] {
    const Pid pid = EndDigitizing(ormel);
    if (ElemCheckPhantomLinesinkVertices(ormel, pid)) {
      ormel.view().TurnOnMenus();
      return;
    }
    LinesinkRow stored;
    if (FindLinesink(ormel, pid, stored)) {
      LinesinkString form(ormel);
      form.Fill(LastHeld(ormel), stored.Label);
      if (ShowAndKeep(ormel, form)) {
        const LinesinkRow row = form.Row();
        Recordset& strings = *ormel.project.bound.LinesinkStrings;
        strings.FindKey("PID", pid);
        strings.Edit();
        PutValues(strings, row);
        strings["AutoSWIZC"] = static_cast<int>(row.AutoSWIZC);
        strings.Update();
      }
    }
    ormel.view().TurnOnMenus();
  });
}

}  // namespace ormel
