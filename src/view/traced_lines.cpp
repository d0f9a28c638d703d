#include "view/traced_lines.h"

#include "core/command.h"
#include "core/ormel.h"
#include "solver/pathline_tics.h"
#include "solver/result_files.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

PathSet SetOf(const TracedLine& line) {
  return {{{0, line.points.size()}}, line.points, line.elevations, line.times};
}

void DrawMarks(const MapCanvas& canvas, const PathSet& set) {
  const Ormel& ormel = canvas.ormel;
  const MapRect window = canvas.vg.World();
  const auto draw = [&](const std::vector<Tic>& tics, VgSymbol symbol) {
    for (const Tic& tic : tics) canvas.vg.vgGDISymbol(tic.at, symbol, QBColor(0), QBColor(0));
  };
  if (ormel.menus.Checked("TMARKS", kTimeMarksShow))
    draw(TimeTics(set, ormel.solution.TimeTicSpacing, &window, kMostTics), VgSymbol::kDot);
  if (ormel.menus.Checked("ZMARKS", kElevationMarksShow))
    draw(ElevationTics(set, ormel.solution.ElevationTicSpacing, &window, kMostTics), VgSymbol::kUprightCross);
}

}  // namespace

bool HasTracedLines(const Ormel& ormel) {
  return ormel.solution.ValidSolution && !ormel.solution.traced_lines.empty();
}

void ModelDrawTracedLines(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ModelDrawTracedLines");
  for (const TracedLine& line : canvas.ormel.solution.traced_lines) {
    canvas.vg.vgGDIPolyline(line.points, PenStyle::kSolid, kTracedLineWidth, kTracedLineColor);
    DrawMarks(canvas, SetOf(line));
  }
}

}  // namespace ormel
