#include <array>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/recordset.h"
#include "view/capture_zones.h"
#include "view/styles.h"
#include "view/symbols.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

/// A point element: what one query by the vertex gives.
bool PlaceOf(Ormel& ormel, Vid vid, MapPoint& at) {
  RowReader rows(ormel.db(), "select X,Y from Vertices where VID=?", {vid});
  if (!rows.Next()) return false;
  at = {rows.Double(0), rows.Double(1)};
  return true;
}

void DrawWellOf(const MapCanvas& canvas, Vid vid, Pid, DrawMode mode) {
  MapPoint at;
  RowReader rows(canvas.ormel.db(), "select Setback,Radius from Wells where VID=?", {vid});
  if (rows.Next() && PlaceOf(canvas.ormel, vid, at))
    ElemDrawWell(canvas, at, rows.Double(0), rows.Double(1), mode);
}

void DrawLinesinkOf(const MapCanvas& canvas, Vid, Pid pid, DrawMode mode) {
  ElemDrawLinesinkString(canvas, pid, mode);
}

void DrawBarrierOf(const MapCanvas& canvas, Vid, Pid pid, DrawMode mode) {
  RowReader rows(canvas.ormel.db(), "select Closed,Color from NoFlowStrings where PID=?", {pid});
  if (!rows.Next()) return;
  const bool digitizing = canvas.ormel.mouse.LineInProgress && canvas.ormel.mouse.CurrentPID == pid;
  ElemDrawNoFlowString(canvas, pid, rows.Bool(0) && !digitizing, {static_cast<std::int32_t>(rows.Long(1))},
                       mode);
}

void DrawUniformFlowOf(const MapCanvas& canvas, Vid, Pid, DrawMode mode) {
  ElemDrawUniformFlow(canvas, mode);
}

void DrawInhoOf(const MapCanvas& canvas, Vid, Pid pid, DrawMode mode) {
  RowReader rows(canvas.ormel.db(), "select Color from Inhomogeneities where PID=?", {pid});
  if (rows.Next()) ElemDrawInho(canvas, pid, {static_cast<std::int32_t>(rows.Long(0))}, mode);
}

void DrawTestPointOf(const MapCanvas& canvas, Vid vid, Pid, DrawMode mode) {
  MapPoint at;
  if (!PlaceOf(canvas.ormel, vid, at)) return;
  double difference = 0.0;
  if (canvas.ormel.solution.ValidSolution) {
    RowReader rows(canvas.ormel.db(), "select Difference from TPResults where VID=?", {vid});
    if (rows.Next()) difference = rows.Double(0);
  }
  ModelDrawTestPoint(canvas, at, {}, 0.0, difference, mode);
}

void DrawParticleOf(const MapCanvas& canvas, Vid vid, Pid, DrawMode mode) {
  MapPoint at;
  if (PlaceOf(canvas.ormel, vid, at)) ModelDrawParticle(canvas, at, mode);
}

void DrawFluxOf(const MapCanvas& canvas, Vid, Pid pid, DrawMode mode) {
  ModelDrawFluxInspect(canvas, pid, mode);
}

void DrawCapzoneOf(const MapCanvas& canvas, Vid, Pid pid, DrawMode mode) {
  ModelDrawCapzone(canvas, pid, mode, false);
}

void DrawVertexOf(const MapCanvas& canvas, Vid vid, Pid, DrawMode mode) {
  MapPoint at;
  if (PlaceOf(canvas.ormel, vid, at)) ElemDrawVertex(canvas, at, mode);
}

void DrawLabelOf(const MapCanvas& canvas, Vid row, Pid, DrawMode mode) {
  RowReader label(canvas.ormel.db(),
                  "select Text,FontName,X,Y,FontSize,FontBold,FontItalic,LabelType from TextLabels where "
                  "rowid=?",
                  {row});
  if (!label.Next()) return;
  const StyleId style = label.Long(7) == 0 ? StyleId::kTextLabel : StyleId::kMapLabel;
  canvas.vg.vgGDItext(std::string(label.Text(0)), {label.Double(2), label.Double(3)},
                      {.font = std::string(label.Text(1)),
                       .size = static_cast<int>(label.Long(4)),
                       .bold = label.Bool(5),
                       .italic = label.Bool(6),
                       .color = ColorOfMode(mode, StyleOf(style).color)});
}

struct SingleElement {
  Element element;
  bool marks_vertex;  ///< a selected string shows which of its vertices is selected
  void (*draw)(const MapCanvas&, Vid, Pid, DrawMode);
};
constexpr std::array kSingleElements{
    SingleElement{Element::kWell, false, DrawWellOf},
    SingleElement{Element::kLinesink, true, DrawLinesinkOf},
    SingleElement{Element::kBarrier, true, DrawBarrierOf},
    SingleElement{Element::kUniformFlow, false, DrawUniformFlowOf},
    SingleElement{Element::kInhomogeneity, true, DrawInhoOf},
    SingleElement{Element::kTestPoint, false, DrawTestPointOf},
    SingleElement{Element::kParticle, false, DrawParticleOf},
    SingleElement{Element::kFluxLine, true, DrawFluxOf},
    SingleElement{Element::kCapzone, true, DrawCapzoneOf},
    SingleElement{Element::kTextLabel, false, DrawLabelOf},
    SingleElement{Element::kWhpaBoundaryVertex, false, DrawVertexOf},
};

}  // namespace

void DrawOneElement(const MapCanvas& canvas, Element element, Vid vid, Pid pid, DrawMode mode) {
  for (const SingleElement& single : kSingleElements) {
    if (single.element != element) continue;
    single.draw(canvas, vid, pid, mode);
    if (mode == DrawMode::kSelected && single.marks_vertex && vid >= 0) DrawVertexOf(canvas, vid, pid, mode);
  }
}

void DrawSelection(const MapCanvas& canvas) {
  const Selection& selection = canvas.ormel.selection;
  DrawOneElement(canvas, selection.SelectedType, selection.vid, selection.pid, DrawMode::kSelected);
}

}  // namespace ormel
