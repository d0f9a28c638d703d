// Line-sinks by discharge, by head, and routed streams.
#include <numeric>
#include <span>
#include <vector>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "solver/deck_sections.h"
#include "solver/deck_writer.h"
#include "store/database.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr int kIterationsForResistance = 4;
/// Marks a string whose resistance no scenario changes.
constexpr std::string_view kNoScenario = "__NONE__";

struct DeckString {
  Pid pid = 0;
  std::string label;
  double starting_head = 0.0, ending_head = 0.0, resistance = 0.0, width = 0.0, depth = 0.0;
  bool drain = false, farfield = false;
  std::int64_t location = 0;
  double end_inflow = 0.0, overland_flow = 0.0;
  bool end_stream = false;
  std::string scenario;
};

/// Reads strings by name; projects of older programs lack the fields of streams and scenarios.
std::vector<DeckString> ReadStrings(Database& db, std::string_view condition) {
  RowReader rows(db, "select * from LinesinkStrings where " + std::string(condition) + ";");
  const auto number = [&rows](std::string_view name) {
    const int column = rows.Column(name);
    return column < 0 ? 0.0 : rows.Double(column);
  };
  const auto flag = [&rows](std::string_view name) {
    const int column = rows.Column(name);
    return column >= 0 && rows.Bool(column);
  };
  const int scenario = rows.Column("ScenResistance");
  const int pid = rows.Column("PID");
  const int label = rows.Column("Label");
  const int location = rows.Column("AutoSWIZC");
  std::vector<DeckString> strings;
  while (rows.Next()) {
    DeckString s;
    s.pid = rows.Long(pid);
    s.label = rows.Text(label);
    s.starting_head = number("StartingHead");
    s.ending_head = number("EndingHead");
    s.resistance = number("Resistance");
    s.width = number("Width");
    s.depth = number("Depth");
    s.drain = flag("Drain");
    s.farfield = flag("Farfield");
    s.location = rows.Long(location);
    s.end_inflow = number("EndInflow");
    s.overland_flow = number("Overlandflow");
    s.end_stream = number("EndStream") == 1.0;
    s.scenario = scenario < 0 || rows.IsNull(scenario) ? kNoScenario : rows.Text(scenario);
    strings.push_back(std::move(s));
  }
  return strings;
}

double LengthOf(std::span<const StringVertex> vertices) {
  double length = 0.0;
  for (std::size_t i = 1; i < vertices.size(); ++i)
    length += std::hypot(vertices[i].at.x - vertices[i - 1].at.x, vertices[i].at.y - vertices[i - 1].at.y);
  return length;
}

/// Calls `segment(from, to, value)`: the value runs from the string's first to its last in proportion to the
/// length, and is taken at the segment's middle.
template <class Segment>
void ForEachSegment(const DeckString& s, std::span<const StringVertex> vertices, Segment&& segment) {
  const double total = LengthOf(vertices);
  double passed = 0.0;
  for (std::size_t i = 1; i < vertices.size(); ++i) {
    const double length = LengthOf(vertices.subspan(i - 1, 2));
    const double share = total > 0.0 ? (passed + 0.5 * length) / total : 0.0;
    segment(vertices[i - 1], vertices[i], s.starting_head + (s.ending_head - s.starting_head) * share);
    passed += length;
  }
}

void WriteSegments(DeckContext& context, const DeckString& s, std::span<const StringVertex> vertices,
                   bool by_head) {
  const DeckMasks& masks = context.masks;
  ForEachSegment(s, vertices, [&](const StringVertex& from, const StringVertex& to, double value) {
    const ModelPoint a = WToM(context.ormel, from.at);
    const ModelPoint b = WToM(context.ormel, to.at);
    const std::string deck_label = SegmentLabel("LS_", s.pid, to.seq);
    context.Line(DeckLine("  ")
                     .Number(masks.six_blank, a.x)
                     .Number(masks.six_blank, a.y)
                     .Number(masks.six_blank, b.x)
                     .Number(masks.six_blank, b.y)
                     .Number(masks.five_blank, value)
                     .Text(deck_label));
    context.rows.Linesink(s.label, deck_label, from.at, to.at, by_head ? value : kNoSpecifiedHead);
  });
}

/// The resistance as it stands in the deck.  An export for a scenario writes it in plain text, and for a
/// stream takes the scenario's value.
std::string ResistanceText(const DeckContext& context, const DeckString& s, bool stream) {
  if (context.for_export && s.scenario != kNoScenario)
    return " " + (stream ? s.scenario : NumberText(s.resistance)) + " ";
  return context.masks.six_blank.Format(s.resistance);
}

void WriteByDischarge(DeckContext& context) {
  const auto strings = ReadStrings(context.db, "HeadSpecified=0");
  if (strings.empty()) return;
  context.deck.Line(" linesink ");
  context.deck.Line(" discharge ");
  for (const DeckString& s : strings) {
    const auto vertices = context.vertices.Of(s.pid);
    if (vertices.size() >= 2) WriteSegments(context, s, vertices, false);
  }
  context.deck.Line(" quit ");
}

void WriteByHead(DeckContext& context) {
  const auto strings = ReadStrings(context.db, "HeadSpecified=1 and Routing=0");
  if (strings.empty()) return;
  context.deck.Line(" linesink ");
  for (const DeckString& s : strings) {
    if (context.recommended_iterations < kIterationsForResistance && s.resistance != 0.0)
      context.Recommend(kIterationsForResistance);
    const auto vertices = context.vertices.Of(s.pid);
    if (vertices.size() < 2) continue;
    // A far-field string only holds the head far away: it has no bed.
    const std::string resistance = s.farfield ? RawNumber(0.0) : ResistanceText(context, s, false);
    const NumberMask& mask = context.masks.six_blank;
    context.deck.Line(s.drain ? " drain " : " head ");
    context.Line(DeckLine(" resistance ").Text(resistance));
    context.Line(DeckLine(" width ")
                     .Number(mask, s.farfield ? 0.0 : s.width)
                     .Text(" ")
                     .Text(std::to_string(s.location)));
    context.Line(DeckLine(" depth ").Number(mask, s.farfield ? 0.0 : s.depth));
    WriteSegments(context, s, vertices, true);
  }
  context.deck.Line(" quit ");
}

struct StreamMasks {
  NumberMask flow{"0.000E+00"};
  NumberMask size{"0.000E+00 "};
  NumberMask head{"#.000000 "};
};

void WriteStream(DeckContext& context, const StreamMasks& masks, const DeckString& s,
                 std::span<const StringVertex> vertices) {
  const NumberMask& place = context.masks.six_blank;
  context.Line(DeckLine(" stream ").Number(masks.flow, s.end_inflow));
  if (s.end_stream) context.deck.Line(" end");
  context.Line(DeckLine(" overlandflow ").Number(masks.flow, s.overland_flow));
  context.Line(DeckLine(" resistance ").Text(ResistanceText(context, s, true)));
  context.Line(DeckLine(" width ").Number(masks.size, s.width));
  context.Line(DeckLine(" depth ").Number(masks.size, s.depth));
  ForEachSegment(s, vertices, [&](const StringVertex& from, const StringVertex& to, double value) {
    const ModelPoint a = WToM(context.ormel, from.at);
    const std::string deck_label = SegmentLabel("LS_", s.pid, to.seq);
    context.Line(
        DeckLine("  ").Number(place, a.x).Number(place, a.y).Number(masks.head, value).Text(deck_label));
    context.rows.Linesink(s.label, deck_label, from.at, to.at, value);
  });
  const ModelPoint last = WToM(context.ormel, vertices.back().at);
  context.Line(DeckLine(" ").Number(place, last.x).Number(place, last.y));
}

void WriteRouted(DeckContext& context) {
  const auto strings = ReadStrings(context.db, "HeadSpecified=1 and Routing=1");
  if (strings.empty()) return;
  const StreamMasks masks;
  context.deck.Line(" linesink ");
  for (const DeckString& s : strings) {
    const auto vertices = context.vertices.Of(s.pid);
    if (vertices.size() >= 2) WriteStream(context, masks, s, vertices);
  }
  context.deck.Line(" quit ");
}

}  // namespace

void WriteLinesinks(DeckContext& context) {
  WriteByDischarge(context);
  WriteByHead(context);
  WriteRouted(context);
}

}  // namespace ormel
