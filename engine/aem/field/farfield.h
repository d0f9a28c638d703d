// Hierarchical evaluation: sources far from a point through truncated series.
//
// Sources are sorted into a binary tree; each node holds its outer series.  Target cells, a quadtree, hold a
// local series that stands for all nodes that are well separated, (R + r)/|d| <= 1/2 with r the cell's radius
// (stricter than what series.h asks for, since a cell serves any point in it), and a list of sources near by,
// summed in closed form.
#pragma once

#include <numbers>
#include <vector>

#include "aem/kernel/geometry.h"
#include "aem/kernel/series.h"
#include "aem/kernel/sources.h"

namespace aem::detail {

struct System;

class FarField {
 public:
  /// From the present strengths, sources without any left out; keeps a reference to the system and holds for
  /// as long as they do not change.
  explicit FarField(const System& system);

  /// Wells and pieces.  The imaginary part of omega has no meaning.
  Flow At(Complex at, Complex toward) const;

  // For FineField: sources and cells by their numbers.
  int Sources() const { return int(sources_.size()); }
  /// A well or piece with its strength.
  Flow One(int source, Complex at, Complex toward) const;
  /// From where it is no smooth function of the place.
  double Distance(int source, Complex at) const;
  std::size_t Cells() const { return cells_.size(); }
  /// The undivided cell around a place; -1: it lies outside of all.
  int LeafAt(Complex at) const;
  Disc CellDisc(int cell) const { return cells_[cell].Around(); }
  const Series& Local(int cell) const { return cells_[cell].local; }
  const std::vector<int>& Near(int leaf) const { return cells_[leaf].near; }

 private:
  struct Node {
    Disc disc;
    int first = 0, last = 0;       ///< range in order_
    int child = -1, children = 0;  ///< consecutive in nodes_
    Series outer{};
  };
  struct Cell {
    Complex centre;
    double half = 0.0;
    int child = -1;  ///< first of four, or -1
    Series local{};
    Disc Around() const { return {centre, half * std::numbers::sqrt2}; }
    std::vector<int> near;  ///< sources of a leaf
  };
  struct Source {
    int piece = -1, well = -1;
    Complex centre;
    double radius = 0.0;
  };

  void BuildNode(int index, int depth);
  void AddLeaf(Node* node) const;
  void LiftNodes();
  void BuildCell(int index, const std::vector<int>& candidates, int depth);
  static bool FarFrom(const Node& node, const Cell& cell);
  Flow Direct(const std::vector<int>& sources, Complex at, Complex toward) const;
  Flow Walk(int node, Complex at, Complex toward) const;

  const System& s_;
  std::vector<Source> sources_;
  std::vector<int> order_;
  std::vector<Node> nodes_;
  std::vector<Cell> cells_;
  std::vector<WellSource> wells_;
};

}  // namespace aem::detail
