// An approximate inverse for the iterative solution: blocks of neighbouring unknowns inverted each by itself,
// and a coarse system of mean strengths and the constant that couples them over the distance.
//
// Constants over clusters and what is left within each are two additive levels of subspaces: for the
// logarithmic potential the condition number of the product then grows like the square of the logarithm of
// the unknowns in a cluster alone (Tran and Stephan, 1996).
#pragma once

#include <map>
#include <vector>

#include "aem/influence/source_tree.h"
#include "aem/linear/linear.h"
#include "aem/system/equations.h"

namespace aem::detail {

/// What the equations are made of.
struct EquationParts {
  const System& system;
  const SourceTree& tree;
  const std::vector<LocalRow>& local;     ///< by control point
  const std::vector<Linearised>& linear;  ///< by control point
  const std::vector<double>&
      reference_row;  ///< by unknown: what it gives to the field at the reference point
};

class Preconditioner {
 public:
  explicit Preconditioner(const EquationParts& parts);

  /// By equation: what makes its largest nearby coefficient 1.
  const std::vector<double>& RowScale() const { return scale_; }
  /// to is about the inverse of the system with scaled rows times from.
  void Apply(const std::vector<double>& from, std::vector<double>* to) const;

 private:
  /// Unknowns of a cluster, then those around it that overlap: the solution of all of them is used for the
  /// cluster's own alone (restricted additive Schwarz; Cai and Sarkis, 1999).
  struct Block {
    std::vector<int> leaves;  ///< the cluster's own, then those that overlap
    std::vector<int> unknowns;
    std::size_t own = 0;
    std::vector<float> inverse;  ///< rows of own unknowns, column-major
  };
  /// A tree node's control points in the coarse equations.
  struct Mean {
    double weight = 0.0;
    Complex centre;
  };

  void FindOwners(const EquationParts& p);
  void ChooseBlocks(const EquationParts& p);
  void ChooseRings(const EquationParts& p);
  void AddUnknowns(const EquationParts& p, int leaf, Block* block) const;
  /// Adds the leaves that its own unknowns reach into.
  void Complete(Block* block) const;
  /// Whether all that an unknown gives strength to lies in the block's leaves.
  bool Within(int unknown, const Block& block) const;
  void Invert(const EquationParts& p, Block* block);
  std::vector<double> BlockMatrix(const EquationParts& p, const Block& block) const;
  void Overlap(const EquationParts& p, Block* block) const;
  void LocalField(const EquationParts& p, const std::vector<int>& leaves, std::vector<double>* field) const;
  void ScaleReference(const EquationParts& p);

  void ChooseCoarse(const EquationParts& p);
  void FactorCoarse(const EquationParts& p);
  void AddOwnCoarse(const EquationParts& p, std::vector<double>* matrix) const;
  void PairCoarse(const EquationParts& p, int a, int b, bool separated, std::vector<double>* matrix) const;
  void PairLeaves(const EquationParts& p, int leaf, std::vector<double>* matrix) const;
  /// Weight of a control point in its cluster's equation; 0 where it has none.
  double CoarseTest(const EquationParts& p, int control, double* value) const;

  std::vector<int> owner_;                  ///< source by unknown, -1 none
  std::vector<std::vector<int>> owned_;     ///< unknowns by source
  std::map<int, std::vector<int>> beyond_;  ///< leaves of an unknown's sources besides its owner's, if any
  std::vector<char> in_ring_;               ///< by unknown: a ring's block solves for it
  std::vector<Block> blocks_;
  std::vector<double> scale_;

  int coarse_ = 1;                      ///< unknowns; the first is the constant
  std::vector<int> clusters_;           ///< tree nodes of the coarse level
  std::vector<int> coarse_of_node_;     ///< by tree node, -1 above the coarse level
  std::vector<int> coarse_of_unknown_;  ///< by unknown, -1 where it is no mean strength
  std::vector<int> mean_strengths_;     ///< by source: its strength that is a mean density, -1 none
  std::vector<Series> outer_;           ///< by tree node, of unit mean densities
  std::vector<Mean> mean_;              ///< by tree node
  DenseFactors factors_;
  int threads_ = 1;
};

}  // namespace aem::detail
