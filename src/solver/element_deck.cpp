#include "solver/element_deck.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "solver/deck_labels.h"
#include "solver/deck_line.h"
#include "solver/element_deck_wells.h"
#include "solver/text_sink.h"
#include "text/numbers.h"

namespace ormel {
namespace {

/// Tells the solver that a domain leaves a property as it is.
constexpr double kUnchanged = -9999.0;
/// Fewer points make no element; its row of the project stands all the same.
constexpr std::size_t kFewestPoints = 2;

/// What the groups share while a deck is written.
struct Section {
  TextSink& deck;
  bool for_export = false;
  DeckMasks masks{};

  void Line(const DeckLine& line) { deck.Line(line.str()); }
};

// --- domains and walls, which share their block of the deck ---

void WriteRing(Section& out, const InputVertex& vertex, const std::string& label) {
  const NumberMask& mask = out.masks.six_blank;
  out.Line(DeckLine("  ").Number(mask, vertex.at.x).Number(mask, vertex.at.y).Text(label));
}

void WriteDomains(Section& out, const std::vector<DomainInput>& domains) {
  if (domains.empty()) return;
  out.deck.Line(" inhomogeneity ");
  const NumberMask& five = out.masks.five_blank;
  for (const DomainInput& domain : domains) {
    if (domain.vertices.size() < kFewestPoints) continue;
    out.Line(DeckLine(" transmissivity ")
                 .Number(five, domain.conductivity.value_or(kUnchanged))
                 .Number(five, domain.base.value_or(kUnchanged))
                 .Number(five, domain.head.value_or(kUnchanged))
                 // Into the aquifer is positive here and negative in the deck.
                 .Number(out.masks.seven_blank, -domain.recharge)
                 .Number(five, domain.porosity.value_or(kUnchanged))
                 .Text(VertexLabel("IN_", domain.pid))
                 .Text("_0000"));
    for (const InputVertex& vertex : domain.vertices)
      WriteRing(out, vertex, SegmentLabel("IN_", domain.pid, vertex.seq));
  }
  out.deck.Line(" quit ");
}

struct WallKeyword {
  const char* keyword;
  bool short_numbers;  ///< five decimals instead of seven
};
/// By `Closed`.
constexpr std::array kWallKeywords{
    WallKeyword{"slurry open     ", true}, WallKeyword{"slurry closed   ", false},
    WallKeyword{"slurry outside  ", false}, WallKeyword{"slurry inside   ", false}};

void WriteWalls(Section& out, const std::vector<WallInput>& walls) {
  if (walls.empty()) return;
  out.deck.Line(" inhomogeneity ");
  for (const WallInput& wall : walls) {
    if (wall.vertices.size() < kFewestPoints) continue;
    if (wall.closed >= 0 && wall.closed < static_cast<std::int64_t>(kWallKeywords.size())) {
      const WallKeyword& kind = kWallKeywords.at(static_cast<std::size_t>(wall.closed));
      const NumberMask& mask = kind.short_numbers ? out.masks.five_blank : out.masks.seven_blank;
      DeckLine head(kind.keyword);
      for (const double number : {wall.conductivity, wall.thickness, wall.porosity, wall.bottom})
        head.Number(mask, number);
      out.Line(head.Text(VertexLabel("HB_", wall.pid)).Text("_0000"));
    }
    for (const InputVertex& vertex : wall.vertices)
      WriteRing(out, vertex, SegmentLabel("HB_", wall.pid, vertex.seq));
  }
  out.deck.Line(" quit ");
}

// --- line-sinks ---

void WriteSegments(Section& out, const StringInput& s) {
  const NumberMask& place = out.masks.six_blank;
  for (std::size_t i = 1; i < s.vertices.size(); ++i) {
    const InputVertex &from = s.vertices[i - 1], &to = s.vertices[i];
    out.Line(DeckLine("  ")
                 .Number(place, from.at.x)
                 .Number(place, from.at.y)
                 .Number(place, to.at.x)
                 .Number(place, to.at.y)
                 .Number(out.masks.five_blank, s.values[i - 1])
                 .Text(SegmentLabel("LS_", s.pid, to.seq)));
  }
}

/// The resistance as it stands in the deck.  An export for a scenario writes it in plain text, and for a
/// stream takes the scenario's value.
std::string ResistanceText(const Section& out, const StringInput& s, bool stream) {
  if (out.for_export && s.scenario) return " " + (stream ? *s.scenario : NumberText(s.resistance)) + " ";
  return out.masks.six_blank.Format(s.resistance);
}

void WriteByDischarge(Section& out, const std::vector<StringInput>& strings) {
  if (strings.empty()) return;
  out.deck.Line(" linesink ");
  out.deck.Line(" discharge ");
  for (const StringInput& s : strings) WriteSegments(out, s);
  out.deck.Line(" quit ");
}

void WriteByHead(Section& out, const std::vector<StringInput>& strings) {
  if (strings.empty()) return;
  out.deck.Line(" linesink ");
  const NumberMask& mask = out.masks.six_blank;
  for (const StringInput& s : strings) {
    if (s.vertices.size() < kFewestPoints) continue;
    // A far-field string only holds the head far away: it has no bed.
    const std::string resistance = s.farfield ? RawNumber(0.0) : ResistanceText(out, s, false);
    out.deck.Line(s.drain ? " drain " : " head ");
    out.Line(DeckLine(" resistance ").Text(resistance));
    out.Line(DeckLine(" width ")
                 .Number(mask, s.farfield ? 0.0 : s.width)
                 .Text(" ")
                 .Text(std::to_string(s.location)));
    out.Line(DeckLine(" depth ").Number(mask, s.farfield ? 0.0 : s.depth));
    WriteSegments(out, s);
  }
  out.deck.Line(" quit ");
}

struct StreamMasks {
  NumberMask flow{"0.000E+00"};
  NumberMask size{"0.000E+00 "};
  NumberMask head{"#.000000 "};
};

void WriteStream(Section& out, const StreamMasks& masks, const StringInput& s) {
  const NumberMask& place = out.masks.six_blank;
  out.Line(DeckLine(" stream ").Number(masks.flow, s.end_inflow));
  if (s.end_stream) out.deck.Line(" end");
  out.Line(DeckLine(" overlandflow ").Number(masks.flow, s.overland_flow));
  out.Line(DeckLine(" resistance ").Text(ResistanceText(out, s, true)));
  out.Line(DeckLine(" width ").Number(masks.size, s.width));
  out.Line(DeckLine(" depth ").Number(masks.size, s.depth));
  for (std::size_t i = 1; i < s.vertices.size(); ++i) {
    const ModelPoint from = s.vertices[i - 1].at;
    out.Line(DeckLine("  ")
                 .Number(place, from.x)
                 .Number(place, from.y)
                 .Number(masks.head, s.values[i - 1])
                 .Text(SegmentLabel("LS_", s.pid, s.vertices[i].seq)));
  }
  const ModelPoint last = s.vertices.back().at;
  out.Line(DeckLine(" ").Number(place, last.x).Number(place, last.y));
}

void WriteRouted(Section& out, const std::vector<StringInput>& strings) {
  if (strings.empty()) return;
  const StreamMasks masks;
  out.deck.Line(" linesink ");
  for (const StringInput& s : strings)
    if (s.vertices.size() >= kFewestPoints) WriteStream(out, masks, s);
  out.deck.Line(" quit ");
}

}  // namespace

void ToolsWriteVadoxElements(const SolverInput& input, TextSink& deck, bool ForExport) {
  Section out{.deck = deck, .for_export = ForExport};
  WriteOriginAndTitle(deck, input.origin, input.units_code, input.stem);
  WriteAquifer(deck, input.aquifer);
  WriteLayout(deck, input.window);
  WriteDomains(out, input.domains);
  WriteWalls(out, input.walls);
  WriteWells(deck, input.wells);
  WriteByDischarge(out, input.by_discharge);
  WriteByHead(out, input.by_head);
  WriteRouted(out, input.routed);
}

void WriteOutput(const OutputInput& output, TextSink& deck) {
  WriteExtract(deck, output.stem, output.extract);
  if (output.grid_points) WriteGrid(deck, output.stem, output.window, *output.grid_points);
  if (output.trace) WriteTrace(deck, output.stem, *output.trace);
}

int RecommendedIterations(const SolverInput& input) {
  constexpr int kForDomains = 3;
  constexpr int kForChangedBase = 6;
  constexpr int kForLeakyBarrier = 6;
  constexpr int kForTightBarrier = 3;
  constexpr int kForPartialWells = 3;
  constexpr int kForResistance = 4;
  int number = 1;
  const auto recommend = [&number](int iterations) { number = std::max(number, iterations); };
  for (const DomainInput& domain : input.domains)
    recommend(domain.base && domain.vertices.size() >= kFewestPoints ? kForChangedBase : kForDomains);
  for (const WallInput& wall : input.walls)
    if (number < kForTightBarrier) recommend(wall.conductivity != 0.0 ? kForLeakyBarrier : kForTightBarrier);
  for (const WellKind kind : {WellKind::kPartialDischarge, WellKind::kPartialHead})
    if (!input.wells[static_cast<std::size_t>(kind)].empty()) recommend(kForPartialWells);
  for (const StringInput& s : input.by_head)
    if (s.resistance != 0.0) recommend(kForResistance);
  return number;
}

}  // namespace ormel
