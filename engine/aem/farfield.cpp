#include "aem/farfield.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "aem/system.h"

namespace aem::detail {

namespace {

constexpr int kLeafSources = 8;   ///< of a source node
constexpr int kNearSources = 28;  ///< of a target cell before it is divided
constexpr int kDeepest = 18;
constexpr double kSeparation = 0.5;
constexpr double kPi = std::numbers::pi;

/// Binomial coefficients up to twice the number of terms.
struct Binomials {
  double c[2 * FarField::kTerms + 1][2 * FarField::kTerms + 1] = {};
  Binomials() {
    for (int n = 0; n <= 2 * FarField::kTerms; ++n) {
      c[n][0] = 1.0;
      for (int k = 1; k <= n; ++k) c[n][k] = c[n - 1][k - 1] + (k < n ? c[n - 1][k] : 0.0);
    }
  }
};
const Binomials& Choose() {
  static const Binomials table;
  return table;
}

}  // namespace

FarField::FarField(const System& system) : s_(system) {
  for (std::size_t p = 0; p < s_.pieces.size(); ++p)
    sources_.push_back({int(p), -1, s_.pieces[p].Middle(), 0.5 * s_.pieces[p].Length()});
  for (const std::vector<WellSource>* list : {&s_.wells, &s_.partial_wells})
    for (const WellSource& w : *list) {
      sources_.push_back({-1, int(wells_.size()), w.at, w.radius});
      wells_.push_back(w);
    }
  order_.resize(sources_.size());
  for (std::size_t i = 0; i < order_.size(); ++i) order_[i] = int(i);
  nodes_.push_back({});
  nodes_[0].last = int(order_.size());
  BuildNode(0, 0);
  ParallelFor(s_.options.threads, nodes_.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) Multipoles(&nodes_[i]);
  });
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
  nodes_[index].centre = centre;
  nodes_[index].radius = std::max(radius, 1e-12);
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

void FarField::AddPiece(int index, Node* node) const {
  const Piece& piece = s_.pieces[index];
  const double* c = &s_.coefficients[index * kMaxBasis];
  const bool sink = piece.kind == PieceKind::kSink;
  const GaussRule rule = Gauss(piece.tip ? 32 : 16);
  const Complex half = 0.5 * (piece.to - piece.from);
  std::array<double, kMaxBasis> values;
  for (int q = 0; q < rule.size; ++q) {
    const double parameter = piece.tip ? 0.5 * (1.0 + rule.x[q]) : rule.x[q];
    BasisValues(piece, parameter, values.data(), nullptr);
    double strength = 0.0;
    for (int n = 0; n < piece.size; ++n) strength += c[n] * values[n];
    // dX: of a tip sink 2 dU with the polynomial itself, of a tip doublet 4 U dU
    strength *= rule.w[q] * (piece.tip && !sink ? 2.0 * parameter : 1.0);
    const Complex t = (piece.Global(PositionOf(piece, parameter)) - node->centre) / node->radius;
    if (sink) {
      const double weight = strength * std::abs(half) / (2.0 * kPi);
      node->net += weight;
      Complex power = t;
      for (int k = 1; k <= kTerms; ++k, power *= t) node->a[k] -= weight / k * power;
    } else {
      Complex term = Complex{0.0, 1.0} / (2.0 * kPi) * strength * half / node->radius;
      for (int k = 1; k <= kTerms; ++k, term *= t) node->a[k] += term;
    }
  }
}

void FarField::Multipoles(Node* node) const {
  for (int i = node->first; i < node->last; ++i) {
    const Source& source = sources_[order_[i]];
    if (source.piece >= 0) {
      AddPiece(source.piece, node);
      continue;
    }
    const double weight = wells_[source.well].discharge / (2.0 * kPi);
    const Complex t = (source.centre - node->centre) / node->radius;
    node->net += weight;
    Complex power = t;
    for (int k = 1; k <= kTerms; ++k, power *= t) node->a[k] -= weight / k * power;
  }
}

bool FarField::Separated(const Node& node, const Cell& cell) {
  const double reach = node.radius + cell.half * std::numbers::sqrt2;
  return reach <= kSeparation * std::abs(cell.centre - node.centre);
}

/// The node's series about its centre becomes a polynomial in (z - cell centre)/(cell radius).
void FarField::Transfer(const Node& node, Cell* cell) const {
  const auto& choose = Choose().c;
  const Complex d = cell->centre - node.centre, source = node.radius / d;
  const Complex target = cell->half * std::numbers::sqrt2 / d;
  Series scaled;
  Complex power = source;
  for (int k = 1; k <= kTerms; ++k, power *= source) scaled[k] = node.a[k] * power;
  Complex sum{};
  for (int k = 1; k <= kTerms; ++k) sum += scaled[k];
  cell->local[0] += node.net * std::log(d) + sum;
  Complex factor = -target;
  for (int n = 1; n <= kTerms; ++n, factor *= -target) {
    Complex inner = -node.net / n;
    for (int k = 1; k <= kTerms; ++k) inner += scaled[k] * choose[n + k - 1][n];
    cell->local[n] += factor * inner;
  }
}

void FarField::Inherit(const Cell& parent, Cell* child) const {
  // u = (z - parent)/(sqrt2 H) = shift + v/2 with v the child's own variable.
  const Complex shift = (child->centre - parent.centre) / (parent.half * std::numbers::sqrt2);
  const auto& choose = Choose().c;
  std::array<Complex, kTerms + 1> powers;
  powers[0] = 1.0;
  for (int k = 1; k <= kTerms; ++k) powers[k] = powers[k - 1] * shift;
  double scale = 1.0;
  for (int n = 0; n <= kTerms; ++n, scale *= 0.5) {
    Complex sum{};
    for (int k = n; k <= kTerms; ++k) sum += parent.local[k] * choose[k][n] * powers[k - n];
    child->local[n] = sum * scale;
  }
}

void FarField::BuildCell(int index, const std::vector<int>& candidates, int depth) {
  std::vector<int> open = candidates, kept;
  int near = 0;
  while (!open.empty()) {
    const int n = open.back();
    open.pop_back();
    const Node& node = nodes_[n];
    if (Separated(node, cells_[index])) {
      Transfer(node, &cells_[index]);
    } else if (node.children > 0 && node.radius > 0.5 * cells_[index].half) {
      open.push_back(node.child);
      open.push_back(node.child + 1);
    } else {
      kept.push_back(n);
      // Nodes that a long element makes wide stay near however small the cell is.
      if (node.radius <= 2.0 * cells_[index].half) near += node.last - node.first;
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
      Inherit(cells_[index], &c);
    }
    for (int k = 0; k < 4; ++k) BuildCell(child + k, kept, depth + 1);
    return;
  }
  // A leaf: what is left goes down to single sources or separated parts.
  while (!kept.empty()) {
    const Node& node = nodes_[kept.back()];
    kept.pop_back();
    if (Separated(node, cells_[index])) {
      Transfer(node, &cells_[index]);
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
  const Complex d = at - node.centre;
  Flow sum;
  if (node.radius <= kSeparation * std::abs(d)) {
    const Complex q = node.radius / d;
    Complex derivative{};
    for (int k = kTerms; k >= 1; --k) {
      sum.omega = (sum.omega + node.a[k]) * q;
      derivative = (derivative + double(k) * node.a[k]) * q;
    }
    sum.omega += node.net * std::log(d);
    sum.w = -(node.net - derivative) / d;
    return sum;
  }
  if (node.children == 0)
    return Direct({order_.begin() + node.first, order_.begin() + node.last}, at, toward);
  for (int k = 0; k < node.children; ++k) {
    const Flow f = Walk(node.child + k, at, toward);
    sum.omega += f.omega;
    sum.w += f.w;
  }
  return sum;
}

Flow FarField::At(Complex at, Complex toward) const {
  const Complex offset = at - cells_[0].centre;
  if (std::max(std::abs(offset.real()), std::abs(offset.imag())) > cells_[0].half) return Walk(0, at, toward);
  int index = 0;
  while (cells_[index].child >= 0) {
    const Complex o = at - cells_[index].centre;
    index = cells_[index].child + (o.real() >= 0.0 ? 1 : 0) + (o.imag() >= 0.0 ? 2 : 0);
  }
  const Cell& cell = cells_[index];
  const double scale = 1.0 / (cell.half * std::numbers::sqrt2);
  const Complex v = (at - cell.centre) * scale;
  Complex value{}, slope{};
  for (int n = kTerms; n >= 1; --n) {
    slope = slope * v + double(n) * cell.local[n];
    value = (value + cell.local[n]) * v;
  }
  Flow sum = Direct(cell.near, at, toward);
  sum.omega += value + cell.local[0];
  sum.w -= slope * scale;
  return sum;
}

}  // namespace aem::detail
