#include "model/observations.h"

#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "model/digitize.h"
#include "model/model_values.h"
#include "model/observation_forms.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "store/database.h"
#include "store/recordset.h"

namespace ormel {
namespace {

/// A row of its own for a polygon: label and PID.
Pid StoreLine(Ormel& ormel, Recordset& rows, const std::string& label, std::span<const MapPoint> points) {
  const Pid pid = AddPolygonWithVertices(ormel, false, points);
  try {
    rows.AddNew();
    rows["Label"] = label;
    rows["PID"] = pid;
    rows.Update();
  } catch (...) {
    rows.CancelUpdate();
    DeletePolygon(ormel, pid);
    throw;
  }
  return pid;
}

/// A row that belongs to a vertex: fills it through `put`.
template <class Put>
Vid StorePoint(Ormel& ormel, Recordset& rows, MapPoint at, const Put& put) {
  const Vid vid = ElemAddVertex(ormel, at, kSinglePoint, 0);
  try {
    rows.AddNew();
    rows["VID"] = vid;
    put(rows);
    rows.Update();
  } catch (...) {
    rows.CancelUpdate();
    DeleteVertex(ormel, vid);
    throw;
  }
  return vid;
}

void PutTestPoint(Recordset& rows, const TestPointRow& row) {
  rows["Label"] = row.Label;
  rows["ObsHead"] = row.ObsHead;
}

void PutParticle(Recordset& rows, const ParticleRow& row) {
  rows["Elevation"] = row.Elevation;
  rows["SatdThick"] = row.SatdThick ? 1 : 0;
  rows["Forward"] = row.Forward ? 1 : 0;
}

void PutTextLabel(Recordset& rows, const TextLabelRow& row) {
  rows["Text"] = row.Text;
  rows["FontName"] = row.font.name;
  rows["FontSize"] = row.font.size;
  rows["FontBold"] = row.font.bold;
  rows["FontItalic"] = row.font.italic;
  rows["LabelType"] = static_cast<int>(row.type);
}

}  // namespace

bool FindTestPoint(Ormel& ormel, Vid vid, TestPointRow& found) {
  Recordset& rows = *ormel.project.bound.TestPoints;
  if (!rows.FindKey("VID", vid)) return false;
  found = {rows.Get<std::string>("Label"), rows.Get<double>("ObsHead")};
  return true;
}

bool FindParticle(Ormel& ormel, Vid vid, ParticleRow& found) {
  Recordset& rows = *ormel.project.bound.Particles;
  if (!rows.FindKey("VID", vid)) return false;
  found = {rows.Get<double>("Elevation"), rows.Get<int>("SatdThick") != 0, rows.Get<int>("Forward") != 0};
  return true;
}

bool FindTextLabel(Ormel& ormel, std::int64_t row, TextLabelRow& found) {
  if (ormel.db().Scalar("select count(*) from TextLabels where rowid=?", {row}).AsLong() == 0) return false;
  Recordset& rows = *ormel.project.bound.TextLabels;
  rows.SetBookmark({row});
  found = {.Text = rows.Get<std::string>("Text"),
           .font = {rows.Get<std::string>("FontName"), rows.Get<int>("FontSize"), rows.Get<bool>("FontBold"),
                    rows.Get<bool>("FontItalic")},
           .type = static_cast<LabelType>(rows.Get<int>("LabelType")),
           .ScalerX = rows.Get<double>("ScalerX")};
  return true;
}

Vid StoreTestPoint(Ormel& ormel, const TestPointRow& row, MapPoint at) {
  return StorePoint(ormel, *ormel.project.bound.TestPoints, at,
                    [&](Recordset& rows) { PutTestPoint(rows, row); });
}

Vid StoreParticle(Ormel& ormel, const ParticleRow& row, MapPoint at) {
  return StorePoint(ormel, *ormel.project.bound.Particles, at,
                    [&](Recordset& rows) { PutParticle(rows, row); });
}

std::int64_t StoreTextLabel(Ormel& ormel, const TextLabelRow& row, MapPoint at) {
  Recordset& rows = *ormel.project.bound.TextLabels;
  try {
    rows.AddNew();
    PutTextLabel(rows, row);
    rows["X"] = at.x;
    rows["Y"] = at.y;
    rows["ScalerX"] = row.ScalerX;
    rows.Update();
  } catch (...) {
    rows.CancelUpdate();
    throw;
  }
  return rows.GetBookmark().row;
}

Pid StoreFluxLine(Ormel& ormel, const std::string& label, std::span<const MapPoint> points) {
  return StoreLine(ormel, *ormel.project.bound.FluxInspectors, label, points);
}

Pid StoreCapzone(Ormel& ormel, const std::string& label, std::span<const MapPoint> points) {
  return StoreLine(ormel, *ormel.project.bound.Capzones, label, points);
}

void ChangeTestPoint(Ormel& ormel, Vid vid, const TestPointRow& row, MapPoint at) {
  Recordset& rows = *ormel.project.bound.TestPoints;
  if (!rows.FindKey("VID", vid)) return;
  rows.Edit();
  PutTestPoint(rows, row);
  rows.Update();
  PutVertex(ormel, vid, at);
}

void ChangeParticle(Ormel& ormel, Vid vid, const ParticleRow& row) {
  Recordset& rows = *ormel.project.bound.Particles;
  if (!rows.FindKey("VID", vid)) return;
  rows.Edit();
  PutParticle(rows, row);
  rows.Update();
}

void ChangeTextLabel(Ormel& ormel, std::int64_t row, const TextLabelRow& label) {
  TextLabelRow stored;
  if (!FindTextLabel(ormel, row, stored)) return;
  Recordset& rows = *ormel.project.bound.TextLabels;
  rows.Edit();
  PutTextLabel(rows, label);
  rows.Update();
}

void MoveTextLabel(Ormel& ormel, std::int64_t row, MapPoint to) {
  TextLabelRow stored;
  if (!FindTextLabel(ormel, row, stored)) return;
  Recordset& rows = *ormel.project.bound.TextLabels;
  rows.Edit();
  rows["X"] = to.x;
  rows["Y"] = to.y;
  rows.Update();
}

void PathlinesOutdated(Ormel& ormel) {
  if (ormel.solution.ValidSolution) ormel.solution.PathlinesValid = false;
}

void BeginTestPoint(Ormel& ormel) {
  ormel.view().ElemTurnOffSelection();
  BeginPlacing(ormel, Element::kTestPoint, "Add Test Point", "Click mouse at location for new test point");
}

void BeginParticle(Ormel& ormel) {
  ormel.view().ElemTurnOffSelection();
  BeginPlacing(ormel, Element::kParticle, "Add Particle", "Click mouse at location for new particle");
}

void ModelAddTestPoint(Ormel& ormel) {
  RunEdit(ormel, "ModelAddTestPoint", [&] {
    ormel.view().ElemTurnOffSelection();
    const MapPoint click = LastClick(ormel);
    ormel.view().ShowPlace(Element::kTestPoint, click);
    TestPointProperties form(ormel);
    form.Fill({}, click);
    ormel.ui().ShowForm(form);
    if (form.Result == OkCancelForm::kOk)
      StoreTestPoint(ormel, form.Row(), ElemCheckVertices(ormel, form.At()));
    EndPlacing(ormel);
  });
}

void ModelAddParticle(Ormel& ormel) {
  RunEdit(ormel, "ModelAddParticle", [&] {
    ormel.view().ElemTurnOffSelection();
    const MapPoint click = LastClick(ormel);
    ormel.view().ShowPlace(Element::kParticle, click);
    ParticleProperties form(ormel);
    form.Fill({});
    ormel.ui().ShowForm(form);
    if (form.Result == OkCancelForm::kOk) {
      StoreParticle(ormel, form.Row(), ElemCheckVertices(ormel, click));
      PathlinesOutdated(ormel);
    }
    EndPlacing(ormel);
  });
}

void ModelAddText(Ormel& ormel) {
  RunEdit(ormel, "ModelAddText", [&] {
    ormel.view().ElemTurnOffSelection();
    const ModelValues model = ReadModel(ormel);
    TextLabelRow row;
    row.font = {model.DefaultFont, model.DefaultFontSize, model.DefaultFontBold, model.DefaultFontItalic};
    TextLabelDialog form(ormel);
    form.Fill(row);
    ormel.ui().ShowForm(form);
    if (form.Result == OkCancelForm::kOk) {
      row = form.Row();
      row.ScalerX = ormel.window.SolveWindow.Width();
      StoreTextLabel(ormel, row, LastClick(ormel));
      if (row.type == LabelType::kHydrography) TurnOnLayer(ormel, Layer::kHydrographyLabels);
    }
    EndPlacing(ormel);
  });
}

namespace {

/// The dialog of a line; nothing when it was cancelled.
bool AskName(Ormel& ormel, const char* prompt, std::string& label) {
  ormel.view().ElemTurnOffSelection();
  FluxInspectDialog form(ormel, prompt, {});
  ormel.ui().ShowForm(form);
  label = form.Label();
  return form.Result == OkCancelForm::kOk;
}

}  // namespace

void ModelAddFluxInspect(Ormel& ormel) {
  RunEdit(ormel, "ModelAddFluxInspect", [&] {
    std::string label;
    if (!AskName(ormel, "Flux Inspection Line Properties", label)) return;
    BeginDigitizing(ormel, Element::kFluxLine, "Add Flux");
    DigitizePolygon(ormel, StoreFluxLine(ormel, label, {}));
    TurnOnLayer(ormel, Layer::kElements);
    TurnOnLayer(ormel, Layer::kTestPoints);
  });
}

void ModelAddFluxVertex(Ormel& ormel, bool /*first*/) {
  RunEdit(ormel, "ModelAddFluxVertex", [&] { AddDigitizedVertex(ormel, LastClick(ormel)); });
}

void ModelEndFluxInspect(Ormel& ormel) {
  RunEdit(ormel, "ModelEndFluxInspect", [&] {
    EndDigitizing(ormel);
    Inform(ormel, "Please Note", "To inspect results for the new inspection line, you must re-run the model");
    ormel.view().TurnOnMenus();
  });
}

void ModelAddCapzone(Ormel& ormel) {
  RunEdit(ormel, "ModelAddCapzone", [&] {
    std::string label;
    if (!AskName(ormel, "Capzone Properties", label)) return;
    BeginDigitizing(ormel, Element::kCapzone, "Add Capture Zone");
    DigitizePolygon(ormel, StoreCapzone(ormel, label, {}));
    TurnOnLayer(ormel, Layer::kElements);
    TurnOnLayer(ormel, Layer::kTestPoints);
  });
}

void ModelAddCZVertex(Ormel& ormel, bool /*first*/) {
  RunEdit(ormel, "ModelAddCZVertex", [&] { AddDigitizedVertex(ormel, LastClick(ormel)); });
}

void ModelEndCapzone(Ormel& ormel) {
  RunEdit(ormel, "ModelEndCapzone", [&] {
    EndDigitizing(ormel);
    ormel.view().TurnOnMenus();
  });
}

}  // namespace ormel
