#include "whpa/commands.h"
#include "text/files.h"

#include <string>
#include <vector>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/solver_port.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/area_runs.h"
#include "model/delete.h"
#include "model/image_wells.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/recordset.h"
#include "whpa/delineation.h"
#include "whpa/forms.h"
#include "whpa/rows.h"

namespace ormel {
namespace {

/// What a case leaves for the common end.
struct CaseOutcome {
  bool run = false;
  bool stream_boundary = false;
  bool ended = false;  ///< the command is over, without the common end
};

/// The stem of the last row that has one.
std::string PresentStem(Ormel& ormel) {
  std::string stem;
  RowReader rows(ormel.db(), "select WHPAText from WHPAs");
  while (rows.Next())
    if (rows.Text(0) != "NONE") stem = rows.Text(0);
  return stem;
}

void Refresh(Ormel& ormel) {
  if (ormel.project.bound.Wells) ormel.project.bound.Wells->Requery();
  if (ormel.project.bound.Vertices) ormel.project.bound.Vertices->Requery();
}

void Redraw(Ormel& ormel) {
  ormel.view().ZoomActions(Zoom::kRedraw);
}

/// An area that has just been made is to be seen, whatever the menu's switch said before.
void ShowStored(Ormel& ormel) {
  ormel.layers.Switch(Layer::kWhpas, true);
  Redraw(ormel);
}

CaseOutcome Arbitrary(Ormel& ormel) {
  std::vector<WhpaWell> wells = EligibleWells(ormel);
  DropRowsOfMissingWells(ormel, WhpaType::kArbitrary, wells,
                         "The arbitrary radius WHPA with reference to this well has been removed.");
  WHPAArbitrary form(ormel, std::move(wells));
  ormel.ui().ShowForm(form);
  if (!form.DrawOrCancel) return {};
  ormel.db().Execute("delete from WHPAs where type=1");
  std::vector<WhpaRow> rows;
  for (const WhpaWell& well : form.Selected()) {
    WhpaRow row;
    row.Well = well.label;
    row.Radius = form.Radius();
    rows.push_back(row);
  }
  AddWhpaRows(ormel, rows);
  Refresh(ormel);
  ShowStored(ormel);
  return {};
}

/// Radius as stored [map units]; 0 for pathlines.
double StoredRadius(const Ormel& ormel, const WhpaInput& input, double T) {
  switch (ShapeFor(T)) {
    case WhpaShape::kCentricCircle:
      return ComputeToMapLength(ormel, CentricRadius(input));
    case WhpaShape::kEccentricCircle:
      return ComputeToMapLength(ormel, EccentricRadius(AmbientLength(input.Q, input.Qo), T));
    case WhpaShape::kPathlines:
      return 0.0;
  }
  return 0.0;
}

WhpaRow CalculatedRow(const Ormel& ormel, const WHPACalculated& form) {
  const WhpaAnswers& answers = form.answers;
  const WhpaInput input = form.Input();
  WhpaRow row;
  row.Type = WhpaType::kCalculated;
  row.Well = form.Selected()->label;
  row.Radius = StoredRadius(ormel, input, form.TWavey);
  row.TimeOfTravel = input.t;
  row.Porosity = input.n;
  row.Thickness = input.H;
  row.AmbientFlow = input.Qo;
  row.T = form.TWavey;
  if (answers.draw_stream || answers.draw_eccentric) row.Direction = answers.direction;
  if (answers.draw_stream) {
    row.FirstHead = answers.first_head;
    row.WHPAData = answers.conductivity;
    row.Outline = form.Checked("chkOutline");
  }
  return row;
}

CaseOutcome Calculated(Ormel& ormel) {
  WHPACalculated form(ormel, EligibleWells(ormel));
  ormel.ui().ShowForm(form);
  if (!form.answers.Any()) return {};
  const WhpaRow row = CalculatedRow(ormel, form);
  RemoveWhpaRows(ormel, "type=2");
  AddWhpaRows(ormel, {row});
  CaseOutcome outcome;
  outcome.run = form.answers.draw_stream;
  outcome.stream_boundary = form.answers.stream_boundary;
  if (outcome.stream_boundary) ormel.StreamWell = row.Well;
  Refresh(ormel);
  ShowStored(ormel);
  return outcome;
}

CaseOutcome Multiple(Ormel& ormel) {
  CaseOutcome outcome;
  if (!MayReplaceCalculated(ormel)) {
    outcome.ended = true;
    return outcome;
  }
  std::vector<WhpaWell> wells = EligibleWells(ormel);
  DropRowsOfMissingWells(ormel, WhpaType::kMultiple, wells,
                         "The arbitrary WHPA with reference to this well has been removed.");
  WHPAMultiple form(ormel, std::move(wells));
  ormel.ui().ShowForm(form);
  if (!form.answers.draw_stream) return outcome;
  outcome.run = true;
  outcome.stream_boundary = form.answers.stream_boundary;
  if (outcome.stream_boundary) ormel.StreamWell = kMultipleWells;
  RemoveWhpaRows(ormel, "type=3");
  std::vector<WhpaRow> rows;
  for (const WhpaWell& well : form.Selected()) {
    WhpaRow row;
    row.Type = WhpaType::kMultiple;
    row.Well = well.label;
    row.Porosity = form.Number("DataPorosity");
    row.Thickness = form.Number("DataThickness");
    row.AmbientFlow = form.Number("DataAmbientFlow");
    row.Direction = form.answers.direction;
    row.FirstHead = form.answers.first_head;
    row.WHPAData = form.answers.conductivity;
    row.Outline = form.Checked("chkOutline");
    rows.push_back(row);
  }
  AddWhpaRows(ormel, rows);
  Refresh(ormel);
  if (!outcome.stream_boundary) ShowStored(ormel);
  return outcome;
}

CaseOutcome Rerun(Ormel& ormel) {
  if (ormel.db().Scalar("select count(*) from WHPAs where T>1 or Type=3").AsLong() > 0) {
    // The files of the run before stay: whoever undoes what led to this one sees its paths again.
    const std::string before = PresentStem(ormel), stem = FreshStem(ormel, before);
    LeaveAreaRun(ormel, before);
    ormel.db().Execute("update WHPAs set WHPAText=?", {stem});
    ormel.solver().ModelRunWHPAs();
    if (!before.empty() && !FileExists(JoinPath(ormel.project.OrmelBasePath, stem + ".PTH")))
      ormel.db().Execute("update WHPAs set WHPAText=?", {before});
  } else {
    Redraw(ormel);
  }
  CaseOutcome outcome;
  outcome.ended = true;
  return outcome;
}

/// Every row gets the stem of the run's files; `stem` is the one from before the command.  A run that is to
/// come does not write over files that an undo may want.
void NameRun(Ormel& ormel, std::string stem, bool runs) {
  if (ormel.db().RowCount("WHPAs") == 0) return;
  if (runs || stem.empty()) {
    if (runs) DeleteOutdatedRuns(ormel, stem);
    LeaveAreaRun(ormel, stem);
    stem = FreshStem(ormel, stem);
  }
  ormel.db().Execute("update WHPAs set WHPAText=?", {stem});
}

void WaitForBoundary(Ormel& ormel) {
  ormel.view().ElemTurnOffSelection();
  ormel.view().TurnOffMenus();
  ormel.mouse.MouseMode = MouseMode::kDigitize;
  ormel.mouse.MouseElement = Element::kStreamBoundary;
  ormel.mouse.cursor = 2;
  Feedback(ormel, "Click mouse at two points to draw stream boundary");
}

}  // namespace

void WHPA(Ormel& ormel, int Index) {
  RunCommand(ormel, "WHPA", [&] {
    using Case = CaseOutcome (*)(Ormel&);
    constexpr Case kCases[] = {Arbitrary, Calculated, Multiple, Rerun};
    const std::string stem = PresentStem(ormel);
    const CaseOutcome outcome = kCases[Index & 3](ormel);
    ReadWhpaState(ormel);
    if (outcome.ended) return;
    NameRun(ormel, stem, outcome.run || outcome.stream_boundary);
    if (outcome.stream_boundary) return WaitForBoundary(ormel);
    if (!outcome.run) return;
    CommitSoFar(ormel);
    ormel.solver().ModelRunWHPAs();
  });
}

namespace {

/// Rows of `WHPAs` that share the boundary being entered; one parameter, the well's label, unless for many.
const char* BoundaryRows(const Ormel& ormel) {
  return ormel.StreamWell == kMultipleWells ? "Type=3" : "Type=2 and Well=?";
}

/// Two equal points define no line.
bool SamePlaceAsFirst(Ormel& ormel) {
  const std::string sql = std::string("select Point1X,Point1Y from WHPAs where ") + BoundaryRows(ormel);
  RowReader row = ormel.StreamWell == kMultipleWells ? RowReader(ormel.db(), sql)
                                                     : RowReader(ormel.db(), sql, {ormel.StreamWell});
  return row.Next() && row.Double(0) == ormel.mouse.LastX && row.Double(1) == ormel.mouse.LastY;
}

void StorePoint(Ormel& ormel, int number, Vid vid) {
  const std::string n = std::to_string(number);
  const std::string sql =
      "update WHPAs set VID" + n + "=?,Point" + n + "X=?,Point" + n + "Y=? where " + BoundaryRows(ormel);
  if (ormel.StreamWell == kMultipleWells) {
    ormel.db().Execute(sql, {vid, ormel.mouse.LastX, ormel.mouse.LastY});
  } else {
    ormel.db().Execute(sql, {vid, ormel.mouse.LastX, ormel.mouse.LastY, ormel.StreamWell});
  }
}

}  // namespace

void MakeStreamImages(Ormel& ormel) {
  RemakeImageWells(ormel);
}

void CancelStreamBoundary(Ormel& ormel) {
  RunCommand(ormel, "CancelStreamBoundary", [&] {
    DeleteBoundaryVertices(ormel, "Type=2 or Type=3");
    ormel.db().Execute(
        "update WHPAs set VID1=0,VID2=0,Point1X=0,Point1Y=0,Point2X=0,Point2Y=0 where Type=2 or Type=3");
    ormel.mouse.LineInProgress = false;
    Inform(ormel, "Stream Boundary",
           "The stream boundary was not finished, and the protection area was not computed.\nChoose the "
           "command again to enter the boundary, or Redraw WHPAs to compute the area without one.",
           Icon::kInformation);
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  });
}

void ElemAddStreamBoundaryVertex(Ormel& ormel, int pointNumber) {
  RunCommand(ormel, "ElemAddStreamBoundaryVertex", [&] {
    if (pointNumber == 2 && SamePlaceAsFirst(ormel)) {
      Inform(ormel, "Stream Boundary",
             "The two points of a stream boundary must lie apart.  Please click a second point.",
             Icon::kWarning);
      return;
    }
    const Vid vid = ElemAddVertex(ormel, {ormel.mouse.LastX, ormel.mouse.LastY}, kSinglePoint, 0);
    StorePoint(ormel, pointNumber, vid);
    ormel.view().ShowPlace(Element::kWhpaBoundaryVertex, {ormel.mouse.LastX, ormel.mouse.LastY});
    if (pointNumber != 2) return;
    MakeStreamImages(ormel);
    ormel.mouse.LineInProgress = false;
    CommitSoFar(ormel);
    ormel.solver().ModelRunWHPAs();
  });
}

}  // namespace ormel
