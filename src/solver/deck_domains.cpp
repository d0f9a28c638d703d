// Domains, and the walls and barriers that share their block of the deck.
#include <array>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "solver/deck_sections.h"
#include "solver/deck_writer.h"
#include "store/database.h"

namespace ormel {
namespace {

/// Tells the solver that a domain leaves a property as it is.
constexpr double kUnchanged = -9999.0;

/// Least iterations for a model with these elements.
constexpr int kForDomains = 3;
constexpr int kForChangedBase = 6;
constexpr int kForLeakyBarrier = 6;
constexpr int kForTightBarrier = 3;

void WriteVertex(DeckContext& context, const StringVertex& vertex, const std::string& label) {
  const ModelPoint at = WToM(context.ormel, vertex.at);
  context.Line(
      DeckLine("  ").Number(context.masks.six_blank, at.x).Number(context.masks.six_blank, at.y).Text(label));
}

struct WallKeyword {
  std::int64_t closed;
  const char* keyword;
  bool short_numbers;  ///< five decimals instead of seven
};
constexpr std::array kWallKeywords{
    WallKeyword{0, "slurry open     ", true}, WallKeyword{1, "slurry closed   ", false},
    WallKeyword{2, "slurry outside  ", false}, WallKeyword{3, "slurry inside   ", false}};
constexpr std::int64_t kClosedWall = 1;

}  // namespace

void WriteInhomogeneities(DeckContext& context) {
  RowReader rows(context.db, "select * from Inhomogeneities");
  const int pid_column = rows.Column("PID");
  const int label_column = rows.Column("Label");
  const int recharge = rows.Column("Recharge");
  struct Property {
    int value, change;
  };
  const Property k{rows.Column("HydCond"), rows.Column("ChangeK")};
  const Property base{rows.Column("BottomElevation"), rows.Column("ChangeB")};
  const Property head{rows.Column("AverageHead"), rows.Column("ChangeA")};
  const Property porosity{rows.Column("Porosity"), rows.Column("ChangeP")};
  const auto value = [&rows](const Property& p) {
    return rows.Bool(p.change) ? rows.Double(p.value) : kUnchanged;
  };

  bool any = false;
  while (rows.Next()) {
    if (!any) context.deck.Line(" inhomogeneity ");
    any = true;
    context.Recommend(kForDomains);
    const Pid pid = rows.Long(pid_column);
    const auto vertices = context.vertices.Of(pid);
    if (vertices.size() < 2) continue;
    if (rows.Bool(base.change)) context.Recommend(kForChangedBase);
    const DeckMasks& masks = context.masks;
    context.Line(DeckLine(" transmissivity ")
                     .Number(masks.five_blank, value(k))
                     .Number(masks.five_blank, value(base))
                     .Number(masks.five_blank, value(head))
                     // Into the aquifer is positive here and negative in the deck.
                     .Number(masks.seven_blank, -rows.Double(recharge))
                     .Number(masks.five_blank, value(porosity))
                     .Text(VertexLabel("IN_", pid))
                     .Text("_0000"));
    const std::string label(rows.Text(label_column));
    for (const StringVertex& vertex : vertices) {
      const std::string deck_label = SegmentLabel("IN_", pid, vertex.seq);
      WriteVertex(context, vertex, deck_label);
      context.rows.Inhomogeneity(label, deck_label);
    }
  }
  if (any) context.deck.Line(" quit ");
}

void WriteBarriers(DeckContext& context) {
  RowReader rows(context.db, "select * from NoFlowStrings");
  const int pid_column = rows.Column("PID");
  const int label_column = rows.Column("Label");
  const int closed_column = rows.Column("Closed");
  const std::array numbers{rows.Column("HydCond"), rows.Column("Thickness"), rows.Column("Porosity"),
                           rows.Column("BottomElevation")};
  bool any = false;
  while (rows.Next()) {
    if (!any) context.deck.Line(" inhomogeneity ");
    any = true;
    if (context.recommended_iterations < kForTightBarrier)
      context.Recommend(rows.Double(numbers[0]) != 0.0 ? kForLeakyBarrier : kForTightBarrier);
    const Pid pid = rows.Long(pid_column);
    const auto vertices = context.vertices.Of(pid);
    if (vertices.size() < 2) continue;
    const std::int64_t closed = rows.Long(closed_column);
    for (const WallKeyword& wall : kWallKeywords) {
      if (wall.closed != closed) continue;
      const NumberMask& mask = wall.short_numbers ? context.masks.five_blank : context.masks.seven_blank;
      DeckLine head(wall.keyword);
      for (const int column : numbers) head.Number(mask, rows.Double(column));
      context.Line(head.Text(VertexLabel("HB_", pid)).Text("_0000"));
    }
    const std::string label(rows.Text(label_column));
    for (const StringVertex& vertex : vertices) {
      const std::string deck_label = SegmentLabel("HB_", pid, vertex.seq);
      WriteVertex(context, vertex, deck_label);
      if (&vertex != &vertices.back() || closed == kClosedWall) context.rows.Barrier(label, deck_label);
    }
  }
  if (any) context.deck.Line(" quit ");
}

}  // namespace ormel
