#include "model/refine.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "core/ask_number.h"
#include "core/command.h"
#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/digitize.h"
#include "model/selection.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr Seq kStep = 100;

/// New vertices on one edge.
double PartsToAdd(MapPoint from, MapPoint to, double longest) {
  const double parts = std::ceil(std::hypot(to.x - from.x, to.y - from.y) / longest * (1.0 - 1e-12));
  return parts > 1.0 ? parts - 1.0 : 0.0;
}

/// The edges of a string, each by the positions of its ends; the closing edge ends at the first vertex.
std::size_t EdgeCount(Ormel& ormel, Element element, Pid pid, const std::vector<VertexRow>& rows) {
  if (rows.size() < 2) return 0;
  const bool closed = NeighboursOf(ormel, element, pid, rows.front().vid).before.has_value();
  return closed ? rows.size() : rows.size() - 1;
}

/// Adds `count` vertices behind `rows[edge]`, with numbers between those of its neighbours.
void DivideEdge(Ormel& ormel, Pid pid, const std::vector<VertexRow>& rows, std::size_t edge, int count) {
  const VertexRow& from = rows[edge];
  const VertexRow& to = rows[(edge + 1) % rows.size()];
  const Seq room = edge + 1 < rows.size() ? to.seq - from.seq : kStep * (count + 1);
  for (int i = 1; i <= count; ++i) {
    const double t = static_cast<double>(i) / (count + 1);
    const MapPoint at{from.at.x + t * (to.at.x - from.at.x), from.at.y + t * (to.at.y - from.at.y)};
    ElemAddVertex(ormel, at, pid, from.seq + room * i / (count + 1));
  }
}

}  // namespace

double CountRefinement(Ormel& ormel, Element element, Pid pid, double longest) {
  const std::vector<VertexRow> rows = VerticesOf(ormel, pid);
  double count = 0.0;
  for (std::size_t edge = 0; edge < EdgeCount(ormel, element, pid, rows); ++edge)
    count += PartsToAdd(rows[edge].at, rows[(edge + 1) % rows.size()].at, longest);
  return count;
}

int ElemRefineString(Ormel& ormel, Element element, Pid pid, double longest) {
  const Named named(ormel, "ElemRefineString");
  std::vector<VertexRow> rows = VerticesOf(ormel, pid);
  const std::size_t edges = EdgeCount(ormel, element, pid, rows);
  std::vector<int> counts;
  int most = 0, added = 0;
  for (std::size_t edge = 0; edge < edges; ++edge) {
    counts.push_back(static_cast<int>(PartsToAdd(rows[edge].at, rows[(edge + 1) % rows.size()].at, longest)));
    most = std::max(most, counts.back());
    added += counts.back();
  }
  if (added == 0) return 0;
  // Room for the new numbers: as wide as the edge with the most new vertices wants, made once.
  const Seq spacing = std::max<Seq>(kStep, most + 1);
  SpaceOut(ormel, rows, spacing);
  for (std::size_t edge = 0; edge < edges; ++edge) DivideEdge(ormel, pid, rows, edge, counts[edge]);
  Resequence(ormel, pid, rows.front().vid);
  return added;
}

void ElemRefine(Ormel& ormel) {
  RunEdit(ormel, "ElemRefine", [&] {
    const Selection selected = ormel.selection;
    if (!IsPolygonElement(selected.SelectedType)) return;
    const auto answer = AskNumber(
        ormel,
        {"Refine",
         std::string("Enter the longest distance between two vertices (") + MapLengthUnit(ormel) + "):", ""});
    if (!answer) return;
    const double longest = *answer;
    if (!(longest > 0.0)) {
      Inform(ormel, "Bad Entry", "The distance must be greater than 0.");
      return;
    }
    if (CountRefinement(ormel, selected.SelectedType, selected.pid, longest) > kMostNewVertices) {
      Inform(ormel, "Bad Entry", "This distance would add more than 5000 vertices.  Enter a larger one.");
      return;
    }
    if (ElemRefineString(ormel, selected.SelectedType, selected.pid, longest) == 0) {
      Inform(ormel, "Refine", "No two vertices lie farther apart.  Nothing was added.");
      return;
    }
    ClearSelection(ormel);
    // The flow does not know the line, but its computed flux has other ends.
    if (selected.SelectedType == Element::kFluxLine) InvalidateSolution(ormel, true, true);
  });
}

}  // namespace ormel
