// Many areas of recharge and sink disks of given rate, those far from a point through truncated series.
//
// Areas are sorted into a binary tree whose nodes hold the moments of all areas in them; a point takes a
// node's series A ln(z - c) + sum a_k (R/(z - c))^k where it lies farther than three of the node's radii from
// its centre, and the closed forms of the areas of a leaf otherwise (Barnes and Hut, 1986).  The error of a
// node is below its whole rate times 3^-24, 4e-12.
#pragma once

#include <span>
#include <vector>

#include "aem/kernel/sources.h"

namespace aem::detail {

class AreaField {
 public:
  /// Disks that have an unknown rate are left out: the field never changes.  Copies what it needs.
  AreaField(std::span<const AreaSource> areas, std::span<const DiskSource> disks);

  /// omega [L3/d]: only its real part has a meaning; w as in Flow.
  Flow At(Complex z) const;

 private:
  struct Source {
    int area = -1, disk = -1;
    Complex centre;
    double radius = 0.0;
  };
  struct Node {
    Complex centre;
    double radius = 0.0;
    int first = 0, last = 0;  ///< range in sources_
    int child = -1;           ///< the first of two, -1: a leaf
    std::vector<Complex> moments;
  };

  void Build(int index);
  void AddMoments(const Source& source, Node* node) const;
  void Walk(int index, Complex z, Flow* sum) const;

  std::vector<AreaSource> areas_;
  std::vector<DiskSource> disks_;
  std::vector<Source> sources_;
  std::vector<Node> nodes_;
};

}  // namespace aem::detail
