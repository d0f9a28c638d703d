// Rings of domains and walls cut at each other's vertices and crossings, so that every edge has one zone on
// each side and carries one jump of the potential, however many rings and walls run along it.
#pragma once

#include <utility>
#include <vector>

#include "aem/kernel/geometry.h"

namespace aem::detail {

struct System;

struct ArrangementEdge {
  int from = -1, to = -1;  ///< nodes
  int wall = -1;           ///< in the model, -1 none; the edge runs as the wall does
  int domain = -1;         ///< one whose ring runs here, -1 none
  int segment = -1;        ///< vertex of the wall, else of the domain, that the edge follows
};

struct Arrangement {
  std::vector<Complex> nodes;
  std::vector<ArrangementEdge> edges;
  std::vector<bool> on_string;  ///< by node: a line-sink ends, bends or crosses there
  /// By node: how many head line-sinks without resistance end there.
  std::vector<int> string_ends;
  /// By node: string and segment that end there last, -1 none.
  std::vector<std::pair<int, int>> ending;
  /// By node: power of the distance that heads follow near the end of a string on an edge; 0 elsewhere.
  std::vector<double> power;
  /// By node: angle at which each jump edge leaves, and its index in System::edges (negative - 1 where it
  /// arrives).  Filled by PlaceEdges.
  std::vector<std::vector<std::pair<double, int>>> around;
};

/// Fills System::rings with the domains' rings through the common nodes.  Vertices closer than the tolerance
/// are one; a vertex that close to another's edge lies on it.
Arrangement Arrange(System& system);

/// Makes jump edges where the zones differ or a wall runs, and the features that lines near them are divided
/// for.  Pre: System::zones.
void PlaceEdges(System& system, Arrangement* arrangement);

/// Pieces, unknowns and control points of the edges.  Pre: PlaceEdges and PlanStrings.
void BuildJumps(System& system, Arrangement* arrangement);

}  // namespace aem::detail
