// Hierarchical evaluation: sources far from a point through truncated series.
//
// Sources are sorted into a quadtree; each node holds its multipoles A ln(z - c) + sum a_k (R/(z - c))^k
// about its centre, R the radius that holds its sources.  Target cells hold a polynomial that stands for all
// nodes that are well separated, (R + r)/|d| <= 1/2 with r the cell's radius, and a list of sources near by,
// summed in closed form (Greengard and Rokhlin, 1987).  A node's series is cut at kTerms: the error of one
// node is below S q^(kTerms+1)/(1 - q), q = R/(|d| - r) <= 1/2 in the worst and 1/3 in the usual case, S the
// sum of its absolute strengths.
#pragma once

#include <array>
#include <vector>

#include "aem/geometry.h"
#include "aem/piece.h"
#include "aem/sources.h"

namespace aem::detail {

struct System;

class FarField {
 public:
  static constexpr int kTerms = 24;

  /// From the present strengths; keeps a reference to the system and holds for as long as they do not change.
  explicit FarField(const System& system);

  /// Wells and pieces.  The imaginary part of omega has no meaning.
  Flow At(Complex at, Complex toward) const;

 private:
  using Series = std::array<Complex, kTerms + 1>;

  struct Node {
    Complex centre;
    double radius = 0.0;
    int first = 0, last = 0;       ///< range in order_
    int child = -1, children = 0;  ///< consecutive in nodes_
    double net = 0.0;              ///< A
    Series a{};
  };
  struct Cell {
    Complex centre;
    double half = 0.0;
    int child = -1;  ///< first of four, or -1
    Series local{};
    std::vector<int> near;  ///< sources of a leaf
  };
  struct Source {
    int piece = -1, well = -1;
    Complex centre;
    double radius = 0.0;
  };

  void BuildNode(int index, int depth);
  void Multipoles(Node* node) const;
  void AddPiece(int piece, Node* node) const;
  void BuildCell(int index, const std::vector<int>& candidates, int depth);
  void Transfer(const Node& node, Cell* cell) const;
  void Inherit(const Cell& parent, Cell* child) const;
  static bool Separated(const Node& node, const Cell& cell);
  Flow Direct(const std::vector<int>& sources, Complex at, Complex toward) const;
  Flow Walk(int node, Complex at, Complex toward) const;
  Flow One(int source, Complex at, Complex toward) const;

  const System& s_;
  std::vector<Source> sources_;
  std::vector<int> order_;
  std::vector<Node> nodes_;
  std::vector<Cell> cells_;
  std::vector<WellSource> wells_;
};

}  // namespace aem::detail
