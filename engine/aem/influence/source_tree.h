// The binary tree of sources with unknown strength, and the map from their strengths to the field at control
// points: near ones in closed form, far ones through series (series.h).
//
// Strengths are numbered along the tree, so that a node's lie side by side: the coefficients of a piece, the
// discharge of a well, the rate of a disk.  A control point belongs to the source it lies on; that of the
// reference point belongs to none and is left to the caller.
#pragma once

#include <vector>

#include "aem/kernel/series.h"
#include "aem/system/system.h"

namespace aem::detail {

class SourceTree {
 public:
  struct Source {
    enum class Kind : unsigned char { kPiece, kWell, kPartialWell, kDisk };
    Kind kind = Kind::kPiece;
    int index = -1;  ///< in the system's list
    Disc around;
    int first = 0, size = 1;              ///< strengths
    int first_control = 0, controls = 0;  ///< in ControlOrder
  };
  struct Node {
    Disc disc;
    int first = 0, last = 0;  ///< sources
    int child = -1;           ///< the first of two, -1: a leaf
    std::vector<int> far;     ///< nodes whose series reach this one
    std::vector<int> near;    ///< leaves only
  };

  explicit SourceTree(const System& system);

  /// Closed forms of near sources; false when `go_on` said so.
  bool Assemble(const std::function<bool(double)>& go_on);
  /// Bytes that Assemble will take.
  double NearBytes() const;

  std::size_t Strengths() const { return strengths_; }
  const std::vector<Source>& Sources() const { return sources_; }
  const std::vector<Node>& Nodes() const { return nodes_; }
  /// Index in System::controls, ordered along the tree.
  const std::vector<int>& ControlOrder() const { return control_order_; }
  int FirstStrength(const Node& n) const { return first_strength_[n.first]; }
  int LastStrength(const Node& n) const { return first_strength_[n.last]; }
  int FirstControl(const Node& n) const { return first_control_[n.first]; }
  int LastControl(const Node& n) const { return first_control_[n.last]; }

  /// Field at the control points by System's numbering; those of no source are left alone.
  void Field(const std::vector<double>& strength, std::vector<double>* field) const;

  /// Near influences of leaf `near[k]` on the control points of leaf `node`: columns of strengths, each as
  /// long as the leaf's control points.
  const double* NearBlock(int node, std::size_t k) const;
  /// What the strengths of a leaf give to a far control point, by a few terms of their series.
  void FarRow(int leaf, const Control& control, double* row) const;
  /// The series of one strength about its leaf.
  const Series& Outer(int strength) const { return outer_[strength]; }
  int LeafOf(int source) const { return leaf_of_[source]; }

 private:
  void BuildNode(int index);
  void Pair(int target, int source);
  void AttachControls();
  void MakeSeries(int source);
  void FillNear(int node);
  double Seen(const Source& source, int strength, const Control& control) const;
  /// Line-doublets apart from all else where walls ask for one of them alone.
  int PartOf(const Source& source) const;
  void Upward(const std::vector<double>& strength, std::vector<std::array<Series, 2>>* outer) const;
  void Downward(std::vector<std::array<Series, 2>>* local) const;
  void AtControls(int node, const std::array<Series, 2>& local, const std::vector<double>& strength,
                  std::vector<double>* field) const;

  const System& s_;
  int parts_ = 1;
  std::size_t strengths_ = 0;
  std::vector<Source> sources_;
  std::vector<Node> nodes_;
  std::vector<int> first_strength_, first_control_, control_order_, leaf_of_;
  std::vector<Series> outer_;  ///< by strength, about the disc of its leaf
  std::vector<std::vector<double>> near_;
  std::vector<std::vector<std::size_t>> near_start_;
};

}  // namespace aem::detail
