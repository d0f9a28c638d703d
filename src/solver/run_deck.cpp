#include "solver/run_deck.h"

#include <string>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "model/model_values.h"
#include "model/validity.h"
#include "solver/deck_sections.h"
#include "solver/deck_writer.h"
#include "store/database.h"
#include "text/numbers.h"

namespace ormel {
namespace {

void WriteTestPoints(Ormel& ormel, TextFileWriter& deck, const NumberMask& mask) {
  RowReader points(
      ormel.db(),
      "select Vertices.VID,Vertices.X,Vertices.Y,TestPoints.ObsHead,TestPoints.label from Vertices "
      "inner join TestPoints on Vertices.VID = TestPoints.VID order by Vertices.VID");
  while (points.Next())
    deck.Line(DeckLine("  ")
                  .Number(mask, WToM_X(ormel, points.Double(1)))
                  .Number(mask, WToM_Y(ormel, points.Double(2)))
                  .Text(VertexLabel("TP_", points.Long(0)))
                  .str());
}

void WriteFluxLines(Ormel& ormel, TextFileWriter& deck, const NumberMask& mask) {
  RowReader lines(ormel.db(), "select * from FluxInspect");
  const int pid_column = lines.Column("PID");
  const VertexTable vertices(ormel.db());
  while (lines.Next()) {
    const Pid pid = lines.Long(pid_column);
    deck.Line(" flux " + VertexLabel("FL_", pid));
    const auto line = vertices.Of(pid);
    for (const StringVertex& vertex : line) {
      const ModelPoint at = WToM(ormel, vertex.at);
      deck.Line(DeckLine("  ").Number(mask, at.x).Number(mask, at.y).str());
    }
    if (!line.empty()) deck.Line(" quit");
  }
}

void WriteParticles(Ormel& ormel, TextFileWriter& deck, const ModelValues& model, const NumberMask& mask) {
  const NumberMask direction("#0.0");
  RowReader particles(
      ormel.db(),
      "select Vertices.X,Vertices.Y,Particles.Forward,Particles.SatdThick,Particles.Elevation from Vertices "
      "inner join Particles on Vertices.VID = Particles.VID order by Vertices.VID;");
  bool any = false;
  while (particles.Next()) {
    if (!any) deck.Line(" points");
    any = true;
    const double elevation = particles.Long(3) == 1 ? model.AquiferTop() : particles.Double(4);
    deck.Line(DeckLine(" ")
                  .Number(mask, WToM_X(ormel, particles.Double(0)))
                  .Number(mask, WToM_Y(ormel, particles.Double(1)))
                  .Number(mask, elevation)
                  .Number(direction, particles.Bool(2) ? 1.0 : -1.0)
                  .str());
  }
  if (any) deck.Line(" quit");
}

void WriteWellStarts(Ormel& ormel, TextFileWriter& deck, const NumberMask& place) {
  const NumberMask elevation("0.00000E+00 ");
  RowReader wells(ormel.db(),
                  "select Vertices.X,Vertices.Y,Wells.NParticles,Wells.StartElev,Wells.Label from Vertices "
                  "inner join Wells on Vertices.VID = Wells.VID order by Vertices.VID");
  while (wells.Next()) {
    if (wells.Long(2) <= 0 || wells.Text(4).starts_with("Mirror_")) continue;
    deck.Line(DeckLine(" well ")
                  .Number(place, WToM_X(ormel, wells.Double(0)))
                  .Number(place, WToM_Y(ormel, wells.Double(1)))
                  .Number(elevation, wells.Double(3))
                  .Text(RawNumber(static_cast<double>(wells.Long(2))))
                  .str());
  }
}

}  // namespace

void WriteRunHead(TextFileWriter& deck, std::string_view message_log) {
  deck.Line(DeckHeadLine());
  deck.Line(" error error.log");
  deck.Line(" yes");
  deck.Line(" message " + std::string(message_log));
  deck.Line(" yes");
  deck.Line(" echo echo.log");
  for (const char* line : {" yes", " picture off", " quit", " "}) deck.Line(line);
}

void WriteSolutionTime(const Ormel& ormel, TextFileWriter& deck) {
  std::string line = " time ";
  PrintZoneTab(line);
  deck.Line(line + RawNumber(ormel.solution.SolutionTime));
}

void WriteSolveAndSave(const Ormel& ormel, TextFileWriter& deck, int iterations) {
  deck.Line(" solve " + std::to_string(iterations) + " 0 0 1");
  deck.Line(" ");
  deck.Line(" save " + ormel.project.OrmelBaseName);
  deck.Line("y");
}

void WriteExtract(Ormel& ormel, TextFileWriter& deck) {
  const NumberMask mask("######0.00 ");
  deck.Line(" extract");
  deck.Line(" file " + ormel.project.OrmelBaseName);
  deck.Line(" y");
  WriteTestPoints(ormel, deck, mask);
  for (const char* line :
       {" well discharge", " well head", " linesink discharge", " linesink head", " inhomogeneity"})
    deck.Line(line);
  WriteFluxLines(ormel, deck, mask);
  deck.Line(" quit");
}

void WriteGrid(const Ormel& ormel, TextFileWriter& deck, const ModelValues& model) {
  deck.Line(" grid");
  deck.Line(DeckWindowLine(ormel));
  deck.Line(" dotmap off");
  deck.Line(" horizontalpoints " + std::to_string(model.CONTOURLevel));
  deck.Line(" go");
  deck.Line(" surfer " + ormel.project.OrmelBaseName);
  deck.Line(" y ");
  deck.Line(" quit");
}

double TracingStep(const Ormel& ormel, const ModelValues& model) {
  if (!ormel.solution.use_default_step) return model.TRACEStep;
  const double shown = ormel.solution.default_step;
  const double step = shown > 0.0 ? shown : ComputeDefaultStep(ormel);  // nothing is shown before a redraw
  return step * BasemapConvert(ormel);
}

void WriteTrace(Ormel& ormel, TextFileWriter& deck, const ModelValues& model) {
  const NumberMask mask("0.0000000E+00 ");
  deck.Line(" trace");
  deck.Line(" picture off");
  deck.Line(" file " + ormel.project.OrmelBaseName);
  deck.Line(" y ");
  deck.Line(" time " + NumberText(model.TRACEMaxTime));
  // Written for the default step and for the user's own: without the line the solver takes a step of its
  // own, and a step that somebody typed would be ignored without a word.
  deck.Line(" step " + NumberText(TracingStep(ormel, model)));
  WriteParticles(ormel, deck, model, mask);
  WriteWellStarts(ormel, deck, mask);
  deck.Line(" go");
  deck.Line(" quit");
}

}  // namespace ormel
