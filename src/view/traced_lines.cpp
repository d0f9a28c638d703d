#include "view/traced_lines.h"

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "solver/pathline_tics.h"
#include "solver/result_files.h"
#include "view/outdated.h"
#include "view/pathlines.h"
#include "view/styles.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

PathSet SetOf(const TracedLine& line) {
  return {{{0, line.points.size()}}, line.points, line.elevations, line.times};
}

void DrawMarks(const MapCanvas& canvas, const PathSet& set) {
  const Ormel& ormel = canvas.ormel;
  const MapRect window = canvas.vg.World();
  const auto draw = [&](const std::vector<Tic>& tics, StyleId id) {
    const Style& style = StyleOf(id);
    for (const Tic& tic : tics) canvas.vg.vgGDISymbol(tic.at, style.symbol, style.color, style.color);
  };
  if (ormel.layers.On(Layer::kTimeTics))
    draw(TimeTics(set, ormel.solution.TimeTicSpacing, &window, kMostTics), StyleId::kTimeTic);
  if (ormel.layers.On(Layer::kElevationTics))
    draw(ElevationTics(set, ormel.solution.ElevationTicSpacing, &window, kMostTics), StyleId::kElevationTic);
}

}  // namespace

bool HasTracedLines(const Ormel& ormel) {
  return ormel.solution.ValidSolution && !ormel.solution.traced_lines.empty();
}

void ModelDrawTracedLines(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ModelDrawTracedLines");
  const Style& style = StyleOf(StyleId::kTracedLine);
  for (const TracedLine& line : canvas.ormel.solution.traced_lines) {
    canvas.vg.vgGDIFineLine(line.points, style.width, ResultColor(canvas.ormel, style.color));
    DrawMarks(canvas, SetOf(line));
  }
}

}  // namespace ormel
