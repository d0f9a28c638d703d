#include "solver/deck_blocks.h"

#include <initializer_list>

#include "core/ormel.h"
#include "solver/deck_labels.h"
#include "solver/deck_line.h"
#include "solver/text_sink.h"
#include "text/numbers.h"

namespace ormel {
namespace {

void Lines(TextSink& deck, std::initializer_list<std::string_view> lines) {
  for (const std::string_view line : lines) deck.Line(line);
}

std::string WindowLine(const DeckWindow& window) {
  static const NumberMask mask("######0.00 ");
  DeckLine line(" window ");
  for (const double side : window) line.Number(mask, side);
  return line.str();
}

void WriteTestPoints(TextSink& deck, const ExtractBlock& extract, const NumberMask& mask) {
  for (const ExtractBlock::TestPoint& point : extract.test_points)
    deck.Line(DeckLine("  ")
                  .Number(mask, point.at.x)
                  .Number(mask, point.at.y)
                  .Text(VertexLabel("TP_", point.vid))
                  .str());
}

void WriteFluxLines(TextSink& deck, const ExtractBlock& extract, const NumberMask& mask) {
  for (const ExtractBlock::FluxLine& line : extract.flux_lines) {
    deck.Line(" flux " + VertexLabel("FL_", line.pid));
    for (const ModelPoint& at : line.vertices)
      deck.Line(DeckLine("  ").Number(mask, at.x).Number(mask, at.y).str());
    if (!line.vertices.empty()) deck.Line(" quit");
  }
}

void WriteParticles(TextSink& deck, const TraceBlock& trace, const NumberMask& place) {
  const NumberMask direction("#0.0");
  if (trace.particles.empty()) return;
  deck.Line(" points");
  for (const TraceBlock::Particle& particle : trace.particles)
    deck.Line(DeckLine(" ")
                  .Number(place, particle.at.x)
                  .Number(place, particle.at.y)
                  .Number(place, particle.elevation)
                  .Number(direction, particle.forward ? 1.0 : -1.0)
                  .str());
  deck.Line(" quit");
}

/// "  x y" and, where there is one, the elevation.
DeckLine PointLine(ModelPoint at, std::optional<double> elevation) {
  static const NumberMask place_blank("0.0000000E+00 ");
  static const NumberMask place("0.0000000E+00");
  static const NumberMask height(" #######0.00");
  DeckLine line("  ");
  line.Number(place_blank, at.x).Number(place, at.y);
  if (elevation) line.Number(height, *elevation);
  return line;
}

}  // namespace

std::string DeckHeadLine() {
  return "* Written by Ormel " + VersionText();
}

void WriteHead(TextSink& deck, const DeckHead& head) {
  deck.Line(DeckHeadLine());
  if (!head.comment.empty()) deck.Line(head.comment);
  deck.Line(DeckLine(" error ").Text(head.error).str());
  deck.Line(" yes");
  deck.Line(DeckLine(" message ").Text(head.message).str());
  deck.Line(" yes");
  deck.Line(DeckLine(" echo ").Text(head.echo).str());
  deck.Line(" yes");
  if (head.picture_off) deck.Line(" picture off");
  Lines(deck, {" quit", " "});
}

void WriteOriginAndTitle(TextSink& deck, MapPoint origin, int units, std::string_view title) {
  deck.Line(" modelorigin " + RawNumber(origin.x) + " " + RawNumber(origin.y) + " " + RawNumber(units));
  deck.Line(DeckLine(" title ").Text(title).str());
}

void WriteLayout(TextSink& deck, const DeckWindow& window) {
  Lines(deck, {" layout ", WindowLine(window), " quit "});
}

void WriteAquifer(TextSink& deck, const AquiferBlock& aquifer) {
  static const DeckMasks masks;
  const NumberMask& blank = masks.seven_blank;
  deck.Line(" aquifer");
  deck.Line(DeckLine(" base ").Number(masks.five, aquifer.base).str());
  deck.Line(DeckLine(" permeability ").Number(masks.seven, aquifer.conductivity).str());
  deck.Line(DeckLine(" thickness ").Number(masks.seven, aquifer.thickness).str());
  deck.Line(DeckLine(" porosity ").Number(masks.seven, aquifer.porosity).str());
  if (aquifer.uniform_flow)
    deck.Line(DeckLine(" uniflow      ")
                  .Number(blank, aquifer.uniform_flow->x)
                  .Number(blank, aquifer.uniform_flow->y)
                  .str());
  deck.Line(DeckLine(" reference    ")
                .Number(blank, aquifer.reference.x)
                .Number(blank, aquifer.reference.y)
                .Number(blank, aquifer.reference_head)
                .str());
  deck.Line(" quit ");
}

void WriteLoad(TextSink& deck, std::string_view stem) {
  deck.Line(DeckLine(" load ").Text(stem).str());
}

void WriteTime(TextSink& deck, double time) {
  deck.Line(" time " + NumberText(time));
}

void WriteTimeAtZone(TextSink& deck, double time) {
  std::string line = " time ";
  PrintZoneTab(line);
  deck.Line(line + RawNumber(time));
}

void WriteSolveAndSave(TextSink& deck, int iterations, std::string_view stem) {
  deck.Line(" solve " + std::to_string(iterations) + " 0 0 1");
  deck.Line(" ");
  deck.Line(DeckLine(" save ").Text(stem).str());
  deck.Line("y");
}

void WriteExtract(TextSink& deck, std::string_view stem, const ExtractBlock& extract) {
  const NumberMask mask("######0.00 ");
  Lines(deck, {" extract", DeckLine(" file ").Text(stem).str(), " y"});
  WriteTestPoints(deck, extract, mask);
  Lines(deck, {" well discharge", " well head", " linesink discharge", " linesink head", " inhomogeneity"});
  WriteFluxLines(deck, extract, mask);
  deck.Line(" quit");
}

void WriteGrid(TextSink& deck, std::string_view stem, const DeckWindow& window, int points) {
  Lines(deck, {" grid", WindowLine(window), " dotmap off", " horizontalpoints " + std::to_string(points),
               " go", DeckLine(" surfer ").Text(stem).str(), " y ", " quit"});
}

void WriteTrace(TextSink& deck, std::string_view stem, const TraceBlock& trace) {
  const NumberMask place("0.0000000E+00 ");
  const NumberMask elevation("0.00000E+00 ");
  Lines(deck, {" trace", " picture off", DeckLine(" file ").Text(stem).str(), " y "});
  WriteTime(deck, trace.longest_time);
  if (trace.step) deck.Line(" step " + NumberText(*trace.step));
  if (trace.boundary) {
    static const NumberMask mask("#.0000000E+00 ");
    DeckLine line(" Boundary  ");
    for (const ModelPoint& at : *trace.boundary) line.Number(mask, at.x).Number(mask, at.y);
    deck.Line(line.Text(" ").str());
  }
  WriteParticles(deck, trace, place);
  for (const TraceBlock::Well& well : trace.wells)
    deck.Line(DeckLine(" well ")
                  .Number(place, well.at.x)
                  .Number(place, well.at.y)
                  .Number(elevation, well.elevation)
                  .Text(RawNumber(static_cast<double>(well.particles)))
                  .str());
  Lines(deck, {" go", " quit"});
}

void WriteQuery(TextSink& deck, std::string_view file, const QueryPoint& point,
                const std::vector<std::array<double, 3>>& more) {
  static const NumberMask mask("0.0000000E+00 ");
  Lines(deck, {" extract ", DeckLine(" file ").Text(file).str(), " y"});
  deck.Line(PointLine(point.at, point.elevation).str());
  for (const auto& [x, y, z] : more)
    deck.Line(DeckLine("").Number(mask, x).Text(" ").Number(mask, y).Text(" ").Number(mask, z).str());
  Lines(deck, {" quit ", " stop"});
}

void WriteStreamline(TextSink& deck, const StreamlineBlock& line) {
  static const NumberMask direction(" #0.0");
  Lines(deck, {" trace ", " picture off"});
  WriteTime(deck, line.longest_time);
  deck.Line(" step " + NumberText(line.step));
  Lines(deck, {DeckLine(" file ").Text(line.file).str(), " y"});
  deck.Line(PointLine(line.from, line.elevation).Number(direction, line.backward ? -1.0 : 1.0).str());
  Lines(deck, {" quit ", " stop"});
}

}  // namespace ormel
