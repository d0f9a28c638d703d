#include "aem/field/farfield.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "aem/system/system.h"

namespace aem::detail {

namespace {

constexpr int kLeafSources = 8;   ///< of a source node
constexpr int kNearSources = 28;  ///< of a target cell before it is divided
constexpr int kDeepest = 18;
constexpr double kSeparation = 0.5;

}  // namespace

FarField::FarField(const System& system) : s_(system) {
  const auto silent = [&](std::size_t p) {
    const double* c = &s_.coefficients[p * kMaxBasis];
    return std::all_of(c, c + s_.pieces[p].size, [](double v) { return v == 0.0; });
  };
  for (std::size_t p = 0; p < s_.pieces.size(); ++p)
    if (!silent(p)) sources_.push_back({int(p), -1, s_.pieces[p].Middle(), 0.5 * s_.pieces[p].Length()});
  for (const std::vector<WellSource>* list : {&s_.wells, &s_.partial_wells})
    for (const WellSource& w : *list) {
      sources_.push_back({-1, int(wells_.size()), w.at, w.radius});
      wells_.push_back(w);
    }
  if (sources_.empty()) return;
  order_.resize(sources_.size());
  for (std::size_t i = 0; i < order_.size(); ++i) order_[i] = int(i);
  nodes_.push_back({});
  nodes_[0].last = int(order_.size());
  BuildNode(0, 0);
  ParallelFor(s_.options.threads, nodes_.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) AddLeaf(&nodes_[i]);
  });
  LiftNodes();
  Box box = s_.extent;
  Cell root;
  root.centre = box.Middle();
  root.half = 0.5 * std::max(box.right - box.left, box.top - box.bottom) * 1.05 + 1e-9;
  cells_.push_back(root);
  BuildCell(0, {0}, 0);
}

void FarField::BuildNode(int index, int depth) {
  const int first = nodes_[index].first, last = nodes_[index].last;
  Box box;
  for (int i = first; i < last; ++i) box.Add(sources_[order_[i]].centre);
  const Complex centre = box.Middle();
  double radius = 0.0;
  for (int i = first; i < last; ++i)
    radius = std::max(radius, std::abs(sources_[order_[i]].centre - centre) + sources_[order_[i]].radius);
  nodes_[index].disc = {centre, std::max(radius, 1e-12)};
  if (last - first <= kLeafSources || depth >= 2 * kDeepest || box.Diagonal() == 0.0) return;
  // Two halves along the longer side: a binary tree stays balanced however the sources lie.
  const bool wide = box.right - box.left > box.top - box.bottom;
  const int middle = (first + last) / 2;
  std::nth_element(order_.begin() + first, order_.begin() + middle, order_.begin() + last, [&](int a, int b) {
    const Complex u = sources_[a].centre, v = sources_[b].centre;
    return wide ? u.real() < v.real() : u.imag() < v.imag();
  });
  const int child = int(nodes_.size());
  nodes_[index].child = child;
  nodes_[index].children = 2;
  nodes_.resize(nodes_.size() + 2);
  nodes_[child].first = first;
  nodes_[child].last = middle;
  nodes_[child + 1].first = middle;
  nodes_[child + 1].last = last;
  BuildNode(child, depth + 1);
  BuildNode(child + 1, depth + 1);
}

void FarField::AddLeaf(Node* node) const {
  if (node->children > 0) return;
  for (int i = node->first; i < node->last; ++i) {
    const Source& source = sources_[order_[i]];
    if (source.piece < 0) {
      AddPointSeries(source.centre, wells_[source.well].discharge, node->disc, &node->outer);
      continue;
    }
    const Piece& piece = s_.pieces[source.piece];
    for (int n = 0; n < piece.size; ++n)
      AddPieceSeries(piece, n, s_.coefficients[source.piece * kMaxBasis + n], node->disc, &node->outer);
  }
}

/// Children stand behind their parents.
void FarField::LiftNodes() {
  for (std::size_t i = nodes_.size(); i-- > 0;)
    for (int k = 0; k < nodes_[i].children; ++k) {
      const Node& child = nodes_[nodes_[i].child + k];
      Lift(child.outer, child.disc, nodes_[i].disc, &nodes_[i].outer);
    }
}

bool FarField::FarFrom(const Node& node, const Cell& cell) {
  const Disc disc = cell.Around();
  return node.disc.radius + disc.radius <= kSeparation * std::abs(disc.centre - node.disc.centre);
}

void FarField::BuildCell(int index, const std::vector<int>& candidates, int depth) {
  std::vector<int> open = candidates, kept;
  int near = 0;
  while (!open.empty()) {
    const int n = open.back();
    open.pop_back();
    const Node& node = nodes_[n];
    if (FarFrom(node, cells_[index])) {
      Transfer(node.outer, node.disc, cells_[index].Around(), &cells_[index].local);
    } else if (node.children > 0 && node.disc.radius > 0.5 * cells_[index].half) {
      open.push_back(node.child);
      open.push_back(node.child + 1);
    } else {
      kept.push_back(n);
      // Nodes that a long element makes wide stay near however small the cell is.
      if (node.disc.radius <= 2.0 * cells_[index].half) near += node.last - node.first;
    }
  }
  if (near > kNearSources && depth < kDeepest && cells_.size() < 4 * sources_.size() + 64) {
    const int child = int(cells_.size());
    cells_.resize(cells_.size() + 4);
    cells_[index].child = child;
    for (int k = 0; k < 4; ++k) {
      Cell& c = cells_[child + k];
      c.half = 0.5 * cells_[index].half;
      c.centre =
          cells_[index].centre + c.half * Complex{(k & 1) != 0 ? 1.0 : -1.0, (k & 2) != 0 ? 1.0 : -1.0};
      Inherit(cells_[index].local, cells_[index].Around(), c.Around(), &c.local);
    }
    for (int k = 0; k < 4; ++k) BuildCell(child + k, kept, depth + 1);
    return;
  }
  // A leaf: what is left goes down to single sources or separated parts.
  while (!kept.empty()) {
    const Node& node = nodes_[kept.back()];
    kept.pop_back();
    if (FarFrom(node, cells_[index])) {
      Transfer(node.outer, node.disc, cells_[index].Around(), &cells_[index].local);
    } else if (node.children > 0) {
      kept.push_back(node.child);
      kept.push_back(node.child + 1);
    } else {
      for (int i = node.first; i < node.last; ++i) cells_[index].near.push_back(order_[i]);
    }
  }
  std::sort(cells_[index].near.begin(), cells_[index].near.end());
}

Flow FarField::One(int index, Complex at, Complex toward) const {
  const Source& source = sources_[index];
  if (source.piece >= 0) return s_.PieceFlow(source.piece, at, toward);
  const WellSource& well = wells_[source.well];
  Flow f = WellInfluence(well, at);
  f.omega *= well.discharge;
  f.w *= well.discharge;
  return f;
}

Flow FarField::Direct(const std::vector<int>& sources, Complex at, Complex toward) const {
  Flow sum;
  for (int i : sources) {
    const Flow f = One(i, at, toward);
    sum.omega += f.omega;
    sum.w += f.w;
  }
  return sum;
}

/// For points outside the cells: down the source tree until a node is far enough away.
Flow FarField::Walk(int index, Complex at, Complex toward) const {
  const Node& node = nodes_[index];
  if (node.disc.radius <= kSeparation * std::abs(at - node.disc.centre))
    return EvaluateOuter(node.outer, node.disc, at);
  if (node.children == 0)
    return Direct({order_.begin() + node.first, order_.begin() + node.last}, at, toward);
  Flow sum;
  for (int k = 0; k < node.children; ++k) {
    const Flow f = Walk(node.child + k, at, toward);
    sum.omega += f.omega;
    sum.w += f.w;
  }
  return sum;
}

double FarField::Distance(int index, Complex at) const {
  const Source& source = sources_[index];
  if (source.piece < 0) return std::max(0.0, std::abs(at - source.centre) - source.radius);
  const Piece& piece = s_.pieces[source.piece];
  return NearestOnSegment(piece.from, piece.to, at).distance;
}

int FarField::LeafAt(Complex at) const {
  if (cells_.empty()) return -1;
  const Complex offset = at - cells_[0].centre;
  if (std::max(std::abs(offset.real()), std::abs(offset.imag())) > cells_[0].half) return -1;
  int index = 0;
  while (cells_[index].child >= 0) {
    const Complex o = at - cells_[index].centre;
    index = cells_[index].child + (o.real() >= 0.0 ? 1 : 0) + (o.imag() >= 0.0 ? 2 : 0);
  }
  return index;
}

Flow FarField::At(Complex at, Complex toward) const {
  if (sources_.empty()) return {};
  const int leaf = LeafAt(at);
  if (leaf < 0) return Walk(0, at, toward);
  const Cell& cell = cells_[leaf];
  Flow sum = Direct(cell.near, at, toward);
  const Flow far = EvaluateLocal(cell.local, cell.Around(), at);
  sum.omega += far.omega;
  sum.w += far.w;
  return sum;
}

}  // namespace aem::detail
