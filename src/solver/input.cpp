#include "solver/input.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string_view>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "model/model_values.h"
#include "model/validity.h"
#include "model/wells.h"
#include "solver/input_elements.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr double kPi = 3.14159265358979;  // the digits that decks have always been written with

/// The aquifer's row of `Model`, and the uniform flow or the point whose head is known.
AquiferBlock ReadAquifer(Ormel& ormel) {
  AquiferBlock a;
  const ModelValues model = ReadModel(ormel);
  a.base = model.AQBase;
  a.conductivity = model.AQHydCond;
  a.thickness = model.AQThickness;
  a.porosity = model.AQPorosity;
  if (model.UNIFLOWCompute != 0) {
    const double saturated = std::min(model.UNIFLOWRefHead - a.base, a.thickness);
    const double discharge = model.UNIFLOWGradient * a.conductivity * saturated;
    const double angle = model.UNIFLOWOrientation * kPi / 180.0;
    a.uniform_flow = {discharge * std::cos(angle), discharge * std::sin(angle)};
    a.reference = WToM(ormel, {model.UNIFLOWRefX, model.UNIFLOWRefY});
    a.reference_head = model.UNIFLOWRefHead;
    return a;
  }
  // Far to the upper right of the model, where its elements are hardly felt.
  const Extents& e = ormel.window.model;
  const double far = 10.0 * 0.5 * std::hypot(e.x_max - e.x_min, e.y_max - e.y_min);
  a.reference = WToM(ormel, {0.5 * (e.x_min + e.x_max) + far, 0.5 * (e.y_min + e.y_max) + far});
  a.reference_head = ormel.window.ReferenceHead;
  return a;
}

int UnitsCode(double basemap_convert) {
  if (basemap_convert == 1.0) return 2;
  return basemap_convert < 1.0 ? 0 : 1;
}

void ReadTestPoints(Ormel& ormel, ExtractBlock& extract) {
  RowReader points(ormel.db(),
                   "select Vertices.VID,Vertices.X,Vertices.Y from Vertices "
                   "inner join TestPoints on Vertices.VID = TestPoints.VID order by Vertices.VID");
  while (points.Next())
    extract.test_points.push_back({points.Long(0), WToM(ormel, {points.Double(1), points.Double(2)})});
}

void ReadFluxLines(Ormel& ormel, ExtractBlock& extract) {
  RowReader lines(ormel.db(), "select * from FluxInspect");
  const int pid_column = lines.Column("PID");
  const VertexTable vertices(ormel.db());
  while (lines.Next()) {
    ExtractBlock::FluxLine line{lines.Long(pid_column), {}};
    for (const StringVertex& vertex : vertices.Of(line.pid)) line.vertices.push_back(WToM(ormel, vertex.at));
    extract.flux_lines.push_back(std::move(line));
  }
}

void ReadTracedWells(Ormel& ormel, TraceBlock& trace) {
  RowReader wells(ormel.db(),
                  "select Vertices.X,Vertices.Y,Wells.NParticles,Wells.StartElev,Wells.Label from Vertices "
                  "inner join Wells on Vertices.VID = Wells.VID order by Vertices.VID");
  while (wells.Next()) {
    if (wells.Long(2) <= 0 || IsMirror(wells.Text(4))) continue;  // image wells trace nothing
    trace.wells.push_back({WToM(ormel, {wells.Double(0), wells.Double(1)}), wells.Double(3), wells.Long(2)});
  }
}

}  // namespace

DeckWindow LayoutWindow(const Ormel& ormel) {
  const MapRect& window = ormel.window.SolveWindow;
  return {WToM_X(ormel, window.x1), WToM_Y(ormel, window.y2), WToM_X(ormel, window.x2),
          WToM_Y(ormel, window.y1)};
}

SolverInput ReadSolverInput(Ormel& ormel) {
  SolverInput input;
  input.stem = ormel.project.OrmelBaseName;
  input.origin = {ormel.window.model.x_min, ormel.window.model.y_min};
  input.units_code = UnitsCode(BasemapConvert(ormel));
  input.window = LayoutWindow(ormel);
  input.aquifer = ReadAquifer(ormel);
  const VertexTable vertices(ormel.db());
  ReadDomains(ormel, vertices, input);
  ReadWalls(ormel, vertices, input);
  ReadWells(ormel, input);
  ReadStrings(ormel, vertices, input);
  return input;
}

OutputInput ReadOutputInput(Ormel& ormel) {
  OutputInput output;
  const ModelValues model = ReadModel(ormel);
  output.stem = ormel.project.OrmelBaseName;
  output.solution_time = ormel.solution.SolutionTime;
  output.window = LayoutWindow(ormel);
  ReadTestPoints(ormel, output.extract);
  ReadFluxLines(ormel, output.extract);
  if (model.CONTOURShow != 0) output.grid_points = model.CONTOURLevel;
  if (model.TRACECompute != 0) {
    TraceBlock& trace = output.trace.emplace();
    trace.longest_time = model.TRACEMaxTime;
    // Written for the default step and for the user's own: without the line the solver takes a step of its
    // own, and a step that somebody typed would be ignored without a word.
    trace.step = TracingStep(ormel, model.TRACEStep);
    trace.particles = ReadParticles(ormel, true);
    ReadTracedWells(ormel, trace);
  }
  return output;
}

std::vector<TraceBlock::Particle> ReadParticles(Ormel& ormel, bool top_when) {
  std::vector<TraceBlock::Particle> particles;
  const double top = ReadModel(ormel).AquiferTop();
  RowReader rows(
      ormel.db(),
      "select Vertices.X,Vertices.Y,Particles.Forward,Particles.SatdThick,Particles.Elevation from Vertices "
      "inner join Particles on Vertices.VID = Particles.VID order by Vertices.VID;");
  while (rows.Next()) {
    const bool at_top = top_when ? rows.Long(3) == 1 : !rows.Bool(3);
    particles.push_back(
        {WToM(ormel, {rows.Double(0), rows.Double(1)}), at_top ? top : rows.Double(4), rows.Bool(2)});
  }
  return particles;
}

double TracingStep(const Ormel& ormel, double own_step) {
  if (!ormel.solution.use_default_step) return own_step;
  const double shown = ormel.solution.default_step;
  const double step = shown > 0.0 ? shown : ComputeDefaultStep(ormel);  // nothing is shown before a redraw
  return step * BasemapConvert(ormel);
}

}  // namespace ormel
