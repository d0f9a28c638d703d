// What the status bar says of the selected element.
#include <algorithm>
#include <vector>

#include "core/dry_head.h"
#include "core/ormel.h"
#include "core/user_interface.h"
#include "model/barriers.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/model_values.h"
#include "model/observations.h"
#include "model/selection.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/masks.h"
#include "text/numbers.h"

namespace ormel {
namespace {

std::string Masked(Pid id) {
  return FormatMask(static_cast<double>(id), "000000");
}

std::string LabelOf(Ormel& ormel, const char* table, Pid pid) {
  return ormel.db().Scalar("select Label from " + std::string(table) + " where PID=?", {pid}).AsText();
}

std::string DescribeLinesink(Ormel& ormel, Pid pid, Vid vid) {
  LinesinkRow row;
  if (!FindLinesink(ormel, pid, row)) return {};
  std::string text = "Label: " + row.Label;
  if (row.HeadSpecified)
    text += "  Starting Head: " + FormatMask(row.StartingHead, "#####.##") +
            " Ending Head: " + FormatMask(row.EndingHead, "####0.00");
  else
    text += "  Starting Discharge: " + NumberText(row.StartingHead) +
            " Ending Discharge: " + NumberText(row.EndingHead);
  VertexRow vertex;
  if (!ormel.solution.ValidSolution || !FindVertex(ormel, vid, vertex)) return text;
  const std::string label = "LS_" + FormatMask(static_cast<double>(pid), "000000_") +
                            FormatMask(static_cast<double>(vertex.seq), "0000");
  // The segment that ends at the vertex.
  const VertexRow* before = nullptr;
  const std::vector<VertexRow> vertices = VerticesOf(ormel, pid);
  for (std::size_t i = 1; i < vertices.size(); ++i)
    if (vertices[i].vid == vid) before = &vertices[i - 1];
  if (before == nullptr) return text;
  RowReader results(ormel.db(),
                    "select SpecifiedHead,Discharge,X1,Y1,X2,Y2 from LSResults where VadoxLabel like ?",
                    {label + "*"});
  if (results.Next() && IsSegment(ormel, before->at, vertex.at, {results.Double(2), results.Double(3)},
                                  {results.Double(4), results.Double(5)}))
    text += "  Specified Head: " + NumberText(results.Double(0)) +
            "  Discharge: " + NumberText(results.Double(1));
  return text;
}

std::string DescribeInhomogeneity(Ormel& ormel, Pid pid) {
  InhomogeneityRow row;
  if (!FindInhomogeneity(ormel, pid, row)) return {};
  std::string recharge = FormatMask(row.Recharge, "#0.000E+00");
  std::ranges::replace(recharge, 'E', 'e');
  std::string text = "Label: " + row.Label + " Recharge: " + recharge +
                     " Porosity: " + FormatMask(row.Porosity, "0.00") +
                     "  Conductivity: " + NumberText(row.HydCond);
  if (row.ChangeB) text += " Bottom " + NumberText(row.BottomElevation);
  return text;
}

std::string DescribeFluxLine(Ormel& ormel, Pid pid) {
  std::string text = "Flux inspector: " + LabelOf(ormel, "FluxInspect", pid);
  if (!ormel.solution.ValidSolution) return text;
  RowReader results(ormel.db(), "select TotalFlux from FIResults where PID=?", {pid});
  if (results.Next()) text += "  Total flux: " + FormatMask(results.Double(0), "0.00000E+00");
  return text;
}

std::string DescribeTestPoint(Ormel& ormel, Vid vid) {
  TestPointRow row;
  if (!FindTestPoint(ormel, vid, row)) return {};
  std::string text = "Label: " + row.Label + "   Observed head: " + NumberText(row.ObsHead);
  if (!ormel.solution.ValidSolution) return text;
  RowReader results(ormel.db(), "select ModelHead,Difference from TPResults where VID=?", {vid});
  if (results.Next())
    text += "   Modeled head: " + NumberText(results.Double(0)) +
            "   Difference: " + NumberText(results.Double(1));
  return text;
}

std::string DescribeParticle(Ormel& ormel, Vid vid) {
  ParticleRow row;
  if (!FindParticle(ormel, vid, row)) return {};
  const double start = row.SatdThick ? ReadModel(ormel).AquiferTop() : row.Elevation;
  return std::string(row.Forward ? "Direction: Forward   " : "Direction: Backward   ") +
         "Starting Elevation: " + NumberText(start);
}

}  // namespace

std::string DescribeWell(Ormel& ormel, Vid vid) {
  WellRow row;
  if (!FindWell(ormel, vid, row)) return {};
  const char* value = row.HeadSpecified ? " Head: " : row.Pond ? " Recharge Rate: " : " Pumping Rate: ";
  std::string text = (row.Pond ? "Pond: " : "Well: ") + row.Label + value + NumberText(row.Head) +
                     " Radius: " + NumberText(row.Radius);
  if (!ormel.solution.ValidSolution) return text;
  RowReader results(ormel.db(), "select Head,Discharge from WLResults where VadoxLabel like ?",
                    {"WL_" + Masked(vid) + "*"});
  if (!results.Next()) return text;
  text += row.HeadSpecified ? " Discharge: " + NumberText(results.Double(1))
                            : " Head: " + NumberText(results.Double(0));
  if (results.Double(0) < kDryHead) text += " Aquifer is DRY ";
  return text;
}

std::string DescribeSelection(Ormel& ormel) {
  const auto [type, vid, pid, radius, found] = ormel.selection;
  switch (type) {
    case Element::kWell:
      return DescribeWell(ormel, vid);
    case Element::kLinesink:
      return DescribeLinesink(ormel, pid, vid);
    case Element::kInhomogeneity:
      return DescribeInhomogeneity(ormel, pid);
    case Element::kBarrier:
      return "Horizontal barrier: " + LabelOf(ormel, "NoFlowStrings", pid);
    case Element::kFluxLine:
      return DescribeFluxLine(ormel, pid);
    case Element::kCapzone:
      return "Protection area delineation: " + LabelOf(ormel, "Capzones", pid);
    case Element::kTestPoint:
      return DescribeTestPoint(ormel, vid);
    case Element::kParticle:
      return DescribeParticle(ormel, vid);
    case Element::kTextLabel: {
      TextLabelRow label;
      FindTextLabel(ormel, vid, label);
      return "Text: " + label.Text;
    }
    case Element::kUniformFlow:
      return "Uniform flow";
    default:
      return {};
  }
}

}  // namespace ormel
